// SPDX-License-Identifier: MIT
#include "forms/compare_form.h"

#include <memory>

#include "core/window_names.h"
#include "files/session_compare.h"
#include "files/session_file.h"
#include "files/whole_file.h"

namespace qk {

namespace {
constexpr const char* kCompareTitle = "Compare Sessions";
constexpr const char* kInForce = "(session in force)";
}  // namespace

CompareForm::CompareForm(Rig& rig) : Form(window::kCompare, kCompareTitle), rig_(rig) {
  Section("Sessions");
  first_ = AddText("First", "First").Key('F').Chars(48).Tip("Empty: the session in force");
  AddButton("ChooseFirst", "Choose...", [this] { Choose(first_); }).SameRow();
  second_ = AddText("Second", "Second").Key('o').Chars(48).Tip("Empty: the session in force");
  AddButton("ChooseSecond", "Choose...", [this] { Choose(second_); }).SameRow();
  Section("Differences");
  text_ = AddText("Text", "").ReadOnly().Lines(18).Chars(64).Wide();
  ActionRow();
  AddButton("Compare", "Compare", [this] { Compare(); }).Key('C').Default();
  save_ = AddButton("Save", "Save...", [this] { Save(); }).Key('S');
  AddButton("Exit", "Exit", [this] { rig_.host.windows.Hide(Name()); }).Key('x');
}

void CompareForm::OnOpen() {
  text_.Text("");
  save_.Enabled(false);
}

void CompareForm::Choose(const Handle& field) {
  const auto path =
      rig_.host.prompts.Choose({DialogKind::Open, kCompareTitle, rig_.session.InstallFolder,
                                "All Files (*.*)|*.*|cal_files(*.cal)|*.cal|", 2});
  if (path) field.Text(*path);
}

void CompareForm::Compare() {
  std::unique_ptr<Session> loaded[2];
  const Session* sessions[2] = {&rig_.session, &rig_.session};
  std::string names[2] = {kInForce, kInForce};
  const Handle* fields[2] = {&first_, &second_};
  for (int i = 0; i < 2; ++i) {
    const std::string path = (*fields[i])->Text;
    if (path.empty()) continue;
    loaded[i] = MakeSession();
    if (const Result<Done> read = LoadSession(path, *loaded[i]); !read) {
      rig_.host.prompts.ShowMessage(kCompareTitle, read.Why().Text(), Icon::Exclamation);
      return;
    }
    sessions[i] = loaded[i].get();
    names[i] = path;
  }
  text_.Text(CompareSessions(*sessions[0], names[0], *sessions[1], names[1]));
  save_.Enabled();
}

void CompareForm::Save() {
  const auto path =
      rig_.host.prompts.Choose({DialogKind::Save, kCompareTitle, rig_.session.InstallFolder,
                                "Text_files(*.txt)|*.txt|All Files (*.*)|*.*|", 1});
  if (!path) return;
  if (const Result<Done> saved = WriteWhole(*path, text_->Text); !saved)
    rig_.host.prompts.ShowMessage(kCompareTitle, saved.Why().Text(), Icon::Exclamation);
}

}  // namespace qk
