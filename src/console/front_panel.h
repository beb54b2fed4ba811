// SPDX-License-Identifier: MIT
// The commands of the text front panel: everything that mouse and keyboard can do in any window, by
// name, on the same forms as the windows, and further queries for scripts.
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

// The objects that the commands use. Functions may be empty where the surroundings do not provide
// them.
struct FrontPanelReach {
  FormRegistry& registry;
  Session& session;
  std::function<long()> SweepsEnded;  // measurement sweeps ended since the program started
  std::function<void(Program::MouseAction, bool leftButton, int x, int y)> Mouse;
  std::function<void(const std::string& path)> Drop;
  std::function<Extent()> PictureSize;
  std::function<void(int width, int height)> Resize;
  // Writes the picture area as an image file; returns the reason for a failure, otherwise empty.
  std::function<std::string(const std::string& path)> WritePicture;
  // Executes a command of the simulated bench: false if it is refused; text is the reply or the
  // reason.
  std::function<bool(std::string_view line, std::string& text)> Bench;
  // Performs deferred drawing of the picture: markers are read as drawn.
  std::function<void()> CatchUp;
  // Runs draw at a size in pixels and writes the result as an image file; returns the reason for a
  // failure.
  std::function<std::string(Extent size, const std::function<void(Canvas&)>& draw,
                            const std::string& path)>
      WriteDrawing;
  // Hints, checks and statistics; nullptr: "data" does not support them.
  const QualityState* Quality = nullptr;
  // For graph commands, file output and batches; nullptr if there is no complete program.
  Program* Owner = nullptr;
};

class FrontPanel {
 public:
  // Takes over the host's commands. Both must outlive the panel.
  FrontPanel(ConsoleHost& host, FrontPanelReach reach);

 private:
  using Outcome = ConsoleHost::Outcome;
  struct Verb {
    std::string_view Word;
    bool Query;  // accepted while a box or dialog is open
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
  // Mouse gestures at a position, and the verbs on a channel.
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
  // The control with the name "WINDOW.CONTROL"; if there is none, sets reason.
  std::optional<Place> Find(std::string_view dotted, std::string& reason) const;
  // The same, and the user can operate it now.
  std::optional<Place> FindOperable(std::string_view dotted, std::string& reason) const;
  // Why the user cannot operate a window now; empty if the user can.
  std::string Reachable(const Form& form, const Control* control = nullptr) const;

  ConsoleHost& host_;
  FrontPanelReach reach_;
};

}  // namespace qk
