#include "app/error_log.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "app/program_folder.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

/// text with date and time replaced and CR LF shown as line breaks; a bare LF stands out as "(LF)".
std::string readable(const std::string& text) {
  const std::string masked = std::regex_replace(text, std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)"), "DATE TIME");
  return std::regex_replace(std::regex_replace(masked, std::regex("\r\n"), "|"), std::regex("\n"), "(LF)");
}

TEST(ErrorLog, WritesTheDumpInItsOwnOrder) {
  const TempFolder folder;
  const UserAct record{77, std::string(5000, 'n'), "(000012)", "10.0.0.5", "C20", "L20 BAD_PASSWORD", "OFF\xE5", 3, 9};
  ErrorLog log(systemFiles(), folder.path());
  log.recordNotSaved("/l/a.log", "/p/users.qva", record, 4, {ErrorCode::BadRecordLength, {}});
  log.errorInScan("/l/a.log", {ErrorCode::Overflow, {}});
  EXPECT_EQ(readable(folder.read("error.log")),
            "/l/a.log - error when saving post No 4 into file /p/users.qva|"
            "Quorvel version: 1.1.400|Date and time: DATE TIME|VB Error No. 59|"
            "VB Error Description: Bad record length|DATA USERACT-------------------------|"
            "Connect time:      C20|IP:                10.0.0.5|Position:          77|"
            "Logon time:        L20 BAD_PASSWORD|Logoff time:       OFF\xE5|Name:              " +
                std::string(4096, 'n') +
                "|Number in log:     (000012)|Logon position:    3|TreeIndex:         9|Len(userAct) = 36|||||"
                "Quorvel version: 1.1.400|Date and time: DATE TIME|VB Error No. 6|VB Error Description: Overflow|"
                "/l/a.log|||||");
}

TEST(ErrorLog, IsSilentWhereItCannotWrite) {
  const TempFolder folder;
  ErrorLog log(systemFiles(), folder / "missing");
  log.errorInScan("a.log", {ErrorCode::Overflow, {}});
  EXPECT_FALSE(folder.has("missing"));
}

TEST(ProgramFolder, TellsAbsoluteNames) {
  const std::pair<std::string_view, bool> cases[] = {{"/a.log", true}, {"c:a.log", true},  {"a:b", true},
                                                     {"a.log", false}, {"l/a.log", false}, {"", false}};
  for (const auto& [name, expected] : cases) {
    EXPECT_EQ(isAbsoluteName(name), expected) << name;
  }
}

}  // namespace
}  // namespace quorvel::test
