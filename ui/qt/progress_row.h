// The row above the status bar: "Current position:", a number, the progress bar and a button that stops the running
// command. Its place stays free when hidden. What a command did is told in the place of the bar.
#pragma once

#include <QTimer>
#include <QWidget>
#include <cstdint>
#include <string_view>

class QLabel;
class QProgressBar;
class QPushButton;

namespace quorvel {

class OneLineLabel;

class ProgressRow : public QWidget {
  Q_OBJECT

 public:
  explicit ProgressRow(QWidget* parent = nullptr);

  void showBar(bool visible);
  void setRange(std::int64_t minimum, std::int64_t maximum);
  void setValue(std::int64_t value);
  void showLabels(bool visible);
  void setLabels(std::string_view caption, std::string_view position);
  /// One line in the place of the bar; an empty one takes it away.
  void showResult(std::string_view text);
  /// The button appears after a moment, so that it does not flicker with every short command; it goes at once.
  void showStop(bool visible);

 signals:
  void stopRequested();

 private:
  void arrange();

  QLabel* m_caption;
  QLabel* m_position;
  QProgressBar* m_bar;
  OneLineLabel* m_result;
  QPushButton* m_stop;
  QTimer m_stopDelay;
  std::int64_t m_minimum = 0;
  std::int64_t m_maximum = 0;
};

}  // namespace quorvel
