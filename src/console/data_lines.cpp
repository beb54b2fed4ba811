// The numbers behind the pictures, a line a point, with 17 significant digits.
#include "console/front_panel.h"
#include "console/words.h"
#include "core/cal_arrays.h"

namespace qk {

using console::Digits17;

namespace {

using Lines = std::vector<std::string>;

std::string Pair(int index, double a, double b) {
  return std::to_string(index) + " " + Digits17(a) + " " + Digits17(b);
}

const ComplexArray* ParameterArray(const SParamData& d, bool raw, std::string_view name) {
  if (name == "S11") return raw ? &d.RawS11 : &d.S11;
  if (name == "S21") return raw ? &d.RawS21 : &d.S21;
  if (name == "S12") return raw ? &d.RawS12 : &d.S12;
  if (name == "S22") return raw ? &d.RawS22 : &d.S22;
  return nullptr;
}

void ComplexLines(const Session& s, const ComplexArray& values, bool withFrequency, Lines& lines) {
  for (int i = 0; i < s.Plan.NumPoints; ++i) {
    const Complex z = values[i];
    lines.push_back(withFrequency ? std::to_string(i) + " " + Digits17(s.Plan.Frequency(i)) + " " +
                                        Digits17(z.re) + " " + Digits17(z.im)
                                  : Pair(i, z.re, z.im));
  }
}

void TraceLines(const Session& s, const ChannelSettings& channel, Lines& lines) {
  const TimeDomainState& td = s.TimeDomain;
  const bool time = channel.GraphType == GraphType::Td;
  for (int i = 1; i <= s.Plan.NumPoints; ++i) {
    const auto at = static_cast<std::size_t>(i);
    // TdT1 and TdStep are in ns; X is in seconds.
    const double x = time ? (td.TdT1 + (i - 1) * td.TdStep) * 1e-9 : s.Plan.Frequency(i - 1);
    lines.push_back(std::to_string(i) + " " + Digits17(x) + " " + Digits17(channel.Value[at]) +
                    " " + Digits17(channel.Value2[at]));
  }
}

}  // namespace

bool DataLines(const Session& session, std::string_view what, std::string_view name, Lines& lines,
               std::string& reason) {
  lines.clear();
  const std::string word(name);
  if (what == "raw" || what == "corrected") {
    const ComplexArray* values = ParameterArray(session.Data, what == "raw", name);
    if (values == nullptr) reason = "no parameter " + word + ": S11, S21, S12 or S22";
    if (values != nullptr) ComplexLines(session, *values, true, lines);
    return values != nullptr;
  }
  if (what == "term") {
    const ComplexArray* values = FindCalArray(session, name);
    if (values == nullptr) reason = "no term " + word;
    if (values != nullptr) ComplexLines(session, *values, false, lines);
    return values != nullptr;
  }
  if (what != "trace" && what != "memory" && what != "limits") {
    reason = "no data " + std::string(what) + ": raw, corrected, trace, memory, term or limits";
    return false;
  }
  const auto number = console::WholeNumber(name);
  if (!number || *number < 1 || *number > 4) {
    reason = "no channel " + word + ": 1 to 4";
    return false;
  }
  const ChannelSettings& channel = session.Channel(static_cast<int>(*number));
  if (what == "trace") {
    TraceLines(session, channel, lines);
    return true;
  }
  if (what == "memory" && !channel.MemoryValid) {
    reason = "channel " + word + " holds no memory trace";
    return false;
  }
  for (int i = 1; i <= session.Plan.NumPoints; ++i) {
    const auto at = static_cast<std::size_t>(i);
    lines.push_back(what == "memory" ? Pair(i, channel.MemoryRe[at], channel.MemoryIm[at])
                                     : Pair(i, static_cast<double>(channel.UpperLimit[at]),
                                            static_cast<double>(channel.LowerLimit[at])));
  }
  return true;
}

}  // namespace qk
