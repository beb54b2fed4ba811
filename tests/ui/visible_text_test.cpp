// SPDX-License-Identifier: MIT
// Nothing that the program shows is cut: every text of its sources in a message box, and every
// caption of its windows, at three sizes of the letters.
#include <algorithm>
#include <iterator>

#include <QGroupBox>
#include <QLabel>
#include <QScreen>

#include "source_texts.h"
#include "ui/dialogs.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

class VisibleText : public ::testing::TestWithParam<int> {
 protected:
  VisibleText() : before_(QApplication::font()) {
    QFont font = before_;
    font.setPointSize(GetParam());
    QApplication::setFont(font);
  }
  ~VisibleText() override { QApplication::setFont(before_); }

 private:
  QFont before_;
};
INSTANTIATE_TEST_SUITE_P(FontPoints, VisibleText, ::testing::Values(8, 11, 18));

class VisibleCaptions : public VisibleText {};
INSTANTIATE_TEST_SUITE_P(FontPoints, VisibleCaptions, ::testing::Values(8, 11, 14));

// Why the text is not wholly seen; empty when it is. Measured by the font, not asked of the layout.
std::string Cut(const QLabel& label) {
  const QRect room = label.contentsRect();
  const int wrap = label.wordWrap() ? Qt::TextWordWrap : 0;
  const QRect needed =
      label.fontMetrics().boundingRect(QRect(0, 0, room.width(), 100000), wrap, label.text());
  if (needed.width() <= room.width() && needed.height() <= room.height()) return {};
  return "needs " + std::to_string(needed.width()) + " by " + std::to_string(needed.height()) +
         ", has " + std::to_string(room.width()) + " by " + std::to_string(room.height()) + ": " +
         label.text().toStdString();
}

// A title bar: the title in bold, an icon and three buttons as high as its letters, with gaps.
int TitleBarWidth(const QWidget& window) {
  QFont bold = window.font();
  bold.setBold(true);
  const QFontMetrics letters(bold);
  return letters.horizontalAdvance(window.windowTitle()) + 4 * (letters.height() + 6);
}

void ShowInABox(QObject& context, const Message& message) {
  WhenUp<QMessageBox>(context, [&message](QMessageBox& box) {
    const auto* text = box.findChild<QLabel*>("qt_msgbox_label");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->text().toStdString(), message.Text);
    EXPECT_EQ(Cut(*text), "");
    EXPECT_TRUE(box.rect().contains(QRect(text->mapTo(&box, QPoint()), text->size())))
        << message.Text;
    EXPECT_GE(box.width(), TitleBarWidth(box));
    EXPECT_LE(box.height(), box.screen()->availableSize().height()) << message.Text;
    for (const QAbstractButton* button : box.buttons())
      EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()));
    box.accept();
  });
  AskBox(nullptr, message);
}

TEST(SourceTexts, AreTheLiteralsOfSeveralWordsAndTheStatementsThatJoinThem) {
  EXPECT_EQ(TextsIn("ShowMessage(\"Open Cal\", \"Fit it \" \"now\\n!\", '\"'); // \"no text\"\n"
                    "x = \"Point \" + N + \" of\";"),
            (std::vector<std::string>{"Open Cal", "Fit it now\n!", "Point ", " of",
                                      "Point -3080.0400 of"}));
  EXPECT_EQ(TextsIn("a.Tip(\"A tip (of \" \"two)\").Key('x'); ShowMessage(\"No tip\");"),
            (std::vector<std::string>{"No tip"}));
}

TEST(SourceTexts, HoldWhatTheProgramIsKnownToReport) {
  const std::vector<std::string> texts = TextsOfTheProgram();
  for (const char* known :
       {"Open Circuit on Ports 1 and 2", "Stop Measurement First",
        "Keep existing Cal (interpolate new points)?", "Close Program and Exit?"})
    EXPECT_NE(std::find(texts.begin(), texts.end(), known), texts.end()) << known;
}

