// Sessions, log-ons and actions of FTP, by hand-made logs.
#include <gtest/gtest.h>

#include "tests/support/activity_text.h"

namespace quorvel::test {
namespace {

/// What a log of that shape tells.
struct Told {
  Told(std::string_view shortLines, LogShape shape = LogShape::Classic)
      : log(logOf(shortLines, shape)), activity(readActivity(log)), text(activity, log) {}
  const std::string log;
  const Activity activity;
  const ActivityText text;
};

TEST(FtpSessions, ASessionRunsFromItsConnectLineToItsEnd) {
  const Told told(R"(
1 - Starting FTP Server...
2 1 Connected to 10.0.0.23 (Local address 10.0.0.1)
6 1 220 ready
2 2 Connected to fe80::1%eth0 (Local address 10.0.0.1)
2 1 USER Alice
6 1 331 needs a password
2 1 PASS secret
5 1 User alice logged in
6 1 230 proceed
2 1 RETR a.txt
6 1 150 opening
6 1 Sent file C:\ftp\a.txt successfully (94.0 Kb/sec - 48128 bytes)
6 1 226 done
2 1 QUIT
5 1 Closing connection for user ALICE (00:00:41 connected)
6 1 221 said behind the end
)");
  EXPECT_EQ(told.text.sessions(),
            "000001 Alice 10.0.0.23 logged_on closed @2-16 lines 14 on 8 down 1/48128\n"
            "000002 - fe80::1%eth0 no_logon open @4-4 lines 1\n");
  EXPECT_EQ(told.text.logons(), "1 @8 Alice 10.0.0.23 logged_on 230\n");
  EXPECT_EQ(told.text.actions(), "1 @12 Alice download ok C:\\ftp\\a.txt bytes 48128 seconds 2 226\n");
  EXPECT_EQ(told.text.setAside(), "");
}

TEST(FtpSessions, ANumberBeginsANewSessionBehindItsEndOrAServerStart) {
  const Told told(R"(
6 7 220 the log begins in the middle of a session
2 7 USER bob
5 7 Closing connection
2 7 NOOP
2 7 Connected to 10.0.0.2 (Local address 10.0.0.1)
2 7 STOR up.bin
6 7 150 opening
1 - Starting FTP Server...
6 7 226 a line without a connect line
2 7 Connected to 10.0.0.3 (Local address 10.0.0.1)
)");
  EXPECT_EQ(told.text.sessions(),
            "000007 bob - no_logon closed @1-4 lines 4 connected -\n"
            "000007 - 10.0.0.2 no_logon server_start @5-7 lines 3 broken 1\n"
            "000007 - - no_logon open @9-10 lines 2 connected -\n");
  EXPECT_EQ(told.text.actions(), "2 @8 - upload failed up.bin seconds 2 server_start\n");
  EXPECT_EQ(told.text.setAside(), "1 @10 Connected to #.#.#.# (Local address #.#.#.#)\n");
}

TEST(FtpSessions, EachAttemptToLogOnIsOneRow) {
  const Told told(R"(
2 1 Connected to 10.0.0.9 (Local address 10.0.0.1)
2 1 SYST
6 1 530 Not logged in.
2 1 USER root
6 1 331 ok
2 1 PASS a
6 1 530 Not logged in - password incorrect.
2 1 USER admin
6 1 530 Not logged in - unauthorized IP address.
2 1 USER alice
6 1 331 ok
2 1 PASS b
6 1 230-Welcome
6 1 230 proceed
5 1 User ALICE logged in
2 1 USER nobody
6 1 331 ok
2 1 PASS c
6 1 530 Not logged in - cannot find home directory.
2 2 Connected to 10.0.0.9 (Local address 10.0.0.1)
2 2 USER first
6 2 331 ok
2 2 PASS x
6 2 530 No way.
2 2 USER last
6 2 331 ok
2 2 QUIT
)");
  EXPECT_EQ(told.text.sessions(),
            "000001 alice 10.0.0.9 logged_on open @1-19 lines 19 on 15 refused 3\n"
            "000002 last 10.0.0.9 refused open @20-27 lines 8 refused 1\n");
  EXPECT_EQ(told.text.logons(),
            "1 @7 root 10.0.0.9 bad_password 530\n"
            "1 @9 admin 10.0.0.9 refused_address 530\n"
            "1 @15 alice 10.0.0.9 logged_on 230\n"
            "1 @19 nobody 10.0.0.9 no_home 530\n"
            "2 @24 first 10.0.0.9 refused 530\n");
}

TEST(FtpSessions, AnActionIsToldOnce) {
  const Told told(R"(
2 1 Connected to 10.0.0.9 (Local address 10.0.0.1)
2 1 RETR a
6 1 226 the reply comes first
6 1 Sent file C:\a successfully (1.0 Kb/sec - 100 bytes)
2 1 RETR b
6 1 150 opening
6 1 Error sending file C:\b, aborted (1.0 Kb/sec - 50 bytes)
6 1 426 broken
2 1 STOR c
6 1 553 no
2 1 APPE d
6 1 150 opening
2 1 NOOP
6 1 200 ok
2 1 ABOR
6 1 426 aborted
6 1 226 ABOR done
2 1 STOU
6 1 250 done
2 1 RETR lost
2 1 RETR e
6 1 200 another command's
6 1 226 done
6 1 Sent file C:\f successfully (1.0 Kb/sec - 7 bytes)
2 1 RETR g
6 1 150 opening
5 1 Closing connection
)");
  EXPECT_EQ(told.text.actions(),
            "1 @3 - download ok C:\\a bytes 100 seconds 1 226\n"
            "1 @7 - download failed C:\\b bytes 50 seconds 2 aborted 426\n"
            "1 @10 - upload failed c seconds 1 reply 553\n"
            "1 @16 - upload failed d seconds 5 aborted 426\n"
            "1 @19 - upload ok - seconds 1 250\n"
            "1 @20 - download ? lost\n"
            "1 @23 - download ok C:\\f bytes 7 seconds 2 226\n"
            "1 @27 - download failed g seconds 2 closed\n");
  EXPECT_EQ(told.text.sessions(), "000001 - 10.0.0.9 no_logon closed @1-27 lines 27 down 2/107 up 1/-1 broken 4\n");
}

TEST(FtpSessions, FilesAreDeletedRenamedAndPutIntoFolders) {
  const Told told(R"(
2 1 Connected to 10.0.0.9 (Local address 10.0.0.1)
2 1 DELE unknown folder
6 1 250 done
2 1 PWD
6 1 257 "/home/""a"" b" is current directory.
2 1 DELE x
6 1 550 no
2 1 CWD ../c/./d
6 1 250 ok
2 1 RNFR old
6 1 350 and now
2 1 RNTO new
6 1 250 done
2 1 CDUP
6 1 250 ok
2 1 MKD m
6 1 257 "/home/c/m" created
2 1 CWD /elsewhere
6 1 550 no
2 1 RMD m
6 1 250 done
2 1 RNFR gone
6 1 550 no
2 1 CWD ~
6 1 250 ok
2 1 DELE y
2 1 QUIT
)");
  EXPECT_EQ(told.text.actions(),
            "1 @3 - delete ok unknown folder seconds 1 250\n"
            "1 @7 - delete failed x in /home/\"a\" b seconds 1 reply 550\n"
            "1 @13 - rename ok old -> new in /home/c/d seconds 1 250\n"
            "1 @17 - make_folder ok m in /home/c seconds 1 257\n"
            "1 @21 - remove_folder ok m in /home/c seconds 1 250\n"
            "1 @23 - rename failed gone in /home/c seconds 1 reply 550\n");
  EXPECT_EQ(told.text.sessions(), "000001 - 10.0.0.9 no_logon open @1-27 lines 27 deletes 1 renames 1\n");
}

TEST(FtpSessions, WithoutAnyReplyNothingTellsHowATransferEnded) {
  const Told told(R"(
2 1 Connected to 10.0.0.9 (Local address 10.0.0.1)
2 1 USER alice
2 1 PASS x
5 1 User alice logged in
2 1 RETR a
2 1 RETR b
2 1 DELE c
5 1 Closing connection for user ALICE (00:00:41 connected)
)");
  EXPECT_EQ(told.text.actions(),
            "1 @5 alice download ? a\n"
            "1 @8 alice download ? b seconds 2\n");
  EXPECT_EQ(told.text.logons(), "1 @4 alice 10.0.0.9 logged_on\n");
}

TEST(FtpSessions, TheCurrentShapeSaysTheSameInItsOwnWords) {
  const Told told(R"(
01 - Serv-U File Server (64-bit) - Version 15.1 (15.1.6.25) - (C) 2017 ...
01 - HTTP server listening on port number 43958, IP 127.0.0.1
02 108422 Connected to 2001:db8:85a3:8d3:1319:8a2e:370:7348 (local address 10.0.0.1, port 21)
21 108422 220 Serv-U FTP Server v15.1 ready...
20 108422 SYST
21 108422 530 Not logged in.
20 108422 USER Alice
21 108422 331 User name okay, need password.
20 108422 PASS **********
02 108422 User "alice" logged in
21 108422 230 User logged in, proceed.
20 108422 RETR a.txt
21 108422 150 Opening
04 108422 Sent file "/a.txt" successfully (1,234.5 KB/sec - 1,048,576 bytes)
21 108422 226 Transfer complete.
20 108422 STOR b.txt
21 108422 226 Transfer complete. 7 bytes transferred.
20 108422 STOR c.txt
02 108422 Closed session
02 108422 User "alice" logged out
40 108423 GET /
41 108423 HTTP/1.1 200 OK
02 108422 Connected to 10.0.0.1 (local address 10.0.0.1, port 21)
02 108422 Connected to 10.0.0.2 (local address 10.0.0.1, port 21)
)",
                  LogShape::Current);
  EXPECT_EQ(told.text.sessions(),
            "108422 Alice 2001:db8:85a3:8d3:1319:8a2e:370:7348 logged_on closed @3-20 lines 18 on 10 "
            "down 1/1048576 up 1/-1 broken 1\n"
            "108423 - - no_logon open @21-22 lines 2 connected -\n"
            "108422 - 10.0.0.1 no_logon open @23-23 lines 1\n"
            "108422 - 10.0.0.2 no_logon open @24-24 lines 1\n");
  EXPECT_EQ(told.text.logons(), "1 @10 Alice 2001:db8:85a3:8d3:1319:8a2e:370:7348 logged_on 230\n");
  EXPECT_EQ(told.text.actions(),
            "1 @14 Alice download ok /a.txt bytes 1048576 seconds 2 226\n"
            "1 @17 Alice upload ok b.txt seconds 1 226\n"
            "1 @19 Alice upload failed c.txt seconds 1 closed\n");
  EXPECT_EQ(told.text.setAside(), "");
}

}  // namespace
}  // namespace quorvel::test
