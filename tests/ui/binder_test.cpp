// SPDX-License-Identifier: MIT
// Widgets and the controls of a form, each way.
#include "ui/binder.h"

#include <memory>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QVBoxLayout>

#include "ui_fixture.h"

namespace qk::test {
namespace {

class SmallForm : public Form {
 public:
  SmallForm() : Form("Small", "Small") {
    AddText("Text1", "Start", [this] { typed.push_back(At("Text1").Text); }).Text("3");
    AddText("Text2", "Step").ReadOnly();
    const Handle go = AddButton("Go", "Go & see", [this] {
      clicked.push_back(At("Text1").Text);
      if (onGo) onGo();
    });
    go.Key('s');
    AddCheck("Tick", "Tick");
    AddOption("A", "A", 1);
    AddOption("B", "B", 1, [this] {
      if (refuseB) Choose("A");
    });
    AddList("List", "List", {"51", "101"});
    AddProgress("Bar");
    AddLabel("Told", "Caption");
    AddMenuItem("File", "Item", "Item", [this] { clicked.push_back("item"); });
    Choose("A");
  }
  Control& Edit(std::string_view name) { return (*this)[name]; }
  void ChooseNow(std::string_view name) { Choose(name); }

  std::vector<std::string> typed, clicked;
  std::function<void()> onGo;
  bool refuseB = false;
};

struct Bound {
  Bound() {
    registry.Add(form);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{text, step, go, tick, a, b, list, bar, told})
      layout->addWidget(widget);
    binder.Sync();
    window.show();
  }
  SmallForm form;
  FormRegistry registry;
  QtHost host{registry};
  Binder binder{form, host};
  QWidget window;
  QVBoxLayout* layout = new QVBoxLayout(&window);
  QLineEdit* text = binder.Text("Text1");
  QLineEdit* step = binder.Text("Text2");
  QPushButton* go = binder.Button("Go");
  QCheckBox* tick = binder.Check("Tick");
  QRadioButton* a = binder.Option("A");
  QRadioButton* b = binder.Option("B");
  QComboBox* list = binder.List("List");
  QProgressBar* bar = binder.Progress("Bar");
  QLabel* told = binder.Caption("Told");
  QAction* item = binder.Item("Item", &window);
};

TEST(Binder, EachCaptionHasALetterOfItsOwnAsLongAsThereIsOne) {
  using Given = std::vector<char>;
  EXPECT_EQ(LettersFor({"Load Cal", "Save Cal", "Exit", "load"}), (Given{'l', 's', 'e', 'o'}));
  EXPECT_EQ(LettersFor({"Ab", "A"}), (Given{'b', 'a'})) << "the first gives way";
  EXPECT_EQ(LettersFor({"abc", "ab", "A", "a b"}), (Given{'c', 'b', 'a', 0}));
  EXPECT_EQ(LettersFor({"1", "", "B 2"}), (Given{0, 0, 'b'}));
}

TEST(Binder, CaptionsMarkTheirMnemonicAndKeepTheirAmpersands) {
  EXPECT_EQ(MnemonicCaption("Open *", 'o'), "&Open *");
  EXPECT_EQ(MnemonicCaption("Through", 'H'), "T&hrough");
  EXPECT_EQ(MnemonicCaption("A & B", 'B'), "A && &B");
  EXPECT_EQ(MnemonicCaption("Apply", 0), "Apply");
  EXPECT_EQ(MnemonicCaption("Apply", 'z'), "Apply");
}

TEST(Binder, TypedTextGoesToTheFormWhenTheFieldIsDone) {
  Bound bound;
  TypeOver(*bound.text, "45");
  EXPECT_TRUE(bound.form.typed.empty());
  Key(*bound.text, Qt::Key_Return);
  EXPECT_EQ(bound.form.typed, (std::vector<std::string>{"45"}));
  Key(*bound.text, Qt::Key_Return);
  EXPECT_EQ(bound.form.typed.size(), 1u);
}

TEST(Binder, AClickTakesWhatStandsTypedFirst) {
  Bound bound;
  TypeOver(*bound.text, "45");
  bound.go->click();
  EXPECT_EQ(bound.form.clicked, (std::vector<std::string>{"45"}));
}

TEST(Binder, AClickThatMeetsAWaitIsDoneAfterIt) {
  Bound bound;
  QTimer::singleShot(0, &bound.window, [&] { bound.go->click(); });
  const QDeadlineTimer wait(40);
  while (!wait.hasExpired()) bound.host.Breathe();
  EXPECT_TRUE(bound.form.clicked.empty());
  EXPECT_TRUE(RunUntil([&] { return !bound.form.clicked.empty(); }));
}

TEST(Binder, WhatTheUserTypesStaysUntilTheProgramWritesTheFieldItself) {
  Bound bound;
  TypeOver(*bound.text, "45");
  bound.form.Touch();
  bound.binder.Sync();
  EXPECT_EQ(bound.text->text(), "45");
  bound.form.Edit("Text1").Text = "8";
  bound.binder.Sync();
  EXPECT_EQ(bound.text->text(), "8");
}

TEST(Binder, AFieldCorrectedByTheProgramShowsTheCorrection) {
  Bound bound;
  bound.form.onGo = [&] { bound.form.Edit("Text1").Text = "3"; };
  TypeOver(*bound.text, "999");
  bound.go->click();
  bound.binder.Sync();
  EXPECT_EQ(bound.text->text(), "3");
}

TEST(Binder, AComputedValueIsReadOnlyAndLooksIt) {
  Bound bound;
  EXPECT_TRUE(bound.step->isReadOnly());
  EXPECT_EQ(bound.step->palette().color(QPalette::Base),
            bound.step->palette().color(QPalette::Window));
  EXPECT_FALSE(bound.text->isReadOnly());
}

TEST(Binder, AFieldOfSeveralLinesIsAsHighAsTheyAre) {
  class TextForm : public Form {
   public:
    TextForm() : Form("Texts", "Texts") {
      AddText("Few", "").ReadOnly().Lines(3);
      AddText("Many", "").ReadOnly().Lines(20);
    }
  } form;
  FormRegistry registry;
  registry.Add(form);
  QtHost host(registry);
  Binder binder(form, host);
  for (const auto& [name, lines] : {std::pair("Few", 3), std::pair("Many", 20)}) {
    const std::unique_ptr<QPlainTextEdit> field(binder.Memo(name));
    const int line = field->fontMetrics().lineSpacing();
    EXPECT_GE(field->sizeHint().height(), lines * line) << name;
    EXPECT_LE(field->sizeHint().height(), (lines + 2) * line) << name;
  }
}

// A log that grows at its head, with an end that falls off.
TEST(Binder, WhatIsReadInALogStaysInPlaceWhileTheLogGrows) {
  class ReadForm : public Form {
   public:
    ReadForm() : Form("Log", "Log") { AddText("Lines", "").ReadOnly().Lines(6); }
    Control& Lines() { return (*this)["Lines"]; }
  } form;
  FormRegistry registry;
  registry.Add(form);
  QtHost host(registry);
  Binder binder(form, host);
  const std::unique_ptr<QPlainTextEdit> field(binder.Memo("Lines"));
  field->resize(300, 120);
  field->show();
  std::string text;
  for (int i = 40; i > 0; --i) text += "line " + std::to_string(i) + "\n";
  const auto show = [&] {
    form.Lines().Text = text;
    binder.Sync();
    QApplication::processEvents();
  };
  const auto top = [&] { return field->cursorForPosition({4, 4}).block().text().toStdString(); };
  show();
  EXPECT_EQ(top(), "line 40");
  field->verticalScrollBar()->setValue(20);
  EXPECT_EQ(top(), "line 20");
  // One of the new lines is broken into several on the screen, and the last old one falls off.
  text = "new\n" + std::string(200, 'W') + "\nnew\n" + text.substr(0, text.size() - 7);
  show();
  EXPECT_EQ(top(), "line 20");
  field->verticalScrollBar()->setValue(0);
  text = "newest\n" + text;
  show();
  EXPECT_EQ(top(), "newest");
}

TEST(Binder, WhatIsSelectedInALogStaysSelectedWhileTheLogGrows) {
  class LogForm : public Form {
   public:
    LogForm() : Form("Log", "Log") { AddText("Lines", "").ReadOnly().Lines(6); }
    Control& Lines() { return (*this)["Lines"]; }
  } form;
  FormRegistry registry;
  registry.Add(form);
  QtHost host(registry);
  Binder binder(form, host);
  const std::unique_ptr<QPlainTextEdit> field(binder.Memo("Lines"));
  const auto show = [&](const std::string& text) {
    form.Lines().Text = text;
    binder.Sync();
    EXPECT_EQ(field->toPlainText().toStdString(), text);
    EXPECT_FALSE(field->document()->isModified());
  };
  show("c\nbee\na");
  QTextCursor cursor = field->textCursor();
  cursor.setPosition(2);
  cursor.setPosition(5, QTextCursor::KeepAnchor);
  field->setTextCursor(cursor);
  const auto selected = [&] { return field->textCursor().selectedText().toStdString(); };
  EXPECT_EQ(selected(), "bee");
  show("d\nc\nbee\na");
  EXPECT_EQ(selected(), "bee");
  show("f\ne\nd\nc\nbee");  // the last line falls off
  EXPECT_EQ(selected(), "bee");
  show("other");
  EXPECT_EQ(selected(), "");
  show("");
  show("new\nlines");
  EXPECT_FALSE(form.Lines().Edited);
}

TEST(Binder, ACaptionChangedByTheFormKeepsItsMnemonic) {
  Bound bound;
  EXPECT_EQ(bound.go->text(), "Go && &see");
  bound.form.Edit("Go").Caption = "Short *";
  bound.binder.Sync();
  EXPECT_EQ(bound.go->text(), "&Short *");
}

TEST(Binder, StateAndValuesComeFromTheForm) {
  Bound bound;
  bound.form.Edit("Go").Enabled = false;
  bound.form.Edit("Tick").Checked = true;
  bound.form.Edit("List").Index = 1;
  bound.form.Edit("Bar").Percent = 60;
  bound.form.Edit("Told").Text = "a text";
  bound.form.Edit("B").Shown = false;
  bound.form.Edit("Item").Enabled = false;
  bound.binder.Sync();
  EXPECT_FALSE(bound.go->isEnabled());
  EXPECT_TRUE(bound.tick->isChecked());
  EXPECT_EQ(bound.list->currentText(), "101");
  EXPECT_EQ(bound.bar->value(), 60);
  EXPECT_EQ(bound.told->text(), "a text");
  EXPECT_FALSE(bound.b->isVisible());
  EXPECT_FALSE(bound.item->isEnabled());
}

TEST(Binder, AListTakesOtherEntriesAndNone) {
  Bound bound;
  bound.form.Edit("List").Entries = {"a", "b", "c"};
  bound.form.Edit("List").Index = -1;
  bound.binder.Sync();
  EXPECT_EQ(bound.list->count(), 3);
  EXPECT_EQ(bound.list->currentIndex(), -1);
}

TEST(Binder, ChoicesGoToTheForm) {
  Bound bound;
  bound.tick->click();
  EXPECT_TRUE(bound.form.At("Tick").Checked);
  bound.b->click();
  EXPECT_TRUE(bound.form.At("B").Checked);
  EXPECT_FALSE(bound.form.At("A").Checked);
  emit bound.list->activated(1);
  EXPECT_EQ(bound.form.At("List").Index, 1);
  bound.item->trigger();
  EXPECT_EQ(bound.form.clicked, (std::vector<std::string>{"item"}));
}

TEST(Binder, AnOptionThatTheFormTurnsBackShowsTheOther) {
  Bound bound;
  bound.form.refuseB = true;
  bound.b->click();
  bound.binder.Sync();
  EXPECT_TRUE(bound.a->isChecked());
  EXPECT_FALSE(bound.b->isChecked());
}

TEST(Binder, AnArrowToAnOptionThatTheFormTurnsBackLeavesTheKeyboardAtTheChosenOne) {
  Bound bound;
  int refused = 0;
  bound.form.refuseB = true;
  QObject::connect(bound.b, &QRadioButton::clicked, bound.b, [&refused] { ++refused; });
  bound.window.activateWindow();
  bound.a->setFocus();
  QCoreApplication::processEvents();  // the arrows go by the places of the widgets
  for (int times = 1; times <= 2; ++times) {
    QTest::keyClick(bound.window.focusWidget(), Qt::Key_Down);
    bound.binder.Sync();
    QCoreApplication::processEvents();
    EXPECT_EQ(bound.window.focusWidget(), bound.a) << times;
    EXPECT_EQ(refused, times);
  }
}

TEST(Binder, AColourStandsInAnEdgeSoThatItIsSeenOnItsButton) {
  UiFixture vna;
  const auto& button = vna.Widget<QPushButton>("Colours", "Picture1");
  const QImage image = button.icon().pixmap(24, 14).toImage();
  EXPECT_EQ(image.pixelColor(image.rect().center()), QColor(Qt::white));
  EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::gray));
  EXPECT_EQ(image.pixelColor(image.width() - 1, image.height() - 1), QColor(Qt::gray));
}

