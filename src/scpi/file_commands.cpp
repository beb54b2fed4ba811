// SPDX-License-Identifier: MIT
// Files of remote clients: MMEMory, in a folder of their own.
#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "control/output_verbs.h"
#include "control/report.h"
#include "core/local_time.h"
#include "files/csv.h"
#include "files/measurement_text.h"
#include "files/provenance.h"
#include "files/session_file.h"
#include "files/touchstone2_text.h"
#include "files/whole_file.h"
#include "scpi/call.h"
#include "scpi/commands.h"

namespace qk::scpi {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 64;
constexpr std::size_t kLargestTransfer = 4 << 20;

fs::path Folder(const Call& call) {
  return fs::path(call.session.InstallFolder) / "remote";
}

bool IsNameChar(char c, bool first) {
  const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
  return plain || (!first && (c == '.' || c == '_' || c == '-'));
}

bool IsFileName(std::string_view name) {
  if (name.empty() || name.size() > kLongestName) return false;
  for (std::size_t i = 0; i < name.size(); ++i)
    if (!IsNameChar(name[i], i == 0)) return false;
  return true;
}

bool FolderIsLink(const Call& call) {
  std::error_code ignored;
  return fs::is_symlink(fs::symlink_status(Folder(call), ignored));
}

// The path for a file name parameter; empty, with its error, if clients may not use that file.
// Links are refused, because they could lead to any place.
std::optional<fs::path> PathAt(Call& call, std::size_t i) {
  const auto name = call.Text(i);
  if (!name) return std::nullopt;
  std::error_code ignored;
  const fs::path path = Folder(call) / *name;
  const auto kind =
      IsFileName(*name) ? fs::symlink_status(path, ignored).type() : fs::file_type::none;
  const bool usable = kind == fs::file_type::regular || kind == fs::file_type::not_found;
  if (!IsFileName(*name) || FolderIsLink(call) || !usable) {
    call.Fail(kFileName, *name);
    return std::nullopt;
  }
  return path;
}

std::optional<fs::path> ExistingAt(Call& call, std::size_t i) {
  auto path = PathAt(call, i);
  std::error_code ignored;
  if (path && !fs::is_regular_file(*path, ignored)) {
    call.Fail(kFileNotFound, path->filename().string());
    return std::nullopt;
  }
  return path;
}

std::optional<fs::path> NewAt(Call& call, std::size_t i) {
  auto path = PathAt(call, i);
  if (!path) return std::nullopt;
  std::error_code failed;
  fs::create_directories(Folder(call), failed);
  if (failed) {
    call.Fail(kMassStorage, failed.message());
    return std::nullopt;
  }
  return path;
}

void Report(Call& call, const Result<Done>& result) {
  if (!result) call.Fail(kMassStorage, result.Why().Message);
}

// Puts the last complete sweep into the session during its lifetime: the session's own data are
// incomplete while a sweep is running.
class WholeSweep {
 public:
  WholeSweep(Call& call, SweepMode mode) : session_(call.session) {
    const Parameter first = mode == SweepMode::S21 ? Parameter::S21 : Parameter::S11;
    const KeptSweep kept = call.remote.RawSweep(call.client, first);
    if (kept == nullptr) return;
    data_ = std::make_unique<SParamData>(kept->Data);
    std::swap(*data_, session_.Data);
  }
  ~WholeSweep() {
    if (data_ != nullptr) std::swap(*data_, session_.Data);
  }
  WholeSweep(const WholeSweep&) = delete;
  WholeSweep& operator=(const WholeSweep&) = delete;
  bool Here() const { return data_ != nullptr; }

