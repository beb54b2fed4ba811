// SPDX-License-Identifier: MIT
#include "ui/dialogs.h"

#include <algorithm>

#include <QAbstractButton>
#include <QCloseEvent>
#include <QColorDialog>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScreen>
#include <QSpacerItem>
#include <QSplitter>
#include <QStandardPaths>
#include <QTimer>
#include <QTreeView>

#include "ui/title_bar.h"

namespace qk {

QStringList NameFilters(const std::string& filter) {
  const QStringList parts = QString::fromStdString(filter).split('|');
  QStringList names;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    const QString patterns = QString(parts[i + 1]).replace(';', ' ');
    QString name = parts[i];
    // The toolkit takes its patterns from the parentheses, so those of the filter are replaced.
    name.remove(QRegularExpression(QStringLiteral("\\s*\\([^()]*\\)\\s*$")));
    names << name.trimmed() + " (" + patterns.trimmed() + ")";
  }
  return names;
}

namespace {

QMessageBox::Icon IconOf(Icon icon) {
  switch (icon) {
    case Icon::Information:
      return QMessageBox::Information;
    case Icon::Question:
      return QMessageBox::Question;
    case Icon::Exclamation:
      return QMessageBox::Warning;
    case Icon::Critical:
      return QMessageBox::Critical;
    case Icon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(Buttons buttons) {
  switch (buttons) {
    case Buttons::OkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case Buttons::RetryCancel:
      return QMessageBox::Retry | QMessageBox::Cancel;
    case Buttons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

Answer AnswerOf(int button, Buttons offered) {
  switch (button) {
    case QMessageBox::Yes:
      return Answer::Yes;
    case QMessageBox::Retry:
      return Answer::Retry;
    case QMessageBox::Ok:
      return Answer::Ok;
    default:
      break;
  }
  if (offered == Buttons::Ok) return Answer::Ok;
  return offered == Buttons::YesNo ? Answer::No : Answer::Cancel;
}

// The extension in a filter, "cal" for "cal_files (*.cal)"; empty if the filter allows several.
QString EndingOf(const QString& nameFilter) {
  static const QRegularExpression kOneEnding(QStringLiteral("\\(\\*\\.(\\w+)\\)$"));
  return kOneEnding.match(nameFilter).captured(1);
}

// Adds the filter's extension to a name typed without one, so that the next dialog lists the file;
// adds otherwise if the filter has none.
void AddEndings(QFileDialog& box, const QString& otherwise) {
  const auto follow = [&box, otherwise](const QString& filter) {
    const QString ending = EndingOf(filter);
    box.setDefaultSuffix(ending.isEmpty() ? otherwise : ending);
  };
  QObject::connect(&box, &QFileDialog::filterSelected, &box, follow);
  follow(box.selectedNameFilter());
}

// The name is selected, so that typing replaces it.
void ProposeName(QFileDialog& box, const QString& name) {
  const QString suffix = box.defaultSuffix();
  box.selectFile(suffix.isEmpty() ? name : name + "." + suffix);
  if (auto* field = box.findChild<QLineEdit*>("fileNameEdit"); field != nullptr) {
    field->setText(name);
    field->selectAll();
  }
}

// Makes the file list wide enough for its columns; the system's own dialog does this itself.
void MakeRoomForFiles(QFileDialog& box) {
  auto* list = box.findChild<QTreeView*>("treeView");
  if (list == nullptr) return;
  list->header()->setStretchLastSection(false);
  list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  const QFontMetrics metrics = box.fontMetrics();
  box.resize(QSize(metrics.averageCharWidth() * 116, metrics.lineSpacing() * 28)
                 .expandedTo(box.sizeHint())
                 .boundedTo(box.screen()->availableSize() * 9 / 10));
  // The same for the side bar and the names of its folders.
  if (auto* halves = box.findChild<QSplitter*>("splitter"); halves != nullptr) {
    const int places = metrics.averageCharWidth() * 18;
    halves->setSizes({places, box.width() - places});
  }
}

// The initial folder. If it no longer exists, the toolkit would take the last part of the path for
// a file name, and Save would write that file in place of the folder.
QString FolderThatIsThere(const std::string& wanted) {
  QFileInfo folder(QString::fromStdString(wanted));
  while (!folder.isDir() && !folder.isRoot() && folder.filePath() != folder.path())
    folder.setFile(folder.path());
  return folder.filePath();
}

std::optional<std::string> ChooseFile(QWidget* owner, const Dialog& dialog, Places& places) {
  const bool save = dialog.Kind == DialogKind::Save;
  QString title = QString::fromStdString(dialog.Title);
  if (title.isEmpty()) title = save ? "Save As" : "Open";
  QFileDialog box(owner, title, FolderThatIsThere(dialog.Folder));
  box.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  box.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  box.setSidebarUrls(places.SideBar(dialog.Folder));
  MakeRoomForFiles(box);
  const QStringList filters = NameFilters(dialog.Filter);
  if (!filters.isEmpty()) {
    box.setNameFilters(filters);
    box.selectNameFilter(
        filters[std::clamp<qsizetype>(dialog.FilterIndex - 1, 0, filters.size() - 1)]);
    if (save) AddEndings(box, QString::fromStdString(dialog.Ending));
  }
  if (save && !dialog.Name.empty()) ProposeName(box, QString::fromStdString(dialog.Name));
  if (box.exec() != QDialog::Accepted || box.selectedFiles().isEmpty()) return std::nullopt;
  std::string path = box.selectedFiles().constFirst().toStdString();
  places.Chosen(path);
  return path;
}

std::optional<std::string> ChooseColour(QWidget* owner, const Dialog& dialog) {
  QColorDialog box(owner);
  if (const QColor standing(QString::fromStdString(dialog.Folder)); standing.isValid())
    box.setCurrentColor(standing);
  box.setWindowTitle(dialog.Title.empty() ? "Select Colour" : QString::fromStdString(dialog.Title));
  // Changes the toolkit's American spelling to British.
  const auto british = [](auto& widget) { widget.setText(widget.text().replace("olor", "olour")); };
  for (QLabel* label : box.findChildren<QLabel*>()) british(*label);
  for (QAbstractButton* button : box.findChildren<QAbstractButton*>()) british(*button);
  if (box.exec() != QDialog::Accepted) return std::nullopt;
  return box.selectedColor().name(QColor::HexRgb).toStdString();
}

// Escape and the close button give the answer that changes least. Where each answer changes
// something, only the buttons answer: a careless key must not choose for the user, nor confirm that
// a standard is connected.
class Box : public QMessageBox {
 public:
  Box(QWidget* owner, const Message& message)
      : QMessageBox(owner),
        buttonsOnly_(message.NoActs || (message.AsksToConnect && message.Choice == Buttons::Ok)) {
    // Modal only to the program's windows, which all belong to its owner: the bench of the
    // demonstration stays usable while a prompt asks for a standard.
    if (owner != nullptr) setWindowModality(Qt::WindowModal);
    if (buttonsOnly_) setWindowFlag(Qt::WindowCloseButtonHint, false);
    setWindowTitle(QString::fromStdString(message.Title));
    setTextFormat(Qt::PlainText);
    setText(QString::fromStdString(message.Text));
    setIcon(IconOf(message.MessageIcon));
    setStandardButtons(ButtonsOf(message.Choice));
    if (message.NoByDefault) setDefaultButton(QMessageBox::No);
    if (message.Choice == Buttons::YesNo) setEscapeButton(QMessageBox::No);
    for (QAbstractButton* button : buttons()) button->installEventFilter(this);
    if (auto* text = findChild<QLabel*>("qt_msgbox_label"); text != nullptr)
      text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    MakeRoomForTitle();
  }

 protected:
  // A key held down since before the box opened must not answer it: the standard in the prompt
  // would be measured before anybody could connect it.
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->isAutoRepeat())
      return true;
    return QMessageBox::eventFilter(watched, event);
  }
  void keyPressEvent(QKeyEvent* event) override {
    if (!buttonsOnly_ || !event->matches(QKeySequence::Cancel)) QMessageBox::keyPressEvent(event);
  }
  void closeEvent(QCloseEvent* event) override {
    if (buttonsOnly_)
      event->ignore();
    else
      QMessageBox::closeEvent(event);
  }

 private:
  // Makes the box wide enough for its title, which names the feature; the text keeps its own width.
  void MakeRoomForTitle() {
    auto* grid = qobject_cast<QGridLayout*>(layout());
    if (grid == nullptr) return;
    grid->addItem(new QSpacerItem(TitleBarWidth(*this, windowTitle()), 0, QSizePolicy::Minimum,
                                  QSizePolicy::Fixed),
                  grid->rowCount(), 0, 1, std::max(1, grid->columnCount()));
  }

  bool buttonsOnly_;
};

}  // namespace

Answer AskBox(QWidget* owner, const Message& message) {
  Box box(owner, message);
  // Runs again only after it has returned: it may repaint, which runs timers.
  QTimer meanwhile;
  meanwhile.setSingleShot(true);
  QObject::connect(&meanwhile, &QTimer::timeout, &box, [&] {
    if (message.BackgroundWork()) meanwhile.start(0);
  });
  if (message.BackgroundWork) meanwhile.start(0);
  return AnswerOf(box.exec(), message.Choice);
}

void Places::Chosen(const std::string& path) {
  constexpr qsizetype kMost = 4;
  const QString folder = QFileInfo(QString::fromStdString(path)).absolutePath();
  recent_.removeAll(folder);
  recent_.prepend(folder);
  if (recent_.size() > kMost) recent_.removeLast();
}

QList<QUrl> Places::SideBar(const std::string& start) const {
  QStringList folders{QDir(QString::fromStdString(start)).absolutePath()};
  folders += recent_;
  for (const auto own : {QStandardPaths::HomeLocation, QStandardPaths::DesktopLocation,
                         QStandardPaths::DocumentsLocation, QStandardPaths::DownloadLocation})
    folders << QStandardPaths::writableLocation(own);
  folders.removeDuplicates();
  QList<QUrl> urls;
  for (const QString& folder : folders)
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) urls << QUrl::fromLocalFile(folder);
  return urls;
}

std::optional<std::string> ChooseDialog(QWidget* owner, const Dialog& dialog, Places& places) {
  switch (dialog.Kind) {
    case DialogKind::Colour:
      return ChooseColour(owner, dialog);
    case DialogKind::Print:  // ui/printing.h
    case DialogKind::Open:
    case DialogKind::Save:
      break;
  }
  return ChooseFile(owner, dialog, places);
}

}  // namespace qk
