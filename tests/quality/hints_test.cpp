// SPDX-License-Identifier: MIT
// Hints come on their condition, after two sweeps in a row, and not on what looks alike.
#include "quality/hints.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

namespace qk {
namespace {

constexpr std::array<Parameter, 4> kFour{Parameter::S11, Parameter::S21, Parameter::S12,
                                         Parameter::S22};
constexpr std::array<Parameter, 1> kReflection{Parameter::S11};

// A session of 201 points from 3 MHz to 3003 MHz whose sweeps are made by a function of the point.
struct Hints : testing::Test {
  std::unique_ptr<Session> session = MakeSession();
  HintWatch watch;
  std::mt19937 random{5};
  double noise = 1e-4;
  std::span<const Parameter> delivered = kFour;
  std::array<int, 2> overloads{};
  bool standard = false;
  LocalTime now{2026, 3, 9, 12, 5, 0};
  std::int64_t utc = 1773065130;

  struct Point {
    Complex S11, S21, S12, S22;
  };
  using Device = std::function<Point(int k)>;

  Hints() {
    session->Plan.StartFreq = 3e6;
    session->Plan.StepFreq = 15e6;
    session->Plan.NumPoints = 201;
    session->Plan.SavedPlan = session->Plan;
  }

  static Complex Polar(double size, double degrees) {
    return {size * std::cos(degrees * M_PI / 180), size * std::sin(degrees * M_PI / 180)};
  }
  // A matched attenuator that turns the phase by 10 degrees a point.
  static Point Attenuator(int k, double size = 0.5) {
    const Complex t = Polar(size, -10.0 * k);
    return {Polar(0.02, -20.0 * k), t, t, Polar(0.02, -15.0 * k)};
  }

  void Sweep(const Device& device, int times = 1) {
    std::normal_distribution<double> part(0, 1 / std::sqrt(2.0));
    const auto noisy = [&](Complex z) {
      return Complex{z.re + noise * part(random), z.im + noise * part(random)};
    };
    for (int n = 0; n < times; ++n) {
      for (int k = 0; k < session->Plan.NumPoints; ++k) {
        const Point p = device(k);
        session->Data.S11.Set(k, noisy(p.S11));
        session->Data.S21.Set(k, noisy(p.S21));
        session->Data.S12.Set(k, noisy(p.S12));
        session->Data.S22.Set(k, noisy(p.S22));
      }
      watch.SweepEnded({*session, delivered, overloads, now, utc, standard});
    }
  }
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Hint& hint : watch.Active()) texts.push_back(hint.Text);
    return texts;
  }
  using List = std::vector<std::string>;
};

TEST_F(Hints, AreNoneForAnAttenuatorAThroughAnOpenAFilterAndAnAmplifier) {
  Sweep([](int k) { return Attenuator(k); }, 20);
  EXPECT_EQ(Texts(), List{});
  watch.Forget();
  Sweep([](int k) { return Attenuator(k, 1.0); }, 20);
  EXPECT_EQ(Texts(), List{});
  watch.Forget();
  const Device filter = [](int k) {
    const double t = k > 90 && k < 110 ? 0.98 : 1e-5;
    const Complex through = Polar(t, -30.0 * k);
    // Lossless: the phases of both reflections add up to twice that of the transmission and 180.
    const double back = std::sqrt(1 - t * t);
    return Point{Polar(back, -12.0 * k), through, through, Polar(back, -48.0 * k + 180)};
  };
  Sweep(filter, 20);
  EXPECT_EQ(Texts(), List{});
  watch.Forget();
  const Device amplifier = [](int k) {
    return Point{Polar(0.3, -9.0 * k), Polar(3.1, -20.0 * k), Polar(0.001, 5.0 * k),
                 Polar(0.4, -11.0 * k)};
  };
  Sweep(amplifier, 20);
  EXPECT_EQ(Texts(), List{});
  watch.Forget();
  delivered = kReflection;
  Sweep([](int k) { return Point{Polar(1.0, -2.0 * k), {}, {}, {}}; }, 20);
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, ComeAtTheSecondSweepAndGoAtTheSecondGoodOne) {
  const Device strange = [](int k) {
    Point p = Attenuator(k);
    if (k >= 50 && k < 60) p.S11 = Polar(1.05 + (k == 56 ? 0.01 : 0), 30);
    return p;
  };
  delivered = std::span(kFour).first(2);
  Sweep(strange);
  EXPECT_EQ(Texts(), List{});
  Sweep(strange);
  EXPECT_EQ(Texts(), List{"S11 above 1 at 843 MHz: connection or calibration"});
  Sweep([](int k) { return Attenuator(k); });
  EXPECT_EQ(Texts().size(), 1u);
  Sweep([](int k) { return Attenuator(k); });
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, OfAReflectionAboveOneNeedMoreThanTwoPercentOfThePoints) {
  delivered = kReflection;
  const auto with = [this](int count) {
    watch.Forget();
    Sweep([count](int k) { return Point{Polar(k < count ? 1.03 : 0.9, 3.0 * k), {}, {}, {}}; }, 3);
    return Texts().size();
  };
  EXPECT_EQ(with(4), 0u);
  EXPECT_EQ(with(5), 1u);
}

