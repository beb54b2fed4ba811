// SPDX-License-Identifier: MIT
#include "control/touchstone_load.h"

#include <filesystem>

#include "core/result.h"
#include "files/touchstone.h"
#include "files/touchstone_sweep.h"
#include "files/whole_file.h"

namespace qk {

namespace {
// Far more than 1000 rows with comments need; larger files are refused.
constexpr std::size_t kLargestFile = std::size_t{16} << 20;

// The usual filters, followed by one with the extensions of all files that can be read.
constexpr const char* kFilesToLoad =
    "All Files (*.*)|*.*|spara_files(*.s?p)|*.s?p|"
    "touchstone_files(*.s1p;*.s2p;*.ts)|*.s1p;*.s2p;*.ts|";

void ShowFailure(Prompts& prompts, const std::string& why) {
  prompts.ShowMessage("Load Data", "Invalid data. Check data is in Touchstone format.\n" + why,
                      Icon::Exclamation);
}

// Reads the table of a file; a failure is shown.
std::optional<TouchstoneTable> Read(Prompts& prompts, const std::string& path,
                                    Reference reference) {
  const Result<std::string> text = ReadWhole(path, kLargestFile);
  if (!text) {
    ShowFailure(prompts, text.Why().Text());
    return std::nullopt;
  }
  Result<TouchstoneTable> table = ReadTouchstone(*text, reference);
  if (!table) {
    ShowFailure(prompts, table.Why().Text());
    return std::nullopt;
  }
  return *table;
}

std::string NameOfFile(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

std::string TakenBy(const Session& session, const std::string& path, const TouchstoneTable& table) {
  const std::string file = NameOfFile(path);
  const DisplaySetRow& channels = RowOf(session.Display.DisplaySet);
  std::string takers;
  for (int n = channels.First; n <= channels.Last; ++n)
    if (HasParameter(table.Kind(), session.Channel(n).Parameter))
      takers += (takers.empty() ? "CH" : ", CH") + std::to_string(n);
  return takers.empty() ? file + ": no channel on display shows its parameters"
                        : file + " in memory of " + takers;
}
}  // namespace

std::optional<std::string> ChooseTouchstone(const Session& session, Prompts& prompts) {
  std::optional<std::string> path =
      prompts.Choose({DialogKind::Open, "Load Data", session.InstallFolder, kFilesToLoad, 2});
  if (!path) ShowFailure(prompts, "Cancel was selected.");
  return path;
}

std::optional<std::string> LoadMemory(Session& session, Prompts& prompts, const std::string& path) {
  const auto table = Read(prompts, path, Reference::ConvertedTo50);
  if (!table) return std::nullopt;
  if (ToMemory(*table, session) == Interval::Empty)
    prompts.ShowMessage("CS Computation", "Cubic Spline Data Error", Icon::None);
  return TakenBy(session, path, *table);
}

std::optional<std::string> LoadNetwork(Session& session, Prompts& prompts, int port) {
  const auto path = ChooseTouchstone(session, prompts);
  if (!path) return std::nullopt;
  const auto table = Read(prompts, *path, Reference::Ignored);
  if (!table) return std::nullopt;
  if (ToNetwork(*table, session.Plan, session.Networks.OfPort(port)) == Interval::Empty)
    prompts.ShowMessage("Load Measurements", "Cubic Spline data error", Icon::Exclamation);
  return NameOfFile(*path);
}

}  // namespace qk
