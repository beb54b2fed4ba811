// SPDX-License-Identifier: MIT
// The panel to the right of the graphs that shows set-up windows as tabs. A tab can be detached and
// returned; a window for which there is no room next to the graphs floats. A file stores which
// windows are detached, their positions, and the width of the panel.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <QDockWidget>
#include <QObject>
#include <QSettings>
#include <QTimer>

class QAction;

namespace qk {

class DialogWindow;
class MainWindow;
class QtHost;

// The minimum size of the graphs next to a docked window, in pixels.
inline constexpr QSize kLeastGraphs{640, 400};

class Docks : public QObject {
 public:
  // file: stores the positions; empty stores nothing.
  Docks(MainWindow& main, QtHost& host, const std::string& file);
  ~Docks() override;

  // Shows the window in the panel, or detached as it was; false if it must float.
  bool Open(DialogWindow& window);
  // Hides the window and keeps its position.
  void Close(DialogWindow& window);
  // Shows the page after (step 1) or before (step -1) the one shown, and gives it the keyboard
  // focus.
  void Turn(int step);
  // The mnemonics of the page that has the keyboard are not shown in the main window: they act
  // here.
  void ShowLetters();
  // Raises the window's tab and gives it the keyboard focus.
  void ToFront(DialogWindow& window);
  // Whether the window is in the panel or was detached from it.
  bool Holds(const DialogWindow& window) const { return docks_.contains(&window); }

  // If enabled, windows open in the panel when there is room; otherwise next to or over the graphs.
  bool Enabled() const { return enabled_; }
  void Enable(bool on);
  // Returns detached windows to the panel, as far as there is room.
  void ReturnAll();

  // Saves the positions to the file.
  void Keep();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QDockWidget* DockOf(const DialogWindow& window) const;
  QDockWidget& MakeDock(DialogWindow& window);
  // Removes the window from the panel: hidden, and a separate window again.
  void Release(DialogWindow& window);
  bool HasRoomFor(const DialogWindow& window) const;
  // The width that the graphs can spare for the panel, in pixels.
  int RoomForPanel() const;
  // A window that grows after it was docked takes no width that the graphs need.
  void LimitWidths();
  void StyleTabs();
  void JoinTabs(DialogWindow& window);
  void ShowOwnTabs();
  // A window that was just torn off has the size of its contents, beside the main window or where
  // it covers the least.
  void TakeFloatingSize(DialogWindow& window, QDockWidget& dock);
  int PanelWidth() const;
  void AddTurnKeys();
  std::vector<DialogWindow*> InPanel() const;
  // The main window has become too small for the panel.
  void FloatExcess();
  bool TornOff(const DialogWindow& window) const;
  void KeepMain();

  MainWindow& main_;
  QtHost& host_;
  std::unique_ptr<QSettings> file_;
  std::map<const DialogWindow*, QDockWidget*> docks_;
  std::map<const DialogWindow*, int> widths_;  // that the windows needed when they were docked
  std::map<const DialogWindow*, int> seen_;    // when each page was last shown: counts looks_
  int looks_ = 0;
  QTimer check_, keep_;
  bool enabled_ = true;
};

}  // namespace qk
