// Measuring the calibration standards: one sweep each, prompted, with at least 16 averages.
#pragma once

#include "link/instrument_link.h"

namespace qk {

enum class Standard {
  LoadS11,
  ShortS11,
  OpenS11,
  LoadBoth,
  ShortBoth,
  OpenBoth,
  LoadInsertable,
  ShortInsertable,
  OpenInsertable,
  LoadPort1,
  ShortPort1,
  OpenPort1,  // non-insertable, one port at a time
  LoadPort2,
  ShortPort2,
  OpenPort2,
  ThruS21,
  ThruBoth,
  ThruInsertable,
  ThruNonInsertable,
  IsoS21,
  IsoBoth,
  IsoInsertable
};

// One standard: prompt, path, sweep, reduction into the session's arrays; progress goes to
// ProgressBar1 of "Calibration". False when a message "No Response" or "Sweep Not Set" ended it;
// the arrays then hold what they held.
bool MeasureStandard(Rig& rig, Standard standard);

}  // namespace qk
