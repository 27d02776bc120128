// Where an answer goes: standard output, or a file that is there whole or not at all.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "log/file_system.h"

namespace quorvel {

/// Takes whole records one after the other and hands them on in large pieces that end between two records. After the
/// first error nothing more is written.
class Output {
 public:
  Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  virtual ~Output() = default;

  /// Room for a record: append to it, then call endRecord().
  [[nodiscard]] std::string& record() { return m_text; }
  Status endRecord() { return m_text.size() < kPiece ? m_status : flush(); }
  /// What was written is complete. Without it a file is not there.
  Status finish();

 protected:
  virtual Status write(std::string_view piece) = 0;
  virtual Status close() { return {}; }

 private:
  static constexpr std::size_t kPiece = 256 * 1024;
  Status flush();

  std::string m_text;
  Status m_status;
};

/// Writes a new file beside path, which takes that name when it is complete; what was there stays until then. path is
/// a plain file or missing; a device or pipe is written to as it comes. files must outlive the output.
[[nodiscard]] Result<std::unique_ptr<Output>> openOutput(FileSystem& files, const std::filesystem::path& path);

/// A file to be made beside path that replaces it once complete: for writers that need a name. Removed when destroyed
/// before that.
class ReplacingFile {
 public:
  ReplacingFile(FileSystem& files, std::filesystem::path path);
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;
  ~ReplacingFile();
  /// Of the new file, which does not exist yet.
  [[nodiscard]] const std::filesystem::path& temporary() const { return m_temporary; }
  /// An error names the path that was to be replaced.
  Status replace();
  [[nodiscard]] Error named(const Error& error) const { return {error.code, m_path, error.detail}; }

 private:
  FileSystem& m_files;
  std::filesystem::path m_path;
  std::filesystem::path m_temporary;
  bool m_isReplaced = false;
};

}  // namespace quorvel
