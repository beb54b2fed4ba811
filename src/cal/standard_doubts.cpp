// SPDX-License-Identifier: MIT
#include "cal/standard_doubts.h"

#include <algorithm>

namespace qk {

namespace {
constexpr double kLeastReflection = 0.25, kMostReflection = 4;
constexpr double kLoadAtMost = 0.7;        // of a full reflection
constexpr double kLeastDifference = 0.25;  // of open and short, of the larger of the two

double Size(Complex z) {
  return Magnitude(z.re, z.im);
}

// True if a test is true at more than share of the plan's points.
template <class Test>
bool Mostly(const Session& session, double share, Test test) {
  const int points = session.Plan.NumPoints;
  int hits = 0;
  for (int k = 0; k < points; ++k) hits += test(k) ? 1 : 0;
  return hits > share * points;
}

struct Port {
  const ComplexArray &Load, &Short, &Open;
  const char* Name;
};

// For a corrupted or missing sweep, a tenth of the points is enough.
void JudgeReflection(const Session& session, const ComplexArray& raw, const std::string& name,
                     std::vector<std::string>& doubts) {
  constexpr double kShare = 0.1;
  if (Mostly(session, kShare, [&](int k) { return Size(raw[k]) < kLeastReflection; }))
    doubts.push_back(name + " hardly reflects");
  else if (Mostly(session, kShare, [&](int k) { return !(Size(raw[k]) <= kMostReflection); }))
    doubts.push_back(name + " reflects more than all");
}

void JudgePort(const Session& session, const ReflectionsMeasured& measured, const Port& port,
               std::vector<std::string>& doubts) {
  constexpr double kShare = 0.5;
  const std::string on = std::string(" on ") + port.Name;
  if (measured.Open) JudgeReflection(session, port.Open, "Open" + on, doubts);
  if (measured.Short) JudgeReflection(session, port.Short, "Short" + on, doubts);
  if (measured.Load &&
      Mostly(session, kShare, [&](int k) { return !(Size(port.Load[k]) <= kLoadAtMost); }))
    doubts.push_back("Load" + on + " reflects like a short");
  if (measured.Open && measured.Short && Mostly(session, kShare, [&](int k) {
        const Complex open = port.Open[k], other = port.Short[k];
        return Size(open - other) < kLeastDifference * std::max(Size(open), Size(other));
      }))
    doubts.push_back("Open and short" + on + " are the same");
}
}  // namespace

std::vector<std::string> StandardDoubts(const Session& session,
                                        const ReflectionsMeasured& measured) {
  const StandardsMeasured& raw = session.Standards;
  std::vector<std::string> doubts;
  JudgePort(session, measured, {raw.CalLoad1, raw.CalShort1, raw.CalOpen1, "port 1"}, doubts);
  if (measured.BothPorts)
    JudgePort(session, measured, {raw.CalLoad2, raw.CalShort2, raw.CalOpen2, "port 2"}, doubts);
  return doubts;
}

}  // namespace qk
