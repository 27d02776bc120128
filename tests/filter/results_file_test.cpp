#include "filter/results_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

TEST(ResultsFile, AppendsBlocksAndCopiesTheLinesOfTheLastOne) {
  const TempFolder folder;
  const UserAct session{31, "alice", "(000007)", "10.0.0.5", "C", "L", "O", 1, 2};
  const std::string huge(5'000'000, 'x');  // larger than a batch
  std::string header;
  appendSessionBlockHeader(header, session);
  folder.write("out.txt", "old");
  folder.write("filter.qva", "a longer text of an earlier run");
  ResultsFile results(systemFiles(), folder / "out.txt");
  for (const std::string& line : {std::string("one"), huge}) {
    results.beginSession(session);
    for (const std::string& text : {line, std::string()})
      results.writeLine(text);
    results.endSession();
  }
  ASSERT_TRUE(results.copyLastLines(folder / "filter.qva").isOk());
  const std::string end = "\r\n\r\n\r\n\r\n\r\n\r\n";
  EXPECT_TRUE(folder.read("out.txt") == "old" + header + "one" + end + header + huge + end);
  EXPECT_TRUE(folder.read("filter.qva") == huge + "\r\n\r\n");
}

}  // namespace
}  // namespace quorvel::test
