// SPDX-License-Identifier: MIT
#include "files/touchstone.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "core/instrument_limits.h"
#include "files/touchstone2.h"
#include "files/touchstone_convert.h"
#include "files/touchstone_options.h"
#include "files/touchstone_text.h"

namespace qk {

namespace {

class Reader {
 public:
  explicit Reader(std::string_view text) : lines_(text) {}

  Result<TouchstoneTable> Read(Reference reference) {
    if (Result<Done> done = TakeOptionLine(); !done) return done.Why();
    const TextLines rows = lines_;
    if (Result<Done> done = RefuseMorePorts(rows); !done) return done.Why();
    if (Result<Done> done = TakeRows(Indented::PassedOver); !done) return done.Why();
    if (table_.Rows == 0) {  // a file with all rows indented
      lines_ = rows;
      if (Result<Done> done = TakeRows(Indented::Taken); !done) return done.Why();
    }
    if (table_.Rows == 0) return Failure{"no data", {}};
    if (Result<Done> done = ToRealImaginary(table_, options_.Form, lineOf_); !done)
      return done.Why();
    const bool convert =
        options_.R >= kLeastOhms && options_.R <= kMostOhms && options_.R != kInstrumentOhms;
    if (convert && reference == Reference::ConvertedTo50)
      if (Result<Done> done = ConvertTableTo50(table_, options_.R, lineOf_); !done)
        return done.Why();
    return table_;
  }

 private:
  enum class Row { Taken, Last, Refused };
  enum class Indented { PassedOver, Taken };

  Failure Here(const std::string& message) const { return AtLine(lines_.Number(), message); }

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

  // The numbers of a line without its remark; none if a field is not a number.
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

  // Refuses a file with n > 2 ports by its first record: a frequency and n * n pairs on one or more
  // lines, with an odd number of values on the first line and an even number on continuation lines.
  // Continuation lines are usually indented: without this check, the first line of each record
  // would be read as the row of a two-port. An incomplete record is also refused if its next line
  // cannot be a separate row.
  static Result<Done> RefuseMorePorts(TextLines lines) {
    std::string_view line;
    int begin = 0;  // the first line of the record
    int cut = 0;    // the first continuation line that cannot be a row
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
      return AtLine(begin, "a file of " + std::to_string(ports) +
                               " ports, only files of one or two ports are read");
    if (cut != 0) return AtLine(cut, "continues the row before it, a row must be on one line");
    return Done{};
  }

  // Intentional: a line that begins with a blank is skipped, whether it is data or not. A line that
  // begins with a tab is skipped only if tabs separate its fields, that is, if it contains fewer
  // than three blanks.
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

  // Reads the first field of the row as a number in 32 bits; false if it is not a number, with why_
  // set.
  bool TakeField(std::string_view& row, double unit, float& out) {
    double value = 0;
    const std::string_view before = row;
    if (!TakeNumber(row, value)) {
      why_ = Here(ShownField(FrontField(before)) + " is not a number");
      return false;
    }
    if (std::fabs(value * unit) > kLargestPart) {
      why_ = Here(ShownField(FrontField(before)) + " is too large");
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

  TextLines lines_;
  TouchstoneOptions options_;
  TouchstoneTable table_;
  LineOfRow lineOf_{};
  Failure why_;  // the reason why a row is refused
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
  return IsTouchstone2(text) ? ReadTouchstone2(text, reference) : Reader(text).Read(reference);
}

}  // namespace qk
