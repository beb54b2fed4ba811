// SPDX-License-Identifier: MIT
// Seeded Gaussian noise: the same sequence for the same seed on every machine.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

namespace qk::sim {

class Noise {
 public:
  explicit Noise(std::uint64_t seed) { Seed(seed); }

  void Seed(std::uint64_t seed) {
    for (std::uint64_t& s : state_) {  // splitmix64 spreads a small seed over the state
      seed += 0x9E3779B97F4A7C15u;
      std::uint64_t z = seed;
      z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
      z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
      s = z ^ (z >> 31);
    }
    hasSpare_ = false;
  }

  // Mean 0, standard deviation 1 (polar method, two at a time).
  double Next() {
    if (hasSpare_) {
      hasSpare_ = false;
      return spare_;
    }
    double u, v, s;
    do {
      u = Uniform();
      v = Uniform();
      s = u * u + v * v;
    } while (s >= 1 || s == 0);
    const double scale = std::sqrt(-2 * std::log(s) / s);
    spare_ = v * scale;
    hasSpare_ = true;
    return u * scale;
  }

 private:
  // xoshiro256++, to -1 .. 1.
  double Uniform() {
    const auto rotate = [](std::uint64_t x, int k) { return (x << k) | (x >> (64 - k)); };
    const std::uint64_t result = rotate(state_[0] + state_[3], 23) + state_[0];
    const std::uint64_t t = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= t;
    state_[3] = rotate(state_[3], 45);
    return static_cast<double>(result >> 11) * 0x1p-52 - 1;
  }

  std::array<std::uint64_t, 4> state_{};
  double spare_ = 0;
  bool hasSpare_ = false;
};

}  // namespace qk::sim
