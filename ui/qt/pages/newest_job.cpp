#include "ui/qt/pages/newest_job.h"

#include <new>
#include <utility>

namespace quorvel {

NewestJob::NewestJob(QObject* parent) : QObject(parent), m_isCancelled(std::make_shared<std::atomic<bool>>(false)) {}

NewestJob::~NewestJob() {
  m_isCancelled->store(true);
  {
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
  }
  m_hasTask.notify_one();
  if (m_thread.joinable()) m_thread.join();
}

void NewestJob::start(Job job) {
  {
    const std::lock_guard lock(m_mutex);
    if (!m_next) ++m_busy;
    m_next = Task{std::move(job), m_isCancelled};
  }
  if (!m_thread.joinable()) m_thread = std::thread([this] { work(); });
  m_hasTask.notify_one();
}

void NewestJob::cancel() {
  m_isCancelled->store(true);
  m_isCancelled = std::make_shared<std::atomic<bool>>(false);
}

void NewestJob::post(Show show) {
  QMetaObject::invokeMethod(
      this,
      [flag = m_runningFlag, show = std::move(show)] {
        if (!*flag) show();
      },
      Qt::QueuedConnection);
}

void NewestJob::work() {
  std::unique_lock lock(m_mutex);
  while (true) {
    m_hasTask.wait(lock, [this] { return m_isEnding || m_next; });
    if (m_isEnding) return;
    const Task task = *std::exchange(m_next, std::nullopt);
    lock.unlock();
    perform(task);
    lock.lock();
  }
}

void NewestJob::perform(const Task& task) {
  Show show;
  bool isOutOfMemory = false;
  m_runningFlag = task.isCancelled;
  try {
    if (!*task.isCancelled) show = task.job(*task.isCancelled);
  } catch (const std::bad_alloc&) {
    isOutOfMemory = true;
  }
  QMetaObject::invokeMethod(
      this,
      [this, show = std::move(show), isCancelled = task.isCancelled, isOutOfMemory] {
        --m_busy;
        if (*isCancelled) return;
        if (isOutOfMemory) emit ranOutOfMemory();
        if (show) show();
      },
      Qt::QueuedConnection);
}

}  // namespace quorvel
