// SPDX-License-Identifier: MIT
// The session to and from its files: "Load Cal" and "Save Cal" of the menu, and DefCal.cal in the
// install folder, which brings the program back as it was left.
#pragma once

#include <functional>
#include <string>

#include "core/result.h"
#include "display/graphs.h"
#include "files/recent_files.h"
#include "link/instrument_link.h"

namespace qk {

class SessionFiles {
 public:
  SessionFiles(Rig& rig, Graphs& graphs, RecentFiles& recent)
      : rig_(rig), graphs_(graphs), recent_(recent) {}

  // Before a session replaces what is measured and not applied; false leaves all as it is. The
  // title is that of the question. May be empty.
  std::function<bool(const char* title)> MayDrop;
  // A file was saved by the user; a session has come into force. May be empty.
  std::function<void(const std::string& path)> OnSaved;
  std::function<void()> OnLoaded;

  // A file of the user's choice into the session, the instrument and the windows. Refused during a
  // sweep; a file that cannot be read whole is told and changes nothing.
  void LoadCalDialog();
  // The same for a file that is chosen already. True when it was loaded.
  bool LoadCal(const std::string& path);
  // The session into a file of the user's choice. Told when it cannot be written; the old file then
  // stands as it was.
  void SaveCalDialog();

  // A session file into the session, the instrument and the windows; a failure changes nothing.
  // The caller makes sure that no sweep runs.
  Result<Done> Load(const std::string& path);

  // DefCal.cal at start-up; a missing one is nothing to tell.
  void LoadDefaultCal();
  // DefCal.cal at the end; the caller tells a failure. Not over the file of an earlier run when
  // this one never came to read it (no instrument) nor loaded another: it would be lost for
  // defaults. A file that was refused at start-up is kept beside as DefCal-refused.cal,
  // DefCal-refused-2.cal ...
  Result<Done> SaveDefaultCal();
  // The session has been set to its defaults.
  void Forget() { ours_ = refused_ = false; }

 private:
  bool MayLoad();
  bool LoadChosen(const std::string& path);
  void BringToInstrument(std::int16_t averagesInForce, bool dwellInForce);
  std::string DefaultPath() const;

  Rig& rig_;
  Graphs& graphs_;
  RecentFiles& recent_;
  bool ours_ = false;     // the session has been restored or loaded: it may replace DefCal.cal
  bool refused_ = false;  // DefCal.cal stands, but could not be read
};

}  // namespace qk
