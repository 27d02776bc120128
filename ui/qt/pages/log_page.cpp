#include "ui/qt/pages/log_page.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>
#include <utility>

#include "log/line_walk.h"
#include "report/raw_tables.h"
#include "ui/qt/dialog_parts.h"
#include "ui/qt/pages/log_bytes.h"
#include "ui/qt/pages/log_view.h"
#include "ui/qt/pages/shown_text.h"
#include "ui/qt/pages/table_box.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

/// "line 12"
std::optional<std::uint64_t> lineNumber(QString text) {
  if (!text.startsWith(QStringLiteral("line"), Qt::CaseInsensitive)) return std::nullopt;
  bool isNumber = false;
  const qulonglong number = text.mid(4).trimmed().toULongLong(&isNumber);
  return isNumber && number > 0 ? std::optional<std::uint64_t>(number - 1) : std::nullopt;
}

/// The first line behind an offset that has a time (from the offset itself where that is 0); the offset is `to` where
/// there is none.
struct TimedLine {
  std::uint64_t offset = 0;
  LogTime time = kNoTime;
};
TimedLine timedLineBehind(const File& file, LineParser& parser, std::uint64_t offset, std::uint64_t to,
                          const std::atomic<bool>& isCancelled) {
  TimedLine found{to, kNoTime};
  bool isCut = offset > 0;
  (void)walkLines(file, offset, to, isCancelled, [&](std::uint64_t start, std::string_view line) {
    if (std::exchange(isCut, false)) return true;
    const LogTime time = parser.parse(line).time;
    if (time != kNoTime) found = {start, time};
    return time == kNoTime;
  });
  return found;
}

/// The offset of the first line that is not before a time, by halves; lines without a time count as what follows.
std::uint64_t offsetOfTime(const File& file, LineParser& parser, LogTime time, const std::atomic<bool>& isCancelled) {
  const auto size = file.size();
  const std::uint64_t end = size.isOk() ? size.value() : 0;
  std::uint64_t low = 0;
  std::uint64_t high = end;
  while (low < high && !isCancelled) {
    const std::uint64_t middle = low + (high - low) / 2;
    const TimedLine line = timedLineBehind(file, parser, middle, end, isCancelled);
    const bool isBefore = line.time != kNoTime && line.time < time;
    if (isBefore) low = middle + 1;
    if (!isBefore) high = middle;
  }
  return timedLineBehind(file, parser, low, end, isCancelled).offset;
}

}  // namespace

LogPage::LogPage(QWidget* parent)
    : AnswerPage(parent),
      m_find(new QLineEdit),
      m_isRegex(new QCheckBox(QStringLiteral("&Regular expression"))),
      m_hits(new QLabel),
      m_stop(makeDialogButton(QStringLiteral("stopFind"), QStringLiteral("Stop"), false, this)),
      m_goTo(new QLineEdit),
      m_shapes(new TableBox(QStringLiteral("ShapesTable"), QStringLiteral("Shapes of lines set aside"))),
      m_view(new LogView),
      m_splitter(new QSplitter(Qt::Horizontal)) {
  setObjectName(QStringLiteral("Log"));
  m_view->setObjectName(QStringLiteral("logView"));
  m_shapes->setMinimumWidth(fontMetrics().averageCharWidth() * 12);
  m_splitter->addWidget(m_shapes);
  m_splitter->addWidget(m_view);
  m_splitter->setStretchFactor(1, 1);
  m_splitter->setSizes({fontMetrics().averageCharWidth() * 36, fontMetrics().averageCharWidth() * 110});
  auto* const rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(makeHead());
  rows->addWidget(m_splitter, 1);
  connectTable(*m_shapes);
  connect(m_shapes, &TableBox::currentRowChanged, this, [this](int row) {
    const int position = m_shapes->rows().columnNamed("position");
    if (row < 0 || position < 0 || !m_shapes->hasFocus()) return;
    goToPosition(m_shapes->rows().index(row, position).data(TableModel::kSortRole).toULongLong());
  });
  connect(&m_search, &FindInLog::progressed, this, &LogPage::showSearch);
  connect(&m_search, &FindInLog::ended, this, &LogPage::showSearch);
}

