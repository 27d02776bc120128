// Plays the scripts of this folder: each line is a command of the shell, called beside a log of three sessions.
#include <cstdlib>
#include <regex>

#include "tests/support/sample_log.h"
#include "tests/support/script.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

/// "quorvel" in a command is the built program. Its folder is $home, where a.log lies; the commands run in another one.
class Shell {
 public:
  Shell() {
    home.write("a.log", logSession("000001", "alice", "10.0.0.5") + logSession("000002", "\xE5ke", "10.0.0.6") +
                            logSession("000003", "alice", "10.0.0.7"));
  }

  /// What the command behind "> " writes to both streams, and its status when that is not 0.
  [[nodiscard]] std::string run(const std::string& line) const {
    const auto quoted = [](const std::filesystem::path& name) { return std::string("'").append(name).append("'"); };
    const auto script =
        streams.write("script", std::string("quorvel() { timeout 60 '" QUORVEL_EXECUTABLE "' \"$@\"; }\n")
                                    .append("export QUORVEL_HOME=$home LC_ALL=C\n")
                                    .append(line.substr(2)));
    std::string command = "cd " + quoted(work.path());
    command.append(" && home=").append(quoted(home.path())).append(" sh ").append(quoted(script));
    const int ended =
        std::system(command.append(" >").append(quoted(streams / "out")).append(" 2>&1 </dev/null").c_str());
    const std::string status = ended == 0 ? "" : "status " + std::to_string(ended >> 8) + "\n";
    const std::string output = std::regex_replace(streams.read("out"), std::regex("\r\n"), "\n") + status;
    return std::regex_replace(output, std::regex(home.path().string()), "HOME");
  }

 private:
  TempFolder home;
  TempFolder work;
  TempFolder streams;
};

class EndToEnd : public testing::TestWithParam<Script> {};

TEST_P(EndToEnd, FollowsTheScript) {
  const Shell shell;
  play(GetParam(), [&](const std::string& line) { return shell.run(line); });
}

std::string nameOf(const testing::TestParamInfo<Script>& script) {
  return script.param.name();
}
INSTANTIATE_TEST_SUITE_P(Scripts, EndToEnd, testing::ValuesIn(loadScripts(QUORVEL_CLI_SCRIPTS)), nameOf);
#ifndef QUORVEL_HAS_WINDOW
INSTANTIATE_TEST_SUITE_P(WithoutWindow, EndToEnd, testing::ValuesIn(loadScripts(QUORVEL_CLI_SCRIPTS "_without_window")),
                         nameOf);
#endif

}  // namespace
}  // namespace quorvel::test
