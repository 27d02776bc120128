// A log at a glance, and what to look at first.
#pragma once

#include <array>
#include <vector>

#include "report/overview.h"
#include "ui/qt/pages/answer_page.h"

class QGridLayout;
class QLabel;
class QListWidget;
class QPushButton;

namespace quorvel {

class BarChart;
class HourGrid;

class OverviewPage final : public AnswerPage {
  Q_OBJECT

 public:
  explicit OverviewPage(QWidget* parent = nullptr);

  [[nodiscard]] Inquiry inquiry() override;
  void setThresholds(const Thresholds& thresholds) { m_thresholds = thresholds; }
  [[nodiscard]] TableBox* mainTable() override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  enum Tile {
    kSessions,
    kUsers,
    kAddresses,
    kLogons,
    kDownloads,
    kUploads,
    kBroken,
    kLines,
    kTiles
  };
  struct Answer;

  void makeTiles();
  void arrange();
  [[nodiscard]] QWidget* makeTop(TableBox* table, const QString& title);
  void show(const Subject& subject, const Answer& answer);
  void showTiles(const Subject& subject, const OverviewNumbers& numbers);
  void showFindings(const std::vector<Finding>& findings, bool isWhole);
  void setTile(Tile tile, const QString& caption, const QString& value, const QString& exact);
  void openFinding(int row);

  Thresholds m_thresholds;
  QLabel* m_head;
  std::array<QPushButton*, kTiles> m_tiles{};
  QGridLayout* m_grid;
  QListWidget* m_findings;
  BarChart* m_days;
  HourGrid* m_hours;
  TableBox* m_users;
  TableBox* m_addresses;
  TableBox* m_folders;
  QWidget* m_tileRow;
  std::array<QWidget*, 6> m_parts{};
  int m_columns = 0;
  std::vector<Finding> m_shownFindings;
};

}  // namespace quorvel
