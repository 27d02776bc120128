// The row above the status bar: "Current position:", a number and the progress bar. Its place stays free when hidden.
#pragma once

#include <QWidget>
#include <cstdint>
#include <string_view>

class QLabel;
class QProgressBar;

namespace quorvel {

class ProgressRow : public QWidget {
  Q_OBJECT

 public:
  explicit ProgressRow(QWidget* parent = nullptr);

  void showBar(bool visible);
  void setRange(std::int64_t minimum, std::int64_t maximum);
  void setValue(std::int64_t value);
  void showLabels(bool visible);
  void setLabels(std::string_view caption, std::string_view position);

 private:
  QLabel* m_caption;
  QLabel* m_position;
  QProgressBar* m_bar;
  std::int64_t m_minimum = 0;
  std::int64_t m_maximum = 0;
};

}  // namespace quorvel
