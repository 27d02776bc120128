// bad_trans.txt: the lines of failed transfers, under a header for each count that found some.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "log/file_system.h"

namespace quorvel {

/// Appends lines in batches. The file is opened, and created where missing, by the first write; failures to write it
/// are ignored.
class BadTransferLog {
 public:
  /// files must outlive the log.
  BadTransferLog(FileSystem& files, std::filesystem::path path);
  BadTransferLog(const BadTransferLog&) = delete;
  BadTransferLog& operator=(const BadTransferLog&) = delete;
  ~BadTransferLog();

  /// Adds the line of a failed transfer from its 28th character on, the first of a count below a header.
  void LogBadTransfer(std::string_view line, bool isFirst);
  /// Makes every line so far visible.
  void flush();

 private:
  FileSystem& m_files;
  std::filesystem::path m_path;
  std::unique_ptr<File> m_file;
  std::string m_batch;
};

}  // namespace quorvel
