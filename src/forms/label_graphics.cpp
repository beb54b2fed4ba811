// SPDX-License-Identifier: MIT
#include "forms/label_graphics.h"

#include <string>
#include <vector>

#include "core/window_names.h"
#include "display/label.h"

namespace qk {

LabelGraphics::LabelGraphics(Controller& controller)
    : Form(window::kLabelGraphics, "Add Label"),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  Section("Label");
  const auto& last = session_.Label.GraphicsLabels;
  text_ = AddText("LabList", "Text")
              .Key('T')
              .Chars(40)
              .Offers({last.begin(), last.end()})
              .Tip("A new text, or one of the last five");
  date_ = AddCheck("Check1", "Date", [this] { session_.Label.Date = date_->Checked; }).Key('D');
  status_ = AddCheck("Check2", "Status", [this] { session_.Label.Status = status_->Checked; })
                .Key('S')
                .SameRow()
                .Tip("Calibration, level and temperature, as in the status bar");
  show_ = AddCheck("Check3", "Show", [this] { session_.Label.Show = show_->Checked; })
              .Key('h')
              .SameRow()
              .Tip("Prints and saved pictures carry the label");
  preview_ = AddText("Text1", "Preview").ReadOnly().Chars(64).Wide();
  ActionRow();
  const Handle add = AddButton("Command1", "Add", [this] { Add(); }).Key('A').Default();
  text_.Returns(add);
  AddButton("Command2", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void LabelGraphics::OnOpen() {
  text_.Text(session_.Label.GraphicsLabels.front());
  ShowLabel();
}

void LabelGraphics::OnSessionChanged() {
  text_.FollowText(session_.Label.GraphicsLabels.front());
  ShowLabel();
}

void LabelGraphics::ShowLabel() {
  const LabelState& label = session_.Label;
  text_.Offers({label.GraphicsLabels.begin(), label.GraphicsLabels.end()});
  date_.Checked(label.Date);
  status_.Checked(label.Status);
  show_.Checked(label.Show);
  preview_.Text(label.Composed);
}

void LabelGraphics::Add() {
  const std::string text = text_->Text;
  RememberLabel(session_.Label, text);
  session_.Label.Composed = ComposeLabel(session_, text, DateText(host_.loop.Now()));
  text_.Text(text);
  ShowLabel();
}

}  // namespace qk
