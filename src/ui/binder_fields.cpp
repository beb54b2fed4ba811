// SPDX-License-Identifier: MIT
// The text fields: their contents belong to the user until focus leaves the field or a button is
// pressed.
#include <algorithm>
#include <functional>
#include <map>

#include <QAbstractTextDocumentLayout>
#include <QComboBox>
#include <QEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextOption>
#include <QTimer>

#include "ui/binder.h"
#include "ui/held_enter.h"
#include "ui/mnemonics_are_no_text.h"
#include "ui/pending_mark.h"
#include "ui/qt_host.h"
#include "ui/wheel_needs_keyboard.h"

namespace qk {

namespace {

// Selects the text of a field that is clicked, as the toolkit does for keyboard focus, and after
// Enter; a second click sets the cursor. Ctrl+Z belongs to the field only while something is typed
// in it: the toolkit would keep it from the program's undo also without.
class SelectOnEntry : public QObject {
 public:
  explicit SelectOnEntry(QLineEdit& field) : QObject(&field), field_(field) {
    field.installEventFilter(this);
    QObject::connect(&field, &QLineEdit::returnPressed, this, [this] { SelectSoon(); });
  }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::FocusIn) SelectSoon();
    if (event->type() != QEvent::ShortcutOverride || field_.isModified()) return false;
    if (!static_cast<const QKeyEvent*>(event)->matches(QKeySequence::Undo)) return false;
    event->ignore();
    return true;
  }

 private:
  void SelectSoon() {
    QTimer::singleShot(0, &field_, [this] {
      if (field_.hasFocus() && !field_.isModified()) field_.selectAll();
    });
  }

  QLineEdit& field_;
};

// If a careless action could discard data, Enter in a field acts only on entered text. Otherwise
// one Enter too many at a prompt to connect would restart the standards.
bool EnterActs(const Form& form) {
  const auto entered = [](const Control& c) {
    return c.Edited && (c.Kind == ControlKind::TextField || c.Kind == ControlKind::ListField);
  };
  return form.EscapeCloses() ||
         std::any_of(form.Controls().begin(), form.Controls().end(), entered);
}

// Reports when a multi-line field loses focus, while its connections exist: a widget being
// destroyed also loses focus.
class OnLeave : public QObject {
 public:
  OnLeave(QWidget& field, QObject& ties, std::function<void()> act)
      : QObject(&ties), class_(field.metaObject()), act_(std::move(act)) {
    field.installEventFilter(this);
  }

 protected:
  // A field that is being destroyed loses the keyboard too, when it is only a QWidget any more.
  bool eventFilter(QObject* field, QEvent* event) override {
    if (event->type() == QEvent::FocusOut && field->metaObject() == class_) act_();
    return false;
  }

 private:
  const QMetaObject* class_;
  std::function<void()> act_;
};

template <class Field>
void ShowField(Field& field, const Control& c, bool works) {
  field.setReadOnly(c.ReadOnly);
  QPalette palette;  // a computed value looks like the window, not like an input field
  if (c.ReadOnly) palette.setColor(QPalette::Base, palette.color(QPalette::Window));
  field.setPalette(palette);
  field.setToolTip(QString::fromStdString(c.ToolTip));
  MarkPending(field, c);
  field.setEnabled(works);
  if (field.parentWidget() != nullptr || !c.Shown) field.setVisible(c.Shown);
}

// Sets tab stops so that the text after the labels is aligned, however many tabs follow each label.
void AlignColumn(QPlainTextEdit& field, const QString& text) {
  const QFontMetricsF letters(field.font());
  std::map<qsizetype, double, std::greater<>> labels;  // the widest, by number of tabs that follow
  for (const QString& line : text.split('\n')) {
    const qsizetype end = line.indexOf('\t');
    if (end < 0) continue;
    qsizetype tabs = 1;
    while (end + tabs < line.size() && line[end + tabs] == '\t') ++tabs;
    double& widest = labels[tabs];
    widest = std::max(widest, letters.horizontalAdvance(line.left(end)));
  }
  if (labels.empty()) return;
  // A label with n fewer tabs than the maximum must extend beyond the first n stops.
  QList<QTextOption::Tab> stops;
  double at = 0;
  for (qsizetype tabs = labels.begin()->first; tabs > 0; --tabs) {
    if (const auto label = labels.find(tabs); label != labels.end())
      at = std::max(at, label->second);
    at += tabs > 1 ? 1 : letters.horizontalAdvance(' ');
    stops << QTextOption::Tab(at, QTextOption::LeftTab);
  }
  QTextOption option = field.document()->defaultTextOption();
  option.setTabs(stops);
  field.document()->setDefaultTextOption(option);
}

}  // namespace

