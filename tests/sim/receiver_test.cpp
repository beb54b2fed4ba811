// SPDX-License-Identifier: MIT
// The analog world as the wire shows it: error terms that a calibration can find, levels, noise,
// offsets, temperature and overload.
#include "sim/receiver.h"

#include "sim/front_end.h"
#include "sim/source_levels.h"
#include "sim/talker.h"

namespace qk::sim::test {
namespace {

using C = std::complex<double>;

const std::vector<double> kPlan = {3e6, 2e7, 3.3e8, 7.9e8, 9.5e8, 1.05e9, 1.7e9, 2.4e9, 3.08e9};

double Db(double x) {
  return 20 * std::log10(x);
}

// A talker with the plan loaded, ideal averaging and known offsets.
struct Measuring : Talker {
  explicit Measuring(InstrumentOptions options = Quiet()) : Talker(options) {
    LoadPlan(kPlan);
    SetAverages(255);
    MeasureOffsets();
  }
  std::vector<RawPoint> With(const std::string& port1, const std::string& port2) {
    Bench("port1 " + port1);
    Bench("port2 " + port2);
    return SweepAll();
  }
  std::vector<RawPoint> With(const std::string& between) {
    Bench(between);
    return SweepAll();
  }
};

// Textbook solution of three known standards: M = ED + ERT G / (1 - ES G).
struct OnePort {
  C ED, ES, ERT;
};
OnePort Solve(C load, C shorted, C open, C idealOpen) {
  const C ed = load, s = shorted - ed, o = open - ed;
  // s = -R / (1 + ES), o = R G / (1 - ES G)
  const C es = (o + s * idealOpen) / (idealOpen * (o - s));
  return {ed, es, -s * (1.0 + es)};
}
C Corrected(const OnePort& t, C measured) {
  const C x = measured - t.ED;
  return x / (t.ERT + t.ES * x);
}

TEST(Receiver, OpenShortAndLoadSolveToTheTermsOfEachPort) {
  Measuring m;
  const auto load = m.With("load", "load"), shorted = m.With("short", "short"),
             open = m.With("open", "open");
  for (std::size_t i = 0; i < kPlan.size(); ++i) {
    const FrontEndTerms want = FrontEndAt(kPlan[i]);
    const C ideal = KitOpen(kPlan[i]);
    const OnePort one = Solve(load[i].S11, shorted[i].S11, open[i].S11, ideal);
    EXPECT_LT(std::abs(one.ED - want.Forward.Directivity), 1e-4);
    EXPECT_LT(std::abs(one.ES - want.Forward.SourceMatch), 1e-4);
    EXPECT_LT(std::abs(one.ERT - want.Forward.ReflectionTracking), 1e-4);
    const OnePort two = Solve(load[i].S22, shorted[i].S22, open[i].S22, ideal);
    EXPECT_LT(std::abs(two.ED - want.Reverse.Directivity), 1e-4);
    EXPECT_LT(std::abs(two.ES - want.Reverse.SourceMatch), 1e-4);
    EXPECT_LT(std::abs(two.ERT - want.Reverse.ReflectionTracking), 1e-4);
  }
}

struct Side {
  OnePort One;
  C EX, EL, ETT;
};

Side Complete(const OnePort& one, C isolation, C throughReflection, C throughTransmission) {
  const C el = Corrected(one, throughReflection);
  return {one, isolation, el, (throughTransmission - isolation) * (1.0 - one.ES * el)};
}

// Full two-port correction as in the textbook, raw ratios in, S-parameters out.
TwoPort Correct(const Side& f, const Side& r, const RawPoint& raw) {
  const C a = (raw.S11 - f.One.ED) / f.One.ERT, b = (raw.S21 - f.EX) / f.ETT;
  const C c = (raw.S12 - r.EX) / r.ETT, d = (raw.S22 - r.One.ED) / r.One.ERT;
  const C w = (1.0 + a * f.One.ES) * (1.0 + d * r.One.ES) - b * c * f.EL * r.EL;
  return {(a * (1.0 + d * r.One.ES) - f.EL * b * c) / w, b * (1.0 + d * (r.One.ES - f.EL)) / w,
          c * (1.0 + a * (f.One.ES - r.EL)) / w, (d * (1.0 + a * f.One.ES) - r.EL * b * c) / w};
}

void ExpectCalibrationFindsTheTruth(Measuring& m, double tolerance) {
  const auto load = m.With("load", "load"), shorted = m.With("short", "short"),
             open = m.With("open", "open"), through = m.With("through");
  for (const char* device : {"filter", "attenuator 10", "line 100", "through"}) {
    const auto raw = m.With(device);
    for (std::size_t i = 0; i < kPlan.size(); ++i) {
      const C ideal = KitOpen(kPlan[i]);
      const Side f = Complete(Solve(load[i].S11, shorted[i].S11, open[i].S11, ideal), load[i].S21,
                              through[i].S11, through[i].S21);
      const Side r = Complete(Solve(load[i].S22, shorted[i].S22, open[i].S22, ideal), load[i].S12,
                              through[i].S22, through[i].S12);
      const TwoPort got = Correct(f, r, raw[i]);
      const auto want = m.Box.Truth(kPlan[i]);
      EXPECT_LT(std::abs(got.S11 - want[0]), tolerance) << device << " " << kPlan[i];
      EXPECT_LT(std::abs(got.S21 - want[1]), tolerance) << device << " " << kPlan[i];
      EXPECT_LT(std::abs(got.S12 - want[2]), tolerance) << device << " " << kPlan[i];
      EXPECT_LT(std::abs(got.S22 - want[3]), tolerance) << device << " " << kPlan[i];
    }
  }
}

TEST(Receiver, AFullTwoPortCalibrationFindsTheTruthOfEveryDevice) {
  Measuring m;
  ExpectCalibrationFindsTheTruth(m, 1e-5);
}

TEST(Receiver, AFullTwoPortCalibrationFindsTheTruthThroughNoise) {
  Measuring m{InstrumentOptions{}};
  ExpectCalibrationFindsTheTruth(m, 5e-4);
}

TEST(Receiver, TermsAreOfAPlausibleSizeAtEveryFrequency) {
  for (double f = 3e6; f <= 3.08e9; f += 2.7e6) {
    const FrontEndTerms t = FrontEndAt(f);
    for (const SideTerms* side : {&t.Forward, &t.Reverse}) {
      EXPECT_LT(Db(std::abs(side->Directivity)), -25);
      EXPECT_LT(Db(std::abs(side->SourceMatch)), -15);
      EXPECT_LT(Db(std::abs(side->LoadMatch)), -15);
      EXPECT_LT(Db(std::abs(side->Isolation)), -80);
      EXPECT_LT(std::abs(Db(std::abs(side->ReflectionTracking))), 6);
      EXPECT_LT(std::abs(Db(std::abs(side->TransmissionTracking))), 6);
    }
  }
}

TEST(Receiver, TermsRunSmoothlyOverFrequency) {
  for (double f = 3e6; f < 3.08e9; f += 3e6) {
    const SideTerms a = FrontEndAt(f).Forward, b = FrontEndAt(f + 3e6).Forward,
                    c = FrontEndAt(f + 6e6).Forward;
    EXPECT_LT(std::abs(a.SourceMatch - 2.0 * b.SourceMatch + c.SourceMatch), 1e-4);
    EXPECT_LT(
        std::abs(a.TransmissionTracking - 2.0 * b.TransmissionTracking + c.TransmissionTracking),
        1e-3);
  }
}

// What the hardware diagnostics expect of a sound instrument.
struct Diagnosing : Talker {
  Diagnosing() {
    LoadPlan({2e7});
    MeasureOffsets();
    SetAverages(128);
  }
  double Level(double f, int code, const char* i, const char* q) {
    WriteRecord(2, RecordFor(f, code));
    Say(Bytes{'Z', 0});
    EXPECT_EQ(Say("Y9"), Bytes{1});
    const double real = Volts(Say(i).data(), 128) - OffsetQ();
    const double imaginary = Volts(Say(q).data(), 128) - OffsetQ();
    return Db(std::hypot(real, imaginary));
  }
  // The code that comes nearest to a level in dBm.
  static int CodeFor(double dbm, double f) {
    int best = 0;
    for (int code = 1; code < 32; ++code)
      if (std::abs(SourceLevelDbm(code, f) - dbm) < std::abs(SourceLevelDbm(best, f) - dbm))
        best = code;
    return best;
  }
};

TEST(Receiver, AThroughAtZeroDbmGivesTheLevelsThatTheDiagnosticsExpect) {
  Diagnosing d;
  d.Bench("through");
  const std::vector<std::pair<double, double>> expected = {{3e6, 0}, {1e9, -2.3}, {3e9, -6.5}};
  for (const auto& [f, db] : expected) {
    const int code = Diagnosing::CodeFor(0, f);
    EXPECT_NEAR(d.Level(f, code, "Y2", "Y3"), db, 1) << f;
    EXPECT_NEAR(d.Level(f, code, "Y0", "Y1"), db, 8) << f;
  }
}

TEST(Receiver, ThreeDecibelsOfLevelAreThreeDecibelsAtTheReceiver) {
  Diagnosing d;
  d.Bench("through");
  double before = d.Level(1e9, Diagnosing::CodeFor(-20, 1e9), "Y2", "Y3");
  for (int dbm = -17; dbm <= -2; dbm += 3) {
    const double now = d.Level(1e9, Diagnosing::CodeFor(dbm, 1e9), "Y2", "Y3");
    EXPECT_NEAR(now - before, 3, 0.2) << dbm;
    before = now;
  }
}

TEST(Receiver, CrosstalkOfOpenPortsIsAtMostMinus75Decibels) {
  Diagnosing d;
  d.Bench("port1 nothing");
  d.Bench("port2 nothing");
  for (double f : {3e6, 1e9, 3e9})
    EXPECT_LE(d.Level(f, Diagnosing::CodeFor(0, f), "Y2", "Y3"), -75) << f;
}

TEST(Receiver, AWeakDriveOfTheMixersLosesSignal) {
  Measuring m;
  m.Bench("through");
  const double normal = std::abs(m.SweepAll()[1].Reference);
  m.WriteRecord(2 + 22, RecordFor(kPlan[1], 27, 0));
  EXPECT_LT(Db(std::abs(m.SweepAll()[1].Reference) / normal), -5);
}

TEST(Receiver, NoiseHasTheSpreadOfItsAverages) {
  // Few readings would show the steps of the converter more than its noise.
  for (int averages : {16, 64}) {
    Talker talker;
    talker.LoadPlan({1e9});
    talker.Bench("port1 load");
    talker.SetAverages(averages);
    double sum = 0, squares = 0;
    constexpr int kSweeps = 4000;
    for (int i = 0; i < kSweeps; ++i) {
      const Bytes b = talker.Say("S");
      const double counts = (Volts(&b[3], averages) + 2.5) / 4.999924 * 65535;
      sum += counts;
      squares += counts * counts;
    }
    const double mean = sum / kSweeps;
    const double spread = std::sqrt(squares / kSweeps - mean * mean);
    // 0.3 counts a conversion, and the rounding of the sum.
    const double expected = std::sqrt(0.09 / averages + 1 / 12.0 / averages / averages);
    EXPECT_NEAR(spread / expected, 1, 0.06) << averages;
  }
}

TEST(Receiver, TheSameSeedGivesTheSameBytesAndAnotherOneOthers) {
  const auto sweep = [](std::uint64_t seed) {
    InstrumentOptions options;
    options.Seed = seed;
    Talker talker(options);
    talker.LoadPlan(kPlan);
    return talker.Say("A");
  };
  EXPECT_EQ(sweep(5), sweep(5));
  EXPECT_NE(sweep(5), sweep(6));
  Talker talker;
  talker.LoadPlan(kPlan);
  talker.Bench("seed 5");
  const Bytes first = talker.Say("A");
  talker.Bench("seed 5");
  EXPECT_EQ(talker.Say("A"), first);
}

TEST(Receiver, WithoutNoiseTwoSweepsAreEqual) {
  Talker talker(Quiet());
  talker.LoadPlan(kPlan);
  EXPECT_EQ(talker.Say("A"), talker.Say("A"));
}

TEST(Receiver, OffsetsStayBelow35MillivoltsAndDriftWithTheTemperature) {
  const Receiver receiver(1, false);
  const DcOffsets cold = receiver.OffsetsAt(0), warm = receiver.OffsetsAt(7200);
  for (const DcOffsets& o : {cold, warm}) {
    EXPECT_LT(std::abs(o.Reference), 0.035);
    EXPECT_LT(std::abs(o.Test), 0.035);
  }
  EXPECT_NE(cold.Reference, warm.Reference);
  EXPECT_NE(cold.Test, cold.Reference);
}

TEST(Receiver, WarmsUpFrom25To32DegreesWithTheInjectedTime) {
  Talker talker;
  const auto temperature = [&] {
    const Bytes b = talker.Say("T");
    return ((b[0] * 256 + b[1]) * 5 / 1024.0 - 2.45) / 0.049;
  };
  EXPECT_NEAR(temperature(), 25, 0.1);
  talker.NowUs += 20 * 60 * 1'000'000ll;
  const double later = temperature();
  EXPECT_GT(later, 28);
  EXPECT_LT(later, 31);
  talker.NowUs += 5 * 3600 * 1'000'000ll;
  EXPECT_NEAR(temperature(), 32, 0.1);
}

TEST(Receiver, TheRatiosDoNotMoveWithTheTemperature) {
  Measuring m;
  m.Bench("offsets 0 0");
  m.MeasureOffsets();
  m.Bench("temperature 25");
  const auto cold = m.With("through");
  m.Bench("temperature 35");
  const auto warm = m.SweepAll();
  for (std::size_t i = 0; i < kPlan.size(); ++i) {
    EXPECT_LT(std::abs(cold[i].S21 - warm[i].S21), 1e-4);
    EXPECT_NEAR(Db(std::abs(warm[i].Reference / cold[i].Reference)), -0.5, 0.01);
  }
}

TEST(Receiver, AnAmplifierOverloadsTheReceiverAndEveryReadingIsClipped) {
  Measuring m;
  m.Bench("amplifier gain 25 p1db 30");
  const Bytes b = m.Say("S");
  double largest = 0;
  for (std::size_t at = 0; at < b.size(); at += 12) {
    const double i = Volts(&b[at + 3], 255) - m.OffsetQ(), q = Volts(&b[at + 9], 255) - m.OffsetQ();
    largest = std::max(largest, std::hypot(i, q));
    for (std::size_t k = at; k < at + 12; k += 3) {
      EXPECT_GE(Volts(&b[k], 255), -2.5);
      EXPECT_LE(Volts(&b[k], 255), 2.499925);
    }
  }
  EXPECT_GE(largest, 2.49);
}

TEST(Receiver, AnAmplifierCompressesWithTheLevelCode) {
  Measuring m;
  m.Bench("amplifier gain 10 p1db 5");
  const auto gain = [&](int code) {
    m.WriteRecord(2 + 22, RecordFor(kPlan[1], code));
    return Db(std::abs(m.SweepAll()[1].S21));
  };
  const double small = gain(7), full = gain(27);
  EXPECT_GT(small - full, 1);
  EXPECT_LT(small - full, 10);
}

TEST(Receiver, SynthesisersOutOfLockGiveNoise) {
  Measuring m;
  m.Bench("through");
  Record broken = RecordFor(kPlan[1]);
  broken[9] ^= 0x40;
  m.WriteRecord(2 + 22, broken);
  const auto first = m.SweepAll(), second = m.SweepAll();
  EXPECT_LT(std::abs(first[1].Reference), 0.05);
  EXPECT_GT(std::abs(first[1].S21 - second[1].S21), 1e-3);
  EXPECT_LT(std::abs(first[0].S21 - second[0].S21), 1e-6);
}

TEST(Receiver, AnOffsetPointOutOfLockSpoilsTheOffsets) {
  Talker talker;
  talker.Bench("offsets 0 0");
  talker.LoadPlan({1e9});
  talker.MeasureOffsets();
  EXPECT_LT(std::abs(talker.OffsetI()), 1e-4);
  talker.WriteRecord(32738, Record{});
  double largest = 0;
  for (int i = 0; i < 10; ++i) {
    talker.MeasureOffsets();
    largest = std::max(largest, std::abs(talker.OffsetI()));
  }
  EXPECT_GT(largest, 1e-3);
}

}  // namespace
}  // namespace qk::sim::test
