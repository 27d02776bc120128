// The raw log: every line as it stands, and what was set aside.
#pragma once

#include <memory>
#include <vector>

#include "log/line_index.h"
#include "ui/qt/pages/answer_page.h"
#include "ui/qt/pages/find_in_log.h"
#include "ui/qt/pages/newest_job.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSplitter;

namespace quorvel {

class LogView;

class LogPage final : public AnswerPage {
  Q_OBJECT

 public:
  explicit LogPage(QWidget* parent = nullptr);

  [[nodiscard]] Inquiry inquiry() override;
  void setLog(const std::shared_ptr<LogBytes>& log) override;
  [[nodiscard]] TableBox* mainTable() override { return m_shapes; }
  void focusFind() override;
  void findNext() override { goToHit(false); }
  void findPrevious() override { goToHit(true); }
  void save(QSettings& settings) const override;
  void restore(QSettings& settings) override;

  /// From 1, as everywhere. The line is shown as soon as it is known.
  void goToPosition(std::uint64_t position);
  void focusGoTo();
  [[nodiscard]] LogView& view() { return *m_view; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  [[nodiscard]] QWidget* makeHead();
  void openLog();
  void noteGrown();
  void startSearch();
  void showSearch();
  void goToHit(bool backwards);
  void goToText();
  void goToTime(LogTime time);

  std::shared_ptr<LogBytes> m_log;
  std::shared_ptr<const File> m_file;
  std::shared_ptr<const LineIndex> m_index;
  std::shared_ptr<const Activity> m_activity;
  NewestJob m_indexJob;
  NewestJob m_timeJob;
  FindInLog m_search;
  QString m_searched;  // what the hits are of; empty: nothing
  bool m_wantsFirstHit = false;
  std::uint64_t m_wantedPosition = 0;  // to be shown when it is known; 0: none
  QLineEdit* m_find;
  QCheckBox* m_isRegex;
  QLabel* m_hits;
  QPushButton* m_stop;
  QLineEdit* m_goTo;
  TableBox* m_shapes;
  LogView* m_view;
  QSplitter* m_splitter;
};

}  // namespace quorvel
