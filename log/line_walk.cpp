#include "log/line_walk.h"

#include <vector>

namespace quorvel {
namespace {

constexpr std::size_t kBlockSize = 1 << 20;

}  // namespace

Status walkLines(const File& file, std::uint64_t from, std::uint64_t to, const std::atomic<bool>& isCancelled,
                 const std::function<bool(std::uint64_t, std::string_view)>& take) {
  std::vector<char> block(kBlockSize);
  bool isInside = false;  // of a line whose beginning was taken
  while (from < to && !isCancelled) {
    const auto count = file.readAt(from, block);
    if (!count.isOk()) return count.error();
    std::string_view rest(block.data(), count.value());
    const bool isLast = rest.size() < block.size();
    if (rest.empty()) return {};
    std::uint64_t at = from;
    while (!rest.empty() && at < to) {
      const std::size_t end = rest.find('\n');
      const bool isCut = end == std::string_view::npos;
      if (isCut && !isLast && at > from) break;  // the next block begins with it
      std::string_view line = rest.substr(0, end);
      if (line.ends_with('\r')) line.remove_suffix(1);
      if (!isInside && !take(at, line)) return {};
      isInside = isCut;
      const std::size_t length = isCut ? rest.size() : end + 1;
      rest.remove_prefix(length);
      at += length;
    }
    from = at;
  }
  return {};
}

}  // namespace quorvel
