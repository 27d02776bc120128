// A tree as a list of texts.
#pragma once

#include <QAbstractItemModel>
#include <QStringList>

namespace quorvel::test {

/// The rows from top to bottom, a blank in front of those that stand below another one.
inline QStringList rowTexts(const QAbstractItemModel& model) {
  QStringList texts;
  for (int row = 0; row < model.rowCount(); ++row) {
    const QModelIndex parent = model.index(row, 0);
    texts += parent.data().toString();
    for (int child = 0; child < model.rowCount(parent); ++child)
      texts += u' ' + model.index(child, 0, parent).data().toString();
  }
  return texts;
}

}  // namespace quorvel::test
