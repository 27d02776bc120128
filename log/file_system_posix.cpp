#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>
#include <system_error>

#include "log/file_system.h"
#include "log/interrupt.h"
#include "log/text.h"

namespace quorvel {
namespace {

ErrorCode codeOf(int systemError) {
  switch (systemError) {
    case ENOENT:
      return ErrorCode::FileNotFound;
    case ENOTDIR:
      return ErrorCode::PathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
      return ErrorCode::PermissionDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return ErrorCode::DiskFull;
    case EPIPE:
    case ENXIO:  // of a named pipe that nobody reads
    case EINTR:  // of a wait that the user ended
      return ErrorCode::DeviceUnavailable;
    case EISDIR:
    case ELOOP:
    case ENAMETOOLONG:
    case EMFILE:
    case ENFILE:
    case ETXTBSY:
      return ErrorCode::PathFileAccess;
    default:
      return ErrorCode::DeviceIoError;
  }
}

int flagsOf(OpenMode mode) {
  switch (mode) {
    case OpenMode::Read:
      return O_RDONLY;
    case OpenMode::ReadWrite:
      return O_RDWR | O_CREAT;
    case OpenMode::Append:
      return O_RDWR | O_CREAT | O_APPEND;
    case OpenMode::Replace:
      return O_RDWR | O_CREAT | O_TRUNC;
  }
  return O_RDONLY;
}

/// 0, or the system's error number when a part of data may be missing.
int writeAll(int descriptor, std::string_view data) {
  while (!data.empty()) {
    const ssize_t count = ::write(descriptor, data.data(), data.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    data.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

/// The same for a pipe or a terminal, which take what their reader leaves room for: as much as there surely is room for
/// at once, so that no write blocks, and the user can end a wait for a reader that takes nothing.
int writeToStream(int descriptor, std::string_view data) {
  constexpr int kPatience = 100;  // milliseconds
  while (!data.empty()) {
    pollfd room{descriptor, POLLOUT, 0};
    const int isReady = ::poll(&room, 1, kPatience);
    if (isReady == 0 && isInterrupted()) return EINTR;
    if (isReady < 0 && errno != EINTR) return errno;
    if (isReady <= 0) continue;
    const ssize_t count = ::write(descriptor, data.data(), std::min<std::size_t>(data.size(), PIPE_BUF));
    if (count < 0 && errno != EINTR && errno != EAGAIN) return errno;
    data.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  }
  return 0;
}

class PosixFile final : public File {
 public:
  PosixFile(int descriptor, bool isStream, std::filesystem::path path)
      : m_descriptor(descriptor), m_isStream(isStream), m_path(std::move(path)) {}
  ~PosixFile() override { ::close(m_descriptor); }

  Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
    std::size_t done = 0;
    while (done < buffer.size()) {
      const ssize_t count =
          ::pread(m_descriptor, buffer.data() + done, buffer.size() - done, static_cast<off_t>(offset + done));
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return failure();
      if (count == 0) break;
      done += static_cast<std::size_t>(count);
    }
    return done;
  }

  Status writeAt(std::uint64_t offset, std::string_view data) override {
    while (!data.empty()) {
      const ssize_t count = ::pwrite(m_descriptor, data.data(), data.size(), static_cast<off_t>(offset));
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return failure();
      offset += static_cast<std::uint64_t>(count);
      data.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
  }

  Status append(std::string_view data, std::string_view end) override {
    const auto write = [this](std::string_view text) {
      if (!m_isStream) return writeAll(m_descriptor, text);
      return ::isatty(m_descriptor) != 0 ? writeToStream(m_descriptor, terminalText(text))
                                         : writeToStream(m_descriptor, text);
    };
    int error = write(data);
    if (error == 0) error = write(end);
    return error == 0 ? Status() : Error{codeOf(error), m_path};
  }

  Status resize(std::uint64_t length) override {
    if (::ftruncate(m_descriptor, static_cast<off_t>(length)) != 0) return failure();
    return {};
  }

  Result<std::uint64_t> size() const override {
    struct stat info {};
    if (::fstat(m_descriptor, &info) != 0) return failure();
    return static_cast<std::uint64_t>(info.st_size);
  }

  Status sync() override {
    if (::fsync(m_descriptor) != 0) return failure();
    return {};
  }

 private:
  [[nodiscard]] Error failure() const { return {codeOf(errno), m_path}; }

  int m_descriptor;
  bool m_isStream;  ///< a pipe or a terminal: it has no positions
  std::filesystem::path m_path;
};

bool isStreamMode(mode_t mode) {
  return S_ISFIFO(mode) || S_ISCHR(mode) || S_ISSOCK(mode);
}

int openPlain(const std::filesystem::path& path, OpenMode mode, Owner owner) {
  constexpr mode_t kReadableByAll = 0644;
  // O_NONBLOCK: a pipe must not block the program before it is refused.
  const int flags = flagsOf(mode) | (owner == Owner::Program ? O_NOFOLLOW : 0) | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
  return ::open(path.c_str(), flags, kReadableByAll);
}

/// named is what path stands for. Standard output and error are used as they are: a pipe that the caller made cannot be
/// opened again once its reader has gone.
int openStream(const std::filesystem::path& path, const struct stat& named) {
  for (const int standard : {STDOUT_FILENO, STDERR_FILENO}) {
    struct stat info {};
    const bool isSame = ::fstat(standard, &info) == 0 && info.st_dev == named.st_dev && info.st_ino == named.st_ino;
    if (isSame) return ::fcntl(standard, F_DUPFD_CLOEXEC, 0);
  }
  return ::open(path.c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
}

class PosixFileSystem final : public FileSystem {
 public:
  Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode, Owner owner) override {
    const bool takesStreams = mode == OpenMode::Append && owner == Owner::User;
    struct stat named {};
    const bool isStream = takesStreams && ::stat(path.c_str(), &named) == 0 && isStreamMode(named.st_mode);
    const int descriptor = isStream ? openStream(path, named) : openPlain(path, mode, owner);
    if (descriptor < 0 && errno == ENOENT && mode != OpenMode::Read) return Error{ErrorCode::PathNotFound, path};
    if (descriptor < 0) return Error{codeOf(errno), path};
    auto file = std::make_unique<PosixFile>(descriptor, isStream, path);
    struct stat opened {};
    const bool isPlain = ::fstat(descriptor, &opened) == 0 && S_ISREG(opened.st_mode);
    if (!isPlain && !isStream) return Error{ErrorCode::PathFileAccess, path};
    return Result<std::unique_ptr<File>>(std::move(file));
  }

  Result<std::unique_ptr<File>> openTemporary(const std::filesystem::path& folder) override {
    std::string name = (folder.empty() ? std::filesystem::path(".") : folder) / "quorvel-XXXXXX";
    const int descriptor = ::mkstemp(name.data());
    if (descriptor < 0) return Error{codeOf(errno), folder};
    (void)::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    (void)::unlink(name.c_str());
    return Result<std::unique_ptr<File>>(std::make_unique<PosixFile>(descriptor, false, folder));
  }

  Status remove(const std::filesystem::path& path) override {
    if (::unlink(path.c_str()) != 0) return Error{codeOf(errno), path};
    return {};
  }

  Status rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    if (::rename(from.c_str(), to.c_str()) != 0) return Error{codeOf(errno), to};
    return {};
  }

  bool Exist(const std::filesystem::path& path) override {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
  }

  Result<FileStamp> stamp(const std::filesystem::path& path) override {
    std::error_code error;
    FileStamp result;
    result.size = std::filesystem::file_size(path, error);
    if (!error) result.changed = std::filesystem::last_write_time(path, error);
    if (error) return Error{codeOf(error.value()), path};
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return Error{codeOf(errno), path};
    result.device = info.st_dev;
    result.number = info.st_ino;
    return result;
  }
};

}  // namespace

FileSystem& systemFiles() {
  static PosixFileSystem files;
  return files;
}

}  // namespace quorvel
