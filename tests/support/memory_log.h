// A log that lives in memory.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "core/log_file.h"

namespace quorvel::test {

/// One file system with one file of any name, which can only be read.
class MemoryLog : public FileSystem {
 public:
  explicit MemoryLog(std::string text) : m_text(std::move(text)) {}

  Result<std::unique_ptr<File>> open(const std::filesystem::path& path, OpenMode mode) override {
    if (mode != OpenMode::Read) return Error{ErrorCode::PermissionDenied, path};
    return std::unique_ptr<File>(std::make_unique<Content>(m_text));
  }
  Status remove(const std::filesystem::path& path) override { return refused(path); }
  Status rename(const std::filesystem::path& from, const std::filesystem::path&) override { return refused(from); }
  bool Exist(const std::filesystem::path&) override { return true; }
  Result<FileStamp> stamp(const std::filesystem::path&) override { return FileStamp{m_text.size(), {}}; }

 private:
  class Content : public File {
   public:
    explicit Content(std::string text) : m_text(std::move(text)) {}

    Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
      const auto begin = std::min<std::uint64_t>(offset, m_text.size());
      return m_text.copy(buffer.data(), buffer.size(), static_cast<std::size_t>(begin));
    }
    Status writeAt(std::uint64_t, std::string_view) override { return refused({}); }
    Status append(std::string_view) override { return refused({}); }
    Status resize(std::uint64_t) override { return refused({}); }
    Result<std::uint64_t> size() const override { return std::uint64_t{m_text.size()}; }
    Status sync() override { return {}; }

   private:
    const std::string m_text;
  };

  static Status refused(const std::filesystem::path& path) { return Error{ErrorCode::PermissionDenied, path}; }

  const std::string m_text;
};

/// A log of this text, opened.
[[nodiscard]] inline LogFile openLog(const std::string& text) {
  MemoryLog files(text);
  return std::move(LogFile::open(files, "a.log").value());
}

}  // namespace quorvel::test
