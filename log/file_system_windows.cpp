#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <string>
#include <system_error>
#include <utility>

#include "log/file_system.h"
#include "log/text.h"

namespace quorvel {
namespace {

ErrorCode codeOf(DWORD systemError) {
  switch (systemError) {
    case ERROR_FILE_NOT_FOUND:
      return ErrorCode::FileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_INVALID_DRIVE:
      return ErrorCode::PathNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return ErrorCode::PermissionDenied;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ErrorCode::DiskFull;
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
    case ERROR_PIPE_BUSY:
    case ERROR_PIPE_NOT_CONNECTED:
      return ErrorCode::DeviceUnavailable;
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_TOO_MANY_OPEN_FILES:
      return ErrorCode::PathFileAccess;
    default:
      return ErrorCode::DeviceIoError;
  }
}

DWORD dispositionOf(OpenMode mode) {
  switch (mode) {
    case OpenMode::Read:
      return OPEN_EXISTING;
    case OpenMode::ReadWrite:
    case OpenMode::Append:
      return OPEN_ALWAYS;
    case OpenMode::Replace:
      break;
  }
  return CREATE_ALWAYS;
}

OVERLAPPED at(std::uint64_t offset) {
  OVERLAPPED position{};
  position.Offset = static_cast<DWORD>(offset);
  position.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return position;
}

constexpr std::size_t kMostAtOnce = 1u << 30;

/// As the offset of a write: wherever the file ends then, whoever else writes to it.
constexpr std::uint64_t kEnd = std::numeric_limits<std::uint64_t>::max();

class WindowsFile final : public File {
 public:
  WindowsFile(HANDLE handle, std::filesystem::path path)
      : m_handle(handle), m_isStream(::GetFileType(handle) != FILE_TYPE_DISK), m_path(std::move(path)) {}
  ~WindowsFile() override { ::CloseHandle(m_handle); }

  [[nodiscard]] bool isStream() const { return m_isStream; }

  Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
    std::size_t done = 0;
    while (done < buffer.size()) {
      OVERLAPPED position = at(offset + done);
      DWORD count = 0;
      const auto wanted = static_cast<DWORD>(std::min(buffer.size() - done, kMostAtOnce));
      if (!::ReadFile(m_handle, buffer.data() + done, wanted, &count, &position)) {
        if (::GetLastError() == ERROR_HANDLE_EOF) break;
        return failure();
      }
      if (count == 0) break;
      done += count;
    }
    return done;
  }

  Status writeAt(std::uint64_t offset, std::string_view data) override {
    while (!data.empty()) {
      OVERLAPPED position = at(offset);  // a stream takes no notice of it
      DWORD count = 0;
      const auto wanted = static_cast<DWORD>(std::min(data.size(), kMostAtOnce));
      if (!::WriteFile(m_handle, data.data(), wanted, &count, &position)) return failure();
      if (offset != kEnd) offset += count;
      data.remove_prefix(count);
    }
    return {};
  }

  Status append(std::string_view data, std::string_view end) override {
    DWORD mode = 0;
    const bool isConsole = m_isStream && ::GetConsoleMode(m_handle, &mode) != 0;
    if (isConsole) return writeAt(kEnd, terminalText(std::string(data).append(end)));
    Status written = writeAt(kEnd, data);
    return written.isOk() ? writeAt(kEnd, end) : written;
  }

  Status resize(std::uint64_t length) override {
    LARGE_INTEGER end;
    end.QuadPart = static_cast<LONGLONG>(length);
    if (!::SetFilePointerEx(m_handle, end, nullptr, FILE_BEGIN) || !::SetEndOfFile(m_handle)) return failure();
    return {};
  }

  Result<std::uint64_t> size() const override {
    if (m_isStream) return std::uint64_t{0};
    LARGE_INTEGER length;
    if (!::GetFileSizeEx(m_handle, &length)) return failure();
    return static_cast<std::uint64_t>(length.QuadPart);
  }

