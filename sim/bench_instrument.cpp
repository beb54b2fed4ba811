// SPDX-License-Identifier: MIT
// Bench commands that inspect or operate the instrument: exact values of the connected device, the
// EEPROM, the power switch.
#include <algorithm>
#include <array>
#include <cmath>

#include "sim/bench_arguments.h"
#include "sim/instrument_state.h"

namespace qk::sim {

BenchReply RunTruth(const Instrument& instrument, Arguments& a) {
  const auto hz = a.NumberOf("hz");
  if (!hz || *hz <= 0 || !a.Empty()) return Refused("truth: a frequency in hertz is expected");
  static constexpr std::array<const char*, 4> kNames = {"S11", "S21", "S12", "S22"};
  const auto s = instrument.Truth(*hz);
  std::string text;
  for (std::size_t i = 0; i < s.size(); ++i)
    text += std::string(i == 0 ? "" : " ") + kNames[i] + " " + ExactText(s[i].real()) + " " +
            ExactText(s[i].imag());
  return {true, text};
}

BenchReply RunDriven(const Instrument& instrument, Arguments& a) {
  const auto hz = a.NumberOf("hz");
  const auto dbm = InRange(a, "dbm", -120, 60);
  if (!hz || *hz <= 0 || !dbm || !a.Empty())
    return Refused("driven: a frequency in hertz and a drive of -120 to 60 dBm are expected");
  const Complex s21 = instrument.Driven(*hz, *dbm)[1];
  const double output = *dbm + 20 * std::log10(std::max(std::abs(s21), 1e-15));
  return {true, "S21 " + ExactText(s21.real()) + " " + ExactText(s21.imag()) + " OUT " +
                    ExactText(output)};
}

BenchReply RunEeprom(Instrument& instrument, Arguments& a) {
  CommandInterpreter& interpreter = instrument.state().Commands;
  const auto address = WholeNumber(a.Word());
  const bool change = !a.Empty();
  const auto value = change ? WholeNumber(a.Word()) : std::optional<long long>(0);
  if (!address || *address >= static_cast<long long>(kEepromSize) || !value || *value > 255 ||
      !a.Empty())
    return Refused("eeprom: an address from 0 to 32767, and a byte to put there, are expected");
  const auto at = static_cast<std::size_t>(*address);
  if (change) interpreter.ChangeEeprom(at, static_cast<std::uint8_t>(*value));
  return {true, std::to_string(at) + " " + std::to_string(interpreter.EepromBytes()[at])};
}

BenchReply RunPower(Instrument& instrument, Arguments& a) {
  if (!a.Take("cycle") || !a.Empty()) return Refused("power: cycle is expected");
  instrument.state().Commands.SwitchOffAndOn();
  return {};
}

}  // namespace qk::sim
