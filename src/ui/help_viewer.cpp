// SPDX-License-Identifier: MIT
#include "ui/help_viewer.h"

#include <array>
#include <string_view>

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImage>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "core/window_names.h"

namespace qk {

namespace {

constexpr const char* kPages = ":/manual/";
constexpr const char* kKeys = "All keys";
constexpr qint64 kLargestText = qint64{4} << 20;

struct WindowPage {
  std::string_view Window;
  const char* Page;
};
constexpr std::array kWindowPages = {
    WindowPage{window::kForm1, "20-measuring.md"},
    WindowPage{window::kCalibration, "15-calibrating.md"},
    WindowPage{window::kIsoMethod, "15-calibrating.md"},
    WindowPage{window::kOpenCal, "15-calibrating.md"},
    WindowPage{window::kShortCal, "15-calibrating.md"},
    WindowPage{window::kMatchCal, "15-calibrating.md"},
    WindowPage{window::kThruCalForm, "15-calibrating.md"},
    WindowPage{window::kCalKitForm, "17-kits.md"},
    WindowPage{window::kNewCalKit, "17-kits.md"},
    WindowPage{window::kSaveKit, "17-kits.md"},
    WindowPage{window::kDisplayPara, "25-display.md"},
    WindowPage{window::kMemoryPara, "25-display.md"},
    WindowPage{window::kTDR_Opts, "27-time-domain.md"},
    WindowPage{window::kEnhancePara, "29-enhancement.md"},
    WindowPage{window::kMarkersSet, "30-markers.md"},
    WindowPage{window::kAdjMarkers, "30-markers.md"},
    WindowPage{window::kNewLimitsSet, "32-limits.md"},
    WindowPage{window::kMarkerTable, "30-markers.md"},
    WindowPage{window::kColours, "34-pictures.md"},
    WindowPage{window::kLabelGraphics, "34-pictures.md"},
    WindowPage{window::kSaveMeas, "40-measurement-files.md"},
    WindowPage{window::kLoadMeas, "40-measurement-files.md"},
    WindowPage{window::kReport, "42-report.md"},
    WindowPage{window::kCompare, "16-keeping.md"},
    WindowPage{window::kBatch, "44-batch.md"},
    WindowPage{window::kP1dBForm, "65-power-tests.md"},
    WindowPage{window::kAMtoPM, "65-power-tests.md"},
    WindowPage{window::kFreqGen, "66-signal-generator.md"},
    WindowPage{window::kRemoteControl, "86-remote.md"},
    WindowPage{window::kCheckCal, "68-trust.md"},
    WindowPage{window::kSweepStats, "68-trust.md"},
    WindowPage{window::kHints, "68-trust.md"},
    WindowPage{window::kHardwareInfo, "70-instrument-care.md"},
    WindowPage{window::kDiagnosticsTests, "70-instrument-care.md"},
    WindowPage{window::kEepromBk, "70-instrument-care.md"},
    WindowPage{window::kEepromRest, "70-instrument-care.md"},
};
constexpr const char* kFirstPage = "00-start.md";

// The title of a page: its first line.
QString TitleOf(const QString& page) {
  QFile file(kPages + page);
  if (!file.open(QIODevice::ReadOnly)) return page;
  return QString::fromUtf8(file.readLine()).remove(0, 2).trimmed();
}

// The link fragment for a heading: "Message boxes" becomes message-boxes.
QString FragmentOf(const QString& heading) {
  static const QRegularExpression kLeftOut("[^\\w\\- ]",
                                           QRegularExpression::UseUnicodePropertiesOption);
  return heading.toLower().remove(kLeftOut).replace(' ', '-');
}

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QString PageOf(const QString& window) {
  for (const WindowPage& row : kWindowPages)
    if (window == Text(row.Window)) return row.Page;
  if (window == "Bench") return "80-demonstration.md";
  return {};
}

HelpViewer::HelpViewer(const FormRegistry& forms)
    : forms_(forms),
      contents_(new QListWidget),
      text_(new QTextBrowser),
      back_(new QPushButton("&Back")) {
  setObjectName("Help");
  setWindowTitle("Help");
  for (const QString& page : QDir(kPages).entryList({"[0-9]*.md"}, QDir::Files, QDir::Name)) {
    auto* item = new QListWidgetItem(TitleOf(page), contents_);
    item->setData(Qt::UserRole, page);
  }
  (new QListWidgetItem(kKeys, contents_))->setData(Qt::UserRole, kKeys);
  contents_->setMaximumWidth(contents_->sizeHintForColumn(0) + 2 * contents_->frameWidth() + 24);
  text_->setOpenExternalLinks(true);
  text_->setSearchPaths({kPages});
  auto* close = new QPushButton("&Close");
  auto* foot = new QHBoxLayout;
  foot->addWidget(back_);
  foot->addStretch(1);
  foot->addWidget(close);
  auto* halves = new QHBoxLayout;
  halves->addWidget(contents_);
  halves->addWidget(text_, 1);
  auto* column = new QVBoxLayout(this);
  column->addLayout(halves, 1);
  column->addLayout(foot);
  resize(QSize(920, 640).boundedTo(screen()->availableSize() * 9 / 10));

  connect(contents_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
    if (item != nullptr) ShowPage(item->data(Qt::UserRole).toString());
  });
  connect(text_, &QTextBrowser::sourceChanged, this, [this](const QUrl& page) { Follow(page); });
  connect(text_, &QTextBrowser::backwardAvailable, back_, &QWidget::setEnabled);
  connect(back_, &QPushButton::clicked, text_, &QTextBrowser::backward);
  connect(close, &QPushButton::clicked, this, &QWidget::close);
  back_->setEnabled(false);
  qApp->installEventFilter(this);
}

bool HelpViewer::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
  const auto& key = static_cast<const QKeyEvent&>(*event);
  if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier) return false;
  if (!key.isAutoRepeat()) ShowForKeyboard();
  return true;
}

