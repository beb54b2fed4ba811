// SPDX-License-Identifier: MIT
#include "ui/help_viewer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <utility>

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyle>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTextDocument>
#include <QVBoxLayout>

#include "core/window_names.h"

namespace qk {

namespace {

constexpr const char* kPages = ":/manual/";
constexpr std::string_view kManual = "manual:";  // begins the address of a page
constexpr const char* kKeys = "All keys";
constexpr int kNarrow = 2;  // a window of fewer widths of the contents folds them away
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

// The desktop's colour of links, or a light blue where that cannot be read: the toolkit's own dark
// blue is made for a light ground.
QColor LinkColour(const QPalette& palette) {
  constexpr int kLeastContrast = 80;  // of 255
  const QColor link = palette.color(QPalette::Link);
  const int contrast = qGray(link.rgb()) - qGray(palette.color(QPalette::Base).rgb());
  return std::abs(contrast) < kLeastContrast ? QColor(0x7F, 0xB8, 0xFF) : link;
}

void ColourLinks(QTextDocument& document, const QColor& colour) {
  QTextCharFormat link;
  link.setForeground(colour);
  QTextCursor cursor(&document);
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    QList<std::pair<int, int>> places;  // the fragments of a block change with their formats
    for (auto it = block.begin(); !it.atEnd(); ++it)
      if (const QTextFragment fragment = it.fragment(); fragment.charFormat().isAnchor())
        places.emplaceBack(fragment.position(), fragment.position() + fragment.length());
    for (const auto& [from, to] : places) {
      cursor.setPosition(from);
      cursor.setPosition(to, QTextCursor::KeepAnchor);
      cursor.mergeCharFormat(link);
    }
  }
}

// Markdown as HTML. QTextEdit::setMarkdown lays the whole text out again after every piece: a page
// with long tables takes seconds. A document that is not shown has no layout, and HTML is set as a
// whole.
QString HtmlOf(const QString& markdown, const QPalette& palette) {
  QTextDocument document;
  document.setMarkdown(markdown);
  ColourLinks(document, LinkColour(palette));
  return document.toHtml();
}

// Shows pages of Markdown, however they are reached: by setSource, a link or Back.
class PageBrowser : public QTextBrowser {
 public:
  QVariant loadResource(int type, const QUrl& name) override {
    const QVariant found = QTextBrowser::loadResource(type, name);
    return name.path().endsWith(".md") ? HtmlOf(QString::fromUtf8(found.toByteArray()), palette())
                                       : found;
  }

 protected:
  void doSetSource(const QUrl& name, QTextDocument::ResourceType /*type*/) override {
    QTextBrowser::doSetSource(name, QTextDocument::HtmlResource);
  }
  // The desktop has turned dark or light.
  void changeEvent(QEvent* event) override {
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !source().isEmpty()) reload();
  }
};

}  // namespace

QString PageOf(const QString& window) {
  for (const WindowPage& row : kWindowPages)
    if (window == Text(row.Window)) return row.Page;
  if (window == "Bench") return "80-demonstration.md";
  return {};
}

std::string AddressOf(const QString& page) {
  return std::string(kManual) + page.toStdString();
}

