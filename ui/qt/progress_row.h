// The row above the status bar: "Current position:", a number, the progress bar and a button that stops the running
// command. Its place stays free when hidden.
#pragma once

#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <string_view>

class QLabel;
class QProgressBar;
class QPushButton;

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
  /// The button appears after a moment, so that it does not flicker with every short command; it goes at once.
  void showStop(bool visible);

 signals:
  void stopRequested();

 private:
  void arrange();

  QLabel* m_caption;
  QLabel* m_position;
  QProgressBar* m_bar;
  QPushButton* m_stop;
  QTimer m_stopDelay;
  std::int64_t m_minimum = 0;
  std::int64_t m_maximum = 0;
};

}  // namespace quorvel