TEST(Binder, AGroupMayStandWithNoneChosen) {
  Bound bound;
  bound.form.Edit("A").Checked = false;
  bound.binder.Sync();
  EXPECT_FALSE(bound.a->isChecked());
  EXPECT_FALSE(bound.b->isChecked());
  bound.a->click();
  EXPECT_TRUE(bound.form.At("A").Checked);
}

TEST(Binder, AControlThatTheFormDoesNotHaveFailsLoudly) {
  SmallForm form;
  FormRegistry registry;
  QtHost host(registry);
  Binder binder(form, host);
  EXPECT_THROW(binder.Button("Nothing"), std::logic_error);
  EXPECT_THROW(binder.List("NoList"), std::logic_error);
  EXPECT_THROW(binder.Text("NoText"), std::logic_error);
  const qsizetype widgets = QApplication::allWidgets().size();
  EXPECT_THROW(binder.Check("Nothing"), std::logic_error);
  EXPECT_THROW(binder.Memo("NoText"), std::logic_error);
  EXPECT_THROW(binder.OfferingText("NoText"), std::logic_error);
  EXPECT_THROW(binder.Caption("NoText"), std::logic_error);
  EXPECT_THROW(binder.List("NoList"), std::logic_error);
  EXPECT_THROW(binder.Button("Nothing"), std::logic_error);
  EXPECT_THROW(binder.Text("NoText"), std::logic_error);
  EXPECT_EQ(QApplication::allWidgets().size(), widgets) << "one was made and is left over";
}

