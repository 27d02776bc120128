#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include "log/file_system.h"
#include "log/unbroken_append_posix.h"

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
    case EISDIR:
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
      return O_RDONLY | O_NONBLOCK;  // a pipe must not block the program before it is refused
    case OpenMode::ReadWrite:
      return O_RDWR | O_CREAT;
    case OpenMode::Append:
      return O_RDWR | O_CREAT | O_APPEND;
    case OpenMode::Replace:
      return O_RDWR | O_CREAT | O_TRUNC;
  }
  return O_RDONLY;
}

class PosixFile final : public File {
 public:
  PosixFile(int descriptor, std::filesystem::path path) : m_descriptor(descriptor), m_path(std::move(path)) {}
  ~PosixFile() override {
    if (m_hasReserved) giveBack();
    ::close(m_descriptor);
  }

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
    const int error = appendUnbroken(m_descriptor, data, end);
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

  void reserve(std::uint64_t offset, std::uint64_t count) override {
#ifdef __linux__
    const int done =
        ::fallocate(m_descriptor, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset), static_cast<off_t>(count));
    m_hasReserved = m_hasReserved || done == 0;
#else
    (void)offset, (void)count;
#endif
  }

  Status sync() override {
    if (::fsync(m_descriptor) != 0) return failure();
    return {};
  }

 private:
  void giveBack() {
    const auto length = size();
    if (length.isOk()) (void)resize(length.value());
  }
  [[nodiscard]] Error failure() const {
    return {codeOf(errno), m_path};
  }

  int m_descriptor;
  bool m_hasReserved = false;
  std::filesystem::path m_path;
};

class PosixFileSystem final : public FileSystem {
 public:
  Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode) override {
    constexpr mode_t kReadableByAll = 0644;
    const int descriptor = ::open(path.c_str(), flagsOf(mode) | O_CLOEXEC | O_NOCTTY, kReadableByAll);
    if (descriptor < 0 && errno == ENOENT && mode != OpenMode::Read) return Error{ErrorCode::PathNotFound, path};
    if (descriptor < 0) return Error{codeOf(errno), path};
    auto file = std::make_unique<PosixFile>(descriptor, path);
    struct stat info {};
    if (mode == OpenMode::Read && (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode))) {
      return Error{ErrorCode::PathFileAccess, path};
    }
    if (::isatty(descriptor) != 0) return Error{ErrorCode::PathFileAccess, path};
    return Result<std::unique_ptr<File>>(std::move(file));
  }

  Result<std::unique_ptr<File>> openTemporary(const std::filesystem::path& folder) override {
    std::string name = (folder.empty() ? std::filesystem::path(".") : folder) / "quorvel-XXXXXX";
    const int descriptor = ::mkstemp(name.data());
    if (descriptor < 0) return Error{codeOf(errno), folder};
    (void)::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    (void)::unlink(name.c_str());
    return Result<std::unique_ptr<File>>(std::make_unique<PosixFile>(descriptor, folder));
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
    return result;
  }
};

}  // namespace

FileSystem& systemFiles() {
  static PosixFileSystem files;
  return files;
}

}  // namespace quorvel
