// SPDX-License-Identifier: MIT
// What tests of the simulated instrument share: records as the instrument's table wants them, a
// clock that the test moves, and a talker that writes commands and reads replies without pace.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sim/instrument.h"
#include "sim/simulated_port.h"
#include "sim/synthesiser.h"

namespace qk::sim::test {

using Bytes = std::vector<std::uint8_t>;

inline void PutLatch(std::uint8_t* out, double n, bool highGain) {
  const double b = std::floor(n / 32), a = n - 32 * b;
  const auto word = static_cast<std::uint32_t>((highGain ? 2097152 : 0) + b * 256 + a * 4 + 1);
  out[0] = static_cast<std::uint8_t>(word >> 16);
  out[1] = static_cast<std::uint8_t>(word >> 8);
  out[2] = static_cast<std::uint8_t>(word);
}

inline void PutTuningWord(std::uint8_t* out, double reference) {
  const auto word = static_cast<std::uint32_t>(std::llround(reference / 4e8 * 4294967296.0));
  for (int i = 0; i < 4; ++i) out[i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
}

// A record for f hertz: loops as near to a 70 MHz reference as whole dividers allow.
inline Record RecordFor(double f, int level = 27, int receiver = 24) {
  const auto divider = [](double hz) { return std::floor(hz * 280 / 7e7 + 0.5); };
  Record r{};
  double na, nb, nc, nd, reference1, reference2;
  bool gainD;
  int band;
  if (f < 8e8) {
    const double t = std::min(3.7e9 - f, 3.075e9), c = t - 6e5;
    na = divider(t), nb = divider(t + f), nc = divider(c), nd = divider(c + f + 950e3);
    reference1 = 280 * f / (nb - na), reference2 = 280 * (f + 950e3) / (nd - nc);
    gainD = nd * reference2 / 280 > 3.35e9;
    band = 0;
  } else {
    const int doubled = f < 1.6e9 ? 2 : 1;
    const double v = f * doubled, intermediate = 950e3 * doubled;
    const double parked = std::abs(3.7e9 - 2 * f - intermediate) < 5e4 ? 3.6e9 : 3.7e9;
    na = divider(v), nc = divider(v + intermediate);
    reference1 = 280 * v / na, reference2 = 280 * (v + intermediate) / nc;
    nb = std::floor(parked * 280 / reference1), nd = std::floor(parked * 280 / reference2);
    gainD = nb * reference1 / 280 > 3.35e9;
    band = doubled == 2 ? 96 : 32;
  }
  PutTuningWord(&r[0], reference1);
  PutTuningWord(&r[4], reference2);
  PutLatch(&r[8], na, na * reference1 / 280 > 3.1e9);
  PutLatch(&r[11], nb, nb * reference1 / 280 > 3.35e9);
  r[14] = static_cast<std::uint8_t>(band + level);
  PutLatch(&r[15], nc, nc * reference2 / 280 > 3.1e9);
  PutLatch(&r[18], nd, gainD);
  r[21] = static_cast<std::uint8_t>(band + receiver);
  return r;
}

inline double Volts(const std::uint8_t* b, int readings) {
  const double counts = (b[0] * 65536.0 + b[1] * 256.0 + b[2]) / readings;
  return counts / 65535 * 4.999924 - 2.5;
}

// The raw ratios of one point of "A", or of the parts that a smaller sweep gives.
struct RawPoint {
  std::complex<double> S11, S21, S12, S22, Reference;
};

inline InstrumentOptions Quiet() {
  InstrumentOptions options;
  options.Noise = false;
  return options;
}

inline InstrumentOptions WithFirmware(const char* version) {
  InstrumentOptions options;
  options.Firmware = version;
  return options;
}

// An instrument that is talked to without pace.
class Talker {
 public:
  explicit Talker(InstrumentOptions options = {}) : Box(options) {}

  Instrument Box;
  std::int64_t NowUs = 1'000'000;

  Bytes Say(const Bytes& bytes) {
    Box.Receive(bytes.data(), bytes.size(), NowUs);
    return Heard();
  }
  Bytes Say(std::string_view text) { return Say(Bytes(text.begin(), text.end())); }
  Bytes Heard() {
    Bytes all;
    for (const Outgoing& o : Box.Poll(NowUs)) all.insert(all.end(), o.Bytes.begin(), o.Bytes.end());
    return all;
  }
  void Bench(std::string_view line) {
    const BenchReply reply = Box.Bench(line);
    ASSERT_TRUE(reply.Ok) << line << ": " << reply.Text;
  }

  void WriteRam(int address, const Bytes& data) {
    Bytes command = {'W', static_cast<std::uint8_t>(data.size()),
                     static_cast<std::uint8_t>(address / 256),
                     static_cast<std::uint8_t>(address % 256)};
    command.insert(command.end(), data.begin(), data.end());
    ASSERT_TRUE(Say(command).empty());
  }
  void WriteRecord(int address, const Record& record) {
    WriteRam(address, Bytes(record.begin(), record.end()));
  }
  void LoadPlan(const std::vector<double>& hz, int level = 27) {
    const auto n = static_cast<int>(hz.size());
    WriteRam(0, {static_cast<std::uint8_t>(n / 256), static_cast<std::uint8_t>(n % 256)});
    for (int i = 0; i < n; ++i)
      WriteRecord(2 + 22 * i, RecordFor(hz[static_cast<std::size_t>(i)], level));
    WriteRecord(32738, RecordFor(2e7));
  }
  void SetAverages(int n) {
    averages_ = n;
    Say(Bytes{'Y', '8', static_cast<std::uint8_t>(n)});
  }
  void MeasureOffsets() {
    const Bytes reply = Say("C");
    ASSERT_EQ(reply.size(), 6u);
    offsetI_ = Volts(&reply[0], 256);
    offsetQ_ = Volts(&reply[3], 256);
  }
  std::vector<RawPoint> SweepAll() {
    const Bytes b = Say("A");
    std::vector<RawPoint> points;
    for (std::size_t at = 0; at + 36 <= b.size(); at += 36) points.push_back(Reduce(&b[at]));
    return points;
  }
  double OffsetI() const { return offsetI_; }
  double OffsetQ() const { return offsetQ_; }

 private:
  RawPoint Reduce(const std::uint8_t* b) const {
    const auto pair = [&](int i, int q, double offset) {
      return std::complex<double>(Volts(b + 3 * i, averages_) - offset,
                                  Volts(b + 3 * q, averages_) - offset);
    };
    const auto forward = pair(0, 3, offsetI_), reverse = pair(6, 9, offsetI_);
    return {pair(2, 5, offsetQ_) / forward, pair(1, 4, offsetQ_) / forward,
            pair(8, 11, offsetQ_) / reverse, pair(7, 10, offsetQ_) / reverse, forward};
  }

  int averages_ = 1;
  double offsetI_ = 0, offsetQ_ = 0;
};

// A clock that only tests and sleeping move.
struct MovedClock {
  std::int64_t Us = 5'000'000;
  PortClock Port() {
    return {[this] { return Us; }, [this](std::int64_t us) { Us += us; }};
  }
};

}  // namespace qk::sim::test