void Binder::ShowText(Edit& edit, const Control& control,
                      const std::function<void(QString)>& write) {
  // Keeps what the user is typing, unless the program has set another text.
  if (edit.Modified() && edit.Shown == control.Text) return;
  edit.Shown = control.Text;
  write(QString::fromStdString(control.Text));
}

QLineEdit* Binder::Text(std::string_view name) {
  const Control& control = form_.At(name);  // throws before a field is made for nothing
  auto* field = new QLineEdit;
  BindText(control.Name, *field);
  return field;
}

QComboBox* Binder::OfferingText(std::string_view name) {
  const Control& control = form_.At(name);
  auto* box = new QComboBox;
  box->setEditable(true);
  box->setInsertPolicy(QComboBox::NoInsert);
  box->setCompleter(nullptr);  // suggests nothing while a comment is being typed
  new WheelNeedsKeyboard(*box);
  Bind(name, [this, box](const Control& c) {
    box->setToolTip(QString::fromStdString(c.ToolTip));
    box->setEnabled(form_.Works(c));
    QStringList offered;
    for (const std::string& text : c.Entries) offered << QString::fromStdString(text);
    QStringList shown;
    for (int i = 0; i < box->count(); ++i) shown << box->itemText(i);
    // Keeps what is being typed; otherwise selects the control's text, if the list contains it.
    const bool typing = box->lineEdit()->isModified();
    const QString typed = box->currentText();
    const QSignalBlocker quiet(box);
    if (offered != shown) {
      box->clear();
      box->addItems(offered);
    }
    if (!typing) {
      box->setCurrentIndex(static_cast<int>(offered.indexOf(QString::fromStdString(c.Text))));
    } else if (offered != shown) {
      box->setEditText(typed);
      box->lineEdit()->setModified(true);
    }
  });
  BindText(name, *box->lineEdit());
  box->setObjectName(QString::fromStdString(control.Name));
  QObject::connect(
      box, &QComboBox::textActivated, &connections_, [this, &control](const QString& text) {
        host_.Act([this, &control, text] { form_.Type(control.Name, text.toStdString()); });
      });
  return box;
}

