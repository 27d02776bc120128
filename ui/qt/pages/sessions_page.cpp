#include "ui/qt/pages/sessions_page.h"

#include "report/raw_tables.h"

namespace quorvel {

SessionsPage::SessionsPage(QWidget* parent)
    : TablePage(QStringLiteral("Sessions"), QStringLiteral("Sessions"), parent) {}

Inquiry SessionsPage::inquiry() {
  return [this, sort = table().sortOrder()](const std::shared_ptr<const Subject>& subject) {
    OrderedTable rows = inOrder(sessionsTable(*subject->activity, subject->selection.sessions), sort);
    return [this, subject, rows = std::move(rows)] {
      showRows(subject, rows, QStringLiteral("There are no sessions in this log."));
      emit counted(static_cast<qint64>(subject->selection.sessions.size()),
                   static_cast<qint64>(subject->activity->sessions.size()));
    };
  };
}

}  // namespace quorvel
