#include "filter/session_filter.h"

#include <gtest/gtest.h>

#include <sstream>
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

const UserAct kSession{31, "", "(000007)", "10.0.0.5", kStamp, "", "", 1, 0};

/// Feeds the lines as the log would hand them out, and returns what was written.
Lines filter(SessionFilter& filter, const Lines& log) {
  Collected output;
  filter.begin(kSession);
  for (const std::string& text : log) {
    std::vector<std::size_t> numbers;
    for (auto at = text.find(kSession.NumberInLog); at != std::string::npos;
         at = text.find(kSession.NumberInLog, at + 1))
      numbers.push_back(at);
    const SessionLine line{text, numbers, containsFolded(text, kServerStartMark)};
    if ((line.hasSessionNumber() || line.hasServerStart) && !filter.line(line, output)) break;
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
  const Lines log = {user, kClose, kStart, "Thu" + kConnect.substr(3), kConnect, at("(000008) USER bob"), user};
  EntireSessionFilter engine;
  for (const std::string& end : {kClose, foldCase(kClose), "(000007) " + kStart}) {
    Lines ended = log;
    ended.insert(ended.end(), {end, user});
    EXPECT_EQ(filter(engine, ended), (Lines{kConnect, user, end}));
  }
}

/// The events of a text like "RETR a|Sent file a|", each behind the session number unless it brings its own.
Lines events(const std::string& text) {
  Lines lines;
  std::istringstream parts(text);
  for (std::string event; std::getline(parts, event, '|');)
    lines.push_back(event.empty() || event[0] == '-' || event[0] == '(' ? event : "(000007) " + event);
  return lines;
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
  CommandFilter engine({.transfers = true, .deletes = true, .site = true, .mdtm = true});
  for (const auto& [log, expected] : cases)
    EXPECT_EQ(filter(engine, events(log)), events(expected)) << log;
  CommandFilter transfersOnly({.transfers = true});
  EXPECT_EQ(filter(transfersOnly, events("DELE a|SITE|MDTM|RETR b")), events("RETR b"));
  EXPECT_EQ(filter(transfersOnly, events("NOOP")), Lines{}) << "each session starts anew";
}

}  // namespace
}  // namespace quorvel::test
