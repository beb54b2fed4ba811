// SPDX-License-Identifier: MIT
#include "files/touchstone_options.h"

#include <algorithm>
#include <string>

#include "core/characters.h"
#include "core/text.h"

namespace qk {

namespace {

std::string Upper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return upper;
}

// Scans the line by position.
class Scan {
 public:
  explicit Scan(std::string_view line) : line_(line) {}

  // Skips blanks and returns the text up to the next one, in upper case; empty at the end.
  std::string Token() {
    while (at_ < line_.size() && IsSpaceInLine(line_[at_])) ++at_;
    const std::size_t from = at_;
    while (at_ < line_.size() && !IsSpaceInLine(line_[at_])) ++at_;
    return Upper(line_.substr(from, at_ - from));
  }
  // Moves to after the next such letter of either case, or to the end.
  void MoveBehind(std::string_view eitherCase) {
    at_ = std::min(line_.find_first_of(eitherCase, at_), line_.size());
    if (at_ < line_.size()) ++at_;
  }

 private:
  std::string_view line_;
  std::size_t at_ = 0;
};

float UnitOf(std::string_view token) {
  if (token == "GHZ") return 1e9f;
  if (token == "MHZ") return 1e6f;
  if (token == "KHZ") return 1e3f;
  return 1;
}

PairForm FormOf(std::string_view token) {
  if (token == "MA") return PairForm::MagnitudeAngle;
  if (token == "DB") return PairForm::DecibelAngle;
  return PairForm::RealImaginary;
}

// Checks whether a token has a meaning that parsing by position has missed. Without this check, a
// file with its options in another order would be loaded with wrong numbers.
Result<Done> Contradicts(std::string_view line, const TouchstoneOptions& options) {
  Scan scan(line);
  for (std::string token = scan.Token(); !token.empty(); token = scan.Token()) {
    if (token == "Y" || token == "Z" || token == "G" || token == "H")
      return Failure{"these are " + token + " parameters, only S parameters are read", {}};
    const bool otherUnit = UnitOf(token) != 1 && UnitOf(token) != options.HertzPerUnit;
    const bool otherForm =
        FormOf(token) != PairForm::RealImaginary && FormOf(token) != options.Form;
    if (otherUnit || otherForm)
      return Failure{token + " is in the wrong place, the order is # MHZ S MA R 50", {}};
  }
  return Done{};
}

}  // namespace

Result<TouchstoneOptions> ReadOptionLine(std::string_view line) {
  line = line.substr(0, line.find('!'));
  TouchstoneOptions options;
  Scan scan(line);
  options.HertzPerUnit = UnitOf(scan.Token());
  scan.MoveBehind("Ss");
  options.Form = FormOf(scan.Token());
  scan.MoveBehind("Rr");
  const std::string ohms = scan.Token();
  if (!ohms.empty() && !ParseNumber(ohms, options.R))
    return Failure{"the resistance is not a number", {}};
  if (Result<Done> order = Contradicts(line, options); !order) return order.Why();
  return options;
}

}  // namespace qk