TEST_F(Hints, OfAPassiveDeviceThatGivesPowerLookAtAllFourParameters) {
  noise = 0;
  // No parameter is above 1, but both waves together are more than went in.
  Sweep([](int) { return Point{{0.8, 0}, {0.7, 0}, {0.7, 0}, {0.8, 0}}; }, 2);
  EXPECT_EQ(Texts(), List{"Passive device gives out power at 3 MHz: calibration or cable"});
  watch.Forget();
  // Of the same sizes, and lossless: S22 turned by 180 degrees.
  Sweep([](int) { return Point{{0.8, 0}, {0.6, 0}, {0.6, 0}, {-0.8, 0}}; }, 4);
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, OfReciprocityAllowForNoise) {
  const Device skewed = [](int k) {
    Point p = Attenuator(k, 0.5);
    if (k % 4 == 0) p.S12 = 0.86 * p.S12;
    return p;
  };
  Sweep(skewed, 6);
  ASSERT_EQ(Texts().size(), 1u);
  EXPECT_TRUE(Texts()[0].starts_with("S21 and S12 differ by 1.3 dB at ")) << Texts()[0];
  watch.Forget();
  noise = 0.02;  // six times this is more than the difference
  Sweep(skewed, 12);
  EXPECT_EQ(Texts(), List{});
}

// Next to no transmission: what differs is leakage and noise, and neither is the device's. 200 runs
// of 20 sweeps for each, with the noise of many or few averages, unequal in the two directions, in
// the steps of the converter.
TEST_F(Hints, OfReciprocityDoNotComeWithoutATransmission) {
  struct Neighbour {
    const char* Name;
    double Reflection, Transmission;
  };
  for (const Neighbour& kind : {Neighbour{"two loads", 0.01, 0}, Neighbour{"two shorts", 1, 0},
                                Neighbour{"80 dB", 0.02, 1e-4}, Neighbour{"60 dB", 0.02, 1e-3}}) {
    int alarms = 0;
    for (int run = 0; run < 200; ++run) {
      watch.Forget();
      session->Plan.NumPoints =
          std::array<std::int16_t, 3>{51, 101, 201}[static_cast<std::size_t>(run % 3)];
      const double s = std::array{1e-6, 1e-5, 5e-5, 3e-4}[static_cast<std::size_t>(run % 4)];
      constexpr double kConverter = 4e-6;
      std::normal_distribution<double> part(0, s / std::sqrt(2.0));
      const auto seen = [&](Complex leak, double noiseOf) {
        const auto stepped = [](double x) { return kConverter * std::round(x / kConverter); };
        return Complex{stepped(leak.re + noiseOf * part(random)),
                       stepped(leak.im + noiseOf * part(random))};
      };
      noise = 0;
      bool came = false;
      for (int n = 0; n < 20; ++n) {
        Sweep([&](int k) {
          const Complex t = Polar(kind.Transmission, -10.0 * k);
          const Complex r = Polar(kind.Reflection, -20.0 * k);
          return Point{r, seen(t + Polar(4e-5, 7.0 * k), 1), seen(t + Polar(3e-5, -9.0 * k), 2), r};
        });
        for (const std::string& text : Texts())
          came = came || text.starts_with("S21 and S12 differ");
      }
      alarms += came ? 1 : 0;
    }
    EXPECT_LE(alarms, 3) << kind.Name;
  }
}

