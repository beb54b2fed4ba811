// SPDX-License-Identifier: MIT
// Loading and saving of session files: "Load Cal" and "Save Cal" of the menu, and DefCal.cal in the
// install folder, which restores the last state of the program.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/result.h"
#include "display/graphs.h"
#include "files/recent_files.h"
#include "link/instrument_link.h"

namespace qk {

class SessionFiles {
 public:
  SessionFiles(Rig& rig, Graphs& graphs, RecentFiles& recent)
      : rig_(rig), graphs_(graphs), recent_(recent) {}

  // Asks before a loaded session discards measured standards or a calibration that is in no session
  // file; returning false cancels the load without a change. title, of the question, names the
  // action. May be empty.
  std::function<bool(std::string_view title)> ConfirmDiscard;
  // OnSaved: the user saved a file. OnLoaded: a loaded session is now active. May be empty.
  std::function<void(const std::string& path)> OnSaved;
  std::function<void()> OnLoaded;

  // Loads a file that the user chooses into the session, the instrument and the windows. Refused
  // during a sweep. A file that cannot be read completely shows a message and changes nothing.
  void LoadCalDialog();
  // The same for a given file. title is that of a question before the load. Returns true if it was
  // loaded.
  bool LoadCal(const std::string& path, std::string_view title);
  // Saves the session into a file that the user chooses. If it cannot be written, a message is
  // shown and an existing file is unchanged.
  void SaveCalDialog();

  // Loads a session file into the session, the instrument and the windows; a failure changes
  // nothing. The caller ensures that no sweep is running.
  Result<Done> Load(const std::string& path);

  // Loads DefCal.cal at start-up; a missing file is not reported.
  void LoadDefaultCal();
  // Saves DefCal.cal at program end; the caller reports a failure. Does not overwrite the file of
  // an earlier run if this run neither read it (no instrument) nor loaded another session: defaults
  // would replace it. A file that was refused at start-up is kept as DefCal-refused.cal,
  // DefCal-refused-2.cal ...
  Result<Done> SaveDefaultCal();
  // True if the active calibration is in none of the recently used session files. One that was made
  // elsewhere, at an unknown time, counts as saved.
  bool CalibrationUnsaved() const;
  // Called when the session has been reset to its defaults.
  void Forget() { ours_ = refused_ = false; }

 private:
  bool MayLoad(std::string_view title);
  bool LoadChosen(const std::string& path);
  void SendToInstrument(std::int16_t averagesInForce, bool dwellInForce);
  std::string DefaultPath() const;

  Rig& rig_;
  Graphs& graphs_;
  RecentFiles& recent_;
  bool ours_ = false;     // a session was restored or loaded, so it may replace DefCal.cal
  bool refused_ = false;  // DefCal.cal exists but could not be read
};

}  // namespace qk
