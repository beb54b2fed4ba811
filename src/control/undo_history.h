// SPDX-License-Identifier: MIT
// The last changes of display, memory and markers, so that each can be taken back. What the user
// does runs inside Around (or between BeginGesture and EndGesture); what is different behind it is
// one step. What the program does by itself meanwhile (a hold that takes extremes, a sweep that
// follows) is no step.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "display/graphs.h"
#include "link/instrument_link.h"

namespace qk {

class UndoHistory {
 public:
  static constexpr std::size_t kSteps = 10;

  UndoHistory(Rig& rig, Graphs& graphs);
  ~UndoHistory();

  // Runs what the user does. Actions of one kind (not empty) that follow each other within a second
  // are one step, as the turns of a wheel are.
  void Around(const std::function<void()>& action, std::string_view kind = {});
  // A button of the mouse is held down on the picture: until it is let go all is one step.
  void BeginGesture();
  void EndGesture();

  // Takes the last step back; graphs and windows follow. Gives what it was, "undone: scale of CH1",
  // with what could not be restored. Fails when there is no step.
  Result<std::string> Undo();
  // "scale of CH1", empty when there is nothing to undo.
  std::string Next() const;
  // Another session: its changes cannot be taken back.
  void Forget();

 private:
  struct Look;
  struct Memories;
  struct Step;
  class Scope;

  void Enter();
  void Leave(std::string_view kind);
  // What is different since the last look becomes a step.
  void Commit(std::string_view kind);
  void TakeLook();
  bool HoldOnly(int channel, int number) const;
  void Restore(const Step& step, std::vector<std::string>& lost);
  void RestoreMarkers(const Step& step, std::vector<std::string>& lost);
  void RestoreMemories(const Step& step, std::vector<std::string>& lost);

  Rig& rig_;
  Graphs& graphs_;
  std::unique_ptr<Look> look_;          // as last seen
  std::unique_ptr<Memories> memories_;  // likewise
  std::deque<Step> steps_;              // the last change last
  std::string kind_;                    // of the last step
  std::int64_t kindMs_ = 0;
  int depth_ = 0;
  bool gesture_ = false;
};

}  // namespace qk
