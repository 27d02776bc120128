// error.log: one block per error that a command survived.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "classic/find/user_act.h"
#include "log/background_writer.h"
#include "log/file_system.h"

namespace quorvel {

/// Appends blocks to error.log in the program folder. Failures to write it are ignored. Blocks are collected and
/// written in batches, all of them by flush(): a log can hold a million sessions that fit no record. The file is opened
/// by the first batch and stays open, so one ErrorLog should serve one command. Texts are written as the bytes they
/// are; of a field of a record, at most 4096.
class ErrorLog {
 public:
  ErrorLog(FileSystem& files, const std::filesystem::path& programFolder);
  ErrorLog(const ErrorLog&) = delete;
  ErrorLog& operator=(const ErrorLog&) = delete;
  ~ErrorLog();

  /// A session record that could not be written: a line with the log, the record number and the users file (a single
  /// blank before the latter), the four head lines and the record dump.
  void recordNotSaved(const std::filesystem::path& log, const std::filesystem::path& usersFile, const UserAct& record,
                      std::int32_t recordNumber, const Error& error);
  void flush();

 private:
  [[nodiscard]] Status write(std::string_view batch);
  void addHead(const Error& error);
  void addDump(const UserAct& record);
  void addLine(std::string_view text, std::string_view value = {});
  void addField(std::string_view label, std::string_view value);
  void endBlock();

  FileSystem& m_files;
  std::filesystem::path m_path;
  std::unique_ptr<File> m_file;
  std::string m_batch;  ///< whole blocks, but while one is added
  std::string m_head;   ///< of the last block in the batch, for the next ones
  ErrorCode m_headError{};
  BackgroundWriter m_writer;  ///< takes the full batches
};

}  // namespace quorvel
