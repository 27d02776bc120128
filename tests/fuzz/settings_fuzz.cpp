// Any text as settings file: a key that was written reads back, and no other line changes by a byte.
#include <vector>

#include "app/ini_document.h"
#include "app/settings.h"
#include "core/text.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

using namespace quorvel;
using namespace quorvel::test;

/// text without the bytes a name or value cannot have.
std::string without(std::string_view bytes, std::string text) {
  std::erase_if(text, [bytes](char c) { return bytes.find(c) != std::string_view::npos; });
  return text;
}

const std::string kControls = [] {
  std::string bytes = "\x7F";
  for (char c = 0; c < ' '; ++c)
    bytes += c;
  return bytes;
}();

std::string name(const std::string& text) {
  const std::string clean(trimBlanks(without("\r\n[]=", text)));
  return clean.empty() ? "a" : clean;
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

/// One line may differ, and one or two may come in; a last line without an end may get one.
void requireOtherLines(std::string_view before, std::string_view after, bool hadKey) {
  std::vector<std::string_view> old = linesOf(before);
  std::vector<std::string_view> now = linesOf(after);
  while (!old.empty() && !now.empty() && old.back() == now.back()) {
    old.pop_back();
    now.pop_back();
  }
  const auto first =
      static_cast<std::size_t>(std::mismatch(old.begin(), old.end(), now.begin(), now.end()).first - old.begin());
  const std::size_t changed = old.size() - first;
  require(changed <= 1, "at most one line changes");
  if (hadKey) return require(now.size() - first <= 1, "no line comes in");
  require(changed == 0 || (!old.back().ends_with('\n') && now[first].starts_with(old.back())), "only its end changes");
  require(now.size() - first <= 2 + changed, "at most two lines come in");
}

std::string readBack(std::string_view value) {
  value = trimBlanks(value);
  const bool isQuoted =
      value.size() > 1 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
  return std::string(isQuoted ? value.substr(1, value.size() - 2) : value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const std::string section = name(input.text(20));
  const std::string key = name(input.text(20));
  const std::string value = input.text(120);
  const std::string_view text = input.rest();

  const auto old = findIniValue(text, section, key);
  const std::string line = without("\r\n", value);
  const std::string changed = withIniValue(text, section, key, line);
  require(findIniValue(changed, section, key) == readBack(line), "a value that was written can be read");
  requireOtherLines(text, changed, old.has_value());

  MemoryFiles files;
  Settings settings(files, "folder");
  files.put(settings.path(), text);
  settings.WriteSetting(section, key, value);
  const std::string expected = readBack(without(kControls, value)).substr(0, kMaxSettingLength);
  require(settings.ReadSetting(section, key) == expected, "a setting that was written can be read");
  require(files.count() == 1, "no other file stays behind");
  (void)settings.readNumber(section, key);
  (void)settings.readFlag(section, key);
  settings.resetOtherVersion();
  require(!settings.ReadSetting("MAIN", "Version").empty(), "the file is of this version");
  return 0;
}
