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
  FileSource(std::shared_ptr<File> file, std::string name, std::uint64_t size, std::int64_t changed, std::string note)
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
  std::shared_ptr<File> m_file;
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

Result<bool> isPackedFile(const File& file) {
  std::array<char, kPackedHead> head{};
  const auto count = file.readAt(0, head);
  if (!count.isOk()) return count.error();
  return isPacked({head.data(), count.value()});
}

}  // namespace

Result<std::vector<std::unique_ptr<LogSource>>> openLogs(FileSystem& files, const std::filesystem::path& path,
                                                         const std::string& name, const UnpackPlace& place) {
  auto file = files.open(path, OpenMode::Read);
  if (!file.isOk()) return file.error();
  return openLogs(files, std::move(file.value()), name, place, changedTimeOf(files, path));
}

Result<std::vector<std::unique_ptr<LogSource>>> openLogs(FileSystem& files, std::shared_ptr<File> file,
                                                         const std::string& name, const UnpackPlace& place,
                                                         std::int64_t changedTime) {
  const auto packed = isPackedFile(*file);
  if (!packed.isOk()) return packed.error();
  std::vector<std::unique_ptr<LogSource>> logs;
  const auto add = [&](std::shared_ptr<File> log, const std::string& logName, std::string note) -> Status {
    const auto size = log->size();
    if (!size.isOk()) return size.error();
    logs.push_back(std::make_unique<FileSource>(std::move(log), logName, size.value(), changedTime, std::move(note)));
    return {};
  };
  if (!packed.value()) {
    if (const Status added = add(std::move(file), name, ""); !added.isOk()) return added.error();
    return logs;
  }
  auto stream = unpackedStream(file, name, changedTime);
  if (!stream.isOk()) return stream.error();
  if (stream.value()) {
    logs.push_back(std::move(stream.value()));
    return logs;
  }
  auto unpacked = unpackAll(files, std::move(file), name, place);
  if (!unpacked.isOk()) return unpacked.error();
  for (ReadableLog& log : unpacked.value()) {
    if (const Status added = add(std::move(log.file), log.name, std::move(log.note)); !added.isOk())
      return added.error();
  }
  return logs;
}

Result<std::vector<ReadableLog>> openForLooking(FileSystem& files, const std::filesystem::path& path,
                                                const std::string& name, const UnpackPlace& place) {
  auto file = files.open(path, OpenMode::Read);
  if (!file.isOk()) return file.error();
  const auto packed = isPackedFile(*file.value());
  if (!packed.isOk()) return packed.error();
  if (packed.value()) return unpackAll(files, std::move(file.value()), name, place);
  std::vector<ReadableLog> logs;
  logs.push_back({name, std::move(file.value()), {}});
  return logs;
}

}  // namespace quorvel
