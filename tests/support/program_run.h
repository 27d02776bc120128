// Runs the built executable as a user's script would, through the shell.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "tests/support/temp_folder.h"

namespace quorvel::test {

/// A program folder, a folder to work in, and commands that run there.
struct ProgramShell {
  struct Run {
    int status = -1;  ///< exit status; -1: it crashed
    std::string out;
    std::string err;
  };

  /// Runs commands of the shell, in which "quorvel" is the program and $home its folder.
  [[nodiscard]] Run run(const std::string& commands) const {
    const TempFolder streams;
    const std::string folder = std::filesystem::path(QUORVEL_EXECUTABLE).parent_path();
    streams.write("script", "export QUORVEL_HOME=$home LC_ALL=C PATH='" + folder + "':$PATH\n" + commands);
    const std::string command = "cd '" + work.path().string() + "' && export home='" + home.path().string() +
                                "' && streams='" + streams.path().string() + "' && timeout 60 sh \"$streams/script\" " +
                                "</dev/null >\"$streams/out\" 2>\"$streams/err\"";
    const int ended = std::system(command.c_str());
    return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, streams.read("out"), streams.read("err")};
  }

  TempFolder home;
  TempFolder work;
};

}  // namespace quorvel::test
