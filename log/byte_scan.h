// The inner loops that find the few bytes worth a closer look in a block of log text, many bytes at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorvel {

/// Bytes that must be readable behind the end of a block handed to ByteScan.
inline constexpr std::size_t kScanSlack = 64;

enum class ScanFor {
  SessionEvents,  ///< ") " and the first letter of an event that a session record is made from, or "- S"
  SessionLines,   ///< ")", which ends every session number, "- S", or a line end
  Transfers,      ///< " Se", " Re", " Er": the starts of the four transfer marks, in this case only
};

/// Writes the offsets below count at which data may hold what is looked for, in ascending order, to offsets, which
/// grows to the number found. Letters of "- S" and of events count in either case. data[count + kScanSlack - 1] must
/// be readable.
void scanBytes(ScanFor what, const char* data, std::size_t count, std::vector<std::uint32_t>& offsets);

}  // namespace quorvel
