// Files that live in memory only: many runs a second, nothing left on a disk.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "core/file_system.h"

namespace quorvel::test {

/// Never fails but for a missing file. A file opened stays readable after it was removed or replaced.
class MemoryFiles final : public FileSystem {
 public:
  /// Content of a file; empty when it is missing.
  [[nodiscard]] std::string content(const std::filesystem::path& path) const {
    const auto file = m_files.find(path);
    return file == m_files.end() ? std::string() : *file->second;
  }
  void put(const std::filesystem::path& path, std::string_view content) {
    m_files[path] = std::make_shared<std::string>(content);
  }
  [[nodiscard]] std::size_t count() const { return m_files.size(); }

  [[nodiscard]] Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode) override {
    if (mode == OpenMode::Read && !m_files.contains(path)) return Error{ErrorCode::FileNotFound, path};
    auto& bytes = m_files[path];
    if (!bytes || mode == OpenMode::Replace) bytes = std::make_shared<std::string>();
    return Result<std::unique_ptr<File>>(std::make_unique<MemoryFile>(bytes));
  }
  Status remove(const std::filesystem::path& path) override {
    if (m_files.erase(path) == 0) return Error{ErrorCode::FileNotFound, path};
    return {};
  }
  Status rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    const auto file = m_files.find(from);
    if (file == m_files.end()) return Error{ErrorCode::FileNotFound, from};
    auto bytes = std::move(file->second);
    m_files.erase(file);
    m_files[to] = std::move(bytes);
    return {};
  }
  [[nodiscard]] bool Exist(const std::filesystem::path& path) override { return m_files.contains(path); }
  [[nodiscard]] Result<FileStamp> stamp(const std::filesystem::path& path) override {
    if (!m_files.contains(path)) return Error{ErrorCode::FileNotFound, path};
    return FileStamp{content(path).size(), {}};
  }

 private:
  class MemoryFile final : public File {
   public:
    explicit MemoryFile(std::shared_ptr<std::string> bytes) : m_bytes(std::move(bytes)) {}

    [[nodiscard]] Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
      if (offset >= m_bytes->size()) return std::size_t{0};
      return m_bytes->copy(buffer.data(), buffer.size(), static_cast<std::size_t>(offset));
    }
    Status writeAt(std::uint64_t offset, std::string_view data) override {
      const auto at = static_cast<std::size_t>(offset);
      m_bytes->resize(std::max(m_bytes->size(), at + data.size()));
      m_bytes->replace(at, data.size(), data);
      return {};
    }
    Status append(std::string_view data) override {
      m_bytes->append(data);
      return {};
    }
    Status resize(std::uint64_t length) override {
      m_bytes->resize(static_cast<std::size_t>(length));
      return {};
    }
    [[nodiscard]] Result<std::uint64_t> size() const override { return std::uint64_t{m_bytes->size()}; }
    Status sync() override { return {}; }

   private:
    std::shared_ptr<std::string> m_bytes;
  };

  std::map<std::filesystem::path, std::shared_ptr<std::string>> m_files;
};

}  // namespace quorvel::test
