// Writes on a second thread, so that making what is written and writing it go on at the same time.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "log/result.h"

namespace quorvel {

class BackgroundWriter {
 public:
  /// Writes a batch; may change it. Runs on the second thread, or on the caller's where the system has none left.
  using Write = std::function<Status(std::string& batch)>;

  explicit BackgroundWriter(Write write) : m_write(std::move(write)) {}
  BackgroundWriter(const BackgroundWriter&) = delete;
  BackgroundWriter& operator=(const BackgroundWriter&) = delete;
  /// Writes what was handed over.
  ~BackgroundWriter();

  /// Takes the content of batch, which is empty afterwards. Waits where too many batches are still to be written. Does
  /// nothing more after a failure.
  void append(std::string& batch);
  /// Waits until everything is written; returns the first failure.
  Status finish();

 private:
  /// False when the system has no thread left: batches are then written as they come.
  [[nodiscard]] bool startThread();
  void work();

  const Write m_write;
  std::mutex m_mutex;  ///< guards the members below
  std::condition_variable m_changed;
  std::array<std::string, 3> m_batches;  ///< a ring
  std::size_t m_next = 0;                ///< index of the batch being written, or written next
  std::size_t m_waiting = 0;             ///< batches from there on that are not written yet
  Status m_status;
  bool m_isStopping = false;
  std::thread m_thread;  ///< started by the first batch
};

}  // namespace quorvel
