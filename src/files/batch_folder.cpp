// SPDX-License-Identifier: MIT
#include "files/batch_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>
#include <system_error>
#include <tuple>

#include "core/characters.h"
#include "core/descriptor.h"
#include "core/text.h"
#include "core/vocabulary.h"
#include "files/whole_file.h"
#include "limits/verdict.h"

namespace qk {

namespace {
namespace fs = std::filesystem;

constexpr std::string_view kFirstLine = "QK47-20-09 batch 1";
constexpr std::size_t kLargestText = std::size_t{1} << 16;
constexpr std::size_t kLargestLog = std::size_t{256} << 20;

constexpr std::string_view kHead =
    "utc,serial,run,verdict,file,note,"
    "ch1_parameter,ch1_margin,ch1_unit,ch1_at_Hz,ch2_parameter,ch2_margin,ch2_unit,ch2_at_Hz,"
    "ch3_parameter,ch3_margin,ch3_unit,ch3_at_Hz,ch4_parameter,ch4_margin,ch4_unit,ch4_at_Hz,"
    "markers,instrument,temperature_degC,calibrated_utc,operator";
constexpr std::size_t kFields = 27;

// A field without line ends, in quotes if necessary.
std::string Field(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  if (text.find_first_of(",\"") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + '"';
}

// The fields of a line; empty if a quote is not closed.
std::optional<std::vector<std::string>> FieldsOf(std::string_view line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quoted && c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
      fields.back() += line[++i];
    } else if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  if (quoted) return std::nullopt;
  return fields;
}

std::optional<int> WholeNumber(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// Stores a word and its value in the definition; returns the reason if it is invalid.
std::string TakeEntry(std::string_view word, std::string_view value, BatchDefinition& definition) {
  if (word == "prefix") {
    definition.Prefix = value;
  } else if (word == "pattern") {
    definition.Pattern = value;
  } else if (word == "operator") {
    definition.Operator = value;
  } else if (word == "sweeps") {
    const std::optional<int> sweeps = WholeNumber(value);
    if (!sweeps || *sweeps < 1 || *sweeps > 100) return "sweeps are 1 to 100";
    definition.Sweeps = *sweeps;
  } else if (word == "parameters") {
    definition.Parameters = {};
    while (!value.empty()) {
      const std::size_t end = std::min(value.find(' '), value.size());
      const std::string_view name = value.substr(0, end);
      value.remove_prefix(std::min(end + 1, value.size()));
      if (name.empty()) continue;
      const std::optional<Parameter> parameter = Named<Parameter>(name);
      if (!parameter) return "parameters are S11, S21, S12 and S22";
      definition.Parameters[static_cast<std::size_t>(*parameter)] = true;
    }
  } else {
    return "unknown word";
  }
  return {};
}

// The reason for ERROR, or one line about the worst channel, with the note: "CH1 S21 passes by
// 0.350 dB at 843.0000 MHz; not tested: CH1 1036.0000 to 1075.0000 MHz".
std::string AboutRow(const std::vector<std::string>& fields) {
  constexpr std::size_t kVerdict = 3, kNote = 5, kFirst = 6, kPerChannel = 4;
  if (fields[kVerdict] == WordOf(Verdict::Error)) return fields[kNote];
  std::optional<LimitMargin> worst;
  std::string position;
  for (std::size_t c = 0; c < kChannels; ++c) {
    const std::size_t at = kFirst + kPerChannel * c;
    const auto parameter = Named<Parameter>(fields[at]);
    const auto unit = Named<Unit>(fields[at + 2]);
    if (!parameter || !unit) continue;
    double margin = -std::numeric_limits<double>::infinity();  // "no number"
    ParseNumber(fields[at + 1], margin);
    if (worst && worst->Margin <= margin) continue;
    worst = LimitMargin{static_cast<int>(c) + 1, *parameter, *unit, margin, 1, margin < 0};
    const std::string& hertz = fields[at + 3];
    position = hertz.empty() ? "" : FormatNumber(Val(hertz) / 1e6, "###0.0000") + " MHz";
  }
  if (!worst) return fields[kNote];
  return OutcomeAt(*worst, position) + (fields[kNote].empty() ? "" : "; " + fields[kNote]);
}

std::string Percent(int part, int whole) {
  return whole == 0 ? "-" : FormatNumber(100.0 * part / whole, "#0.0") + " %";
}

}  // namespace

std::string BatchPath(const std::string& folder, std::string_view name) {
  return (fs::path(folder) / name).string();
}

std::string BatchText(const BatchDefinition& definition) {
  std::string parameters;
  for (std::size_t p = 0; p < definition.Parameters.size(); ++p)
    if (definition.Parameters[p])
      parameters += " " + std::string(NameOf(static_cast<Parameter>(p)));
  return std::string(kFirstLine) + "\nprefix " + OnOneLine(definition.Prefix) + "\npattern " +
         OnOneLine(definition.Pattern) + "\nparameters" + parameters + "\nsweeps " +
         std::to_string(definition.Sweeps) + "\noperator " + OnOneLine(definition.Operator) + "\n";
}

Result<BatchDefinition> ReadBatchText(std::string_view text) {
  int number = 1;
  if (TakeLine(text) != kFirstLine)
    return Failure{"not a batch (it begins with " + std::string(kFirstLine) + ")", "line 1"};
  BatchDefinition definition;
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    ++number;
    if (line.empty() || line.front() == '#') continue;
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string why =
        TakeEntry(line.substr(0, end), line.substr(std::min(end + 1, line.size())), definition);
    if (!why.empty()) return Failure{why, "line " + std::to_string(number)};
  }
  return definition;
}

Result<BatchDefinition> LoadBatch(const std::string& folder) {
  const std::string path = BatchPath(folder, "batch.txt");
  const Result<std::string> text = ReadWhole(path, kLargestText);
  if (!text) return text.Why();
  Result<BatchDefinition> definition = ReadBatchText(*text);
  if (!definition) return Failure{definition.Why().Text(), path};
  return definition;
}

Result<Done> SaveBatch(const std::string& folder, const BatchDefinition& definition) {
  return WriteWhole(BatchPath(folder, "batch.txt"), BatchText(definition));
}

std::string BatchYield::Text() const {
  std::string text = std::to_string(Devices) + (Devices == 1 ? " piece: " : " pieces: ") +
                     std::to_string(Passed) + " passed, " + std::to_string(Failed) + " failed";
  if (Errors > 0) text += ", " + std::to_string(Errors) + " not tested";
  return text + ". Yield " + Percent(Passed, Passed + Failed) + ", first pass " +
         Percent(FirstPassed, FirstTested) + ".";
}

// ---- batch.csv ---------------------------------------------------------------------------------

Result<std::unique_ptr<BatchLog>> BatchLog::Open(const std::string& folder) {
  const std::string path = BatchPath(folder, "batch.csv");
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0666);
  if (fd < 0) return LastError(path, "cannot be opened");
  std::unique_ptr<BatchLog> log(new BatchLog(fd, path));
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
    return Failure{"is in use by another program", path};
  if (Result<Done> read = log->Read(); !read) return read.Why();
  return log;
}

