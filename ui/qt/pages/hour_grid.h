// When it is busy: seven rows of weekdays, 24 columns of hours, the more the stronger.
#pragma once

#include <QWidget>
#include <array>
#include <cstdint>

namespace quorvel {

/// Values by weekday (Monday first) and hour.
using HourValues = std::array<std::array<std::int64_t, 24>, 7>;

/// Arrow keys and the pointer tell the value of a cell.
class HourGrid : public QWidget {
  Q_OBJECT

 public:
  explicit HourGrid(const QString& title, QWidget* parent = nullptr);

  /// Bytes.
  void setValues(const HourValues& values);
  /// The busiest hours as text.
  [[nodiscard]] QString asText() const;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  [[nodiscard]] QRect cell(int day, int hour) const;
  [[nodiscard]] QString cellText(int day, int hour) const;

  QString m_title;
  HourValues m_values{};
  int m_day = 0;
  int m_hour = 0;
};

}  // namespace quorvel
