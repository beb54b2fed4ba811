// SPDX-License-Identifier: MIT
// A window as plain data: what a user may do to its controls, and what that sets off.
#include "core/form.h"

#include <gtest/gtest.h>

namespace qk {
namespace {

class SampleForm : public Form {
 public:
  SampleForm() : Form("Sample", "A sample") {
    AddButton("Go", "Go", [this] { ++Clicks; });
    AddMenuItem("Files", "Load", "Load...", [this] { ++Clicks; });
    AddText("Text1", "Name", [this] { ++Typed; });
    AddText("Shown", "Result").ReadOnly();
    AddCheck("Check1", "On", [this] { ++Ticked; });
    AddOption("Option1", "One", 1, [this] { ++Ticked; });
    AddOption("Option2", "Two", 1, [this] { ++Ticked; });
    AddOption("Option3", "Other group", 2);
    AddList("List", "Units", {"mm", "cm"}, [this] { ++Selected; });
    AddList("Empty", "Nothing", {});
    AddProgress("ProgressBar1");
    AddLabel("Label1", "A label");
    AddPicture("Picture1");
  }
  int Clicks = 0, Typed = 0, Ticked = 0, Selected = 0;
};

struct Forms : testing::Test {
  SampleForm form;
};

TEST_F(Forms, HaveANameACaptionAndTheirControlsInOrder) {
  EXPECT_EQ(form.Name(), "Sample");
  EXPECT_EQ(form.Caption(), "A sample");
  ASSERT_EQ(form.Controls().size(), 13u);
  EXPECT_EQ(form.Controls().front().Name, "Go");
  EXPECT_EQ(form.At("Load").Menu, "Files");
  EXPECT_EQ(form.Find("None"), nullptr);
}

TEST_F(Forms, AClickRunsTheAction) {
  EXPECT_TRUE(form.Click("Go"));
  EXPECT_TRUE(form.Click("Load"));
  EXPECT_EQ(form.Clicks, 2);
}

TEST_F(Forms, AnActOnAMissingDisabledHiddenOrOtherControlDoesNothing) {
  form["Go"].Enabled = false;
  form["Load"].Shown = false;
  form["Text1"].Enabled = false;
  EXPECT_FALSE(form.Click("Go"));
  EXPECT_FALSE(form.Click("Load"));
  EXPECT_FALSE(form.Click("None"));
  EXPECT_FALSE(form.Click("Text1"));
  EXPECT_FALSE(form.Type("Text1", "x"));
  EXPECT_FALSE(form.Type("Shown", "x"));
  EXPECT_FALSE(form.Type("Check1", "x"));
  EXPECT_FALSE(form.Tick("Go", true));
  EXPECT_FALSE(form.Select("Check1", 0));
  EXPECT_FALSE(form.SelectText("None", "mm"));
  EXPECT_EQ(form.Clicks + form.Typed + form.Ticked + form.Selected, 0);
  EXPECT_EQ(form.At("Text1").Text, "");
}

TEST_F(Forms, TypingSetsTheTextAndRunsTheAction) {
  EXPECT_TRUE(form.Type("Text1", "abc"));
  EXPECT_EQ(form.At("Text1").Value(), "abc");
  EXPECT_EQ(form.Typed, 1);
}

TEST_F(Forms, ATickedOptionClearsItsGroupAndNoOther) {
  EXPECT_TRUE(form.Tick("Option3", true));
  EXPECT_TRUE(form.Tick("Option1", true));
  EXPECT_TRUE(form.Click("Option2"));
  EXPECT_EQ(form.At("Option1").Value(), "off");
  EXPECT_EQ(form.At("Option2").Value(), "on");
  EXPECT_EQ(form.At("Option3").Value(), "on");
  EXPECT_EQ(form.Ticked, 2);
}

TEST_F(Forms, AnOptionIsLeftOnlyByChoosingAnother) {
  form.Tick("Option1", true);
  EXPECT_FALSE(form.Tick("Option1", false));
  EXPECT_TRUE(form.At("Option1").Checked);
}

TEST_F(Forms, ACheckBoxGoesOnAndOff) {
  EXPECT_TRUE(form.Tick("Check1", true));
  EXPECT_EQ(form.At("Check1").Value(), "on");
  EXPECT_TRUE(form.Tick("Check1", false));
  EXPECT_EQ(form.At("Check1").Value(), "off");
}

TEST_F(Forms, AListBeginsAtItsFirstEntryAndTakesOnlyItsOwn) {
  EXPECT_EQ(form.At("List").Value(), "mm");
  EXPECT_EQ(form.At("Empty").Value(), "");
  EXPECT_TRUE(form.SelectText("List", "cm"));
  EXPECT_EQ(form.At("List").Index, 1);
  EXPECT_FALSE(form.SelectText("List", "inch"));
  EXPECT_FALSE(form.Select("List", 2));
  EXPECT_FALSE(form.Select("List", -1));
  EXPECT_EQ(form.At("List").Value(), "cm");
  EXPECT_EQ(form.Selected, 1);
}

TEST_F(Forms, AProgressBarReportsItsPercentage) {
  form["ProgressBar1"].Percent = 40;
  EXPECT_EQ(form.At("ProgressBar1").Value(), "40");
}

TEST_F(Forms, EveryChangeRaisesTheRevisionAndARefusedActDoesNot) {
  const auto before = form.Revision();
  form.Click("None");
  EXPECT_EQ(form.Revision(), before);
  form.Type("Text1", "x");
  EXPECT_GT(form.Revision(), before);
}

// A window with two fields and two options that are applied together, and one field beside them.
struct AppliedForm : Form {
  AppliedForm() : Form("AppliedForm", "Applied") {
    first = AddText("First", "First");
    list = AddList("List", "List", {"a", "b"});
    options = AddOptions({{"On", "On"}, {"Off", "Off"}});
    other = AddText("Other", "Other");
    group = {first, list};
    group.Add(options);
  }
  Handle first, list, other;
  OptionGroup options;
  EntryGroup group;
};

TEST(EntryGroup, IsEditedByWhatTheUserDoesToOneOfItsControls) {
  const auto edited = [](auto&& act) {
    AppliedForm form;
    act(form);
    return form.group.Edited();
  };
  EXPECT_FALSE(edited([](AppliedForm&) {}));
  EXPECT_TRUE(edited([](AppliedForm& form) { form.Type("First", "x"); }));
  EXPECT_TRUE(edited([](AppliedForm& form) { form.Select("List", 1); }));
  EXPECT_TRUE(edited([](AppliedForm& form) { form.Click("Off"); }));
  EXPECT_TRUE(edited([](AppliedForm& form) { form.BeginEdit("First"); }));
  EXPECT_FALSE(edited([](AppliedForm& form) { form.Type("Other", "x"); }));
  EXPECT_FALSE(edited([](AppliedForm& form) {
    form.Type("First", "x");
    form.first.Text("y");
  })) << "the form has written over it";
}

TEST(EntryGroup, AnEntryThatDiffersFromWhatIsInForcePendsUntilItIsApplied) {
  AppliedForm form;
  form.first.Text("5");
  EXPECT_FALSE(form.first->Pending());
  form.Type("First", "7");
  EXPECT_TRUE(form.first->Pending());
  form.Type("First", "5");
  EXPECT_FALSE(form.first->Pending()) << "what is in force is typed again";
  form.Type("First", "7");
  form.first.FollowText("7");
  EXPECT_FALSE(form.first->Pending()) << "now in force, by another window";
  form.first.FollowText("6");
  EXPECT_TRUE(form.first->Pending());
  form.group.Accept();
  EXPECT_FALSE(form.first->Pending());
  form.Select("List", 1);
  EXPECT_TRUE(form.list->Pending());
  form.list.FollowIndex(1);
  EXPECT_FALSE(form.list->Pending());
  form.list.Index(0);
  EXPECT_FALSE(form.list->Pending());
  form.options.Choose(0);
  form.Click("Off");
  EXPECT_TRUE(form.options[1]->Pending());
  EXPECT_FALSE(form.options[0]->Pending());
  form.Click("On");
  EXPECT_FALSE(form.options[1]->Pending());
  EXPECT_FALSE(form.options[0]->Pending()) << "the one in force is chosen again";
  form.Type("Other", "x");
  EXPECT_FALSE(form.other->Pending()) << "no button applies it";
}

TEST(EntryGroup, OnceAcceptedItsControlsFollowTheSessionAgain) {
  AppliedForm form;
  form.Type("First", "typed");
  form.Click("Off");
  form.first.FollowText("session");
  EXPECT_EQ(form.first->Text, "typed");
  form.group.Accept();
  EXPECT_FALSE(form.group.Edited());
  EXPECT_EQ(form.first->Text, "typed") << "what is in force stays as typed";
  form.first.FollowText("session");
  form.options.Follow(0);
  EXPECT_EQ(form.first->Text, "session");
  EXPECT_EQ(form.options.Chosen(), 0);
}

}  // namespace
}  // namespace qk
