// SPDX-License-Identifier: MIT
// The commands for file output and batches.
#include <algorithm>
#include <filesystem>

#include "console/front_panel.h"
#include "console/words.h"
#include "control/output_verbs.h"
#include "files/session_compare.h"
#include "files/session_file.h"

namespace qk {

using namespace console;

namespace {

constexpr std::string_view kSaveUse =
    "save csv PARAMETERS COLUMNS FILE, save touchstone|touchstone2 PARAMETERS FILE, save report|"
    "picture FILE";
constexpr std::string_view kBatchUse =
    "batch start FOLDER, batch measure|again SERIAL, batch yield or batch end";

// The items of a comma-separated list, without a last empty one.
std::vector<std::string_view> Items(std::string_view list) {
  std::vector<std::string_view> items;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(','), list.size());
    items.push_back(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return items;
}

// "S11,S21" or "all"; returns the reason if a name is unknown.
std::string TakeParameters(std::string_view list, std::array<bool, 4>& parameters) {
  if (list == "all") {
    parameters.fill(true);
    return {};
  }
  for (const std::string_view name : Items(list)) {
    const std::optional<Parameter> parameter = Named<Parameter>(name);
    if (!parameter)
      return "no parameter " + std::string(name) + ": all, or S11, S21, S12, S22 between commas";
    parameters[static_cast<std::size_t>(*parameter)] = true;
  }
  return {};
}

ConsoleHost::Outcome OutcomeOf(const Result<Done>& result) {
  return result ? ConsoleHost::Outcome::Done() : ConsoleHost::Outcome::Refused(result.Why().Text());
}

}  // namespace

ConsoleHost::Outcome FrontPanel::Save(std::string_view rest) {
  if (reach_.Owner == nullptr) return Outcome::Refused("no program");
  Controller& controller = reach_.Owner->controller();
  const std::string_view kind = FirstWord(rest, rest);
  const bool csv = kind == "csv";
  if (kind == "picture" && !rest.empty())
    return OutcomeOf(SavePicture(controller, std::string(rest)));
  if (kind == "report" && !rest.empty())
    return OutcomeOf(SaveReport(controller, std::string(rest),
                                LoadReportSettings(reach_.session.InstallFolder), {}));
  if (!csv && kind != "touchstone" && kind != "touchstone2")
    return Outcome::Refused(std::string(kSaveUse));
  MeasurementChoice choice;
  CsvChoice table;
  if (std::string why = TakeParameters(FirstWord(rest, rest), choice.Parameters); !why.empty())
    return Outcome::Refused(why);
  if (csv)
    for (const std::string_view word : Items(FirstWord(rest, rest))) {
      const std::optional<CsvColumn> column = CsvColumnOf(word);
      if (!column) return Outcome::Refused("no column " + std::string(word));
      table.With(*column);
    }
  if (rest.empty()) return Outcome::Refused(std::string(kSaveUse));
  const std::string path(rest);
  table.Parameters = choice.Parameters;
  if (csv) return OutcomeOf(SaveCsv(controller, path, table));
  return OutcomeOf(kind == "touchstone" ? SaveMeasurement(controller, path, choice, kNoComment)
                                        : SaveTouchstone2(controller, path, choice, ""));
}

// compare FILE [FILE]: two session files, or one and the current session; names without blanks.
ConsoleHost::Outcome FrontPanel::Compare(std::string_view rest) {
  const auto words = Words(rest);
  if (words.empty() || words.size() > 2) return Outcome::Refused("compare FILE [FILE]");
  std::vector<std::unique_ptr<Session>> loaded;
  for (const std::string_view word : words) {
    loaded.push_back(MakeSession());
    if (const Result<Done> read = LoadSession(std::string(word), *loaded.back()); !read)
      return Outcome::Refused(read.Why().Text());
  }
  const bool two = words.size() == 2;
  std::string text =
      CompareSessions(*loaded[0], std::string(words[0]), two ? *loaded[1] : reach_.session,
                      two ? std::string(words[1]) : "(session in force)");
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = text.find('\n', from);
    host_.Reply(text.substr(from, end - from));
    from = end + 1;
  }
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::BatchCommand(std::string_view rest) {
  if (reach_.Owner == nullptr) return Outcome::Refused("no program");
  Batch& batch = reach_.Owner->batch();
  const std::string_view word = FirstWord(rest, rest);
  const std::string value(rest);
  if (word == "start" && !value.empty()) {
    BatchDefinition definition;
    definition.Parameters = MeasuredParameters(reach_.session);
    std::error_code ignored;
    if (std::filesystem::exists(BatchPath(batch.PlaceOf(value), "batch.txt"), ignored)) {
      const Result<BatchDefinition> kept = LoadBatch(batch.PlaceOf(value));
      if (!kept) return Outcome::Refused(kept.Why().Text());
      definition = *kept;
    }
    const Result<Done> started = batch.Start(value, definition, batch.IsIn(value));
    host_.SessionChanged();
    return OutcomeOf(started);
  }
  if (word == "measure" || word == "again") {
    const std::string serial = !value.empty()    ? value
                               : word == "again" ? batch.LastSerial()
                                                 : batch.Next().value_or("");
    if (word == "again" && serial.empty() && batch.Running())
      return Outcome::Refused("no piece has been measured yet");
    const Result<Batch::Device> piece = batch.Measure(serial, word == "again");
    host_.SessionChanged();
    if (!piece) return Outcome::Refused(piece.Why().Text());
    host_.Reply(piece->Serial + " " + std::to_string(piece->Run) + " " +
                std::string(WordOf(piece->Outcome)) + " " + piece->Text);
    return Outcome::Done();
  }
  if (!value.empty()) return Outcome::Refused(std::string(kBatchUse));
  if (word == "yield") {
    if (!batch.Running()) return Outcome::Refused("no batch is running");
    host_.Reply(batch.Yield().Text());
    return Outcome::Done();
  }
  if (word != "end") return Outcome::Refused(std::string(kBatchUse));
  batch.End();
  host_.SessionChanged();
  return Outcome::Done();
}

}  // namespace qk
