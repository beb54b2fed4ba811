// SPDX-License-Identifier: MIT
#include "files/touchstone.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "core/instrument_limits.h"
#include "core/text.h"
#include "files/touchstone_options.h"
#include "numeric/two_port.h"

namespace qk {

namespace {

constexpr double kLargest = static_cast<double>(std::numeric_limits<float>::max());
constexpr char kEndMark = '\x1A';  // ended a text in old systems

bool IsSeparator(char c) {
  return c == ' ' || c == '\t';
}

// A field as a message can show it: its begin, without what no screen shows.
std::string Shown(std::string_view field) {
  constexpr std::size_t kMost = 24;
  std::string shown(field.substr(0, kMost));
  for (char& c : shown)
    if (c < ' ' || c > '~') c = '?';
  return "\"" + shown + (field.size() > kMost ? "...\"" : "\"");
}

// The field at the front of a row.
std::string_view FrontField(std::string_view row) {
  std::size_t length = 0;
  while (length < row.size() && !IsSeparator(row[length])) ++length;
  return row.substr(0, length);
}

std::string_view SkipSeparators(std::string_view row) {
  std::size_t blanks = 0;
  while (blanks < row.size() && IsSeparator(row[blanks])) ++blanks;
  return row.substr(blanks);
}

std::string_view WithoutRemark(std::string_view line) {
  return line.substr(0, line.find('!'));
}

// The number that is the whole field at the front of a row; row then begins behind it. False, and
// the row as it was, for anything else and for what a double does not hold.
bool TakeNumber(std::string_view& row, double& out) {
  const char* from = row.data();
  const char* const end = from + row.size();
  if (row.size() > 1 && *from == '+' && from[1] != '-') ++from;
  const auto [behind, error] = std::from_chars(from, end, out);
  if (error == std::errc{} && (behind == end || IsSeparator(*behind))) {
    if (!std::isfinite(out)) return false;
    row.remove_prefix(static_cast<std::size_t>(behind - row.data()));
    return true;
  }
  const std::string_view field = FrontField(row);
  if (!ParseNumber(field, out)) return false;  // true for such as 1e-400, which is 0
  row.remove_prefix(field.size());
  return true;
}

// The lines of a text, whether they end with CR LF, LF or CR.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text.substr(0, text.find(kEndMark))) {
    if (text_.substr(0, 3) == "\xEF\xBB\xBF") at_ = 3;
  }

  bool Next(std::string_view& line) {
    if (at_ >= text_.size()) return false;
    if (feed_ < at_ || number_ == 0) feed_ = std::min(text_.find('\n', at_), text_.size());
    const std::string_view rest = text_.substr(at_, feed_ - at_);
    line = rest.substr(0, rest.find('\r'));
    at_ += line.size();
    at_ += text_.substr(at_, 2) == "\r\n" ? 2 : 1;
    ++number_;
    return true;
  }
  // Of the line that was given last, from 1.
  int Number() const { return number_; }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t feed_ = 0;  // the next LF, or the end: found once for all the CRs before it
  int number_ = 0;
};

class Reader {
 public:
  explicit Reader(std::string_view text) : lines_(text) {}

  Result<TouchstoneTable> Read(Reference reference) {
    if (Result<Done> done = TakeOptionLine(); !done) return done.Why();
    const Lines rows = lines_;
    if (Result<Done> done = RefuseMorePorts(rows); !done) return done.Why();
    if (Result<Done> done = TakeRows(Indented::PassedOver); !done) return done.Why();
    if (table_.Rows == 0) {  // a file all of whose rows are indented
      lines_ = rows;
      if (Result<Done> done = TakeRows(Indented::Taken); !done) return done.Why();
    }
    if (table_.Rows == 0) return Failure{"no data", {}};
    if (Result<Done> done = ToRealImaginary(); !done) return done.Why();
    const bool convert =
        options_.R >= kLeastOhms && options_.R <= kMostOhms && options_.R != kInstrumentOhms;
    if (convert && reference == Reference::ConvertedTo50)
      if (Result<Done> done = ConvertTo50(); !done) return done.Why();
    return table_;
  }

 private:
  enum class Row { Taken, Last, Refused };
  enum class Indented { PassedOver, Taken };

