// Text of any bytes: there and back between Windows-1252 and UTF-8, searches without regard to case, numbers, and the
// text around a position of a log.
#include <charconv>

#include "classic/tools/go_to_position.h"
#include "log/text.h"
#include "tests/classic/reference/literal_scans.h"
#include "tests/fuzz/fuzz_input.h"

namespace quorvel::test {
namespace {

void checkFolding(std::string_view text, std::string_view needle) {
  const std::string folded = lowerCase(text);
  const std::string wanted = lowerCase(needle);
  require(foldCase(text) == folded && lowerCase(upperCase(text)) == folded, "case");
  require(findFolded(text, needle) == folded.find(wanted), "the place of a text");
  require(startsWithFolded(text, needle) == folded.starts_with(wanted), "the start of a text");
  require(equalsFolded(text, needle) == (folded == wanted), "equality");
}

void checkNumber(std::string_view text) {
  std::string_view digits = trimBlanks(text);
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
  require(parseInteger(text) == (isNumber ? std::optional(value) : std::nullopt), "a number");
}

void checkPosition(std::string_view text, std::int64_t position, std::string_view number) {
  MemoryFiles files;
  files.put("a.log", text);
  require(textAroundPosition(files, "a.log", number).has_value() == parseInteger(number).has_value(),
          "a position is a number");
  const auto shown = textAroundPosition(files, "a.log", std::to_string(position));
  const std::size_t at = position < 1001 ? 1000 : static_cast<std::size_t>(position) - 1;
  const auto part = [text](std::size_t from, std::size_t length) {
    return std::string(from < text.size() ? text.substr(from, length) : std::string_view());
  };
  require(shown == part(at - 500, 500) + "\r\n\r\n" + part(at, 4500), "the text around a position");
}

}  // namespace

void runTarget(FuzzInput input) {
  const auto position = static_cast<std::int32_t>(input.flag() ? input.number(4) : input.number(2));
  const std::string needle = input.text(8);
  const std::string text = input.expandedRest(20'000);
  require(toWindows1252(toUtf8(text)) == text, "Windows-1252 survives the way to UTF-8 and back");
  const std::string utf8 = toUtf8(toWindows1252(text));
  require(toUtf8(toWindows1252(utf8)) == utf8, "text that was converted is not converted again");
  checkFolding(text, needle);
  checkNumber(needle);
  checkNumber(text);
  checkPosition(text, position, text);
}

}  // namespace quorvel::test
