// Plays the scripts of this folder: each line is a command of the shell, called beside a log of three sessions.
#include <regex>

#include "tests/support/program_run.h"
#include "tests/support/sample_log.h"
#include "tests/support/script.h"

namespace quorvel::test {
namespace {

/// Its folder is $home, where a.log lies; the commands run in another one.
class Shell : private ProgramShell {
 public:
  Shell() {
    home.write("a.log", logSession("000001", "alice", "10.0.0.5") + logSession("000002", "\xE5ke", "10.0.0.6") +
                            logSession("000003", "alice", "10.0.0.7"));
  }

  /// What the command behind "> " writes to both streams, and its status when that is not 0.
  [[nodiscard]] std::string act(const std::string& line) const {
    const Run ended = run("exec 2>&1\nsamples=" QUORVEL_SAMPLES "\n" + line.substr(2));
    const std::string status = ended.status == 0 ? "" : "status " + std::to_string(ended.status) + "\n";
    const std::string output = std::regex_replace(ended.out, std::regex("\r\n"), "\n") + status;
    return std::regex_replace(output, std::regex(home.path().string()), "HOME");
  }
};

class EndToEnd : public testing::TestWithParam<Script> {};

TEST_P(EndToEnd, FollowsTheScript) {
  const Shell shell;
  play(GetParam(), [&](const std::string& line) { return shell.act(line); });
}

std::string nameOf(const testing::TestParamInfo<Script>& script) {
  return script.param.name();
}
INSTANTIATE_TEST_SUITE_P(Scripts, EndToEnd, testing::ValuesIn(loadScripts(QUORVEL_CLI_SCRIPTS)), nameOf);
#ifdef QUORVEL_HAS_WINDOW
INSTANTIATE_TEST_SUITE_P(WithWindow, EndToEnd, testing::ValuesIn(loadScripts(QUORVEL_CLI_SCRIPTS "_with_window")),
                         nameOf);
#else
INSTANTIATE_TEST_SUITE_P(WithoutWindow, EndToEnd, testing::ValuesIn(loadScripts(QUORVEL_CLI_SCRIPTS "_without_window")),
                         nameOf);
#endif

}  // namespace
}  // namespace quorvel::test
