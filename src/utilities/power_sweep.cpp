// SPDX-License-Identifier: MIT
#include "utilities/power_sweep.h"

#include <algorithm>
#include <cmath>

#include "core/status.h"
#include "core/text.h"
#include "link/command_set.h"
#include "sweep/receiver.h"
#include "sweep/reduction.h"
#include "sweep/up_to_date.h"
#include "utilities/port_level.h"

namespace qk {

namespace {

// The reference of a port at 0 dBm is at least 0.3 volts over the whole range and follows the
// level. A reading 30 dB below that means that the source is not locked.
constexpr double kLeastReferenceVolts = 0.3, kReferenceRoomDb = 30;

// The reference changes by 1 dB from level to level; even a badly calibrated level is well within
// these limits.
constexpr double kLargestRiseDb = 5, kLargestFallDb = 8;

double ReferenceVolts(const Bytes& reading, const Session& session, int averages) {
  const Complex reference = VoltsOfPoint(reading.data(), session.Receiver, averages).Reference;
  return Magnitude(reference.re, reference.im);
}

// True if the instrument that gave this reading has no output, for example because it was switched
// off and on and has no plan. It then sums one reading, whatever the number of averages was, and
// only the receiver's offsets remain, which at low levels are a large part of a reference. before:
// the reference of the previous level in volts; 0 if there was none.
bool DrivesNothing(const Bytes& reading, const Session& session, double before) {
  const double volts = ReferenceVolts(reading, session, session.Averaging.Averages);
  const double least =
      kLeastReferenceVolts * std::pow(10, (session.Plan.Port1Level - kReferenceRoomDb) / 20);
  if (volts < least || ReferenceVolts(reading, session, 1) < least) return true;
  if (before <= 0) return false;
  const double changeDb = 20 * std::log10(volts / before);
  return changeDb > kLargestRiseDb || changeDb < -kLargestFallDb;
}

// The instrument counts points from 1 in this command.
int InstrumentPoint(int testPoint) {
  return testPoint + 1;
}

void SelectPoint(Rig& rig, int point) {
  rig.link.SendCommand(command::kSelectPoint);
  rig.link.SendByte(command::HighByte(point));
  rig.link.SendByte(command::LowByte(point));
}

void ShowNoResponse(Rig& rig, const Complaint& complaint) {
  rig.host.prompts.ShowMessage(complaint.BadReplyTitle, complaint.BadReply, complaint.Mark);
}

// Sends Port1Level as the level code of the point ("YK"), then selects the point ("YI").
bool LevelThePoint(Rig& rig, const Complaint& complaint, int testPoint) {
  const int point = InstrumentPoint(testPoint);
  const bool levelled = SendPointLevel(rig, point, rig.session.Plan.Frequency(testPoint));
  if (!InstrumentAnswers(rig, complaint) || !levelled) return false;
  SelectPoint(rig, point);
  return true;
}

// reference, in volts: input is that of the previous level, output that of this one.
std::optional<PowerReading> ReadPowerPoint(Rig& rig, const Complaint& complaint, int testPoint,
                                           double& reference) {
  if (!LevelThePoint(rig, complaint, testPoint)) return std::nullopt;
  const auto reply = Exchange(rig, complaint, command::kTakeReading, command::kReadingLength,
                              command::kReadingTimeout);
  if (!reply) return std::nullopt;
  const Session& session = rig.session;
  if (DrivesNothing(*reply, session, reference)) {
    rig.link.ForgetState();  // so that the next start sends everything again
    ShowNoResponse(rig, complaint);
    return std::nullopt;
  }
  const PointVolts volts =
      VoltsOfPoint(reply->data(), session.Receiver, session.Averaging.Averages);
  reference = Magnitude(volts.Reference.re, volts.Reference.im);
  const bool overload = Overloads(volts.Test);
  if (overload) ShowOverload(rig.session, rig.host, "Port 2 Overload!");
  const PortTerms& terms = session.Terms.Forward;
  const Complex raw = ComplexDivide(volts.Test, volts.Reference);
  return PowerReading{ComplexDivide(raw - terms.EX[testPoint], terms.ETT[testPoint]),
                      Magnitude(volts.Test.re, volts.Test.im), overload};
}

bool ReadAllLevels(Rig& rig, const Complaint& complaint, int testPoint, PowerSweep& sweep) {
  SweepPlan& plan = rig.session.Plan;
  {
    const Port1LevelKept kept(plan);
    double reference = 0;
    for (int i = 0; i < kPowerLevels; ++i) {
      plan.Port1Level = static_cast<std::int16_t>(-i);
      const auto reading = ReadPowerPoint(rig, complaint, testPoint, reference);
      if (!reading) return false;
      sweep.Levels[static_cast<std::size_t>(i)] = *reading;
    }
  }
  return LevelThePoint(rig, complaint, testPoint);
}

}  // namespace

bool PowerSweep::Overloaded() const {
  return std::any_of(Levels.begin(), Levels.end(),
                     [](const PowerReading& reading) { return reading.Overload; });
}

std::optional<int> NearestPoint(const SweepPlan& plan, double megahertz) {
  if (plan.StepFreq <= 0) return std::nullopt;
  const double place = std::floor((megahertz * 1e6 - plan.StartFreq) / plan.StepFreq + 0.5);
  if (!(place >= 0 && place <= plan.NumPoints - 1)) return std::nullopt;
  return static_cast<int>(place);
}

double TwoDecimals(std::string_view text) {
  return Val(FormatNumber(Val(text), "#0.00"));
}

bool SelectTestPoint(Rig& rig, const Complaint& complaint, int testPoint) {
  if (!InstrumentAnswers(rig, complaint) || !BringUpToDate(rig, complaint)) return false;
  SelectPoint(rig, InstrumentPoint(testPoint));
  return true;
}

std::optional<PowerSweep> MeasurePowerSweep(Rig& rig, const Complaint& complaint, int testPoint) {
  EndGeneratorWave(rig.session, rig.host.windows);
  PowerSweep sweep;
  const std::optional<float> temperature = ExchangeTemperature(rig);
  if (!temperature) {
    ShowNoResponse(rig, complaint);
    return std::nullopt;
  }
  sweep.Temperature = *temperature;
  if (!ReadAllLevels(rig, complaint, testPoint, sweep)) return std::nullopt;
  return sweep;
}

}  // namespace qk
