// Receiver correction: offsets measured and filtered, level codes sent, temperature read.
#include "sweep/receiver.h"

#include <cmath>
#include <optional>
#include <string>

#include "core/status.h"
#include "core/text.h"
#include "link/command_set.h"
#include "sweep/frequency_plan.h"

namespace qk {

namespace {
constexpr double kOffsetFrequency = 2e7;  // Hz
constexpr int kOffsetReadings = 256;      // summed by the instrument whatever the averages are

double Counts(const std::uint8_t* b) {
  return (b[0] * 65536.0 + b[1] * 256.0 + b[2]) / kOffsetReadings;
}

// Weights of a new reading: the largest after the new one falls on the oldest entry. Meant.
double Filtered(const ReceiverState& rx, double fresh, std::size_t channel) {
  const auto& h = rx.DcHistory;
  return 0.7 * fresh + 0.25 * h[0][channel] + 0.02 * h[1][channel] + 0.01 * h[2][channel] +
         0.01 * h[3][channel] + 0.01 * h[4][channel];
}

void SelectPath(Rig& rig, std::string_view path) {
  rig.link.SendCommand(path);
  rig.link.LinkCheck();
}

// "C" disturbs the path: the one of the calibration in force goes out again, or none.
void RestorePath(Rig& rig) {
  const CalState& cal = rig.session.Cal;
  if (cal.CalS11) SelectPath(rig, command::kPathS11);
  if (cal.CalS21) SelectPath(rig, command::kPathS21);
  if (cal.Cal12Term) SelectPath(rig, command::kPathAll);
  if (cal.CalS11S21) SelectPath(rig, command::kPathS11S21);
}

bool MayLevel(Rig& rig) {
  if (rig.session.Flags.SweepLoaded) return true;
  rig.host.prompts.Tell("Port1 Level Set", "Sweep Not Set", Icon::Exclamation);
  return false;
}

bool AnswersForLevel(Rig& rig) {
  rig.link.EnsurePortOpen();
  return LinkAnswers(rig, "Port 1 Level Set");
}
}  // namespace

bool MeasureOffsets(Rig& rig) {
  constexpr const char* kTitle = "RX Offset";
  ReceiverState& rx = rig.session.Receiver;
  rig.session.Flags.ReplyTimedOut = false;
  rig.link.EnsurePortOpen();
  BuildPointRecord(rig.session, kOffsetFrequency, 0);
  if (!rx.DcOffsetValid) {
    if (!LinkAnswers(rig, kTitle)) return false;
    SendPointRecord(rig, command::kOffsetRecordAddress);
  }
  if (!LinkAnswers(rig, kTitle)) return false;
  rig.link.SendCommand(command::kOffsets);
  const Bytes reply = rig.link.ReadReply(command::kOffsetsLength, command::kOffsetsTimeout);
  if (command::StateOfReply(reply.size(), command::kOffsetsLength) != command::ReplyState::Whole)
    return TellNoResponse(rig, kTitle);
  FilterOffsets(rx, Counts(reply.data()), Counts(reply.data() + 3));
  RestorePath(rig);
  return true;
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
  rig.host.time.Enable(TimerId::Timer1, false);
  const bool good = AnswersForLevel(rig);
  if (good) {
    rig.link.SendCommand(command::kLevelCodes);
    for (int i = 0; i < session.Plan.NumPoints; ++i)
      rig.link.SendByte(LookupLevelCodes(session, session.Plan.Frequency(i)).Code1);
    ShowCalStatus(session, rig.host.windows);
  }
  rig.host.time.Enable(TimerId::Timer1, true);
  return good;
}

bool SendPointLevel(Rig& rig, int i, double F) {
  if (!MayLevel(rig)) return false;
  // A power sweep keeps Timer1 off from its first point to its last: back to what it was.
  const bool ticking = rig.host.time.Enabled(TimerId::Timer1);
  rig.host.time.Enable(TimerId::Timer1, false);
  const bool good = AnswersForLevel(rig);
  if (good) {
    rig.link.SendCommand(command::kPointLevel);
    rig.link.SendByte(command::HighByte(i));
    rig.link.SendByte(command::LowByte(i));
    rig.link.SendByte(LookupLevelCodes(rig.session, F).Code1);
  }
  rig.host.time.Enable(TimerId::Timer1, ticking);
  return good;
}

std::optional<float> ExchangeTemperature(Rig& rig) {
  rig.link.SendCommand(command::kTemperature);
  const Bytes reply = rig.link.ReadReply(command::kTemperatureLength, command::kReadingTimeout);
  if (command::StateOfReply(reply.size(), command::kTemperatureLength) !=
      command::ReplyState::Whole)
    return std::nullopt;
  return TemperatureFromBytes(reply[0], reply[1]);
}

bool ReadTemperature(Rig& rig) {
  constexpr const char* kTitle = "RX Temp Check";
  rig.link.EnsurePortOpen();
  if (!LinkAnswers(rig, kTitle)) return false;
  const std::optional<float> celsius = ExchangeTemperature(rig);
  if (!celsius) return TellNoResponse(rig, kTitle);
  SetPanel(rig.session, rig.host.windows, 5,
           "Temp " + FormatNumber(static_cast<double>(*celsius), "#0.0") + " degC");
  return true;
}

float TemperatureFromBytes(int b1, int b2) {
  const float volts = static_cast<float>(b1 * 256 + b2) * 5.0f / 1024.0f;
  return (volts - 2.45f) / 0.049f;
}

}  // namespace qk
