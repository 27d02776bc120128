// Splits the command line into arguments and puts its command codes in their order of execution.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "app/settings.h"
#include "log/result.h"

namespace quorvel {

class classCommandLineArgument {
 public:
  /// Whatever MaxArguments says, no more arguments than this are taken.
  static constexpr std::size_t kMostArguments = 32767;

  /// settings must outlive the object. Relative log names are looked up in programFolder.
  classCommandLineArgument(const Settings& settings, std::filesystem::path programFolder);

  /// Splits text, the arguments behind the program's name, at blanks and tabs and fills both tables. There is no
  /// quoting. Arguments beyond the setting MaxArguments are dropped. Fails with SubscriptOutOfRange when a code that
  /// takes a value is the last argument; its value then is empty in the sorted table.
  Status GetCommandLine(std::string_view text);

  /// Entry 0 is empty, entries 1 to argumentCount() are the arguments in their order on the command line.
  [[nodiscard]] const std::vector<std::string>& rawArguments() const { return m_raw; }
  [[nodiscard]] std::size_t argumentCount() const { return m_raw.size() - 1; }
  /// Entry 0 is empty, entry 1 the name of the log (empty without arguments), then follow the codes that were given in
  /// order of execution, each with its value where it takes one, the last argument, and an empty entry.
  [[nodiscard]] const std::vector<std::string>& sortedArguments() const { return m_sorted; }

  /// Whether the last argument can be the name of a file for results: it is not the log's name, no code, and not the
  /// value of a code.
  [[nodiscard]] bool endsWithOutputFile() const;

  /// Makes the name of a log absolute and takes it apart: sets FullPath() and FileName().
  void fix_filenames_from_command_array(std::string_view name);
  /// The absolute name: the one given, when isAbsoluteName(), else that name in the program folder.
  [[nodiscard]] const std::filesystem::path& FullPath() const { return m_fullPath; }
  /// A relative name as it was given; of an absolute one the part behind the last separator.
  [[nodiscard]] const std::string& FileName() const { return m_fileName; }

 private:
  Status sortCLA();

  const Settings& m_settings;
  std::filesystem::path m_programFolder;
  std::vector<std::string> m_raw{{}};
  std::vector<std::string> m_sorted{{}, {}};
  std::filesystem::path m_fullPath;
  std::string m_fileName;
};

}  // namespace quorvel
