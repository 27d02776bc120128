// All access to files goes through this small interface, so that tests can make any single operation fail.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "log/result.h"

namespace quorvel {

enum class OpenMode {
  Read,       ///< the file must exist; nothing is ever written to it
  ReadWrite,  ///< created when missing, content kept
  Append,     ///< created when missing; append() writes at the end. Only this one takes pipes and terminals too
  Replace,    ///< created, or emptied when it exists
};

/// Whose file it is that a name stands for.
enum class Owner {
  User,     ///< links are followed
  Program,  ///< a working file: links are not followed, nor is anything else opened that is no plain file
};

/// What tells one state of a file from another, and one file from another under the same name.
struct FileStamp {
  std::uint64_t size = 0;
  std::filesystem::file_time_type changed{};
  std::uint64_t device = 0;  ///< device and number stay with a file that is renamed; both 0: not known
  std::uint64_t number = 0;
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// One open file; closed when destroyed. Reading at an offset is safe from several threads at once, nothing else is.
class File {
 public:
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  virtual ~File() = default;

  /// Fills buffer from offset (0-based bytes) and returns the count read, which is less than asked for only at the
  /// end of the file. Offsets beyond the end read nothing.
  [[nodiscard]] virtual Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const = 0;
  /// Writes all of data at offset; a gap behind the old end reads as zero bytes.
  virtual Status writeAt(std::uint64_t offset, std::string_view data) = 0;
  /// Writes all of data, and end after it, at the end of a file opened with Append or Replace. On failure, or when the
  /// program is killed meanwhile, a part may have been written. A pipe whose reader has gone is DeviceUnavailable, and
  /// so is one whose reader takes nothing once isInterrupted(). A terminal gets terminalText() of it.
  virtual Status append(std::string_view data, std::string_view end) = 0;
  /// The same for whole lines: on failure the file ends with the last of them that was written whole, as far as it can
  /// be cut there: not where another process added to it meanwhile. end is for lines that have no copy with their end.
  Status appendLines(std::string_view lines, std::string_view end = {});
  /// Cuts the file, or fills it up with zero bytes, to length bytes.
  virtual Status resize(std::uint64_t length) = 0;
  [[nodiscard]] virtual Result<std::uint64_t> size() const = 0;
  /// Makes what was written so far survive a power failure.
  virtual Status sync() = 0;
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Opening a folder, or anything else that is no plain file, fails with PathFileAccess; but a pipe or a terminal of
  /// the user's can be appended to. A named pipe
  /// that nobody reads is DeviceUnavailable.
  [[nodiscard]] virtual Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode,
                                                           Owner owner = Owner::User) = 0;
  /// A new file in the folder for this process alone, to read and write at offsets. It has no name and is gone when it
  /// is closed, or the process is; errors name the folder.
  [[nodiscard]] virtual Result<std::unique_ptr<File>> openTemporary(const std::filesystem::path& folder) = 0;
  virtual Status remove(const std::filesystem::path& path) = 0;
  /// Gives the file from the name to, replacing a file of that name in one step.
  virtual Status rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
  /// True when a plain file of that name is there: no folder, no device. Any error means false.
  [[nodiscard]] virtual bool Exist(const std::filesystem::path& path) = 0;
  [[nodiscard]] virtual Result<FileStamp> stamp(const std::filesystem::path& path) = 0;

  /// The whole content of a file; a file cut meanwhile is an error. For settings and reports, not for logs.
  [[nodiscard]] Result<std::string> readWhole(const std::filesystem::path& path);
  /// Opens with Append a file of lines. A last line that has no end, as a run killed by force leaves it, is ended.
  [[nodiscard]] Result<std::unique_ptr<File>> openToAppendLines(const std::filesystem::path& path,
                                                                Owner owner = Owner::User);
  /// Puts a file with this content in the place of path, which may be missing; of a link, in the place of what it leads
  /// to. It gets the old one's mode. The content goes to a new file beside it first: on failure, a crash or a power
  /// failure included, the old file is there as it was. An error names path.
  Status replaceWhole(const std::filesystem::path& path, std::string_view content);
};

/// A name beside path that no other process, and no earlier run of this one, uses.
[[nodiscard]] std::filesystem::path temporaryName(const std::filesystem::path& path);

/// The real files of this machine. Lives as long as the program.
[[nodiscard]] FileSystem& systemFiles();

/// Whether two names stand for one file of this machine, through links too. Of files that do not exist the names
/// decide.
[[nodiscard]] bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace quorvel