void HelpViewer::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Cancel))
    close();
  else
    QWidget::keyPressEvent(event);
}

// A box or a dialog uses the page of its parent window.
void HelpViewer::ShowForKeyboard() {
  const QWidget* at = QApplication::focusWidget();
  if (at == nullptr) at = QApplication::activeWindow();
  if (at != nullptr && at->window() == this) return;
  for (; at != nullptr; at = at->parentWidget())
    if (const QString page = PageOf(at->objectName()); !page.isEmpty()) {
      ShowPage(page);
      ComeUp();
      return;
    }
  ShowPage(kFirstPage);
  ComeUp();
}

void HelpViewer::ShowPage(const QString& page) {
  if (page == kKeys) {
    text_->setMarkdown(KeysPage());
    Follow(QUrl(kKeys));
    return;
  }
  const QUrl url("qrc" + QString(kPages) + page);
  if (text_->source() == url)
    text_->reload();  // other contents may have been shown since: the keys, the log
  else
    text_->setSource(url);
}

// Selects the page that a link has opened in the table of contents.
void HelpViewer::Follow(const QUrl& page) {
  const QString name = page.path().section('/', -1);
  for (int row = 0; row < contents_->count(); ++row)
    if (contents_->item(row)->data(Qt::UserRole).toString() == name) {
      const QSignalBlocker quiet(contents_);
      contents_->setCurrentRow(row);
    }
  FitPictures();
  if (page.hasFragment()) GoTo(page.fragment(QUrl::FullyDecoded));
}

// Limits pictures to the window width, so that a page needs no horizontal scroll bar.
void HelpViewer::FitPictures() {
  QTextDocument& document = *text_->document();
  const double room = text_->viewport()->width() - 2 * document.documentMargin() - 1;
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
    for (auto it = block.begin(); !it.atEnd(); ++it) {
      const QTextFragment fragment = it.fragment();
      if (!fragment.charFormat().isImageFormat()) continue;
      QTextImageFormat picture = fragment.charFormat().toImageFormat();
      const auto image =
          document.resource(QTextDocument::ImageResource, QUrl(picture.name())).value<QImage>();
      if (image.isNull() || image.width() <= room) continue;
      picture.setWidth(room);
      picture.setHeight(room * image.height() / image.width());
      QTextCursor cursor(&document);
      cursor.setPosition(fragment.position());
      cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
      cursor.setCharFormat(picture);
      break;  // the fragments of the block have changed; a picture is the only one in its block
    }
}

// Scrolls to a heading; to the top of the page if there is none with that name.
void HelpViewer::GoTo(const QString& fragment) {
  for (QTextBlock block = text_->document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockFormat().headingLevel() == 0 || FragmentOf(block.text()) != fragment) continue;
    text_->setTextCursor(QTextCursor(block));
    const auto top = text_->document()->documentLayout()->blockBoundingRect(block).top();
    text_->verticalScrollBar()->setValue(static_cast<int>(top));
    return;
  }
}

void HelpViewer::ComeUp() {
  show();
  setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  activateWindow();
  text_->setFocus();
}

// "PAGE#HEADING": scrolls to the heading and marks it, because the page may end before it reaches
// the top.
void HelpViewer::ShowParagraph(const QString& place) {
  ShowPage(place.section('#', 0, 0));
  GoTo(FragmentOf(place.section('#', 1)));
  QTextCursor heading = text_->textCursor();
  heading.select(QTextCursor::LineUnderCursor);
  text_->setTextCursor(heading);
}

bool HelpViewer::ShowDocument(const std::string& path) {
  constexpr std::string_view kManual = "manual:";
  if (path.starts_with(kManual)) {
    ComeUp();
    ShowParagraph(QString::fromStdString(path.substr(kManual.size())));
    return true;
  }
  const QFileInfo file(QString::fromStdString(path));
  if (file.fileName() == "UsersManual.pdf") {
    ShowPage(kFirstPage);
  } else if (file.fileName() == "ZoConversion.pdf") {
    ShowPage("29-enhancement.md");
  } else {
    QFile text(file.filePath());
    if (file.suffix().toLower() == "pdf" || !file.isFile() || file.size() > kLargestText ||
        !text.open(QIODevice::ReadOnly))
      return false;
    text_->setPlainText(QString::fromUtf8(text.readAll()));
    const QSignalBlocker quiet(contents_);
    contents_->setCurrentRow(-1);
  }
  ComeUp();
  return true;
}

QString HelpViewer::KeysPage() const {
  QString page =
      "# All keys\n\n"
      "| Key | Does |\n|---|---|\n"
      "| F1 | the page of the window that has the keyboard |\n"
      "| F5 | START, in every window that does not block the others |\n"
      "| Escape | closes a window; in the main window: STOP |\n"
      "| Enter | presses the button that has the focus, else the window's main one |\n"
      "| Tab, Shift+Tab | goes from field to field; the arrows choose among options |\n"
      "| Alt and a letter | presses the button, or goes to the field, that has it underlined |\n\n";
  for (const Form* form : forms_.All()) {
    QString rows;
    for (const Control& control : form->Controls())
      if (control.Key != 0 && control.Key != ' ')
        rows += "| Alt+" + QString(QChar(control.Key)).toUpper() + " | " + Text(control.Caption) +
                " |\n";
    if (rows.isEmpty()) continue;
    page += "## " + Text(form->Caption()) + "\n\n| Key | |\n|---|---|\n" + rows + "\n";
  }
  return page;
}

}  // namespace qk
