// SPDX-License-Identifier: MIT
#include "app/take_folder.h"

#include <cstdio>
#include <optional>

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

#include "app/hand_over.h"

namespace qk {

namespace {

constexpr const char* kTitle = "VNA Control";

// Another folder chosen by the user; empty if the start is cancelled.
std::optional<std::string> AskForAnother(const FolderLock& lock) {
  const std::string beside = FreeFolderBeside(lock.Folder());
  const std::string text = lock.HeldByOther()
                               ? "The folder " + lock.Folder() +
                                     " is in use by another VNA Control (" + lock.Holder() + ")."
                               : lock.Obstacle();
  QMessageBox box(QMessageBox::Warning, kTitle, QString::fromStdString(text));
  box.setInformativeText(
      "Each program needs a folder of its own for session, log and receiver files.");
  QPushButton* use =
      box.addButton(QString::fromStdString("&Use " + beside), QMessageBox::AcceptRole);
  QPushButton* other = box.addButton("&Other Folder...", QMessageBox::ActionRole);
  box.addButton(QMessageBox::Cancel);
  box.setDefaultButton(use);
  box.exec();
  if (box.clickedButton() == use) return beside;
  if (box.clickedButton() != other) return std::nullopt;
  const QString chosen = QFileDialog::getExistingDirectory(
      nullptr, "Folder of Session, Log and Receiver Files", QString::fromStdString(lock.Folder()));
  // Asks again if no folder was chosen.
  return chosen.isEmpty() ? lock.Folder() : chosen.toStdString();
}

// The exit code if the file was passed on; empty if it must be opened here.
std::optional<int> Hand(const FolderLock& lock, const std::string& file) {
  const Result<Done> handed = HandOver(lock.Folder(), file);
  if (handed) {
    std::fprintf(stderr, "qk47-vna: %s: handed to the program that runs over %s (%s)\n",
                 file.c_str(), lock.Folder().c_str(), lock.Holder().c_str());
    return 0;
  }
  if (handed.Why().Place.empty()) return std::nullopt;
  const std::string text = file + " was not opened: " + handed.Why().Message;
  std::fprintf(stderr, "qk47-vna: %s\n", text.c_str());
  QMessageBox(QMessageBox::Warning, kTitle, QString::fromStdString(text)).exec();
  return 1;
}

}  // namespace

std::unique_ptr<FolderLock> TakeFolder(std::string folder, const std::string& file, int& exitCode) {
  for (;;) {
    auto lock = std::make_unique<FolderLock>(folder);
    if (!lock->Refused()) return lock;
    if (lock->HeldByOther() && !file.empty())
      if (const std::optional<int> code = Hand(*lock, file)) {
        exitCode = *code;
        return nullptr;
      }
    ReportsRefusal(*lock);
    const std::optional<std::string> another = AskForAnother(*lock);
    if (!another) {
      exitCode = 0;
      return nullptr;
    }
    folder = *another;
  }
}

}  // namespace qk
