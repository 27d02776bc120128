// A file system for tests in which any single operation can fail.
#pragma once

#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "core/file_system.h"

namespace quorvel::test {

/// Real files, with one operation, counted over all of them from 1, that fails. Questions for Exist() and sizes count
/// as none.
class FailingFiles : public FileSystem {
 public:
  explicit FailingFiles(int failing) : m_left(failing) {}
  [[nodiscard]] bool hasFailed() const { return m_left <= 0; }
  /// How often a file of this name was opened.
  [[nodiscard]] int opened(const std::string& name) const { return m_opened.contains(name) ? m_opened.at(name) : 0; }

  Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode) override {
    ++m_opened[path.filename().string()];
    if (fails()) return Error{ErrorCode::PermissionDenied, path};
    auto file = systemFiles().open(path, mode);
    if (!file.isOk()) return file;
    return Result<std::unique_ptr<File>>(std::make_unique<FailingFile>(*this, std::move(file.value())));
  }
  Status remove(const std::filesystem::path& path) override {
    if (fails()) return Error{ErrorCode::PermissionDenied, path};
    return systemFiles().remove(path);
  }
  Status rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    if (fails()) return Error{ErrorCode::PermissionDenied, to};
    return systemFiles().rename(from, to);
  }
  bool Exist(const std::filesystem::path& path) override { return systemFiles().Exist(path); }
  Result<FileStamp> stamp(const std::filesystem::path& path) override {
    if (fails()) return Error{ErrorCode::PermissionDenied, path};
    return systemFiles().stamp(path);
  }

 private:
  class FailingFile : public File {
   public:
    FailingFile(FailingFiles& owner, std::unique_ptr<File> file) : m_owner(owner), m_file(std::move(file)) {}
    Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
      if (m_owner.fails()) return Error{ErrorCode::DeviceIoError, {}};
      return m_file->readAt(offset, buffer);
    }
    Status writeAt(std::uint64_t offset, std::string_view data) override {
      if (m_owner.fails()) return Error{ErrorCode::DiskFull, {}};
      return m_file->writeAt(offset, data);
    }
    Status append(std::string_view data) override {
      if (!m_owner.fails()) return m_file->append(data);
      (void)m_file->append(data.substr(0, data.size() / 2));
      return Error{ErrorCode::DiskFull, {}};
    }
    Status resize(std::uint64_t length) override { return m_file->resize(length); }
    Result<std::uint64_t> size() const override { return m_file->size(); }
    Status sync() override {
      if (m_owner.fails()) return Error{ErrorCode::DeviceIoError, {}};
      return m_file->sync();
    }

   private:
    FailingFiles& m_owner;
    std::unique_ptr<File> m_file;
  };

  bool fails() { return --m_left == 0; }

  std::atomic<int> m_left;  ///< operations up to the failing one, which included
  std::map<std::string, int> m_opened;
};

}  // namespace quorvel::test
