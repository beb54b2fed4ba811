// SPDX-License-Identifier: MIT
// Synthesiser arithmetic. Four loops (A to D) lock to whole multiples of two references, which are
// tuned for each point: the first (loops A, B) generates the output, the second (C, D) the
// receiver's local oscillator 950 kHz above it. All in 64-bit floats and exactly in this order, so
// that the bytes are the same on every machine.
#include "sweep/frequency_plan.h"

#include <algorithm>
#include <cmath>

#include "core/instrument_limits.h"
#include "core/status.h"
#include "link/command_set.h"
#include "link/exchange.h"

namespace qk {

namespace {
constexpr double kReference = 7e7;   // Hz
constexpr double kMultiplier = 280;  // loop multiplier: a quarter MHz per count
constexpr double kDdsClock = 4e8;    // Hz
constexpr double kIf = 950000;       // intermediate frequency, Hz
constexpr double kMixer = 3.7e9;     // fixed leg, Hz
constexpr double kMixerAlternate = 3.6e9;
constexpr double kLowBandCeiling = 3.075e9;
constexpr double kLoOffset = 600000;  // Hz
constexpr double kVcoScale = 2.8e8;   // counts times reference to MHz
constexpr double kPrescaler = 32;
constexpr double kHeterodyneBelow = 8e8;
constexpr double kDirectFrom = 1.6e9;
constexpr double kTwoTo32 = 4294967296.0;
constexpr int kPlanBlock = 125;  // bytes of sweep RAM per write
static_assert(command::kFirstRecordAddress + command::kRecordLength * kMaxPoints <=
                  command::kOffsetRecordAddress,
              "the records of a plan fit in sweep RAM");
// The last block may start at the last record.
static_assert(std::tuple_size_v<FreqTable> >=
              static_cast<std::size_t>(command::kRecordLength * kMaxPoints + 3 + kPlanBlock));

// Counts of the four loops, the two references in Hz, and loop frequencies in MHz.
struct Loops {
  double Na, Nb, Nc, Nd;
  double Ref1, Ref2;
  double FreqB, FreqD;
};

// Below 800 MHz the output is the beat of loops B and A.
Loops HeterodyneLoops(double F) {
  Loops x{};
  const double t = std::min(kMixer - F, kLowBandCeiling);
  const double fC = t - kLoOffset;
  x.Na = std::floor(t * kMultiplier / kReference + 0.5);
  x.Nc = std::floor(kMultiplier * fC / kReference + 0.5);
  x.Nb = std::floor((t + F) * kMultiplier / kReference + 0.5);
  const double fD = fC + F + kIf;
  x.Nd = std::floor(kMultiplier * fD / kReference + 0.5);
  x.Ref1 = kMultiplier * F / (x.Nb - x.Na);
  x.Ref2 = kMultiplier * (F + kIf) / (x.Nd - x.Nc);
  x.FreqB = x.Nb * x.Ref1 / kVcoScale;
  x.FreqD = x.Nd * x.Ref2 / kVcoScale;
  return x;
}

// Above it loop A is the source (at twice the output frequency below 1.6 GHz) and loop C the local
// oscillator; B and D are parked near a fixed frequency that avoids the mixing products.
Loops DirectLoops(double F) {
  Loops x{};
  const bool doubled = F < kDirectFrom;
  const double fV = doubled ? 2 * F : F;
  const double ifV = doubled ? 2 * kIf : kIf;
  const double fFix = std::abs(kMixer - 2 * F - ifV) < 50000 ? kMixerAlternate : kMixer;
  x.Na = std::floor(fV * kMultiplier / kReference + 0.5);
  x.Nc = std::floor(kMultiplier * (fV + ifV) / kReference + 0.5);
  x.Ref1 = kMultiplier * fV / x.Na;
  x.Ref2 = kMultiplier * (fV + ifV) / x.Nc;
  x.Nb = std::floor(fFix * kMultiplier / x.Ref1);  // intentional: rounded down, not to the nearest
  x.Nd = std::floor(kMultiplier * fFix / x.Ref2);
  x.FreqB = x.Nb * x.Ref1 / kVcoScale;
  x.FreqD = x.FreqB;  // intentional: the gain of loop D follows loop B in this band
  return x;
}

// A byte of a split word. The value 256, which rounding of a last byte can give, is sent as 255.
// Intentional: there is no carry.
std::uint8_t ByteOf(double value) {
  if (!(value < 255)) return 255;
  return value > 0 ? static_cast<std::uint8_t>(value) : std::uint8_t{0};
}

// Three bytes of a loop's latch: bit 21 high gain, bits 8 to 20 the B counter, 2 to 7 the A
// counter, 1 and 0 the latch address 01.
void PutLatch(std::uint8_t* out, double count, bool highGain) {
  const double b = std::floor(count / kPrescaler);
  const double a = count - kPrescaler * b;
  const double word = (highGain ? 2097152 : 0) + b * 256 + a * 4 + 1;
  const double top = std::floor(word / 65536);
  double rest = word - top * 65536;
  const double middle = std::floor(rest / 256);
  rest = rest - middle * 256;
  out[0] = ByteOf(top);
  out[1] = ByteOf(middle);
  out[2] = ByteOf(std::floor(rest + 0.5));
}

// Four bytes of a tuning word for a reference in Hz.
void PutTuningWord(std::uint8_t* out, double reference) {
  double rest = kTwoTo32 * reference / kDdsClock;
  double scale = 16777216;
  for (int i = 0; i < 3; ++i) {
    const double digit = std::floor(rest / scale);
    out[i] = ByteOf(digit);
    rest = rest - digit * scale;
    scale = scale / 256;
  }
  out[3] = ByteOf(std::floor(rest + 0.5));
}

int BandBits(double F) {
  if (F < kHeterodyneBelow) return 0;
  return F < kDirectFrom ? 96 : 32;
}

// The code whose table value in a column is nearest to target; fallback if none is within the
// square root of 1000.
int NearestCode(const LevelTables::Table& table, std::size_t column, int target, int fallback) {
  int best = 1000;
  int code = fallback;
  for (std::size_t c = 0; c < table.size(); ++c) {
    const int distance = table[c][column] - target;
    if (distance * distance < best) {
      best = distance * distance;
      code = static_cast<int>(c);
    }
  }
  return code;
}
}  // namespace

LevelCodes LookupLevelCodes(const Session& session, double F) {
  const LevelTables& levels = session.Levels;
  const double last = static_cast<double>(levels.Port1LevelTable[0].size() - 1);
  const double place = std::floor((F - levels.LevelTableStart) / levels.LevelTableStep);
  const auto column = static_cast<std::size_t>(place > 0 ? std::min(place, last) : 0);
  return {NearestCode(levels.Port1LevelTable, column, session.Plan.Port1Level, 27),
          NearestCode(levels.Port2LevelTable, column, session.Plan.Port2LevelTarget, 31)};
}

void BuildPointRecord(Session& session, double F, int i) {
  const LevelCodes codes = LookupLevelCodes(session, F);
  const int band = BandBits(F);
  const Loops x = F < kHeterodyneBelow ? HeterodyneLoops(F) : DirectLoops(F);
  const double freqA = x.Na * x.Ref1 / kVcoScale;
  const double freqC = x.Nc * x.Ref2 / kVcoScale;
  std::uint8_t* out =
      session.FreqTable.data() + static_cast<std::size_t>(command::kRecordLength * i + 3);
  PutTuningWord(out, x.Ref1);
  PutTuningWord(out + 4, x.Ref2);
  PutLatch(out + 8, x.Na, freqA > 3100);
  PutLatch(out + 11, x.Nb, x.FreqB > 3350);
  out[14] = static_cast<std::uint8_t>(codes.Code1 + band);
  PutLatch(out + 15, x.Nc, freqC > 3100);
  PutLatch(out + 18, x.Nd, x.FreqD > 3350);
  out[21] = static_cast<std::uint8_t>(codes.Code2 + band);
}

bool LoadFreqSweep(Rig& rig, const Progress& progress) {
  constexpr const char* kTitle = "Load Freq Sweep";
  const SweepPlan& plan = rig.session.Plan;
  const int points = plan.NumPoints;
  for (int i = 0; i < points; ++i) BuildPointRecord(rig.session, plan.Frequency(i), i);
  Bytes count = command::WriteSweepRam(2, 0);
  count.push_back(static_cast<std::uint8_t>(command::HighByte(points)));
  count.push_back(static_cast<std::uint8_t>(command::LowByte(points)));
  InstrumentHolds& holds = rig.link.Holds();
  holds.Grid.Unset();
  if (!Send(rig, kTitle, count)) return false;
  ReportProgress(progress, 0);

  const int blocks = (points - 1) * command::kRecordLength / kPlanBlock;
  for (int b = 0; b <= blocks; ++b) {
    const int offset = kPlanBlock * b;
    rig.link.SendCommand(command::WriteSweepRam(kPlanBlock, command::kFirstRecordAddress + offset));
    // The end of the last block contains whatever is in the table.
    rig.link.SendCommand({rig.session.FreqTable.data() + offset + 3, kPlanBlock});
    if (!InstrumentAnswers(rig, kTitle)) return false;
    ReportProgress(progress, 100 * b / std::max(blocks, 1));
  }
  holds.Grid.Set(WantedGrid(plan));
  holds.FirstHz.Set(plan.StartFreq);
  holds.SetLevel(plan.Port1Level);
  rig.session.Flags.SweepLoaded = true;
  ShowCalStatus(rig.session, rig.host.windows);
  return true;
}

void SendPointRecord(Rig& rig, int address) {
  rig.link.SendCommand(command::WriteSweepRam(command::kRecordLength, address));
  for (std::size_t j = 0; j < command::kRecordLength; ++j)
    rig.link.SendByte(rig.session.FreqTable[3 + j]);
}

bool SendFirstPoint(Rig& rig, const Complaint& complaint, double F) {
  BuildPointRecord(rig.session, F, 0);
  if (!InstrumentAnswers(rig, complaint)) return false;
  SendPointRecord(rig, command::kFirstRecordAddress);
  InstrumentHolds& holds = rig.link.Holds();
  holds.FirstHz.Set(F);
  holds.LendPoint(0, rig.session.Plan.Port1Level);
  return true;
}

HeldGrid WantedGrid(const SweepPlan& plan) {
  return {plan.StartFreq, plan.StepFreq, plan.NumPoints, plan.Port2LevelTarget};
}

}  // namespace qk
