// SPDX-License-Identifier: MIT
#include "sim/touchstone.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "sim/words.h"

namespace qk::sim {

namespace {

enum class Form { MagnitudeAngle, DecibelAngle, RealImaginary };

// No device reaches 120 dB; this keeps the spline between the points far from numeric limits.
constexpr double kLargestValue = 1e6;
constexpr double kHighestHz = 1e15;

struct Options {
  double UnitHz = 1e9;
  Form PairForm = Form::MagnitudeAngle;
  double Ohms = 50;
};

class Reader {
 public:
  explicit Reader(int ports) : ports_(ports) { result_.Data.Ports = ports; }

  // False when reading ends: an error, or the start of the noise block.
  bool TakeLine(std::string_view line) {
    ++lineNumber_;
    if (lineNumber_ == 1 && line.substr(0, 3) == "\xEF\xBB\xBF") line.remove_prefix(3);
    line = line.substr(0, line.find('!'));
    std::vector<std::string> words = Words(line);
    if (words.empty()) return true;
    if (words.front().front() == '#') return TakeOptionLine(words);
    if (words.front().front() == '[') return Fail("Touchstone 2 is not read");
    return TakeNumbers(words);
  }

  TouchstoneResult Finish() {
    if (result_.Error.empty() && !row_.empty()) Fail("the last row is not complete");
    if (result_.Error.empty() && result_.Data.Hz.empty()) Fail("no data");
    if (!result_.Error.empty()) result_.Data = {};
    return std::move(result_);
  }

 private:
  bool Fail(const std::string& what) {
    result_.Error = "line " + std::to_string(lineNumber_) + ": " + what;
    return false;
  }

  bool TakeOptionLine(std::vector<std::string>& words) {
    if (optionsSeen_) return true;  // only the first one is used
    if (!result_.Data.Hz.empty() || !row_.empty()) return Fail("option line behind the data");
    optionsSeen_ = true;
    words.front().erase(0, 1);
    if (words.front().empty()) words.erase(words.begin());
    for (std::size_t i = 0; i < words.size(); ++i) {
      const std::string word = Lower(words[i]);
      if (word == "r") {
        const auto ohms = ++i < words.size() ? Number(words[i]) : std::nullopt;
        if (!ohms || *ohms <= 0) return Fail("R needs a positive number of ohms");
        options_.Ohms = *ohms;
      } else if (!TakeOption(word)) {
        return Fail("unknown option \"" + words[i] + "\"");
      }
    }
    return true;
  }

  bool TakeOption(const std::string& word) {
    if (word == "hz")
      options_.UnitHz = 1;
    else if (word == "khz")
      options_.UnitHz = 1e3;
    else if (word == "mhz")
      options_.UnitHz = 1e6;
    else if (word == "ghz")
      options_.UnitHz = 1e9;
    else if (word == "ma")
      options_.PairForm = Form::MagnitudeAngle;
    else if (word == "db")
      options_.PairForm = Form::DecibelAngle;
    else if (word == "ri")
      options_.PairForm = Form::RealImaginary;
    else
      return word == "s";
    return true;
  }

  bool TakeNumbers(const std::vector<std::string>& words) {
    const std::size_t rowSize = ports_ == 1 ? 3 : 9;
    // A row begins with its frequency; if it continues on other lines, these contain whole pairs.
    // So rows for another number of ports are never read as parts of one.
    if ((words.size() % 2 == 1) != row_.empty())
      return Fail("a row of a " + std::string(ports_ == 1 ? "one" : "two") + "-port has " +
                  std::to_string(rowSize) + " values");
    if (row_.size() + words.size() > rowSize) return Fail("more than one row");
    for (std::size_t i = 0; i < words.size(); ++i) {
      const auto value = Number(words[i]);
      if (!value) return Fail("\"" + words[i] + "\" is not a number");
      if (row_.empty()) {
        const double hz = *value * options_.UnitHz;
        if (!result_.Data.Hz.empty() && hz <= result_.Data.Hz.back()) {
          // A noise row has five values and restarts below the last frequency.
          if (ports_ == 2 && i == 0 && words.size() == 5) return false;
          return Fail("the frequencies must rise");
        }
        if (hz < 0) return Fail("a frequency below 0");
        if (hz > kHighestHz) return Fail("a frequency without bounds");
      }
      row_.push_back(*value);
      if (row_.size() == rowSize && !TakeRow()) return false;
    }
    return true;
  }

