// SPDX-License-Identifier: MIT
#include "sim/receiver.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "sim/source_levels.h"
#include "sim/words.h"

namespace qk::sim {

namespace {

constexpr double kFullScaleVolts = 4.999924;
constexpr double kHalfScaleVolts = 2.5;
constexpr double kFullScaleCounts = 65535;
constexpr double kUnlockedVolts = 0.004;  // output of mixers without a carrier
constexpr double kColdDegC = 25, kWarmDegC = 32, kWarmUpSeconds = 1200;
constexpr double kRadiansPerDb = 0.115;  // of drift
constexpr double kDriveWantedDbm = 10;   // the mixers lose gain below it

// True if a fault with this frequency acts at f: within 1 MHz; without a frequency, everywhere.
bool Strikes(const std::optional<double>& hz, double f) {
  return !hz || std::abs(f - *hz) < 1e6;
}

double FaultGain(const std::optional<AnalogFaults::Gain>& fault, double f) {
  return fault && Strikes(fault->Hz, f) ? FromDb(fault->Db) : 1;
}

}  // namespace

Receiver::Receiver(std::uint64_t seed, bool noise)
    : noise_(seed), noiseOn_(noise), play_(seed + 1), cache_(kSlots) {
  SetMoment(0);
}

void Receiver::Connect(Connection connection) {
  connection_ = std::move(connection);
  for (Cached& c : cache_) c.Valid = false;
}

void Receiver::SetFaults(const AnalogFaults& faults) {
  faults_ = faults;
  for (Cached& c : cache_) c.Valid = false;
}

namespace {
// Without the rounding of the conversion.
std::string Millivolts(double volts) {
  return Text(std::round(volts * 1e12) / 1e9);
}
}  // namespace

std::string Receiver::DescribeSettings() const {
  std::string text;
  if (fixedDegC_) text += "temperature " + Text(*fixedDegC_) + "; ";
  if (fixedOffsets_)
    text += "offsets " + Millivolts(fixedOffsets_->Reference) + " " +
            Millivolts(fixedOffsets_->Test) + "; ";
  if (drift_.DbPerHour != 0 || drift_.DbPerDegC != 0)
    text += "drift " + Text(drift_.DbPerHour) + " " + Text(drift_.DbPerDegC) + "; ";
  if (looseDb_ != 0) text += "connector loose " + Text(looseDb_) + "; ";
  if (step_.Db != 0)
    text += "step " + Text(step_.Db) + " after " + std::to_string(step_.AfterSweeps) + "; ";
  return text;
}

double Receiver::TemperatureDegC(double seconds) const {
  if (fixedDegC_) return *fixedDegC_;
  return kWarmDegC + (kColdDegC - kWarmDegC) * std::exp(-std::max(seconds, 0.0) / kWarmUpSeconds);
}

DcOffsets Receiver::OffsetsAt(double seconds) const {
  if (fixedOffsets_) return *fixedOffsets_;
  const double warmer = TemperatureDegC(seconds) - 30;
  return {0.0121 + 5e-5 * warmer, -0.0184 - 8e-5 * warmer};
}

void Receiver::SetMoment(double seconds) {
  degC_ = TemperatureDegC(seconds);
  gain_ = FromDb(-kReceiverDbPerDegC * (degC_ - kReceiverCalDegC));
  offsets_ = OffsetsAt(seconds);
  constexpr double kNewDegC = 25;
  const double db = drift_.DbPerHour * seconds / 3600 + drift_.DbPerDegC * (degC_ - kNewDegC);
  drifted_ = std::polar(FromDb(db), kRadiansPerDb * db);
}

void Receiver::BeginSweep() {
  moved_ = 1;
  if (looseDb_ != 0) {
    const double size = FromDb(looseDb_) - 1;
    const double re = play_.Next();
    moved_ += size * Complex(re, play_.Next());
  }
  if (step_.Db != 0 && ++sweepsSinceStep_ > step_.AfterSweeps) moved_ *= FromDb(step_.Db);
}

Receiver::Cached& Receiver::Look(const Record& record, std::size_t slot) {
  Cached& cached = cache_[std::min(slot, kSlots - 1)];
  if (cached.Valid && cached.Of == record) return cached;
  cached.Valid = true;
  cached.Of = record;
  const Decoded decoded = DecodeRecord(record.data());
  cached.Locked = LocksAt(decoded);
  if (cached.Locked) {
    for (const Drive drive : {Drive::Port1, Drive::Port2, Drive::Port1Alone})
      cached.Side[static_cast<std::size_t>(drive)] = Compute(decoded, drive);
  }
  return cached;
}

bool Receiver::Locks(const Record& record) const {
  return LocksAt(DecodeRecord(record.data()));
}

bool Receiver::LocksAt(const Decoded& decoded) const {
  if (!decoded.Locked) return false;
  return !faults_.Lock || !Strikes(faults_.Lock->Hz, decoded.SourceHz);
}

double Receiver::LevelDbm(const Decoded& decoded) const {
  const double trimmed = SourceLevelDbm(decoded.LevelCode, decoded.SourceHz);
  const auto& fault = faults_.LevelStep;
  return fault && fault->Code == decoded.LevelCode ? trimmed + fault->Db : trimmed;
}

FrontEndTerms Receiver::TermsAt(double f) const {
  FrontEndTerms terms = FrontEndAt(f);
  // A weak reference increases every ratio, a weak test channel decreases it.
  const double reference = FaultGain(faults_.Reference, f);
  const double ratio = FaultGain(faults_.Test, f) / reference;
  terms.ForwardReference *= reference;
  terms.ReverseReference *= reference;
  for (SideTerms* side : {&terms.Forward, &terms.Reverse}) {
    side->Directivity *= ratio;
    side->ReflectionTracking *= ratio;
    side->Isolation *= ratio;
    side->TransmissionTracking *= ratio;
  }
  if (faults_.Crosstalk && Strikes(faults_.Crosstalk->Hz, f))
    terms.Forward.Isolation += FromDb(faults_.Crosstalk->Db) * terms.Forward.TransmissionTracking;
  return terms;
}

SideVoltages Receiver::Voltages(const Record& record, std::size_t slot, Drive drive) {
  const Cached& cached = Look(record, slot);
  if (!cached.Locked) return UnlockedVoltages();
  const SideVoltages& side = cached.Side[static_cast<std::size_t>(drive)];
  const Complex ratio = gain_ * drifted_ * moved_;
  return {gain_ * side.Reference, ratio * side.Port1, ratio * side.Port2};
}

SideVoltages Receiver::UnlockedVoltages() {
  const auto next = [this] {
    const double real = noise_.Next();
    return kUnlockedVolts * Complex(real, noise_.Next());
  };
  const Complex reference = next(), port1 = next();
  return {reference, port1, next()};
}

SideVoltages Receiver::Compute(const Decoded& decoded, Drive drive) const {
  const double f = decoded.SourceHz;
  FrontEndTerms terms = TermsAt(f);
  if (drive == Drive::Port1Alone) terms.Forward.LoadMatch = 0;
  const double levelDbm = LevelDbm(decoded);
  const double starved = std::max(0.0, kDriveWantedDbm - ReceiverDriveDbm(decoded.ReceiverCode, f));
  const double volts = FromDb(levelDbm - starved);

  TwoPort device = connection_.At(f);
  if (drive == Drive::Port2) {
    const Complex reference = volts * terms.ReverseReference;
    const Ratios ratios = Measured(terms.Reverse, Turned(device));
    return {reference, reference * ratios.Transmission, reference * ratios.Reflection};
  }
  if (connection_.Between && connection_.Between->DependsOnDrive()) {
    const double incident = std::abs(IncidentWave(terms.Forward, device));
    device = connection_.Between->Driven(f, levelDbm + 20 * std::log10(incident));
  }
  const Complex reference = volts * terms.ForwardReference;
  const Ratios ratios = Measured(terms.Forward, device);
  return {reference, reference * ratios.Reflection, reference * ratios.Transmission};
}

void Receiver::Convert(double volts, Channel channel, int readings, std::uint8_t* out) {
  const double offset = channel == Channel::Reference ? offsets_.Reference : offsets_.Test;
  const double counts = (volts + offset + kHalfScaleVolts) / kFullScaleVolts * kFullScaleCounts;
  double sum = counts * readings;
  // The noise of the conversions is independent: that of the sum increases with the square root of
  // their number.
  if (noiseOn_) sum += kNoiseCounts * std::sqrt(readings) * noise_.Next();
  const auto whole =
      static_cast<std::uint32_t>(std::lround(std::clamp(sum, 0.0, kFullScaleCounts * readings)));
  out[0] = static_cast<std::uint8_t>(whole >> 16);
  out[1] = static_cast<std::uint8_t>(whole >> 8);
  out[2] = static_cast<std::uint8_t>(whole);
}

int Receiver::TemperatureCount() const {
  const double volts = degC_ * 0.049 + 2.45;
  return static_cast<int>(std::clamp(std::lround(volts * 1024 / 5), 0L, 1023L));
}

}  // namespace qk::sim
