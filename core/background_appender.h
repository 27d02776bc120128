// Appends to a file on a second thread, so that making text and writing it go on at the same time.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "core/file_system.h"
#include "core/result.h"

namespace quorvel {

class BackgroundAppender {
 public:
  /// The file must outlive the appender, and nobody else may write to it meanwhile.
  explicit BackgroundAppender(File& file) : m_file(file) {}
  BackgroundAppender(const BackgroundAppender&) = delete;
  BackgroundAppender& operator=(const BackgroundAppender&) = delete;
  /// Writes what was handed over.
  ~BackgroundAppender();

  /// Takes the content of batch, which is empty afterwards. Waits for the batch before it to be written. Does nothing
  /// more after a failure.
  void append(std::string& batch);
  /// Waits until everything is in the file; returns the first failure.
  Status finish();

 private:
  /// False when the system has no thread left: batches are then written as they come.
  [[nodiscard]] bool startThread();
  void work();
  [[nodiscard]] Status writeBatch();

  File& m_file;
  std::mutex m_mutex;  ///< guards the members below
  std::condition_variable m_changed;
  std::string m_batch;  ///< being written, or empty
  Status m_status;
  bool m_isStopping = false;
  std::thread m_thread;  ///< started by the first batch
};

}  // namespace quorvel