// As when a window goes with the keyboard in a field that was typed in.
TEST(Binder, AFieldThatOutlivesItReachesTheFormNoMore) {
  for (const bool severalLines : {false, true}) {
    SmallForm form;
    FormRegistry registry;
    registry.Add(form);
    QtHost host(registry);
    auto binder = std::make_unique<Binder>(form, host);
    const std::unique_ptr<QWidget> field(severalLines
                                             ? static_cast<QWidget*>(binder->Memo("Text1"))
                                             : static_cast<QWidget*>(binder->Text("Text1")));
    field->show();
    field->activateWindow();
    ASSERT_TRUE(RunUntil([&] { return field->isActiveWindow(); }));
    field->setFocus();
    QTest::keyClicks(field.get(), "5");
    ASSERT_TRUE(field->hasFocus());
    binder.reset();
    field->clearFocus();
    EXPECT_TRUE(form.typed.empty());
  }
}

TEST(Binder, ControlsWithoutAWidgetAreReported) {
  SmallForm form;
  FormRegistry registry;
  QtHost host(registry);
  Binder binder(form, host);
  const std::unique_ptr<QPushButton> button(binder.Button("Go"));
  binder.Own("Told");
  EXPECT_EQ(binder.Unbound(),
            (std::vector<std::string>{"Text1", "Text2", "Tick", "A", "B", "List", "Bar", "Item"}));
}

}  // namespace
}  // namespace qk::test
