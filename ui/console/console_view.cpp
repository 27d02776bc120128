#include "ui/console/console_view.h"

#include <algorithm>

#include "ui/console/plain_line.h"

namespace quorvel {

void ConsoleView::setStatusPanel(StatusPanel panel, std::string_view text) {
  if (panel == StatusPanel::Text) m_status = text;
}

void ConsoleView::showProgress(bool visible) {
  m_progressVisible = visible;
  if (!visible) clearProgress();
  m_out.flush();
}

void ConsoleView::setProgressRange(std::int64_t minimum, std::int64_t maximum) {
  m_minimum = m_value = minimum;
  m_maximum = maximum;
}

void ConsoleView::setPositionLabels(std::string_view caption, std::string_view position) {
  m_position.assign(caption).append(" ").append(position);
}

bool ConsoleView::showMessage(const Message& message) {
  clearProgress();
  m_out << "quorvel: " << plainLine(message.text) << std::endl;
  return true;
}

void ConsoleView::yield() {
  if (m_onYield) m_onYield();
  if (m_drawsProgress && m_progressVisible) drawProgress();
}

std::string ConsoleView::progressText() const {
  const double range = static_cast<double>(m_maximum) - static_cast<double>(m_minimum);
  const double share = range > 0 ? (static_cast<double>(m_value) - static_cast<double>(m_minimum)) / range : 0;
  const int percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100);
  return std::to_string(percent) + " %  " + m_position + "  " + m_status;
}

void ConsoleView::drawProgress() {
  const auto now = std::chrono::steady_clock::now();
  if (now < m_nextDraw) return;
  m_nextDraw = now + kRedrawInterval;
  constexpr std::size_t kColumns = 79;  // one less than a narrow terminal has: the line must not wrap
  const auto text = progressText().substr(0, kColumns);
  clearProgress();
  m_out << plainLine(text) << std::flush;
  m_drawnWidth = text.size();
}

void ConsoleView::clearProgress() {
  if (m_drawnWidth == 0) return;
  m_out << '\r' << std::string(m_drawnWidth, ' ') << '\r';
  m_drawnWidth = 0;
}

}  // namespace quorvel