QWidget* LogPage::makeHead() {
  m_find->setObjectName(QStringLiteral("findInLog"));
  m_find->setAccessibleName(QStringLiteral("Find in the log"));
  m_find->setPlaceholderText(QStringLiteral("Find in the log (Ctrl+F, then F3)"));
  m_find->setClearButtonEnabled(true);
  m_find->setMinimumWidth(widthOfColumns(*m_find, 14));
  m_isRegex->setObjectName(QStringLiteral("isRegex"));
  m_hits->setTextFormat(Qt::PlainText);
  m_hits->setObjectName(QStringLiteral("logHits"));
  m_goTo->setObjectName(QStringLiteral("goTo"));
  m_goTo->setAccessibleName(QStringLiteral("Go to a position, line or time"));
  m_goTo->setToolTip(QStringLiteral("A position in bytes, \"line 12\", or a time: 2005-06-06 08:03"));
  m_goTo->setPlaceholderText(QStringLiteral("Go to position, line 12, time"));
  m_goTo->setMinimumWidth(widthOfColumns(*m_goTo, 14));
  m_stop->hide();
  connect(m_find, &QLineEdit::returnPressed, this, [this] { goToHit(false); });
  connect(m_find, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (text.isEmpty()) startSearch();
  });
  connect(m_stop, &QPushButton::clicked, this, [this] { m_search.stop(); });
  connect(m_goTo, &QLineEdit::returnPressed, this, &LogPage::goToText);
  auto* const head = new QWidget;
  auto* const row = new QHBoxLayout(head);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(m_find, 2);
  row->addWidget(m_isRegex);
  row->addWidget(m_hits);
  row->addWidget(m_stop);
  row->addStretch(1);
  row->addWidget(m_goTo, 1);
  return head;
}

void LogPage::setLog(const std::shared_ptr<LogBytes>& log) {
  m_search.stop();
  m_indexJob.cancel();
  m_timeJob.cancel();
  m_log = log;
  m_file.reset();
  m_index.reset();
  m_activity.reset();
  m_searched.clear();
  m_hits->clear();
  m_wantedPosition = 0;
  m_view->clear();
  if (isVisible()) openLog();
}

void LogPage::showEvent(QShowEvent* event) {
  AnswerPage::showEvent(event);
  if (m_log && !m_file && !m_indexJob.isBusy()) openLog();
}

/// The lines are counted when the page is first looked at.
void LogPage::openLog() {
  if (!m_log) return;
  m_view->setNotice(QStringLiteral("The log is being opened."));
  const bool isKnown = m_activity && !m_activity->logs.empty();
  const std::string name = isKnown ? m_activity->logs.front().name : logName(m_log->path());
  const TextEncoding encoding = isKnown ? m_activity->logs.front().encoding : TextEncoding::Utf8;
  m_indexJob.start([this, log = m_log, name, encoding](const std::atomic<bool>& isCancelled) -> NewestJob::Show {
    const auto file = log->file(name, isCancelled);
    if (!file.isOk()) {
      return [this, text = toOneLine(toQString(file.error().sentence()))] { m_view->setNotice(text); };
    }
    auto parser = LineParser::of(*file.value(), isCancelled);
    auto index = std::make_shared<LineIndex>();
    m_indexJob.post(
        [this, file = file.value(), index, encoding, parser = parser.isOk() ? parser.value() : LineParser()] {
          m_file = file;
          m_index = index;
          m_view->show(file, index, parser, encoding);
        });
    (void)index->build(*file.value(), [this, &isCancelled](std::uint64_t bytes) {
      constexpr std::uint64_t kBetweenReports = 32 << 20;
      if (bytes % kBetweenReports == 0) m_indexJob.post([this] { noteGrown(); });
      return !isCancelled;
    });
    return [this] {
      m_view->setNotice(QStringLiteral("The log is empty."));
      noteGrown();
      if (m_wantedPosition > 0) goToPosition(std::exchange(m_wantedPosition, 0));
    };
  });
}

void LogPage::noteGrown() {
  m_view->noteGrown();
}

Inquiry LogPage::inquiry() {
  return [this, sort = m_shapes->sortOrder()](const std::shared_ptr<const Subject>& subject) {
    OrderedTable rows = inOrder(setAsideTable(*subject->activity), sort);
    return [this, subject, rows = std::move(rows)] {
      m_activity = subject->activity;
      if (!m_activity->logs.empty()) m_view->setEncoding(m_activity->logs.front().encoding);
      m_shapes->setEmptyText(subject->activity->logs.empty() ? QStringLiteral("The log is being read.")
                                                             : QStringLiteral("No line was set aside."));
      m_shapes->show(rows.table, rows.order);
      emit counted(-1, -1);
    };
  };
}

