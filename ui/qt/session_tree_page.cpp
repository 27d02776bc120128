#include "ui/qt/session_tree_page.h"

#include <QLabel>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "ui/qt/plain_text_box.h"
#include "ui/qt/progress_row.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

constexpr double kTreeShare = 0.5175;
const QString kTreeShareKey = QStringLiteral("SessionTree/TreeShare");
constexpr int kNarrowWindow = 512;  // pixels
constexpr int kGap = SessionTreePage::kGap;
constexpr int kHeaderLines = 2;
constexpr int kUserInfoLines = 7;

QLabel* makeLabel(const QString& text, QWidget* buddy) {
  auto* const label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  label->setBuddy(buddy);
  label->setMinimumHeight(label->fontMetrics().lineSpacing() * kHeaderLines);
  label->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
  return label;
}

QVBoxLayout* makeColumn(QWidget* side) {
  auto* const column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kGap / 2);
  return column;
}

}  // namespace

int treeWidth(int windowWidth) {
  return static_cast<int>(std::lround(std::max(windowWidth, kNarrowWindow) * kTreeShare));
}

SessionTreePage::SessionTreePage(QWidget* parent)
    : QWidget(parent),
      m_treeStack(new QStackedWidget),
      m_hidingLabel(new QLabel(QStringLiteral("Hiding TreeView for faster operation. Please wait..."))),
      m_tree(new SessionTreeBox),
      m_userInfo(new PlainTextBox),
      m_filter(new PlainTextBox),
      m_progress(new ProgressRow),
      m_splitter(new QSplitter(Qt::Horizontal)) {
  m_treeHeader = makeLabel({}, m_tree);
  m_splitter->addWidget(makeTreeSide());
  m_splitter->addWidget(makeTextSide());
  m_splitter->setChildrenCollapsible(false);
  m_splitter->setHandleWidth(kGap);
  connect(m_splitter, &QSplitter::splitterMoved, this,
          [this](int position) { m_treeShare = static_cast<double>(position) / std::max(1, m_splitter->width()); });

  auto* const rows = new QVBoxLayout(this);
  rows->setContentsMargins(kGap, kGap / 2, kGap, kGap / 2);
  rows->setSpacing(kGap / 2);
  rows->addWidget(m_splitter, 1);
  rows->addWidget(m_progress);
}

QWidget* SessionTreePage::makeTreeSide() {
  m_treeHeader->setObjectName(QStringLiteral("lblTreeHeader"));
  m_tree->setObjectName(QStringLiteral("TreeView1"));
  m_hidingLabel->setObjectName(QStringLiteral("lblHidingTreeView"));
  m_hidingLabel->setAlignment(Qt::AlignCenter);
  m_hidingLabel->setWordWrap(true);
  m_treeStack->addWidget(m_tree);
  m_treeStack->addWidget(m_hidingLabel);

  auto* const side = new QWidget;
  auto* const column = makeColumn(side);
  column->addWidget(m_treeHeader);
  column->addWidget(m_treeStack, 1);
  return side;
}

QWidget* SessionTreePage::makeTextSide() {
  m_userInfo->setObjectName(QStringLiteral("rtbUserInfo"));
  m_userInfo->setAccessibleName(QStringLiteral("User info"));
  m_userInfo->preferLines(kUserInfoLines);
  m_filter->setObjectName(QStringLiteral("rtbFilter"));
  m_filter->setAccessibleName(QStringLiteral("Filter window"));

  auto* const side = new QWidget;
  auto* const column = makeColumn(side);
  column->addWidget(makeLabel(QStringLiteral("User"), m_userInfo));
  column->addWidget(m_userInfo);
  column->addWidget(m_filter, 1);
  return side;
}

void SessionTreePage::setTreeHeader(std::string_view text) {
  m_treeHeader->setText(toQString(text).remove(u'\r'));
}

void SessionTreePage::showTree(bool visible) {
  m_treeStack->setCurrentWidget(visible ? static_cast<QWidget*>(m_tree) : m_hidingLabel);
}

void SessionTreePage::restore(const QSettings& settings) {
  const double share = settings.value(kTreeShareKey).toDouble();
  if (share > 0 && share < 1) m_treeShare = share;
  divide();
}

void SessionTreePage::save(QSettings& settings) const {
  if (m_treeShare) settings.setValue(kTreeShareKey, *m_treeShare);
}

void SessionTreePage::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  divide();
}

void SessionTreePage::divide() {
  const int whole = width() - 2 * kGap;  // the edges' gaps; the one at the left counts as the tree's
  const int left = m_treeShare ? static_cast<int>(std::lround(*m_treeShare * whole)) : treeWidth(width()) - kGap;
  m_splitter->setSizes({left, std::max(1, whole - left - kGap)});
}

}  // namespace quorvel
