// Bars with up to a few parts each, drawn in the colours of the palette.
#pragma once

#include <QColor>
#include <QStringList>
#include <QWidget>
#include <cstdint>
#include <optional>
#include <vector>

#include "report/scope.h"

namespace quorvel {

struct Bar {
  QString label;
  std::vector<std::int64_t> parts;  ///< from below, in the order of Bars::partNames; none negative
  LogTime from = kNoTime;           ///< the bar stands for a period: [from, to)
  LogTime to = kNoTime;
  std::optional<ScopeWord> word;  ///< what it stands for else

  [[nodiscard]] std::int64_t sum() const;
};

struct Bars {
  QString title;
  QStringList partNames;  ///< empty: one part, of what the title says
  bool areBytes = true;
  std::vector<Bar> bars;
};

/// Arrow keys and the pointer choose a bar, with Shift or dragging several; Enter or a click makes them the scope.
class BarChart : public QWidget {
  Q_OBJECT

 public:
  explicit BarChart(QWidget* parent = nullptr);

  void setBars(Bars bars);
  [[nodiscard]] const Bars& bars() const { return m_bars; }
  /// All values as text, one bar a line.
  [[nodiscard]] QString asText() const;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 signals:
  void periodChosen(quorvel::LogTime from, quorvel::LogTime to);
  void wordChosen(const quorvel::ScopeWord& word);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  [[nodiscard]] QRect plot() const;
  [[nodiscard]] QRect column(int bar) const;
  [[nodiscard]] int barAt(const QPoint& place) const;
  [[nodiscard]] QString barText(const Bar& bar) const;
  [[nodiscard]] QString valueText(std::int64_t value) const;
  [[nodiscard]] std::int64_t highest() const;
  void paintLegend(QPainter& painter) const;
  void paintScale(QPainter& painter) const;
  void paintBar(QPainter& painter, int bar, std::int64_t highest) const;
  void paintLabels(QPainter& painter) const;
  void select(int from, int to);
  void choose();

  Bars m_bars;
  int m_from = -1;  // chosen bars, in the order they were chosen; -1: none
  int m_to = -1;
  bool m_isDragging = false;
};

/// Shades for parts that lie beside each other, readable on the palette's base.
[[nodiscard]] QColor partColour(const QPalette& palette, int part);

}  // namespace quorvel