  Complex Pair(std::size_t i) const {
    const double a = row_[1 + 2 * i], b = row_[2 + 2 * i];
    switch (options_.PairForm) {
      case Form::MagnitudeAngle:
        return std::polar(1.0, b * kPi / 180) * a;
      case Form::DecibelAngle:
        return std::polar(std::pow(10.0, a / 20), b * kPi / 180);
      case Form::RealImaginary:
        break;
    }
    return {a, b};
  }

  bool TakeRow() {
    TwoPort s{};
    s.S11 = Pair(0);
    if (ports_ == 2) {
      s.S21 = Pair(1);
      s.S12 = Pair(2);
      s.S22 = Pair(3);
    }
    s = In50Ohms(s);
    for (const Complex& c : {s.S11, s.S21, s.S12, s.S22})
      // Also false for NaN.
      if (!(std::abs(c.real()) <= kLargestValue && std::abs(c.imag()) <= kLargestValue))
        return Fail("a value without bounds");
    result_.Data.Hz.push_back(row_[0] * options_.UnitHz);
    result_.Data.Points.push_back(s);
    row_.clear();
    return true;
  }

  // For equal real resistances at both ports: S' = (S - r)(1 - r S)^-1.
  TwoPort In50Ohms(const TwoPort& s) const {
    if (options_.Ohms == kZ0) return s;
    const double r = (kZ0 - options_.Ohms) / (kZ0 + options_.Ohms);
    const TwoPort m{1.0 - r * s.S11, -r * s.S21, -r * s.S12, 1.0 - r * s.S22};
    const Complex det = Determinant(m);
    const TwoPort i{m.S22 / det, -m.S21 / det, -m.S12 / det, m.S11 / det};
    const TwoPort d{s.S11 - r, s.S21, s.S12, s.S22 - r};
    return {d.S11 * i.S11 + d.S12 * i.S21, d.S21 * i.S11 + d.S22 * i.S21,
            d.S11 * i.S12 + d.S12 * i.S22, d.S21 * i.S12 + d.S22 * i.S22};
  }

  int ports_;
  int lineNumber_ = 0;
  bool optionsSeen_ = false;
  Options options_;
  std::vector<double> row_;
  TouchstoneResult result_;
};

}  // namespace

TouchstoneResult ReadTouchstone(std::istream& in, int ports) {
  Reader reader(ports);
  std::string line;
  while (std::getline(in, line))
    if (!reader.TakeLine(line)) break;
  return reader.Finish();
}

TouchstoneResult ReadTouchstoneFile(const std::string& path) {
  const std::string name = Lower(path);
  const bool one = name.ends_with(".s1p");
  if (!one && !name.ends_with(".s2p")) return {{}, path + ": neither an .s1p nor an .s2p file"};
  // A pipe would block the simulator until something is written to it.
  std::error_code unknown;
  const auto kind = std::filesystem::status(path, unknown).type();
  if (std::filesystem::exists(std::filesystem::file_status(kind)) &&
      kind != std::filesystem::file_type::regular)
    return {{}, path + ": is no file of data"};
  std::ifstream in(path, std::ios::binary);
  if (!in) return {{}, path + ": cannot be opened"};
  TouchstoneResult result = ReadTouchstone(in, one ? 1 : 2);
  if (!result.Error.empty()) result.Error = path + ", " + result.Error;
  return result;
}

}  // namespace qk::sim
