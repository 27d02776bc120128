#include "ui/qt/pages/transfers_page.h"

#include <QComboBox>
#include <algorithm>

#include "report/transfers.h"

namespace quorvel {
namespace {

qint64 transfersIn(const Activity& activity) {
  qint64 count = 0;
  for (std::size_t i = 0; i < activity.actions.size(); ++i)
    count += activity.actions[i].isTransfer() ? 1 : 0;
  return count;
}

}  // namespace

TransfersPage::TransfersPage(QWidget* parent)
    : TablePage(QStringLiteral("Transfers"), QStringLiteral("Transfers"), parent),
      m_choice(addChoice(QStringLiteral("show"), QStringLiteral("Sho&w"),
                         {QStringLiteral("Broken ones"), QStringLiteral("All")})) {}

Inquiry TransfersPage::inquiry() {
  const bool showsAll = m_choice->currentIndex() == 1;
  return [this, showsAll, sort = table().sortOrder()](const std::shared_ptr<const Subject>& subject) {
    const TransferChoice choice = showsAll ? TransferChoice::All : TransferChoice::Broken;
    OrderedTable rows = inOrder(transfersTable(*subject->activity, subject->selection.actions, choice), sort);
    const qint64 all = transfersIn(*subject->activity);
    return [this, subject, showsAll, all, rows = std::move(rows)] {
      showRows(subject, rows,
               showsAll ? QStringLiteral("This log tells of no transfers.")
                        : QStringLiteral("No transfer broke off. \"All\" shows the others."));
      emit counted(static_cast<qint64>(rows.table->rowCount()), all);
    };
  };
}

}  // namespace quorvel
