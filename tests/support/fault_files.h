// Files on which one chosen operation fails, as a disk, a network drive or another program makes it fail.
#pragma once

#include <algorithm>
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

inline constexpr std::array kFaultNames = {"open",        "size",      "read",   "short read", "write",
                                           "short write", "disk full", "resize", "sync",       "rename",
                                           "remove",      "not there", "stamp",  "no memory"};

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
  }
  void disarm() { arm(m_fault, 0); }
  /// Whether the call was reached since arm().
  [[nodiscard]] bool hasFailed() const { return m_hasFailed; }
  /// Only valid when hasFailed().
  [[nodiscard]] const std::filesystem::path& failedPath() const { return m_failedPath; }
  /// Runs before every call with the file's name, on whatever thread makes the call.
  void beforeEachCall(std::function<void(const std::filesystem::path&)> action) { m_before = std::move(action); }

  [[nodiscard]] Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode) override {
    return call(Fault::Open, path, [&] {
      auto file = m_real.open(path, mode);
      if (file.isOk()) file.value() = std::make_unique<FaultFile>(*this, path, std::move(file.value()));
      return file;
    });
  }
  Status remove(const std::filesystem::path& path) override {
    return call(Fault::Remove, path, [&] { return m_real.remove(path); });
  }
  Status rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return call(Fault::Rename, to, [&] { return m_real.rename(from, to); });
  }
  [[nodiscard]] bool Exist(const std::filesystem::path& path) override {
    return call(Fault::NotThere, path, [] { return Status(); }).isOk() && m_real.Exist(path);
  }
  [[nodiscard]] Result<FileStamp> stamp(const std::filesystem::path& path) override {
    return call(Fault::Stamp, path, [&] { return m_real.stamp(path); });
  }

 private:
  class FaultFile final : public File {
   public:
    FaultFile(FaultFiles& owner, std::filesystem::path path, std::unique_ptr<File> real)
        : m_owner(owner), m_path(std::move(path)), m_real(std::move(real)) {}

    [[nodiscard]] Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
      return m_owner.call(Fault::Read, m_path, [&] {
        const auto count = m_real->readAt(offset, buffer);
        if (!count.isOk() || !m_owner.isDue(Fault::ShortRead, m_path)) return count;
        std::fill_n(buffer.begin(), buffer.size(), '?');
        return m_real->readAt(offset, buffer.first(count.value() / 2));
      });
    }
    Status writeAt(std::uint64_t offset, std::string_view data) override {
      return write(data, [&](std::string_view part) { return m_real->writeAt(offset, part); });
    }
    Status append(std::string_view data) override {
      return write(data, [&](std::string_view part) { return m_real->append(part); });
    }
    Status resize(std::uint64_t length) override {
      return m_owner.call(Fault::Resize, m_path, [&] { return m_real->resize(length); });
    }
    [[nodiscard]] Result<std::uint64_t> size() const override {
      return m_owner.call(Fault::Size, m_path, [&] { return m_real->size(); });
    }
    Status sync() override {
      return m_owner.call(Fault::Sync, m_path, [] { return Status(); });
    }

   private:
    template <typename Write>
    Status write(std::string_view data, Write writePart) {
      return m_owner.call(Fault::Write, m_path, [&]() -> Status {
        const bool wasFull = m_owner.m_fault == Fault::DiskFull && m_owner.hasFailed();
        const bool isShort = m_owner.isDue(Fault::ShortWrite, m_path) || m_owner.isDue(Fault::DiskFull, m_path);
        if (!wasFull && !isShort) return writePart(data);
        if (!wasFull) (void)writePart(data.substr(0, data.size() / 2));
        return Error{ErrorCode::DiskFull, m_path};
      });
    }

    FaultFiles& m_owner;
    std::filesystem::path m_path;
    std::unique_ptr<File> m_real;
  };

  /// What the real call brings, unless it is the one to fail.
  template <typename Real>
  auto call(Fault fault, const std::filesystem::path& path, Real real) -> decltype(real()) {
    if (m_before) m_before(path);
    if (isDue(Fault::NoMemory, path)) throw std::bad_alloc();
    if (!isDue(fault, path)) return real();
    const bool isDenied = fault == Fault::Open || fault == Fault::Rename || fault == Fault::Remove;
    if (fault == Fault::Write) return Error{ErrorCode::DiskFull, path};
    return Error{isDenied ? ErrorCode::PermissionDenied : ErrorCode::DeviceIoError, path};
  }
  bool isDue(Fault fault, const std::filesystem::path& path) {
    if (fault != m_fault || m_left.fetch_sub(1) != 1) return false;
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
