#include "app/error_log.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "app/program_folder.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

/// text with the date and time behind "Date and time: " replaced and CR LF shown as "|".
std::string readable(std::string text) {
  constexpr std::string_view kLabel = "Date and time: ";
  constexpr std::size_t kDateAndTime = sizeof "2005-01-19 13:28:08" - 1;
  for (auto at = text.find(kLabel); at != std::string::npos; at = text.find(kLabel, at + 1)) {
    text.replace(at + kLabel.size(), kDateAndTime, "DATE TIME");
  }
  for (auto at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n"))
    text.replace(at, 2, 1, '|');
  return text;
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
