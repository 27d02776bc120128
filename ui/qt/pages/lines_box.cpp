#include "ui/qt/pages/lines_box.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QVBoxLayout>

#include "report/lines_of_session.h"
#include "ui/qt/dialog_parts.h"
#include "ui/qt/pages/log_bytes.h"
#include "ui/qt/pages/shown_text.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

constexpr qsizetype kMostMarks = 10'000;

QString shownLines(const LinesOfSession& lines) {
  constexpr qsizetype kLongestLine = 10'000;  // a text box needs a second to draw a line of a million characters
  QString text;
  if (lines.lacksFirst) text += QStringLiteral("... earlier lines are left out ...\n");
  for (const LineOfSession& line : lines.lines) {
    QString one = plainLine(line.text);
    if (one.size() > kLongestLine) one = one.left(kLongestLine) + QStringLiteral("...");
    text += one + u'\n';
  }
  if (lines.lacksLast) text += QStringLiteral("... later lines are left out ...\n");
  text.chop(1);
  return text;
}

int lineAt(const LinesOfSession& lines, std::uint64_t position) {
  for (std::size_t i = 0; i < lines.lines.size(); ++i)
    if (lines.lines[i].position == position) return static_cast<int>(i) + (lines.lacksFirst ? 1 : 0);
  return -1;
}

Result<LinesOfSession> readLines(LogBytes& log, const Activity& activity, const RowPlace& place,
                                 const std::atomic<bool>& isCancelled) {
  const auto file = log.file(activity.logs[activity.sessions[place.session].log].name, isCancelled);
  if (!file.isOk()) return file.error();
  return readLinesOfSession(*file.value(), activity, place.session, place.position, {}, isCancelled);
}

}  // namespace

RowPlace placeOf(const Activity& activity, RowSource source) {
  switch (source.kind) {
    case RowSource::Kind::Logon:
      return {activity.logons[source.row].session, activity.logons[source.row].position};
    case RowSource::Kind::Action:
      return {activity.actions[source.row].session, activity.actions[source.row].position};
    case RowSource::Kind::Session:
      return {source.row, activity.sessions[source.row].position};
    case RowSource::Kind::None:
      break;
  }
  return {};
}

LinesBox::LinesBox(QWidget* parent)
    : QWidget(parent), m_find(new QLineEdit), m_hits(new QLabel), m_text(new QPlainTextEdit) {
  m_text->setObjectName(QStringLiteral("sessionLines"));
  m_text->setAccessibleName(QStringLiteral("Lines of the session"));
  m_text->setReadOnly(true);
  m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
  m_text->setTabChangesFocus(true);
  m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  m_text->setPlaceholderText(QStringLiteral("Choose a row to see its session's lines of the log."));
  auto* const rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(makeHead());
  rows->addWidget(m_text, 1);
}

QWidget* LinesBox::makeHead() {
  m_find->setObjectName(QStringLiteral("findInLines"));
  m_find->setAccessibleName(QStringLiteral("Find in the lines"));
  m_find->setPlaceholderText(QStringLiteral("Find in the lines (Ctrl+F)"));
  m_find->setClearButtonEnabled(true);
  m_find->installEventFilter(this);
  m_hits->setTextFormat(Qt::PlainText);
  m_hits->setObjectName(QStringLiteral("findHits"));
  connect(m_find, &QLineEdit::textChanged, this, &LinesBox::markHits);
  auto* const save = makeDialogButton(QStringLiteral("saveLines"), QStringLiteral("Save lines..."), false, this);
  auto* const tree =
      makeDialogButton(QStringLiteral("openInTree"), QStringLiteral("Open in session tree"), false, this);
  connect(save, &QPushButton::clicked, this, [this] { emit saveRequested(text()); });
  connect(tree, &QPushButton::clicked, this, [this] { emit treeRequested(m_session); });
  m_buttons = new QWidget;
  auto* const buttons = new QHBoxLayout(m_buttons);
  buttons->setContentsMargins(0, 0, 0, 0);
  buttons->addWidget(save);
  buttons->addWidget(tree);
  m_buttons->setEnabled(false);
  auto* const head = new QWidget;
  auto* const row = new QHBoxLayout(head);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(m_find, 1);
  row->addWidget(m_hits);
  row->addStretch(1);
  row->addWidget(m_buttons);
  return head;
}

