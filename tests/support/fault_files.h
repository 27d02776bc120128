// Files on which one chosen operation fails, as a disk, a network drive or another program makes it fail.
#pragma once

#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <utility>

#include "core/file_system.h"

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
  NoMemory,  ///< thrown by any call
};

struct FaultName {
  Fault fault;
  std::string_view name;
};
inline constexpr std::array kAllFaults = {
    FaultName{Fault::Open, "open"},          FaultName{Fault::Size, "size"},
    FaultName{Fault::Read, "read"},          FaultName{Fault::ShortRead, "short read"},
    FaultName{Fault::Write, "write"},        FaultName{Fault::ShortWrite, "short write"},
    FaultName{Fault::DiskFull, "disk full"}, FaultName{Fault::Resize, "resize"},
    FaultName{Fault::Sync, "sync"},          FaultName{Fault::Rename, "rename"},
    FaultName{Fault::Remove, "remove"},      FaultName{Fault::NotThere, "not there"},
    FaultName{Fault::Stamp, "stamp"},        FaultName{Fault::NoMemory, "no memory"},
};

/// Hands everything on to other files, save for the calls that are to fail.
class FaultFiles final : public FileSystem {
 public:
  /// real must outlive this.
  explicit FaultFiles(FileSystem& real) : m_real(real) {}

  /// Lets call number n, from 1, of those the fault is about fail. One fault at a time.
  void arm(Fault fault, int n) {
    m_fault = fault;
    m_left = n;
    m_hasFailed = false;
    m_failedPath.clear();
  }
  void disarm() { m_left = 0; }
  /// Whether the call was reached since arm().
  [[nodiscard]] bool hasFailed() const { return m_hasFailed; }
  [[nodiscard]] const std::filesystem::path& failedPath() const { return m_failedPath; }
  /// Runs before every call with the file's name, on whatever thread makes the call.
  void beforeEachCall(std::function<void(const std::filesystem::path&)> action) { m_before = std::move(action); }

  [[nodiscard]] Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode) override {
    if (fails(Fault::Open, path)) return Error{ErrorCode::PermissionDenied, path};
    auto file = m_real.open(path, mode);
    if (!file.isOk()) return file.error();
    return Result<std::unique_ptr<File>>(std::make_unique<FaultFile>(*this, path, std::move(file.value())));
  }
  Status remove(const std::filesystem::path& path) override {
    if (fails(Fault::Remove, path)) return Error{ErrorCode::PermissionDenied, path};
    return m_real.remove(path);
  }
  Status rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    if (fails(Fault::Rename, to)) return Error{ErrorCode::PermissionDenied, to};
    return m_real.rename(from, to);
  }
  [[nodiscard]] bool Exist(const std::filesystem::path& path) override {
    return !fails(Fault::NotThere, path) && m_real.Exist(path);
  }
  [[nodiscard]] Result<FileStamp> stamp(const std::filesystem::path& path) override {
    if (fails(Fault::Stamp, path)) return Error{ErrorCode::DeviceIoError, path};
    return m_real.stamp(path);
  }

 private:
  class FaultFile final : public File {
   public:
    FaultFile(FaultFiles& owner, std::filesystem::path path, std::unique_ptr<File> real)
        : m_owner(owner), m_path(std::move(path)), m_real(std::move(real)) {}

    [[nodiscard]] Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
      if (m_owner.fails(Fault::Read, m_path)) return Error{ErrorCode::DeviceIoError, m_path};
      const auto count = m_real->readAt(offset, buffer);
      if (count.isOk() && m_owner.isDue(Fault::ShortRead, m_path)) return count.value() / 2;
      return count;
    }
    Status writeAt(std::uint64_t offset, std::string_view data) override {
      return write(data, [&](std::string_view part) { return m_real->writeAt(offset, part); });
    }
    Status append(std::string_view data) override {
      return write(data, [&](std::string_view part) { return m_real->append(part); });
    }
    Status resize(std::uint64_t length) override {
      if (m_owner.fails(Fault::Resize, m_path)) return Error{ErrorCode::DeviceIoError, m_path};
      return m_real->resize(length);
    }
    [[nodiscard]] Result<std::uint64_t> size() const override {
      if (m_owner.fails(Fault::Size, m_path)) return Error{ErrorCode::DeviceIoError, m_path};
      return m_real->size();
    }
    Status sync() override {
      if (m_owner.fails(Fault::Sync, m_path)) return Error{ErrorCode::DeviceIoError, m_path};
      return {};
    }

   private:
    template <typename Write>
    Status write(std::string_view data, Write writePart) {
      const bool wasFull = m_owner.m_fault == Fault::DiskFull && m_owner.hasFailed() && m_owner.m_left != 0;
      if (wasFull || m_owner.fails(Fault::Write, m_path)) return Error{ErrorCode::DiskFull, m_path};
      const bool isShort = m_owner.isDue(Fault::ShortWrite, m_path) || m_owner.isDue(Fault::DiskFull, m_path);
      if (!isShort) return writePart(data);
      (void)writePart(data.substr(0, data.size() / 2));
      return Error{ErrorCode::DiskFull, m_path};
    }

    FaultFiles& m_owner;
    std::filesystem::path m_path;
    std::unique_ptr<File> m_real;
  };

  bool fails(Fault fault, const std::filesystem::path& path) {
    if (m_before) m_before(path);
    if (isDue(Fault::NoMemory, path)) throw std::bad_alloc();
    return isDue(fault, path);
  }
  bool isDue(Fault fault, const std::filesystem::path& path) {
    if (fault != m_fault || m_left == 0 || m_hasFailed || m_left.fetch_sub(1) != 1) return false;
    if (fault == Fault::DiskFull) m_left = 1;  // until disarm()
    m_failedPath = path;
    m_hasFailed = true;
    return true;
  }

  FileSystem& m_real;
  std::function<void(const std::filesystem::path&)> m_before;
  std::atomic<Fault> m_fault{Fault::Open};
  std::atomic<int> m_left{0};
  std::atomic<bool> m_hasFailed{false};
  std::filesystem::path m_failedPath;
};

}  // namespace quorvel::test
