// SPDX-License-Identifier: MIT
// Help inside the program: the pages of the manual, a page with all keys, and documents for which
// the system has no viewer.
#pragma once

#include <string>
#include <vector>

#include <QString>
#include <QWidget>

#include "forms/form_registry.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTextBrowser;

namespace qk {

// The manual page ("25-display.md") for a window; empty if it has none.
QString PageOf(const QString& window);
// The address of a page for QtHost::OpenDocument.
std::string AddressOf(const QString& page);

class HelpViewer : public QWidget {
 public:
  explicit HelpViewer(const FormRegistry& forms);

  // Shows the page of the window with the keyboard focus.
  void ShowForKeyboard();
  void ShowPage(const QString& page);
  // Shows a document of the program, given by its path: the guides as their pages, the log as text,
  // and "manual:PAGE#HEADING" as that page from the heading on. False if it is none of these.
  bool ShowDocument(const std::string& path);
  // The functions of Alt, the function keys and Ctrl, per window, as Markdown.
  QString KeysPage() const;

 protected:
  // F1 in any window, and the width of the text.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void ConnectContents();
  void LeaveContents();
  void ShowParagraph(const QString& place);
  void Follow(const QUrl& page);
  void FitPictures();
  void GoTo(const QString& fragment);
  void ToFront();
  QWidget* FindBar();
  void FindWhileTyped();
  void FindOn(bool backwards);
  bool FindFromEnd(const QString& words, bool backwards);
  bool FindInOtherPages(const QString& words, bool backwards);
  bool Has(int row, const QString& words);
  void Say(const QString& text);

  const FormRegistry& forms_;
  QListWidget* contents_;
  QPushButton* showContents_;
  QTextBrowser* text_;
  QPushButton* back_;
  QLineEdit* words_;
  QCheckBox* allPages_;
  QLabel* status_;
  bool narrow_ = false;
  std::vector<QString> plain_;  // the text of each entry of the contents; empty until it is needed
};

}  // namespace qk
