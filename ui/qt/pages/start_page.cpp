#include "ui/qt/pages/start_page.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "grammar/grammar.h"
#include "ui/qt/dialog_parts.h"
#include "ui/qt/pages/shown_text.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

const QString kQuestions = QStringLiteral(
    "Open the log of an FTP server to learn\n"
    "  -  who tried to get in, and whether somebody guessed passwords\n"
    "  -  who deleted, renamed or fetched a file, and when\n"
    "  -  what a user or an address did\n"
    "  -  which transfers broke off, and whether they finished later\n"
    "  -  how much went over, by user, address, day, hour and folder\n"
    "The log is only read. Nothing leaves this computer.");

QLabel* makeText(const QString& text) {
  auto* const label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

StartPage::StartPage(QWidget* parent)
    : QWidget(parent), m_problem(makeText({})), m_recent(new QListWidget), m_samples(new QListWidget) {
  setObjectName(QStringLiteral("Start"));
  auto* const inside = new QWidget;
  auto* const column = new QVBoxLayout(inside);
  m_problem->setObjectName(QStringLiteral("startProblem"));
  m_problem->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_problem->setFrameStyle(QFrame::StyledPanel);
  m_problem->setMargin(6);
  m_problem->hide();
  column->addWidget(m_problem);
  column->addWidget(makeText(kQuestions));
  auto* const open = makeDialogButton(QStringLiteral("openLog"), QStringLiteral("&Open a log..."), true, this);
  open->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  connect(open, &QPushButton::clicked, this, &StartPage::openAsked);
  column->addWidget(open);
  auto* const drop = makeText(QStringLiteral("or drop one anywhere on this window"));
  drop->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  drop->setAlignment(Qt::AlignCenter);
  drop->setMinimumHeight(3 * drop->fontMetrics().height());
  column->addWidget(drop);
  addLogs(*column, *m_recent, QStringLiteral("&Last logs"));
  addLogs(*column, *m_samples, QStringLiteral("&Try a sample"));
  QStringList servers;
  for (const Grammar* grammar : grammars())
    servers += plainLine(grammar->title());
  column->addWidget(makeText(QStringLiteral("Logs that are read: ") + servers.join(QStringLiteral("; ")) + u'.'));
  column->addStretch(1);
  auto* const scroll = new QScrollArea;
  scroll->setWidget(inside);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  auto* const whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(scroll);
}

void StartPage::addLogs(QVBoxLayout& column, QListWidget& list, const QString& title) {
  auto* const caption = new QLabel(title);
  caption->setBuddy(&list);
  list.setAccessibleName(QString(title).remove(u'&'));
  list.setObjectName(&list == m_recent ? QStringLiteral("recentLogs") : QStringLiteral("samples"));
  list.setTextElideMode(Qt::ElideMiddle);
  column.addWidget(caption);
  column.addWidget(&list);
  const auto open = [this](const QListWidgetItem* item) { emit logAsked(item->data(Qt::UserRole).toString()); };
  connect(&list, &QListWidget::itemActivated, this, open);
  connect(&list, &QListWidget::itemClicked, this, open);
  caption->hide();
  list.hide();
}

void StartPage::fill(QListWidget& list, const QStringList& logs) {
  list.clear();
  for (const QString& log : logs) {
    if (!QFileInfo(log).isFile()) continue;
    const QString shown = &list == m_samples ? QFileInfo(log).fileName() : QDir::toNativeSeparators(log);
    auto* const item = new QListWidgetItem(toOneLine(shown), &list);
    item->setData(Qt::UserRole, log);
  }
  constexpr int kAir = 6;
  list.setFixedHeight(std::max(1, list.count()) * (list.fontMetrics().height() + kAir) + kAir);
  const auto captions = findChildren<QLabel*>();
  for (QLabel* const label : captions)
    if (label->buddy() == &list) label->setVisible(list.count() > 0);
  list.setVisible(list.count() > 0);
}

void StartPage::setRecent(const QStringList& logs) {
  fill(*m_recent, logs);
}

void StartPage::setSamples(const QStringList& logs) {
  fill(*m_samples, logs);
}

void StartPage::setProblem(const QString& sentence, const QString& firstLines) {
  m_problem->setText(firstLines.isEmpty() ? sentence : sentence + QStringLiteral("\n\n") + firstLines);
  m_problem->setVisible(!sentence.isEmpty());
}

}  // namespace quorvel
