// Packed logs: one log in a .gz, .bz2, .xz, .zst or .lz4, or any number of them in a .zip or .tar of any packing. What
// a file is, its content tells, not its name.
//
// Where the program is built without libarchive, no file counts as packed.
#pragma once

#include <cstdint>
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

/// A log that was packed alone as a stream: nothing is kept, and nothing is unpacked ahead of the reading. Null for
/// an archive. packed is read while the source lives; changedTime is the packed file's.
[[nodiscard]] Result<std::unique_ptr<LogSource>> unpackedStream(std::shared_ptr<File> packed, std::string name,
                                                                std::int64_t changedTime);

/// Unpacks everything there is, packed files in an archive too. Stops with an error that names the file where more
/// than 95 % of the room free at the beginning would be filled.
[[nodiscard]] Result<std::vector<ReadableLog>> unpackAll(FileSystem& files, std::shared_ptr<File> packed,
                                                         const std::string& name, const UnpackPlace& place);

}  // namespace quorvel
