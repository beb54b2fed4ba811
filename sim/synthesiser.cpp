// SPDX-License-Identifier: MIT
#include "sim/synthesiser.h"

#include <cmath>

namespace qk::sim {

namespace {

constexpr double kDdsClockHz = 4e8;
constexpr double kLoopDivider = 280;
constexpr double kIfHz = 950e3;
// DDS words and loop dividers are whole numbers: each may be off by a few hertz.
constexpr double kIfToleranceHz = 20;
constexpr double kReferenceLowHz = 65e6, kReferenceHighHz = 76e6;
constexpr double kSourceLoopLowHz = 1.5e9, kSourceLoopHighHz = 3.4e9;  // loops A and C
constexpr double kFixedLoopLowHz = 2.8e9, kFixedLoopHighHz = 3.95e9;   // loops B and D
constexpr double kSourceGainHz = 3.1e9, kFixedGainHz = 3.35e9;
// A gain bit is not checked this close to its threshold.
constexpr double kGainToleranceHz = 1e4;
constexpr double kBandToleranceHz = 1e3;

constexpr int kHeterodyne = 0, kDoubled = 96, kDirect = 32;

double ReferenceHz(const std::uint8_t* word) {
  const double tuning = word[0] * 16777216.0 + word[1] * 65536.0 + word[2] * 256.0 + word[3];
  return tuning * kDdsClockHz / 4294967296.0;
}

Loop DecodeLatch(const std::uint8_t* latch, double referenceHz) {
  const unsigned word = (static_cast<unsigned>(latch[0]) << 16) |
                        (static_cast<unsigned>(latch[1]) << 8) | static_cast<unsigned>(latch[2]);
  Loop loop;
  loop.A = static_cast<int>((word >> 2) & 0x3F);
  loop.B = static_cast<int>((word >> 8) & 0x1FFF);
  loop.HighGain = ((word >> 21) & 1) != 0;
  loop.N = 32 * loop.B + loop.A;
  loop.WellFormed = (word & 3) == 1 && (word >> 22) == 0 && loop.A < 32 && loop.B >= loop.A;
  loop.Hz = loop.N * referenceHz / kLoopDivider;
  return loop;
}

bool GainFits(bool highGain, double loopHz, double thresholdHz) {
  if (std::abs(loopHz - thresholdHz) <= kGainToleranceHz) return true;
  return highGain == (loopHz > thresholdHz);
}

bool Between(double x, double low, double high) {
  return x >= low && x <= high;
}

bool BandFits(int band, double sourceHz) {
  switch (band) {
    case kHeterodyne:
      return Between(sourceHz, 2.9e6, 8e8 + kBandToleranceHz);
    case kDoubled:
      return Between(sourceHz, 8e8 - kBandToleranceHz, 1.6e9 + kBandToleranceHz);
    case kDirect:
      return Between(sourceHz, 1.6e9 - kBandToleranceHz, 3.1e9);
    default:
      return false;
  }
}

// Loops B and D are not in the signal path in the direct band, but must be parked where they do not
// interfere: one divider step below 3.7 or 3.6 GHz.
bool Parked(const Loop& loop, double referenceHz) {
  const double step = referenceHz / kLoopDivider + kIfToleranceHz;
  const double above = kIfToleranceHz;
  return Between(loop.Hz, 3.7e9 - step, 3.7e9 + above) ||
         Between(loop.Hz, 3.6e9 - step, 3.6e9 + above);
}

std::string_view FindFault(const Decoded& d, int band) {
  for (double reference : {d.Reference1Hz, d.Reference2Hz})
    if (!Between(reference, kReferenceLowHz, kReferenceHighHz)) return "reference out of range";
  for (const Loop* loop : {&d.A, &d.B, &d.C, &d.D})
    if (!loop->WellFormed) return "malformed latch word";
  for (const Loop* loop : {&d.A, &d.C})
    if (!Between(loop->Hz, kSourceLoopLowHz, kSourceLoopHighHz)) return "loop A or C out of range";
  for (const Loop* loop : {&d.B, &d.D})
    if (!Between(loop->Hz, kFixedLoopLowHz, kFixedLoopHighHz)) return "loop B or D out of range";
  // intentional: in the direct band the gain bit of loop D follows loop B's frequency
  const double gainD = band == kHeterodyne ? d.D.Hz : d.B.Hz;
  if (!GainFits(d.A.HighGain, d.A.Hz, kSourceGainHz) ||
      !GainFits(d.B.HighGain, d.B.Hz, kFixedGainHz) ||
      !GainFits(d.C.HighGain, d.C.Hz, kSourceGainHz) ||
      !GainFits(d.D.HighGain, gainD, kFixedGainHz))
    return "wrong gain bit";
  if (band != kHeterodyne && (!Parked(d.B, d.Reference1Hz) || !Parked(d.D, d.Reference2Hz)))
    return "loop B or D not parked";
  if (!BandFits(band, d.SourceHz)) return "wrong band";
  if (std::abs(d.LoHz - d.SourceHz - kIfHz) > kIfToleranceHz)
    return "local oscillator not 950 kHz above the source";
  return {};
}

}  // namespace

Decoded DecodeRecord(const std::uint8_t* record22) {
  Decoded d;
  d.Reference1Hz = ReferenceHz(record22);
  d.Reference2Hz = ReferenceHz(record22 + 4);
  d.A = DecodeLatch(record22 + 8, d.Reference1Hz);
  d.B = DecodeLatch(record22 + 11, d.Reference1Hz);
  d.C = DecodeLatch(record22 + 15, d.Reference2Hz);
  d.D = DecodeLatch(record22 + 18, d.Reference2Hz);
  d.LevelCode = record22[14] & 0x1F;
  d.ReceiverCode = record22[21] & 0x1F;
  const int band = record22[14] & 0xE0;
  switch (band) {
    case kHeterodyne:
      d.SourceHz = d.B.Hz - d.A.Hz;
      d.LoHz = d.D.Hz - d.C.Hz;
      break;
    case kDoubled:
      d.SourceHz = d.A.Hz / 2;
      d.LoHz = d.C.Hz / 2;
      break;
    default:
      d.SourceHz = d.A.Hz;
      d.LoHz = d.C.Hz;
      break;
  }
  d.Fault = (record22[21] & 0xE0) != band ? "band bits differ" : FindFault(d, band);
  d.Locked = d.Fault.empty();
  if (!d.Locked) d.SourceHz = d.LoHz = 0;
  return d;
}

}  // namespace qk::sim