HelpViewer::HelpViewer(const FormRegistry& forms)
    : forms_(forms),
      contents_(new QListWidget),
      showContents_(new QPushButton("Con&tents")),
      text_(new PageBrowser),
      back_(new QPushButton("&Back")),
      words_(new QLineEdit),
      allPages_(new QCheckBox("&All pages")),
      status_(new QLabel) {
  setObjectName("Help");
  setWindowTitle("Help");
  for (const QString& page : QDir(kPages).entryList({"[0-9]*.md"}, QDir::Files, QDir::Name)) {
    auto* item = new QListWidgetItem(TitleOf(page), contents_);
    item->setData(Qt::UserRole, page);
  }
  (new QListWidgetItem(kKeys, contents_))->setData(Qt::UserRole, kKeys);
  // The list is as wide as its longest title beside a scroll bar; the text has the rest.
  contents_->setFixedWidth(contents_->sizeHintForColumn(0) + 2 * contents_->frameWidth() +
                           style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 8);
  text_->setOpenExternalLinks(true);
  text_->setSearchPaths({kPages});
  // Pictures are fitted to the width of the text, which must not depend on their height.
  text_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  back_->setObjectName("Back");
  auto* close = new QPushButton("&Close");
  auto* foot = new QHBoxLayout;
  foot->addWidget(showContents_);
  foot->addWidget(back_);
  foot->addStretch(1);
  foot->addWidget(close);
  auto* halves = new QHBoxLayout;
  halves->addWidget(contents_);
  halves->addWidget(text_, 1);
  auto* column = new QVBoxLayout(this);
  column->addLayout(halves, 1);
  column->addWidget(FindBar());
  column->addLayout(foot);
  resize(QSize(920, 640).boundedTo(screen()->availableSize() * 9 / 10));

  ConnectContents();
  connect(text_, &QTextBrowser::sourceChanged, this, [this](const QUrl& page) { Follow(page); });
  connect(text_, &QTextBrowser::backwardAvailable, back_, &QWidget::setEnabled);
  connect(back_, &QPushButton::clicked, text_, &QTextBrowser::backward);
  connect(close, &QPushButton::clicked, this, &QWidget::close);
  back_->setEnabled(false);
  qApp->installEventFilter(this);
}

void HelpViewer::ConnectContents() {
  showContents_->setObjectName("ShowContents");
  showContents_->setCheckable(true);
  showContents_->setChecked(true);
  showContents_->setToolTip("Shows or hides the list of pages");
  connect(showContents_, &QPushButton::toggled, contents_, &QWidget::setVisible);
  connect(showContents_, &QPushButton::clicked, this,
          [this](bool on) { (on ? static_cast<QWidget*>(contents_) : text_)->setFocus(); });
  connect(contents_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
    if (item != nullptr) ShowPage(item->data(Qt::UserRole).toString());
  });
  connect(contents_, &QListWidget::itemClicked, this, [this] {
    if (narrow_) LeaveContents();
  });
  connect(contents_, &QListWidget::itemActivated, this, &HelpViewer::LeaveContents);
}

// The page has been chosen: the text has the keyboard, and in a narrow window the whole width.
void HelpViewer::LeaveContents() {
  if (narrow_) showContents_->setChecked(false);
  text_->setFocus();
}

void HelpViewer::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const bool narrow = width() < kNarrow * contents_->width();
  if (narrow == narrow_) return;
  narrow_ = narrow;
  showContents_->setChecked(!narrow);
  layout()->activate();  // the text has its width before a place in it is looked for
}

bool HelpViewer::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize && watched == text_->viewport()) FitPictures();
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
      ToFront();
      return;
    }
  ShowPage(kFirstPage);
  ToFront();
}

