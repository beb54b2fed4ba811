// SPDX-License-Identifier: MIT
// The windows that deal with kits: Calibration Kit Parameters, Cal Kit Editor, Save cal kit.
#include <fstream>
#include <sstream>

#include "files/kit_file.h"
#include "support/full_disk.h"
#include "support/program_fixture.h"

namespace qk {
namespace {

using namespace test;

std::string Lines(int n, int columns) {
  std::string text;
  for (int i = 0; i < n; ++i) {
    text += std::to_string(3 * (i + 1));
    for (int c = 1; c < columns; ++c) text += ",0." + std::to_string(c);
    text += "\r\n";
  }
  return text;
}

std::string KitText(bool load, bool thru) {
  std::string text = "\"Std N\"\r\n#FALSE#\r\n0.005,2e-11,1.24e-15,2e-25,-3e-35,4e-46\r\n";
  text += load ? "#TRUE#\r\n" + Lines(101, 3) : "#FALSE#\r\n";
  text += thru ? "#TRUE#\r\n" + Lines(101, 9) : "#FALSE#\r\n";
  return text + "EOF\r\n";
}

struct KitWindows : testing::Test, ScriptedProgram {
  std::string Put(const std::string& name, const std::string& text) {
    std::ofstream(folder.File(name), std::ios::binary) << text;
    return folder.File(name);
  }
  std::string Got(const std::string& name) {
    std::ostringstream text;
    text << std::ifstream(folder.File(name), std::ios::binary).rdbuf();
    return text.str();
  }
  void Open() { ASSERT_TRUE(Click("Form1.CalKit")); }
  // Calibration Kit Parameters with a kit of port 1 from a file.
  void OpenWith(const std::string& text) {
    Open();
    fake.Choices.push_back(Put("k.kit", text));
    ASSERT_TRUE(Click("CalKitForm.Command1"));
  }
  // Opens the editor, works in it and leaves it.
  void InEditor(const std::function<void()>& work) {
    Open();
    fake.OnModal = [this, work](Form&) {
      work();
      Click("NewCalKit.Command3");
    };
    ASSERT_TRUE(Click("CalKitForm.Command2"));
  }
};

// ---- Calibration Kit Parameters --------------------------------------------------------------

TEST_F(KitWindows, OpensWithTheKitsOfTheSession) {
  session.Kit1.KitOffset = 0.00525f;
  session.Kit2.KitC2 = -1.26e-35;
  Open();
  EXPECT_EQ(Window("CalKitForm").Caption(), "Calibration Kit Parameters");
  EXPECT_EQ(Value("CalKitForm.Text1"), "Default");
  EXPECT_EQ(Value("CalKitForm.Text3"), "Default");
  EXPECT_EQ(Value("CalKitForm.Text2"), "5.25");
  EXPECT_EQ(Value("CalKitForm.Text8"), "0.00");
  EXPECT_EQ(Value("CalKitForm.Option2"), "on");
  EXPECT_EQ(Value("CalKitForm.Option3"), "on");
  EXPECT_EQ(Value("CalKitForm.Text4"), "2.5E-15");
  EXPECT_EQ(Value("CalKitForm.Text7"), "2.4E-46");
  EXPECT_EQ(Value("CalKitForm.Text11"), "-1.3E-35");
  for (const char* box : {"Check1", "Check2", "Check3"}) {
    EXPECT_EQ(Value(std::string("CalKitForm.") + box), "off");
    EXPECT_FALSE(At(std::string("CalKitForm.") + box).Enabled);
  }
}

TEST_F(KitWindows, ALoadBoxIsTickedOnlyWhenDataAreThereAndInUse) {
  session.Kit1.KitHasLoad = true;
  session.Kit2.KitHasLoad = session.Kit2.KitLoadInUse = true;
  session.Kit1.KitHasThru = true;
  Open();
  EXPECT_EQ(Value("CalKitForm.Check1"), "off");
  EXPECT_TRUE(At("CalKitForm.Check1").Enabled);
  EXPECT_EQ(Value("CalKitForm.Check2"), "on");
  EXPECT_EQ(Value("CalKitForm.Check3"), "on");
  EXPECT_TRUE(At("CalKitForm.Check3").Enabled);
}

TEST_F(KitWindows, LoadsAKitOfPort1IntoSessionAndFields) {
  OpenWith(KitText(true, true));
  EXPECT_EQ(fake.Dialogs.back().Folder, folder.Text());
  EXPECT_EQ(fake.Dialogs.back().Filter, "All Files (*.*)|*.*|kit_files(*.kit)|*.kit|");
  EXPECT_EQ(fake.Dialogs.back().FilterIndex, 2);
  EXPECT_EQ(session.Kit1.KitName, "Std N");
  EXPECT_EQ(session.Kit1.KitC0, 1.24e-15);
  EXPECT_EQ(session.Kit1.KitDelay, 2e-11f);
  EXPECT_EQ(Value("CalKitForm.Text1"), "Std N");
  EXPECT_EQ(Value("CalKitForm.Text2"), "5.00");
  EXPECT_EQ(Value("CalKitForm.Option1"), "on");
  EXPECT_EQ(Value("CalKitForm.Text4"), "1.2E-15");
  EXPECT_EQ(Value("CalKitForm.Check1"), "on");
  EXPECT_EQ(Value("CalKitForm.Check3"), "on");
  EXPECT_FALSE(At("CalKitForm.Check3").Enabled);
  Click("CalKitForm.Command3");
  Open();
  EXPECT_FALSE(At("CalKitForm.Check3").Enabled) << "as before it was closed";
  EXPECT_EQ(Value("CalKitForm.Check3"), "on");
  fake.Choices.push_back(Put("other.kit", KitText(true, false)));
  ASSERT_TRUE(Click("CalKitForm.Command5"));
  EXPECT_FALSE(At("CalKitForm.Check3").Enabled) << "a kit of port 2 says nothing of it";
  EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(KitWindows, LoadsAKitOfPort2WithoutItsThrough) {
  Open();
  fake.Choices.push_back(Put("k.kit", KitText(true, true)));
  ASSERT_TRUE(Click("CalKitForm.Command5"));
  EXPECT_EQ(session.Kit2.KitName, "Std N");
  EXPECT_FALSE(session.Kit2.KitHasThru);
  EXPECT_EQ(Value("CalKitForm.Text3"), "Std N");
  EXPECT_EQ(Value("CalKitForm.Check2"), "on");
  EXPECT_EQ(Value("CalKitForm.Check3"), "off");
  EXPECT_EQ(session.Kit1.KitName, "Default");
}

TEST_F(KitWindows, LoadingAKitLeavesWhatWasTypedForTheOtherPort) {
  Open();
  Type("CalKitForm.Text3", "Typed 2");
  Type("CalKitForm.Text9", "3E-15");
  Window("CalKitForm").Tick("Option4", true);
  fake.Choices.push_back(Put("k.kit", KitText(true, true)));
  ASSERT_TRUE(Click("CalKitForm.Command1"));
  EXPECT_EQ(Value("CalKitForm.Text1"), "Std N");
  EXPECT_EQ(Value("CalKitForm.Text3"), "Typed 2");
  EXPECT_EQ(Value("CalKitForm.Text9"), "3E-15");
  EXPECT_EQ(Value("CalKitForm.Option4"), "on");

  Type("CalKitForm.Text1", "Typed 1");
  fake.Choices.push_back(Put("k.kit", KitText(true, true)));
  ASSERT_TRUE(Click("CalKitForm.Command5"));
  EXPECT_EQ(Value("CalKitForm.Text3"), "Std N");
  EXPECT_EQ(Value("CalKitForm.Text1"), "Typed 1");
  ASSERT_TRUE(Click("CalKitForm.Command4"));
  EXPECT_EQ(session.Kit1.KitName, "Typed 1");
}

TEST_F(KitWindows, AKitOfPort2LeavesTheThroughBoxAsItIs) {
  OpenWith(KitText(true, true));
  ASSERT_FALSE(At("CalKitForm.Check3").Enabled);
  fake.Choices.push_back(Put("k.kit", KitText(true, true)));
  ASSERT_TRUE(Click("CalKitForm.Command5"));
  EXPECT_EQ(Value("CalKitForm.Check3"), "on");
  EXPECT_FALSE(At("CalKitForm.Check3").Enabled);

  session.Kit1.KitName = "of a session file";  // whose through data may be unticked
  fake.host().windows.SessionChanged();
  Window("CalKitForm").Tick("Check3", false);
  fake.Choices.push_back(Put("k.kit", KitText(true, true)));
  ASSERT_TRUE(Click("CalKitForm.Command5"));
  EXPECT_EQ(Value("CalKitForm.Check3"), "off");
  ASSERT_TRUE(Click("CalKitForm.Command4"));
  EXPECT_FALSE(session.Kit1.KitHasThru);
}

TEST_F(KitWindows, ACancelledDialogChangesNothing) {
  Open();
  fake.Choices.push_back(std::nullopt);
  Click("CalKitForm.Command1");
  EXPECT_EQ(session.Kit1.KitName, "Default");
  EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(KitWindows, ADamagedKitIsReportedAndLeavesTheKitInUse) {
  OpenWith("\"Std N\"\r\n#FALSE#\r\n1,2\r\n");
  EXPECT_EQ(TakeMessages(), Texts{"Load Kit|" + folder.File("k.kit") +
                                  ": line 3: the file ends too soon|exclamation|ok"});
  EXPECT_EQ(session.Kit1.KitName, "Default");
  EXPECT_EQ(Value("CalKitForm.Text1"), "Default");
}

TEST_F(KitWindows, ALoadedKitWithoutThroughEndsTheNonInsertableChoice) {
  session.Kit1.KitHasThru = true;
  OpenCalibration();
  Window("Calibration").Tick("Option7", true);
  ASSERT_EQ(Value("Calibration.Option7"), "on");
  OpenWith(KitText(true, false));
  EXPECT_EQ(Value("Calibration.Option5"), "on");
  EXPECT_EQ(Value("Calibration.Text4"), "Std N");
  EXPECT_EQ(Value("CalKitForm.Check3"), "off");
}

TEST_F(KitWindows, ALoadedKitWithThroughKeepsTheNonInsertableChoice) {
  session.Kit1.KitHasThru = true;
  OpenCalibration();
  Window("Calibration").Tick("Option7", true);
  OpenWith(KitText(false, true));
  EXPECT_EQ(Value("Calibration.Option7"), "on");
}

TEST_F(KitWindows, ApplyTakesTheFieldsAndGivesTheCalibrationWindowTheNames) {
  OpenCalibration();
  Open();
  Type("CalKitForm.Text1", "Mine");
  Type("CalKitForm.Text3", "Yours");
  Type("CalKitForm.Text2", "12.5");
  Type("CalKitForm.Text8", "abc");
  Window("CalKitForm").Tick("Option1", true);
  Type("CalKitForm.Text4", "3.1E-15x");
  ASSERT_TRUE(Click("CalKitForm.Command4"));
  EXPECT_EQ(session.Kit1.KitName, "Mine");
  EXPECT_EQ(session.Kit2.KitName, "Yours");
  EXPECT_EQ(session.Kit1.KitOffset, 0.0125f);
  EXPECT_EQ(session.Kit1.KitDelay, static_cast<float>(static_cast<double>(0.0125f) / 299792458.0));
  EXPECT_EQ(session.Kit2.KitOffset, 0);
  EXPECT_FALSE(session.Kit1.KitMale);
  EXPECT_EQ(session.Kit1.KitC0, 3.1e-15);
  EXPECT_EQ(Value("Calibration.Text4"), "Mine");
  EXPECT_EQ(Value("Calibration.Text5"), "Yours");
  EXPECT_TRUE(Window("CalKitForm").Shown);
}

// The delay of a file is used until Apply recomputes it; of a coefficient Apply takes what is
// shown.
TEST_F(KitWindows, ApplyRecomputesTheDelayAndTakesTheDigitsThatAreShown) {
  OpenWith(KitText(false, false));
  EXPECT_EQ(session.Kit1.KitDelay, 2e-11f);
  Click("CalKitForm.Command4");
  EXPECT_EQ(session.Kit1.KitDelay, static_cast<float>(static_cast<double>(0.005f) / 299792458.0));
  EXPECT_EQ(session.Kit1.KitC0, 1.2e-15);
}

TEST_F(KitWindows, ApplyTakesDataOutOfUseWhoseBoxIsOff) {
  session.Kit1.KitHasLoad = session.Kit1.KitLoadInUse = session.Kit1.KitHasThru = true;
  session.Kit2.KitHasLoad = true;
  Open();
  Window("CalKitForm").Tick("Check1", false);
  Window("CalKitForm").Tick("Check3", false);
  Window("CalKitForm").Tick("Check2", true);
  Click("CalKitForm.Command4");
  EXPECT_FALSE(session.Kit1.KitHasLoad);
  EXPECT_FALSE(session.Kit1.KitLoadInUse);
  EXPECT_FALSE(session.Kit1.KitHasThru);
  EXPECT_FALSE(At("CalKitForm.Check3").Enabled) << "a tick would bring nothing back";
  EXPECT_TRUE(session.Kit2.KitHasLoad);
  EXPECT_TRUE(session.Kit2.KitLoadInUse);
}

TEST_F(KitWindows, ChangingAKitDoesNotTouchErrorTerms) {
  session.Terms.Forward.ED.Set(5, {0.25, 0.5});
  OpenWith(KitText(true, true));
  Click("CalKitForm.Command4");
  EXPECT_EQ(session.Terms.Forward.ED[5], (Complex{0.25, 0.5}));
}

// ---- Cal Kit Editor --------------------------------------------------------------------------

TEST_F(KitWindows, TheEditorOpensWithANewKitFromPort1) {
  session.Kit1.KitOffset = 0.001f;
  InEditor([this] {
    EXPECT_EQ(Window("NewCalKit").Caption(), "Cal Kit Editor");
    EXPECT_EQ(Value("NewCalKit.Text1"), "New kit");
    EXPECT_EQ(Value("NewCalKit.Text2"), "1.00");
    EXPECT_EQ(Value("NewCalKit.Option2"), "on");
    EXPECT_EQ(Value("NewCalKit.Text5"), "2.9E-25");
    EXPECT_EQ(Value("NewCalKit.Text7"), "2.4E-46");
    EXPECT_EQ(Value("NewCalKit.Check1"), "off");
    EXPECT_EQ(Value("NewCalKit.Check2"), "off");
  });
  EXPECT_FALSE(Window("NewCalKit").Shown);
}

TEST_F(KitWindows, TheEditorSavesWhatItsFieldsSay) {
  InEditor([this] {
    Type("NewCalKit.Text1", "Mine");
    Type("NewCalKit.Text2", "10");
    Window("NewCalKit").Tick("Option1", true);
    for (const char* c : {"Text4", "Text5", "Text6", "Text7"})
      Type(std::string("NewCalKit.") + c, "1.5e-30");
    fake.Choices.push_back(folder.File("mine.kit"));
    Click("NewCalKit.Command2");
  });
  EXPECT_EQ(fake.Dialogs.back().Kind, DialogKind::Save);
  EXPECT_EQ(fake.Dialogs.back().FilterIndex, 2);
  EXPECT_EQ(Got("mine.kit"),
            "\"Mine\"\r\n#FALSE#\r\n0.01,3.335640877424135e-11,1.5e-30,1.5e-30,1.5e-30,1.5e-30\r\n"
            "#FALSE#\r\n#FALSE#\r\nEOF\r\n");
  EXPECT_EQ(session.Kit1.KitName, "Default");
}

// Intentional: the editor's coefficients are 32-bit, in which so small a C3 is 0.
TEST_F(KitWindows, TheEditorLosesACoefficientThatIsTooSmallFor32Bits) {
  InEditor([this] {
    fake.Choices.push_back(folder.File("mine.kit"));
    Click("NewCalKit.Command2");
    fake.Choices.push_back(folder.File("mine.kit"));
    Click("NewCalKit.Command1");
    EXPECT_EQ(Value("NewCalKit.Text4"), "2.5E-15");
    EXPECT_EQ(Value("NewCalKit.Text7"), "0.0E+00");
  });
  EXPECT_NE(Got("mine.kit").find(",2.5e-15,2.9e-25,-1e-35,0\r\n"), std::string::npos);
}

TEST_F(KitWindows, SavingWithBothBoxesOnAndNoDataAsksTwiceForAFile) {
  InEditor([this] {
    Window("NewCalKit").Tick("Check1", true);
    Window("NewCalKit").Tick("Check2", true);
    fake.Answers = {Answer::Ok, Answer::Ok};
    fake.Choices = {Put("l.dat", Lines(101, 3)), Put("t.dat", Lines(101, 9)),
                    folder.File("full.kit")};
    Click("NewCalKit.Command2");
    EXPECT_EQ(TakeMessages(),
              (Texts{"Save Kit|Select file holding Match Load data|none|ok/cancel",
                     "Save Kit|Select file holding Thru Standard data|none|ok/cancel"}));
    EXPECT_EQ(fake.Dialogs[0].Filter, "All Files (*.*)|*.*|dat_files(*.dat)|*.dat|");
    // Data once taken are not asked for again.
    fake.Choices = {folder.File("again.kit")};
    Click("NewCalKit.Command2");
    EXPECT_TRUE(TakeMessages().empty());
  });
  CalKit kit;
  ASSERT_TRUE(LoadKit(folder.File("full.kit"), KitPort::Port1, kit).Ok());
  EXPECT_TRUE(kit.KitHasLoad && kit.KitHasThru);
  EXPECT_EQ(kit.KitThruData[8][100], 0.8f);
  EXPECT_EQ(Got("again.kit"), Got("full.kit"));
}

TEST_F(KitWindows, TheEditorReportsWhatALoadedKitHolds) {
  const std::string same =
      "If the new kit is to have different data, uncheck and then re-check the ";
  const auto load = [this](bool hasLoad, bool hasThru) {
    fake.Choices.push_back(Put("k.kit", KitText(hasLoad, hasThru)));
    Click("NewCalKit.Command1");
  };
  InEditor([&] {
    load(true, true);
    EXPECT_EQ(TakeMessages(), Texts{"Cal Kit Editor|This kit has Load and Thru data. " + same +
                                    "data boxes, else leave boxes unchecked.|information|ok"});
    EXPECT_EQ(Value("NewCalKit.Check2"), "on");
    load(false, true);
    EXPECT_EQ(TakeMessages(), Texts{"Cal Kit Editor|This kit has Thru data. " + same +
                                    "thru data box, else leave box unchecked.|information|ok"});
    load(true, false);
    EXPECT_EQ(TakeMessages(), Texts{"Cal Kit Editor|This kit has Load data. " + same +
                                    "load data box, else leave box unchecked.|information|ok"});
    EXPECT_EQ(Value("NewCalKit.Check1"), "on");
    EXPECT_EQ(Value("NewCalKit.Check2"), "off");
    load(false, false);
    EXPECT_TRUE(TakeMessages().empty());
    EXPECT_EQ(Value("NewCalKit.Text1"), "Std N");
    EXPECT_EQ(Value("NewCalKit.Option1"), "on");
    EXPECT_EQ(Value("NewCalKit.Text2"), "5.00");
  });
  EXPECT_EQ(session.Kit1.KitName, "Default");
}

TEST_F(KitWindows, ALoadedTableIsKeptWithoutAQuestionAndAskedForWhenReChecked) {
  InEditor([this] {
    fake.Choices.push_back(Put("k.kit", KitText(true, false)));
    Click("NewCalKit.Command1");
    TakeMessages();
    fake.Choices.push_back(folder.File("copy.kit"));
    Click("NewCalKit.Command2");
    EXPECT_TRUE(TakeMessages().empty());
    Window("NewCalKit").Tick("Check1", false);
    Window("NewCalKit").Tick("Check1", true);
    fake.Answers = {Answer::Cancel};
    Click("NewCalKit.Command2");
    EXPECT_EQ(TakeMessages(), Texts{"Save Kit|Select file holding Match Load data|none|ok/cancel"});
  });
  CalKit kit;
  ASSERT_TRUE(LoadKit(folder.File("copy.kit"), KitPort::Port1, kit).Ok());
  EXPECT_TRUE(kit.KitHasLoad);
  EXPECT_EQ(kit.KitLoadData[2][100], 0.2f);
}

TEST_F(KitWindows, ADataFileOf100LinesIsAskedAboutAndYesSavesWithoutIt) {
  InEditor([this] {
    for (const Answer answer : {Answer::No, Answer::Yes}) {
      Window("NewCalKit").Tick("Check1", true);
      fake.Answers = {Answer::Ok, answer};
      fake.Choices = {Put("l.dat", Lines(100, 3)), folder.File("without.kit")};
      Click("NewCalKit.Command2");
      EXPECT_EQ(TakeMessages(),
                (Texts{"Save Kit|Select file holding Match Load data|none|ok/cancel",
                       "Load data|Error reading Load data. Continue?|question|yes/no"}));
      EXPECT_EQ(Value("NewCalKit.Check1"), "off");
      EXPECT_EQ(Got("without.kit").empty(), answer == Answer::No);
    }
    EXPECT_EQ(At("NewCalKit.Fault").Caption,
              folder.File("l.dat") + ": line 100: the file ends too soon");
    Window("NewCalKit").Tick("Check2", true);
    fake.Answers = {Answer::Ok, Answer::No};
    fake.Choices = {std::nullopt};
    Click("NewCalKit.Command2");
    EXPECT_EQ(TakeMessages(),
              (Texts{"Save Kit|Select file holding Thru Standard data|none|ok/cancel",
                     "Load data|Error reading Thru data. Continue?|question|yes/no"}));
  });
  EXPECT_NE(Got("without.kit").find("#FALSE#\r\n#FALSE#\r\nEOF\r\n"), std::string::npos);
}

TEST_F(KitWindows, AKitThatCannotBeWrittenIsReportedUnderTheTitleThatIsMeant) {
  InEditor([this] {
    fake.Choices.push_back(folder.Text());
    Click("NewCalKit.Command2");
    EXPECT_EQ(TakeMessages(), Texts{"Load Cal|" + folder.Text() + ": is a folder|exclamation|ok"});
    fake.Choices.push_back(Put("bad.kit", "no kit"));
    Click("NewCalKit.Command1");
    EXPECT_EQ(TakeMessages(),
              Texts{"Cal Kit Editor|" + folder.File("bad.kit") +
                    ": line 1: a text in quotes is expected, not 'no'|exclamation|ok"});
  });
}

TEST_F(KitWindows, OnAFullDiskTheOldKitStaysAndTheCauseIsReported) {
  const std::string path = Put("mine.kit", "former");
  const auto told = [&path](const char* title) {
    return Texts{std::string(title) + "|" + path +
                 ": cannot be written: File too large|exclamation|ok"};
  };
  InEditor([&] {
    const FullDisk disk;
    fake.Choices.push_back(path);
    Click("NewCalKit.Command2");
    EXPECT_EQ(TakeMessages(), told("Load Cal"));
  });
  Open();
  fake.OnModal = [&](Form& form) {
    const FullDisk disk;
    form.Tick("Option1", true);
    fake.Choices.push_back(path);
    Click("SaveKit.Command1");
    EXPECT_EQ(TakeMessages(), told("Save cal kit"));
  };
  ASSERT_TRUE(Click("CalKitForm.Command6"));
  EXPECT_EQ(Got("mine.kit"), "former");
}

// ---- Save cal kit ----------------------------------------------------------------------------

TEST_F(KitWindows, SavesTheKitOfTheChosenPort) {
  session.Kit1.KitHasThru = true;
  session.Kit2.KitName = "Second";
  session.Kit2.KitHasThru = true;
  Open();
  for (const char* option : {"Option1", "Option2"}) {
    fake.OnModal = [this, option](Form& form) {
      EXPECT_EQ(form.Caption(), "Save cal kit");
      EXPECT_EQ(Value("SaveKit.Option1"), "off");
      Click("SaveKit.Command1");
      EXPECT_EQ(TakeMessages(), Texts{"Save cal kit|Please select a kit|exclamation|ok"});
      form.Tick(option, true);
      fake.Choices.push_back(folder.File(std::string(option) + ".kit"));
      Click("SaveKit.Command1");
    };
    ASSERT_TRUE(Click("CalKitForm.Command6"));
  }
  EXPECT_EQ(Got("Option1.kit"), KitBytes(session.Kit1, KitPort::Port1));
  EXPECT_EQ(Got("Option2.kit"), KitBytes(session.Kit2, KitPort::Port2));
  EXPECT_NE(Got("Option2.kit").find("#FALSE#\r\n#FALSE#\r\nEOF"), std::string::npos);
  EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(KitWindows, CancelSavesNothing) {
  Open();
  fake.OnModal = [this](Form& form) {
    form.Tick("Option1", true);
    Click("SaveKit.Command2");
  };
  Click("CalKitForm.Command6");
  EXPECT_TRUE(fake.Dialogs.empty());
}

}  // namespace
}  // namespace qk
