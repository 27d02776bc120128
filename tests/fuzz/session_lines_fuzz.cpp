// The lines handed out for sessions are those that a plain loop over the log finds, and both filters choose from them
// what the same loop chooses.
#include "filter/session_filter.h"
#include "tests/fuzz/session_input.h"
#include "tests/reference/session_text.h"

namespace {

using namespace quorvel;
using namespace quorvel::test;

struct LineCollector final : FilterOutput {
  std::vector<std::string> lines;
  void writeLine(std::string_view line) override { lines.emplace_back(line); }
};

class Comparison final : public SessionLineConsumer {
 public:
  Comparison(std::string_view log, CommandSwitches switches)
      : m_log(log),
        m_switches(switches),
        m_commandFilter({switches.transfers, switches.deletes, switches.site, switches.mdtm}) {}

  bool beginSession(const UserAct& session) override {
    m_lines.clear();
    m_entire = m_commands = LineCollector();
    m_inEntire = m_inCommands = session.Position != 0;
    m_entireFilter.begin(session);
    m_commandFilter.begin(session);
    return true;
  }
  bool line(const SessionLine& line) override {
    require(line.hasSessionNumber() || line.hasServerStart, "a line without a mark is not handed out");
    m_lines.emplace_back(line.text);
    m_inEntire = m_inEntire && m_entireFilter.line(line, m_entire);
    m_inCommands = m_inCommands && m_commandFilter.line(line, m_commands);
    return true;
  }
  void endSession(const UserAct& session) override {
    ++m_ended;
    if (session.Position == 0) return require(m_lines.empty(), "a session without a position has no lines");
    require(m_lines == linesAbout(m_log, session), "the session's lines");
    require(m_entire.lines == entireSession(m_log, session), "the entire session");
    require(m_commands.lines == sessionCommands(m_log, session, m_switches), "the session's commands");
  }
  bool keepGoing(std::uint64_t) override { return true; }
  [[nodiscard]] std::size_t ended() const { return m_ended; }

 private:
  std::string_view m_log;
  CommandSwitches m_switches;
  EntireSessionFilter m_entireFilter;
  CommandFilter m_commandFilter;
  std::vector<std::string> m_lines;
  LineCollector m_entire;
  LineCollector m_commands;
  bool m_inEntire = false;
  bool m_inCommands = false;
  std::size_t m_ended = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kLongestLog = 100'000;
  constexpr std::size_t kSmallestBlock = 64;
  FuzzInput input(data, size);
  const unsigned choice = input.byte();
  const std::size_t blockSize = kSmallestBlock + input.number(2);
  FuzzInput odd = input;
  for (int bytes = 0; bytes < 14; ++bytes)
    (void)input.byte();
  const std::string text = input.expandedRest(kLongestLog);
  const LogFile log = openLog(text);
  const auto sessions = chooseSessions(log, text, odd);
  Comparison comparison(text, {(choice & 1) != 0, (choice & 2) != 0, (choice & 4) != 0, (choice & 8) != 0});
  require(readSessionLines(log, sourceOf(sessions), comparison, blockSize).isOk(), "the log can be read");
  require(comparison.ended() == sessions.size(), "every session has its turn");
  return 0;
}