void LogPage::goToPosition(std::uint64_t position) {
  m_wantedPosition = position;
  if (!m_file || m_indexJob.isBusy()) return;
  m_wantedPosition = 0;
  m_view->goToOffset(position - std::min<std::uint64_t>(position, 1));
}

void LogPage::focusFind() {
  m_find->setFocus(Qt::ShortcutFocusReason);
  m_find->selectAll();
}

void LogPage::focusGoTo() {
  m_goTo->setFocus(Qt::ShortcutFocusReason);
  m_goTo->selectAll();
}

void LogPage::startSearch() {
  m_search.stop();
  m_searched = m_find->text();
  m_view->setHits({});
  m_hits->clear();
  if (m_searched.isEmpty() || !m_file) return;
  if (m_isRegex->isChecked()) {
    const QRegularExpression expression(m_searched);
    if (!expression.isValid()) return m_hits->setText(expression.errorString());
  }
  m_wantsFirstHit = true;
  m_search.start(m_file, m_searched, m_isRegex->isChecked(), m_view->currentOffset());
  showSearch();
}

void LogPage::showSearch() {
  const auto& hits = m_search.hits();
  m_view->setHits(hits);
  m_stop->setVisible(m_search.isRunning());
  QString text = hits.size() == 1 ? QStringLiteral("1 hit")
                                  : shownCount(static_cast<qint64>(hits.size())) + QStringLiteral(" hits");
  if (hits.size() >= FindInLog::kMostHits) text.prepend(QStringLiteral("more than "));
  if (m_search.isRunning()) text += QStringLiteral(", %1 %").arg(m_search.percent());
  m_hits->setText(text);
  if (!m_wantsFirstHit || hits.empty()) return;
  m_wantsFirstHit = false;
  const auto first = std::lower_bound(hits.begin(), hits.end(), m_view->currentOffset());
  m_view->goToOffset(first == hits.end() ? hits.front() : *first);
}

void LogPage::goToHit(bool backwards) {
  if (m_find->text().isEmpty()) return focusFind();
  if (m_find->text() != m_searched) return startSearch();
  const auto& hits = m_search.hits();
  if (hits.empty()) return;
  const std::uint64_t here = m_view->currentOffset();
  if (backwards) {
    const auto hit = std::lower_bound(hits.begin(), hits.end(), here);
    return m_view->goToOffset(hit == hits.begin() ? hits.back() : *(hit - 1));
  }
  // Behind the line, which may hold several hits.
  const std::uint64_t line = m_view->currentLine();
  auto hit = std::upper_bound(hits.begin(), hits.end(), here);
  while (hit != hits.end() && m_index->lineAt(*m_file, *hit).isOk() && m_index->lineAt(*m_file, *hit).value() == line)
    ++hit;
  m_view->goToOffset(hit == hits.end() ? hits.front() : *hit);
}

void LogPage::goToText() {
  const QString text = m_goTo->text().trimmed();
  if (const auto line = lineNumber(text)) return m_view->goToLine(*line);
  bool isNumber = false;
  const qulonglong position = text.toULongLong(&isNumber);
  if (isNumber) return goToPosition(position);
  QString when = text;
  constexpr int kDayLength = 10;
  if (when.size() > kDayLength && when[kDayLength] == u' ') when[kDayLength] = u'T';
  constexpr int kMinutesLength = 16;
  if (when.size() == kMinutesLength) when += QStringLiteral(":00");
  const LogTime last = m_activity && !m_activity->logs.empty() ? m_activity->logs.back().ledger.last : kNoTime;
  if (const auto time = parseWhen(when.toStdString(), last, false)) return goToTime(*time);
  m_hits->setText(QStringLiteral("Neither a position, a line nor a time."));
}

void LogPage::goToTime(LogTime time) {
  if (!m_file) return;
  m_timeJob.cancel();
  m_timeJob.start([this, file = m_file, time](const std::atomic<bool>& isCancelled) -> NewestJob::Show {
    auto parser = LineParser::of(*file, isCancelled);
    if (!parser.isOk()) return {};
    const std::uint64_t offset = offsetOfTime(*file, parser.value(), time, isCancelled);
    return [this, offset] { goToPosition(offset + 1); };
  });
}

void LogPage::save(QSettings& settings) const {
  m_shapes->save(settings);
  settings.setValue(QStringLiteral("Log/splitter"), m_splitter->saveState());
}

void LogPage::restore(QSettings& settings) {
  m_shapes->restore(settings);
  (void)m_splitter->restoreState(settings.value(QStringLiteral("Log/splitter")).toByteArray());
}

}  // namespace quorvel
