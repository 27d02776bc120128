#include "cli/log_reading.h"

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <system_error>

#include "activity/log_set.h"
#include "activity/read_activity.h"
#include "log/log_source.h"
#include "log/text.h"
#include "log/unpack.h"

namespace quorvel {
namespace {

class StandardInput final : public LogSource {
 public:
  /// head: what was read of it already.
  explicit StandardInput(std::string head) : m_head(std::move(head)) {}
  [[nodiscard]] std::string name() const override { return "-"; }
  [[nodiscard]] std::uint64_t size() const override { return 0; }
  [[nodiscard]] Result<std::size_t> read(std::span<char> buffer) override {
    if (!m_head.empty()) {
      const std::size_t count = m_head.copy(buffer.data(), buffer.size());
      m_head.erase(0, count);
      return count;
    }
    const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), stdin);
    if (count < buffer.size() && std::ferror(stdin) != 0) return Error{ErrorCode::DeviceIoError, "standard input"};
    return count;
  }

 private:
  std::string m_head;
};

class Reading {
 public:
  using Sources = std::vector<std::unique_ptr<LogSource>>;

  Reading(FileSystem& files, const LogChoice& choice, const std::function<void(const std::string&)>& tell,
          const std::function<bool()>& isInterrupted)
      : m_files(files), m_choice(choice), m_tell(tell), m_isInterrupted(isInterrupted) {
    std::error_code error;
    m_unpack = {std::filesystem::temp_directory_path(error), [this](std::uint64_t) { return goesOn(); }};
  }

  LogReading read() {
    Sources set;
    for (const std::string& log : m_choice.logs) {
      if (!goesOn()) break;
      Sources sources = open(log);
      const bool isOneLog = m_choice.withSiblings || sources.size() > 1;
      if (m_choice.isSet) {
        std::move(sources.begin(), sources.end(), std::back_inserter(set));
      } else if (isOneLog) {
        readSet(std::move(sources));
      } else {
        for (const auto& source : sources)
          read(*source, {});
      }
    }
    if (m_choice.isSet) readSet(std::move(set));
    m_result.activity = m_reader.snapshot();
    return std::move(m_result);
  }

 private:
  /// All logs that an argument stands for.
  Sources open(const std::string& log) {
    if (log == "-") return openInput();
    std::error_code error;
    const auto path = pathFromBytes(log);
    if (m_choice.isSet && std::filesystem::is_directory(path, error)) return openAll(filesOfFolder(path));
    if (m_choice.withSiblings) return openAll(rotatedSiblings(path));
    return openFile(path, path);
  }
  Sources openAll(const std::vector<std::filesystem::path>& paths) {
    Sources all;
    for (const auto& path : paths) {
      Sources sources = openFile(path, path);
      std::move(sources.begin(), sources.end(), std::back_inserter(all));
    }
    return all;
  }
  Sources openFile(const std::filesystem::path& path, const std::filesystem::path& shown) {
    const std::string name = pathBytes(m_choice.logs.size() == 1 ? shown.filename() : shown);
    return take(openLogs(m_files, path, name, m_unpack), name, path);
  }

  /// What is packed is put by first: where it ends, its end tells.
  Sources openInput() {
    std::string head(kPackedHead, '\0');
    head.resize(std::fread(head.data(), 1, head.size(), stdin));
    if (isPacked(head)) {
      auto kept = keepInput(head);
      if (kept.isOk()) return take(openLogs(m_files, std::move(kept.value()), "-", m_unpack), "-", "-");
      fail(kept.error().sentence());
      return {};
    }
    Sources input;
    input.push_back(std::make_unique<StandardInput>(std::move(head)));
    m_arguments[input.back().get()] = "-";
    return input;
  }
  Result<std::unique_ptr<File>> keepInput(std::string piece) {
    auto file = m_files.openTemporary(m_unpack.folder);
    if (!file.isOk()) return file.error();
    for (std::uint64_t bytes = 0; !piece.empty() && goesOn();) {
      if (const Status written = file.value()->writeAt(bytes, piece); !written.isOk()) return written.error();
      bytes += piece.size();
      piece.resize(1024 * 1024);
      piece.resize(std::fread(piece.data(), 1, piece.size(), stdin));
    }
    return file;
  }

  Sources take(Result<Sources> opened, const std::string& name, const std::filesystem::path& path) {
    if (!opened.isOk()) {
      fail(opened.error().sentence());
      return {};
    }
    if (opened.value().empty()) fail(name + ": there is no log in it.");
    for (const auto& source : opened.value())
      m_arguments[source.get()] = pathBytes(path);
    return std::move(opened.value());
  }

  void readSet(Sources sources) {
    auto ordered = orderSet(std::move(sources));
    if (!ordered.isOk()) return fail(ordered.error().sentence());
    bool continues = false;
    for (const SetFile& file : ordered.value()) {
      ReadOptions options;
      options.continuesSet = continues;
      options.repeatedBytes = file.repeatedBytes;
      continues = read(*file.source, options) || continues;
      if (file.repeatedBytes > 0)
        m_tell(file.source->name() + ": its first " + std::to_string(file.repeatedBytes) +
               " bytes stand in another file of the log too and were taken once.");
    }
  }

  bool read(LogSource& source, ReadOptions options) {
    if (!goesOn()) return false;
    options.keepGoing = [this](const ReadProgress&) { return goesOn(); };
    const Status done = m_reader.read(source, options);
    if (!done.isOk()) fail(done.error().sentence());
    if (const std::string note = source.note(); !note.empty()) fail(note);
    m_result.arguments.resize(m_reader.snapshot().logs.size(), m_arguments[&source]);
    return done.isOk();
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
  const LogChoice& m_choice;
  const std::function<void(const std::string&)>& m_tell;
  const std::function<bool()>& m_isInterrupted;
  UnpackPlace m_unpack;
  std::map<const LogSource*, std::string> m_arguments;  ///< where each log lies
  ActivityReader m_reader;
  LogReading m_result;
};

}  // namespace

LogReading readLogs(FileSystem& files, const LogChoice& choice, const std::function<void(const std::string&)>& tell,
                    const std::function<bool()>& isInterrupted) {
  return Reading(files, choice, tell, isInterrupted).read();
}

}  // namespace quorvel
