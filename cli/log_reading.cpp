#include "cli/log_reading.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "activity/read_activity.h"
#include "log/log_source.h"

namespace quorvel {
namespace {

class StandardInput final : public LogSource {
 public:
  [[nodiscard]] std::string name() const override { return "-"; }
  [[nodiscard]] std::uint64_t size() const override { return 0; }
  [[nodiscard]] Result<std::size_t> read(std::span<char> buffer) override {
    const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), stdin);
    if (count < buffer.size() && std::ferror(stdin) != 0) return Error{ErrorCode::DeviceIoError, "standard input"};
    return count;
  }
};

class Reading {
 public:
  Reading(FileSystem& files, const std::function<void(const std::string&)>& tell,
          const std::function<bool()>& isInterrupted)
      : m_files(files), m_tell(tell), m_isInterrupted(isInterrupted) {}

  LogReading read(const std::vector<std::string>& logs) {
    for (const std::string& log : logs) {
      if (m_result.isInterrupted) break;
      const std::string name = logs.size() == 1 ? withoutFolder(log) : log;
      for (const auto& source : open(log, name))
        read(*source, log);
    }
    m_result.activity = m_reader.snapshot();
    return std::move(m_result);
  }

 private:
  static std::string withoutFolder(const std::string& log) {
    const auto name = std::filesystem::path(log).filename().u8string();
    return {name.begin(), name.end()};
  }

  std::vector<std::unique_ptr<LogSource>> open(const std::string& log, const std::string& name) {
    std::vector<std::unique_ptr<LogSource>> sources;
    if (log == "-") {
      sources.push_back(std::make_unique<StandardInput>());
      return sources;
    }
    std::error_code error;
    auto opened = openLogs(m_files, log, name,
                           {std::filesystem::temp_directory_path(error), [this](std::uint64_t) { return goesOn(); }});
    if (!opened.isOk()) {
      fail(opened.error().sentence());
      return sources;
    }
    return std::move(opened.value());
  }

  void read(LogSource& source, const std::string& log) {
    if (m_result.isInterrupted) return;
    ReadOptions options;
    options.keepGoing = [this](const ReadProgress&) { return goesOn(); };
    if (const Status done = m_reader.read(source, options); !done.isOk()) fail(done.error().sentence());
    m_result.arguments.resize(m_reader.snapshot().logs.size(), log);
  }

  bool goesOn() {
    if (m_isInterrupted && m_isInterrupted()) m_result.isInterrupted = true;
    return !m_result.isInterrupted;
  }
  void fail(const std::string& sentence) {
    m_result.hasFailed = true;
    m_tell(sentence);
  }

  FileSystem& m_files;
  const std::function<void(const std::string&)>& m_tell;
  const std::function<bool()>& m_isInterrupted;
  ActivityReader m_reader;
  LogReading m_result;
};

}  // namespace

LogReading readLogs(FileSystem& files, const std::vector<std::string>& logs,
                    const std::function<void(const std::string&)>& tell, const std::function<bool()>& isInterrupted) {
  return Reading(files, tell, isInterrupted).read(logs);
}

}  // namespace quorvel
