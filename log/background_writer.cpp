#include "log/background_writer.h"

#include <system_error>
#include <utility>

namespace quorvel {

BackgroundWriter::~BackgroundWriter() {
  if (!m_thread.joinable()) return;
  {
    const std::lock_guard lock(m_mutex);
    m_isStopping = true;
  }
  m_changed.notify_all();
  m_thread.join();
}

void BackgroundWriter::append(std::string& batch) {
  if (!m_thread.joinable() && !startThread()) {
    if (m_status.isOk()) m_status = m_write(batch);
    return batch.clear();
  }
  {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting < m_batches.size(); });
    if (m_status.isOk()) std::swap(m_batches[(m_next + m_waiting++) % m_batches.size()], batch);
  }
  batch.clear();
  m_changed.notify_all();
}

bool BackgroundWriter::startThread() {
  try {
    m_thread = std::thread([this] { work(); });
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

Status BackgroundWriter::finish() {
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return m_waiting == 0; });
  return m_status;
}

void BackgroundWriter::work() {
  std::unique_lock lock(m_mutex);
  while (true) {
    m_changed.wait(lock, [this] { return m_isStopping || m_waiting > 0; });
    if (m_waiting == 0) return;
    std::string& batch = m_batches[m_next];
    if (m_status.isOk()) {
      lock.unlock();
      Status status = m_write(batch);  // nobody else touches a batch that waits
      lock.lock();
      m_status = std::move(status);
    }
    batch.clear();
    m_next = (m_next + 1) % m_batches.size();
    --m_waiting;
    m_changed.notify_all();
  }
}

}  // namespace quorvel
