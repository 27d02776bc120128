// The command codes of the unattended run: one table for the parser, the run itself and the reference text.
#pragma once

#include <array>
#include <string_view>

namespace quorvel {

/// One command code. Users' scripts hold the numbers, do not change.
struct CommandCode {
  int code;
  std::string_view value;   ///< what the next argument holds, e.g. "IP address"; empty: the code takes no value
  std::string_view action;  ///< what the code does, a phrase without a full stop

  [[nodiscard]] constexpr bool takesValue() const { return !value.empty(); }
};

inline constexpr int kFindUsersCode = 100;
inline constexpr int kFilterAllCode = 210;
inline constexpr int kFilterIPCode = 250;
inline constexpr int kFilterUserCode = 260;
inline constexpr int kCountAllCode = 300;
inline constexpr int kCountIPCode = 350;
inline constexpr int kCountUserCode = 360;

/// Every code, in the order of execution: whatever their order on the command line, they run in this one.
inline constexpr std::array<CommandCode, 7> kCommandCodes{{
    {kFindUsersCode, "", "find the user sessions in the log"},
    {kFilterAllCode, "", "write the log lines of all sessions to the output file"},
    {kFilterIPCode, "IP address", "write the log lines of the sessions from that address"},
    {kFilterUserCode, "user name", "write the log lines of that user's sessions"},
    {kCountAllCode, "", "count the transfers of all sessions"},
    {kCountIPCode, "IP address", "count the transfers of the sessions from that address"},
    {kCountUserCode, "user name", "count the transfers of that user's sessions"},
}};

}  // namespace quorvel
