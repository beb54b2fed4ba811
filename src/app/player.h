// SPDX-License-Identifier: MIT
// Plays a first measurement on the windows of the demonstration, step by step and slowly enough to
// be followed: what it does is what a person would click and type.
#pragma once

#include <functional>
#include <string>

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QMessageBox;
class QWidget;

namespace qk {

class QtHost;
struct Session;

class Player : public QObject {
 public:
  Player(QtHost& host, const Session& session);

  // Told with each step in words, and with an empty text when the play is over.
  std::function<void(const std::string& step)> OnStep;

  // Asks first where a calibration in force, or standards that have been measured, would be lost.
  void Play();
  // False while a message box or a window that blocks the others is up, or the user measures
  // a standard.
  bool MayPlay() const;
  void Stop();
  bool Playing() const { return look_.isActive(); }
  // How long a step and a message box can be seen, in milliseconds.
  void SetPace(int ms);

 private:
  void Look();
  // A message box of the play's own is read, then answered; any other ends the
  // play. False: there is none.
  bool ReadBox();
  bool Expected(const QMessageBox& box) const;
  void Do();

  QtHost& host_;
  const Session& session_;
  QTimer look_;
  QElapsedTimer shown_;    // since the last step was done, or the box came up
  QPointer<QWidget> box_;  // that is being read
  std::size_t next_ = 0;
  int pace_ = 1200;
};

}  // namespace qk
