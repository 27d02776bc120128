#include "ui/qt/pages/scope_row.h"

#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QCompleter>
#include <QDateTimeEdit>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringListModel>
#include <QStyle>
#include <algorithm>
#include <array>

#include "ui/qt/dialog_parts.h"
#include "ui/qt/pages/shown_text.h"

namespace quorvel {
namespace {

constexpr LogTime kDay = 24 * 60 * 60;

enum Preset {
  kAllOfTheLog,
  kLastDay,
  kLastWeek,
  kLastMonth,
  kOwnPeriod
};

LogTime lengthOf(int preset) {
  constexpr LogTime kDaysOfWeek = 7;
  constexpr LogTime kDaysOfMonth = 30;
  return preset == kLastDay ? kDay : preset == kLastWeek ? kDaysOfWeek * kDay : kDaysOfMonth * kDay;
}

QDateTime toDateTime(LogTime time) {
  return QDateTime::fromSecsSinceEpoch(time, Qt::UTC);
}

LogTime toLogTime(const QDateTime& time) {
  return static_cast<LogTime>(std::clamp<qint64>(time.toSecsSinceEpoch(), 1, UINT32_MAX));
}

QDateTimeEdit* makeTime(const QString& name, const QString& title) {
  auto* const edit = new QDateTimeEdit;
  edit->setObjectName(name);
  edit->setAccessibleName(title);
  edit->setToolTip(title);
  edit->setTimeSpec(Qt::UTC);  // the log's own clock
  edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm"));
  edit->setCalendarPopup(true);
  edit->setKeyboardTracking(false);
  edit->setEnabled(false);
  return edit;
}

/// The last word of a text, from its first letter on.
qsizetype startOfLastWord(const QString& text) {
  return text.lastIndexOf(u' ') + 1;
}

bool isSameButSign(const ScopeWord& a, const ScopeWord& b) {
  return a.field == b.field && a.text == b.text;
}

}  // namespace

ScopeRow::ScopeRow(QWidget* parent)
    : QWidget(parent),
      m_preset(new QComboBox),
      m_from(makeTime(QStringLiteral("scopeFrom"), QStringLiteral("From, on the log's clock"))),
      m_to(makeTime(QStringLiteral("scopeTo"), QStringLiteral("To (not included), on the log's clock"))),
      m_words(new QLineEdit),
      m_completer(new QCompleter(this)),
      m_completions(new QStringListModel(this)),
      m_count(new QLabel),
      m_reading(new QLabel),
      m_stop(makeDialogButton(QStringLiteral("scopeStop"), QStringLiteral("Stop"), false, this)) {
  m_stop->setToolTip(QStringLiteral("Stop reading the log; what was read stays"));
  m_stop->hide();
  connect(m_stop, &QPushButton::clicked, this, &ScopeRow::stopRequested);
  m_count->setObjectName(QStringLiteral("scopeCount"));
  m_reading->setObjectName(QStringLiteral("scopeReading"));
  m_periodPart = makePeriod();
  m_wordsPart = makeWords();
  m_parts = new QBoxLayout(QBoxLayout::LeftToRight, this);
  m_parts->setContentsMargins(0, 0, 0, 0);
  m_parts->addWidget(m_periodPart);
  m_parts->addWidget(m_wordsPart, 1);
}

QSize ScopeRow::minimumSizeHint() const {
  const QSize period = m_periodPart->minimumSizeHint();
  const QSize words = m_wordsPart->minimumSizeHint();
  const bool isWide = m_parts->direction() == QBoxLayout::LeftToRight;
  const int height =
      isWide ? std::max(period.height(), words.height()) : period.height() + words.height() + m_parts->spacing();
  return {std::max(period.width(), words.width()), height};
}

void ScopeRow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const int wanted = m_periodPart->sizeHint().width() + m_wordsPart->sizeHint().width() + m_parts->spacing();
  m_parts->setDirection(width() >= wanted ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

QWidget* ScopeRow::makePeriod() {
  m_preset->setObjectName(QStringLiteral("scopePreset"));
  m_preset->setAccessibleName(QStringLiteral("Period"));
  m_preset->addItems({QStringLiteral("All of the log"), QStringLiteral("Its last day"), QStringLiteral("Its last week"),
                      QStringLiteral("Its last month"), QStringLiteral("From - to")});
  m_preset->setMinimumContentsLength(8);
  m_preset->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  connect(m_preset, &QComboBox::activated, this, &ScopeRow::onPresetChosen);
  connect(m_from, &QDateTimeEdit::dateTimeChanged, this, &ScopeRow::onTimeEdited);
  connect(m_to, &QDateTimeEdit::dateTimeChanged, this, &ScopeRow::onTimeEdited);
  auto* const part = new QWidget;
  auto* const row = new QHBoxLayout(part);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(m_preset);
  row->addWidget(m_from);
  row->addWidget(new QLabel(QStringLiteral("-")));
  row->addWidget(m_to);
  return part;
}

QWidget* ScopeRow::makeWords() {
  m_words->setObjectName(QStringLiteral("scopeWords"));
  m_words->setAccessibleName(QStringLiteral("Words to look for"));
  m_words->setPlaceholderText(QStringLiteral("Words, user:alice ip:10.0. path:/in outcome:failed -not"));
  m_words->setClearButtonEnabled(true);
  m_words->setMinimumWidth(widthOfColumns(*m_words, 14));
  m_mistake = m_words->addAction(style()->standardIcon(QStyle::SP_MessageBoxWarning), QLineEdit::LeadingPosition);
  m_mistake->setVisible(false);
  m_completer->setModel(m_completions);
  m_completer->setCaseSensitivity(Qt::CaseInsensitive);
  m_completer->setWidget(m_words);
  connect(m_completer, QOverload<const QString&>::of(&QCompleter::activated), this, &ScopeRow::onCompleted);
  connect(m_words, &QLineEdit::textEdited, this, [this] {
    onWordsEdited();
    offerCompletions();
  });
  connect(m_words, &QLineEdit::textChanged, this, [this](const QString& text) {
    if (text.isEmpty() && !m_isShowing) onWordsEdited();  // the clear button does not count as editing
  });
  m_words->installEventFilter(this);
  auto* const part = new QWidget;
  auto* const row = new QHBoxLayout(part);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(m_words, 1);
  for (QLabel* const label : {m_count, m_reading}) {
    label->setTextFormat(Qt::PlainText);
    row->addWidget(label);
  }
  row->addWidget(m_stop);
  return part;
}

void ScopeRow::setScope(const Scope& scope) {
  m_scope = scope;
  m_isShowing = true;
  m_words->setText(QString::fromStdString(wordsText(scope.words)));
  m_isShowing = false;
  showMistake({});
  showPeriod();
  emit scopeChanged();
}

void ScopeRow::addWord(const ScopeWord& word) {
  Scope scope = m_scope;
  std::erase_if(scope.words, [&word](const ScopeWord& other) { return isSameButSign(other, word); });
  if (!word.isExcluded)  // "only this" takes the place of another value of the same field
    std::erase_if(scope.words,
                  [&word](const ScopeWord& other) { return other.field == word.field && !other.isExcluded; });
  scope.words.push_back(word);
  setScope(scope);
}

void ScopeRow::setPeriod(LogTime from, LogTime to) {
  Scope scope = m_scope;
  scope.from = from;
  scope.to = to;
  setScope(scope);
}

void ScopeRow::setLogPeriod(LogTime first, LogTime last) {
  if (first == m_first && last == m_last) return;
  m_first = first;
  m_last = last;
  m_from->setEnabled(first != kNoTime);
  m_to->setEnabled(first != kNoTime);
  showPeriod();
}

void ScopeRow::setUsers(const QStringList& users) {
  m_users = users;
}

void ScopeRow::setCount(std::int64_t shown, std::int64_t all) {
  m_count->setText(shown < 0 ? QString() : shownCount(shown) + QStringLiteral(" of ") + shownCount(all));
}

void ScopeRow::showReading(const QString& text, bool isReading) {
  m_reading->setText(text);
  m_stop->setVisible(isReading);
}

void ScopeRow::focusWords() {
  m_words->setFocus(Qt::ShortcutFocusReason);
  m_words->selectAll();
}

void ScopeRow::onPresetChosen(int index) {
  if (index == kOwnPeriod) return m_from->setFocus();
  if (index == kAllOfTheLog || m_last == kNoTime) return setPeriod(kNoTime, kNoTime);
  const LogTime length = lengthOf(index);
  setPeriod(m_last >= length ? m_last - length + 1 : 1, kNoTime);
}

void ScopeRow::onTimeEdited() {
  if (m_isShowing) return;
  setPeriod(toLogTime(m_from->dateTime()), toLogTime(m_to->dateTime()));
}

void ScopeRow::showPeriod() {
  m_isShowing = true;
  const LogTime from = m_scope.from == kNoTime ? m_first : m_scope.from;
  const LogTime to = m_scope.to == kNoTime ? (m_last == kNoTime ? kNoTime : m_last + 1) : m_scope.to;
  m_from->setDateTime(toDateTime(from));
  m_to->setDateTime(toDateTime(to));
  int preset = m_scope.from == kNoTime && m_scope.to == kNoTime ? kAllOfTheLog : kOwnPeriod;
  for (const int length : {kLastDay, kLastWeek, kLastMonth})
    if (m_scope.to == kNoTime && m_scope.from != kNoTime && m_last - lengthOf(length) + 1 == m_scope.from)
      preset = length;
  m_preset->setCurrentIndex(preset);
  m_isShowing = false;
}

void ScopeRow::onWordsEdited() {
  std::vector<ScopeWord> words;
  const std::string text = m_words->text().toStdString();
  const auto mistake = parseWords(text, words);
  showMistake(mistake ? QString::fromStdString(mistake->sentence) : QString());
  if (mistake || words == m_scope.words) return;
  m_scope.words = std::move(words);
  emit scopeChanged();
}

void ScopeRow::showMistake(const QString& sentence) {
  m_mistake->setVisible(!sentence.isEmpty());
  m_mistake->setToolTip(plainToolTip(sentence));
  m_words->setToolTip(plainToolTip(sentence));
  m_words->setAccessibleDescription(sentence);
}

void ScopeRow::offerCompletions() {
  static const QStringList kKeys{QStringLiteral("user:"), QStringLiteral("ip:"), QStringLiteral("path:"),
                                 QStringLiteral("outcome:")};
  const QString text = m_words->text();
  QString word = text.mid(startOfLastWord(text));
  const QString sign = word.startsWith(u'-') ? QStringLiteral("-") : QString();
  QStringList offered;
  for (const QString& key : kKeys)
    offered += sign + key;
  const QString userKey = sign + QStringLiteral("user:");
  if (word.startsWith(userKey, Qt::CaseInsensitive)) {
    offered.clear();
    for (const QString& user : m_users)
      offered += sign + QString::fromStdString(wordsText({{ScopeWord::Field::User, user.toStdString(), false}}));
  }
  m_completions->setStringList(offered);
  m_completer->setCompletionPrefix(word);
  const bool isOnly = m_completer->completionCount() == 1 && m_completer->currentCompletion() == word;
  if (word.isEmpty() || m_completer->completionCount() == 0 || isOnly || m_words->cursorPosition() != text.size())
    return m_completer->popup()->hide();
  m_completer->complete();
}

void ScopeRow::onCompleted(const QString& word) {
  QString text = m_words->text();
  text.truncate(startOfLastWord(text));
  text += word;
  if (!word.endsWith(u':')) text += u' ';
  m_words->setText(text);
  onWordsEdited();
  if (word.endsWith(u':')) offerCompletions();
}

bool ScopeRow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_words && event->type() == QEvent::ShortcutOverride &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && !m_words->text().isEmpty())
    event->accept();
  if (watched == m_words && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && !m_completer->popup()->isVisible()) {
    m_words->clear();
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace quorvel
