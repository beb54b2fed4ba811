// SPDX-License-Identifier: MIT
// A scripted instrument that streams known samples for the standard sweeps, and the ratios that the
// samples stand for.
#pragma once

#include <complex>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cal/standards.h"
#include "support/link_fixture.h"

namespace qk::test {

using StandardCx = std::complex<double>;

inline constexpr int kStandardPoints = 51;
inline constexpr Complex kUntouched{-7, -7};

// The bytes of a sweep: sample n (from 0) of point k, summed over the averages.
inline Bytes StandardBytes(int bytesPerPoint, int averages, int seed = 0) {
  Bytes bytes;
  for (int k = 0; k < kStandardPoints; ++k)
    for (int n = 0; n < bytesPerPoint / 3; ++n) {
      const int counts = averages * (20000 + (k * 131 + n * 4099 + seed * 977) % 30000);
      for (const int shift : {16, 8, 0})
        bytes.push_back(static_cast<std::uint8_t>(counts >> shift));
    }
  return bytes;
}

// The ratios that those bytes encode, by the receiver's own rules.
struct StandardRatios {
  StandardCx S11, S21, S12, S22;
};
inline constexpr auto kS11 = &StandardRatios::S11;
inline constexpr auto kS21 = &StandardRatios::S21;
inline constexpr auto kS12 = &StandardRatios::S12;
inline constexpr auto kS22 = &StandardRatios::S22;

inline StandardRatios StandardRatiosAt(int bytesPerPoint, int k, const ReceiverState& rx,
                                       int seed = 0) {
  const auto volts = [&](int n) {
    return (20000 + (k * 131 + n * 4099 + seed * 977) % 30000) / 65535.0 * 4.999924 - 2.5;
  };
  const auto ratio = [&](int refI, int testI, int refQ, int testQ) {
    return StandardCx(volts(testI) - rx.DcOffsetQ, volts(testQ) - rx.DcOffsetQ) /
           StandardCx(volts(refI) - rx.DcOffsetI, volts(refQ) - rx.DcOffsetI);
  };
  if (bytesPerPoint == 12) return {ratio(0, 1, 2, 3), ratio(0, 1, 2, 3), 0, 0};
  return {ratio(0, 2, 3, 5), ratio(0, 1, 3, 4), ratio(6, 8, 9, 11), ratio(6, 7, 9, 10)};
}

struct StandardFixture : ScriptedLink {
  ScriptedInstrument instrument{port};
  std::map<std::string, ComplexArray*> arrays;
  // What the instrument streams after its nth trigger (from 0), given the command's bytes a point.
  std::function<void(int sweep, int bytesPerPoint)> Stream = [this](int sweep, int bytesPerPoint) {
    port.Feed(StandardBytes(bytesPerPoint, session->Averaging.Averages, sweep));
  };

  StandardFixture() {
    session->Plan.NumPoints = kStandardPoints;
    session->Flags.SweepLoaded = true;
    session->Averaging.Averages = 16;
    session->Receiver.DcOffsetI = 0.01;
    session->Receiver.DcOffsetQ = -0.02;
    session->Kit1.KitOffset = 0.00526f;
    session->Kit2.KitOffset = 0.0011f;
    StandardsMeasured& m = session->Standards;
    ErrorTerms& t = session->Terms;
    arrays = {{"CalLoad1", &m.CalLoad1},
              {"CalShort1", &m.CalShort1},
              {"CalOpen1", &m.CalOpen1},
              {"CalLoad2", &m.CalLoad2},
              {"CalShort2", &m.CalShort2},
              {"CalOpen2", &m.CalOpen2},
              {"CalThruRefl1", &m.CalThruRefl1},
              {"CalThruRefl2", &m.CalThruRefl2},
              {"CalDutRefl1", &m.CalDutRefl1},
              {"CalDutRefl2", &m.CalDutRefl2},
              {"EX", &t.Forward.EX},
              {"EX'", &t.Reverse.EX},
              {"ETT", &t.Forward.ETT},
              {"ETT'", &t.Reverse.ETT},
              {"IsoFwd1", &t.IsoFwd1},
              {"IsoFwd2", &t.IsoFwd2},
              {"IsoRev1", &t.IsoRev1},
              {"IsoRev2", &t.IsoRev2}};
    for (auto& [name, array] : arrays) array->Fill(kUntouched);
    const auto inner = port.OnWrite;
    port.OnWrite = [this, inner](const Bytes& bytes) {
      const std::size_t before = instrument.Commands.size();
      inner(bytes);
      for (std::size_t i = before; i < instrument.Commands.size(); ++i)
        AfterCommand(instrument.Commands[i]);
    };
  }

  bool Untouched(const std::string& name) const {
    for (int k = 0; k < kMaxPoints; ++k)
      if (!((*arrays.at(name))[k] == kUntouched)) return false;
    return true;
  }
  bool AllUntouched() const {
    for (const auto& [name, array] : arrays)
      if (!Untouched(name)) return false;
    return true;
  }
  void ExpectHolds(const std::string& name, StandardCx StandardRatios::*ratio, int bytesPerPoint,
                   int sweep = 0) {
    for (const int k : {0, 1, 25, kStandardPoints - 1}) {
      const Complex z = (*arrays.at(name))[k];
      const StandardCx truth = StandardRatiosAt(bytesPerPoint, k, session->Receiver, sweep).*ratio;
      EXPECT_LT(std::abs(StandardCx(z.re, z.im) - truth), 1e-9) << name << " " << k;
    }
    EXPECT_EQ((*arrays.at(name))[kStandardPoints], kUntouched) << name;
  }
  std::vector<std::string> Messages() const { return fake.MessageTexts(); }
  const CalState& Cal() const { return session->Cal; }

 private:
  void AfterCommand(const Bytes& command) {
    const std::string name(command.begin(), command.end());
    const std::map<std::string, int> triggers{{"M", 12}, {"S", 12}, {"YO", 18}, {"A", 36}};
    if (triggers.contains(name)) Stream(sweeps_++, triggers.at(name));
  }
  int sweeps_ = 0;
};

}  // namespace qk::test
