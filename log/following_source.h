// One file of a log that grows, read on whatever becomes of its name.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "log/log_source.h"

namespace quorvel {

/// What a place in a growing log is found again by, when the file has been renamed, copied or packed since.
struct LogPlace {
  std::uint64_t device = 0;  ///< of the file, as in FileStamp
  std::uint64_t number = 0;
  std::string head;          ///< the file's first bytes, kHeadBytes at most
  std::uint64_t offset = 0;  ///< bytes in front of the place, unpacked
};

inline constexpr std::size_t kHeadBytes = 1024;

/// Whether both files begin alike, as far as the shorter head goes. Empty heads are like nothing.
[[nodiscard]] bool haveSameHead(std::string_view a, std::string_view b);
/// The first bytes of a source that stands at its beginning; it stands there again then.
[[nodiscard]] Result<std::string> headOf(LogSource& source);

/// What stands at the name when it is opened is read through renames; look() tells what became of it. One thread.
class FollowingSource final : public LogSource {
 public:
  enum class Change : std::uint8_t {
    None,
    Truncated,  ///< it holds less than was read, or begins otherwise
    Replaced    ///< another file has the name, and something stands in it
  };

  /// A file that stands at that name now, or with a source, a file of the log that grows no more.
  [[nodiscard]] static Result<std::unique_ptr<FollowingSource>> open(FileSystem& files,
                                                                     const std::filesystem::path& path,
                                                                     const std::string& name);
  explicit FollowingSource(std::unique_ptr<LogSource> finished);

  [[nodiscard]] std::string name() const override { return m_name; }
  [[nodiscard]] std::uint64_t size() const override { return 0; }
  [[nodiscard]] std::int64_t changedTime() const override { return m_changedTime; }
  [[nodiscard]] std::string note() const override;
  [[nodiscard]] Result<std::size_t> read(std::span<char> buffer) override;
  [[nodiscard]] bool rewind() override;

  /// A file that has lost its name is no change as long as there is no other of that name.
  [[nodiscard]] Change look() const;
  /// What stands in the file is no longer what was read: a copy made before gives the rest. False where it is shorter
  /// than what was read; copy is read from its beginning.
  [[nodiscard]] bool goOnIn(std::unique_ptr<LogSource> copy);
  /// A sentence that note() tells from now on.
  void addNote(const std::string& sentence);
  /// Nothing behind so many bytes is read until the limit is lifted.
  void stopAt(std::uint64_t bytes) { m_limit = bytes; }
  void liftLimit() { m_limit = ~std::uint64_t{0}; }
  [[nodiscard]] bool isGrowing() const { return m_source == nullptr; }
  /// Up to where it was read.
  [[nodiscard]] const LogPlace& place() const { return m_place; }

 private:
  FollowingSource(FileSystem& files, std::filesystem::path path, std::string name);
  [[nodiscard]] bool isTruncated() const;

  FileSystem* m_files = nullptr;  ///< null: it grows no more
  std::filesystem::path m_path;
  std::string m_name;
  std::string m_note;
  std::int64_t m_changedTime = 0;
  std::unique_ptr<File> m_file;         ///< null where m_source is read
  std::unique_ptr<LogSource> m_source;  ///< of a file that grows no more, or a copy
  LogPlace m_place;
  std::uint64_t m_limit = ~std::uint64_t{0};
};

}  // namespace quorvel
