// SPDX-License-Identifier: MIT
#include "ui/binder.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTimer>

#include "core/text.h"
#include "ui/held_enter.h"
#include "ui/mnemonics_are_no_text.h"
#include "ui/pending_mark.h"
#include "ui/picture_control.h"
#include "ui/qt_host.h"
#include "ui/wheel_needs_keyboard.h"

namespace qk {

namespace {

char UpperCase(char letter) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
}

// Assigns letters to captions one by one, each by a shortest augmenting path through captions that
// already have one.
class Letters {
 public:
  explicit Letters(const std::vector<std::string>& captions) : captions_(captions) {}

  std::vector<char> Given() {
    for (std::size_t i = 0; i < captions_.size(); ++i) {
      seen_.fill(false);
      Find(i);
    }
    std::vector<char> given(captions_.size(), 0);
    for (std::size_t letter = 0; letter < kLetters; ++letter)
      if (owner_[letter]) given[*owner_[letter]] = static_cast<char>('a' + letter);
    return given;
  }

 private:
  static constexpr std::size_t kLetters = 26;

  bool Find(std::size_t caption) {
    const std::string lower = AsciiLower(captions_[caption]);
    const auto letters = [&lower](auto&& take) {
      return std::any_of(lower.begin(), lower.end(), [&take](char c) {
        return c >= 'a' && c <= 'z' && take(static_cast<std::size_t>(c - 'a'));
      });
    };
    return letters([&](std::size_t letter) {
             if (owner_[letter] || seen_[letter]) return false;
             owner_[letter] = caption;
             return true;
           }) ||
           letters([&](std::size_t letter) {
             if (seen_[letter]) return false;
             seen_[letter] = true;
             if (!Find(*owner_[letter])) return false;
             owner_[letter] = caption;
             return true;
           });
  }

  const std::vector<std::string>& captions_;
  std::array<std::optional<std::size_t>, kLetters> owner_;
  std::array<bool, kLetters> seen_{};
};

}  // namespace

std::vector<char> LettersFor(const std::vector<std::string>& captions) {
  return Letters(captions).Given();
}

QString MnemonicCaption(std::string_view caption, char letter) {
  QString text;
  bool marked = letter == 0;
  for (const QChar c : QString::fromUtf8(caption.data(), static_cast<qsizetype>(caption.size()))) {
    if (!marked && c.toLower() == QChar(letter).toLower()) {
      text += '&';
      marked = true;
    }
    text += c;
    if (c == '&') text += '&';
  }
  return text;
}

void Binder::Bind(std::string_view name, std::function<void(const Control&)> show) {
  bound_.emplace(name);
  bindings_.push_back({&form_.At(name), std::move(show)});
  revision_ = 0;
}

void Binder::Own(std::string_view name) {
  Bind(name, [](const Control&) {});
}

void Binder::Follow(std::string_view name, std::function<void(const Control&)> show) {
  Bind(name, std::move(show));
}

void Binder::Act(const std::function<void()>& action) {
  host_.Act([this, action] {  // by value, because it may be deferred
    CommitEdits();
    action();
  });
}

namespace {
void ShowState(QWidget& widget, const Control& control, bool works) {
  widget.setEnabled(works);
  if (const QString tip = QString::fromStdString(control.ToolTip); widget.toolTip() != tip)
    widget.setToolTip(tip);
  // A widget without a parent would be shown as a separate window.
  if (widget.parentWidget() != nullptr || !control.Shown) widget.setVisible(control.Shown);
}

// Of a control that the form has, so that none is left over where it has none.
template <class Widget>
Widget* Made(const Control& control, const char* suffix = "") {
  auto* widget = new Widget;
  widget->setObjectName(QString::fromStdString(control.Name) + suffix);
  return widget;
}

void MakeBold(QWidget& widget, bool bold) {
  if (widget.font().bold() == bold) return;
  QFont font = widget.font();
  font.setBold(bold);
  widget.setFont(font);
}

// Makes Tab go to the chosen option of a group, and the arrows to the others. If the form has
// rejected a choice, the focus also returns to the chosen option.
void LeadToChosen(const QButtonGroup& group) {
  QAbstractButton* chosen = nullptr;
  bool focused = false;  // also in a window that has just lost the focus to a box
  for (QAbstractButton* button : group.buttons()) {
    if (button->isChecked() && button->isEnabled()) chosen = button;
    focused |= button->window()->focusWidget() == button && !button->isDown();
  }
  for (QAbstractButton* button : group.buttons())
    button->setFocusPolicy(chosen == nullptr || button == chosen ? Qt::StrongFocus
                                                                 : Qt::ClickFocus);
  if (focused && chosen != nullptr) chosen->setFocus();
}

// Has a border: white on a light button, black on a dark one.
QIcon SwatchIcon(std::uint32_t rgb) {
  QPixmap pixmap(24, 14);
  pixmap.fill(Qt::gray);
  QPainter(&pixmap).fillRect(pixmap.rect().adjusted(1, 1, -1, -1), QColor::fromRgb(rgb));
  return QIcon(pixmap);
}
}  // namespace

