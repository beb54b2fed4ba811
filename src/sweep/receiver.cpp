// SPDX-License-Identifier: MIT
// Receiver functions: measures and filters the offsets, sends level codes, reads the temperature.
#include "sweep/receiver.h"

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <tuple>

#include "core/scopes.h"
#include "core/status.h"
#include "core/text.h"
#include "link/command_set.h"
#include "link/exchange.h"
#include "sweep/frequency_plan.h"
#include "sweep/reduction.h"

namespace qk {

namespace {
constexpr double kOffsetFrequency = 2e7;  // Hz
constexpr int kOffsetReadings = 256;  // summed by the instrument, whatever the number of averages
constexpr double kCountsPerVolt = 65535 / 4.999924, kZeroCounts = 2.5 * kCountsPerVolt;
// Offsets of a sound receiver, as in the self-test.
constexpr double kSoundCounts = 0.035 * kCountsPerVolt;
// Far more than the offsets drift between two readings (7.6 mV). A step of the high byte is 256
// counts, one of the low byte less than one.
constexpr double kStepCounts = 100;

// Counts of I and Q.
using OffsetReading = std::array<double, 2>;

bool Near(const OffsetReading& a, const OffsetReading& b, double counts) {
  return std::abs(a[0] - b[0]) <= counts && std::abs(a[1] - b[1]) <= counts;
}

// The samples have no checksum. A reading is expected near the one before it; the first one, near
// zero.
bool IsPlausible(const ReceiverState& rx, const OffsetReading& fresh) {
  return rx.DcOffsetValid ? Near(fresh, rx.DcHistory.back(), kStepCounts)
                          : Near(fresh, {kZeroCounts, kZeroCounts}, kSoundCounts);
}

double Counts(const std::uint8_t* b) {
  return (b[0] * 65536.0 + b[1] * 256.0 + b[2]) / kOffsetReadings;
}

std::optional<OffsetReading> ReadOffsets(Rig& rig, const char* title) {
  const auto reply =
      Exchange(rig, title, command::kOffsets, command::kOffsetsLength, command::kOffsetsTimeout);
  if (!reply) return std::nullopt;
  return OffsetReading{Counts(reply->data()), Counts(reply->data() + 3)};
}

// A reading that is not plausible is taken again: it holds if the second one agrees with it.
std::optional<OffsetReading> ReadPlausibleOffsets(Rig& rig, const char* title) {
  const auto first = ReadOffsets(rig, title);
  if (!first || IsPlausible(rig.session.Receiver, *first)) return first;
  const auto second = ReadOffsets(rig, title);
  if (!second || IsPlausible(rig.session.Receiver, *second) || Near(*first, *second, kStepCounts))
    return second;
  rig.link.ForgetState();
  rig.host.prompts.ShowMessage(title, "No Response", Icon::Exclamation);
  return std::nullopt;
}

// Filter weights. Intentional: the second largest weight is on the oldest entry.
double Filtered(const ReceiverState& rx, double fresh, std::size_t channel) {
  const auto& h = rx.DcHistory;
  return 0.7 * fresh + 0.25 * h[0][channel] + 0.02 * h[1][channel] + 0.01 * h[2][channel] +
         0.01 * h[3][channel] + 0.01 * h[4][channel];
}

bool MayLevel(Rig& rig) {
  if (rig.session.Flags.SweepLoaded) return true;
  rig.host.prompts.ShowMessage("Port1 Level Set", "Sweep Not Set", Icon::Exclamation);
  return false;
}

constexpr Complaint kLevelComplaint{"Port 1 Level Set"};
}  // namespace

bool MeasureOffsets(Rig& rig) {
  constexpr const char* kTitle = "RX Offset";
  ReceiverState& rx = rig.session.Receiver;
  BuildPointRecord(rig.session, kOffsetFrequency, 0);
  InstrumentHolds& holds = rig.link.Holds();
  if (!rx.DcOffsetValid || holds.OffsetPointLost) {
    if (!InstrumentAnswers(rig, kTitle)) return false;
    SendPointRecord(rig, command::kOffsetRecordAddress);
    holds.OffsetPointLost = false;
  }
  const auto fresh = ReadPlausibleOffsets(rig, kTitle);
  if (!fresh) return false;
  FilterOffsets(rx, (*fresh)[0], (*fresh)[1]);
  RestorePath(rig);
  return true;
}

void RestorePath(Rig& rig) {
  rig.link.Holds().PathLost = false;
  // Intentional: if the flags of two kinds are set, both paths are sent, S11+S21 last.
  for (const SweepMode mode : {SweepMode::S11, SweepMode::S21, SweepMode::All, SweepMode::S11S21}) {
    if (!InForce(rig.session.Cal, mode)) continue;
    rig.link.SendCommand(WireOf(mode).Path);
    std::ignore = rig.link.LinkCheck();  // for flow control; the next exchange reports a dead link
  }
}

void FilterOffsets(ReceiverState& receiver, double newI, double newQ) {
  auto& history = receiver.DcHistory;
  if (!receiver.DcOffsetValid) {
    history.fill({newI, newQ});
    receiver.DcOffsetValid = true;
  }
  const double i = Filtered(receiver, newI, 0);
  const double q = Filtered(receiver, newQ, 1);
  for (std::size_t k = 0; k + 1 < history.size(); ++k) history[k] = history[k + 1];
  history.back() = {newI, newQ};
  receiver.DcOffsetI = ConverterVolts(i);
  receiver.DcOffsetQ = ConverterVolts(q);
}

bool SendLevelTable(Rig& rig) {
  if (!MayLevel(rig)) return false;
  Session& session = rig.session;
  const Timer1Pause pause(rig.host.loop);
  if (!InstrumentAnswers(rig, kLevelComplaint)) return false;
  // The number of codes must equal the number of points in the instrument: if its plan is unknown,
  // the plan is loaded instead, which also sends the codes.
  InstrumentHolds& holds = rig.link.Holds();
  if (!holds.Grid.Is(WantedGrid(session.Plan))) return LoadFreqSweep(rig);
  rig.link.SendCommand(command::kLevelCodes);
  for (int i = 0; i < session.Plan.NumPoints; ++i)
    rig.link.SendByte(LookupLevelCodes(session, session.Plan.Frequency(i)).Code1);
  holds.SetLevel(session.Plan.Port1Level);
  ShowCalStatus(session, rig.host.windows);
  return true;
}

bool SendPointLevel(Rig& rig, int i, double F) {
  if (!MayLevel(rig)) return false;
  const Timer1Pause pause(rig.host.loop);
  if (!Send(rig, kLevelComplaint, command::kPointLevel)) return false;
  rig.link.SendByte(command::HighByte(i));
  rig.link.SendByte(command::LowByte(i));
  rig.link.SendByte(LookupLevelCodes(rig.session, F).Code1);
  rig.link.Holds().LendPoint(i - 1, rig.session.Plan.Port1Level);
  return true;
}

std::optional<float> ExchangeTemperature(Rig& rig) {
  const auto reply = SendAndRead(rig, command::kTemperature, command::kTemperatureLength,
                                 command::kReadingTimeout);
  if (!reply) return std::nullopt;
  return TemperatureFromBytes((*reply)[0], (*reply)[1]);
}

bool ReadTemperature(Rig& rig) {
  const auto reply = Exchange(rig, "RX Temp Check", command::kTemperature,
                              command::kTemperatureLength, command::kReadingTimeout);
  if (!reply) return false;
  const float celsius = TemperatureFromBytes((*reply)[0], (*reply)[1]);
  rig.session.Receiver.Temperature = celsius;
  SetPanel(rig.session, rig.host.windows, Panel::Temperature,
           "Temp " + FormatNumber(static_cast<double>(celsius), "#0.0") + " degC");
  return true;
}

float TemperatureFromBytes(int b1, int b2) {
  const float volts = static_cast<float>(b1 * 256 + b2) * 5.0f / 1024.0f;
  return (volts - 2.45f) / 0.049f;
}

}  // namespace qk
