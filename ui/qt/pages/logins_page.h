// Who tried to get in, and did somebody guess passwords?
#pragma once

#include "report/thresholds.h"
#include "ui/qt/pages/table_page.h"

namespace quorvel {

class BarChart;

/// One row an address or user above; below the attempts of the chosen one, and when they were refused.
class LoginsPage final : public TablePage {
  Q_OBJECT

 public:
  explicit LoginsPage(QWidget* parent = nullptr);

  [[nodiscard]] Inquiry inquiry() override;
  [[nodiscard]] TableBox* mainTable() override;
  void goTo(RowSource source) override;
  void save(QSettings& settings) const override;
  void restore(QSettings& settings) override;
  [[nodiscard]] const Thresholds& thresholds() const { return m_thresholds; }

 signals:
  void thresholdsChanged();

 private:
  [[nodiscard]] QWidget* makeAttempts();
  void askThresholds();
  void showAttempts();
  void clearAttempts();

  Thresholds m_thresholds;
  QComboBox* m_by;
  TableBox* m_attempts;
  BarChart* m_bars;
  QSplitter* m_attemptsSplitter;
  NewestJob m_attemptsJob;
  RowSource m_wantedAttempt;
};

}  // namespace quorvel
