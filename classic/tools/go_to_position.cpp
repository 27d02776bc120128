#include "classic/tools/go_to_position.h"

#include <algorithm>

#include "log/log_file.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr LogPosition kLowestPosition = 1001;
constexpr LogPosition kBytesBefore = 500;
constexpr LogPosition kBytesAfter = 4500;

std::optional<LogPosition> parsePosition(std::string_view text) {
  const auto number = parseInteger(text);
  if (!number) return std::nullopt;
  return std::max<LogPosition>(*number, kLowestPosition);
}

std::optional<std::string> readText(const LogFile& log, LogPosition from, LogPosition length) {
  std::string text(static_cast<std::size_t>(length), '\0');
  const auto count = log.readAt(from, text);
  if (!count.isOk()) return std::nullopt;
  text.resize(count.value());
  return text;
}

}  // namespace

std::optional<std::string> textAroundPosition(FileSystem& files, const std::filesystem::path& log,
                                              std::string_view position) {
  const auto start = parsePosition(position);
  if (!start || log.empty()) return std::nullopt;
  const auto file = LogFile::open(files, log);
  if (!file.isOk()) return std::nullopt;
  const auto before = readText(file.value(), *start - kBytesBefore, kBytesBefore);
  const auto after = readText(file.value(), *start, kBytesAfter);
  if (!before || !after) return std::nullopt;
  return *before + "\r\n\r\n" + *after;
}

}  // namespace quorvel
