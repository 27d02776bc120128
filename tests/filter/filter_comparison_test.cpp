// Both filters against plain loops over the lines, on made-up logs.
#include <gtest/gtest.h>

#include "filter/session_filter.h"
#include "tests/reference/session_text.h"
#include "tests/support/made_up_log.h"
#include "tests/support/records.h"

namespace quorvel::test {
namespace {

using Lines = std::vector<std::string>;

/// Filters one session after the other, the lines of each for itself.
class FilteringConsumer : public SessionLineConsumer, public FilterOutput {
 public:
  explicit FilteringConsumer(SessionFilter& filter) : m_filter(filter) {}

  bool beginSession(const UserAct& session) override {
    written.emplace_back();
    m_filter.begin(session);
    return true;
  }
  bool line(const SessionLine& line) override { return m_filter.line(line, *this); }
  void endSession(const UserAct&) override {}
  bool keepGoing(std::uint64_t) override { return true; }
  void writeLine(std::string_view line) override { written.back().emplace_back(line); }

  std::vector<Lines> written;

 private:
  SessionFilter& m_filter;
};

std::vector<Lines> filterAll(const MadeUpLog& log, SessionFilter& filter) {
  FilteringConsumer consumer(filter);
  EXPECT_TRUE(readSessionLines(log.file, log.source(), consumer).isOk());
  return consumer.written;
}

TEST(FilterComparison, BothFiltersWriteWhatPlainLoopsWrite) {
  std::size_t written = 0;
  for (std::uint64_t seed = 0; seed < 400; ++seed) {
    const MadeUpLog log(seed);
    const CommandSwitches switches{(seed & 1) != 0, (seed & 2) != 0, (seed & 4) != 0, (seed & 8) != 0};
    EntireSessionFilter entire;
    CommandFilter commands({switches.transfers, switches.deletes, switches.site, switches.mdtm});
    const auto entireLines = filterAll(log, entire);
    const auto commandLines = filterAll(log, commands);
    for (std::size_t i = 0; i < log.sessions.size(); ++i) {
      const UserAct& session = log.sessions[i];
      ASSERT_EQ(entireLines[i], entireSession(log.text, session)) << "seed " << seed << ", " << describe(session);
      ASSERT_EQ(commandLines[i], sessionCommands(log.text, session, switches))
          << "seed " << seed << ", " << describe(session);
      written += commandLines[i].size();
    }
  }
  EXPECT_GT(written, 1000u);  // the logs do hold commands
}

}  // namespace
}  // namespace quorvel::test
