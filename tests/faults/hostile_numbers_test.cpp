// Numbers nobody would write by accident: in the log, in the settings, and positions no record can hold.
#include <gtest/gtest.h>

#include <limits>
#include <regex>
#include <string>

#include "cli/batch_run.h"
#include "tests/faults/program_world.h"

namespace quorvel::test {
namespace {

const std::string kDigits(400, '9');

TEST(HostileNumbers, ByteCountsThatDoNotFitAreLeftOut) {
  const TempFolder folder;
  folder.write("quorvel.ini", busySettings());
  std::string log = logLines("(000002)");
  for (const std::string& count : {kDigits, "-" + kDigits, std::string("1e400"), std::string("922337203685478"),
                                   std::string("nan"), std::string(), std::string("-5"), std::string("1e2")})
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
       {std::string(), std::string("-1"), std::string("0"), std::string("1000000000"), std::string("2147483648"),
        std::string("-99999999999"), kDigits, std::string("abc"), std::string("1e9"), std::string("\xFF=[;")}) {
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
  constexpr std::uint64_t kLast = std::numeric_limits<std::int32_t>::max();
  const TempFolder folder;
  folder.write("quorvel.ini", busySettings());
  const auto path = folder.write("a.log", logLines("(000002)"));
  const std::string line = logLines("(000001) Connected");
  // The ")" of one connect line lies at the last position that fits, that of the next one just behind it.
  const auto bracket = line.find(')') + 1;
  auto log = systemFiles().open(path, OpenMode::ReadWrite);
  ASSERT_TRUE(log.isOk());
  if (!log.value()->resize(kLast + 1000).isOk()) GTEST_SKIP() << "no file of 2 GB can be made here";
  ASSERT_TRUE(log.value()->writeAt(kLast - bracket, line).isOk());
  ASSERT_TRUE(log.value()->writeAt(kLast - bracket + line.size(), logLines("(000003) Connected")).isOk());

  ProgramWorld world(systemFiles(), folder.path());
  world.window.useLog(path, "a.log", LogType::ServU);
  world.window.mnuFindUsers_Click();
  auto users = UsersFile::open(systemFiles(), folder / "users.qva");
  ASSERT_TRUE(users.isOk());
  ASSERT_EQ(users.value().recordCount(), 2);
  EXPECT_EQ(users.value().read(1)->Name, "bob");
  EXPECT_EQ(users.value().read(2)->Position, std::numeric_limits<std::int32_t>::max());
  const std::string errors = folder.read("error.log");
  EXPECT_NE(errors.find("VB Error No. 6\r\nVB Error Description: Overflow\r\n"), std::string::npos);
  EXPECT_EQ(errors.find("VB Error No."), errors.rfind("VB Error No.")) << "one block";
  EXPECT_TRUE(world.allMessages().starts_with("One or more errors where generated")) << world.allMessages();
  EXPECT_GT(world.window.state().tree.nodeCount(), 0);
}

}  // namespace
}  // namespace quorvel::test
