#include "app/help_text.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/temp_folder.h"
#include "tools/command_line_reference.h"

namespace quorvel::test {
namespace {

TEST(HelpText, IsTheFirstFileFoundOrTheProgramsOwn) {
  const TempFolder first;
  const TempFolder second;
  const std::array folders{first.path(), second.path()};
  EXPECT_EQ(commandLineReferenceText(systemFiles(), folders), commandLineReference());
  second.write("CLA_ref.txt", "second");
  EXPECT_EQ(commandLineReferenceText(systemFiles(), folders), "second");
  first.write("CLA_ref.txt", "first");
  EXPECT_EQ(commandLineReferenceText(systemFiles(), folders), "first");
}

}  // namespace
}  // namespace quorvel::test
