#include "classic/tools/command_line_reference.h"

#include <string_view>

#include "classic/tools/command_codes.h"

namespace quorvel {
namespace {

constexpr std::string_view kUsage = R"(Quorvel analyzer - command line reference

  quorvel                                 open the window
  quorvel --open LOG                      open the window with a log
  quorvel COMMAND LOG ...                 answer a question about logs
  quorvel LOG CODE [VALUE] ... OUTPUT     run unattended
  quorvel --help                          print this text
  quorvel --version                       print the version

COMMAND  overview, sessions, logins, files, transfers, traffic, check, export
         or digest; quorvel COMMAND --help tells more.
LOG      the server's log file. It is only ever read.
CODE     what to do, one or more of the numbers below.
VALUE    what the code in front of it asks for.
OUTPUT   the text file that takes the results, always the last argument. Every
         code but 100 needs it.

Codes, in the order in which they run

)";

constexpr std::string_view kRules = R"(
However the codes are ordered on the command line, they run in the order of
this table, and each runs once: a code that is repeated counts the first time
only. Codes are compared as numbers, so 0100 is 100. Other arguments are passed
over. A value that is itself the number of a code counts as that code too.

Every code but 100 works on the sessions that 100 finds, so name 100 as well;
only 300 can do without it, as it reads the log itself. User names and
addresses must match exactly, upper and lower case included.

Examples

  quorvel serv-u.log 100 210 out.txt
      Finds all sessions and writes the log lines of each to out.txt.

  quorvel /var/log/serv-u.log 100 250 10.0.0.5 /home/me/from-ip.txt
      The log lines of the sessions from the address 10.0.0.5.

  quorvel /var/log/serv-u.log 100 260 alice 360 alice /home/me/alice.txt
      The log lines of the user alice, then a count of that user's transfers.

  quorvel /var/log/serv-u.log 300 /home/me/totals.txt
      Counts the transfers in the whole log.

File names

Arguments are separated by blanks and tabs, and quotation marks do not keep
them together: file names, user names and addresses with blanks in them cannot
be given. Link or copy such a log to a name without blanks first.

A log given without a folder lies in the program folder, an output file given
without one in the current folder. A name of the log counts as complete when
it contains ":" or starts with a separator.

The program folder holds the settings and working files. It is the folder of
the program itself, or, where that one cannot be written, the folder quorvel
in your data folder ($XDG_DATA_HOME or ~/.local/share, on Windows
%LOCALAPPDATA%). Set the environment variable QUORVEL_HOME to use another one.

Settings

The settings file quorvel.ini in the program folder decides the rest. It is
written with its defaults by the first run.

  [OPTION-SAVE] AppendWhenFilter
      1 (default): results are added to what the output file holds.
      0: each filter code first deletes the output file, so that only the
      results of the last one are left. Keep it at 1 for unattended runs.
  [OPTION-FILTER] FilterTransfers, FilterDeletes, FilterSITE, FilterMDTM
      If one of them is 1, codes 210, 250 and 260 write only those lines of a
      session; otherwise they write all its lines.
  [MAIN] TrunkLongUsernames
      1 (default): records keep 12 characters of a user's name, and the name
      behind 260 or 360 is cut to 12 characters as well before it is compared.
      0: names are kept and compared whole; sessions of names that are too
      long for a record are left out.
  [COMMAND-LINE-ARGUMENTS] AutoExit
      1 (default): the program ends when all codes have run. It opens no
      window and needs no display. Messages become one line each on standard
      error.
      0: the window opens, runs the codes and stays open.
  [COMMAND-LINE-ARGUMENTS] MaxArguments
      The number of arguments taken, 50 by default. Further ones are dropped.

Exit status

  0  every code has run
  1  the log cannot be read, the output file is missing or cannot be written,
     or a code has no value behind it; one line on standard error says which

Further files in the program folder: users.qva holds the sessions found and
is deleted at the end, error.log tells what went wrong while a log was
searched, and bad_trans.txt lists failed transfers when the setting
[OPTION-COUNTER] GetFilenameOnTransferError is 1.
)";

std::string codeLine(const CommandCode& code) {
  constexpr std::size_t kValueWidth = 12;
  std::string value(code.value);
  value.resize(kValueWidth, ' ');
  return "  " + std::to_string(code.code) + "  " + value + std::string(code.action) + "\n";
}

}  // namespace

std::string commandLineReference() {
  std::string text(kUsage);
  for (const CommandCode& code : kCommandCodes)
    text += codeLine(code);
  text += kRules;
  return text;
}

}  // namespace quorvel
