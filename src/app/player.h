// SPDX-License-Identifier: MIT
// Plays back a first measurement in the demonstration's windows, step by step and slowly enough to
// follow. It uses the same clicks and typed text as a user.
#pragma once

#include <functional>
#include <string>

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QAbstractButton;
class QMessageBox;
class QWidget;

namespace qk {

class QtHost;
struct Session;

class Player : public QObject {
 public:
  Player(QtHost& host, const Session& session);

  // Called with the description of each step, and with an empty text at the end.
  std::function<void(const std::string& step)> OnStep;

  // Asks first if an active calibration or measured standards would be lost.
  void Play();
  // False while a message box or a modal window is open, or the user is measuring a standard.
  bool MayPlay() const;
  void Stop();
  bool Playing() const { return look_.isActive(); }
  // How long each step and message box is shown, in milliseconds.
  void SetPace(int ms);

 private:
  void Look();
  // Shows a message box of the playback for a while, then answers it; any other box ends the
  // playback. False: there is none.
  bool ReadBox();
  // The button that answers a box of the step just done; nullptr for any other box.
  QAbstractButton* AnswerTo(const QMessageBox& box) const;
  void Do();

  QtHost& host_;
  const Session& session_;
  QTimer look_;
  QElapsedTimer shown_;    // since the last step was done, or the box was opened
  QPointer<QWidget> box_;  // the box being shown
  std::size_t next_ = 0;
  int pace_ = 1200;
};

}  // namespace qk
