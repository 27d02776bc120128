#include "filter/session_filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text.h"

namespace quorvel::test {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kStamp = "Wed 19Jan05 13:28:08";

class Collected : public FilterOutput {
 public:
  void writeLine(std::string_view line) override { lines.emplace_back(line); }
  Lines lines;
};

UserAct session(const std::string& number = "(000007)") {
  UserAct record;
  record.Position = 31;
  record.NumberInLog = number;
  record.IP = "10.0.0.5";
  record.ConnectTime = kStamp;
  return record;
}

/// Feeds the lines as the log would hand them out, and returns what was written.
Lines filter(SessionFilter& filter, const Lines& log, const UserAct& record = session()) {
  Collected output;
  filter.begin(record);
  for (const std::string& text : log) {
    const SessionLine line{text, containsFolded(text, record.NumberInLog), containsFolded(text, kServerStartMark)};
    if ((line.hasSessionMark || line.hasServerStart) && !filter.line(line, output)) break;
  }
  return output.lines;
}

std::string at(const std::string& event) {
  return kStamp + (" - " + event);
}

const std::string kConnect = at("(000007) Connected to 10.0.0.5 (Local address 10.0.0.1)");
const std::string kClose = at("(000007) Closing connection for user TEST");
const std::string kStart = at("Starting FTP Server...");

TEST(EntireSessionFilter, CopiesTheLinesFromConnectToClose) {
  const std::string user = at("(000007) USER alice");
  struct Case {
    const char* what;
    Lines log;
    Lines expected;
  };
  const std::vector<Case> cases = {
      {"whole session", {kConnect, user, kClose, user}, {kConnect, user, kClose}},
      {"lines before the connect line", {user, kClose, kStart, kConnect, user}, {kConnect, user}},
      {"other sessions between", {kConnect, at("(000008) USER bob"), kClose}, {kConnect, kClose}},
      {"server restart", {kConnect, kStart, user}, {kConnect}},
      {"restart in a session line",
       {kConnect, "(000007) - starting ftp server...", user},
       {kConnect, "(000007) - starting ftp server..."}},
      {"connect line of another time", {"Thu" + kConnect.substr(3), user, kClose}, {}},
      {"connect line in other case",
       {foldCase(kConnect), foldCase(kClose), user},
       {foldCase(kConnect), foldCase(kClose)}},
      {"closing of another session",
       {kConnect, at("(000008) x (000007) Closing connection"), user, kClose},
       {kConnect, at("(000008) x (000007) Closing connection"), user, kClose}},
      {"close mark behind another number of its own",
       {kConnect, at("(000007) said - (000007) closing connection"), user},
       {kConnect, at("(000007) said - (000007) closing connection")}},
  };
  EntireSessionFilter engine;
  for (const Case& c : cases)
    EXPECT_EQ(filter(engine, c.log), c.expected) << c.what;
}

TEST(EntireSessionFilter, FindsNumbersOfAnyForm) {
  for (const char* number : {"(000007)", "ABCDEFGH", "Aa Aa Ab", "AaAaAaAb", "((((((()", "\xC4xyz (7)"}) {
    UserAct record = session(number);
    const std::string connect = kStamp + (" - ((A" + record.NumberInLog) + " Connected to 10.0.0.5";
    const std::string good = kStamp + (" - " + record.NumberInLog) + " Connected to 10.0.0.5";
    EntireSessionFilter engine;
    EXPECT_EQ(filter(engine, {connect, foldCase(good), connect}, record), (Lines{foldCase(good), connect})) << number;
  }
}

/// Short lines of session (000007), and what the command filter copies of them.
struct CommandCase {
  const char* what;
  Lines log;
  Lines expected;
};

std::ostream& operator<<(std::ostream& out, const CommandCase& c) {
  return out << c.what;
}

class CommandFilterTest : public testing::TestWithParam<CommandCase> {};

TEST_P(CommandFilterTest, CopiesTheChosenBlocks) {
  Lines log;
  for (const std::string& event : GetParam().log)
    log.push_back(event.starts_with("- ") || event.starts_with("(") ? event : "(000007) " + event);
  Lines expected;
  for (const std::string& event : GetParam().expected)
    expected.push_back(event.empty() ? event : "(000007) " + event);
  CommandFilter engine({.transfers = true, .deletes = true, .site = true, .mdtm = true});
  EXPECT_EQ(filter(engine, log), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Blocks, CommandFilterTest,
    testing::Values(CommandCase{"the download of a session",
                                {"Connected to 10.0.0.5", "RETR a.zip", "(000008) USER x", "Sent file a.zip", "CWD /",
                                 "- (000007) Closing connection"},
                                {"RETR a.zip", "Sent file a.zip", ""}},
                    CommandCase{"lower case", {"stor a", "received FILE a"}, {"stor a", "received FILE a", ""}},
                    CommandCase{"transfer ends",
                                {"STOR a", "150 go", "Error receiving a", "STOR b", "550 Access denied", "STOR c",
                                 "501 Syntax error", "RETR d", "501 other", "550", "550 x"},
                                {"STOR a", "150 go", "Error receiving a", "", "STOR b", "550 Access denied", "",
                                 "STOR c", "501 Syntax error", "", "RETR d", "501 other", "550", "550 x", ""}},
                    CommandCase{"delete done", {"DELE a", "250 done", "250 x"}, {"DELE a", "250 done", ""}},
                    CommandCase{"delete refused", {"DELE a", "550 no"}, {"DELE a", "550 no", ""}},
                    CommandCase{"reply not on the next line", {"DELE a", "NOOP", "250 done"}, {"DELE a", ""}},
                    CommandCase{"delete after delete", {"DELE a", "DELE b", "250 done"}, {"DELE a", "", "DELE b", ""}},
                    CommandCase{"site",
                                {"SITE x", "y", "200 ok", "SITE z", "501"},
                                {"SITE x", "y", "200 ok", "", "SITE z", "501", ""}},
                    CommandCase{"mdtm",
                                {"MDTM x", "200 ", "213 1999", "MDTM", "553x"},
                                {"MDTM x", "200 ", "213 1999", "", "MDTM", "553x", ""}},
                    CommandCase{"a delete inside a transfer waits",
                                {"RETR a", "DELE b", "Sent file a", "250 ", "250 x"},
                                {"RETR a", "DELE b", "Sent file a", "", "250 ", "250 x", ""}},
                    CommandCase{"server start ends", {"RETR a", "- Starting FTP Server...", "Sent file a"}, {"RETR a"}},
                    CommandCase{"a command elsewhere in the line", {"USER RETR", "said (000008) RETR"}, {}}));

TEST(CommandFilter, IgnoresCommandsThatAreOffAndStartsEachSessionAnew) {
  CommandFilter engine({.transfers = true});
  EXPECT_EQ(filter(engine, {"(000007) DELE a", "(000007) SITE", "(000007) MDTM", "(000007) RETR b"}),
            Lines{"(000007) RETR b"});
  EXPECT_EQ(filter(engine, {"(000007) NOOP"}), Lines{});
}

}  // namespace
}  // namespace quorvel::test