 private:
  Session& session_;
  std::unique_ptr<SParamData> data_;
};

// Version 2 if "V2" follows the name, or if the extension exists only for version 2.
std::optional<bool> VersionTwo(Call& call, const fs::path& path) {
  if (call.Count() > 1) {
    const auto version = call.Word(1, {"V1", "V2"});
    return version ? std::optional(*version == 1) : std::nullopt;
  }
  return SameWord(path.extension().string(), ".ts");
}

// The parameters for a Touchstone file of this name, always complete ports. Readers take the number
// of ports from the extension: only S11 for .s1p, all four parameters for .s2p, the measured ones
// for other extensions.
std::optional<std::array<bool, 4>> PortsFor(Call& call, const fs::path& path) {
  constexpr std::array<bool, 4> kOnePort{true, false, false, false};
  constexpr std::array<bool, 4> kTwoPorts{true, true, true, true};
  const std::array<bool, 4> measured = MeasuredParameters(call.session);
  const std::string ending = path.extension().string();
  if (SameWord(ending, ".s1p")) {
    if (measured[static_cast<std::size_t>(Parameter::S11)]) return kOnePort;
    call.Fail(kSettingsConflict, "S11 is not measured");
    return std::nullopt;
  }
  if (measured == kTwoPorts) return kTwoPorts;
  if (measured == kOnePort && !SameWord(ending, ".s2p")) return kOnePort;
  call.Fail(kSettingsConflict,
            "not all four parameters are measured: use a name that ends with .s1p, or STOR:CSV");
  return std::nullopt;
}

void StoreNetwork(Call& call) {
  const auto path = NewAt(call, 0);
  if (!path) return;
  const auto second = VersionTwo(call, *path);
  if (!second) return;
  const std::optional<SweepMode> mode = ModeInForce(call.session.Cal);
  if (!mode) return call.Fail(kSettingsConflict, "no calibration");
  const WholeSweep sweep(call, *mode);
  if (!sweep.Here()) return call.Fail(kStaleData);
  const auto parameters = PortsFor(call, *path);
  if (!parameters) return;
  MeasurementChoice choice;
  choice.Parameters = *parameters;
  EventLoop& loop = call.remote.host().loop;
  const LocalTime now = loop.Now();
  Result<std::string> text = std::string();
  if (*second)
    text =
        Touchstone2Text(call.session, choice, "", ProvenanceOf(call.session, loop.UnixSeconds()));
  else
    text = MeasurementText(call.session, choice, {kNoComment, DateText(now), TimeText(now)});
  if (!text) return call.Fail(kSettingsConflict, text.Why().Message);
  Report(call, WriteWhole(path->string(), *text));
}

// The columns named after the file; real and imaginary part if there are none.
std::optional<CsvChoice> Columns(Call& call) {
  CsvChoice choice;
  if (call.Count() == 1) choice.With(CsvColumn::Re).With(CsvColumn::Im);
  for (std::size_t i = 1; i < call.Count(); ++i) {
    const Item& item = call.At(i);
    if (item.Kind != ItemKind::Word) {
      call.Fail(kDataType);
      return std::nullopt;
    }
    const std::optional<CsvColumn> column = CsvColumnOf(item.Raw);
    if (!column) {
      call.Fail(kIllegalValue, std::string(item.Raw.substr(0, kLongestName)));
      return std::nullopt;
    }
    choice.With(*column);
  }
  return choice;
}

bool OfReflectionsAlone(const CsvChoice& choice) {
  for (std::size_t c = 0; c < kCsvColumns.size(); ++c)
    if (choice.Columns[c] && !kCsvColumns[c].ReflectionOnly) return false;
  return true;
}

void StoreTable(Call& call) {
  const auto path = NewAt(call, 0);
  if (!path) return;
  auto choice = Columns(call);
  if (!choice) return;
  const std::optional<SweepMode> mode = ModeInForce(call.session.Cal);
  if (!mode) return call.Fail(kSettingsConflict, "no calibration");
  const WholeSweep sweep(call, *mode);
  if (!sweep.Here()) return call.Fail(kStaleData);
  choice->Parameters = MeasuredParameters(call.session);
  // Columns that exist only for reflections exclude the transmission parameters.
  if (OfReflectionsAlone(*choice))
    for (const Parameter other : {Parameter::S21, Parameter::S12})
      choice->Parameters[static_cast<std::size_t>(other)] = false;
  if (std::ranges::none_of(choice->Parameters, std::identity()))
    return call.Fail(kSettingsConflict, "no reflection is measured");
  Report(call, SaveCsv(call.remote.controller(), path->string(), *choice));
}

void StoreState(Call& call) {
  if (const auto path = NewAt(call, 0)) Report(call, SaveSession(path->string(), call.session));
}

void StoreImage(Call& call) {
  if (call.client.AwaitsOwn) return call.Fail(kStaleData);  // the screen shows an earlier sweep
  if (const auto path = NewAt(call, 0)) {
    call.remote.controller().graphs().CatchUp();
    const Result<Done> saved = SavePicture(call.remote.controller(), path->string());
    // The extension determines the format.
    if (!saved && saved.Why().Message == "Unknown Image Format")
      return call.Fail(kFileName, path->filename().string() + ": " + saved.Why().Message);
    Report(call, saved);
  }
}

void LoadState(Call& call) {
  const auto path = ExistingAt(call, 0);
  if (!path) return;
  if (call.remote.Sweeping()) return call.Fail(kSettingsConflict, "a sweep runs");
  if (const auto kept = call.remote.calibration().KeepOld(); kept)
    return call.Fail(kept->Number, kept->Detail);
  Report(call, call.remote.controller().files().Load(path->string()));
}

void Transfer(Call& call) {
  const auto path = ExistingAt(call, 0);
  if (!path) return;
  const Result<std::string> bytes = ReadWhole(path->string(), kLargestTransfer);
  if (!bytes) return call.Fail(kMassStorage, bytes.Why().Message);
  call.ReplyBlock(*bytes);
}

void CatalogOfFiles(Call& call) {
  std::error_code ignored;
  if (FolderIsLink(call)) return call.Fail(kFileName, "the folder is a link");
  std::vector<std::pair<std::string, std::uintmax_t>> files;
  std::uintmax_t used = 0;
  // Uses error codes throughout, because the folder may change meanwhile.
  for (fs::directory_iterator at(Folder(call), ignored), end; at != end; at.increment(ignored)) {
    const std::string name = at->path().filename().string();
    std::error_code gone;
    if (!IsFileName(name) || !fs::is_regular_file(at->symlink_status(gone))) continue;
    const std::uintmax_t size = at->file_size(gone);
    if (gone) continue;
    files.emplace_back(name, size);
    used += size;
  }
  std::ranges::sort(files);
  const fs::space_info space = fs::space(call.session.InstallFolder, ignored);
  std::string text = std::to_string(used) + "," + std::to_string(space.available);
  for (const auto& [name, size] : files) text += ",\"" + name + ",," + std::to_string(size) + "\"";
  call.Reply(text);
}

void DeleteFileNamed(Call& call) {
  const auto path = ExistingAt(call, 0);
  if (!path) return;
  std::error_code failed;
  fs::remove(*path, failed);
  if (failed) call.Fail(kMassStorage, failed.message());
}

constexpr const char* kFile = "'<file>'";

constexpr Row kFileRows[] = {
    {.Pattern = "MMEMory:STORe:SNP",
     .Set = StoreNetwork,
     .Takes = "'<file>'[,V1|V2]",
     .Help = "The last whole sweep as a Touchstone file of version 1 (MHz, magnitude and angle) or "
             "2 (hertz, real and imaginary part with all digits). Without a version, 2 for a name "
             "that ends with .ts. S11 alone for a name that ends with .s1p; .s2p needs all four "
             "parameters. Files are in the folder `remote` of the program's folder.",
     .Before = Needs::Completion,
     .SetTakes = {1, 2}},
    {.Pattern = "MMEMory:STORe:CSV",
     .Set = StoreTable,
     .Takes = "'<file>'[,<column>...]",
     .Help = "The last whole sweep as a table of comma-separated values. Columns: RE IM MAG DB DEG "
             "UNWRAPPED DELAY, of reflections also SWR R X Z L C Q; without any, RE and IM.",
     .Before = Needs::Completion,
     .SetTakes = {1, 1 + kCsvColumns.size()}},
    {.Pattern = "MMEMory:STORe:STATe",
     .Set = StoreState,
     .Takes = kFile,
     .Help = "The session, with its calibration.",
     .Before = Needs::Completion},
    {.Pattern = "MMEMory:STORe:IMAGe",
     .Set = StoreImage,
     .Takes = kFile,
     .Help = "The picture; the form follows the ending: vectors for .svg and .pdf, else an image.",
     .Before = Needs::Completion},
    {.Pattern = "MMEMory:LOAD:STATe",
     .Set = LoadState,
     .Takes = kFile,
     .Help = "A session. The calibration that was in force is kept as BeforeRemote.cal, or "
             "with the next free number.",
     .Before = Needs::Completion},
    {.Pattern = "MMEMory:TRANsfer",
     .Query = Transfer,
     .Asks = kFile,
     .Help = "The bytes of a file as a block.",
     .Otherwise = Fallback::Block,
     .QueryTakes = {1, 1}},
    {.Pattern = "MMEMory:CATalog",
     .Query = CatalogOfFiles,
     .Help = "Bytes used and free, then \"name,,size\" of each file.",
     .Otherwise = Fallback::Text},
    {.Pattern = "MMEMory:DELete",
     .Set = DeleteFileNamed,
     .Takes = kFile,
     .Help = "Deletes a file."},
    {.Pattern = "MMEMory:STORe:TRACe:FORMat:SNP",
     .Set = [](Call& call) { call.Word(0, {"RI"}); },
     .Query = [](Call& call) { call.Reply("RI"); },
     .Takes = "RI",
     .Help = "Form of CALCulate:DATA:SNP:PORTs?: real and imaginary parts.",
     .Otherwise = Fallback::Text,
     .Before = Needs::Nothing},
};

}  // namespace

std::span<const Row> FileRows() {
  return kFileRows;
}

}  // namespace qk::scpi
