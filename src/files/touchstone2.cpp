// SPDX-License-Identifier: MIT
#include "files/touchstone2.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/instrument_limits.h"
#include "core/text.h"
#include "files/touchstone_convert.h"
#include "files/touchstone_options.h"
#include "files/touchstone_text.h"

namespace qk {

namespace {

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

// The fields of a line, in lower case.
std::vector<std::string> LowerCaseFields(std::string_view line) {
  std::vector<std::string> fields;
  for (line = SkipSeparators(line); !line.empty(); line = SkipSeparators(line)) {
    const std::string_view field = FrontField(line);
    fields.push_back(Lower(field));
    line.remove_prefix(field.size());
  }
  return fields;
}

// "[Number  of Ports] 2": the keyword in lower case with single blanks, and the text after it.
struct Keyword {
  std::string Name;
  std::string_view Rest;
};
std::optional<Keyword> KeywordOf(std::string_view line) {
  if (line.empty() || line.front() != '[') return std::nullopt;
  const std::size_t close = line.find(']');
  if (close == std::string_view::npos) return std::nullopt;
  Keyword keyword;
  for (const std::string& word : LowerCaseFields(line.substr(1, close - 1)))
    keyword.Name += (keyword.Name.empty() ? "" : " ") + word;
  keyword.Rest = line.substr(close + 1);
  return keyword;
}

enum class Matrix { Full, Lower, Upper };

class Reader2 {
 public:
  explicit Reader2(std::string_view text) : lines_(text) {}

  Result<TouchstoneTable> Read(Reference reference) {
    if (Result<Done> head = TakeHead(); !head) return head.Why();
    if (Result<Done> complete = CheckHead(); !complete) return complete.Why();
    if (Result<Done> rows = TakeRecords(); !rows) return rows.Why();
    if (Result<Done> turned = ToRealImaginary(table_, form_, lineOf_); !turned) return turned.Why();
    if (ohms_ != kInstrumentOhms && reference == Reference::ConvertedTo50)
      if (Result<Done> at50 = ConvertTableTo50(table_, ohms_, lineOf_); !at50) return at50.Why();
    return table_;
  }

 private:
  using Taker = Result<Done> (Reader2::*)(const std::vector<std::string>& arguments);
  struct Row {
    std::string_view Name;
    Taker Take;
  };

  Failure Here(const std::string& message) const { return AtLine(line_, message); }

