#include "ui/qt/pages/logins_page.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QSplitter>
#include <algorithm>
#include <array>

#include "log/text.h"
#include "report/logins.h"
#include "report/raw_tables.h"
#include "ui/qt/dialog_parts.h"
#include "ui/qt/pages/bar_chart.h"
#include "ui/qt/pages/shown_text.h"

namespace quorvel {
namespace {

constexpr int kByUser = 1;
constexpr LogTime kMinute = 60;

struct ThresholdLine {
  const char* key;
  const char* label;
  std::uint32_t Thresholds::*value;
};
constexpr std::array kThresholdLines = {
    ThresholdLine{"inTenMinutes", "Refusals within ten minutes:", &Thresholds::inTenMinutes},
    ThresholdLine{"inTwoMinutes", "Refusals within two minutes:", &Thresholds::inTwoMinutes},
    ThresholdLine{"beforeSuccess", "Refusals in a row before a log-on:", &Thresholds::beforeSuccess},
};

QString thresholdKey(const ThresholdLine& line) {
  return QStringLiteral("Logins/") + QString::fromLatin1(line.key);
}

/// The attempts among rows that have the same address, or name, as the one given.
std::vector<RowNumber> sameAttempts(const Activity& activity, const std::vector<RowNumber>& rows, RowNumber like,
                                    bool byUser) {
  const LogonRow& wanted = activity.logons[like];
  const std::string_view name = activity.text(wanted.user);
  std::vector<RowNumber> same;
  for (const RowNumber row : rows) {
    const LogonRow& logon = activity.logons[row];
    const bool isSame = byUser ? logon.user == wanted.user || equalsFolded(activity.text(logon.user), name)
                               : logon.address == wanted.address;
    if (isSame) same.push_back(row);
  }
  return same;
}

/// Refusals by minute, or by as many minutes as make the bars wide enough to see.
Bars refusals(const Activity& activity, const std::vector<RowNumber>& rows) {
  constexpr LogTime kMostBars = 60;
  std::vector<LogTime> times;
  for (const RowNumber row : rows)
    if (const LogonRow& logon = activity.logons[row]; !logon.isOk() && logon.time != kNoTime)
      times.push_back(logon.time);
  Bars bars;
  bars.areBytes = false;
  bars.title = QStringLiteral("Refused a minute");
  if (times.empty()) return bars;
  const auto [least, most] = std::minmax_element(times.begin(), times.end());
  const LogTime first = *least - *least % kMinute;
  const LogTime minutes = ((*most - first) / kMinute + kMostBars) / kMostBars;
  const LogTime width = minutes * kMinute;
  if (minutes > 1) bars.title = QStringLiteral("Refused in %1").arg(shownSeconds(width));
  bars.bars.resize((*most - first) / width + 1);
  for (std::size_t i = 0; i < bars.bars.size(); ++i) {
    Bar& bar = bars.bars[i];
    bar.from = first + static_cast<LogTime>(i) * width;
    bar.to = bar.from + width;
    bar.label = shownTime(bar.from).mid(5, 11);
    bar.parts = {0};
  }
  for (const LogTime time : times)
    ++bars.bars[(time - first) / width].parts[0];
  return bars;
}

}  // namespace

LoginsPage::LoginsPage(QWidget* parent)
    : TablePage(QStringLiteral("Logins"), QStringLiteral("Who tried to log on"), parent),
      m_by(addChoice(QStringLiteral("by"), QStringLiteral("B&y"), {QStringLiteral("Address"), QStringLiteral("User")})),
      m_attempts(new TableBox(QStringLiteral("AttemptsTable"), QStringLiteral("Attempts"))),
      m_bars(new BarChart),
      m_attemptsSplitter(new QSplitter(Qt::Horizontal)) {
  splitter().insertWidget(1, makeAttempts());
  splitter().setSizes({40, 25, 35});
  addButton(QStringLiteral("thresholds"), QStringLiteral("What stands out..."), [this] { askThresholds(); });
  connectTable(*m_attempts);
  connect(m_bars, &BarChart::periodChosen, this, &AnswerPage::periodAsked);
  connect(&table(), &TableBox::currentRowChanged, this, &LoginsPage::showAttempts);
  connect(m_attempts, &TableBox::currentRowChanged, this,
          [this](int row) { showLinesOf(m_attempts->rows().source(row)); });
  connect(m_attempts, &TableBox::rowActivated, this,
          [this](int row) { emit sessionAsked(m_attempts->rows().source(row)); });
}

QWidget* LoginsPage::makeAttempts() {
  constexpr int kTableShare = 3;
  constexpr int kBarsShare = 2;
  m_attempts->setEmptyText(QStringLiteral("Choose a row above to see its attempts."));
  m_attemptsSplitter->addWidget(m_attempts);
  m_attemptsSplitter->addWidget(m_bars);
  m_attemptsSplitter->setStretchFactor(0, kTableShare);
  m_attemptsSplitter->setStretchFactor(1, kBarsShare);
  m_attemptsSplitter->setSizes({kTableShare * 100, kBarsShare * 100});
  return m_attemptsSplitter;
}

TableBox* LoginsPage::mainTable() {
  return m_attempts->hasFocus() ? m_attempts : &table();
}

Inquiry LoginsPage::inquiry() {
  const LoginsBy by = m_by->currentIndex() == kByUser ? LoginsBy::User : LoginsBy::Address;
  return
      [this, by, thresholds = m_thresholds, sort = table().sortOrder()](const std::shared_ptr<const Subject>& subject) {
        OrderedTable rows = inOrder(loginsTable(*subject->activity, subject->selection.logons, by, thresholds), sort);
        return [this, subject, rows = std::move(rows)] {
          showRows(subject, rows, QStringLiteral("This log tells of no log-ons."));
          emit counted(static_cast<qint64>(subject->selection.logons.size()),
                       static_cast<qint64>(subject->activity->logons.size()));
        };
      };
}

void LoginsPage::showAttempts() {
  const RowSource source = table().rows().source(table().currentIndex().row());
  m_attemptsJob.cancel();
  if (source.kind != RowSource::Kind::Logon || !subject()) return clearAttempts();
  m_attemptsJob.start([this, subject = subject(), source, byUser = m_by->currentIndex() == kByUser,
                       sort = m_attempts->sortOrder()](const std::atomic<bool>&) {
    const Activity& activity = *subject->activity;
    std::vector<RowNumber> attempts = sameAttempts(activity, subject->selection.logons, source.row, byUser);
    Bars bars = refusals(activity, attempts);
    OrderedTable rows = inOrder(logonsTable(activity, std::move(attempts)), sort);
    return NewestJob::Show([this, source, bars = std::move(bars), rows = std::move(rows)] {
      m_bars->setBars(bars);
      m_attempts->show(rows.table, rows.order);
      const RowSource wanted = m_wantedAttempt.kind == RowSource::Kind::None ? source : m_wantedAttempt;
      if (!m_attempts->currentIndex().isValid()) (void)m_attempts->goTo(wanted);
      m_wantedAttempt = {};
    });
  });
}

void LoginsPage::clearAttempts() {
  m_bars->setBars({});
  m_attempts->show(nullptr, {});
  showLinesOf({});
}

void LoginsPage::goTo(RowSource source) {
  m_wantedAttempt = source;
}

void LoginsPage::askThresholds() {
  QDialog dialog(this);
  dialog.setWindowTitle(QStringLiteral("What stands out"));
  auto* const form = new QFormLayout(&dialog);
  std::array<QSpinBox*, kThresholdLines.size()> boxes{};
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    constexpr int kMost = 100'000;
    boxes[i] = new QSpinBox;
    boxes[i]->setRange(0, kMost);
    boxes[i]->setSpecialValueText(QStringLiteral("off"));
    boxes[i]->setValue(static_cast<int>(m_thresholds.*kThresholdLines[i].value));
    form->addRow(QString::fromLatin1(kThresholdLines[i].label), boxes[i]);
  }
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  if (dialog.exec() != QDialog::Accepted) return;
  for (std::size_t i = 0; i < boxes.size(); ++i)
    m_thresholds.*kThresholdLines[i].value = static_cast<std::uint32_t>(boxes[i]->value());
  emit thresholdsChanged();
  emit asks();
}

void LoginsPage::save(QSettings& settings) const {
  TablePage::save(settings);
  m_attempts->save(settings);
  settings.setValue(QStringLiteral("Logins/attemptsSplitter"), m_attemptsSplitter->saveState());
  for (const ThresholdLine& line : kThresholdLines)
    settings.setValue(thresholdKey(line), m_thresholds.*line.value);
}

void LoginsPage::restore(QSettings& settings) {
  TablePage::restore(settings);
  m_attempts->restore(settings);
  (void)m_attemptsSplitter->restoreState(settings.value(QStringLiteral("Logins/attemptsSplitter")).toByteArray());
  for (const ThresholdLine& line : kThresholdLines)
    m_thresholds.*line.value = settings.value(thresholdKey(line), m_thresholds.*line.value).toUInt();
}

}  // namespace quorvel
