// SPDX-License-Identifier: MIT
// The panel at the right of the graphs in which set-up windows stand as tabs. A tab can be torn off
// and put back; a window that has no room beside the graphs floats. Which windows are torn off,
// their places and the width of the panel are kept in a file.
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

// The graphs are never made smaller than this for a docked window, in pixels.
inline constexpr QSize kLeastGraphs{640, 400};

class Docks : public QObject {
 public:
  // file: where places are kept; empty keeps nothing.
  Docks(MainWindow& main, QtHost& host, const std::string& file);
  ~Docks() override;

  // Shows the window in the panel, or torn off as it was; false when it is to float.
  bool Open(DialogWindow& window);
  // Takes the window out of sight; it stays where it is.
  void Close(DialogWindow& window);
  // To the top of its tabs, with the keyboard.
  void ToFront(DialogWindow& window);
  // Whether the window stands in the panel or was torn off from it.
  bool Holds(const DialogWindow& window) const { return docks_.contains(&window); }

  // Windows open in the panel where there is room, else beside or over the graphs.
  bool Enabled() const { return enabled_; }
  void Enable(bool on);
  // Torn off windows go back to the panel, as far as there is room.
  void ReturnAll();

  // Places go to the file.
  void Keep();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QDockWidget* DockOf(const DialogWindow& window) const;
  QDockWidget& MakeDock(DialogWindow& window);
  // Out of the panel, hidden, a window of its own again.
  void Release(DialogWindow& window);
  bool HasRoomFor(const DialogWindow& window) const;
  int PanelWidth() const;
  std::vector<DialogWindow*> InPanel() const;
  // The main window has become too small for the panel.
  void FloatWhatHasNoRoom();
  bool TornOff(const DialogWindow& window) const;
  void KeepMain();

  MainWindow& main_;
  QtHost& host_;
  std::unique_ptr<QSettings> file_;
  std::map<const DialogWindow*, QDockWidget*> docks_;
  QTimer check_, keep_;
  bool enabled_ = true;
};

}  // namespace qk
