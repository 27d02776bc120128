#include "tools/command_line_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tools/command_codes.h"

namespace quorvel::test {
namespace {

TEST(CommandLineReference, ListsEveryCodeInOrderAndFitsATerminal) {
  std::istringstream text(commandLineReference());
  std::vector<std::string> all;
  for (std::string line; std::getline(text, line);)
    all.push_back(line);
  auto from = all.begin();
  for (const CommandCode& code : kCommandCodes) {
    const std::string start = "  " + std::to_string(code.code) + "  " + std::string(code.value);
    from = std::find_if(from, all.end(), [&](const std::string& line) { return line.starts_with(start); });
    ASSERT_NE(from, all.end()) << code.code;
    EXPECT_NE(from->find(code.action), std::string::npos) << *from;
  }
  for (const std::string& line : all) {
    EXPECT_LE(line.size(), 79U) << line;
    EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; })) << line;
  }
}

}  // namespace
}  // namespace quorvel::test
