// SPDX-License-Identifier: MIT
#include "forms/batch_form.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "core/busy.h"
#include "core/text.h"
#include "core/window_names.h"
#include "display/canvas.h"
#include "files/serial_pattern.h"

namespace qk {

namespace {
constexpr const char* kBatchTitle = "Batch";
constexpr std::uint32_t kGreen = 0x1B6E2B, kRed = 0xB00020, kGrey = 0x606060, kAmber = 0x9A5B00,
                        kWhite = 0xFFFFFF;
constexpr int kPictureWidth = 420, kPictureHeight = 110;
constexpr std::size_t kLinesKept = 12;
constexpr std::int64_t kNextEnterMs = 700;

std::string NameOfRun(const std::string& serial, int run) {
  return run > 1 ? serial + " (run " + std::to_string(run) + ")" : serial;
}

std::uint32_t ColourOf(Verdict verdict) {
  return IsPass(verdict) ? kGreen : kRed;
}
}  // namespace

BatchForm::BatchForm(Controller& controller, Batch& batch)
    : Form(window::kBatch, kBatchTitle),
      controller_(controller),
      batch_(batch),
      host_(controller.rig().host) {
  Section("Set up");
  folder_ = AddText("Folder", "Folder", [this] { ShowState(); })
                .Key('F')
                .Chars(44)
                .Wide()
                .Tip("Folder for the table and the files of the pieces; created if missing");
  prefix_ = AddText("Prefix", "Prefix of files").Key('r').Chars(16);
  pattern_ = AddText("Pattern", "Serial pattern")
                 .Key('t')
                 .Chars(16)
                 .SameRow()
                 .Tip(
                     "# a digit, ? any character, * any number of them: A#### takes A0001. "
                     "Empty: any serial");
  operator_ = AddText("Operator", "Operator").Key('O').Chars(16);
  sweeps_ =
      AddText("Sweeps", "Sweeps a piece")
          .Key('w')
          .Number()
          .Chars(5)
          .SameRow()
          .Text("1")
          .Tip("1 to 100, after one that is discarded; the first sweep that fails fails the piece");
  Section("Parameters in the data file", {.How = Arrange::Row});
  parameters_ = {AddCheck("S11", "S11"), AddCheck("S21", "S21"), AddCheck("S12", "S12"),
                 AddCheck("S22", "S22")};
  itsSession_ = AddCheck("ItsSession", "Load the session stored in the folder")
                    .Key('L')
                    .Tip("Loads sweep, calibration and limits of the batch");
  Section("", {.How = Arrange::Row});
  open_ = AddButton("Open", "Open Batch...", [this] { OpenBatch(); })
              .Key('B')
              .Tip("Choose the batch.txt of a batch to continue");
  start_ = AddButton("Start", "Start Batch", [this] { Start(); })
               .Key('S')
               .Tip("Begins a batch, or continues the one in the folder");
  end_ = AddButton("End", "End Batch", [this] { End(); }).Key('E');

  Section("Piece");
  next_ = AddLabel("Next", "").Bold().Wide();
  serial_ = AddText("Serial", "Serial", [this] { NoteEarlyScan(); })
                .Key('i')
                .Chars(24)
                .WhileBusy()
                .Tip("Type or scan it; Enter measures. Empty: the next serial of the pattern");
  measure_ = AddButton("Measure", "Measure", [this] { MeasurePiece(); }).Key('M').SameRow();
  again_ = AddButton("Again", "Measure Again", [this] { MeasureAgain(); })
               .Key('g')
               .SameRow()
               .Tip("Measures the last piece again");
  serial_.Returns(measure_);
  verdict_ = AddPicture("Verdict").Picture(kPictureWidth, kPictureHeight,
                                           [this](Canvas& canvas) { DrawVerdict(canvas); });
  progress_ = AddProgress("ProgressBar1");
  Section("Results");
  yield_ = AddLabel("Yield", "").Wide();
  list_ = AddText("List", "").ReadOnly().Lines(8).Chars(64).Wide();
  ActionRow();
  AddButton("Exit", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');

  folder_.Text(batch_.PlaceOf("Batch"));
  // No box: the Enter of the next scan would answer it. A timer repeats some: one line each between
  // two pieces, so that they do not push the results out of the list.
  batch_.OnNotice = [this](const std::string& notice) {
    if (!Shown) return false;
    if (std::ranges::find(noticed_, notice) != noticed_.end()) return true;
    noticed_.push_back(notice);
    AddResult(notice);
    host_.windows.Beep();
    return true;
  };
  batch_.OnSweep = [this](int done, int of) {
    host_.windows.Progress(Name(), "ProgressBar1", 100 * done / of);
  };
}

void BatchForm::OnOpen() {
  if (!batch_.Running() && shownBatch_.empty()) {
    const std::array<bool, 4> measured = MeasuredParameters(controller_.rig().session);
    for (std::size_t p = 0; p < parameters_.size(); ++p) parameters_[p].Checked(measured[p]);
  }
  if (!batch_.Running()) {
    word_.clear();
    about_.clear();
  }
  ShowState();
}

BatchDefinition BatchForm::Definition() const {
  BatchDefinition definition;
  definition.Prefix = prefix_->Text;
  definition.Pattern = pattern_->Text;
  definition.Operator = operator_->Text;
  double sweeps = 0;
  const bool number = ParseNumber(sweeps_->Text, sweeps) && sweeps >= 1 && sweeps <= 100;
  definition.Sweeps = number ? static_cast<int>(sweeps) : 0;  // Start refuses 0
  for (std::size_t p = 0; p < parameters_.size(); ++p)
    definition.Parameters[p] = parameters_[p]->Checked;
  return definition;
}

void BatchForm::TakeDefinition(const BatchDefinition& definition) {
  prefix_.Text(definition.Prefix);
  pattern_.Text(definition.Pattern);
  operator_.Text(definition.Operator);
  sweeps_.Text(std::to_string(definition.Sweeps));
  for (std::size_t p = 0; p < parameters_.size(); ++p)
    parameters_[p].Checked(definition.Parameters[p]);
}

void BatchForm::OpenBatch() {
  const auto path = host_.prompts.Choose({DialogKind::Open, kBatchTitle, folder_->Text,
                                          "batch.txt|batch.txt|All Files (*.*)|*.*|", 1});
  if (!path) return;
  const std::string folder = std::filesystem::path(*path).parent_path().string();
  const Result<BatchDefinition> definition = LoadBatch(folder);
  if (!definition) {
    host_.prompts.ShowMessage(kBatchTitle, definition.Why().Text(), Icon::Exclamation);
    return;
  }
  folder_.Text(folder);
  TakeDefinition(*definition);
  itsSession_.Checked(batch_.IsIn(folder));
  ShowState();
}

void BatchForm::Start() {
  const std::string folder = folder_->Text;
  const bool goesOn = batch_.IsIn(folder);
  if (goesOn && !itsSession_->Checked) {
    const Answer answer = host_.prompts.Ask({kBatchTitle,
                                             "The folder already holds a batch. Continue it with "
                                             "the present session in place of the stored one?",
                                             Icon::Question, Buttons::YesNo});
    if (answer != Answer::Yes) return;
  }
  const Result<Done> started = batch_.Start(folder, Definition(), goesOn && itsSession_->Checked);
  if (!started) {
    host_.prompts.ShowMessage(kBatchTitle, started.Why().Text(), Icon::Exclamation);
    return;
  }
  word_.clear();
  about_.clear();
  results_.clear();
  for (const BatchLog::Entry& entry : batch_.Entries())
    AddResult(NameOfRun(entry.Serial, entry.Run) + "  " + std::string(WordOf(entry.Outcome)) +
              "  " + entry.Text);
  asked_.clear();
  ShowState();
}

void BatchForm::End() {
  batch_.End();
  ShowState();
}

void BatchForm::MeasurePiece() {
  std::string serial(Trimmed(serial_->Text));
  const bool early = !serial.empty() && serial == early_;
  if ((serial.empty() || early) && ComesTooSoon()) return;
  if (!early && !early_.empty()) AddReplaced(early_, serial);
  early_.clear();
  ShowNext();  // it named the serial that has just given way
  if (serial.empty()) serial = batch_.Next().value_or("");
  serial_.Text("");
  if (serial.empty()) {
    ShowInstead("SERIAL?", "Type or scan the serial of the piece.", kGrey);
    return;
  }
  if (const Result<Done> fits = CheckSerial(serial, batch_.Definition().Pattern); !fits) {
    Refuse(serial, fits.Why().Text());
    return;
  }
  const BatchLog::Entry* known = batch_.Known(serial);
  const bool again = known != nullptr && asked_ == serial;
  if (known != nullptr && !again) {
    Ask(serial, known->Outcome);
    return;
  }
  Measure(serial, again);
}

bool BatchForm::ComesTooSoon() {
  const std::int64_t now = host_.loop.NowMs();
  if (now - shownMs_ >= kNextEnterMs) return false;
  shownMs_ = now;
  return true;
}

// Not a message box: the Enter of the next scan would answer it, with another device connected.
void BatchForm::ShowInstead(std::string word, std::string about, std::uint32_t colour) {
  word_ = std::move(word);
  about_ = std::move(about);
  colour_ = colour;
  shownMs_ = host_.loop.NowMs();
  verdict_.Redraw();
  host_.windows.Beep();
}

// A serial entered while a device was being measured waits for another Enter, because its device is
// not connected yet.
void BatchForm::NoteEarlyScan() {
  if (!Busy()) return;
  const std::string scanned(Trimmed(serial_->Text));
  serial_.Text("");
  if (scanned.empty()) return;
  if (!early_.empty() && early_ != scanned) AddReplaced(early_, scanned);
  early_ = scanned;
}

// Only one serial can wait; the one that gives way is listed.
void BatchForm::AddReplaced(const std::string& serial, const std::string& by) {
  const std::string why =
      by.empty() ? "it was removed from the field" : by + " was entered instead";
  AddResult(serial + "  not measured: " + why);
}

void BatchForm::Ask(const std::string& serial, Verdict last) {
  asked_ = serial;
  ShowInstead("AGAIN?",
              serial + " was measured: " + std::string(WordOf(last)) + ". Scan or type " + serial +
                  " again to repeat it.",
              kGrey);
}

void BatchForm::Refuse(const std::string& serial, const std::string& why) {
  asked_.clear();
  AddResult(serial + "  not measured: " + why);
  ShowInstead("NOT MEASURED", why, kAmber);
}

void BatchForm::AddResult(const std::string& line) {
  results_ = line + "\n" + results_;
  std::size_t end = 0;
  for (std::size_t n = 0; n < kLinesKept && end != std::string::npos; ++n)
    end = results_.find('\n', end + (n > 0));
  if (end != std::string::npos) results_.resize(end);
  list_.Text(results_);
}

void BatchForm::MeasureAgain() {
  if (const std::string serial = batch_.LastSerial(); !serial.empty()) Measure(serial, true);
}

void BatchForm::Measure(const std::string& serial, bool again) {
  // Focus goes to the serial: the next scan must not press a button again.
  asked_.clear();
  noticed_.clear();
  measure_.Enabled(false);
  again_.Enabled(false);
  serial_.Text("");
  early_.clear();
  host_.windows.Refresh(Name());
  // Text typed or scanned from here on is the next serial.
  const BusyScope busy(*this, host_.windows, BusyScope::Input::Kept);
  word_ = "...";
  about_ = "Measuring " + serial;
  colour_ = kGrey;
  verdict_.Redraw();
  host_.windows.Refresh(Name());
  const Result<Batch::Device> piece = batch_.Measure(serial, again);
  progress_.Percent(0);
  if (piece) {
    word_ = WordOf(piece->Outcome);
    const std::string run = NameOfRun(piece->Serial, piece->Run);
    const bool judged = piece->Outcome != Verdict::Error;
    about_ = judged ? run : run + ": " + piece->Text;
    colour_ = ColourOf(piece->Outcome);
    AddResult(run + "  " + word_ + "  " + piece->Text);
  } else {
    Refuse(serial, piece.Why().Text());
  }
  host_.loop.LetEventsRun();  // the pending events belong to this device
  shownMs_ = host_.loop.NowMs();
  ShowState();
  if (early_.empty() || serial_->Edited) return;
  serial_.Text(early_);
  RequestFocus("Serial");  // selects it, so that another scan replaces it
  next_.Caption("Connect " + early_ + ", then press Enter.");
}

// If a folder contains a batch, shows its settings, so that Start continues it unchanged.
void BatchForm::TakeFolder(bool holdsBatch) {
  const std::string place = holdsBatch ? batch_.PlaceOf(folder_->Text) : std::string();
  if (place == shownBatch_) return;
  shownBatch_ = place;
  itsSession_.Checked(holdsBatch);
  if (!holdsBatch) return;
  if (const Result<BatchDefinition> definition = LoadBatch(place)) TakeDefinition(*definition);
}

void BatchForm::ShowState() {
  const bool running = batch_.Running();
  for (const Handle& field : {folder_, prefix_, pattern_, operator_, sweeps_, open_, start_,
                              parameters_[0], parameters_[1], parameters_[2], parameters_[3]})
    field.Enabled(!running);
  const bool there = batch_.IsIn(folder_->Text);
  if (!running) TakeFolder(there);
  itsSession_.Enabled(!running && there);
  for (const Handle& control : {end_, serial_, measure_}) control.Enabled(running);
  again_.Enabled(running && !batch_.LastSerial().empty());
  ShowNext();
  yield_.Caption(running ? batch_.Yield().Text() : " ");
  list_.Text(results_);
  verdict_.Redraw();
}

// What Enter measures while the field is empty.
void BatchForm::ShowNext() {
  if (!batch_.Running()) {
    next_.Caption("Start the batch.");
  } else if (const auto next = batch_.Next(); next) {
    next_.Caption("Connect " + *next + ", then press Enter.");
  } else {
    next_.Caption("Connect the next piece, then scan or type its serial.");
  }
}

void BatchForm::DrawVerdict(Canvas& canvas) const {
  const Extent size = canvas.Size();
  const bool empty = word_.empty();
  canvas.FillRectangle({0, 0}, {size.width - 1, size.height - 1}, empty ? kWhite : colour_);
  if (empty) return;
  const auto centred = [&](const std::string& text, int points, double middle) {
    canvas.SetFontSize(points);
    Extent extent = canvas.TextExtent(text);
    for (; points > 6 && extent.width > size.width - 8; extent = canvas.TextExtent(text))
      canvas.SetFontSize(--points);
    canvas.DrawText({(size.width - extent.width) / 2,
                     static_cast<int>(size.height * middle) - extent.height / 2},
                    text, kWhite);
  };
  centred(word_, std::max(8, size.height * 4 / 10), 0.40);
  centred(about_, std::max(8, size.height / 9), 0.84);
}

}  // namespace qk
