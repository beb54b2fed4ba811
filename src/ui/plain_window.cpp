// SPDX-License-Identifier: MIT
#include "ui/plain_window.h"

#include <QHBoxLayout>
#include <QSpacerItem>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "ui/help_viewer.h"
#include "ui/scroll_body.h"
#include "ui/section_layout.h"
#include "ui/title_bar.h"

namespace qk {

namespace {

// Arranges sections in bands of columns on one page.
class Page {
 public:
  explicit Page(QVBoxLayout& column) : column_(column) {}

  void Add(QWidget* section, Position where) {
    if (where == Position::Below || band_ == nullptr) {
      band_ = new QHBoxLayout;
      column_.addLayout(band_);
      stack_ = nullptr;
    }
    if (where != Position::Under || stack_ == nullptr) {
      stack_ = new QVBoxLayout;
      band_->addLayout(stack_, 1);
    }
    // The last section of a column takes the remaining height, so that those above stay aligned
    // with their neighbours.
    if (stack_->count() > 0) stack_->setStretch(stack_->count() - 1, 0);
    stack_->addWidget(section, 1);
    if (section->sizePolicy().verticalPolicy() == QSizePolicy::Expanding) GiveRoom();
  }
  // Space that nothing on the page uses stays at the bottom.
  void End() {
    if (!grows_) column_.addStretch(1);
  }

 private:
  // This band gets all the extra space, in its last column; the columns before it keep their size,
  // at the top.
  void GiveRoom() {
    grows_ = true;
    column_.setStretchFactor(band_, 1);
    const int last = band_->count() - 1;
    for (int i = 0; i < last; ++i) {
      band_->setStretch(i, 0);
      auto* stack = static_cast<QVBoxLayout*>(band_->itemAt(i)->layout());
      stack->setStretch(stack->count() - 1, 0);
      stack->addStretch(1);
    }
  }

  QVBoxLayout& column_;
  QHBoxLayout* band_ = nullptr;
  bool grows_ = false;
  QVBoxLayout* stack_ = nullptr;
};

// The number of a channel is the mnemonic of its page.
QString TabTitle(const std::string& title) {
  const char last = title.back();
  return MnemonicCaption(title, last >= '0' && last <= '9' ? last : char{0});
}

// For the mouse; the key is F1.
QToolButton* HelpButton(QtHost& host, const QString& page) {
  auto* button = new QToolButton;
  button->setObjectName("WindowHelp");
  button->setText("?");
  button->setToolTip("Help on this window (F1)");
  button->setFocusPolicy(Qt::NoFocus);
  QObject::connect(button, &QToolButton::clicked, &host,
                   [&host, page] { host.OpenDocument(AddressOf(page)); });
  return button;
}

}  // namespace

PlainWindow::PlainWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : DialogWindow(form, host, mainWindow) {
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 0);
  auto* foot = new QWidget;
  auto* line = new QHBoxLayout(foot);
  line->setContentsMargins(0, 0, 0, 0);
  if (const QString help = PageOf(objectName()); !help.isEmpty())
    line->addWidget(HelpButton(host, help), 0, Qt::AlignBottom);
  auto* buttons = new QVBoxLayout;
  line->addLayout(buttons, 1);
  Page page(*column);
  QTabWidget* tabs = nullptr;
  std::string tab;
  std::optional<Page> tabPage;
  for (std::size_t i = 0; i < form.Sections().size(); ++i) {
    const FormSection& section = form.Sections()[i];
    QWidget* widget = LaidOutSection(GetBinder(), form, static_cast<int>(i));
    if (widget == nullptr) continue;
    if (section.Hints.How == Arrange::Actions) {
      buttons->addWidget(widget);
      continue;
    }
    if (section.Hints.Tab.empty()) {
      tabs = nullptr;
      page.Add(widget, section.Hints.Where);
      continue;
    }
    if (tabs == nullptr) {
      tabs = new QTabWidget;
      page.Add(tabs, Position::Below);
      tab.clear();
    }
    if (tab != section.Hints.Tab) {
      tab = section.Hints.Tab;
      if (tabPage) tabPage->End();
      auto* sheet = new QWidget;
      tabPage.emplace(*new QVBoxLayout(sheet));
      tabs->addTab(sheet, TabTitle(tab));
    }
    tabPage->Add(widget, section.Hints.Where);
  }
  if (tabPage) tabPage->End();
  page.End();
  auto* whole = new QVBoxLayout(this);
  whole->addWidget(new ScrollBody(content, foot), 1);
  whole->addWidget(foot);
  whole->addItem(new QSpacerItem(TitleBarWidth(*this, QString::fromStdString(form.Caption())), 0,
                                 QSizePolicy::Minimum, QSizePolicy::Fixed));
  SetTabOrder();
}

// Sets the tab order to the order of the form's controls.
void PlainWindow::SetTabOrder() {
  QWidget* before = nullptr;
  for (const Control& control : GetForm().Controls()) {
    auto* widget = findChild<QWidget*>(QString::fromStdString(control.Name));
    if (widget == nullptr) continue;
    if (before != nullptr) setTabOrder(before, widget);
    before = widget;
  }
}

}  // namespace qk