TEST_F(Hints, OfReciprocityComeForAWeakTransmissionToo) {
  for (const double size : {0.1, 0.01}) {
    watch.Forget();
    noise = 2e-5;
    Sweep(
        [size](int k) {
          Point p = Attenuator(k, size);
          p.S12 = 0.86 * p.S12;
          return p;
        },
        6);
    ASSERT_EQ(Texts().size(), 1u) << size;
    EXPECT_TRUE(Texts()[0].starts_with("S21 and S12 differ by 1.")) << Texts()[0];
  }
}

// What the calibration has found of leakage does not come from the device.
TEST_F(Hints, OfReciprocityAllowForTheLeakageOfTheTestSet) {
  const Device device = [](int k) {
    Point p = Attenuator(k, 1e-3);
    p.S12 = Polar(1.3e-3, -10.0 * k);
    return p;
  };
  noise = 1e-5;
  Sweep(device, 6);
  EXPECT_EQ(Texts().size(), 1u);
  for (int k = 0; k < 201; ++k) session->Terms.Reverse.EX.Set(k, {0, 1e-3});
  Sweep(device, 2);
  EXPECT_EQ(Texts(), List{});
}

// 0.36 degrees a point are a line of 10 mm with an end that reflects.
TEST_F(Hints, OfNothingConnectedDoNotComeForAShortOrForTheEndOfALine) {
  for (const double start : {0.0, 180.0})
    for (const double turn : {-0.36, -3.0, -20.0}) {
      watch.Forget();
      Sweep(
          [&](int k) {
            return Point{Polar(0.99, start + turn * k), {1e-5, 0}, {1e-5, 0}, Polar(0.99, 0)};
          },
          3);
      EXPECT_EQ(Texts(), List{}) << start << " " << turn;
    }
  watch.Forget();
  Sweep([](int) { return Point{{-0.99, 0}, {1e-5, 0}, {1e-5, 0}, {0.99, 0}}; }, 3);
  EXPECT_EQ(Texts(), List{}) << "a short";
}

TEST_F(Hints, OfNothingConnectedNeedReflectionAndIsolationEverywhere) {
  const Device nothing = [](int k) {
    return Point{Polar(0.98, -0.05 * k), {1e-4, 0}, {1e-4, 0}, Polar(0.98, -3.0 * k)};
  };
  Sweep(nothing, 2);
  EXPECT_EQ(Texts(), List{"Nothing seems connected"});
  watch.Forget();
  Sweep(
      [&](int k) {
        Point p = nothing(k);
        if (k == 100) p.S21 = {0.01, 0};
        return p;
      },
      4);
  EXPECT_EQ(Texts(), List{});
  watch.Forget();
  Sweep(
      [&](int k) {
        Point p = nothing(k);
        p.S22 = {0.01, 0};  // an open at port 1, a load at port 2
        return p;
      },
      4);
  EXPECT_EQ(Texts(), List{});
  watch.Forget();
  standard = true;  // the kit's open at port 1, whatever is at port 2
  Sweep(nothing, 4);
  EXPECT_EQ(Texts(), List{});
  watch.Forget();
  standard = false;
  delivered = kReflection;  // an open at port 1 alone is a measurement
  Sweep(nothing, 4);
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, OfAnUnsteadyDeviceNameTheTimeOfItsFirstJump) {
  Sweep([](int k) { return Attenuator(k); }, 10);
  now.Minute = 7;
  Sweep([](int k) { return Attenuator(k, 0.53); });
  EXPECT_EQ(Texts(), List{}) << "one step is another device";
  now.Minute = 8;
  Sweep([](int k) { return Attenuator(k, 0.5); });
  EXPECT_EQ(Texts(), List{"Unsteady since 12:07: connector or cable"});
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts(), List{});
}

// The limit is ten times the usual change, which is sqrt(2) times the noise.
TEST_F(Hints, OfAnUnsteadyDeviceNeedTenTimesTheUsualChange) {
  for (const double times : {8.0, 12.0}) {
    watch.Forget();
    Sweep([](int k) { return Attenuator(k); }, 20);
    const double other = 0.5 + times * std::sqrt(2.0) * noise * std::sqrt(2.0);
    for (int n = 0; n < 6; ++n)
      Sweep([&](int k) { return Attenuator(k, n % 2 == 0 ? other : 0.5); });
    EXPECT_EQ(Texts().size(), times > 10 ? 1u : 0u) << times;
  }
}

