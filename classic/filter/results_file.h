// The results file: one block per filtered session, appended to what the file holds.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "log/background_writer.h"
#include "log/file_system.h"

namespace quorvel {

/// Where the filtered lines of one session after the other go.
class FilterTarget {
 public:
  virtual ~FilterTarget() = default;
  virtual void write(std::string_view piece) = 0;
  virtual void endSession() = 0;
  /// Makes everything written so far visible.
  virtual void flush() = 0;
  /// False when a write failed; later ones do nothing then.
  [[nodiscard]] virtual bool isOk() const = 0;
};

/// Writes session blocks in large batches. The file is opened, and created where missing, by the first block. After
/// the first failure nothing more is written.
class ResultsFile final : public FilterTarget {
 public:
  /// files must outlive the results file.
  ResultsFile(FileSystem& files, std::filesystem::path path);
  ResultsFile(const ResultsFile&) = delete;
  ResultsFile& operator=(const ResultsFile&) = delete;
  ~ResultsFile() override;

  void write(std::string_view piece) override;
  void endSession() override;
  void flush() override;
  [[nodiscard]] bool isOk() const override { return m_status.isOk(); }

  /// The first failure.
  [[nodiscard]] const Status& status() const { return m_status; }
  /// True once a block was begun.
  [[nodiscard]] bool hasBlock() const { return m_hasBlock; }
  /// Writes the filtered lines of the last block, without its header of so many bytes and the empty lines after them,
  /// to a file of their own. A file of that name is replaced. Call it after endSession().
  Status copyLastLines(std::size_t headerSize, const std::filesystem::path& target);

 private:
  void beginBlock();
  void open();

  FileSystem& m_files;
  std::filesystem::path m_path;
  std::unique_ptr<File> m_file;
  std::optional<BackgroundWriter> m_appender;  ///< of m_file; takes the full batches
  Status m_status;
  std::string m_batch;
  std::uint64_t m_length = 0;  ///< of the file, m_batch included
  std::uint64_t m_blockBegin = 0;
  std::uint64_t m_linesEnd = 0;
  bool m_hasBlock = false;
  bool m_isInBlock = false;
};

}  // namespace quorvel
