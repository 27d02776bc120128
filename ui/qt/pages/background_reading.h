// Reads the open log in the background and hands over what is known so far.
#pragma once

#include <QObject>
#include <atomic>
#include <filesystem>
#include <memory>
#include <thread>

#include "activity/activity.h"
#include "log/result.h"

namespace quorvel {

class FileSystem;

/// Used by the thread that runs the interface; reading never makes it wait.
class BackgroundReading : public QObject {
  Q_OBJECT

 public:
  enum class State {
    None,  ///< no log yet
    Reading,
    Stopped,  ///< the reader pressed Stop; what was read stays
    Done,
    Failed
  };

  /// files must outlive the reading; folder: for what has to be unpacked.
  BackgroundReading(FileSystem& files, std::filesystem::path folder, QObject* parent = nullptr);
  /// Stops and waits for the block that is being read.
  ~BackgroundReading() override;

  /// Reads a log from its beginning; another one that is being read is given up.
  void start(const std::filesystem::path& log);
  void stop();

  [[nodiscard]] State state() const { return m_state; }
  [[nodiscard]] const std::filesystem::path& log() const { return m_log; }
  /// 0 to 100; -1 where the log's size is not known.
  [[nodiscard]] int percent() const { return m_percent; }
  /// What was read so far; never null.
  [[nodiscard]] const std::shared_ptr<const Activity>& activity() const { return m_activity; }
  /// With Failed: why, as a sentence.
  [[nodiscard]] const QString& problem() const { return m_problem; }

 signals:
  /// More is known, three times a second at most.
  void activityChanged();
  void progressed();
  /// Reading ended, whatever way.
  void ended();

 private:
  class Run;

  void take(const std::shared_ptr<Run>& run, std::shared_ptr<const Activity> activity, int percent);
  void finish(const std::shared_ptr<Run>& run, std::shared_ptr<const Activity> activity, const Status& status);

  FileSystem& m_files;
  std::filesystem::path m_folder;
  std::filesystem::path m_log;
  State m_state = State::None;
  int m_percent = 0;
  QString m_problem;
  std::shared_ptr<const Activity> m_activity = std::make_shared<const Activity>();
  std::shared_ptr<Run> m_run;
  std::thread m_thread;
};

}  // namespace quorvel
