#include "ui/qt/pages/overview_page.h"

#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <utility>

#include "report/check.h"
#include "ui/qt/pages/bar_chart.h"
#include "ui/qt/pages/hour_grid.h"
#include "ui/qt/pages/shown_text.h"
#include "ui/qt/pages/table_box.h"
#include "ui/qt/pages/traffic_bars.h"

namespace quorvel {
namespace {

constexpr int kTopRows = 10;

QString utf8(std::string_view text) {
  return plainLine(text);
}

/// "ftp-server.log   2005-06-06 08:00 - 2005-06-07 18:12   Serv-U, classic   511 lines, 100 % understood"
QString headText(const Subject& subject, const OverviewNumbers& numbers) {
  const Activity& activity = *subject.activity;
  if (activity.logs.empty()) return QStringLiteral("The log is being read.");
  const LogInfo& log = activity.logs.front();
  QStringList parts{utf8(log.name)};
  if (activity.logs.size() > 1) parts.back() += QStringLiteral(" and %1 more").arg(activity.logs.size() - 1);
  if (numbers.first != kNoTime) parts += shownTime(numbers.first) + QStringLiteral(" - ") + shownTime(numbers.last);
  if (log.grammar != nullptr) parts += utf8(log.grammar->title());
  parts += shownCount(static_cast<std::int64_t>(numbers.lines)) + QStringLiteral(" lines, ") +
           shownText(Cell{CellKind::Percent, numbers.understoodPercent, {}}) + QStringLiteral(" understood");
  return parts.join(QStringLiteral("   "));
}

PageName pageOf(Question question) {
  switch (question) {
    case Question::Overview:
      return PageName::Overview;
    case Question::Sessions:
      return PageName::Sessions;
    case Question::Logins:
      return PageName::Logins;
    case Question::Files:
      return PageName::Files;
    case Question::Transfers:
      return PageName::Transfers;
    case Question::Traffic:
      return PageName::Traffic;
    case Question::Check:
      return PageName::Log;
  }
  return PageName::Overview;
}

}  // namespace

struct OverviewPage::Answer {
  OverviewNumbers numbers;
  std::vector<Finding> findings;
  Bars days;
  HourValues hours{};
  std::shared_ptr<const Table> users;
  std::shared_ptr<const Table> addresses;
  std::shared_ptr<const Table> folders;
};

OverviewPage::OverviewPage(QWidget* parent)
    : AnswerPage(parent),
      m_head(new QLabel),
      m_grid(new QGridLayout),
      m_findings(new QListWidget),
      m_days(new BarChart),
      m_hours(new HourGrid(QStringLiteral("Bytes by hour and weekday"))),
      m_users(new TableBox(QStringLiteral("TopUsers"), QStringLiteral("Top users by bytes"))),
      m_addresses(new TableBox(QStringLiteral("TopAddresses"), QStringLiteral("Top addresses by refused log-ons"))),
      m_folders(new TableBox(QStringLiteral("TopFolders"), QStringLiteral("Most active folders"))),
      m_tileRow(new QWidget) {
  setObjectName(QStringLiteral("Overview"));
  m_head->setObjectName(QStringLiteral("overviewHead"));
  m_head->setTextFormat(Qt::PlainText);
  m_head->setWordWrap(true);
  m_head->setTextInteractionFlags(Qt::TextSelectableByMouse);
  makeTiles();
  m_findings->setObjectName(QStringLiteral("findings"));
  m_findings->setAccessibleName(QStringLiteral("Look at first"));
  m_findings->setTextElideMode(Qt::ElideRight);
  connect(m_findings, &QListWidget::itemActivated, this, [this] { openFinding(m_findings->currentRow()); });
  connect(m_findings, &QListWidget::itemClicked, this, [this] { openFinding(m_findings->currentRow()); });
  connect(m_days, &BarChart::periodChosen, this, &AnswerPage::periodAsked);
  m_parts = {makeTop(nullptr, QStringLiteral("Look at first")),
             m_days,
             m_hours,
             makeTop(m_users, QStringLiteral("Top users")),
             makeTop(m_addresses, QStringLiteral("Top addresses")),
             makeTop(m_folders, QStringLiteral("Most active folders"))};
  auto* const inside = new QWidget;
  auto* const rows = new QVBoxLayout(inside);
  rows->addWidget(m_head);
  rows->addWidget(m_tileRow);
  rows->addLayout(m_grid, 1);
  auto* const scroll = new QScrollArea;
  scroll->setWidget(inside);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  auto* const whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(scroll);
  arrange();  // which gives the parts their parents, shown or not
}

void OverviewPage::makeTiles() {
  static constexpr std::array<std::pair<const char*, PageName>, kTiles> kTargets{{{"sessions", PageName::Sessions},
                                                                                  {"users", PageName::Logins},
                                                                                  {"addresses", PageName::Logins},
                                                                                  {"logons", PageName::Logins},
                                                                                  {"downloads", PageName::Traffic},
                                                                                  {"uploads", PageName::Traffic},
                                                                                  {"broken", PageName::Transfers},
                                                                                  {"lines", PageName::Log}}};
  auto* const row = new QGridLayout(m_tileRow);
  row->setContentsMargins(0, 0, 0, 0);
  for (std::size_t i = 0; i < kTiles; ++i) {
    m_tiles[i] = new QPushButton;
    m_tiles[i]->setObjectName(QStringLiteral("tile_") + QString::fromLatin1(kTargets[i].first));
    m_tiles[i]->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(m_tiles[i], &QPushButton::clicked, this, [this, page = kTargets[i].second] { emit pageAsked(page, {}); });
  }
}

QWidget* OverviewPage::makeTop(TableBox* table, const QString& title) {
  auto* const part = new QWidget;
  auto* const rows = new QVBoxLayout(part);
  rows->setContentsMargins(0, 0, 0, 0);
  auto* const caption = new QLabel(title);
  rows->addWidget(caption);
  QAbstractItemView* const view = table != nullptr ? static_cast<QAbstractItemView*>(table) : m_findings;
  caption->setBuddy(view);
  rows->addWidget(view, 1);
  const int line = fontMetrics().height() + 4;
  view->setMinimumHeight(line * (table != nullptr ? kTopRows / 2 : static_cast<int>(kMostFindings) + 1));
  view->setMinimumWidth(line * 10);
  if (table == nullptr) return part;
  table->setSortingEnabled(false);
  connectTable(*table);
  connect(table, &TableBox::rowActivated, this, [this, table](int row) {
    if (const auto word = table->rows().word(table->rows().index(row, 0))) emit wordAsked(*word);
  });
  return part;
}

TableBox* OverviewPage::mainTable() {
  return m_addresses->hasFocus() ? m_addresses : m_folders->hasFocus() ? m_folders : m_users;
}

void OverviewPage::resizeEvent(QResizeEvent* event) {
  AnswerPage::resizeEvent(event);
  arrange();
}

void OverviewPage::arrange() {
  constexpr int kWideInLetters = 110;
  const int letter = fontMetrics().averageCharWidth();
  const int columns = width() >= kWideInLetters * letter ? 3 : 2;
  if (columns == m_columns) return;
  m_columns = columns;
  for (std::size_t i = 0; i < m_parts.size(); ++i)
    m_grid->addWidget(m_parts[i], static_cast<int>(i) / columns, static_cast<int>(i) % columns);
  for (int column = 0; column < 3; ++column)
    m_grid->setColumnStretch(column, column < columns ? 1 : 0);
  auto* const tiles = static_cast<QGridLayout*>(m_tileRow->layout());
  const int tileColumns = columns == 3 ? static_cast<int>(kTiles) : static_cast<int>(kTiles) / 2;
  for (std::size_t i = 0; i < kTiles; ++i)
    tiles->addWidget(m_tiles[i], static_cast<int>(i) / tileColumns, static_cast<int>(i) % tileColumns);
}

Inquiry OverviewPage::inquiry() {
  return [this, thresholds = m_thresholds](const std::shared_ptr<const Subject>& subject) {
    Overview found = overview(*subject->activity, subject->selection, thresholds);
    auto answer = std::make_shared<Answer>();
    answer->numbers = found.numbers;
    answer->findings = std::move(found.findings);
    static constexpr TrafficKey kByDay[] = {TrafficKey::Day};
    answer->days = trafficBars(*found.days, kByDay);
    answer->days.title = QStringLiteral("Bytes a day (drag over days to set the period)");
    answer->hours = found.weekBytes;
    answer->users = std::move(found.topUsers);
    answer->addresses = std::move(found.topAddresses);
    answer->folders = std::move(found.topFolders);
    return [this, subject, answer] { show(*subject, *answer); };
  };
}

void OverviewPage::show(const Subject& subject, const Answer& answer) {
  m_head->setText(headText(subject, answer.numbers));
  showTiles(subject, answer.numbers);
  showFindings(answer.findings, !subject.activity->logs.empty());
  m_days->setBars(answer.days);
  m_hours->setValues(answer.hours);
  m_users->setEmptyText(whyEmpty(subject, QStringLiteral("No transfers went over.")));
  m_addresses->setEmptyText(whyEmpty(subject, QStringLiteral("No log-on was refused.")));
  m_folders->setEmptyText(whyEmpty(subject, QStringLiteral("This log tells of no files.")));
  m_users->show(answer.users, {});
  m_addresses->show(answer.addresses, {});
  m_folders->show(answer.folders, {});
  emit counted(static_cast<qint64>(subject.selection.sessions.size()),
               static_cast<qint64>(subject.activity->sessions.size()));
}

void OverviewPage::setTile(Tile tile, const QString& caption, const QString& value, const QString& exact) {
  QPushButton& button = *m_tiles[tile];
  button.setText(caption + u'\n' + value);
  button.setAccessibleName(caption + QStringLiteral(": ") + value);
  button.setToolTip(plainToolTip(exact));
  const QSize text = button.fontMetrics().size(0, button.text());
  constexpr int kAir = 16;
  button.setMinimumSize(text.width() + kAir, text.height() + kAir);
}

void OverviewPage::showTiles(const Subject& subject, const OverviewNumbers& numbers) {
  const auto count = [](std::uint64_t value) { return shownCount(static_cast<std::int64_t>(value)); };
  const auto exact = [](std::int64_t bytes) { return shownCount(bytes) + QStringLiteral(" bytes"); };
  const auto both = [&count](std::uint64_t files, std::int64_t bytes) {
    return count(files) + QStringLiteral(" - ") + shownSize(bytes);
  };
  setTile(kSessions, QStringLiteral("Sessions"), count(numbers.sessions), {});
  setTile(kUsers, QStringLiteral("Users"), count(numbers.users), {});
  setTile(kAddresses, QStringLiteral("Addresses"), count(numbers.addresses), {});
  setTile(kLogons, QStringLiteral("Log-ons"),
          count(numbers.logons) + QStringLiteral(", %1 refused").arg(count(numbers.refused)), {});
  setTile(kDownloads, QStringLiteral("Downloads"), both(numbers.downloads, numbers.downloadBytes),
          exact(numbers.downloadBytes));
  setTile(kUploads, QStringLiteral("Uploads"), both(numbers.uploads, numbers.uploadBytes), exact(numbers.uploadBytes));
  setTile(kBroken, QStringLiteral("Broken transfers"), count(numbers.broken), {});
  std::uint64_t aside = 0;
  QStringList ledger;
  for (const LogInfo& log : subject.activity->logs)
    aside += log.ledger.setAside.lines;
  for (const std::string& sentence : checkSentences(*subject.activity))
    ledger += utf8(sentence);
  setTile(kLines, QStringLiteral("Lines set aside"), count(aside), ledger.join(u'\n'));
}

void OverviewPage::showFindings(const std::vector<Finding>& findings, bool isRead) {
  const int current = m_findings->currentRow();
  m_shownFindings = findings;
  m_findings->clear();
  for (const Finding& finding : findings) {
    const auto icon = finding.isUrgent ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
    auto* const item = new QListWidgetItem(style()->standardIcon(icon), utf8(finding.sentence), m_findings);
    item->setToolTip(plainToolTip(utf8(finding.sentence)));
    item->setData(Qt::AccessibleTextRole, (finding.isUrgent ? QStringLiteral("Urgent: ") : QString()) + item->text());
  }
  if (!findings.empty()) return m_findings->setCurrentRow(std::min(current, static_cast<int>(findings.size()) - 1));
  if (!isRead) return;
  m_findings->setWordWrap(true);
  auto* const item =
      new QListWidgetItem(QStringLiteral("Nothing stands out. ") + utf8(lookedFor(m_thresholds)), m_findings);
  item->setFlags(Qt::NoItemFlags);
}

void OverviewPage::openFinding(int row) {
  if (row < 0 || row >= static_cast<int>(m_shownFindings.size())) return;
  const Finding& finding = m_shownFindings[static_cast<std::size_t>(row)];
  emit pageAsked(pageOf(finding.question), finding.words);
}

}  // namespace quorvel
