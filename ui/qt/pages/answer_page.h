// What every page that answers a question is to the window around it.
#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "report/scope.h"
#include "report/table.h"
#include "ui/qt/pages/answering.h"
#include "ui/qt/pages/page_name.h"

class QSettings;

namespace quorvel {

class LogBytes;
class TableBox;

/// A table put in order on the other thread.
struct OrderedTable {
  std::shared_ptr<const Table> table;
  std::vector<RowNumber> order;  ///< empty: the table's own
};

/// Asks, shows and says what the reader wants; where that leads is the window's to know.
class AnswerPage : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  /// What the page asks now; asked again whenever the log, the scope or what it said last changes.
  [[nodiscard]] virtual Inquiry inquiry() = 0;
  /// Another log was opened.
  virtual void setLog(const std::shared_ptr<LogBytes>& log) { (void)log; }
  /// The table to export and print, as it is shown: the one the reader is in, else the first. Null: none.
  [[nodiscard]] virtual TableBox* mainTable() { return nullptr; }
  /// Ctrl+F, F3, Shift+F3.
  virtual void focusFind() {}
  virtual void findNext() {}
  virtual void findPrevious() {}
  /// Makes a row current as soon as it is shown.
  virtual void goTo(RowSource source) { (void)source; }
  virtual void save(QSettings& settings) const { (void)settings; }
  virtual void restore(QSettings& settings) { (void)settings; }

 signals:
  /// inquiry() has changed.
  void asks();
  /// Rows shown, and rows there are; negative: nothing to count.
  void counted(qint64 shown, qint64 all);
  void wordAsked(const quorvel::ScopeWord& word);
  void periodAsked(quorvel::LogTime from, quorvel::LogTime to);
  void pageAsked(quorvel::PageName page, const std::vector<quorvel::ScopeWord>& words);
  void sessionAsked(quorvel::RowSource source);
  void addressAsked(const QString& address);
  void saveLinesAsked(const QString& lines);
  void treeAsked(quint64 position);
  /// A line of the log, by its position.
  void lineAsked(quint64 position);

 protected:
  /// Hands on what the reader asks for in a table of the page.
  void connectTable(TableBox& table);
  /// Why there are no rows: nothing read yet, the scope, or there is nothing of the kind.
  [[nodiscard]] static QString whyEmpty(const Subject& subject, const QString& nothing);
};

struct SortOrder;
/// Takes a while for a long table: on the other thread.
[[nodiscard]] OrderedTable inOrder(std::unique_ptr<Table> table, const SortOrder& sort);

}  // namespace quorvel
