#include "tools/command_line_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tools/command_codes.h"

namespace quorvel::test {
namespace {

std::vector<std::string> lines() {
  std::istringstream text(commandLineReference());
  std::vector<std::string> found;
  for (std::string line; std::getline(text, line);)
    found.push_back(line);
  return found;
}

TEST(CommandLineReference, ListsEveryCodeInOrder) {
  const auto all = lines();
  auto from = all.begin();
  for (const CommandCode& code : kCommandCodes) {
    const std::string start = "  " + std::to_string(code.code) + "  " + std::string(code.value);
    from = std::find_if(from, all.end(), [&](const std::string& line) { return line.starts_with(start); });
    ASSERT_NE(from, all.end()) << code.code;
    EXPECT_NE(from->find(code.action), std::string::npos) << *from;
  }
}

TEST(CommandLineReference, ExamplesUseOnlyCodesThatExist) {
  int examples = 0;
  for (const std::string& line : lines()) {
    if (!line.starts_with("  quorvel ") || line.find(".txt") == std::string::npos) continue;
    ++examples;
    std::istringstream words(line);
    for (std::string word; words >> word;) {
      if (word.find_first_not_of("0123456789") != std::string::npos) continue;
      EXPECT_TRUE(std::any_of(kCommandCodes.begin(), kCommandCodes.end(), [&](const CommandCode& code) {
        return std::to_string(code.code) == word;
      })) << line;
    }
  }
  EXPECT_GE(examples, 3);
}

TEST(CommandLineReference, FitsATerminal) {
  for (const std::string& line : lines()) {
    EXPECT_LE(line.size(), 79U) << line;
    EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; })) << line;
  }
}

}  // namespace
}  // namespace quorvel::test
