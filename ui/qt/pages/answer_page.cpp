#include "ui/qt/pages/answer_page.h"

#include <utility>

#include "ui/qt/pages/table_box.h"

namespace quorvel {

void AnswerPage::connectTable(TableBox& table) {
  constexpr LogTime kDay = 24 * 60 * 60;
  connect(&table, &TableBox::sortAsked, this, &AnswerPage::asks);
  connect(&table, &TableBox::wordAsked, this, &AnswerPage::wordAsked);
  connect(&table, &TableBox::sessionAsked, this, &AnswerPage::sessionAsked);
  connect(&table, &TableBox::addressAsked, this, &AnswerPage::addressAsked);
  connect(&table, &TableBox::dayAsked, this, [this](LogTime time) {
    const LogTime from = time - time % kDay;
    emit periodAsked(from, from + kDay);
  });
}

QString AnswerPage::whyEmpty(const Subject& subject, const QString& nothing) {
  if (subject.activity->logs.empty()) return QStringLiteral("The log is being read.");
  if (!subject.scope.isEmpty())
    return QStringLiteral("Nothing here matches the period and the words above. Esc in the box of words clears it.");
  return nothing;
}

OrderedTable inOrder(std::unique_ptr<Table> table, const SortOrder& sort) {
  OrderedTable ordered{std::move(table), {}};
  if (sort.column >= 0 && static_cast<std::size_t>(sort.column) < ordered.table->columns().size())
    ordered.order =
        sortedRows(*ordered.table, static_cast<std::size_t>(sort.column), sort.direction == Qt::DescendingOrder);
  return ordered;
}

}  // namespace quorvel
