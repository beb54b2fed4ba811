// SPDX-License-Identifier: MIT
// The lines of a session file, for tests that take it apart.
#pragma once

#include <algorithm>
#include <string>

namespace qk::test {

// Line numbers, from 1, of a file of numPoints points over a calibration of savedPoints.
struct Rows {
  int Points, SavedPoints;
  Rows(int numPoints, int savedPoints) : Points(numPoints), SavedPoints(savedPoints) {}

  int Sweep() const { return 35; }  // rows 1 to 34 are a line each
  int Channels() const { return Sweep() + 9 * Points; }
  int Channel(int n) const { return Channels() + (n - 1) * (7 + 5 * Points); }
  int Markers() const { return Channel(5); }
  int Kit1Load() const { return Markers() + 4 * 2 + 1; }
  int SystemZo() const { return Kit1Load() + 2 + 101; }
  int Fields() const { return SystemZo() + 2; }
  int Controls() const { return Fields() + 14; }
  int Kit2() const { return Controls() + 17; }
  int Reverse() const { return Kit2() + 3 + 2 + 101; }
  int Colours() const { return Reverse() + 13 * Points; }
  int Label() const { return Colours() + 1; }
  int Interpolated() const { return Label() + 1 + 5; }
  int SavedPlan() const { return Interpolated() + 1; }
  int HasThru() const { return SavedPlan() + 1 + 18 * SavedPoints; }
  int ZoSet() const { return HasThru() + 1 + 101; }
  int Last() const { return ZoSet() + 4 * Points; }
};

inline int LinesOf(const std::string& text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

// The byte at which line n begins.
inline std::size_t BeginOf(const std::string& text, int n) {
  std::size_t at = 0;
  for (int line = 1; line < n; ++line) at = text.find('\n', at) + 1;
  return at;
}

inline std::string FirstLines(const std::string& text, int n) {
  return text.substr(0, BeginOf(text, n + 1));
}

inline std::string Line(const std::string& text, int n) {
  const std::size_t begin = BeginOf(text, n);
  return text.substr(begin, text.find('\r', begin) - begin);
}

}  // namespace qk::test
