// SPDX-License-Identifier: MIT
// Recognises the repeats of a held key. The window system reports a repeat as a release and a press
// of the same moment. The toolkit takes it for a repeat only if it finds both in its queue at once,
// which it often does not; a held Escape or Enter then acts again and again. This application
// filter marks such a press as a repeat. It is limited to keys that act once, without Ctrl or Alt.
#pragma once

#include <QObject>

namespace qk {

class HeldKeys : public QObject {
 public:
  HeldKeys();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int released_ = 0;        // the key released last
  quint64 releasedMs_ = 0;  // by the clock of the window system
};

}  // namespace qk
