#include "log/log_source.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "log/unpack.h"

namespace quorvel {
namespace {

class FileSource final : public LogSource {
 public:
  FileSource(std::unique_ptr<File> file, std::string name, std::uint64_t size, std::int64_t changed, std::string note)
      : m_file(std::move(file)), m_name(std::move(name)), m_size(size), m_changed(changed), m_note(std::move(note)) {}

  [[nodiscard]] std::string name() const override { return m_name; }
  [[nodiscard]] std::uint64_t size() const override { return m_size; }
  [[nodiscard]] std::int64_t changedTime() const override { return m_changed; }
  [[nodiscard]] std::string note() const override { return m_note; }

  [[nodiscard]] bool rewind() override {
    m_offset = 0;
    return true;
  }
  [[nodiscard]] Result<std::size_t> read(std::span<char> buffer) override {
    auto count = m_file->readAt(m_offset, buffer);
    if (count.isOk()) m_offset += count.value();
    return count;
  }

 private:
  std::unique_ptr<File> m_file;
  std::string m_name;
  std::uint64_t m_size;
  std::int64_t m_changed;
  std::string m_note;
  std::uint64_t m_offset = 0;
};

/// Seconds since 1970, UTC; 0 where the system does not tell.
std::int64_t changedTimeOf(FileSystem& files, const std::filesystem::path& path) {
  using namespace std::chrono;
  const auto stamp = files.stamp(path);
  if (!stamp.isOk()) return 0;
  return duration_cast<seconds>(file_clock::to_sys(stamp.value().changed).time_since_epoch()).count();
}

struct OpenedFile {
  std::unique_ptr<File> file;
  std::uint64_t size = 0;
  bool isPacked = false;
};

Result<OpenedFile> openFile(FileSystem& files, const std::filesystem::path& path) {
  auto file = files.open(path, OpenMode::Read);
  if (!file.isOk()) return file.error();
  const auto size = file.value()->size();
  if (!size.isOk()) return size.error();
  std::array<char, kPackedHead> head{};
  const auto count = file.value()->readAt(0, head);
  if (!count.isOk()) return count.error();
  return OpenedFile{std::move(file.value()), size.value(), isPacked({head.data(), count.value()})};
}

}  // namespace

Result<std::vector<std::unique_ptr<LogSource>>> openLogs(FileSystem& files, const std::filesystem::path& path,
                                                         const std::string& name, const UnpackPlace& place) {
  auto opened = openFile(files, path);
  if (!opened.isOk()) return opened.error();
  const std::int64_t changed = changedTimeOf(files, path);
  std::vector<std::unique_ptr<LogSource>> logs;
  if (!opened.value().isPacked) {
    logs.push_back(
        std::make_unique<FileSource>(std::move(opened.value().file), name, opened.value().size, changed, ""));
    return logs;
  }
  auto stream = unpackedStream(std::move(opened.value().file), name, changed);
  if (!stream.isOk()) return stream.error();
  if (stream.value()) {
    logs.push_back(std::move(stream.value()));
    return logs;
  }
  auto unpacked = openForLooking(files, path, name, place);
  if (!unpacked.isOk()) return unpacked.error();
  for (ReadableLog& log : unpacked.value()) {
    const auto size = log.file->size();
    if (!size.isOk()) return size.error();
    logs.push_back(
        std::make_unique<FileSource>(std::move(log.file), log.name, size.value(), changed, std::move(log.note)));
  }
  return logs;
}

Result<std::vector<ReadableLog>> openForLooking(FileSystem& files, const std::filesystem::path& path,
                                                const std::string& name, const UnpackPlace& place) {
  auto opened = openFile(files, path);
  if (!opened.isOk()) return opened.error();
  if (opened.value().isPacked) return unpackAll(files, std::move(opened.value().file), name, place);
  std::vector<ReadableLog> logs;
  logs.push_back({name, std::move(opened.value().file), {}});
  return logs;
}

}  // namespace quorvel
