#include "filter/session_filter.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/reference/comparison.h"

namespace quorvel::test {
namespace {

/// A session's events, "|" between them, each behind the session number unless it brings its own.
std::vector<std::string> events(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream parts(text);
  for (std::string event; std::getline(parts, event, '|');)
    lines.push_back(event.empty() || event[0] == '-' || event[0] == '(' ? event : "(000007) " + event);
  return lines;
}

/// What the literal filter writes of a session with these events; the program's writes the same.
std::vector<std::string> filter(CommandFilterOptions switches, const std::string& text) {
  const UserAct session{1, "", "(000007)", "10.0.0.5", "", "", "", 1, 0};
  std::string log;
  for (const std::string& event : events(text))
    log += event + "\r\n";
  EXPECT_EQ(compareSessionLines(log, {session}, switches, 4096), "");
  return sessionCommands(log, session, switches);
}

TEST(CommandFilter, CopiesTheChosenBlocks) {
  const std::pair<const char*, const char*> cases[] = {
      {"Connected to 10.0.0.5|RETR a|(000008) USER x|Sent file a|CWD /|- (000007) Closing connection|RETR b",
       "RETR a|Sent file a||"},
      {"stor a|received FILE a", "stor a|received FILE a||"},
      {"STOR a|150 go|Error receiving a|STOR b|550 Access denied|STOR c|501 Syntax error|RETR d|501 x|550|550 x",
       "STOR a|150 go|Error receiving a||STOR b|550 Access denied||STOR c|501 Syntax error||RETR d|501 x|550|550 x||"},
      {"DELE a|550 no", "DELE a|550 no||"},
      {"DELE a|NOOP|250 done", "DELE a||"},
      {"DELE a|DELE b|250 done", "DELE a||DELE b||"},
      {"SITE x|y|200 ok|SITE z|501", "SITE x|y|200 ok||SITE z|501||"},
      {"MDTM x|200 |213 1999|MDTM|553x", "MDTM x|200 |213 1999||MDTM|553x||"},
      {"RETR a|DELE b|Sent file a|250 |250 x", "RETR a|DELE b|Sent file a||250 |250 x||"},
      {"RETR a|- Starting FTP Server...|Sent file a", "RETR a"},
  };
  for (const auto& [log, expected] : cases)
    EXPECT_EQ(filter({.transfers = true, .deletes = true, .site = true, .mdtm = true}, log), events(expected)) << log;
  EXPECT_EQ(filter({.transfers = true}, "DELE a|SITE|MDTM|RETR b"), events("RETR b"));
}

}  // namespace
}  // namespace quorvel::test
