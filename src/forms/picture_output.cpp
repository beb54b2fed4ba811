// SPDX-License-Identifier: MIT
#include "forms/picture_output.h"

#include "control/output_verbs.h"
#include "control/proposed_name.h"
#include "core/window_names.h"
#include "display/page.h"

namespace qk {

namespace {

constexpr const char* kPrintTitle = "Print Graphics";
constexpr const char* kSaveTitle = "Save Graphics";
constexpr const char* kImageFiles =
    "Bitmat (*.bmp)|*.bmp|PNG_files(*.png)|*.png|GIF_files(*.gif)|*.gif|"
    "TIF_files(*.tif)|*.tif|JPEG_files(*.jpg)|*.jpg|"
    "SVG_files(*.svg)|*.svg|PDF_files(*.pdf)|*.pdf|";

constexpr const char* kFirstEnding = ".bmp";

// Uses the default colours during its lifetime; always restores the user's colours.
class UseDefaultColours {
 public:
  explicit UseDefaultColours(Session& session) : session_(session), saved_(session.Colour) {
    session_.Colour = {};
  }
  ~UseDefaultColours() { session_.Colour = saved_; }
  UseDefaultColours(const UseDefaultColours&) = delete;
  UseDefaultColours& operator=(const UseDefaultColours&) = delete;

 private:
  Session& session_;
  Colours saved_;
};

// Draws the picture for output, and returns its label, or an empty text if that is not enabled.
std::string LabelDrawn(Controller& controller) {
  const LabelState& state = controller.rig().session.Label;
  std::string label = state.Show ? state.Composed : std::string();
  controller.graphs().DrawGraphicsLabel(label);
  return label;
}

// Shows the dialog, prints the page, and reports failures.
void PrintPage(Host& host, PictureSurface& surface, PageJob job,
               const std::function<void()>& whenChosen) {
  const auto printer = host.prompts.Choose({DialogKind::Print, job.Title, "", "", 1});
  if (!printer) return;
  whenChosen();
  job.Printer = *printer;
  const Result<Done> printed = surface.Print(job);
  if (printed) return;
  std::string text = "Error 482 selecting printer.\n";  // shown if the printer fails
  host.prompts.ShowMessage(job.Title, text += printed.Why().Text(), Icon::Exclamation);
}

void PrintPicture(Controller& controller) {
  Graphs& graphs = controller.graphs();
  std::string label;
  PageJob job;
  job.Title = kPrintTitle;
  job.Size = graphs.Surface().Picture().Size();
  job.Draw = [&](Canvas& canvas) { graphs.Paint(canvas, label); };
  job.Place = PlaceOnPage;
  PrintPage(controller.rig().host, graphs.Surface(), job, [&] { label = LabelDrawn(controller); });
}

}  // namespace

void PrintGraphics(Controller& controller) {
  Session& session = controller.rig().session;
  if (session.Print.PrintDefaultColours) {
    const UseDefaultColours defaults(session);
    controller.graphs().RedrawAll(true);
    PrintPicture(controller);
  } else {
    PrintPicture(controller);
  }
  controller.graphs().RedrawAll(true);
}

void SaveGraphics(Controller& controller) {
  Host& host = controller.rig().host;
  const Session& session = controller.rig().session;
  const std::string name =
      ProposedName(session, host.loop.Now(), session.InstallFolder, kFirstEnding);
  const auto path = host.prompts.Choose(
      {DialogKind::Save, kSaveTitle, session.InstallFolder, kImageFiles, 1, {}, name});
  if (!path) return;
  if (const Result<Done> saved = SavePicture(controller, *path); !saved)
    host.prompts.ShowMessage(kSaveTitle, saved.Why().Message, Icon::Exclamation);
  else
    controller.notice().ShowSaved(*path);
}

void CopyGraphics(Controller& controller) {
  LabelDrawn(controller);
  const Result<Done> copied = controller.graphs().Surface().Copy();
  if (!copied)
    controller.rig().host.prompts.ShowMessage("Copy Picture", copied.Why().Message,
                                              Icon::Exclamation);
  else
    controller.notice().ShowWithTime("picture copied");
  controller.graphs().RedrawAll(true);
}

void PrintWindow(Host& host, PictureSurface& surface, const WindowPrint& print) {
  PageJob job;
  job.Title = print.Title;
  job.Size = print.Size;
  job.Draw = print.Draw;
  job.Place = FitOnPage;
  job.Window = print.Window;
  PrintPage(host, surface, job, [] {});
}

}  // namespace qk
