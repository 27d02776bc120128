// Work in the background of which only the newest counts.
#pragma once

#include <QObject>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace quorvel {

/// One thread that runs jobs one at a time. A job that waits gives way to a newer one; one that runs is finished, and
/// what it found is shown, unless it was cancelled. Used by one thread, which runs the interface.
class NewestJob final : public QObject {
  Q_OBJECT

 public:
  /// Runs on the interface's thread.
  using Show = std::function<void()>;
  /// Runs on the other thread, and comes to an end soon when the flag becomes true. May return nothing.
  using Job = std::function<Show(const std::atomic<bool>& isCancelled)>;

  explicit NewestJob(QObject* parent = nullptr);
  /// Cancels and waits.
  ~NewestJob() override;

  void start(Job job);
  /// Nothing of what was started until now is shown.
  void cancel();
  /// Called by the running job: shows something before it has finished.
  void post(Show show);
  /// Something waits, runs, or is about to be shown.
  [[nodiscard]] bool isBusy() const { return m_busy > 0; }

 signals:
  /// A job ran out of memory; nothing is shown of it.
  void ranOutOfMemory();

 private:
  struct Task {
    Job job;
    std::shared_ptr<std::atomic<bool>> isCancelled;
  };

  void work();
  void perform(const Task& task);

  std::mutex m_mutex;  // of the next three
  std::condition_variable m_hasTask;
  std::optional<Task> m_next;
  bool m_isEnding = false;
  std::shared_ptr<std::atomic<bool>> m_isCancelled;  // of all jobs since the last cancel()
  int m_busy = 0;
  std::shared_ptr<std::atomic<bool>> m_runningFlag;  // of the job that runs; of the other thread
  std::thread m_thread;                              // runs from the first job on
};

}  // namespace quorvel
