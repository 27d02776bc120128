#include "filter/session_filter.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "core/text.h"

namespace quorvel::test {
namespace {

using Lines = std::vector<std::string>;

class Collected : public FilterOutput {
 public:
  void writeLine(std::string_view line) override { lines.emplace_back(line); }
  Lines lines;
};

/// The events of a text like "RETR a|Sent file a|", each behind the session number unless it brings its own.
Lines events(const std::string& text) {
  Lines lines;
  std::istringstream parts(text);
  for (std::string event; std::getline(parts, event, '|');)
    lines.push_back(event.empty() || event[0] == '-' || event[0] == '(' ? event : "(000007) " + event);
  return lines;
}

/// What the filter writes of a session with these events.
Lines filter(SessionFilter& filter, const std::string& text) {
  const UserAct session{31, "", "(000007)", "10.0.0.5", "", "", "", 1, 0};
  Collected output;
  filter.begin(session);
  for (const std::string& event : events(text)) {
    const std::array number{event.find(session.NumberInLog)};
    const std::span numbers = std::span(number).first(number[0] == std::string::npos ? 0 : 1);
    const SessionLine line{event, numbers, containsFolded(event, kServerStartMark)};
    if ((line.hasSessionNumber() || line.hasServerStart) && !filter.line(line, output)) break;
  }
  return output.lines;
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
    EXPECT_EQ(filter(engine, log), events(expected)) << log;
  CommandFilter transfersOnly({.transfers = true});
  EXPECT_EQ(filter(transfersOnly, "DELE a|SITE|MDTM|RETR b"), events("RETR b"));
  EXPECT_EQ(filter(transfersOnly, "NOOP"), Lines{}) << "each session starts anew";
}

}  // namespace
}  // namespace quorvel::test
