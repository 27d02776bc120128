// Any text as settings file: a key that was written reads back, and no other line changes by a byte.
#include "app/ini_document.h"
#include "app/settings.h"
#include "log/text.h"
#include "tests/fuzz/fuzz_input.h"

namespace quorvel::test {
namespace {

/// text without the bytes a name or value cannot have.
std::string without(std::string_view bytes, std::string text) {
  std::erase_if(text, [bytes](char c) { return bytes.find(c) != std::string_view::npos; });
  return text;
}

std::string name(const std::string& text) {
  const std::string clean(trimBlanks(without("\r\n[]=", text)));
  return clean.empty() ? "a" : clean;
}

/// One line may differ, or one or two may come in; a last line without an end may get one.
void requireOtherLines(std::string_view before, std::string_view after, bool hadKey) {
  const auto [b, a] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const std::string_view old(b, before.end());
  const std::string_view now(a, after.end());
  const auto same = std::mismatch(old.rbegin(), old.rend(), now.rbegin(), now.rend()).first - old.rbegin();
  const auto lines = [same](std::string_view text) { return std::count(text.begin(), text.end() - same, '\n'); };
  if (hadKey) return require(lines(old) == 0 && lines(now) == 0, "at most one line changes");
  require(old.size() == static_cast<std::size_t>(same), "nothing goes");
  require(lines(now) <= 2 + (before.ends_with('\n') ? 0 : 1), "at most two lines come in");
}

std::string readBack(std::string_view value) {
  value = trimBlanks(value);
  const bool isQuoted =
      value.size() > 1 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
  return std::string(isQuoted ? value.substr(1, value.size() - 2) : value);
}

}  // namespace

void runTarget(FuzzInput input) {
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
  std::string kept = value;
  std::erase_if(kept, [](unsigned char c) { return c < ' ' || c == 0x7F; });
  const std::string expected = readBack(kept).substr(0, kMaxSettingLength);
  require(settings.ReadSetting(section, key) == expected, "a setting that was written can be read");
  require(files.paths().size() == 1, "no other file stays behind");
  (void)settings.readNumber(section, key);
  (void)settings.readFlag(section, key);
  settings.resetOtherVersion();
  require(!settings.ReadSetting("MAIN", "Version").empty(), "the file is of this version");
}

}  // namespace quorvel::test