  // The next non-empty line, without its remark and surrounding blanks.
  bool NextLine(std::string_view& line) {
    if (std::exchange(held_, false)) {
      line = current_;
      return true;
    }
    while (lines_.Next(line)) {
      line = SkipSeparators(WithoutRemark(line));
      while (!line.empty() && (line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
      if (line.empty()) continue;
      current_ = line;
      line_ = lines_.Number();
      return true;
    }
    return false;
  }
  // Returns the last line again at the next call.
  void HoldLine() { held_ = true; }

  // Reads keywords and option line, up to [Network Data].
  Result<Done> TakeHead() {
    std::string_view line;
    bool version = false;
    while (NextLine(line)) {
      const auto keyword = KeywordOf(line);
      // Text before the first keyword is a remark without "!".
      if (!version && (!keyword || keyword->Name != "version")) continue;
      version = true;
      if (line.front() == '#') {
        if (Result<Done> options = TakeOptions(line.substr(1)); !options) return options;
        continue;
      }
      if (!keyword) return Here(ShownField(line) + " is not a keyword");
      if (keyword->Name == "network data") {
        if (!LowerCaseFields(keyword->Rest).empty())
          return Here("data must begin on a line of their own");
        dataLine_ = line_;
        return Done{};
      }
      if (Result<Done> taken = TakeKeyword(*keyword); !taken) return taken;
    }
    return Failure{"no [Network Data]", {}};
  }

  Result<Done> TakeKeyword(const Keyword& keyword) {
    static constexpr Row kRows[] = {
        {"version", &Reader2::TakeVersion},
        {"number of ports", &Reader2::TakePorts},
        {"two-port data order", &Reader2::TakeOrder},
        {"two-port order", &Reader2::TakeOrder},  // from the first drafts of the format
        {"number of frequencies", &Reader2::TakeCount},
        {"number of noise frequencies", &Reader2::TakeNothing},
        {"reference", &Reader2::TakeReference},
        {"matrix format", &Reader2::TakeMatrix},
    };
    const int line = line_;
    if (keyword.Name == "begin information") return SkipInformation();
    if (keyword.Name == "mixed-mode order")
      return Here("mixed-mode parameters are not read, only S parameters of single ports");
    const auto row = std::ranges::find(kRows, keyword.Name, &Row::Name);
    if (row == std::end(kRows))
      return Here("unknown keyword " + ShownField("[" + keyword.Name + "]"));
    std::vector<std::string> arguments = LowerCaseFields(keyword.Rest);
    std::string_view next;
    while (NextLine(next)) {
      if (next.front() == '[' || next.front() == '#') {
        HoldLine();
        break;
      }
      for (std::string& field : LowerCaseFields(next)) arguments.push_back(std::move(field));
    }
    // An error is reported for the keyword's line, wherever its arguments are.
    const int behind = std::exchange(line_, line);
    Result<Done> taken = (this->*row->Take)(arguments);
    line_ = behind;
    return taken;
  }

  Result<Done> SkipInformation() {
    const int begin = line_;
    std::string_view line;
    while (NextLine(line)) {
      const auto keyword = KeywordOf(line);
      if (keyword && keyword->Name == "end information") return Done{};
    }
    return AtLine(begin, "[Begin Information] without [End Information]");
  }

  // One whole number of at least 1.
  static std::optional<int> Count(const std::vector<std::string>& arguments) {
    double value = 0;
    if (arguments.size() != 1 || !ParseNumber(arguments[0], value)) return std::nullopt;
    if (value < 1 || value > 1e9 || value != std::floor(value)) return std::nullopt;
    return static_cast<int>(value);
  }

  Result<Done> TakeNothing(const std::vector<std::string>&) { return Done{}; }

  Result<Done> TakeVersion(const std::vector<std::string>& arguments) {
    if (arguments.size() == 1 && (arguments[0] == "2.0" || arguments[0] == "2.1")) return Done{};
    return Here("only versions 1, 2.0 and 2.1 are read");
  }

  Result<Done> TakePorts(const std::vector<std::string>& arguments) {
    const std::optional<int> ports = Count(arguments);
    if (!ports) return Here("[Number of Ports] takes a whole number");
    if (*ports > 2)
      return Here("a file of " + std::to_string(*ports) +
                  " ports, only files of one or two ports are read");
    ports_ = *ports;
    return Done{};
  }

  Result<Done> TakeOrder(const std::vector<std::string>& arguments) {
    const bool known =
        arguments.size() == 1 && (arguments[0] == "12_21" || arguments[0] == "21_12");
    if (!known) return Here("[Two-Port Data Order] is 12_21 or 21_12");
    s12First_ = arguments[0] == "12_21";
    return Done{};
  }

  Result<Done> TakeCount(const std::vector<std::string>& arguments) {
    const std::optional<int> count = Count(arguments);
    if (!count) return Here("[Number of Frequencies] takes a whole number");
    if (*count > kFileRows) return Here("more than 1000 frequencies");
    count_ = *count;
    return Done{};
  }

  Result<Done> TakeReference(const std::vector<std::string>& arguments) {
    references_.clear();
    for (const std::string& field : arguments) {
      double ohms = 0;
      if (!ParseNumber(field, ohms)) return Here(ShownField(field) + " is not a number");
      references_.push_back(ohms);
    }
    referenceLine_ = line_;
    return Done{};
  }

  Result<Done> TakeMatrix(const std::vector<std::string>& arguments) {
    const std::string word = arguments.size() == 1 ? arguments[0] : std::string();
    if (word != "full" && word != "lower" && word != "upper")
      return Here("[Matrix Format] is Full, Lower or Upper");
    matrix_ = word == "full" ? Matrix::Full : word == "lower" ? Matrix::Lower : Matrix::Upper;
    return Done{};
  }

  Result<Done> TakeOptions(std::string_view line) {
    if (options_) return Here("a second option line");
    options_ = true;
    const std::vector<std::string> fields = LowerCaseFields(line);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const std::string& field = fields[i];
      if (field == "ghz" || field == "mhz" || field == "khz" || field == "hz") {
        unit_ = field == "ghz" ? 1e9 : field == "mhz" ? 1e6 : field == "khz" ? 1e3 : 1;
      } else if (field == "ma" || field == "db" || field == "ri") {
        form_ = field == "ma"   ? PairForm::MagnitudeAngle
                : field == "db" ? PairForm::DecibelAngle
                                : PairForm::RealImaginary;
      } else if (field == "y" || field == "z" || field == "g" || field == "h") {
        return Here("these are " + std::string(1, static_cast<char>(field[0] - 'a' + 'A')) +
                    " parameters, only S parameters are read");
      } else if (field == "r") {
        if (++i == fields.size() || !ParseNumber(fields[i], ohms_) || !(ohms_ > 0))
          return Here("the resistance is not a positive number");
      } else if (field != "s") {
        return Here(ShownField(field) + " is not an option");
      }
    }
    return Done{};
  }

  // Checks that everything required before the data is present.
  Result<Done> CheckHead() {
    const auto missing = [this](const char* what) {
      return AtLine(dataLine_, std::string(what) + " is missing");
    };
    if (!options_) return missing("the option line (# GHZ S MA R 50)");
    if (ports_ == 0) return missing("[Number of Ports]");
    if (count_ == 0) return missing("[Number of Frequencies]");
    if (ports_ == 2 && !s12First_ && matrix_ == Matrix::Full)
      return missing("[Two-Port Data Order]");
    if (referenceLine_ == 0) return Done{};
    if (references_.size() != static_cast<std::size_t>(ports_))
      return AtLine(referenceLine_, "[Reference] takes a resistance for each port");
    for (const double ohms : references_)
      if (!(ohms > 0)) return AtLine(referenceLine_, "a reference is not a positive resistance");
    if (references_.front() != references_.back())
      return AtLine(referenceLine_, "the references of the ports differ, only equal ones are read");
    ohms_ = references_.front();
    return Done{};
  }

  // The table positions for the pairs of a record: 0 S11, 1 S21, 2 S12, 3 S22.
  std::vector<std::size_t> Places() const {
    if (ports_ == 1) return {0};
    if (matrix_ == Matrix::Lower) return {0, 1, 3};
    if (matrix_ == Matrix::Upper) return {0, 2, 3};
    return s12First_.value_or(false) ? std::vector<std::size_t>{0, 2, 1, 3}
                                     : std::vector<std::size_t>{0, 1, 2, 3};
  }

  Result<Done> TakeRecords() {
    const std::vector<std::size_t> places = Places();
    table_.Columns = ports_ == 1 ? 2 : 8;
    std::string_view line;
    while (NextLine(line)) {
      if (line.front() == '[') return EndRecords(line);
      if (table_.Rows == count_)
        return Here("more records than [Number of Frequencies] " + std::to_string(count_));
      if (Result<Done> record = TakeRecord(line, places); !record) return record;
    }
    return CheckCount();
  }

  Result<Done> EndRecords(std::string_view line) const {
    const auto keyword = KeywordOf(line);
    if (!keyword || (keyword->Name != "end" && keyword->Name != "noise data"))
      return Here(ShownField(line) + " cannot follow the data");
    return CheckCount();
  }

  Result<Done> CheckCount() const {
    if (table_.Rows == count_) return Done{};
    return Here(std::to_string(table_.Rows) + " records, [Number of Frequencies] says " +
                std::to_string(count_));
  }

  // Reads a scaled number that fits 32 bits; fails with the field.
  Result<double> TakeField(std::string_view& row, double scale) const {
    const std::string_view before = row;
    double value = 0;
    if (!TakeNumber(row, value)) return Here(ShownField(FrontField(before)) + " is not a number");
    if (std::fabs(value * scale) > kLargestPart)
      return Here(ShownField(FrontField(before)) + " is too large");
    row = SkipSeparators(row);
    return value * scale;
  }

  // Reads a record from its first line on.
  Result<Done> TakeRecord(std::string_view row, const std::vector<std::size_t>& places) {
    const auto last = static_cast<std::size_t>(table_.Rows);
    const std::size_t at = last + 1;
    const Result<double> hertz = TakeField(row, unit_);
    if (!hertz) return hertz.Why();
    if (*hertz < 0) return Here("the frequency is below 0");
    if (last > 0 && *hertz <= lastHertz_)
      return Here("the frequency is not above the one before it");
    lastHertz_ = *hertz;
    table_.FileTable[0][at] = static_cast<float>(*hertz);
    lineOf_[at] = line_;
    for (const std::size_t place : places)
      for (std::size_t part = 1; part <= 2; ++part) {
        if (row.empty() && !NextLine(row)) return Here("the file ends within a record");
        if (row.front() == '[') return Here("a record is cut short");
        const Result<double> value = TakeField(row, 1);
        if (!value) return value.Why();
        table_.FileTable[2 * place + part][at] = static_cast<float>(*value);
      }
    if (!row.empty()) return Here("more values than a record has");
    if (ports_ == 2 && matrix_ != Matrix::Full) {  // a symmetric matrix
      const std::size_t from = matrix_ == Matrix::Lower ? 1 : 2;
      for (std::size_t part = 1; part <= 2; ++part)
        table_.FileTable[2 * (3 - from) + part][at] = table_.FileTable[2 * from + part][at];
    }
    table_.Rows = static_cast<int>(at);
    return Done{};
  }

  TextLines lines_;
  std::string_view current_;
  bool held_ = false;
  int line_ = 0;

  // Without an option line: GHz, magnitude and angle, 50 ohms.
  double unit_ = 1e9;
  PairForm form_ = PairForm::MagnitudeAngle;
  double ohms_ = kInstrumentOhms;
  bool options_ = false;
  int ports_ = 0;
  int count_ = 0;
  std::optional<bool> s12First_;
  Matrix matrix_ = Matrix::Full;
  std::vector<double> references_;
  int referenceLine_ = 0;
  int dataLine_ = 0;
  double lastHertz_ = 0;
  TouchstoneTable table_;
  LineOfRow lineOf_{};
};

}  // namespace

bool IsTouchstone2(std::string_view text) {
  TextLines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    if (!line.empty() && line.front() == '#') return false;
    const auto keyword = KeywordOf(SkipSeparators(WithoutRemark(line)));
    if (keyword && keyword->Name == "version") return true;
  }
  return false;
}

Result<TouchstoneTable> ReadTouchstone2(std::string_view text, Reference reference) {
  return Reader2(text).Read(reference);
}

}  // namespace qk
