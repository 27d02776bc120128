#include "core/background_appender.h"

#include <utility>

namespace quorvel {

BackgroundAppender::~BackgroundAppender() {
  if (!m_thread.joinable()) return;
  {
    const std::lock_guard lock(m_mutex);
    m_isStopping = true;
  }
  m_changed.notify_all();
  m_thread.join();
}

void BackgroundAppender::append(std::string& batch) {
  if (!m_thread.joinable()) m_thread = std::thread([this] { work(); });
  {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_batch.empty(); });
    if (m_status.isOk()) std::swap(m_batch, batch);
  }
  batch.clear();
  m_changed.notify_all();
}

Status BackgroundAppender::finish() {
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return m_batch.empty(); });
  return m_status;
}

void BackgroundAppender::work() {
  std::unique_lock lock(m_mutex);
  while (true) {
    m_changed.wait(lock, [this] { return m_isStopping || !m_batch.empty(); });
    if (m_batch.empty()) return;
    lock.unlock();
    Status status = m_file.appendLines(m_batch);  // nobody else touches a batch that is not empty
    lock.lock();
    if (m_status.isOk()) m_status = std::move(status);
    m_batch.clear();
    m_changed.notify_all();
  }
}

}  // namespace quorvel
