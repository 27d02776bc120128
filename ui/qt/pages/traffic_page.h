// How much went over, by whom, whence, when?
#pragma once

#include <vector>

#include "report/traffic.h"
#include "ui/qt/pages/answer_page.h"

class QComboBox;
class QSplitter;

namespace quorvel {

class BarChart;

class TrafficPage final : public AnswerPage {
  Q_OBJECT

 public:
  explicit TrafficPage(QWidget* parent = nullptr);

  [[nodiscard]] Inquiry inquiry() override;
  [[nodiscard]] TableBox* mainTable() override { return m_table; }
  void save(QSettings& settings) const override;
  void restore(QSettings& settings) override;
  /// The keys chosen, one or two.
  [[nodiscard]] std::vector<TrafficKey> keys() const;

 private:
  QComboBox* m_first;
  QComboBox* m_second;
  BarChart* m_bars;
  TableBox* m_table;
  QSplitter* m_splitter;
};

}  // namespace quorvel
