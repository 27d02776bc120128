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

/// Expects what plain, called with a session, writes of each; returns the number of lines.
template <typename Plain>
std::size_t compare(const MadeUpLog& log, SessionFilter&& filter, const Plain& plain) {
  std::size_t lines = 0;
  FilteringConsumer consumer(filter);
  EXPECT_TRUE(readSessionLines(log.file, log.source(), consumer).isOk());
  for (std::size_t i = 0; i < log.sessions.size(); ++i) {
    EXPECT_EQ(consumer.written.at(i), plain(log.sessions[i])) << describe(log.sessions[i]);
    lines += consumer.written[i].size();
  }
  return lines;
}

TEST(FilterComparison, BothFiltersWriteWhatPlainLoopsWrite) {
  std::size_t written = 0;
  for (std::uint64_t seed = 0; seed < 400 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    const MadeUpLog log(seed);
    const CommandSwitches on{(seed & 1) != 0, (seed & 2) != 0, (seed & 4) != 0, (seed & 8) != 0};
    compare(log, EntireSessionFilter(), [&](const UserAct& session) { return entireSession(log.text, session); });
    written += compare(log, CommandFilter({on.transfers, on.deletes, on.site, on.mdtm}),
                       [&](const UserAct& session) { return sessionCommands(log.text, session, on); });
  }
  EXPECT_GT(written, 1000u);  // the logs do hold commands
}

}  // namespace
}  // namespace quorvel::test
