// SPDX-License-Identifier: MIT
// Help inside the program: the pages of the manual, a page of all keys, and the documents that no
// program of the system shows.
#pragma once

#include <string>

#include <QWidget>

#include "forms/form_registry.h"

class QListWidget;
class QPushButton;
class QTextBrowser;

namespace qk {

// The page of the manual ("25-display.md") that deals with a window; the first page for a window
// without one of its own.
QString PageOf(const QString& window);

class HelpViewer : public QWidget {
 public:
  explicit HelpViewer(const FormRegistry& forms);

  // The page of the window that has the keyboard.
  void ShowForKeyboard();
  void ShowPage(const QString& page);
  // A document of the program, by its path: the guides as their pages, the log as its text, and
  // "manual:PAGE#HEADING" as that page from the heading on. False when it is none.
  bool ShowDocument(const std::string& path);
  // What Alt, the function keys and Ctrl do, window by window, as Markdown.
  QString KeysPage() const;

 protected:
  // F1, wherever the keyboard is.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ShowParagraph(const QString& place);
  void Follow(const QUrl& page);
  void FitPictures();
  void GoTo(const QString& fragment);
  void ComeUp();

  const FormRegistry& forms_;
  QListWidget* contents_;
  QTextBrowser* text_;
  QPushButton* back_;
};

}  // namespace qk