BatchLog::~BatchLog() {
  ::close(fd_);
}

Result<Done> BatchLog::Read() {
  if (Result<Done> cut = RemoveTornRow(); !cut) return cut;
  const Result<std::string> text = ReadWhole(path_, kLargestLog);
  if (!text) return text.Why();
  if (text->empty()) {
    if (!WriteAll(fd_, std::string(kHead) + "\r\n") || ::fsync(fd_) != 0)
      return LastError(path_, "cannot be written");
    return Done{};
  }
  Result<std::vector<Entry>> entries = EntriesOf(*text);
  if (!entries) return Failure{entries.Why().Message, path_ + ": " + entries.Why().Place};
  entries_ = std::move(*entries);
  return Done{};
}

// A row that was cut off, by a power failure or a full disk, has no line end.
Result<Done> BatchLog::RemoveTornRow() {
  char last = '\n';
  const off_t size = ::lseek(fd_, 0, SEEK_END);
  if (size < 0 || (size > 0 && ::pread(fd_, &last, 1, size - 1) != 1))
    return LastError(path_, "cannot be read");
  if (last == '\n') return Done{};
  const Result<std::string> text = ReadWhole(path_, kLargestLog);
  if (!text) return text.Why();
  const std::size_t end = text->rfind('\n');
  const std::size_t whole = end == std::string::npos ? 0 : end + 1;
  if (::ftruncate(fd_, static_cast<off_t>(whole)) != 0 || ::fsync(fd_) != 0)
    return LastError(path_, "cannot be written");
  return Done{};
}

