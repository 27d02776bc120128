// A page with a table above and the lines of the chosen row's session below.
#pragma once

#include <QHBoxLayout>
#include <functional>

#include "ui/qt/pages/answer_page.h"
#include "ui/qt/pages/lines_box.h"
#include "ui/qt/pages/table_box.h"

class QComboBox;
class QSplitter;

namespace quorvel {

class TablePage : public AnswerPage {
  Q_OBJECT

 public:
  /// name: of its settings.
  TablePage(const QString& name, const QString& title, QWidget* parent = nullptr);

  void setLog(const std::shared_ptr<LogBytes>& log) override { m_lines->setLog(log); }
  [[nodiscard]] TableBox* mainTable() override { return m_table; }
  void focusFind() override { m_lines->focusFind(); }
  void findNext() override { m_lines->findNext(); }
  void findPrevious() override { m_lines->findPrevious(); }
  void goTo(RowSource source) override;
  void save(QSettings& settings) const override;
  void restore(QSettings& settings) override;

 protected:
  [[nodiscard]] TableBox& table() { return *m_table; }
  [[nodiscard]] LinesBox& lines() { return *m_lines; }
  [[nodiscard]] QSplitter& splitter() { return *m_splitter; }
  /// Shows the rows, and why there are none.
  void showRows(const std::shared_ptr<const Subject>& subject, const OrderedTable& rows, const QString& nothing);
  [[nodiscard]] const std::shared_ptr<const Subject>& subject() const { return m_subject; }
  /// A choice above the table, kept in the settings; a change asks anew.
  QComboBox* addChoice(const QString& name, const QString& label, const QStringList& options);
  void addButton(const QString& name, const QString& text, const std::function<void()>& act);
  /// The lines of a row of another table of the page.
  void showLinesOf(RowSource source);

 private:
  void addToHead(QWidget* widget);

  QString m_name;
  QHBoxLayout* m_choices;
  TableBox* m_table;
  LinesBox* m_lines;
  QSplitter* m_splitter;
  std::shared_ptr<const Subject> m_subject;
  RowSource m_wanted;  // to become current when it is shown
};

}  // namespace quorvel
