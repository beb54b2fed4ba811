// The main window: menus, the picture area, the strip of buttons and switches beside it, and the
// status bar of seven panels.
#pragma once

#include <array>
#include <functional>
#include <string>

#include <QMainWindow>

#include "ui/form_window.h"

namespace qk {

class PanelLabel;
class PictureView;
class QtPicture;

class MainWindow : public QMainWindow, public FormWindow {
 public:
  MainWindow(Form& form, QtHost& host, QtPicture& picture);

  QWidget& Widget() override { return *this; }
  PictureView& Picture() { return *picture_; }
  void ShowPanel(int n, const std::string& text);

  // A file was dragged onto the window.
  std::function<void(const std::string& path)> OnDrop;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void AddMenus();
  QWidget* Strip();
  void DressMeasurement(QWidget& strip);
  void AddStatusBar();

  PictureView* picture_;
  std::array<PanelLabel*, 7> panels_{};
};

}  // namespace qk