  Status sync() override {
    if (!::FlushFileBuffers(m_handle)) return failure();
    return {};
  }

 private:
  [[nodiscard]] Error failure() const { return {codeOf(::GetLastError()), m_path}; }

  HANDLE m_handle;
  bool m_isStream;  ///< a pipe or a console: it has no positions
  std::filesystem::path m_path;
};

// The server goes on writing its log, and may rename or delete it, while it is open here.
constexpr DWORD kSharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// A pipe or a console that can only be written to; nullptr where path is none.
std::unique_ptr<WindowsFile> openStream(const std::filesystem::path& path) {
  const HANDLE handle =
      ::CreateFileW(path.c_str(), GENERIC_WRITE, kSharing, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return nullptr;
  auto stream = std::make_unique<WindowsFile>(handle, path);
  return stream->isStream() ? std::move(stream) : nullptr;
}

class WindowsFileSystem final : public FileSystem {
 public:
  Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode, Owner owner) override {
    const DWORD attributes = owner == Owner::Program ? ::GetFileAttributesW(path.c_str()) : INVALID_FILE_ATTRIBUTES;
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
      return Error{ErrorCode::PathFileAccess, path};
    }
    if (mode == OpenMode::Append && owner == Owner::User) {
      if (auto stream = openStream(path)) return Result<std::unique_ptr<File>>(std::move(stream));
    }
    const DWORD access = mode == OpenMode::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    const HANDLE handle =
        ::CreateFileW(path.c_str(), access, kSharing, nullptr, dispositionOf(mode), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
      const DWORD error = ::GetLastError();
      std::error_code ignored;
      return Error{std::filesystem::is_directory(path, ignored) ? ErrorCode::PathFileAccess : codeOf(error), path};
    }
    auto file = std::make_unique<WindowsFile>(handle, path);
    if (file->isStream()) return Error{ErrorCode::PathFileAccess, path};
    return Result<std::unique_ptr<File>>(std::move(file));
  }

  Result<std::unique_ptr<File>> openTemporary(const std::filesystem::path& folder) override {
    static std::atomic<unsigned> count = 0;
    const std::wstring name =
        L"quorvel-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(++count) + L".tmp";
    const HANDLE handle =
        ::CreateFileW((folder / name).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                      FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return Error{codeOf(::GetLastError()), folder};
    return Result<std::unique_ptr<File>>(std::make_unique<WindowsFile>(handle, folder));
  }

  Status remove(const std::filesystem::path& path) override {
    if (!::DeleteFileW(path.c_str())) return Error{codeOf(::GetLastError()), path};
    return {};
  }

  Status rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (!::MoveFileExW(from.c_str(), to.c_str(), kHow)) return Error{codeOf(::GetLastError()), to};
    return {};
  }

  bool Exist(const std::filesystem::path& path) override {
    constexpr DWORD kNotOrdinary = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kNotOrdinary) == 0;
  }

  Result<FileStamp> stamp(const std::filesystem::path& path) override {
    std::error_code error;
    FileStamp result;
    result.size = std::filesystem::file_size(path, error);
    if (!error) result.changed = std::filesystem::last_write_time(path, error);
    if (error) return Error{codeOf(static_cast<DWORD>(error.value())), path};
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = ::CreateFileW(path.c_str(), 0, kShared, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return Error{codeOf(::GetLastError()), path};
    BY_HANDLE_FILE_INFORMATION info{};
    if (::GetFileInformationByHandle(file, &info) != 0) {
      result.device = info.dwVolumeSerialNumber;
      result.number = (std::uint64_t{info.nFileIndexHigh} << 32) | info.nFileIndexLow;
    }
    ::CloseHandle(file);
    return result;
  }
};

}  // namespace

FileSystem& systemFiles() {
  static WindowsFileSystem files;
  return files;
}

}  // namespace quorvel
