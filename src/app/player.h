// Plays a first measurement on the windows of the demonstration, step by step and slowly enough to
// be followed: what it does is what a person would click and type.
#pragma once

#include <functional>
#include <string>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QWidget;

namespace qk {

class QtHost;

class Player : public QObject {
 public:
  explicit Player(QtHost& host);

  // Told with each step in words, and with an empty text when the play is over.
  std::function<void(const std::string& step)> OnStep;

  void Play();
  void Stop();
  bool Playing() const { return look_.isActive(); }
  // How long a step and a message box stand to be seen, in milliseconds.
  void SetPace(int ms);

 private:
  void Look();
  // A message box that is up is read, then answered by its first button. False: there is none.
  bool ReadBox();
  void Do();

  QtHost& host_;
  QTimer look_;
  QElapsedTimer shown_;     // since the last step was done, or the box came up
  QWidget* box_ = nullptr;  // that is being read
  std::size_t next_ = 0;
  int pace_ = 1200;
};

}  // namespace qk
