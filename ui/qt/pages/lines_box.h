// The lines of the session that a row of a table belongs to, with a find box above them.
#pragma once

#include <QWidget>
#include <memory>

#include "activity/activity.h"
#include "report/table.h"
#include "ui/qt/pages/newest_job.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace quorvel {

class LogBytes;
struct LinesOfSession;

class LinesBox : public QWidget {
  Q_OBJECT

 public:
  explicit LinesBox(QWidget* parent = nullptr);

  void setLog(const std::shared_ptr<LogBytes>& log);
  /// Reads the lines of the row's session and marks the row's own. Nothing is shown for a row without a source.
  void show(const std::shared_ptr<const Activity>& activity, RowSource source);
  void focusFind();
  void findNext() { find(false); }
  void findPrevious() { find(true); }
  /// All lines that are shown.
  [[nodiscard]] QString text() const;

 signals:
  void saveRequested(const QString& lines);
  /// Position of the session's first line.
  void treeRequested(quint64 position);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] QWidget* makeHead();
  void showLines(const LinesOfSession& lines, std::uint64_t position);
  void showNotice(const QString& text);
  void find(bool backwards);
  void markHits();

  std::shared_ptr<LogBytes> m_log;
  NewestJob m_job;
  QLineEdit* m_find;
  QLabel* m_hits;
  QWidget* m_buttons;
  QPlainTextEdit* m_text;
  std::uint64_t m_session = 0;  // position of the session shown; 0: none
  std::uint64_t m_shown = 0;    // position of the row's line
  int m_ownLine = -1;
};

/// The session of a row, and where the row's own line is.
struct RowPlace {
  RowNumber session = 0;
  std::uint64_t position = 0;
};
[[nodiscard]] RowPlace placeOf(const Activity& activity, RowSource source);

}  // namespace quorvel
