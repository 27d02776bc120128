// Runs the built executable as a user's script would, through the shell.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "tests/support/temp_folder.h"

namespace quorvel::test {

struct ProgramRun {
  int status = -1;  ///< exit status; -1: it crashed
  std::string out;
  std::string err;
};

/// Runs the program in workFolder with the given program folder. arguments are shell text, redirections included.
inline ProgramRun runProgram(const std::filesystem::path& executable, const TempFolder& programFolder,
                             const TempFolder& workFolder, const std::string& arguments) {
  const TempFolder streams;
  const std::string command = "cd '" + workFolder.path().string() + "' && QUORVEL_HOME='" +
                              programFolder.path().string() + "' timeout 60 '" + executable.string() + "' >'" +
                              (streams / "out").string() + "' 2>'" + (streams / "err").string() + "' </dev/null " +
                              arguments;
  const int ended = std::system(command.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, streams.read("out"), streams.read("err")};
}

}  // namespace quorvel::test
