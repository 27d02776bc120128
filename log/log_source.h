// Where the bytes of a log come from.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "log/file_system.h"

namespace quorvel {

/// Bytes of one log from front to back: a file, what is unpacked from one, standard input.
class LogSource {
 public:
  virtual ~LogSource() = default;
  /// For messages and the tables; UTF-8.
  [[nodiscard]] virtual std::string name() const = 0;
  /// Fills buffer; less than asked for only at the end for now. A growing log may give more later.
  [[nodiscard]] virtual Result<std::size_t> read(std::span<char> buffer) = 0;
  /// Goes back to the first byte; false where that cannot be: standard input.
  [[nodiscard]] virtual bool rewind() { return false; }
  /// In bytes, as far as known; 0 where it is not.
  [[nodiscard]] virtual std::uint64_t size() const = 0;
  /// When the log was last changed, seconds since 1970 UTC; 0 unknown.
  [[nodiscard]] virtual std::int64_t changedTime() const { return 0; }
  /// A sentence on what was wrong with the bytes read so far: damage, a file cut meanwhile. Empty: nothing was.
  [[nodiscard]] virtual std::string note() const { return {}; }
};

/// Packed logs and archives are unpacked in folder; see log/unpack.h.
struct UnpackPlace {
  std::filesystem::path folder;  ///< files without a name are made in it
  /// Asked about every megabyte; false stops, and what was unpacked so far counts as all there is.
  std::function<bool(std::uint64_t bytesUnpacked)> keepGoing{};
};

/// The logs in the file of that name, told by what it holds: itself, the log packed in it, as a stream, or all logs of
/// an archive in the archive's order. An error names the file.
[[nodiscard]] Result<std::vector<std::unique_ptr<LogSource>>> openLogs(FileSystem& files,
                                                                       const std::filesystem::path& path,
                                                                       const std::string& name,
                                                                       const UnpackPlace& place);

/// The logs in an open file that has no name of its own: standard input, put by.
[[nodiscard]] Result<std::vector<std::unique_ptr<LogSource>>> openLogs(FileSystem& files, std::shared_ptr<File> file,
                                                                       const std::string& name,
                                                                       const UnpackPlace& place,
                                                                       std::int64_t changedTime = 0);

/// The same logs to be looked at anywhere: their bytes, unpacked where they are packed.
struct ReadableLog {
  std::string name;  ///< as given, and the log's own in an archive: "logs.zip/ftp.log"; UTF-8
  std::unique_ptr<File> file;
  std::string note;  ///< a sentence on what could not be unpacked; empty: all of it was
};
[[nodiscard]] Result<std::vector<ReadableLog>> openForLooking(FileSystem& files, const std::filesystem::path& path,
                                                              const std::string& name, const UnpackPlace& place);

}  // namespace quorvel
