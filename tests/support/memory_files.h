// Files that live in memory only, of which one chosen call fails, as a disk, a network drive or another program makes
// it fail.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "log/file_system.h"

namespace quorvel::test {

enum class Fault {
  Open,
  Size,
  Read,
  ShortRead,   ///< half of what is there, as if the file had been cut
  Write,       ///< nothing of it is written
  ShortWrite,  ///< half of it is written, then the write fails
  DiskFull,    ///< the same, and every later write writes nothing
  Resize,
  Sync,
  Rename,
  Remove,
  NotThere,  ///< Exist() answers no
  Stamp,
};
inline constexpr std::array kFaultNames = {"open",        "size",      "read",   "short read", "write",
                                           "short write", "disk full", "resize", "sync",       "rename",
                                           "remove",      "not there", "stamp"};

/// Of itself nothing fails but for a missing file. A file opened stays readable after it was removed or replaced, and
/// when these files are gone. Safe from several threads at once.
class MemoryFiles : public FileSystem {
 public:
  /// Content of a file; empty when it is missing.
  [[nodiscard]] std::string content(const std::filesystem::path& path) const {
    return m_files.contains(path) ? *m_files.at(path) : std::string();
  }
  void put(const std::filesystem::path& path, std::string_view content) {
    m_files[path] = std::make_shared<std::string>(content);
  }
  [[nodiscard]] std::vector<std::filesystem::path> paths() const {
    std::vector<std::filesystem::path> all;
    for (const auto& [path, content] : m_files)
      all.push_back(path);
    return all;
  }

  /// Lets call number n, from 1, of those the fault is about fail. One fault at a time.
  void arm(Fault fault, int n) {
    m_faults->fault = fault;
    m_faults->left = n;
    m_faults->failedPath.clear();
  }
  void disarm() { arm(Fault::Open, 0); }
  /// The file of the call that failed since arm(); empty: the call was not reached.
  [[nodiscard]] const std::filesystem::path& failedPath() const { return m_faults->failedPath; }
  /// Runs before every call with the file's name, on whatever thread makes the call.
  void beforeEachCall(std::function<void(const std::filesystem::path&)> action) {
    m_faults->before = std::move(action);
  }

