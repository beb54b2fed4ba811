// SPDX-License-Identifier: MIT
// The main window: menus, the picture area, the strip of buttons and switches next to it, and the
// status bar with seven panels.
#pragma once

#include <functional>
#include <string>

#include <QElapsedTimer>
#include <QMainWindow>

#include "ui/form_window.h"

class QLabel;

namespace qk {

class PanelRow;
class PictureView;
class QtPicture;

class MainWindow : public QMainWindow, public FormWindow {
 public:
  MainWindow(Form& form, QtHost& host, QtPicture& picture);

  QWidget& Widget() override { return *this; }
  PictureView& Picture() { return *picture_; }
  // These mnemonics (capitals) belong to a docked page that has the keyboard: its own are not
  // shown.
  void HideLetters(const std::string& letters);
  void ShowPanel(Panel panel, const std::string& text);
  // A remark in the tool tip of a panel; replaces the previous one.
  void RemarkOn(Panel panel, const std::string& remark);

  // A file was dropped on the window.
  std::function<void(const std::string& path)> OnDrop;
  // The menu key: opens the menu of the active channel's graph.
  std::function<void()> OnGraphMenu;

 protected:
  // Detects an Escape that another window or a box handles.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void AddMenus();
  void AddFileKeys();
  QWidget* Strip();
  QLayout* HintLine();
  void AddNotice();
  void FitNotice();
  void StyleMeasurement(QWidget& strip);
  void AddGraphKeys();
  void AddStatusBar();

  PictureView* picture_;
  PanelRow* panels_ = nullptr;
  QLabel* notice_ = nullptr;
  QElapsedTimer escapeElsewhere_;
};

}  // namespace qk
