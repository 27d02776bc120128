// Packed logs: one log in a .gz, .bz2, .xz, .zst or .lz4, or any number of them in a .zip or .tar of any packing. What
// a file is, its content tells, not its name.
//
// Where the program is built without libarchive, no file counts as packed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "log/log_source.h"

namespace quorvel {

/// How much of a file isPacked() wants to see.
inline constexpr std::size_t kPackedHead = 512;
/// Whether a file that begins so is packed.
[[nodiscard]] bool isPacked(std::string_view head);
/// What unpacks here, for --version: "libarchive 3.6.2"; empty: nothing does.
[[nodiscard]] std::string unpackerVersion();

/// A log in an archive, or one that was packed alone, unpacked into a file that has no name any more.
struct UnpackedLog {
  std::string name;  ///< of the packed file, and of the log in it where it is an archive: "logs.zip/ftp.log"; UTF-8
  std::unique_ptr<File> file;
  std::string note;  ///< a sentence on what could not be unpacked; empty: all of it was
};

/// Where unpacked logs are put, and how long it may go on.
struct UnpackPlace {
  std::filesystem::path folder;  ///< files without a name are made in it
  /// Asked about every megabyte; false stops, and what was unpacked so far counts as all there is.
  std::function<bool(std::uint64_t bytesUnpacked)> keepGoing;
};

/// A log that was packed alone as a stream: nothing is kept, and nothing is unpacked ahead of the reading. Null for
/// an archive. packed is read while the source lives.
[[nodiscard]] Result<std::unique_ptr<LogSource>> unpackedStream(std::unique_ptr<File> packed, std::string name);

/// Unpacks everything there is, packed files in an archive too. Stops with an error that names the file where more
/// than 95 % of the room free at the beginning would be filled.
[[nodiscard]] Result<std::vector<UnpackedLog>> unpackAll(FileSystem& files, std::unique_ptr<File> packed,
                                                         const std::string& name, const UnpackPlace& place);

}  // namespace quorvel
