// SPDX-License-Identifier: MIT
// The measuring part of the controller: sweeps point by point, offsets, single readings. The
// hardware settles and converts while the previous point is still on the line.
#include <algorithm>

#include "sim/command_interpreter.h"

namespace qk::sim {

namespace {

constexpr std::int64_t kSettleUs = 500, kDwellUs = 2500, kConversionUs = 100;
constexpr int kOffsetReadings = 256;
// Cache slots beyond the points of a sweep.
constexpr std::size_t kContinuousWaveSlot = Receiver::kSlots - 1;

}  // namespace

std::size_t CommandInterpreter::BytesAPoint() const {
  switch (sweep_.What) {
    case Trigger::S11:
    case Trigger::S21:
      return 12;
    case Trigger::S11S21:
      return 18;
    case Trigger::All:
      return 36;
  }
  return 0;
}

std::int64_t CommandInterpreter::PointUs(int sides) const {
  return sides * ((dwell_ ? kDwellUs : kSettleUs) + averages_ * kConversionUs);
}

void CommandInterpreter::StartSweep(Trigger what, std::int64_t nowUs) {
  continuousWave_.reset();
  const int points = Points();
  sweep_ = {points > 0, what, points, 0};
  receiver_.BeginSweep();
  // Between sweeps the synthesisers are already settled at point 0.
  const std::int64_t settleNs = (dwell_ ? kDwellUs : kSettleUs) * 1000;
  hardwareFreeNs_ = std::max(hardwareFreeNs_, nowUs * 1000 - (Paced() ? settleNs : 0));
}

std::int64_t CommandInterpreter::NextPointStartNs() const {
  if (!Paced()) return hardwareFreeNs_;
  // One point may be on the line while the next is measured; the buffer holds no more.
  return std::max(hardwareFreeNs_, transmitter_.FreeNs() - LineNs(BytesAPoint()));
}

void CommandInterpreter::MeasurePoint(std::int64_t startNs) {
  const int point = sweep_.Next++;
  const Record record = RecordOf(point);
  const auto slot = static_cast<std::size_t>(point);
  SetMoment(startNs / 1000);
  std::array<std::uint8_t, 36> bytes;
  const Drive first = sweep_.What == Trigger::S11 ? Drive::Port1Alone : Drive::Port1;
  const SideVoltages forward = receiver_.Voltages(record, slot, first);
  int sides = 1;
  switch (sweep_.What) {
    case Trigger::S11:
      Samples(forward, &SideVoltages::Port1, bytes.data());
      break;
    case Trigger::S21:
      Samples(forward, &SideVoltages::Port2, bytes.data());
      break;
    case Trigger::S11S21:
      SixSamples(forward, bytes.data());
      break;
    case Trigger::All:
      SixSamples(forward, bytes.data());
      SixSamples(receiver_.Voltages(record, slot, Drive::Port2), bytes.data() + 18);
      sides = 2;
      break;
  }
  hardwareFreeNs_ = startNs + (Paced() ? PointUs(sides) * 1000 : 0);
  transmitter_.Send(bytes.data(), BytesAPoint(), (hardwareFreeNs_ + 999) / 1000,
                    point == 0 ? Sending::SweepBegin : Sending::SweepRest);
  if (sweep_.Next >= sweep_.Points) sweep_.Running = false;
}

void CommandInterpreter::Samples(const SideVoltages& v, Complex SideVoltages::*test,
                                 std::uint8_t* out) {
  receiver_.Convert(v.Reference.real(), Channel::Reference, averages_, out);
  receiver_.Convert((v.*test).real(), Channel::Test, averages_, out + 3);
  receiver_.Convert(v.Reference.imag(), Channel::Reference, averages_, out + 6);
  receiver_.Convert((v.*test).imag(), Channel::Test, averages_, out + 9);
}

void CommandInterpreter::SixSamples(const SideVoltages& v, std::uint8_t* out) {
  receiver_.Convert(v.Reference.real(), Channel::Reference, averages_, out);
  receiver_.Convert(v.Port2.real(), Channel::Test, averages_, out + 3);
  receiver_.Convert(v.Port1.real(), Channel::Test, averages_, out + 6);
  receiver_.Convert(v.Reference.imag(), Channel::Reference, averages_, out + 9);
  receiver_.Convert(v.Port2.imag(), Channel::Test, averages_, out + 12);
  receiver_.Convert(v.Port1.imag(), Channel::Test, averages_, out + 15);
}

void CommandInterpreter::MeasureOffsets(std::int64_t nowUs) {
  path_ = 0;
  continuousWave_.reset();
  SetMoment(nowUs);
  Record record;
  std::copy_n(ram_.begin() + kOffsetRecordAddress, kRecordSize, record.begin());
  // With the synthesisers locked at the offset point, only the offsets reach the converters; when
  // unlocked, their noise does too.
  SideVoltages stray{};
  if (!receiver_.Locks(record)) stray = receiver_.UnlockedVoltages();
  std::array<std::uint8_t, 6> reply;
  receiver_.Convert(stray.Reference.real(), Channel::Reference, kOffsetReadings, reply.data());
  receiver_.Convert(stray.Port1.real(), Channel::Test, kOffsetReadings, reply.data() + 3);
  Answer(reply.data(), reply.size(), nowUs, kSettleUs + kOffsetReadings * kConversionUs);
}

void CommandInterpreter::MeasureSelected(std::int64_t nowUs) {
  std::array<std::uint8_t, 12> reply;
  SetMoment(nowUs);
  const bool legal = selectedPoint_ >= 0 && selectedPoint_ < Points();
  const SideVoltages v =
      legal ? receiver_.Voltages(RecordOf(selectedPoint_), static_cast<std::size_t>(selectedPoint_),
                                 Drive::Port1)
            : receiver_.UnlockedVoltages();
  Samples(v, &SideVoltages::Port2, reply.data());
  Answer(reply.data(), reply.size(), nowUs, PointUs(1));
}

void CommandInterpreter::ReadChannel(Channel channel, bool quadrature, std::int64_t nowUs) {
  SetMoment(nowUs);
  const Record record = continuousWave_ ? *continuousWave_ : RecordOf(0);
  const SideVoltages v = receiver_.Voltages(record, kContinuousWaveSlot, Drive::Port1);
  const Complex volts = channel == Channel::Reference ? v.Reference : v.Port2;
  std::array<std::uint8_t, 3> reply;
  receiver_.Convert(quadrature ? volts.imag() : volts.real(), channel, averages_, reply.data());
  Answer(reply.data(), reply.size(), nowUs, averages_ * kConversionUs);
}

}  // namespace qk::sim
