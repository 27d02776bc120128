#include "cli/command_line_argument.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "app/program_folder.h"
#include "classic/tools/command_codes.h"
#include "log/text.h"

namespace quorvel {
namespace {

/// The table of sorted arguments has indexes 0 to 100: the log, every code with a value, the last argument and the
/// empty entries around them always have room.
constexpr std::size_t kSortedEntries = 101;
static_assert(2 * kCommandCodes.size() + 4 <= kSortedEntries);

bool isCode(std::string_view argument, int code) {
  return parseInteger(argument) == code;
}

bool isAnyCode(std::string_view argument) {
  return std::any_of(kCommandCodes.begin(), kCommandCodes.end(),
                     [argument](const CommandCode& c) { return isCode(argument, c.code); });
}

bool isCodeWithValue(std::string_view argument) {
  return std::any_of(kCommandCodes.begin(), kCommandCodes.end(),
                     [argument](const CommandCode& c) { return c.takesValue() && isCode(argument, c.code); });
}

}  // namespace

classCommandLineArgument::classCommandLineArgument(const Settings& settings, std::filesystem::path programFolder)
    : m_settings(settings), m_programFolder(std::move(programFolder)) {}

Status classCommandLineArgument::GetCommandLine(std::string_view text) {
  const auto wanted = m_settings.readNumber("COMMAND-LINE-ARGUMENTS", "MaxArguments");
  const auto most = std::min(static_cast<std::size_t>(std::max(wanted, std::int32_t{0})), kMostArguments);
  m_raw.assign(1, {});
  constexpr std::string_view kSeparators = " \t";
  auto begin = text.find_first_not_of(kSeparators);
  while (begin != std::string_view::npos && argumentCount() < most) {
    const auto end = std::min(text.find_first_of(kSeparators, begin), text.size());
    m_raw.emplace_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(kSeparators, end);
  }
  return sortCLA();
}

Status classCommandLineArgument::sortCLA() {
  Status outcome;
  m_sorted.assign(1, {});
  m_sorted.push_back(m_raw.size() > 1 ? m_raw[1] : std::string());
  for (const auto& code : kCommandCodes) {
    const auto hit =
        std::find_if(m_raw.begin(), m_raw.end(), [&code](const auto& argument) { return isCode(argument, code.code); });
    if (hit == m_raw.end()) continue;
    m_sorted.push_back(std::to_string(code.code));
    if (!code.takesValue()) continue;
    const bool hasValue = std::next(hit) != m_raw.end();
    m_sorted.push_back(hasValue ? *std::next(hit) : std::string());
    if (!hasValue) outcome = Error{ErrorCode::SubscriptOutOfRange, {}};
  }
  m_sorted.push_back(m_raw.back());
  m_sorted.emplace_back();
  return outcome;
}

bool classCommandLineArgument::endsWithOutputFile() const {
  const auto count = argumentCount();
  return count > 1 && !isAnyCode(m_raw[count]) && !isCodeWithValue(m_raw[count - 1]);
}

void classCommandLineArgument::fix_filenames_from_command_array(std::string_view name) {
  m_fileName = name;
  if (!isAbsoluteName(name)) {
    m_fullPath = m_programFolder / pathFromBytes(m_fileName);
    return;
  }
  m_fullPath = pathFromBytes(m_fileName);
  m_fileName = pathBytes(m_fullPath.filename());
}

}  // namespace quorvel
