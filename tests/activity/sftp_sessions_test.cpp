// Files of SFTP sessions, by requests and their answers.
#include <gtest/gtest.h>

#include "tests/support/activity_text.h"

namespace quorvel::test {
namespace {

TEST(SftpSessions, RequestsAndAnswersMeetByNumber) {
  const std::string log = logOf(R"(
02 14 Connected to 10.0.0.9 (local address 10.0.0.1, port 22)
02 14 User "alice" logged in
30 14 {0x00000003} SSH_FXP_OPEN: path: "/in/a "quoted".txt"
30 14 {0x00000004} SSH_FXP_REMOVE: path: "/old.txt"
31 14 {0x00000004} SSH_FX_OK: Operation successful.
31 14 {0x00000003} SSH_FXP_HANDLE: file handle: 0x000003e8
30 14 {0x00000005} SSH_FXP_READ: file handle: 0x000003e8, offset: 0
31 14 {0x00000005} SSH_FX_EOF: End of file.
30 14 {0x00000006} SSH_FXP_CLOSE: file handle: 0x000003e8
31 14 {0x00000006} SSH_FX_OK: Operation successful.
30 14 {0x00000007} SSH_FXP_OPEN: path: "/full.bin"
31 14 {0x00000007} SSH_FXP_HANDLE: file handle: 0x000003e9
30 14 {0x00000008} SSH_FXP_WRITE: file handle: 0x000003e9
31 14 {0x00000008} SSH_FX_FAILURE: Disk full.
30 14 {0x00000009} SSH_FXP_CLOSE: file handle: 0x000003e9
31 14 {0x00000009} SSH_FX_OK: Operation successful.
30 14 {0x0000000a} SSH_FXP_OPEN: path: "/secret"
31 14 {0x0000000a} SSH_FX_PERMISSION_DENIED: No.
30 14 {0x0000000b} SSH_FXP_RENAME: path: "/a", new path: "/b"
31 14 {0x0000000b} SSH_FX_OK: Operation successful.
30 14 {0x0000000c} SSH_FXP_MKDIR: path: "/d"
31 14 {0x0000000c} SSH_FX_FILE_ALREADY_EXISTS: No.
30 14 {0x0000000d} SSH_FXP_STAT: path: "/d"
31 14 {0x0000000d} SSH_FXP_ATTRS: size: 7
30 14 {0x0000000e} SSH_FXP_OPEN: path: "/cut.bin"
31 14 {0x0000000e} SSH_FXP_HANDLE: file handle: 0x000003ea
30 14 {0x0000000f} SSH_FXP_WRITE: file handle: 0x000003ea
31 14 SSH_MSG_DISCONNECT: client has requested a disconnect.  Reason code: 11
02 14 Closed session
)",
                                LogShape::Current);
  const Activity activity = readActivity(log);
  const ActivityText text(activity, log);
  EXPECT_EQ(text.actions(),
            "1 @5 alice delete ok /old.txt seconds 1 SSH_FX_OK\n"
            "1 @10 alice download ok /in/a \"quoted\".txt seconds 7 SSH_FX_OK\n"
            "1 @14 alice upload failed /full.bin seconds 3 reply SSH_FX_FAILURE\n"
            "1 @18 alice download failed /secret seconds 1 reply SSH_FX_PERMISSION_DENIED\n"
            "1 @20 alice rename ok /a -> /b seconds 1 SSH_FX_OK\n"
            "1 @22 alice make_folder failed /d seconds 1 reply SSH_FX_FILE_ALREADY_EXISTS\n"
            "1 @29 alice upload failed /cut.bin seconds 4 closed\n");
  EXPECT_EQ(text.logons(), "1 @2 alice 10.0.0.9 logged_on\n");
  EXPECT_EQ(text.sessions(),
            "000014 alice 10.0.0.9 logged_on closed @1-29 lines 29 on 2 down 1/-1 broken 3 deletes 1 renames 1\n");
  EXPECT_EQ(text.setAside(), "");
}

TEST(SftpSessions, AStatementOfTheServerIsTheSameTransfer) {
  const std::string log = logOf(R"(
02 14 Connected to 10.0.0.9 (local address 10.0.0.1, port 22)
30 14 {0x1} SSH_FXP_OPEN: path: "/a"
31 14 {0x1} SSH_FXP_HANDLE: file handle: 0x1
30 14 {0x2} SSH_FXP_READ: file handle: 0x1
02 14 Sent file "/a" successfully (1.0 KB/sec - 10 bytes)
30 14 {0x3} SSH_FXP_CLOSE: file handle: 0x1
31 14 {0x3} SSH_FX_OK: ok
30 14 {0x4} SSH_FXP_OPEN: path: "/b"
31 14 {0x4} SSH_FXP_HANDLE: file handle: 0x1
30 14 {0x5} SSH_FXP_WRITE: file handle: 0x1
30 14 {0x6} SSH_FXP_CLOSE: file handle: 0x1
31 14 {0x6} SSH_FX_OK: ok
02 14 Received file "/b" successfully (1.0 KB/sec - 20 bytes)
)",
                                LogShape::Current);
  const Activity activity = readActivity(log);
  EXPECT_EQ(ActivityText(activity, log).actions(),
            "1 @5 - download ok /a bytes 10 seconds 3 SSH_FX_OK\n"
            "1 @12 - upload ok /b bytes 20 seconds 4 SSH_FX_OK\n");
}

}  // namespace
}  // namespace quorvel::test