void Binder::BindButton(std::string_view name, QAbstractButton& button) {
  MakeBold(button, form_.At(name).Bold);
  Bind(name, [this, &button](const Control& c) {
    button.setText(MnemonicCaption(c.Caption, LetterOf(c)));
    if (c.Swatch) button.setIcon(SwatchIcon(*c.Swatch));
    ShowState(button, c, form_.Works(c));
    MarkPending(button, c);
  });
}

QPushButton* Binder::Button(std::string_view name) {
  auto* button = Made<QPushButton>(form_.At(name));
  button->setAutoDefault(false);  // the window handles Enter
  new HeldEnterActsOnce(*button);
  button->setDefault(form_.At(name).Default);
  BindButton(name, *button);
  QObject::connect(button, &QPushButton::clicked, &connections_,
                   [this, at = std::string(name)] { Act([this, &at] { form_.Click(at); }); });
  return button;
}

QCheckBox* Binder::Check(std::string_view name) {
  auto* box = Made<QCheckBox>(form_.At(name));
  BindButton(name, *box);
  Bind(name, [box](const Control& c) { box->setChecked(c.Checked); });
  QObject::connect(
      box, &QCheckBox::clicked, &connections_,
      [this, at = std::string(name)](bool on) { Act([this, &at, on] { form_.Tick(at, on); }); });
  return box;
}

QRadioButton* Binder::Option(std::string_view name) {
  auto* button = Made<QRadioButton>(form_.At(name));
  BindButton(name, *button);
  QButtonGroup*& group = groups_[form_.At(name).Group];
  // The group is owned by its first button and deleted with it.
  if (group == nullptr) group = new QButtonGroup(button);
  group->addButton(button);
  Bind(name, [button, group](const Control& c) {
    if (button->isChecked() != c.Checked) {
      group->setExclusive(false);  // a group may have none chosen
      button->setChecked(c.Checked);
      group->setExclusive(true);
    }
    LeadToChosen(*group);
  });
  QObject::connect(button, &QRadioButton::clicked, &connections_,
                   [this, button, group, at = std::string(name)] {
                     Act([this, &at] { form_.Tick(at, true); });
                     // Otherwise the toolkit leaves the focus where an arrow key has moved it,
                     // chosen or not.
                     QTimer::singleShot(0, button, [group] { LeadToChosen(*group); });
                   });
  return button;
}

QComboBox* Binder::List(std::string_view name) {
  auto* box = Made<QComboBox>(form_.At(name));
  new WheelNeedsKeyboard(*box);
  new MnemonicsAreNoText(*box);
  Bind(name, [this, box](const Control& c) {
    const QSignalBlocker quiet(box);
    bool same = box->count() == static_cast<int>(c.Entries.size());
    for (int i = 0; same && i < box->count(); ++i)
      same = box->itemText(i).toStdString() == c.Entries[static_cast<std::size_t>(i)];
    if (!same) {
      box->clear();
      for (const std::string& entry : c.Entries) box->addItem(QString::fromStdString(entry));
    }
    if (box->currentIndex() != c.Index) box->setCurrentIndex(c.Index);
    ShowState(*box, c, form_.Works(c));
    MarkPending(*box, c);
  });
  QObject::connect(box, &QComboBox::activated, &connections_,
                   [this, at = std::string(name)](int index) {
                     Act([this, &at, index] { form_.Select(at, index); });
                   });
  return box;
}

