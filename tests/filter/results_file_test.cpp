#include "filter/results_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

const std::string kHeader =
    "--------------------------------------------------\r\n"
    "Username:          alice\r\n"
    "IP:                10.0.0.5\r\n"
    "Connect time:      Wed 19Jan05 13:28:08\r\n"
    "Logon time:        Wed 19Jan05 13:28:09\r\n"
    "Logoff time:       NOT_LOGGED_OUT\r\n"
    "Number in log:     (000007)\r\n"
    "Position:          31\r\n"
    "\r\n";
const std::string kEnd = "\r\n\r\n\r\n\r\n";

class ResultsFileTest : public testing::Test {
 protected:
  void addBlock(ResultsFile& results, std::initializer_list<std::string_view> lines) const {
    results.beginSession(m_session);
    for (const std::string_view line : lines)
      results.writeLine(line);
    results.endSession();
  }

  TempFolder m_folder;
  UserAct m_session{
      31, "alice", "(000007)", "10.0.0.5", "Wed 19Jan05 13:28:08", "Wed 19Jan05 13:28:09", "NOT_LOGGED_OUT", 1, 2};
};

TEST_F(ResultsFileTest, AppendsBlocksAndCopiesTheLinesOfTheLastOne) {
  const std::string huge(5'000'000, 'x');  // larger than a batch
  m_folder.write("out.txt", "old");
  m_folder.write("filter.qva", "a longer text of an earlier run");
  ResultsFile results(systemFiles(), m_folder / "out.txt");
  addBlock(results, {"one", ""});
  addBlock(results, {"two", huge, "three"});
  ASSERT_TRUE(results.copyLastLines(m_folder / "filter.qva").isOk());
  const std::string lastLines = "two\r\n" + huge + "\r\nthree\r\n";
  EXPECT_EQ(m_folder.read("out.txt"), "old" + kHeader + "one\r\n\r\n" + kEnd + kHeader + lastLines + kEnd);
  EXPECT_EQ(m_folder.read("filter.qva"), lastLines);
}

TEST_F(ResultsFileTest, ShowsCompleteLinesAfterAFlush) {
  ResultsFile results(systemFiles(), m_folder / "out.txt");
  results.beginSession(m_session);
  results.writeLine("one");
  results.flush();
  EXPECT_EQ(m_folder.read("out.txt"), kHeader + "one\r\n");
}

TEST_F(ResultsFileTest, NamesTheFileThatCannotBeWritten) {
  ResultsFile results(systemFiles(), m_folder.path());
  addBlock(results, {"one"});
  addBlock(results, {"two"});
  EXPECT_EQ(results.status().error().file, m_folder.path());
  EXPECT_FALSE(results.copyLastLines(m_folder / "filter.qva").isOk());
  EXPECT_FALSE(m_folder.has("filter.qva"));
}

}  // namespace
}  // namespace quorvel::test
