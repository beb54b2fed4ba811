// SPDX-License-Identifier: MIT
// The commands of the text front panel: everything that mouse and keyboard do in any window, by
// name, over the same forms as the windows; and further queries for scripts.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "console/console_host.h"
#include "display/canvas.h"
#include "forms/program.h"

namespace qk {

// What the commands reach. The functions may be empty where the surroundings have none.
struct FrontPanelReach {
  FormRegistry& registry;
  Session& session;
  std::function<long()> SweepsEnded;  // measurement sweeps ended since the program started
  std::function<void(Program::MouseAction, bool leftButton, int x, int y)> Mouse;
  std::function<void(const std::string& path)> Drop;
  std::function<Extent()> PictureSize;
  std::function<void(int width, int height)> Resize;
  // Writes the picture area as an image file; gives the reason when it cannot, else nothing.
  std::function<std::string(const std::string& path)> WritePicture;
  // A line for the simulated bench: false when it is refused; text is the reply or the reason.
  std::function<bool(std::string_view line, std::string& text)> Bench;
  // The picture draws what it has put off: markers are read as they stand drawn.
  std::function<void()> CatchUp;
  // Writes what is drawn, at a size in pixels, as an image file; gives the reason when it cannot.
  std::function<std::string(Extent size, const std::function<void(Canvas&)>& draw,
                            const std::string& path)>
      WriteDrawing;
  // Holds hints, checks and statistics; nullptr: "data" does not know them.
  const QualityState* Quality = nullptr;
  // What works on graphs, writes files and runs batches; nullptr where there is no whole program.
  Program* Owner = nullptr;
};

class FrontPanel {
 public:
  // Takes the host's commands from now on. Both must outlive the panel.
  FrontPanel(ConsoleHost& host, FrontPanelReach reach);

 private:
  using Outcome = ConsoleHost::Outcome;
  struct Verb {
    std::string_view Word;
    bool Query;  // accepted while a box or dialog is up
    Outcome (FrontPanel::*Run)(std::string_view rest);
  };
  static const std::vector<Verb>& Verbs();

  Outcome Execute(std::string_view line);
  Outcome Answer(std::string_view rest);
  Outcome AnswerDialog(const Dialog& dialog, std::string_view rest);
  Outcome BatchCommand(std::string_view rest);
  Outcome Bench(std::string_view rest);
  Outcome Click(std::string_view rest);
  Outcome Close(std::string_view rest);
  Outcome Compare(std::string_view rest);
  Outcome Controls(std::string_view rest);
  Outcome Data(std::string_view rest);
  Outcome Drop(std::string_view rest);
  Outcome Get(std::string_view rest);
  Outcome Graph(std::string_view rest);
  Outcome Mouse(std::string_view rest);
  // The gestures at a place, and the verbs on a channel.
  Outcome GestureAt(std::span<const std::string_view> words);
  Outcome MenuAt(const std::vector<MenuEntry>& menu, std::span<const std::string_view> words);
  Outcome MarkerOn(int channel, std::string_view where);
  Outcome OnChannel(int channel, std::span<const std::string_view> words);
  Outcome Panels(std::string_view rest);
  Outcome Picture(std::string_view rest);
  Outcome Quit(std::string_view rest);
  Outcome Resize(std::string_view rest);
  Outcome Save(std::string_view rest);
  Outcome Set(std::string_view rest);
  Outcome Undo(std::string_view rest);
  Outcome Wait(std::string_view rest);
  Outcome Windows(std::string_view rest);

  struct Place {
    Form& Window;
    const Control& Item;
  };
  // The control of that name, "WINDOW.CONTROL"; without it the reason why not.
  std::optional<Place> Find(std::string_view dotted, std::string& reason) const;
  // The same, and a person can work it just now.
  std::optional<Place> FindWorkable(std::string_view dotted, std::string& reason) const;
  // Why a person cannot reach a window just now; empty when it can be.
  std::string Reachable(const Form& form, const Control* control = nullptr) const;

  ConsoleHost& host_;
  FrontPanelReach reach_;
};

}  // namespace qk
