// The users file: the session records of the last scan in slots of one size, usually 128 bytes, record n in slot n.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "classic/find/record_format.h"
#include "classic/find/user_act.h"
#include "log/background_writer.h"
#include "log/file_system.h"

namespace quorvel {

/// Writes the records of one scan. Records are collected and written in batches; after flush() every record written
/// so far is complete in the file, so a scan flushes before it lets the interface, or another program, look.
class UsersFileWriter {
 public:
  /// Called for each record that could not be written, at the latest by flush().
  using FailureReporter = std::function<void(const UserAct& record, std::int32_t recordNumber, const Error& error)>;

  /// files must outlive the writer. The file is opened, and created where missing, by the first write. slotSize is one
  /// of those in record_format.h.
  UsersFileWriter(FileSystem& files, std::filesystem::path path, FailureReporter onFailure,
                  std::size_t slotSize = kRecordSize);
  UsersFileWriter(const UsersFileWriter&) = delete;
  UsersFileWriter& operator=(const UsersFileWriter&) = delete;
  ~UsersFileWriter();

  /// Puts a record, as encodeRecord() makes it for the slot size, into slot recordNumber (from 1, ascending). A record
  /// that finds no room in its slot is reported as BadRecordLength and not written; its number stays used up.
  void WriteSessionRecord(std::string_view record, std::int32_t recordNumber);
  void flush();

 private:
  struct Failure {
    UserAct record;
    std::int32_t recordNumber;
    Error error;
  };

  /// Puts whole batches into the file, in the background while more records come.
  Status writeBatch(std::string_view batch);
  Status openFile();
  void retryOneByOne(std::string_view batch, const Error& error);
  Status writeSlotMark();
  [[nodiscard]] bool hasSlotMark() const { return m_slotSize != kRecordSize; }
  [[nodiscard]] std::int32_t slotsIn(std::string_view batch) const;
  /// Takes away the part of a record that could not be written whole.
  void cutAt(std::uint64_t offset);

  FileSystem& m_files;
  std::filesystem::path m_path;
  FailureReporter m_onFailure;
  const std::size_t m_slotSize;
  std::string m_batch;  ///< whole slots, the last one cut behind its record
  std::int32_t m_firstInBatch = 1;

  // While a batch is written they belong to m_writer's thread.
  std::unique_ptr<File> m_file;
  std::int32_t m_firstToWrite = 1;  ///< record number of the first slot in the next batch written
  std::vector<Failure> m_failures;

  BackgroundWriter m_writer;
};

/// Reads records by number, and sets their tree index. The file itself tells the size of its slots.
class UsersFile {
 public:
  /// files must outlive nothing: the open file is all that is kept. Fails where the file is missing.
  [[nodiscard]] static Result<UsersFile> open(FileSystem& files, const std::filesystem::path& path,
                                              OpenMode mode = OpenMode::Read);

  /// Number of records, a shorter last slot included. Taken when the file was opened.
  [[nodiscard]] std::int32_t recordCount() const { return m_recordCount; }
  /// Record n, from 1; valid until the next call. Null behind the last record and when reading fails. A slot that was
  /// never filled, or is damaged, reads as an empty record with Position 0. Ascending reads cost one file access for
  /// many records.
  [[nodiscard]] const UserAct* read(std::int32_t recordNumber);
  /// The tree index of record n alone, at a fraction of the cost. Empty where read() is, and for a damaged slot.
  [[nodiscard]] std::optional<std::int32_t> treeIndex(std::int32_t recordNumber);
  /// Changes the tree index of a record just read; the rest of its slot stays as it is. Needs OpenMode::ReadWrite.
  /// The change is in the file after flush(). A damaged slot is left alone.
  void setTreeIndex(std::int32_t recordNumber, std::int32_t treeIndex);
  Status flush();
  /// What kept records from being read.
  [[nodiscard]] const Status& status() const { return m_status; }

 private:
  UsersFile(std::unique_ptr<File> file, std::size_t slotSize, std::int32_t recordCount);
  [[nodiscard]] std::string_view slot(std::int32_t recordNumber);

  std::unique_ptr<File> m_file;
  std::size_t m_slotSize;
  std::int32_t m_recordCount;
  std::string m_block;              ///< consecutive slots as they stand in the file, changes included
  std::int32_t m_firstInBlock = 0;  ///< record number of the first slot in m_block; 0: none read yet
  bool m_isChanged = false;
  UserAct m_record;  ///< read last; its texts keep their memory
  Status m_status;
};

}  // namespace quorvel
