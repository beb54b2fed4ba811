// SPDX-License-Identifier: MIT
// The windows over the whole program and the simulated instrument, on the toolkit's offscreen
// platform; and what a person does to widgets, as events.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QMessageBox>
#include <QTimer>

#include "sim/instrument.h"
#include "sim/simulated_port.h"
#include "support/scratch_folder.h"
#include "ui/desktop.h"

namespace qk::test {

// Runs the message loop until done() holds; false when it does not within the time.
inline bool RunUntil(const std::function<bool()>& done, int ms = 10000) {
  const QDeadlineTimer deadline(ms);
  QTimer wake;  // where nothing else happens
  wake.start(2);
  while (!done()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

inline void Key(QWidget& widget, int key, const QString& text = {}) {
  QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
  QApplication::sendEvent(&widget, &press);
  QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
  QApplication::sendEvent(&widget, &release);
}

// Types over the content of a field.
inline void TypeOver(QWidget& field, const QString& text) {
  field.setFocus();
  QMetaObject::invokeMethod(&field, "selectAll");
  for (const QChar c : text) Key(field, c.toUpper().unicode(), QString(c));
}

// Runs act as soon as a window of that type is up in a nested message loop; tries again until it
// is.
template <class Window>
void WhenUp(QObject& context, std::function<void(Window&)> act) {
  auto* timer = new QTimer(&context);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
    auto* window = qobject_cast<Window*>(QApplication::activeModalWidget());
    if (window == nullptr || !window->isVisible()) return;
    timer->stop();
    timer->deleteLater();
    act(*window);
  });
  timer->start(1);
}

// The toolkit remembers that it was asked to quit while no message loop ran; a test that ends the
// program takes that back.
inline void ForgetQuit() {
  QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
  QApplication::exec();
}

struct UiFixture {
  // in: the install folder; without one a folder that goes with the fixture.
  explicit UiFixture(const std::string& in = {}) : folder(in.empty() ? scratch.Text() : in) {
    host.Terminate = [this](int code) { terminated = code; };
    instrument.Bench("follow on");
    host.OnPrompt = [this](const Message& message) {
      prompts.push_back(message);
      instrument.FollowPrompt(message.Text);
    };
  }
  ~UiFixture() {
    if (host.Ending()) ForgetQuit();
  }

  void StartUp() {
    host.Act([this] { program.StartUp(); });
  }
  // Every message box is answered with its default button, as Enter does.
  void AnswerAll() {
    QObject::connect(&answers, &QTimer::timeout, &answers, [] {
      if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); box != nullptr)
        box->button(box->standardButton(box->buttons().constFirst()))->click();
    });
    answers.start(1);
  }
  QWidget& Window(const char* form) {
    FormWindow* window = host.WindowOf(form);
    EXPECT_NE(window, nullptr) << form;
    return window->Widget();
  }
  template <class W = QWidget>
  W& Widget(const char* form, const char* name) {
    W* widget = Window(form).findChild<W*>(name);
    EXPECT_NE(widget, nullptr) << form << "." << name;
    return *widget;
  }
  // Shows a window, looks at it and hides it; a modal one is looked at from its own message loop.
  void Visit(const Form& form, const std::function<void(QWidget& window)>& look) {
    bool looked = false;
    AnswerAll();  // what asks an instrument that is not there says so
    QTimer due;   // again and again: a window that asks the instrument first comes up later
    QObject::connect(&due, &QTimer::timeout, &due, [&] {
      if (looked || !Window(form.Name().c_str()).isVisible()) return;
      looked = true;
      look(Window(form.Name().c_str()));
      host.Hide(form.Name());
    });
    due.start(20);
    host.Show(form.Name());
    EXPECT_TRUE(RunUntil([&] { return looked; })) << form.Name();
  }
  void Click(const char* form, const char* name) { Widget<QAbstractButton>(form, name).click(); }
  const Control& At(const char* form, const char* name) {
    return program.registry().Find(form)->At(name);
  }

  static inline float ScreenScale = 1;  // height of the screen to 768 pixels
  static inline sim::Pace LinePace = sim::Pace::Unpaced;
  static inline bool FullView = false;  // as the program shows itself in windows

  FormRegistry registry;
  QtHost host{registry};
  QtPicture picture{{400, 300}};
  sim::Instrument instrument;
  sim::SimulatedPort port{instrument, sim::RealClock(), LinePace};
  test::ScratchFolder scratch;
  std::string folder;
  Program program{registry, host.host(), port, picture,
                  ProgramOptions{folder, ScreenScale, {}, FullView}};
  Desktop desktop{program, host, picture};
  QTimer answers;
  std::vector<Message> prompts;
  std::optional<int> terminated;
};

}  // namespace qk::test
