// Scripts: text files that say what is done to the program and, indented below each line, what it answers.
//
//   == Name of a script
//   # a comment
//   > something to do
//     what the program showed
//
// A file holds any number of scripts. With QUORVEL_ACCEPT_SCRIPTS set in the environment, a script that fails is
// rewritten with the answers it got: look at the difference before it is committed.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/records.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {

struct Script {
  std::filesystem::path file;
  std::string text;  ///< from its name on

  /// Its file's and its own name, fit for GoogleTest.
  [[nodiscard]] std::string name() const {
    const std::string title = text.substr(3, text.find('\n') - 3);
    return std::regex_replace(file.stem().string() + ' ' + title, std::regex("[^A-Za-z0-9]"), "_");
  }
};

/// Every script of the folder's text files, in the order of their names.
inline std::vector<Script> loadScripts(const std::filesystem::path& folder) {
  std::vector<Script> scripts;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::istringstream lines(readFile(entry.path()));
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("== ")) scripts.push_back({entry.path(), {}});
      scripts.back().text += line + "\n";
    }
  }
  std::sort(scripts.begin(), scripts.end(), [](const Script& a, const Script& b) { return a.name() < b.name(); });
  return scripts;
}

/// A line as it stands in a script: "$" for an empty one and behind a blank at the end.
inline std::string scriptLine(std::string_view line) {
  return visible(line, line.size()) + (line.empty() || line.ends_with(' ') ? "$" : "");
}

/// What a file holds: its lines behind a bar.
inline std::string linesOf(std::string_view text) {
  std::string lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find("\r\n"), text.size());
    lines.append("|").append(text.substr(0, end)).append(end < text.size() ? "\n" : "(no line end)\n");
    text.remove_prefix(std::min(end + 2, text.size()));
  }
  return lines;
}

/// Hands each line that asks for something to act and expects the answers that the script holds.
inline void play(const Script& script, const std::function<std::string(const std::string&)>& act) {
  std::string played;
  std::istringstream lines(script.text);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  ")) continue;
    played += line + "\n";
    if (line.empty() || line.starts_with("#") || line.starts_with("==")) continue;
    std::istringstream answers(act(line));
    for (std::string answer; std::getline(answers, answer);)
      played += "  " + scriptLine(answer) + "\n";
  }
  EXPECT_EQ(script.text, played);
  if (std::getenv("QUORVEL_ACCEPT_SCRIPTS") == nullptr) return;
  std::string all = readFile(script.file);
  all.replace(all.find(script.text), script.text.size(), played);
  std::ofstream(script.file, std::ios::binary) << all;
}

}  // namespace quorvel::test
