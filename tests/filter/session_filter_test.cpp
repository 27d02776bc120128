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
  const std::string otherClose = at("(000008) x (000007) Closing connection");
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
      {"restart in a session line", {kConnect, "(000007) " + kStart, user}, {kConnect, "(000007) " + kStart}},
      {"connect line of another time", {"Thu" + kConnect.substr(3), user, kClose}, {}},
      {"other case", {foldCase(kConnect), foldCase(kClose), user}, {foldCase(kConnect), foldCase(kClose)}},
      {"no close mark", {kConnect, otherClose, user}, {kConnect, otherClose, user}},
      {"close mark at the second number", {kConnect, "(000007) " + kClose, user}, {kConnect, "(000007) " + kClose}},
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

/// The events of a text like "RETR a|Sent file a", each behind the session number unless it brings its own.
Lines events(std::string_view text) {
  Lines lines;
  for (std::size_t end = 0; end != std::string_view::npos; text.remove_prefix(std::min(end, text.size() - 1) + 1)) {
    if (text.empty()) break;
    end = text.find('|');
    const std::string event(text.substr(0, end));
    lines.push_back(event.empty() || event[0] == '-' || event[0] == '(' ? event : "(000007) " + event);
  }
  return lines;
}

TEST(CommandFilter, CopiesTheChosenBlocks) {
  struct Case {
    const char* log;
    const char* expected;
  };
  const Case cases[] = {
      {"Connected to 10.0.0.5|RETR a|(000008) USER x|Sent file a|CWD /|- (000007) Closing connection|RETR b",
       "RETR a|Sent file a||"},
      {"stor a|received FILE a", "stor a|received FILE a||"},
      {"STOR a|150 go|Error receiving a|STOR b|550 Access denied|STOR c|501 Syntax error|RETR d|501 x|550|550 x",
       "STOR a|150 go|Error receiving a||STOR b|550 Access denied||STOR c|501 Syntax error||RETR d|501 x|550|550 x||"},
      {"DELE a|250 done|250 x", "DELE a|250 done||"},
      {"DELE a|550 no", "DELE a|550 no||"},
      {"DELE a|NOOP|250 done", "DELE a||"},
      {"DELE a|DELE b|250 done", "DELE a||DELE b||"},
      {"SITE x|y|200 ok|SITE z|501", "SITE x|y|200 ok||SITE z|501||"},
      {"MDTM x|200 |213 1999|MDTM|553x", "MDTM x|200 |213 1999||MDTM|553x||"},
      {"RETR a|DELE b|Sent file a|250 |250 x", "RETR a|DELE b|Sent file a||250 |250 x||"},
      {"RETR a|- Starting FTP Server...|Sent file a", "RETR a"},
      {"USER RETR|said (000008) RETR", ""},
  };
  CommandFilter engine({.transfers = true, .deletes = true, .site = true, .mdtm = true});
  for (const Case& c : cases)
    EXPECT_EQ(filter(engine, events(c.log)), events(c.expected)) << c.log;
}

TEST(CommandFilter, IgnoresCommandsThatAreOffAndStartsEachSessionAnew) {
  CommandFilter engine({.transfers = true});
  EXPECT_EQ(filter(engine, events("DELE a|SITE|MDTM|RETR b")), events("RETR b"));
  EXPECT_EQ(filter(engine, events("NOOP")), Lines{});
}

}  // namespace
}  // namespace quorvel::test
