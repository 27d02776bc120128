// The hourglass pointer of the whole program.
#pragma once

#include <QApplication>

namespace quorvel {

inline void showBusyPointer(bool busy) {
  const bool isBusy = QApplication::overrideCursor() != nullptr;
  if (busy && !isBusy) QApplication::setOverrideCursor(Qt::WaitCursor);
  if (!busy && isBusy) QApplication::restoreOverrideCursor();
}

/// Gives the normal pointer back while a dialog waits for an answer.
class NormalPointer {
 public:
  NormalPointer() : m_wasBusy(QApplication::overrideCursor() != nullptr) { showBusyPointer(false); }
  ~NormalPointer() { showBusyPointer(m_wasBusy); }
  NormalPointer(const NormalPointer&) = delete;
  NormalPointer& operator=(const NormalPointer&) = delete;

 private:
  bool m_wasBusy;
};

}  // namespace quorvel