void HelpViewer::ShowPage(const QString& page) {
  if (page == kKeys) {
    text_->setHtml(HtmlOf(KeysPage(), text_->palette()));
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
  Say({});
  const QString name = page.path().section('/', -1);
  for (int row = 0; row < contents_->count(); ++row)
    if (contents_->item(row)->data(Qt::UserRole).toString() == name) {
      const QSignalBlocker quiet(contents_);
      contents_->setCurrentRow(row);
    }
  FitPictures();
  if (page.hasFragment()) GoTo(page.fragment(QUrl::FullyDecoded));
}

// Scales pictures that are wider than the text down to its width, so that a page needs no
// horizontal scroll bar; gives them their own size again in a wider window. A page is laid out in
// pieces while it is shown; a change in between would leave the text behind the change without
// lines. So a page whose pictures change is laid out to its end first.
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
      if (image.isNull() || room <= 0) continue;
      const double width = std::min<double>(room, image.width());
      if (picture.width() == width) continue;
      picture.setWidth(width);
      picture.setHeight(width * image.height() / image.width());
      document.documentLayout()->documentSize();  // lays out what is left
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

void HelpViewer::ToFront() {
  show();
  setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  activateWindow();
  text_->setFocus();
}

QWidget* HelpViewer::FindBar() {
  auto* bar = new QWidget;
  auto* label = new QLabel("&Find");
  label->setBuddy(words_);
  words_->setObjectName("Words");
  words_->setClearButtonEnabled(true);
  words_->setMinimumWidth(220);
  allPages_->setObjectName("AllPages");
  allPages_->setToolTip("Enter and F3 go on in the other pages of the manual");
  status_->setObjectName("FindStatus");
  auto* next = new QPushButton("&Next");
  next->setToolTip("F3");
  auto* previous = new QPushButton("&Previous");
  previous->setToolTip("Shift+F3");
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(0, 0, 0, 0);
  for (QWidget* part :
       std::initializer_list<QWidget*>{label, words_, next, previous, allPages_, status_})
    row->addWidget(part, part == status_ ? 1 : 0);
  // What was found must be seen while the keyboard is in the field.
  QPalette colours = text_->palette();
  for (const auto role : {QPalette::Highlight, QPalette::HighlightedText})
    colours.setColor(QPalette::Inactive, role, colours.color(QPalette::Active, role));
  text_->setPalette(colours);

  connect(words_, &QLineEdit::textEdited, this, &HelpViewer::FindWhileTyped);
  connect(words_, &QLineEdit::returnPressed, this, [this] { FindOn(false); });
  connect(next, &QPushButton::clicked, this, [this] { FindOn(false); });
  connect(previous, &QPushButton::clicked, this, [this] { FindOn(true); });
  connect(new QShortcut(QKeySequence(Qt::Key_F3), this), &QShortcut::activated, this,
          [this] { FindOn(false); });
  connect(new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F3), this), &QShortcut::activated, this,
          [this] { FindOn(true); });
  connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F), this), &QShortcut::activated, this,
          [this] {
            words_->setFocus(Qt::ShortcutFocusReason);
            words_->selectAll();
          });
  return bar;
}

void HelpViewer::Say(const QString& text) {
  status_->setText(text);
}

// Each letter looks on the page shown only, from the place found so far.
void HelpViewer::FindWhileTyped() {
  const QString words = words_->text();
  QTextCursor from = text_->textCursor();
  from.setPosition(from.selectionStart());
  text_->setTextCursor(from);
  Say({});
  if (words.isEmpty() || text_->find(words) || FindFromEnd(words, false)) return;
  if (allPages_->isChecked())
    Say("Not on this page. Enter looks in the others");
  else
    Say("Not on this page");
}

// The next place, or the one before: on this page, with All pages then in the others, and from the
// other end of this page.
void HelpViewer::FindOn(bool backwards) {
  const QString words = words_->text();
  Say({});
  if (words.isEmpty()) {
    words_->setFocus();
    return;
  }
  if (text_->find(words, backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags{}))
    return;
  if (allPages_->isChecked() && FindInOtherPages(words, backwards)) return;
  if (FindFromEnd(words, backwards))
    Say(backwards ? "From the end again" : "From the top again");
  else if (allPages_->isChecked())
    Say("On no page of the manual");
  else
    Say("Not on this page");
}

// Looks at the whole page shown. The place stays where it was if nothing is found.
bool HelpViewer::FindFromEnd(const QString& words, bool backwards) {
  const QTextCursor before = text_->textCursor();
  text_->moveCursor(backwards ? QTextCursor::End : QTextCursor::Start);
  if (text_->find(words, backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags{}))
    return true;
  text_->setTextCursor(before);
  return false;
}

