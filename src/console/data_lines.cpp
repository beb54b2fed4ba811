// SPDX-License-Identifier: MIT
#include "console/data_lines.h"

#include <algorithm>
#include <array>
#include <optional>

#include "console/words.h"
#include "control/output_verbs.h"
#include "core/cal_arrays.h"
#include "core/vocabulary.h"
#include "trace/formatting.h"
#include "trace/memory.h"

namespace qk {

namespace {

using Lines = std::vector<std::string>;
using Reply = Result<Lines>;
using DataWords = std::span<const std::string_view>;

Failure Unknown(const std::string& what, std::string_view name, const std::string& known = {}) {
  return {"no " + what + " " + std::string(name) + (known.empty() ? "" : ": " + known), {}};
}

// One line per point of the sweep, counted from first.
template <class RowOfPoint>
Lines Points(const Session& s, int first, const RowOfPoint& row) {
  Lines lines;
  for (int i = first; i < s.Plan.NumPoints + first; ++i) lines.push_back(row(i));
  return lines;
}

Lines ComplexLines(const Session& s, const ComplexArray& z) {
  return Points(s, 0, [&z](int i) { return console::IndexedLine(i, {z[i].re, z[i].im}); });
}

Result<Parameter> ParameterOf(std::string_view name) {
  const std::optional<Parameter> parameter = Named<Parameter>(name);
  if (!parameter) return Unknown("parameter", name, "S11, S21, S12 or S22");
  return *parameter;
}

Result<int> ChannelOf(std::string_view name) {
  const auto number = console::WholeNumber(name);
  if (!number || *number < 1 || *number > 4) return Unknown("channel", name, "1 to 4");
  return static_cast<int>(*number);
}

// Hertz or, on a time graph, seconds (TdT1 and TdStep are in ns); index from 1.
double AbscissaOf(const Session& s, const ChannelSettings& channel, int index) {
  const TimeDomainState& td = s.TimeDomain;
  return RowOf(channel.GraphType).Form == PointForm::Spectrum
             ? (td.TdT1 + (index - 1) * td.TdStep) * 1e-9
             : s.Plan.Frequency(index - 1);
}

Lines FrequencyLines(const Session& s, const ComplexArray& z) {
  return Points(s, 0, [&](int i) {
    return console::IndexedLine(i, {s.Plan.Frequency(i), z[i].re, z[i].im});
  });
}

Reply Raw(const Session& s, DataWords words) {
  const Result<Parameter> parameter = ParameterOf(words[0]);
  if (!parameter) return parameter.Why();
  const SParamData& d = s.Data;
  const ComplexArray* arrays[] = {&d.RawS11, &d.RawS21, &d.RawS12, &d.RawS22};
  return FrequencyLines(s, *arrays[static_cast<std::size_t>(*parameter)]);
}

Reply Corrected(const Session& s, DataWords words) {
  const Result<Parameter> parameter = ParameterOf(words[0]);
  if (!parameter) return parameter.Why();
  return FrequencyLines(s, ArrayOf(s.Data, *parameter));
}

std::array<bool, 4> ParameterOnly(Parameter parameter) {
  std::array<bool, 4> one{};
  one[static_cast<std::size_t>(parameter)] = true;
  return one;
}

Reply Trace(const Session& s, DataWords words) {
  const Result<int> number = ChannelOf(words[0]);
  if (!number) return number.Why();
  const ChannelSettings& channel = s.Channel(*number);
  if (IsOfEarlierSweep(s, *number)) return AreMeasured(s, ParameterOnly(channel.Parameter)).Why();
  return Points(s, 1, [&](int i) {
    const auto at = static_cast<std::size_t>(i);
    return console::IndexedLine(i,
                                {AbscissaOf(s, channel, i), channel.Value[at], channel.Value2[at]});
  });
}

Reply Memory(const Session& s, DataWords words) {
  const Result<int> number = ChannelOf(words[0]);
  if (!number) return number.Why();
  const ConstStoredMemory memory = MemoryOf(s, *number, s.Display.MemoryNumber);
  if (!memory.Valid)
    return Failure{"channel " + std::string(words[0]) + " holds no memory trace", {}};
  return Points(s, 1, [&](int i) {
    const Complex z = memory.At(i);
    return console::IndexedLine(i, {z.re, z.im});
  });
}

Reply Limits(const Session& s, DataWords words) {
  const Result<int> number = ChannelOf(words[0]);
  if (!number) return number.Why();
  const ChannelSettings& channel = s.Channel(*number);
  return Points(s, 1, [&](int i) {
    const auto at = static_cast<std::size_t>(i);
    return console::IndexedLine(i, {static_cast<double>(channel.UpperLimit[at]),
                                    static_cast<double>(channel.LowerLimit[at])});
  });
}

Reply Term(const Session& s, DataWords words) {
  const ComplexArray* values = FindCalArray(s, words[0]);
  if (values == nullptr) return Unknown("term", words[0]);
  return ComplexLines(s, *values);
}

Reply NetworkOf(const Session& s, DataWords words) {
  if (words[0] != "1" && words[0] != "2") return Unknown("port", words[0], "1 or 2");
  const Result<Parameter> parameter = ParameterOf(words[1]);
  if (!parameter) return parameter.Why();
  return ComplexLines(s, ArrayOf(s.Networks.OfPort(words[0] == "1" ? 1 : 2), *parameter));
}

// The shown markers of the displayed channels; a fixed marker with its stored values. A value that
// the calibration in force does not measure is that of an earlier sweep, and reads "---".
Reply Markers(const Session& s, DataWords) {
  constexpr std::array<std::string_view, 5> kStates = {"off", "shown", "active", "reference",
                                                       "fixed"};
  Lines lines;
  const DisplaySetRow& shown = RowOf(s.Display.DisplaySet);
  for (int n = shown.First; n <= shown.Last; ++n)
    for (int m = 0; m < kMarkers; ++m) {
      const Marker& marker = s.Markers.Of(n - 1, m);
      if (marker.State == MarkerState::Off) continue;
      const bool memory = marker.Trace == MarkerTrace::Memory;
      const bool known = memory || marker.State == MarkerState::Fixed || !IsOfEarlierSweep(s, n);
      const double x = AbscissaOf(s, s.Channel(n), marker.Point);
      lines.push_back(std::to_string(n) + " " + std::to_string(marker.Number) + " " +
                      std::string(kStates[static_cast<std::size_t>(marker.State)]) +
                      (memory ? " memory " : " data ") +
                      (known ? console::IndexedLine(marker.Point, {x, marker.Value, marker.Value2})
                             : console::IndexedLine(marker.Point, {x}) + " --- ---"));
    }
  return lines;
}

// One line per level, the lowest first.
Reply Power(const Session& s, DataWords) {
  const PowerRun& run = s.PowerRun;
  if (!run.Measured) return Failure{"no gain compression or AM to PM run yet", {}};
  Lines lines;
  for (std::size_t i = PowerRun::kLevels; i-- > 0;)
    lines.push_back(
        console::IndexedLine(-static_cast<int>(i), {run.Pin[i], run.Value[i], run.Value2[i]}) +
        (run.Doubtful[i] ? " ?" : ""));
  return lines;
}

struct Kind {
  std::string_view Word;
  std::string_view Takes;  // the words that follow it
  std::size_t Count;
  Reply (*Give)(const Session&, DataWords);
};
constexpr Kind kKinds[] = {
    {"raw", "PARAMETER", 1, Raw},   {"corrected", "PARAMETER", 1, Corrected},
    {"trace", "CHANNEL", 1, Trace}, {"memory", "CHANNEL", 1, Memory},
    {"term", "NAME", 1, Term},      {"limits", "CHANNEL", 1, Limits},
    {"markers", "", 0, Markers},    {"network", "PORT PARAMETER", 2, NetworkOf},
    {"power", "", 0, Power},
};

std::string KindWords() {
  std::string all;
  for (const Kind& kind : kKinds) all += (all.empty() ? "" : "|") + std::string(kind.Word);
  return all;
}

}  // namespace

Reply DataLines(const Session& session, DataWords words) {
  if (words.empty()) return Failure{"data " + KindWords() + " ...", {}};
  const auto kind = std::ranges::find_if(kKinds, [&](const Kind& k) { return k.Word == words[0]; });
  if (kind == std::end(kKinds)) return Unknown("data", words[0], KindWords());
  if (words.size() != kind->Count + 1) {
    const std::string behind = kind->Takes.empty() ? "" : " " + std::string(kind->Takes);
    return Failure{"data " + std::string(kind->Word) + behind, {}};
  }
  return kind->Give(session, words.subspan(1));
}

}  // namespace qk
