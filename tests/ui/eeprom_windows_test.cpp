// SPDX-License-Identifier: MIT
// Back-up and restore of the EEPROM in the real windows: what a person does while they work comes
// by way of the toolkit's own events, between two blocks.
#include <QFileDialog>
#include <QProgressBar>
#include <QTest>
#include <filesystem>

#include "ui_fixture.h"

namespace qk::test {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kRestoreAsked =
    "This will restore the EEPROM data in your VNA from data in your hard disk. Continue?";
constexpr const char* kWriteAsked =
    "Data appears valid. Writing to EEPROM will take several minutes. Are you sure you want to "
    "continue?";
constexpr const char* kCannot = "Writing to EEPROM. Cannot Interrupt";

struct AtTheWindow : UiFixture {
  AtTheWindow() {
    StartUp();
    prompts.clear();
  }

  // Shows a window, starts its work (every question is answered by Enter, the file dialog with
  // path), and acts once the work is on; gives what was shown. The window is closed in the end.
  Texts Work(const char* window, const std::string& path, const std::function<void()>& act) {
    bool started = false, acted = false;
    QObject hand;  // its next move is due before the one at hand, which may open a message loop
    std::function<void()> move = [&] {
      QTimer::singleShot(0, &hand, move);
      QWidget* up = QApplication::activeModalWidget();
      if (auto* box = qobject_cast<QMessageBox*>(up); box != nullptr) {
        if (leaveBox && leaveBox(box->text())) return;
        box->button(box->standardButton(box->buttons().constFirst()))->click();
      } else if (auto* dialog = qobject_cast<QFileDialog*>(up); dialog != nullptr) {
        dialog->selectFile(QString::fromStdString(path));
        QMetaObject::invokeMethod(dialog, "accept");
      } else if (!started && Window(window).isVisible()) {
        started = true;
        Press(window, "Command1");
      } else if (!acted && !At(window, "Command1").Enabled) {
        acted = true;
        act();
      }
    };
    move();
    host.Show(window);  // until it is hidden
    EXPECT_TRUE(acted);
    Texts told;
    for (const Message& message : prompts) told.push_back(message.Text);
    prompts.clear();
    return told;
  }
  // A box that stays up for as long as this says so; may be empty.
  std::function<bool(const QString& text)> leaveBox;
  // As the window system delivers a click.
  void Press(const char* window, const char* name) {
    QWidget& button = Widget(window, name);
    QTest::mouseClick(Window(window).windowHandle(), Qt::LeftButton, {},
                      button.mapTo(&Window(window), button.rect().center()));
  }
  // The byte becomes another one; gives what it was.
  std::string Spoil(const std::string& address) {
    const std::string before = Byte(address);
    EXPECT_TRUE(instrument.Bench("eeprom " + address + (before == "77" ? " 78" : " 77")).Ok);
    return before;
  }
  std::string Byte(const std::string& address) {
    const std::string told = instrument.Bench("eeprom " + address).Text;
    return told.substr(told.find(' ') + 1);
  }
  int Percent(const char* window) { return Widget<QProgressBar>(window, "ProgressBar1").value(); }
};

TEST(EepromWindows, AClickOnExitInTheMiddleOfARestoreIsReportedAndTheRestoreGoesOn) {
  AtTheWindow vna;
  const std::string path = vna.scratch.File("factory.bak");
  vna.Work("EepromBk", path, [] {});
  ASSERT_TRUE(std::filesystem::exists(path));
  const auto byExit = [&] { vna.Press("EepromRest", "Command2"); };
  const auto byTitleBar = [&] { vna.Window("EepromRest").close(); };
  const auto byEscape = [&] {
    QTest::keyClick(vna.Window("EepromRest").windowHandle(), Qt::Key_Escape);
  };
  for (const auto& act : {std::function<void()>(byExit), std::function<void()>(byTitleBar),
                          std::function<void()>(byEscape)}) {
    const std::string early = vna.Spoil("5"), late = vna.Spoil("32000");
    int before = -1;
    bool stood = false;
    const Texts told = vna.Work("EepromRest", path, [&] {
      before = vna.Percent("EepromRest");
      act();
      stood = vna.Window("EepromRest").isVisible();
    });
    EXPECT_EQ(told, (Texts{kRestoreAsked, kWriteAsked, kCannot}));
    EXPECT_LT(before, 99) << "in the middle";
    EXPECT_TRUE(stood);
    EXPECT_EQ(vna.Byte("5"), early);
    EXPECT_EQ(vna.Byte("32000"), late) << "to its end";
    EXPECT_FALSE(vna.Window("EepromRest").isVisible());
  }
}

// A user who walks away from the box finds the EEPROM written.
TEST(EepromWindows, TheWritingContinuesBehindTheBox) {
  AtTheWindow vna;
  const std::string path = vna.scratch.File("factory.bak");
  vna.Work("EepromBk", path, [] {});
  const std::string late = vna.Spoil("32000");
  bool whileUp = false;
  vna.leaveBox = [&](const QString& text) {
    if (text != kCannot) return false;
    whileUp = vna.Byte("32000") == late;
    return !whileUp;
  };
  vna.Work("EepromRest", path, [&] { vna.Press("EepromRest", "Command2"); });
  EXPECT_TRUE(whileUp);
  EXPECT_FALSE(vna.Window("EepromRest").isVisible());
}

TEST(EepromWindows, AClickOnExitInTheMiddleOfABackUpEndsItAtOnceWithoutAFile) {
  AtTheWindow vna;
  const std::string path = vna.scratch.File("factory.bak");
  const Texts told = vna.Work("EepromBk", path, [&] { vna.Press("EepromBk", "Command2"); });
  EXPECT_EQ(told.size(), 1u) << "the question before it alone";
  EXPECT_LT(vna.Percent("EepromBk"), 99);
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_FALSE(vna.Window("EepromBk").isVisible());
}

}  // namespace
}  // namespace qk::test
