#include "core/background_writer.h"

#include <new>
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
    m_changed.wait(lock, [this] { return m_batch.empty(); });
    if (m_status.isOk()) std::swap(m_batch, batch);
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
  m_changed.wait(lock, [this] { return m_batch.empty(); });
  return m_status;
}

void BackgroundWriter::work() {
  std::unique_lock lock(m_mutex);
  while (true) {
    m_changed.wait(lock, [this] { return m_isStopping || !m_batch.empty(); });
    if (m_batch.empty()) return;
    lock.unlock();
    Status status = writeBatch();
    lock.lock();
    if (m_status.isOk()) m_status = std::move(status);
    m_batch.clear();
    m_changed.notify_all();
  }
}

/// Nobody else touches a batch that is not empty.
Status BackgroundWriter::writeBatch() {
  try {
    return m_write(m_batch);
  } catch (const std::bad_alloc&) {
    return Error{ErrorCode::OutOfMemory, {}};
  }
}

}  // namespace quorvel