  static Failure At(int line, const std::string& message) {
    return {message, "line " + std::to_string(line)};
  }
  Failure Here(const std::string& message) const { return At(lines_.Number(), message); }

  Result<Done> TakeOptionLine() {
    std::string_view line;
    while (lines_.Next(line)) {
      if (line.empty() || line.front() != '#') continue;
      const Result<TouchstoneOptions> options = ReadOptionLine(line.substr(1));
      if (!options) return Here(options.Why().Message);
      options_ = *options;
      return Done{};
    }
    return Failure{"no option line (# MHZ S MA R 50)", {}};
  }

  // The numbers of a line without its remark; none when a field is no number.
  struct Numbers {
    int Count = 0;
    double First = 0;
  };
  static Numbers NumbersOf(std::string_view line) {
    Numbers numbers;
    line = SkipSeparators(WithoutRemark(line));
    while (!line.empty()) {
      double value = 0;
      if (!TakeNumber(line, value)) return {};
      if (++numbers.Count == 1) numbers.First = value;
      line = SkipSeparators(line);
    }
    return numbers;
  }

  // Refuses a file of n > 2 ports by its first record: a frequency and n * n pairs on one or more
  // lines, an odd count of numbers on the first line and an even count on those that continue it.
  // Continuation lines are indented as a rule: without this the first line of each record would
  // pass for the row of a two-port. A record cut short is refused too where its next line cannot
  // be a row of its own.
  static Result<Done> RefuseMorePorts(Lines lines) {
    std::string_view line;
    int begin = 0;  // the line that begins the record
    int cut = 0;    // the first line that continues it and cannot be a row
    Numbers first;
    int count = 0;
    while (lines.Next(line)) {
      if (SkipSeparators(WithoutRemark(line)).empty()) continue;
      const Numbers numbers = NumbersOf(line);
      const bool odd = numbers.Count % 2 == 1;
      if (numbers.Count == 0 || odd == (begin != 0)) break;
      if (begin == 0) {
        begin = lines.Number();
        first = numbers;
      } else if (cut == 0 && (IsIndented(line) || numbers.First < first.First)) {
        cut = lines.Number();
      }
      count += numbers.Count;
    }
    const int pairs = count / 2;
    const int ports = static_cast<int>(std::lround(std::sqrt(pairs)));
    if (ports > 2 && ports * ports == pairs)
      return At(begin, "a file of " + std::to_string(ports) +
                           " ports, only files of one or two ports are read");
    if (cut != 0) return At(cut, "continues the row before it, a row must be on one line");
    return Done{};
  }

  // Meant: a line that begins with a blank is passed over, data or not; one that begins with a tab
  // only where tabs separate the fields, which is when fewer than three blanks stand in it.
  static bool IsIndented(std::string_view line) {
    if (line.empty() || line.front() == ' ') return true;
    return line.front() == '\t' && std::count(line.begin(), line.end(), ' ') < 3;
  }

  Result<Done> TakeRows(Indented indented) {
    std::string_view line;
    while (lines_.Next(line)) {
      if (indented == Indented::PassedOver && IsIndented(line)) continue;
      const Row row = TakeRow(WithoutRemark(line));
      if (row == Row::Refused) return why_;
      if (row == Row::Last) break;
    }
    return Done{};
  }

  // The number of the field at the front of the row, in 32 bits; false when it is none, with why_.
  bool TakeField(std::string_view& row, double unit, float& out) {
    double value = 0;
    const std::string_view before = row;
    if (!TakeNumber(row, value)) {
      why_ = Here(Shown(FrontField(before)) + " is not a number");
      return false;
    }
    if (std::fabs(value * unit) > kLargest) {
      why_ = Here(Shown(FrontField(before)) + " is too large");
      return false;
    }
    out = static_cast<float>(value * unit);
    row = SkipSeparators(row);
    return true;
  }

  Row Refuse(const std::string& message) {
    why_ = Here(message);
    return Row::Refused;
  }