// 3 % of the larger transmission; one difference in each direction.
TEST_F(Hints, OfReciprocityNeedThreePercent) {
  noise = 1e-5;
  for (const double part : {0.026, 0.034}) {
    watch.Forget();
    Sweep(
        [part](int k) {
          Point p = Attenuator(k);
          p.S12 = (1 - part) * p.S12;
          return p;
        },
        6);
    EXPECT_EQ(Texts().size(), part > 0.03 ? 1u : 0u) << part;
  }
}

TEST_F(Hints, OfAPhaseThatTurnsTooFastLookAtReadablePointsOnly) {
  const Device fast = [](int k) {
    const Complex t = Polar(0.5, -165.0 * k);
    return Point{Polar(0.02, 0), t, t, Polar(0.02, 0)};
  };
  Sweep(fast, 2);
  EXPECT_EQ(Texts(), List{"Phase turns too fast: more points or less span"});
  watch.Forget();
  Sweep(
      [&](int k) {
        Point p = fast(k);
        p.S21 = p.S12 = Polar(0.005, -165.0 * k);
        return p;
      },
      4);
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, OfNoiseLookWhereAMarkerReads) {
  const Device weak = [](int k) {
    Point p = Attenuator(k);
    if (k == 56) p.S21 = p.S12 = {2e-5, 0};
    return p;
  };
  session->Channel(1).Parameter = Parameter::S21;
  session->Display.DisplaySet = DisplaySet::One;
  session->Display.MarkersOn = true;
  Marker& marker = session->Markers.Of(0, 0);
  marker.State = MarkerState::Active;
  marker.Point = 57;
  Sweep(weak, 8);
  EXPECT_EQ(Texts(), List{"Near the noise at 843 MHz: more averages"});
  marker.Point = 58;
  Sweep(weak, 2);
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, OfNoiseLookWithinLowerLimits) {
  session->Channel(1).Parameter = Parameter::S21;
  session->Limits.Enabled = session->Channel(1).LimitsOn = true;
  const Device weak = [](int k) {
    Point p = Attenuator(k);
    if (k == 56) p.S21 = p.S12 = {2e-5, 0};
    return p;
  };
  session->Channel(1).UpperLimit[57] = -60;
  Sweep(weak, 8);
  EXPECT_EQ(Texts(), List{});
  session->Channel(1).LowerLimit[57] = -120;
  Sweep(weak, 2);
  EXPECT_EQ(Texts(), List{"Near the noise at 843 MHz: more averages"});
}

TEST_F(Hints, OfAnOverloadNeedMoreThanOnePercentOfThePoints) {
  overloads = {0, 2};
  Sweep([](int k) { return Attenuator(k); }, 3);
  EXPECT_EQ(Texts(), List{});
  overloads = {0, 3};
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts(), List{"Port 2 overloaded: lower the level or add an attenuator"});
  overloads = {3, 0};
  Sweep([](int k) { return Attenuator(k); });
  EXPECT_EQ(Texts(), List{"Port 1 overloaded: lower the level or add an attenuator"});
}

TEST_F(Hints, OfAnOldOrWarmedCalibrationSayAgeAndTemperatures) {
  const auto good = [](int k) { return Attenuator(k); };
  session->CalMade = {utc - 8 * 3600, 24.1f, "", ""};
  session->Receiver.Temperature = 26.0f;
  Sweep(good, 3);
  EXPECT_EQ(Texts(), List{});
  utc += 3600;
  Sweep(good, 2);
  EXPECT_EQ(Texts(), List{"Calibrated 9 h ago at 24.1 degC, now 26.0: check it"});
  session->CalMade = {utc - 600, 24.1f, "", ""};
  session->Receiver.Temperature = 27.6f;
  Sweep(good, 1);
  EXPECT_EQ(Texts(), List{"Calibrated 10 min ago at 24.1 degC, now 27.6: check it"});
  session->CalMade = {utc - 3 * 86400, std::nullopt, "", ""};
  Sweep(good, 1);
  EXPECT_EQ(Texts(), List{"Calibrated 3 days ago: check it"});
  session->CalMade = {};
  Sweep(good, 2);
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, OfAnInterpolatedCalibrationSayFromAndTo) {
  session->Cal.CalInterpolated = true;
  session->Plan.SavedPlan.NumPoints = 101;
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts(), List{"Calibration interpolated from 101 to 201 points"});
}