Result<std::vector<BatchLog::Entry>> BatchLog::EntriesOf(std::string_view table) {
  if (TakeLine(table) != kHead) return Failure{"not the table of a batch", "line 1"};
  std::vector<Entry> entries;
  for (int number = 2; !table.empty(); ++number) {
    const auto fields = FieldsOf(TakeLine(table));
    const auto run = fields && fields->size() == kFields ? WholeNumber((*fields)[2]) : std::nullopt;
    const auto verdict = run ? std::ranges::find(kVerdicts, (*fields)[3], WordOf) : kVerdicts.end();
    if (verdict == kVerdicts.end() || *run < 1)
      return Failure{"not a row of a batch", "line " + std::to_string(number)};
    entries.push_back({(*fields)[1], *run, *verdict, (*fields)[4], AboutRow(*fields)});
  }
  return entries;
}

Result<Done> BatchLog::Append(const BatchRow& row) {
  std::string line = Field(row.Utc) + "," + Field(row.Serial) + "," + std::to_string(row.Run) +
                     "," + std::string(WordOf(row.Outcome)) + "," + Field(row.File) + "," +
                     Field(row.Note);
  for (const BatchMargin& margin : row.Channels)
    for (const std::string& text : {margin.Parameter, margin.Margin, margin.Unit, margin.Hertz})
      line += "," + Field(text);
  for (const std::string& text :
       {row.Markers, row.Instrument, row.Temperature, row.Calibrated, row.Operator})
    line += "," + Field(text);
  if (Result<Done> cut = RemoveTornRow(); !cut) return cut;  // of an earlier failure
  const off_t before = ::lseek(fd_, 0, SEEK_END);
  if (!WriteAll(fd_, line + "\r\n") || ::fsync(fd_) != 0) {
    Failure why = LastError(path_, "cannot be written");
    // If the row cannot be removed now, the next one or the next start removes it.
    if (before >= 0) std::ignore = ::ftruncate(fd_, before);
    return why;
  }
  // As read back, so that a list of results is the same after a restart.
  const std::optional<std::vector<std::string>> fields = FieldsOf(line);
  entries_.push_back(
      {row.Serial, row.Run, row.Outcome, row.File, fields ? AboutRow(*fields) : row.Note});
  return Done{};
}

const BatchLog::Entry* BatchLog::LastOf(std::string_view serial) const {
  for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry)
    if (entry->Serial == serial) return &*entry;
  return nullptr;
}

std::string BatchLog::NextFile(const std::string& prefix, const std::string& serial) const {
  const Entry* last = LastOf(serial);
  for (int number = last == nullptr ? 1 : last->Run + 1;; ++number) {
    std::string name =
        prefix + serial + (number == 1 ? std::string() : "-" + std::to_string(number));
    if (AsciiLower(name) == "batch") continue;  // its .csv would be the table itself
    if (std::ranges::find(entries_, name, &Entry::File) == entries_.end()) return name;
  }
}

BatchYield BatchLog::Yield() const {
  std::map<std::string_view, Verdict> last, first;
  for (const Entry& entry : entries_) {
    last[entry.Serial] = entry.Outcome;
    if (entry.Outcome != Verdict::Error) first.try_emplace(entry.Serial, entry.Outcome);
  }
  BatchYield yield;
  yield.Devices = static_cast<int>(last.size());
  for (const auto& [serial, verdict] : last) {
    yield.Passed += IsPass(verdict);
    yield.Failed += verdict == Verdict::Fail;
    yield.Errors += verdict == Verdict::Error;
  }
  yield.FirstTested = static_cast<int>(first.size());
  for (const auto& [serial, verdict] : first) yield.FirstPassed += IsPass(verdict);
  return yield;
}

}  // namespace qk
