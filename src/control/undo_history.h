// SPDX-License-Identifier: MIT
// The last changes of display, memory and markers, so that each can be undone. User actions run
// inside Around (or between BeginGesture and EndGesture); everything that differs afterwards is one
// step. Changes that the program makes by itself meanwhile (max/min hold, values that follow a
// sweep) are not steps.
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

  // Runs a user action. Actions of the same kind (not empty) that follow each other within one
  // second form one step, for example the turns of a mouse wheel.
  void Around(const std::function<void()>& action, std::string_view kind = {});
  // A mouse button is pressed on the picture: everything until its release is one step.
  void BeginGesture();
  void EndGesture();

  // Undoes the last step and updates graphs and windows. Returns a description, "undone: scale of
  // CH1", with what could not be restored. Fails if there is no step.
  Result<std::string> Undo();
  // "scale of CH1"; empty if there is nothing to undo.
  std::string Next() const;
  // Clears the history when another session is loaded: its changes cannot be undone.
  void Forget();

 private:
  struct Look;
  struct Memories;
  struct Step;
  class Scope;

  void Enter();
  void Leave(std::string_view kind);
  // Records the differences since the last snapshot as a step.
  void Commit(std::string_view kind);
  void TakeSnapshot();
  bool HoldOnly(int channel, int number) const;
  void Restore(const Step& step, std::vector<std::string>& lost);
  void RestoreMarkers(const Step& step, std::vector<std::string>& lost);
  void RestoreMemories(const Step& step, std::vector<std::string>& lost);

  Rig& rig_;
  Graphs& graphs_;
  std::unique_ptr<Look> look_;          // last snapshot
  std::unique_ptr<Memories> memories_;  // last snapshot
  std::deque<Step> steps_;              // the most recent step is last
  std::string kind_;                    // kind of the last step
  std::int64_t kindMs_ = 0;
  int depth_ = 0;
  bool gesture_ = false;
};

}  // namespace qk
