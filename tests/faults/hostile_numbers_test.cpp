// Numbers nobody would write by accident: in the log, in the settings, and positions no record can hold.
#include <gtest/gtest.h>

#include <limits>
#include <regex>
#include <string>

#include "cli/batch_run.h"
#include "tests/faults/program_world.h"

namespace quorvel::test {
namespace {

using namespace std::string_literals;

const std::string kDigits(400, '9');

TEST(HostileNumbers, ByteCountsThatDoNotFitAreLeftOut) {
  const TempFolder folder;
  folder.write("quorvel.ini", busySettings());
  std::string log = logLines("(000002)");
  for (const std::string& count : {kDigits, "-" + kDigits, "1e400"s, "922337203685478"s, "nan"s, ""s, "-5"s, "1e2"s})
    log += "Wed 19Jan05 13:28:06 - (000001) Sent file a (1 Kb/sec - " + count + " bytes)\r\n";
  ProgramWorld world(systemFiles(), folder.path());
  world.scan(folder.write("a.log", log));
  world.window.mnuCountAllTransfers_Click();
  const auto results = world.view.callsStartingWith("counter result");
  ASSERT_EQ(results.size(), 1u);
  EXPECT_NE(results[0].find("sends: 8 - (95 bytes)"), std::string::npos) << results[0];
}

TEST(HostileNumbers, AnySettingLetsEverythingRun) {
  for (const std::string& value :
       {""s, "-1"s, "0"s, "1000000000"s, "2147483648"s, "-99999999999"s, kDigits, "abc"s, "1e9"s, "\xFF=[;"s}) {
    SCOPED_TRACE(value);
    const TempFolder folder;
    const std::regex anyValue("(\n(?!Version)[^=\r]*=)[^\r]*");
    folder.write("quorvel.ini", std::regex_replace(busySettings(), anyValue, "$1" + value));
    const auto log = folder.write("a.log", logLines(""));
    ProgramWorld world(systemFiles(), folder.path());
    world.scan(log);
    EXPECT_EQ(folder.read("users.qva").size() / 128, 2u) << "two whole slots and a part of the third";
    (void)world.window.readPlacement();
    (void)runBatch(world.window, log.string() + " 100 210 300 " + (folder / "out.txt").string());
    EXPECT_EQ(folder.read("a.log"), logLines(""));
  }
}

TEST(HostileNumbers, AScanEndsWhereNoRecordCanPoint) {
  constexpr std::int32_t kLast = std::numeric_limits<std::int32_t>::max();
  const TempFolder folder;
  folder.write("quorvel.ini", busySettings());
  const auto path = folder.write("a.log", logLines("(000002)"));
  // The ")" of one connect line lies at the last position that fits, that of the next one just behind it.
  const std::string lines = logLines("(000001) Connected") + logLines("(000003) Connected");
  std::error_code tooLarge;
  std::filesystem::resize_file(path, std::uint64_t{kLast} - lines.find(')') - 1, tooLarge);
  if (tooLarge) GTEST_SKIP() << "no file of 2 GB can be made here";
  std::ofstream(path, std::ios::binary | std::ios::app) << lines << std::string(1000, ' ');

  ProgramWorld world(systemFiles(), folder.path());
  world.window.useLog(path, "a.log", LogType::ServU);
  world.window.mnuFindUsers_Click();
  auto users = UsersFile::open(systemFiles(), folder / "users.qva");
  ASSERT_TRUE(users.isOk() && users.value().recordCount() == 2);
  EXPECT_EQ(users.value().read(1)->Name, "bob");
  EXPECT_EQ(users.value().read(2)->Position, kLast);
  const std::string errors = folder.read("error.log");
  EXPECT_NE(errors.find("VB Error No. 6\r\nVB Error Description: Overflow\r\n"), std::string::npos);
  EXPECT_EQ(errors.find("VB Error No."), errors.rfind("VB Error No.")) << "one block";
  EXPECT_TRUE(world.allMessages().starts_with("One or more errors where generated")) << world.allMessages();
  EXPECT_GT(world.window.state().tree.nodeCount(), 0);
}

}  // namespace
}  // namespace quorvel::test
