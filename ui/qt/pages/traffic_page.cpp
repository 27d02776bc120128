#include "ui/qt/pages/traffic_page.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSettings>
#include <QSplitter>
#include <QVBoxLayout>

#include "ui/qt/pages/bar_chart.h"
#include "ui/qt/pages/shown_text.h"
#include "ui/qt/pages/table_box.h"
#include "ui/qt/pages/traffic_bars.h"

namespace quorvel {
namespace {

QComboBox* makeKeys(const QString& name, const QString& title) {
  auto* const keys = new QComboBox;
  keys->setObjectName(name);
  keys->setAccessibleName(title);
  for (const std::string_view key : kTrafficKeyNames)
    keys->addItem(shownText(Cell{CellKind::Name, 0, key}));
  return keys;
}

}  // namespace

TrafficPage::TrafficPage(QWidget* parent)
    : AnswerPage(parent),
      m_first(makeKeys(QStringLiteral("trafficBy"), QStringLiteral("Group by"))),
      m_second(makeKeys(QStringLiteral("trafficAnd"), QStringLiteral("and by"))),
      m_bars(new BarChart),
      m_table(new TableBox(QStringLiteral("TrafficTable"), QStringLiteral("Traffic"))),
      m_splitter(new QSplitter(Qt::Vertical)) {
  setObjectName(QStringLiteral("Traffic"));
  m_first->setCurrentIndex(static_cast<int>(TrafficKey::User));
  m_second->insertItem(0, QStringLiteral("nothing else"));
  m_second->setCurrentIndex(0);
  auto* const choices = new QHBoxLayout;
  auto* const by = new QLabel(QStringLiteral("Group &by"));
  by->setBuddy(m_first);
  auto* const with = new QLabel(QStringLiteral("a&nd"));
  with->setBuddy(m_second);
  for (QWidget* const widget : std::initializer_list<QWidget*>{by, m_first, with, m_second})
    choices->addWidget(widget);
  choices->addStretch(1);
  m_splitter->addWidget(m_bars);
  m_splitter->addWidget(m_table);
  m_splitter->setChildrenCollapsible(false);
  m_splitter->setSizes({45, 55});
  auto* const rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addLayout(choices);
  rows->addWidget(m_splitter, 1);
  connectTable(*m_table);
  for (QComboBox* const box : {m_first, m_second})
    connect(box, &QComboBox::activated, this, &AnswerPage::asks);
  connect(m_bars, &BarChart::periodChosen, this, &AnswerPage::periodAsked);
  connect(m_bars, &BarChart::wordChosen, this, &AnswerPage::wordAsked);
}

std::vector<TrafficKey> TrafficPage::keys() const {
  std::vector<TrafficKey> keys{static_cast<TrafficKey>(m_first->currentIndex())};
  const int second = m_second->currentIndex() - 1;
  if (second >= 0 && second != m_first->currentIndex()) keys.push_back(static_cast<TrafficKey>(second));
  return keys;
}

Inquiry TrafficPage::inquiry() {
  return [this, keys = keys(), sort = m_table->sortOrder()](const std::shared_ptr<const Subject>& subject) {
    OrderedTable rows = inOrder(trafficTable(*subject->activity, subject->selection.actions, keys), sort);
    Bars bars = trafficBars(*rows.table, keys);
    return [this, subject, rows = std::move(rows), bars = std::move(bars)] {
      m_bars->setBars(bars);
      m_table->setEmptyText(whyEmpty(*subject, QStringLiteral("No transfers went over.")));
      m_table->show(rows.table, rows.order);
      emit counted(static_cast<qint64>(subject->selection.actions.size()),
                   static_cast<qint64>(subject->activity->actions.size()));
    };
  };
}

void TrafficPage::save(QSettings& settings) const {
  m_table->save(settings);
  settings.setValue(QStringLiteral("Traffic/by"), m_first->currentIndex());
  settings.setValue(QStringLiteral("Traffic/and"), m_second->currentIndex());
  settings.setValue(QStringLiteral("Traffic/splitter"), m_splitter->saveState());
}

void TrafficPage::restore(QSettings& settings) {
  m_table->restore(settings);
  const auto pick = [&settings](QComboBox& box, const QString& key) {
    const int kept = settings.value(key, box.currentIndex()).toInt();
    if (kept >= 0 && kept < box.count()) box.setCurrentIndex(kept);
  };
  pick(*m_first, QStringLiteral("Traffic/by"));
  pick(*m_second, QStringLiteral("Traffic/and"));
  (void)m_splitter->restoreState(settings.value(QStringLiteral("Traffic/splitter")).toByteArray());
}

}  // namespace quorvel
