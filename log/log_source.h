// Where the bytes of a log come from.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

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
  /// In bytes, as far as known; 0 where it is not.
  [[nodiscard]] virtual std::uint64_t size() const = 0;
  /// When the log was last changed, seconds since 1970 UTC; 0 unknown.
  [[nodiscard]] virtual std::int64_t changedTime() const { return 0; }
  /// A sentence on what was wrong with the bytes read so far: damage, a file cut meanwhile. Empty: nothing was.
  [[nodiscard]] virtual std::string note() const { return {}; }
};

/// The file of that name; an error names it.
[[nodiscard]] Result<std::unique_ptr<LogSource>> openLogSource(FileSystem& files, const std::filesystem::path& path,
                                                               std::string name);

}  // namespace quorvel
