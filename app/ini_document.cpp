#include "app/ini_document.h"

#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// One line of the text: where it starts, where its content ends and where the next line starts.
struct Line {
  std::size_t begin = 0;
  std::size_t contentEnd = 0;
  std::size_t end = 0;
};

/// Where a key stands, or would have to be added.
struct Place {
  bool hasSection = false;
  bool hasKey = false;
  std::size_t valueBegin = 0;  ///< with hasKey: behind the "="
  std::size_t valueEnd = 0;    ///< with hasKey: before the line end
  std::size_t lineBegin = 0;   ///< with hasKey
  std::size_t insertAt = 0;    ///< with hasSection: behind the last line of the section that is not empty
};

Line lineAt(std::string_view text, std::size_t begin) {
  const auto lineFeed = text.find('\n', begin);
  if (lineFeed == std::string_view::npos) return {begin, text.size(), text.size()};
  const bool hasReturn = lineFeed > begin && text[lineFeed - 1] == '\r';
  return {begin, hasReturn ? lineFeed - 1 : lineFeed, lineFeed + 1};
}

/// The name in a line "[name]"; empty optional for any other line.
std::optional<std::string_view> sectionName(std::string_view content) {
  content = trimBlanks(content);
  if (!content.starts_with('[')) return std::nullopt;
  const auto closing = content.find(']');
  if (closing == std::string_view::npos) return std::nullopt;
  return trimBlanks(content.substr(1, closing - 1));
}

bool isEntryOf(std::string_view key, std::string_view content) {
  const auto equals = content.find('=');
  if (equals == std::string_view::npos) return false;
  return equalsFolded(trimBlanks(content.substr(0, equals)), key);  // a comment's ";" is part of its "key"
}

Place findPlace(std::string_view text, std::string_view section, std::string_view key) {
  Place place;
  std::size_t begin = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  while (begin < text.size()) {
    const Line line = lineAt(text, begin);
    begin = line.end;
    const auto content = text.substr(line.begin, line.contentEnd - line.begin);
    if (const auto name = sectionName(content)) {
      if (place.hasSection) return place;
      place.hasSection = equalsFolded(*name, section);
      place.insertAt = line.end;
    } else if (place.hasSection && isEntryOf(key, content)) {
      place.hasKey = true;
      place.lineBegin = line.begin;
      place.valueBegin = line.begin + content.find('=') + 1;
      place.valueEnd = line.contentEnd;
      return place;
    } else if (place.hasSection && !trimBlanks(content).empty()) {
      place.insertAt = line.end;
    }
  }
  return place;
}

std::string_view withoutQuotes(std::string_view value) {
  const bool isQuoted =
      value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
  return isQuoted ? value.substr(1, value.size() - 2) : value;
}

std::string_view lineEndOf(std::string_view text) {
  const auto lineFeed = text.find('\n');
  const bool isBare = lineFeed != std::string_view::npos && (lineFeed == 0 || text[lineFeed - 1] != '\r');
  return isBare ? std::string_view("\n") : kLineEnd;
}

}  // namespace

std::optional<std::string_view> findIniValue(std::string_view text, std::string_view section, std::string_view key) {
  const Place place = findPlace(text, section, key);
  if (!place.hasKey) return std::nullopt;
  return withoutQuotes(trimBlanks(text.substr(place.valueBegin, place.valueEnd - place.valueBegin)));
}

std::string withIniValue(std::string_view text, std::string_view section, std::string_view key,
                         std::string_view value) {
  const Place place = findPlace(text, section, key);
  const std::string_view lineEnd = lineEndOf(text);
  std::string changed;
  const auto add = [&changed](auto... parts) { (changed.append(parts), ...); };
  if (place.hasKey) {
    const auto oldKey = text.substr(place.lineBegin, place.valueBegin - 1 - place.lineBegin);
    add(text.substr(0, place.lineBegin), trimBlanks(oldKey), "=", value, text.substr(place.valueEnd));
    return changed;
  }
  const std::size_t at = place.hasSection ? place.insertAt : text.size();
  add(text.substr(0, at));
  if (at > 0 && text[at - 1] != '\n') add(lineEnd);
  if (!place.hasSection) add("[", section, "]", lineEnd);
  add(key, "=", value, lineEnd, text.substr(at));
  return changed;
}

}  // namespace quorvel