  [[nodiscard]] Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode,
                                                   Owner = Owner::User) override {
    return m_faults->call(Fault::Open, path, [&]() -> Result<std::unique_ptr<File>> {
      if (mode == OpenMode::Read && !m_files.contains(path)) return Error{ErrorCode::FileNotFound, path};
      auto& bytes = m_files[path];
      if (!bytes || mode == OpenMode::Replace) bytes = std::make_shared<std::string>();
      return std::unique_ptr<File>(std::make_unique<MemoryFile>(m_faults, path, bytes));
    });
  }
  [[nodiscard]] Result<std::unique_ptr<File>> openTemporary(const std::filesystem::path& folder) override {
    return m_faults->call(Fault::Open, folder, [&]() -> Result<std::unique_ptr<File>> {
      return std::unique_ptr<File>(std::make_unique<MemoryFile>(m_faults, folder, std::make_shared<std::string>()));
    });
  }
  Status remove(const std::filesystem::path& path) override {
    return m_faults->call(Fault::Remove, path, [&]() -> Status {
      if (m_files.erase(path) == 0) return Error{ErrorCode::FileNotFound, path};
      return {};
    });
  }
  Status rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return m_faults->call(Fault::Rename, to, [&]() -> Status {
      auto file = m_files.extract(from);
      if (file.empty()) return Error{ErrorCode::FileNotFound, from};
      m_files[to] = std::move(file.mapped());
      return {};
    });
  }
  [[nodiscard]] bool Exist(const std::filesystem::path& path) override {
    return m_faults->call(Fault::NotThere, path, [] { return Status(); }).isOk() && m_files.contains(path);
  }
  [[nodiscard]] Result<FileStamp> stamp(const std::filesystem::path& path) override {
    return m_faults->call(Fault::Stamp, path, [&]() -> Result<FileStamp> {
      if (!m_files.contains(path)) return Error{ErrorCode::FileNotFound, path};
      return FileStamp{content(path).size(), {}};
    });
  }

 private:
  /// What these files and those opened share.
  struct Faults {
    /// What the real call brings, unless it is the one to fail.
    template <typename Real>
    auto call(Fault what, const std::filesystem::path& path, Real real) -> decltype(real()) {
      const std::lock_guard lock(mutex);
      if (before) before(path);
      if (!isDue(what, path)) return real();
      const bool isDenied = what == Fault::Open || what == Fault::Rename || what == Fault::Remove;
      if (what == Fault::Write) return Error{ErrorCode::DiskFull, path};
      return Error{isDenied ? ErrorCode::PermissionDenied : ErrorCode::DeviceIoError, path};
    }
    bool isDue(Fault what, const std::filesystem::path& path) {
      if (what != fault || left-- != 1) return false;
      failedPath = path;
      return true;
    }

    std::recursive_mutex mutex;
    std::function<void(const std::filesystem::path&)> before;
    Fault fault = Fault::Open;
    int left = 0;
    std::filesystem::path failedPath;
  };

  class MemoryFile final : public File {
   public:
    MemoryFile(std::shared_ptr<Faults> faults, std::filesystem::path path, std::shared_ptr<std::string> bytes)
        : m_faults(std::move(faults)), m_path(std::move(path)), m_bytes(std::move(bytes)) {}

    [[nodiscard]] Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
      return m_faults->call(Fault::Read, m_path, [&]() -> Result<std::size_t> {
        const auto from = static_cast<std::size_t>(std::min<std::uint64_t>(offset, m_bytes->size()));
        const std::size_t there = std::min(buffer.size(), m_bytes->size() - from);
        return m_bytes->copy(buffer.data(), m_faults->isDue(Fault::ShortRead, m_path) ? there / 2 : there, from);
      });
    }
    Status writeAt(std::uint64_t offset, std::string_view data) override {
      return m_faults->call(Fault::Write, m_path, [&] { return write(static_cast<std::size_t>(offset), data); });
    }
    Status append(std::string_view data, std::string_view end) override {
      const std::string both = std::string(data).append(end);
      return m_faults->call(Fault::Write, m_path, [&] { return write(m_bytes->size(), both); });
    }
    Status resize(std::uint64_t length) override {
      return m_faults->call(Fault::Resize, m_path, [&] {
        m_bytes->resize(static_cast<std::size_t>(length));
        return Status();
      });
    }
    [[nodiscard]] Result<std::uint64_t> size() const override {
      return m_faults->call(Fault::Size, m_path, [&] { return Result(std::uint64_t{m_bytes->size()}); });
    }
    Status sync() override {
      return m_faults->call(Fault::Sync, m_path, [] { return Status(); });
    }

   private:
    Status write(std::size_t at, std::string_view data) {
      const bool wasFull = m_faults->fault == Fault::DiskFull && !m_faults->failedPath.empty();
      const bool isShort = m_faults->isDue(Fault::ShortWrite, m_path) || m_faults->isDue(Fault::DiskFull, m_path);
      if (wasFull || isShort) data = data.substr(0, wasFull ? 0 : data.size() / 2);
      if (!data.empty()) m_bytes->resize(std::max(m_bytes->size(), at + data.size()));
      m_bytes->replace(std::min(at, m_bytes->size()), data.size(), data);
      return wasFull || isShort ? Status(Error{ErrorCode::DiskFull, m_path}) : Status();
    }

    std::shared_ptr<Faults> m_faults;
    std::filesystem::path m_path;
    std::shared_ptr<std::string> m_bytes;
  };

  std::map<std::filesystem::path, std::shared_ptr<std::string>> m_files;
  std::shared_ptr<Faults> m_faults = std::make_shared<Faults>();
};

}  // namespace quorvel::test