QString LinesBox::text() const {
  return m_text->toPlainText();
}

void LinesBox::setLog(const std::shared_ptr<LogBytes>& log) {
  m_log = log;
  m_job.cancel();
  m_session = m_shown = 0;
  m_buttons->setEnabled(false);
  showNotice({});
}

void LinesBox::show(const std::shared_ptr<const Activity>& activity, RowSource source) {
  m_job.cancel();
  if (source.kind == RowSource::Kind::None || !m_log) {
    m_session = m_shown = 0;
    m_buttons->setEnabled(false);
    return showNotice({});
  }
  const RowPlace place = placeOf(*activity, source);
  const std::uint64_t session = activity->sessions[place.session].position;
  if (session == m_session && place.position == m_shown) return;  // the table was replaced, the row is the same
  m_session = session;
  m_shown = place.position;
  m_job.start([this, log = m_log, activity, place](const std::atomic<bool>& isCancelled) {
    auto lines = readLines(*log, *activity, place, isCancelled);
    return NewestJob::Show([this, lines = std::move(lines), place] {
      if (!lines.isOk()) return showNotice(toOneLine(toQString(lines.error().sentence())));
      showLines(lines.value(), place.position);
    });
  });
}

void LinesBox::showLines(const LinesOfSession& lines, std::uint64_t position) {
  m_text->setPlainText(shownLines(lines));
  m_ownLine = lineAt(lines, position);
  m_buttons->setEnabled(true);
  markHits();
  if (m_ownLine < 0) return;
  m_text->setTextCursor(QTextCursor(m_text->document()->findBlockByNumber(m_ownLine)));
  m_text->centerCursor();
}

void LinesBox::showNotice(const QString& text) {
  m_ownLine = -1;
  m_text->setPlainText(text);
  m_hits->clear();
}

void LinesBox::focusFind() {
  m_find->setFocus(Qt::ShortcutFocusReason);
  m_find->selectAll();
}

void LinesBox::find(bool backwards) {
  const QString wanted = m_find->text();
  if (wanted.isEmpty()) return focusFind();
  const auto direction = backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  if (m_text->find(wanted, direction)) return;
  QTextCursor again(m_text->document());
  if (backwards) again.movePosition(QTextCursor::End);
  again = m_text->document()->find(wanted, again, direction);
  if (!again.isNull()) m_text->setTextCursor(again);
}

void LinesBox::markHits() {
  QList<QTextEdit::ExtraSelection> marks;
  if (m_ownLine >= 0) {
    QTextEdit::ExtraSelection own;
    own.cursor = QTextCursor(m_text->document()->findBlockByNumber(m_ownLine));
    own.format.setBackground(palette().color(QPalette::AlternateBase));
    own.format.setProperty(QTextFormat::FullWidthSelection, true);
    own.format.setFontWeight(QFont::Bold);
    marks += own;
  }
  qsizetype hits = 0;
  const QString wanted = m_find->text();
  QTextCursor hit(m_text->document());
  while (!wanted.isEmpty() && hits < kMostMarks) {
    hit = m_text->document()->find(wanted, hit);
    if (hit.isNull()) break;
    QTextEdit::ExtraSelection mark;
    mark.cursor = hit;
    mark.format.setBackground(palette().color(QPalette::Highlight));
    mark.format.setForeground(palette().color(QPalette::HighlightedText));
    marks += mark;
    ++hits;
  }
  m_text->setExtraSelections(marks);
  if (wanted.isEmpty()) return m_hits->clear();
  m_hits->setText(hits == 1 ? QStringLiteral("1 hit") : shownCount(hits) + QStringLiteral(" hits"));
}

bool LinesBox::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_find && event->type() == QEvent::KeyPress) {
    const auto* const press = static_cast<QKeyEvent*>(event);
    if (press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter) {
      find(press->modifiers().testFlag(Qt::ShiftModifier));
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace quorvel
