// Any command line: the arguments are what stands between the blanks, and the codes come in their order.

#include "classic/tools/command_codes.h"
#include "cli/command_line_argument.h"
#include "log/text.h"
#include "tests/fuzz/fuzz_input.h"

namespace quorvel::test {
namespace {

std::vector<std::string> split(std::string_view text, std::size_t most) {
  std::vector<std::string> arguments{""};
  char before = ' ';
  for (const char c : text) {
    const bool isBlank = c == ' ' || c == '\t';
    if (!isBlank && (before == ' ' || before == '\t')) arguments.emplace_back();
    if (!isBlank) arguments.back() += c;
    before = c;
  }
  arguments.resize(std::min(arguments.size(), most + 1));
  return arguments;
}

std::vector<std::string> sort(const std::vector<std::string>& raw) {
  std::vector<std::string> sorted{"", raw.size() > 1 ? raw[1] : ""};
  for (const CommandCode& code : kCommandCodes) {
    for (std::size_t i = 0; i < raw.size(); ++i) {
      if (parseInteger(raw[i]) != code.code) continue;
      sorted.push_back(std::to_string(code.code));
      if (code.takesValue()) sorted.push_back(i + 1 < raw.size() ? raw[i + 1] : "");
      break;
    }
  }
  sorted.insert(sorted.end(), {raw.back(), ""});
  return sorted;
}

bool endsWithFile(const std::vector<std::string>& raw) {
  return raw.size() > 2 && std::none_of(std::begin(kCommandCodes), std::end(kCommandCodes), [&](const CommandCode& c) {
           return parseInteger(raw.back()) == c.code || (c.takesValue() && parseInteger(raw.end()[-2]) == c.code);
         });
}

}  // namespace

void runTarget(FuzzInput input) {
  MemoryFiles files;
  Settings settings(files, "folder");
  const auto most = static_cast<std::int8_t>(input.byte());
  settings.WriteSetting("COMMAND-LINE-ARGUMENTS", "MaxArguments", std::to_string(most));
  classCommandLineArgument arguments(settings, "folder");
  (void)arguments.GetCommandLine(input.rest());
  require(arguments.rawArguments() == split(input.rest(), static_cast<std::size_t>(std::max<int>(most, 0))),
          "arguments stand between blanks");
  require(arguments.sortedArguments() == sort(arguments.rawArguments()), "codes are sorted");
  require(arguments.endsWithOutputFile() == endsWithFile(arguments.rawArguments()), "what is neither code nor value");
  const std::string log = arguments.sortedArguments()[1];
  arguments.fix_filenames_from_command_array(log);
  const bool isAbsolute = log.starts_with('/') || log.find(':') != std::string::npos;
  require(arguments.FullPath() == (isAbsolute ? log : "folder/" + log), "the full name of the log");
  require(arguments.FileName() == (isAbsolute ? arguments.FullPath().filename().string() : log),
          "the short name of the log");
}

}  // namespace quorvel::test
