#include "ui/qt/pages/background_reading.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

#include "activity/read_activity.h"
#include "log/file_system.h"
#include "log/log_source.h"
#include "ui/qt/pages/log_bytes.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kBetweenSnapshots = std::chrono::milliseconds(300);
constexpr auto kBetweenProgress = std::chrono::milliseconds(50);
constexpr int kAll = 100;

int percentOf(const ReadProgress& progress) {
  if (progress.bytesInAll == 0) return -1;
  return static_cast<int>(std::min(progress.bytesRead, progress.bytesInAll) * kAll / progress.bytesInAll);
}

}  // namespace

/// One reading, on its own thread. It outlives the log it was started for by one block at most.
class BackgroundReading::Run : public std::enable_shared_from_this<Run> {
 public:
  Run(BackgroundReading& owner, std::filesystem::path folder) : m_owner(owner), m_folder(std::move(folder)) {}

  void stop() { m_isStopped = true; }

  void read(FileSystem& files, const std::filesystem::path& path) {
    Status status;
    try {
      status = readAll(files, path);
    } catch (const std::bad_alloc&) {
      status = Error{ErrorCode::DeviceIoError, path, "There is not enough memory to read it."};
    }
    post([run = shared_from_this(), activity = snapshot(), status](BackgroundReading& owner) {
      owner.finish(run, activity, status);
    });
  }

 private:
  Status readAll(FileSystem& files, const std::filesystem::path& path) {
    auto logs = openLogs(files, path, logName(path), {m_folder, [this](std::uint64_t) { return !m_isStopped; }});
    if (!logs.isOk()) return logs.error();
    ReadOptions options;
    options.keepGoing = [this](const ReadProgress& progress) {
      tell(percentOf(progress));
      return !m_isStopped;
    };
    Status status;
    for (const auto& log : logs.value()) {
      if (!m_isStopped) status = m_reader.read(*log, options);
      if (!status.isOk()) break;
    }
    return status;
  }

  void tell(int percent) {
    const auto now = Clock::now();
    if (now - m_lastProgress < kBetweenProgress) return;
    m_lastProgress = now;
    std::shared_ptr<const Activity> activity;
    if (now - m_lastSnapshot >= kBetweenSnapshots) {
      m_lastSnapshot = now;
      activity = snapshot();
    }
    post([run = shared_from_this(), activity, percent](BackgroundReading& owner) {
      owner.take(run, activity, percent);
    });
  }

  std::shared_ptr<const Activity> snapshot() { return std::make_shared<const Activity>(m_reader.snapshot()); }

  template <typename Act>
  void post(Act act) {
    QMetaObject::invokeMethod(
        &m_owner, [&owner = m_owner, act] { act(owner); }, Qt::QueuedConnection);
  }

  BackgroundReading& m_owner;  // which waits for this thread before it goes
  const std::filesystem::path m_folder;
  ActivityReader m_reader;
  std::atomic<bool> m_isStopped = false;
  Clock::time_point m_lastProgress{};
  Clock::time_point m_lastSnapshot{};
};

BackgroundReading::BackgroundReading(FileSystem& files, std::filesystem::path folder, QObject* parent)
    : QObject(parent), m_files(files), m_folder(std::move(folder)) {}

BackgroundReading::~BackgroundReading() {
  if (m_run) m_run->stop();
  if (m_thread.joinable()) m_thread.join();
}

void BackgroundReading::start(const std::filesystem::path& log) {
  if (m_run) m_run->stop();
  m_log = log;
  m_state = State::Reading;
  m_percent = 0;
  m_problem.clear();
  m_activity = std::make_shared<const Activity>();
  m_run = std::make_shared<Run>(*this, m_folder);
  m_thread = std::thread([run = m_run, &files = m_files, log, before = std::move(m_thread)]() mutable {
    if (before.joinable()) before.join();
    run->read(files, log);
  });
  emit activityChanged();
  emit progressed();
}

void BackgroundReading::stop() {
  if (m_state == State::Reading) m_run->stop();
}

void BackgroundReading::take(const std::shared_ptr<Run>& run, std::shared_ptr<const Activity> activity, int percent) {
  if (run != m_run) return;
  m_percent = percent;
  if (activity) {
    m_activity = std::move(activity);
    emit activityChanged();
  }
  emit progressed();
}

void BackgroundReading::finish(const std::shared_ptr<Run>& run, std::shared_ptr<const Activity> activity,
                               const Status& status) {
  if (run != m_run) return;
  m_activity = std::move(activity);
  const bool isWhole = !m_activity->logs.empty() && m_activity->logs.back().isComplete;
  m_state = !status.isOk() ? State::Failed : isWhole ? State::Done : State::Stopped;
  if (isWhole) m_percent = kAll;
  if (!status.isOk()) m_problem = toOneLine(toQString(status.error().sentence()));
  emit activityChanged();
  emit progressed();
  emit ended();
}

}  // namespace quorvel