// The texts of the program but those that are part of a longer one, and so in its box.
const std::vector<std::string>& WholeTexts() {
  static const std::vector<std::string> whole = [] {
    const std::vector<std::string> all = TextsOfTheProgram();
    std::vector<std::string> texts;
    std::ranges::copy_if(all, std::back_inserter(texts), [&all](const std::string& text) {
      return std::ranges::none_of(all, [&text](const std::string& longer) {
        return longer.size() > text.size() && longer.find(text) != std::string::npos;
      });
    });
    return texts;
  }();
  return whole;
}

TEST_P(VisibleText, EveryTextOfTheProgramStandsWholeInItsBox) {
  QObject context;
  for (const std::string& text : WholeTexts())
    ShowInABox(context, {"Open Cal", text, Icon::Information, Buttons::Ok});
}

TEST_P(VisibleText, APromptWithOffsetsStandsWhole) {
  QObject context;
  for (const Buttons buttons :
       {Buttons::Ok, Buttons::OkCancel, Buttons::YesNo, Buttons::RetryCancel})
    ShowInABox(context, {"Open Cal", "Open Circuit on Ports 1 and 2 (10.00 / 10.00mm)",
                         Icon::Information, buttons, buttons == Buttons::Ok});
}

TEST_P(VisibleText, ATitleLongerThanItsTextStandsWhole) {
  QObject context;
  for (const char* title : {"Signal Generator", "VNA Hardware Info", "Read RX dc Off Correction"})
    ShowInABox(context, {title, "No Response", Icon::Exclamation, Buttons::Ok});
}

void LookForCuts(const Form& form, const QWidget& window) {
  EXPECT_GE(window.width(), TitleBarWidth(window)) << form.Name();
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    if (!label->isVisible() || label->buddy() != nullptr || label->text().contains('<')) continue;
    if (label->text().isEmpty()) continue;  // nothing that could be cut
    EXPECT_EQ(Cut(*label), "") << form.Name() << "." << label->objectName().toStdString();
  }
  for (const QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
    if (!button->isVisible() || button->text().isEmpty()) continue;
    EXPECT_GE(button->width(), button->sizeHint().width())
        << form.Name() << ": " << button->text().toStdString();
  }
  for (const QGroupBox* group : window.findChildren<QGroupBox*>()) {
    if (!group->isVisible()) continue;
    EXPECT_GE(group->width(), group->fontMetrics().horizontalAdvance(group->title()))
        << form.Name() << ": " << group->title().toStdString();
  }
}

// What a window says only when something happened.
TEST_P(VisibleCaptions, WhatAWindowSaysOfItsWorkStandsWhole) {
  UiFixture vna;
  const struct {
    const char *Window, *Label, *Text;
  } kSaid[] = {
      {"EepromRest", "State",
       "The EEPROM is written in part only. Run the restore again before the instrument is "
       "switched off."},
      {"P1dBForm", "Note",
       "Calibrated at another frequency: gain and input power are wrong by the change in the "
       "response of the through."},
      {"AMtoPM", "Note",
       "The phase passes 180 degrees near -10.8 dBm: the values there are not the device's."},
      {"FreqGen", "State", "Applied: 1000.0000 MHz at -20 dBm"}};
  for (const auto& said : kSaid) {
    Form& form = *vna.registry.Find(said.Window);
    vna.Visit(form, [&](QWidget& window) {
      form[said.Label].Text = said.Text;
      vna.host.WindowOf(said.Window)->Sync();
      QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
      LookForCuts(form, window);
      const std::string name = std::string(said.Label) + "_Caption";
      EXPECT_EQ(vna.Widget<QLabel>(said.Window, name.c_str()).text().toStdString(), said.Text);
    });
  }
}

TEST_P(VisibleCaptions, EveryCaptionStandsWholeInItsWindow) {
  UiFixture vna;
  for (const Form* form : vna.registry.All())
    vna.Visit(*form, [form](QWidget& window) { LookForCuts(*form, window); });
}

}  // namespace
}  // namespace qk::test