TEST_F(Hints, OfAnInterpolatedCalibrationSayWhatDiffers) {
  session->Cal.CalInterpolated = true;
  session->Plan.SavedPlan.StartFreq = 500e6;
  session->Plan.SavedPlan.StopFreq = 1500e6;
  session->Plan.StartFreq = 925.5e6;
  session->Plan.StopFreq = 1075e6;
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts(), List{"Calibration interpolated from 500.0-1500.0 MHz to 925.5-1075.0 MHz"});
  session->Plan.SavedPlan.NumPoints = 101;
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts(), List{"Calibration interpolated from 500.0-1500.0 MHz, 101 points to "
                          "925.5-1075.0 MHz, 201 points"});
}

TEST_F(Hints, OfTheTimeRangeLookAtTheEndOfTheResponse) {
  session->Channel(1).GraphType = GraphType::Td;
  session->Plan.StepFreq = 3e6;
  auto& impulse = session->TdArrays.TdImpulse;
  impulse[30] = 1;
  impulse[2000] = -0.015;
  Sweep([](int k) { return Attenuator(k); }, 3);
  EXPECT_EQ(Texts(), List{});
  impulse[2000] = -0.025;
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts(), List{"Echoes from beyond 333 ns fold back"});
  impulse[30] = 1e-3;  // a load: its noise alone
  impulse[2000] = 4e-4;
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts(), List{});
  impulse[2000] = 6e-4;
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts().size(), 1u);
  session->Channel(1).GraphType = GraphType::LogMag;
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, StandInOrderOfWeightAndCanBeSilenced) {
  session->Cal.CalInterpolated = true;
  overloads = {0, 50};
  Sweep([](int k) { return Attenuator(k); }, 2);
  ASSERT_EQ(watch.Active().size(), 2u);
  EXPECT_EQ(watch.Active()[0].Kind, HintKind::Overload);
  EXPECT_EQ(watch.Active()[1].Kind, HintKind::Interpolated);
  watch.Silence(HintKind::Overload);
  EXPECT_EQ(watch.Active()[0].Kind, HintKind::Interpolated);
  watch.Forget();
  Sweep([](int k) { return Attenuator(k); }, 2);
  EXPECT_EQ(watch.Active().size(), 1u) << "silenced for the session";
  watch.SwitchOn(false);
  EXPECT_TRUE(watch.Active().empty());
  watch.SwitchOn(true);
  watch.Listen();
  EXPECT_EQ(watch.Active().size(), 2u);
}

TEST_F(Hints, ForgetWithAnotherPlan) {
  session->Cal.CalInterpolated = true;
  Sweep([](int k) { return Attenuator(k); }, 2);
  session->Plan.NumPoints = 101;
  Sweep([](int k) { return Attenuator(k); });
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, KnowTheNoiseOfASweep) {
  noise = 0.001;
  Sweep([](int k) { return Attenuator(k); }, 3);
  EXPECT_EQ(watch.Noise(Parameter::S21, 10), 0);
  Sweep([](int k) { return Attenuator(k); }, 37);
  double mean = 0;
  for (int k = 0; k < 201; ++k) mean += std::pow(watch.Noise(Parameter::S21, k), 2) / 201;
  EXPECT_NEAR(std::sqrt(mean), 0.001, 1e-4);
}

TEST_F(Hints, KeepTheNoiseOfASweepWhenTheDeviceChanges) {
  session->Channel(1).Parameter = Parameter::S21;
  session->Display.DisplaySet = DisplaySet::One;
  session->Display.MarkersOn = true;
  Marker& marker = session->Markers.Of(0, 0);
  marker.State = MarkerState::Active;
  marker.Point = 57;
  const auto strong = [](int k) { return Attenuator(k, 0.8); };
  const auto weak = [](int k) { return Attenuator(k, 0.01); };
  const auto rms = [this] {
    double mean = 0;
    for (int k = 0; k < 201; ++k) mean += std::pow(watch.Noise(Parameter::S21, k), 2) / 201;
    return std::sqrt(mean);
  };
  for (const int before : {1, 2, 3, 5, 6, 10, 70}) {
    watch.Forget();
    Sweep(strong, before);
    for (int n = 1; n <= 12; ++n) {
      Sweep(weak);
      EXPECT_EQ(Texts(), List{}) << "sweep " << n << " after " << before;
      EXPECT_LT(rms(), 1.5e-4) << "sweep " << n << " after " << before;
      EXPECT_EQ(watch.NoiseKnown(Parameter::S21), rms() > 0);
    }
    EXPECT_NEAR(rms(), 1e-4, 2e-5) << before;
  }
}

