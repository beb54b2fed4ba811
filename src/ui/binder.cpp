#include "ui/binder.h"

#include <cctype>

#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

#include "ui/qt_host.h"

namespace qk {

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

const Control* Binder::Want(std::string_view name) {
  bound_.emplace(name);
  const Control* control = form_.Find(name);
  if (control == nullptr) missing_.emplace_back(name);
  return control;
}

void Binder::Bind(std::string_view name, std::function<void(const Control&)> show) {
  bindings_.push_back({std::string(name), std::move(show)});
  revision_ = 0;
}

void Binder::Own(std::string_view name) {
  Want(name);
}

void Binder::Follow(std::string_view name, std::function<void(const Control&)> show) {
  if (Want(name) != nullptr) Bind(name, std::move(show));
}

namespace {
void ShowState(QWidget& widget, const Control& control) {
  widget.setEnabled(control.Enabled);
  // A widget without a parent yet would be shown as a window of its own.
  if (widget.parentWidget() != nullptr || !control.Shown) widget.setVisible(control.Shown);
}

template <class Widget>
Widget* Made(std::string_view name) {
  auto* widget = new Widget;
  widget->setObjectName(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
  return widget;
}
}  // namespace

void Binder::BindButton(std::string_view name, QAbstractButton& button, char mnemonic) {
  if (Want(name) == nullptr) {
    button.setEnabled(false);
    return;
  }
  Bind(name, [&button, mnemonic](const Control& c) {
    button.setText(MnemonicCaption(c.Caption, mnemonic));
    if (!c.ToolTip.empty()) button.setToolTip(QString::fromStdString(c.ToolTip));
    ShowState(button, c);
  });
}

QPushButton* Binder::Button(std::string_view name, char mnemonic) {
  auto* button = Made<QPushButton>(name);
  button->setAutoDefault(false);
  BindButton(name, *button, mnemonic);
  QObject::connect(button, &QPushButton::clicked, button, [this, at = std::string(name)] {
    host_.Act([this, &at] {
      CommitEdits();
      form_.Click(at);
    });
  });
  return button;
}

QCheckBox* Binder::Check(std::string_view name, char mnemonic) {
  auto* box = Made<QCheckBox>(name);
  BindButton(name, *box, mnemonic);
  Bind(name, [box](const Control& c) { box->setChecked(c.Checked); });
  QObject::connect(box, &QCheckBox::clicked, box, [this, at = std::string(name)](bool on) {
    host_.Act([this, &at, on] {
      CommitEdits();
      form_.Tick(at, on);
    });
  });
  return box;
}

QRadioButton* Binder::Option(std::string_view name, char mnemonic) {
  auto* button = Made<QRadioButton>(name);
  BindButton(name, *button, mnemonic);
  const Control* control = form_.Find(name);
  QButtonGroup*& group = groups_[control != nullptr ? control->Group : 0];
  // The group belongs to its first button and goes with it.
  if (group == nullptr) group = new QButtonGroup(button);
  group->addButton(button);
  Bind(name, [button, group](const Control& c) {
    if (button->isChecked() == c.Checked) return;
    group->setExclusive(false);  // a group may stand with none chosen
    button->setChecked(c.Checked);
    group->setExclusive(true);
  });
  QObject::connect(button, &QRadioButton::clicked, button, [this, at = std::string(name)] {
    host_.Act([this, &at] {
      CommitEdits();
      form_.Tick(at, true);
    });
  });
  return button;
}

QLineEdit* Binder::Text(std::string_view name) {
  auto* edit = Made<QLineEdit>(name);
  const Control* control = Want(name);
  if (control == nullptr) {
    edit->setEnabled(false);
    return edit;
  }
  edits_.push_back({std::string(name), edit, {}});
  const std::size_t index = edits_.size() - 1;
  Bind(name, [this, edit, index](const Control& c) {
    edit->setReadOnly(c.ReadOnly);
    edit->setFocusPolicy(c.ReadOnly ? Qt::ClickFocus : Qt::StrongFocus);
    QPalette palette;  // a computed value looks like the window, not like a field to fill in
    if (c.ReadOnly) palette.setColor(QPalette::Base, palette.color(QPalette::Window));
    edit->setPalette(palette);
    if (!c.ToolTip.empty()) edit->setToolTip(QString::fromStdString(c.ToolTip));
    ShowState(*edit, c);
    Edit& shown = edits_[index];
    // What the user is typing stays, unless the program itself wrote another text.
    if (edit->isModified() && shown.Shown == c.Text) return;
    shown.Shown = c.Text;
    const QString text = QString::fromStdString(c.Text);
    if (edit->text() != text) edit->setText(text);
    edit->setModified(false);
  });
  QObject::connect(edit, &QLineEdit::editingFinished, edit, [this, edit, at = std::string(name)] {
    if (edit->isModified()) host_.Act([this, &at, edit] { CommitEdit(at, *edit); });
  });
  return edit;
}

void Binder::CommitEdit(const std::string& name, QLineEdit& edit) {
  if (!edit.isModified()) return;
  edit.setModified(false);
  form_.Type(name, edit.text().toStdString());
}

void Binder::CommitEdits() {
  for (const Edit& edit : edits_) CommitEdit(edit.Name, *edit.Field);
}

QComboBox* Binder::List(std::string_view name) {
  auto* box = Made<QComboBox>(name);
  if (Want(name) == nullptr) {
    box->setEnabled(false);
    return box;
  }
  Bind(name, [box](const Control& c) {
    const QSignalBlocker quiet(box);
    if (!c.ToolTip.empty()) box->setToolTip(QString::fromStdString(c.ToolTip));
    bool same = box->count() == static_cast<int>(c.Entries.size());
    for (int i = 0; same && i < box->count(); ++i)
      same = box->itemText(i).toStdString() == c.Entries[static_cast<std::size_t>(i)];
    if (!same) {
      box->clear();
      for (const std::string& entry : c.Entries) box->addItem(QString::fromStdString(entry));
    }
    if (box->currentIndex() != c.Index) box->setCurrentIndex(c.Index);
    ShowState(*box, c);
  });
  QObject::connect(box, &QComboBox::activated, box, [this, at = std::string(name)](int index) {
    host_.Act([this, &at, index] {
      CommitEdits();
      form_.Select(at, index);
    });
  });
  return box;
}

QProgressBar* Binder::Progress(std::string_view name) {
  auto* bar = Made<QProgressBar>(name);
  bar->setRange(0, 100);
  if (Want(name) == nullptr) {
    bar->setEnabled(false);
    return bar;
  }
  Bind(name, [bar](const Control& c) {
    ShowState(*bar, c);
    bar->setValue(c.Percent);
  });
  return bar;
}

QLabel* Binder::Caption(std::string_view name, QWidget* buddy, char mnemonic) {
  auto* label = Made<QLabel>(std::string(name) + "_Caption");
  if (Want(name) == nullptr) return label;
  if (buddy != nullptr) label->setBuddy(buddy);
  const bool plain = buddy == nullptr;
  if (plain) label->setTextFormat(Qt::PlainText);
  Bind(name, [label, mnemonic, plain](const Control& c) {
    const bool text = c.Kind == ControlKind::Label && !c.Text.empty();
    const std::string& shown = text ? c.Text : c.Caption;
    label->setText(plain ? QString::fromStdString(shown) : MnemonicCaption(shown, mnemonic));
    if (!c.ToolTip.empty()) label->setToolTip(QString::fromStdString(c.ToolTip));
    ShowState(*label, c);
  });
  return label;
}

QAction* Binder::Item(std::string_view name, QObject* owner, char mnemonic) {
  auto* action = new QAction(owner);
  action->setObjectName(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
  if (Want(name) == nullptr) {
    action->setEnabled(false);
    return action;
  }
  Bind(name, [action, mnemonic](const Control& c) {
    action->setText(MnemonicCaption(c.Caption, mnemonic));
    action->setEnabled(c.Enabled);
    action->setVisible(c.Shown);
  });
  QObject::connect(action, &QAction::triggered, action, [this, at = std::string(name)] {
    host_.Act([this, &at] {
      CommitEdits();
      form_.Click(at);
    });
  });
  return action;
}

void Binder::Sync() {
  if (revision_ == form_.Revision()) return;
  revision_ = form_.Revision();
  for (const Binding& binding : bindings_)
    if (const Control* control = form_.Find(binding.Name); control != nullptr)
      binding.Show(*control);
}

std::vector<std::string> Binder::Unbound() const {
  std::vector<std::string> names;
  for (const Control& control : form_.Controls())
    if (bound_.find(control.Name) == bound_.end()) names.push_back(control.Name);
  return names;
}

}  // namespace qk