void Binder::BindText(std::string_view name, QLineEdit& bound) {
  QLineEdit* field = &bound;
  field->setObjectName(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
  const Control& control = form_.At(name);
  if (control.Numeric) field->setAlignment(Qt::AlignRight);
  if (control.Chars > 0)
    field->setMinimumWidth(field->fontMetrics().horizontalAdvance('0') * (control.Chars + 2));
  new SelectOnEntry(*field);
  new HeldEnterActsOnce(*field);
  new MnemonicsAreNoText(*field);
  edits_.push_back(std::make_unique<Edit>(Edit{control.Name,
                                               [field] { return field->isModified(); },
                                               [field] {
                                                 field->setModified(false);
                                                 return field->text().toStdString();
                                               },
                                               {}}));
  Edit& edit = *edits_.back();
  Bind(name, [this, field, &edit](const Control& c) {
    field->setFocusPolicy(c.ReadOnly ? Qt::ClickFocus : Qt::StrongFocus);
    ShowField(*field, c, form_.Works(c));
    ShowText(edit, c, [field](const QString& text) {
      if (field->text() != text) field->setText(text);
      if (field->isReadOnly()) field->setCursorPosition(0);  // shows its beginning
      field->setModified(false);
    });
  });
  QObject::connect(field, &QLineEdit::textEdited, &connections_,
                   [this, &control] { form_.BeginEdit(control.Name); });
  QObject::connect(field, &QLineEdit::editingFinished, &connections_, [this, &edit] {
    if (edit.Modified()) host_.Act([this, &edit] { CommitEdit(edit); });
  });
  if (!control.Returns.empty())
    QObject::connect(field, &QLineEdit::returnPressed, &connections_, [this, &control] {
      Act([this, &control] {
        if (EnterActs(form_)) form_.Click(control.Returns);
      });
    });
}

namespace {

// Replaces count characters of a document.
void Replace(QTextDocument& document, qsizetype from, qsizetype count, const QString& by) {
  QTextCursor cursor(&document);
  cursor.setPosition(static_cast<int>(from));
  cursor.setPosition(static_cast<int>(from + count), QTextCursor::KeepAnchor);
  cursor.insertText(by);
}

// Updates a read-only field by changing only the differing part: a selection in the rest is kept,
// so that a log can be read and copied while it grows at its start.
void UpdateReadOnly(QPlainTextEdit& field, const QString& text) {
  QString old = field.toPlainText();
  if (old == text) return;
  const QSignalBlocker quiet(field);  // not a user edit
  field.setUndoRedoEnabled(false);    // it would keep every old text
  QTextDocument& document = *field.document();
  QScrollBar& bar = *field.verticalScrollBar();
  const bool atTop = bar.value() == 0;
  const int value = bar.value();
  int shift = 0;  // in lines on the screen
  if (const qsizetype head = old.isEmpty() ? 0 : text.indexOf(old.section('\n', 0, 0)); head > 0) {
    Replace(document, 0, 0, text.left(head));
    old.prepend(text.left(head));
    for (QTextBlock block = document.begin(); block.position() < head; block = block.next()) {
      document.documentLayout()->blockBoundingRect(block);  // lays it out
      shift += block.lineCount();
    }
  }
  const qsizetype shorter = std::min(old.size(), text.size());
  qsizetype same = 0, end = 0;
  while (same < shorter && old[same] == text[same]) ++same;
  while (end < shorter - same && old[old.size() - 1 - end] == text[text.size() - 1 - end]) ++end;
  Replace(document, same, old.size() - same - end, text.mid(same, text.size() - same - end));
  bar.setValue(atTop || same + end == 0 ? 0 : value + shift);
}

// Its initial height fits its lines; QPlainTextEdit has the same size hint for any number of lines.
class LinesEdit : public QPlainTextEdit {
 public:
  QSize sizeHint() const override { return {QPlainTextEdit::sizeHint().width(), minimumHeight()}; }
};

}  // namespace

QPlainTextEdit* Binder::Memo(std::string_view name) {
  const Control& control = form_.At(name);
  auto* field = new LinesEdit;
  field->setObjectName(QString::fromStdString(control.Name));
  field->setTabChangesFocus(true);
  const int line = field->fontMetrics().lineSpacing();
  field->setMinimumHeight(line * control.Lines + 2 * field->frameWidth() + line / 2 + 4);
  if (control.Chars > 0)
    field->setMinimumWidth(field->fontMetrics().horizontalAdvance('0') * (control.Chars + 4));
  edits_.push_back(std::make_unique<Edit>(Edit{control.Name,
                                               [field] { return field->document()->isModified(); },
                                               [field] {
                                                 field->document()->setModified(false);
                                                 return field->toPlainText().toStdString();
                                               },
                                               {}}));
  Edit& edit = *edits_.back();
  Bind(name, [this, field, &edit](const Control& c) {
    ShowField(*field, c, form_.Works(c));
    ShowText(edit, c, [field](const QString& text) {
      AlignColumn(*field, text);
      if (field->isReadOnly()) {
        UpdateReadOnly(*field, text);
      } else {
        field->setUndoRedoEnabled(true);
        if (field->toPlainText() != text) field->setPlainText(text);
      }
      field->document()->setModified(false);
    });
  });
  QObject::connect(field, &QPlainTextEdit::modificationChanged, &connections_,
                   [this, &control](bool on) {
                     if (on) form_.BeginEdit(control.Name);
                   });
  new MnemonicsAreNoText(*field);
  new OnLeave(*field, connections_, [this, &edit] {
    if (edit.Modified()) host_.Act([this, &edit] { CommitEdit(edit); });
  });
  return field;
}

void Binder::CommitEdit(const Edit& edit) {
  if (edit.Modified()) form_.Type(edit.Name, edit.Take());
}

void Binder::CommitEdits() {
  for (const auto& edit : edits_) CommitEdit(*edit);
}

}  // namespace qk
