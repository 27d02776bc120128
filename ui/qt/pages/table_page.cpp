#include "ui/qt/pages/table_page.h"

#include <QComboBox>
#include <QLabel>
#include <QSettings>
#include <QSplitter>
#include <QVBoxLayout>

#include "ui/qt/dialog_parts.h"

namespace quorvel {

TablePage::TablePage(const QString& name, const QString& title, QWidget* parent)
    : AnswerPage(parent),
      m_name(name),
      m_choices(new QHBoxLayout),
      m_table(new TableBox(name + QStringLiteral("Table"), title)),
      m_lines(new LinesBox),
      m_splitter(new QSplitter(Qt::Vertical)) {
  constexpr int kTableShare = 60;
  constexpr int kLinesShare = 40;
  setObjectName(name);
  m_choices->addStretch(1);
  m_splitter->addWidget(m_table);
  m_splitter->addWidget(m_lines);
  m_splitter->setStretchFactor(0, kTableShare);
  m_splitter->setStretchFactor(1, kLinesShare);
  m_splitter->setChildrenCollapsible(false);
  m_splitter->setSizes({kTableShare, kLinesShare});
  auto* const rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addLayout(m_choices);
  rows->addWidget(m_splitter, 1);
  connectTable(*m_table);
  connect(m_table, &TableBox::currentRowChanged, this, [this](int row) { showLinesOf(m_table->rows().source(row)); });
  connect(m_table, &TableBox::rowActivated, this, [this](int row) {
    const RowSource source = m_table->rows().source(row);
    if (source.kind != RowSource::Kind::None) emit sessionAsked(source);
  });
  connect(m_lines, &LinesBox::saveRequested, this, &AnswerPage::saveLinesAsked);
  connect(m_lines, &LinesBox::treeRequested, this, &AnswerPage::treeAsked);
}

QComboBox* TablePage::addChoice(const QString& name, const QString& label, const QStringList& options) {
  auto* const choice = new QComboBox;
  choice->setObjectName(name);
  choice->addItems(options);
  auto* const caption = new QLabel(label);
  caption->setBuddy(choice);
  choice->setAccessibleName(QString(label).remove(u'&'));
  addToHead(caption);
  addToHead(choice);
  connect(choice, &QComboBox::activated, this, &AnswerPage::asks);
  return choice;
}

void TablePage::addButton(const QString& name, const QString& text, const std::function<void()>& act) {
  auto* const button = makeDialogButton(name, text, false, this);
  connect(button, &QPushButton::clicked, this, act);
  addToHead(button);
}

void TablePage::addToHead(QWidget* widget) {
  m_choices->insertWidget(m_choices->count() - 1, widget);  // in front of the stretch
}

void TablePage::showRows(const std::shared_ptr<const Subject>& subject, const OrderedTable& rows,
                         const QString& nothing) {
  m_subject = subject;
  m_table->setEmptyText(whyEmpty(*subject, nothing));
  m_table->show(rows.table, rows.order);
  if (m_wanted.kind != RowSource::Kind::None && m_table->goTo(m_wanted)) m_wanted = {};
}

void TablePage::showLinesOf(RowSource source) {
  if (m_subject) m_lines->show(m_subject->activity, source);
}

void TablePage::goTo(RowSource source) {
  m_wanted = source;
}

void TablePage::save(QSettings& settings) const {
  m_table->save(settings);
  settings.setValue(m_name + QStringLiteral("/splitter"), m_splitter->saveState());
  for (const QComboBox* const choice : findChildren<QComboBox*>())
    settings.setValue(m_name + u'/' + choice->objectName(), choice->currentIndex());
}

void TablePage::restore(QSettings& settings) {
  m_table->restore(settings);
  (void)m_splitter->restoreState(settings.value(m_name + QStringLiteral("/splitter")).toByteArray());
  for (QComboBox* const choice : findChildren<QComboBox*>()) {
    const int kept = settings.value(m_name + u'/' + choice->objectName(), choice->currentIndex()).toInt();
    if (kept >= 0 && kept < choice->count()) choice->setCurrentIndex(kept);
  }
}

}  // namespace quorvel