TEST_F(Hints, OfAnUnsteadyDeviceGoWhenTheNoiseHasRisenForGood) {
  const auto rms = [this] {
    double mean = 0;
    for (int k = 0; k < 201; ++k) mean += std::pow(watch.Noise(Parameter::S21, k), 2) / 201;
    return std::sqrt(mean);
  };
  Sweep([](int k) { return Attenuator(k); }, 60);
  noise = 2e-3;  // twenty times as much, as with a smaller signal
  Sweep([](int k) { return Attenuator(k); }, 3);
  EXPECT_EQ(Texts(), List{"Unsteady since 12:05: connector or cable"});
  Sweep([](int k) { return Attenuator(k); }, 9);
  EXPECT_EQ(Texts(), List{}) << "the usual noise by now";
  Sweep([](int k) { return Attenuator(k); }, 40);
  EXPECT_EQ(Texts(), List{});
  EXPECT_NEAR(rms(), 2e-3, 3e-4);
  // A connector that moves now is seen as before.
  for (int n = 1; n <= 30; ++n)
    Sweep([n](int k) { return Attenuator(k, n % 2 == 1 ? 0.44 : 0.5); });
  EXPECT_EQ(Texts().size(), 1u);
}

TEST_F(Hints, OfAnUnsteadyDeviceDoNotComeWithOtherAveragesOrAnotherLevel) {
  session->Averaging.Averages = 255;
  Sweep([](int k) { return Attenuator(k); }, 60);
  session->Averaging.Averages = 1;
  noise = 1.6e-3;
  for (int n = 0; n < 5; ++n) {
    Sweep([](int k) { return Attenuator(k); });
    EXPECT_EQ(Texts(), List{}) << n;
  }
  EXPECT_TRUE(watch.NoiseKnown(Parameter::S21));
  session->Plan.Port1Level = -20;
  noise = 2e-2;
  Sweep([](int k) { return Attenuator(k); });
  EXPECT_FALSE(watch.NoiseKnown(Parameter::S21));
  Sweep([](int k) { return Attenuator(k); }, 4);
  EXPECT_EQ(Texts(), List{});
}

TEST_F(Hints, OfReciprocityGiveABoundWhereTheWeakerOneIsNoise) {
  const Device isolator = [](int k) {
    Point p = Attenuator(k, 0.5);
    if (k % 2 == 0) p.S12 = {0, 0};
    return p;
  };
  Sweep(isolator, 6);
  ASSERT_EQ(Texts().size(), 1u);
  EXPECT_TRUE(Texts()[0].starts_with("S21 and S12 differ by more than ")) << Texts()[0];
  // 0.5 over six times a noise of 1e-4 is 58 dB; at a single point its estimate may be half of
  // that.
  const double bound = std::stod(Texts()[0].substr(32));
  EXPECT_GT(bound, 55) << Texts()[0];
  EXPECT_LT(bound, 75) << Texts()[0];
  watch.Forget();
  noise = 0;
  Sweep(isolator, 6);
  EXPECT_EQ(Texts(), List{}) << "its noise is not known";
}

TEST_F(Hints, OfAnUnsteadyDeviceStayAsLongAsItJumps) {
  Sweep([](int k) { return Attenuator(k); }, 10);
  for (int n = 1; n <= 120; ++n) {
    Sweep([n](int k) { return Attenuator(k, n % 2 == 1 ? 0.45 : 0.5); });
    EXPECT_EQ(Texts().size(), n >= 2 ? 1u : 0u) << n;
    EXPECT_FALSE(watch.NoiseKnown(Parameter::S21)) << n;
  }
  Sweep([](int k) { return Attenuator(k); }, 4);
  EXPECT_EQ(Texts(), List{});
  EXPECT_TRUE(watch.NoiseKnown(Parameter::S21));
}

}  // namespace
}  // namespace qk
