// SPDX-License-Identifier: MIT
#include "sim/faults.h"

#include "sim/words.h"

namespace qk::sim {

namespace {

const char* Name(ByteFault::Kind kind) {
  switch (kind) {
    case ByteFault::Kind::Drop:
      return "drop";
    case ByteFault::Kind::Add:
      return "add";
    case ByteFault::Kind::Double:
      return "double";
    case ByteFault::Kind::Garble:
      return "garble";
  }
  return "";
}

std::string AtText(const std::optional<double>& hz) {
  return hz ? " at " + Text(*hz) : std::string();
}

std::string GainText(const char* what, const AnalogFaults::Gain& gain) {
  return what + (" " + Text(gain.Db)) + " dB" + AtText(gain.Hz);
}

}  // namespace

std::string Faults::Describe() const {
  std::string text;
  const auto add = [&text](const std::string& what) { text += (text.empty() ? "" : ", ") + what; };
  if (CutAfter) add(*CutAfter == 0 ? "silence" : "cut after " + std::to_string(*CutAfter));
  if (StallAfter) add("stall after " + std::to_string(*StallAfter));
  if (LateUs > 0) add("late " + std::to_string(LateUs / 1000) + " ms");
  if (ShortBy > 0) add("short " + std::to_string(ShortBy));
  if (Model) add("model " + *Model);
  if (SerialNumber) add("serial " + *SerialNumber);
  if (Unplugged) add("unplugged");
  if (Analog.Lock) add("no lock" + AtText(Analog.Lock->Hz));
  if (Analog.LevelStep)
    add("level code " + std::to_string(Analog.LevelStep->Code) + " off by " +
        Text(Analog.LevelStep->Db) + " dB");
  if (Analog.Reference) add(GainText("reference", *Analog.Reference));
  if (Analog.Test) add(GainText("test", *Analog.Test));
  if (Analog.Crosstalk) add(GainText("crosstalk", *Analog.Crosstalk));
  for (const ByteFault& f : Bytes)
    add(std::string(f.InSweep ? "sweep " : "") + Name(f.What) + " at " + std::to_string(f.At) +
        " count " + std::to_string(f.Count));
  return text.empty() ? "none" : text;
}

}  // namespace qk::sim
