// SPDX-License-Identifier: MIT
#include "console/front_panel.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "console/data_lines.h"
#include "console/quality_lines.h"
#include "console/words.h"
#include "core/window_names.h"

namespace qk {

using namespace console;

namespace {
std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

std::string FullName(const Form& form, const Control& control) {
  return form.Name() + "." + control.Name;
}
}  // namespace

FrontPanel::FrontPanel(ConsoleHost& host, FrontPanelReach reach)
    : host_(host), reach_(std::move(reach)) {
  host_.OnCommand = [this](const std::string& line) { return Execute(line); };
}

const std::vector<FrontPanel::Verb>& FrontPanel::Verbs() {
  static const std::vector<Verb> verbs = {
      {"answer", true, &FrontPanel::Answer},     {"batch", false, &FrontPanel::BatchCommand},
      {"bench", false, &FrontPanel::Bench},      {"click", false, &FrontPanel::Click},
      {"close", false, &FrontPanel::Close},      {"compare", true, &FrontPanel::Compare},
      {"controls", true, &FrontPanel::Controls}, {"data", true, &FrontPanel::Data},
      {"drop", false, &FrontPanel::Drop},        {"get", true, &FrontPanel::Get},
      {"graph", false, &FrontPanel::Graph},      {"mouse", false, &FrontPanel::Mouse},
      {"panels", true, &FrontPanel::Panels},     {"picture", true, &FrontPanel::Picture},
      {"quit", false, &FrontPanel::Quit},        {"resize", false, &FrontPanel::Resize},
      {"save", false, &FrontPanel::Save},        {"set", false, &FrontPanel::Set},
      {"undo", false, &FrontPanel::Undo},        {"wait", false, &FrontPanel::Wait},
      {"windows", true, &FrontPanel::Windows}};
  return verbs;
}

ConsoleHost::Outcome FrontPanel::Execute(std::string_view line) {
  std::string_view rest;
  const std::string_view word = FirstWord(line, rest);
  const auto verb = std::find_if(Verbs().begin(), Verbs().end(),
                                 [word](const Verb& v) { return v.Word == word; });
  if (verb == Verbs().end()) return Outcome::Refused("no command " + Quoted(word));
  if (!verb->Query && host_.Box() != nullptr)
    return Outcome::Refused("a message box is up, answer it first");
  if (!verb->Query && host_.DialogUp() != nullptr)
    return Outcome::Refused("a dialog is up, answer it first");
  return (this->*verb->Run)(rest);
}

// ---- windows and controls --------------------------------------------------------------------

std::optional<FrontPanel::Place> FrontPanel::Find(std::string_view dotted,
                                                  std::string& reason) const {
  const std::size_t dot = dotted.find('.');
  if (dot == std::string_view::npos) {
    reason = "WINDOW.CONTROL is missing";
    return std::nullopt;
  }
  const std::string window(dotted.substr(0, dot));
  const std::string name(dotted.substr(dot + 1));
  Form* form = reach_.registry.Find(window);
  if (form == nullptr) {
    reason = "no window " + window;
    return std::nullopt;
  }
  const Control* control = form->Find(name);
  if (control == nullptr) {
    reason = "no control " + name + " in " + window;
    return std::nullopt;
  }
  return Place{*form, *control};
}

std::optional<FrontPanel::Place> FrontPanel::FindOperable(std::string_view dotted,
                                                          std::string& reason) const {
  const auto place = Find(dotted, reason);
  if (!place) return std::nullopt;
  const auto& [form, control] = *place;
  reason = Reachable(form, &control);
  if (reason.empty() && !control.Shown) reason = FullName(form, control) + " is hidden";
  if (reason.empty() && !control.Enabled) reason = FullName(form, control) + " is disabled";
  return reason.empty() ? place : std::nullopt;
}

std::string FrontPanel::Reachable(const Form& form, const Control* control) const {
  if (!form.Shown) return form.Name() + " is not shown";
  const Form* modal = host_.ModalWindow();
  if (modal != nullptr && modal != &form)
    return form.Name() + " cannot be reached while " + modal->Name() + " is up";
  const bool worksAnyhow = control != nullptr && control->WhileBusy;
  if (form.Busy() && !worksAnyhow) return form.Name() + " is at work";
  return {};
}

ConsoleHost::Outcome FrontPanel::Click(std::string_view rest) {
  const auto words = Words(rest);
  if (words.size() != 1) return Outcome::Refused("click WINDOW.CONTROL");
  std::string reason;
  const auto place = FindOperable(words[0], reason);
  if (!place) return Outcome::Refused(reason);
  const auto& [form, control] = *place;
  if (!form.Click(control.Name))
    return Outcome::Refused(FullName(form, control) + " is a " +
                            std::string(KindWord(control.Kind)) + " and cannot be clicked");
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Close(std::string_view rest) {
  const auto words = Words(rest);
  if (words.size() != 1) return Outcome::Refused("close WINDOW");
  Form* form = reach_.registry.Find(words[0]);
  if (form == nullptr) return Outcome::Refused("no window " + std::string(words[0]));
  if (std::string reason = Reachable(*form); !reason.empty()) return Outcome::Refused(reason);
  if (form->Name() == window::kForm1) return Quit({});
  if (form->OnCloseBox())
    host_.Hide(form->Name());
  else if (form->Shown)  // a form may have hidden itself
    return Outcome::Refused(form->Name() + " has no close control");
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Set(std::string_view rest) {
  std::string_view value;
  std::string reason;
  const auto place = FindOperable(FirstWord(rest, value), reason);
  if (!place) return Outcome::Refused(reason);
  const auto& [form, control] = *place;
  const std::string name = FullName(form, control);
  switch (control.Kind) {
    case ControlKind::TextField:
      if (!form.Type(control.Name, value)) return Outcome::Refused(name + " is read only");
      return Outcome::Done();
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
      if (value != "on" && value != "off") return Outcome::Refused(name + " is set on or off");
      if (!form.Tick(control.Name, value == "on"))
        return Outcome::Refused(name + " is switched off by choosing another option");
      return Outcome::Done();
    case ControlKind::ListField:
      if (!form.SelectText(control.Name, value))
        return Outcome::Refused("no entry " + Quoted(value) + " in " + name);
      return Outcome::Done();
    default:
      return Outcome::Refused(name + " is a " + std::string(KindWord(control.Kind)) +
                              " and cannot be set");
  }
}

// Like dragging a file onto the main window.
ConsoleHost::Outcome FrontPanel::Drop(std::string_view rest) {
  if (rest.empty()) return Outcome::Refused("drop FILE");
  const Form* form = reach_.registry.Find(window::kForm1);
  if (form == nullptr || !reach_.Drop) return Outcome::Refused("no main window");
  if (std::string reason = Reachable(*form); !reason.empty()) return Outcome::Refused(reason);
  reach_.Drop(std::string(rest));
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Get(std::string_view rest) {
  const auto words = Words(rest);
  if (words.size() != 1) return Outcome::Refused("get WINDOW.CONTROL");
  std::string reason;
  const auto place = Find(words[0], reason);
  if (!place) return Outcome::Refused(reason);
  host_.Reply(place->Item.Value());
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Controls(std::string_view rest) {
  const auto words = Words(rest);
  if (words.size() != 1) return Outcome::Refused("controls WINDOW");
  const Form* form = reach_.registry.Find(words[0]);
  if (form == nullptr) return Outcome::Refused("no window " + std::string(words[0]));
  for (const Control& control : form->Controls())
    host_.Reply(control.Name + " " + std::string(KindWord(control.Kind)) +
                (form->Works(control) ? " enabled" : " disabled") +
                (control.Shown ? " shown " : " hidden ") + control.Caption + " | " +
                control.Value());
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Windows(std::string_view rest) {
  if (!Words(rest).empty()) return Outcome::Refused("windows takes no arguments");
  for (const Form* form : reach_.registry.All())
    if (form->Shown) host_.Reply(form->Name());
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Panels(std::string_view rest) {
  if (!Words(rest).empty()) return Outcome::Refused("panels takes no arguments");
  for (std::size_t n = 1; n <= 7; ++n)
    host_.Reply(std::to_string(n) + " " + reach_.session.Panels[n]);
  return Outcome::Done();
}

// ---- answers -----------------------------------------------------------------------------------

ConsoleHost::Outcome FrontPanel::Answer(std::string_view rest) {
  if (const Dialog* dialog = host_.DialogUp(); dialog != nullptr)
    return AnswerDialog(*dialog, rest);
  const Message* box = host_.Box();
  if (box == nullptr) return Outcome::Refused("no message box or dialog is up");
  const auto words = Words(rest);
  const auto answer = words.size() == 1 ? AnswerOf(words[0]) : std::nullopt;
  if (!answer || !Offers(box->Choice, *answer))
    return Outcome::Refused("the box offers " + std::string(ButtonsWord(box->Choice)));
  host_.Answered(*answer);
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::AnswerDialog(const Dialog& dialog, std::string_view rest) {
  const std::string choice(rest);
  if (choice == "cancel") {
    host_.Chosen(std::nullopt);
    return Outcome::Done();
  }
  if (dialog.Kind == DialogKind::Colour) {
    const bool hex = choice.size() == 7 && choice[0] == '#' &&
                     choice.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
    if (!hex) return Outcome::Refused("the dialog takes #RRGGBB or cancel");
  } else if (choice.empty()) {
    return Outcome::Refused("the dialog takes a path or cancel");
  }
  host_.Chosen(choice);
  return Outcome::Done();
}

// ---- data, time, bench, end --------------------------------------------------------------------

ConsoleHost::Outcome FrontPanel::Data(std::string_view rest) {
  if (reach_.CatchUp) reach_.CatchUp();
  const auto words = Words(rest);
  std::optional<Result<std::vector<std::string>>> found;
  if (reach_.Quality != nullptr) found = QualityLines(*reach_.Quality, reach_.session, words);
  if (!found) found = DataLines(reach_.session, words);
  const Result<std::vector<std::string>>& lines = *found;
  if (!lines) return Outcome::Refused(lines.Why().Text());
  for (const std::string& line : *lines) host_.Reply(line);
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Wait(std::string_view rest) {
  constexpr std::string_view kUse = "wait sweeps N, wait idle or wait ms N";
  const auto words = Words(rest);
  const Session& session = reach_.session;
  if (words.size() == 1 && words[0] == "idle") {
    host_.Wait({.Done = [&session] { return session.Flags.Idle(); },
                .NeedsSweep = true,
                .NeedsInput = [&session] { return session.Flags.SweepRunning; }});
    return Outcome::Waiting();
  }
  const auto count = words.size() == 2 ? WholeNumber(words[1]) : std::nullopt;
  if (!count || *count < 0 || *count > std::numeric_limits<int>::max())
    return Outcome::Refused(std::string(kUse));
  if (words[0] == "ms") {
    host_.Wait({.Done = [] { return false; }, .UntilMs = host_.NowMs() + *count});
    return Outcome::Waiting();
  }
  if (words[0] != "sweeps") return Outcome::Refused(std::string(kUse));
  const long target = reach_.SweepsEnded() + *count;
  host_.Wait(
      {.Done = [this,
                target] { return reach_.SweepsEnded() >= target || reach_.session.Flags.Idle(); },
       .NeedsSweep = true});
  return Outcome::Waiting();
}

ConsoleHost::Outcome FrontPanel::Bench(std::string_view rest) {
  if (!reach_.Bench) return Outcome::Refused("no bench: the program was not started with --demo");
  std::string text;
  const bool done = reach_.Bench(rest, text);
  if (!done) return Outcome::Refused(text);
  std::size_t from = 0;
  while (from < text.size()) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    host_.Reply(text.substr(from, end - from));
    from = end + 1;
  }
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Quit(std::string_view rest) {
  if (!Words(rest).empty()) return Outcome::Refused("quit takes no arguments");
  if (const Form* form = host_.MustEndFirst(); form != nullptr)
    return Outcome::Refused(form->Name() + " writes to the instrument and cannot be interrupted");
  host_.Quit();
}

}  // namespace qk