QProgressBar* Binder::Progress(std::string_view name) {
  auto* bar = Made<QProgressBar>(form_.At(name));
  bar->setRange(0, 100);
  QSizePolicy policy = bar->sizePolicy();  // keeps its place when hidden, so that nothing moves
  policy.setRetainSizeWhenHidden(true);
  bar->setSizePolicy(policy);
  Bind(name, [bar](const Control& c) {
    ShowState(*bar, c, c.Enabled);
    bar->setValue(c.Percent);
  });
  return bar;
}

QWidget* Binder::Picture(std::string_view name) {
  auto* picture = new PictureControl(form_.At(name));
  picture->setObjectName(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
  Bind(name, [picture](const Control& c) {
    ShowState(*picture, c, true);
    picture->update();
  });
  return picture;
}

QLabel* Binder::Caption(std::string_view name, QWidget* buddy) {
  auto* label = Made<QLabel>(form_.At(name), "_Caption");
  MakeBold(*label, form_.At(name).Bold);
  const bool plain = buddy == nullptr;
  if (plain)
    label->setTextFormat(Qt::PlainText);
  else
    label->setBuddy(buddy);
  Bind(name, [this, label, plain](const Control& c) {
    const bool text = c.Kind == ControlKind::Label && !c.Text.empty();
    const std::string& shown = text ? c.Text : c.Caption;
    label->setText(plain ? QString::fromStdString(shown) : MnemonicCaption(shown, LetterOf(c)));
    ShowState(*label, c, c.Enabled);
  });
  return label;
}

QLabel* Binder::Unit(std::string_view name) {
  auto* label = Made<QLabel>(form_.At(name), "_Unit");
  label->setTextFormat(Qt::PlainText);
  Bind(name, [label](const Control& c) {
    const QFontMetrics metrics = label->fontMetrics();
    label->setText(QString::fromStdString(c.Unit));
    label->setMinimumWidth(
        std::max(metrics.horizontalAdvance("MHz"), metrics.horizontalAdvance(label->text())) + 2);
    ShowState(*label, c, c.Enabled);
  });
  return label;
}

QAction* Binder::Item(std::string_view name, QObject* owner, char mnemonic) {
  const Control& control = form_.At(name);
  auto* action = new QAction(owner);
  action->setObjectName(QString::fromStdString(control.Name));
  Bind(name, [this, action, mnemonic](const Control& c) {
    action->setText(MnemonicCaption(c.Caption, mnemonic != 0 ? mnemonic : c.Key));
    action->setEnabled(form_.Works(c));
    action->setVisible(c.Shown);
    action->setCheckable(c.Ticks);
    action->setChecked(c.Checked);
  });
  QObject::connect(action, &QAction::triggered, &connections_,
                   [this, at = std::string(name)] { Act([this, &at] { form_.Click(at); }); });
  return action;
}

QWidget* Binder::WidgetFor(const Control& control) {
  switch (control.Kind) {
    case ControlKind::TextField:
      if (control.Lines > 1) return Memo(control.Name);
      if (!control.Entries.empty()) return OfferingText(control.Name);
      return Text(control.Name);
    case ControlKind::CheckBox:
      return Check(control.Name);
    case ControlKind::OptionButton:
      return Option(control.Name);
    case ControlKind::ListField:
      return List(control.Name);
    case ControlKind::Button:
      return Button(control.Name);
    case ControlKind::ProgressBar:
      return Progress(control.Name);
    case ControlKind::Picture:
      return Picture(control.Name);
    case ControlKind::Label:
    case ControlKind::MenuItem:
      break;
  }
  return Caption(control.Name);
}

bool Binder::Sync() {
  if (revision_ == form_.Revision()) return false;
  revision_ = form_.Revision();
  ShowAgain();
  return true;
}

void Binder::ShowAgain() {
  for (const Binding& binding : bindings_) binding.Show(*binding.Of);
}

char Binder::LetterOf(const Control& control) const {
  const char letter = UpperCase(control.Key);
  return letter != 0 && hiddenLetters_.find(letter) != std::string::npos ? char{0} : control.Key;
}

void Binder::HideLetters(const std::string& letters) {
  if (hiddenLetters_ == letters) return;
  hiddenLetters_ = letters;
  ShowAgain();
}

std::vector<std::string> Binder::Unbound() const {
  std::vector<std::string> names;
  for (const Control& control : form_.Controls())
    if (bound_.find(control.Name) == bound_.end()) names.push_back(control.Name);
  return names;
}

}  // namespace qk
