// SPDX-License-Identifier: MIT
#include "app/files_to_open.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QTimer>

#include "forms/open_file.h"

namespace qk {

namespace {
constexpr int kOpenAgainMs = 100;
}

FilesToOpen::FilesToOpen(Program& program, QtHost& host, QWidget& main)
    : program_(program), host_(host), main_(main) {
  receiver_.OnFile = [this](const std::string& file) {
    main_.raise();
    main_.activateWindow();
    return Take(file);
  };
}

std::string FilesToOpen::Take(const std::string& file) {
  if (!started_) {
    waiting_.push_back(file);
    return {};
  }
  if (host_.Ending()) return "the running program is ending";
  if (QApplication::activeModalWidget() != nullptr)
    return "the running program waits for an answer in one of its windows";
  if (!MayOpen()) return "the running program is busy with the instrument";
  // The sender gets its reply before a message box about the file opens.
  QTimer::singleShot(0, this, [this, file] { Open(file); });
  return {};
}

void FilesToOpen::Started() {
  started_ = true;
  for (const std::string& file : std::exchange(waiting_, {})) Open(file);
}

bool FilesToOpen::MayOpen() const {
  const std::vector<Form*>& forms = program_.registry().All();
  return !host_.Breathing() &&
         std::none_of(forms.begin(), forms.end(), [](const Form* form) { return form->Busy(); });
}

void FilesToOpen::Open(const std::string& file) {
  if (host_.Ending()) return;
  // Actions during such an operation are discarded at its end, and the sender has been
  // notified that the file was accepted.
  if (MayOpen())
    host_.Act([this, file] { OpenFile(program_.controller(), file, "Open File"); });
  else
    QTimer::singleShot(kOpenAgainMs, this, [this, file] { Open(file); });
}

}  // namespace qk
