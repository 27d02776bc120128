// What a client puts into names, arguments and paths makes no session, no log-on and no size.
#include <gtest/gtest.h>

#include "tests/support/activity_text.h"

namespace quorvel::test {
namespace {

struct ForgeryCase {
  std::string_view what;
  LogShape shape;
  std::string_view lines;
  std::string_view sessions;
  std::string_view logons;
  std::string_view actions;
  std::string_view setAside;
};

const ForgeryCase kForgeries[] = {
    {"a connect line that a client typed", LogShape::Classic,
     "2 1 Connected to 10.0.0.9 (Local address 10.0.0.1)\n"
     "2 1 Connected to 6.6.6.6 (Local address 10.0.0.1)\n"
     "2 1 DELE a\n"
     "6 1 250 done\n",
     "000001 - 10.0.0.9 no_logon open @1-4 lines 4 deletes 1\n", "", "1 @4 - delete ok a seconds 1 250\n",
     "1 @2 Connected to #.#.#.# (Local address #.#.#.#)\n"},
    {"sentences of the server sent as commands", LogShape::Classic,
     "2 1 Connected to 10.0.0.9 (Local address 10.0.0.1)\n"
     "2 1 USER alice\n"
     "6 1 331 ok\n"
     "2 1 User alice logged in\n"
     "6 1 331 ok\n"
     "2 1 RETR a\n"
     "2 1 Sent file C:\\a successfully (1 Kb/sec - 7 bytes)\n"
     "6 1 500 what\n"
     "2 1 Closing connection for user ALICE (00:00:41 connected)\n"
     "6 1 550 no file\n",
     "000001 alice logged in 10.0.0.9 no_logon open @1-10 lines 10\n", "", "", ""},
    {"the same in the current shape", LogShape::Current,
     "02 1 Connected to 10.0.0.9 (local address 10.0.0.1, port 21)\n"
     "20 1 USER x\" logged in\n"
     "21 1 331 ok\n"
     "20 1 Connected to 6.6.6.6 (local address 10.0.0.1, port 21)\n"
     "20 1 Closed session\n"
     "20 1 User \"root\" logged in\n"
     "21 1 530 User \"root\" logged in\n",
     "000001 \"root\" logged in 10.0.0.9 refused open @1-7 lines 7 refused 1\n",
     "1 @7 \"root\" logged in 10.0.0.9 refused 530\n", "", ""},
    {"without brackets a sentence counts only where it fits", LogShape::Classic,
     "- 1 Connected to 10.0.0.9 (Local address 10.0.0.1)\n"
     "- 1 User alice logged in\n"
     "- 1 USER alice\n"
     "- 1 331 ok\n"
     "- 1 User alice logged in\n"
     "- 1 PASS x\n"
     "- 1 User bob logged in\n"
     "- 1 User alice logged in\n"
     "- 1 230 ok\n"
     "- 1 Sent file C:\\a successfully (1 Kb/sec - 7 bytes)\n"
     "- 1 RETR a\n"
     "- 1 Received file C:\\a successfully (1 Kb/sec - 7 bytes)\n"
     "- 1 Sent file C:\\a successfully (1 Kb/sec - 8 bytes)\n"
     "- 1 226 ok\n"
     "- 1 Sent file C:\\a successfully (1 Kb/sec - 9 bytes)\n"
     "- 1 Closing connection for user BOB (00:00:41 connected)\n"
     "- 1 Closing connection for user ALICE (00:00:41 connected)\n"
     "- 1 500 not understood\n"
     "- 1 Connected to 6.6.6.6 (Local address 10.0.0.1)\n"
     "- 1 nonsense\n",
     "000001 alice 10.0.0.9 logged_on open @1-20 lines 20 on 8 down 1/8\n", "1 @8 alice 10.0.0.9 logged_on 230\n",
     "1 @13 alice download ok C:\\a bytes 8 seconds 2 226\n",
     "2 @2 User alice logged in\n"
     "1 @7 User bob logged in\n"
     "2 @10 Sent file C:\\a successfully (# Kb/sec - # bytes)\n"
     "1 @12 Received file C:\\a successfully (# Kb/sec - # bytes)\n"
     "1 @16 Closing connection for user BOB (#:#:# connected)\n"
     "1 @19 Connected to #.#.#.# (Local address #.#.#.#)\n"
     "1 @20 nonsense\n"},
    {"names that look like the end of a sentence", LogShape::Classic,
     "2 1 Connected to 10.0.0.9 (Local address 10.0.0.1)\n"
     "2 1 RETR x successfully (1 Kb/sec - 7 bytes)\n"
     "6 1 Sent file C:\\x successfully (1 Kb/sec - 7 bytes) successfully (94.0 Kb/sec - 48128 bytes)\n"
     "6 1 226 done\n"
     "2 1 STOR y, aborted (1 Kb/sec - 7 bytes)\n"
     "5 1 Error receiving file C:\\y, aborted (1 Kb/sec - 7 bytes), aborted (1.0 Kb/sec - 3 bytes)\n"
     "6 1 426 no\n",
     "000001 - 10.0.0.9 no_logon open @1-7 lines 7 down 1/48128 broken 1\n", "",
     "1 @3 - download ok C:\\x successfully (1 Kb/sec - 7 bytes) bytes 48128 seconds 1 226\n"
     "1 @6 - upload failed C:\\y, aborted (1 Kb/sec - 7 bytes) bytes 3 seconds 1 aborted 426\n",
     ""},
    {"lines cut in the middle, NUL bytes, other programs' lines", LogShape::Classic,
     "2 1 Connected to 10.0.0.9 (Local address 10.0.0.1)\n"
     "=[2] Mon 06Jun05 08:0\n"
     "=[2] Mon 06Jun05 08:00:03 - (00000\n"
     "=[2] Mon 06Jun05 08:00:04 - (000001)\n"
     "=[2] Xxx 99Zzz05 08:00:05 - (000001) NOOP\n"
     "=PASS hunter2\n"
     "5 1 PASS hunter2\n"
     "2 1 NOOP\n",
     "000001 - 10.0.0.9 no_logon open @1-8 lines 4\n", "", "",
     "1 @2 [#] Mon #Jun# #:#\n1 @3 (#\n1 @5 [#] Xxx #Zzz# #:#:# - (#) NOOP\n2 @6 PASS ****\n"},
};

TEST(HostileLines, MakeNoSessionNoLogonAndNoSize) {
  for (const ForgeryCase& forgery : kForgeries) {
    SCOPED_TRACE(forgery.what);
    const std::string log = logOf(forgery.lines, forgery.shape);
    const Activity activity = readActivity(log);
    const ActivityText text(activity, log);
    EXPECT_EQ(text.sessions(), forgery.sessions);
    EXPECT_EQ(text.logons(), forgery.logons);
    EXPECT_EQ(text.actions(), forgery.actions);
    EXPECT_EQ(text.setAside(), forgery.setAside);
    const Ledger& ledger = activity.logs.at(0).ledger;
    EXPECT_EQ(ledger.bytes(), log.size());
  }
}

}  // namespace
}  // namespace quorvel::test