  Row TakeRow(std::string_view row) {
    row = SkipSeparators(row);
    if (row.empty()) return Row::Taken;
    float hertz = 0;
    if (!TakeField(row, static_cast<double>(options_.HertzPerUnit), hertz)) return Row::Refused;
    TouchstoneTable::Column& frequency = table_.FileTable[0];
    const auto last = static_cast<std::size_t>(table_.Rows);
    if (hertz < 0 && last == 0) return Refuse("the frequency is below 0");
    if (last > 0 && hertz < frequency[last]) return Row::Last;
    if (last == kFileRows) return Refuse("more than 1000 rows");

    const std::size_t at = last + 1;
    frequency[at] = hertz;
    std::size_t column = 0;
    while (!row.empty()) {
      float value = 0;
      if (!TakeField(row, 1, value)) return Row::Refused;
      if (++column >= table_.FileTable.size()) return Refuse("more than 8 values in a row");
      table_.FileTable[column][at] = value;
    }
    table_.Rows = static_cast<int>(at);
    table_.Columns = static_cast<int>(column);
    lineOf_[at] = lines_.Number();
    return Row::Taken;
  }

  // Row 0 is left as it is: 0, whatever the format.
  Result<Done> ToRealImaginary() {
    if (options_.Form == PairForm::RealImaginary) return Done{};
    const auto pairs = static_cast<std::size_t>(table_.Columns / 2);
    for (std::size_t row = 1; row <= static_cast<std::size_t>(table_.Rows); ++row)
      for (std::size_t pair = 0; pair < pairs; ++pair)
        if (!Turn(table_.FileTable[2 * pair + 1][row], table_.FileTable[2 * pair + 2][row]))
          return At(lineOf_[row], "a value is too large");
    return Done{};
  }

  // Magnitude, plain or in decibels, and angle in degrees to real and imaginary part.
  bool Turn(float& a, float& b) const {
    double m = static_cast<double>(a);
    if (options_.Form == PairForm::DecibelAngle) m = std::pow(10.0, m / 20);
    if (m > kLargest) return false;
    const double radians = static_cast<double>(b) * 3.14159265 / 180;
    a = static_cast<float>(m * std::cos(radians));
    b = static_cast<float>(m * std::sin(radians));
    return true;
  }

  Complex Value(std::size_t parameter, std::size_t row) const {
    constexpr Complex kAbsent{1e-6, 0};
    if (static_cast<int>(2 * parameter + 1) > table_.Columns) return kAbsent;
    return {static_cast<double>(table_.FileTable[2 * parameter + 1][row]),
            static_cast<double>(table_.FileTable[2 * parameter + 2][row])};
  }

  Result<Done> ConvertTo50() {
    const FileKind kind = table_.Kind();
    const std::size_t kept = kind == FileKind::AllFour ? 4 : kind == FileKind::WithS21 ? 2 : 1;
    for (std::size_t row = 0; row <= static_cast<std::size_t>(table_.Rows); ++row) {
      TwoPort s{Value(0, row), Value(2, row), Value(1, row), Value(3, row)};
      s = ConvertZo(options_.R, kInstrumentOhms, s);
      const std::array<Complex, 4> converted{s.p11, s.p21, s.p12, s.p22};
      for (std::size_t p = 0; p < kept; ++p) {
        const Complex z = converted[p];
        if (!(std::fabs(z.re) <= kLargest && std::fabs(z.im) <= kLargest))
          return At(lineOf_[row], "a value is too large");
        table_.FileTable[2 * p + 1][row] = static_cast<float>(z.re);
        table_.FileTable[2 * p + 2][row] = static_cast<float>(z.im);
      }
    }
    return Done{};
  }

  Lines lines_;
  TouchstoneOptions options_;
  TouchstoneTable table_;
  std::array<int, kFileRows + 1> lineOf_{};  // the line that a row stood on
  Failure why_;                              // of a row that is refused
};

}  // namespace

FileKind TouchstoneTable::Kind() const {
  switch (Columns) {
    case 2:
      return FileKind::OneParameter;
    case 4:
    case 6:
      return FileKind::WithS21;
    case 8:
      return FileKind::AllFour;
    default:
      return FileKind::None;
  }
}

Result<TouchstoneTable> ReadTouchstone(std::string_view text, Reference reference) {
  return Reader(text).Read(reference);
}

}  // namespace qk