bool HelpViewer::FindInOtherPages(const QString& words, bool backwards) {
  const int pages = contents_->count();
  const int here = contents_->currentRow();  // -1 while the log is shown
  for (int step = 1; step <= pages; ++step) {
    const int row = (here + (backwards ? -step : step) + 2 * pages) % pages;
    if (row == here || !Has(row, words)) continue;
    contents_->setCurrentRow(row);
    if (FindFromEnd(words, backwards)) return true;
  }
  return false;
}

bool HelpViewer::Has(int row, const QString& words) {
  plain_.resize(static_cast<std::size_t>(contents_->count()));
  QString& text = plain_[static_cast<std::size_t>(row)];
  if (text.isEmpty()) {
    const QString page = contents_->item(row)->data(Qt::UserRole).toString();
    QTextDocument document;
    if (QFile file(kPages + page); page == kKeys)
      document.setMarkdown(KeysPage());
    else if (file.open(QIODevice::ReadOnly))
      document.setMarkdown(QString::fromUtf8(file.readAll()));
    text = document.toPlainText();
  }
  return text.contains(words, Qt::CaseInsensitive);
}

// "PAGE" or "PAGE#HEADING": scrolls to the heading and marks it, because the page may end before it
// reaches the top.
void HelpViewer::ShowParagraph(const QString& place) {
  ShowPage(place.section('#', 0, 0));
  if (!place.contains('#')) return;
  GoTo(FragmentOf(place.section('#', 1)));
  QTextCursor heading = text_->textCursor();
  heading.select(QTextCursor::LineUnderCursor);
  text_->setTextCursor(heading);
}

bool HelpViewer::ShowDocument(const std::string& path) {
  if (path.starts_with(kManual)) {
    ToFront();
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
  ToFront();
  return true;
}

QString HelpViewer::KeysPage() const {
  QString page =
      "# All keys\n\n"
      "| Key | Does |\n|---|---|\n"
      "| F1 | the page of the window that has the keyboard |\n"
      "| F5 | START, in every window that does not block the others |\n"
      "| F6 | SINGLE: one sweep |\n"
      "| Escape | closes a window; in the main window: STOP |\n"
      "| Enter | presses the button that has the focus, else the window's main one |\n"
      "| Tab, Shift+Tab | goes from field to field; the arrows choose among options |\n"
      "| Alt and a letter | presses the button, or goes to the field, that has it underlined |\n"
      "| Ctrl+PageDown, Ctrl+Tab | shows the next page beside the graphs |\n"
      "| Ctrl+PageUp, Ctrl+Shift+Tab | shows the page before |\n"
      "| Ctrl+O, Ctrl+S | Load Cal, Save Cal |\n"
      "| Ctrl+P, Ctrl+C | Print Graphics, Copy Picture |\n"
      "| Ctrl+Z | Undo: the last change of display, memory or markers |\n"
      "| Ctrl+A, Ctrl+Shift+A | Autoscale, Autoscale All |\n"
      "| Ctrl+-, Ctrl++ | scale per division: the next larger, the next smaller |\n"
      "| Ctrl+Up, Ctrl+Down | moves the reference by one division |\n"
      "| Ctrl+Left, Ctrl+Right | moves the active marker by one point |\n"
      "| Menu key, Shift+F10 | opens the menu of the active channel's graph |\n"
      "| Ctrl+F, F3, Shift+F3 | in Help: find words, the next place, the one before |\n\n";
  for (const Form* form : forms_.All()) {
    QString rows;
    for (const Control& control : form->Controls()) {
      if (control.Kind == ControlKind::MenuItem || control.Key == 0 || control.Key == ' ') continue;
      const QString row =
          "| Alt+" + QString(QChar(control.Key)).toUpper() + " | " + Text(control.Caption) + " |\n";
      if (!rows.contains(row)) rows += row;  // pages of tabs have the same ones
    }
    if (rows.isEmpty()) continue;
    page += "## " + Text(form->Caption()) + "\n\n| Key | Does |\n|---|---|\n" + rows + "\n";
  }
  return page;
}

}  // namespace qk
