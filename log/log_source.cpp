#include "log/log_source.h"

#include <chrono>
#include <utility>

namespace quorvel {
namespace {

class FileSource final : public LogSource {
 public:
  FileSource(std::unique_ptr<File> file, std::string name, std::uint64_t size, std::int64_t changed)
      : m_file(std::move(file)), m_name(std::move(name)), m_size(size), m_changed(changed) {}

  [[nodiscard]] std::string name() const override { return m_name; }
  [[nodiscard]] std::uint64_t size() const override { return m_size; }
  [[nodiscard]] std::int64_t changedTime() const override { return m_changed; }

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
  std::uint64_t m_offset = 0;
};

std::int64_t secondsSince1970(std::filesystem::file_time_type time) {
  using namespace std::chrono;
  return duration_cast<seconds>(file_clock::to_sys(time).time_since_epoch()).count();
}

}  // namespace

Result<std::unique_ptr<LogSource>> openLogSource(FileSystem& files, const std::filesystem::path& path,
                                                 std::string name) {
  auto file = files.open(path, OpenMode::Read);
  if (!file.isOk()) return file.error();
  const auto size = file.value()->size();
  if (!size.isOk()) return size.error();
  const auto stamp = files.stamp(path);
  const std::int64_t changed = stamp.isOk() ? secondsSince1970(stamp.value().changed) : 0;
  return std::unique_ptr<LogSource>(
      std::make_unique<FileSource>(std::move(file.value()), std::move(name), size.value(), changed));
}

}  // namespace quorvel
