// Fronts of a syslog, and what the servers say behind them.
#include <gtest/gtest.h>

#include "grammar/all_grammars.h"
#include "grammar/syslog.h"
#include "tests/grammar/event_text.h"

namespace quorvel {
namespace {

using test::LineCase;

std::string readMessage(std::string_view program, std::string_view message) {
  return test::read(syslog(),
                    std::string("2026-11-22T01:10:00.5+01:00 host ").append(program).append(": ").append(message));
}

TEST(Syslog, ReadsEveryFront) {
  Dialect dialect;
  dialect.year = 2026;
  dialect.month = 11;
  const LineCase cases[] = {
      {"Nov 22 01:10:00 host sshd[7]: x", "2026-11-22T01:10:00 sshd 7 x"},
      {"Nov  2 01:10:00 host sshd: x y", "2026-11-02T01:10:00 sshd  x y"},
      {"2026-11-22T01:10:00.123456+01:00 host pure-ftpd: x", "2026-11-22T01:10:00 pure-ftpd  x"},
      {"2026-11-22T01:10:00Z host a[7]: ", "2026-11-22T01:10:00 a 7 "},
      {"<86>Nov 22 01:10:00 host sshd[7]: x", "2026-11-22T01:10:00 sshd 7 x"},
      {"<86>1 2026-11-22T01:10:00.5Z host sshd 7 - - x", "2026-11-22T01:10:00 sshd 7 x"},
      {"<86>1 2026-11-22T01:10:00.5Z host sshd - ID [a b=\"c\"] x", "2026-11-22T01:10:00 sshd  x"},
      {"Feb 29 01:10:00 host sshd[7]: x", "none"},
      {"Nov 32 01:10:00 host sshd[7]: x", "none"},
      {"Nov 22 01:10:00 host no program", "none"},
      {"Nov 22 01:10 host sshd[7]: x", "none"},
      {"<86Nov 22 01:10:00 host sshd[7]: x", "none"},
  };
  for (const LineCase& c : cases) {
    const SyslogLine line = readSyslogLine(c.line, dialect);
    std::string text = "none";
    if (!line.program.empty())
      text = test::timeText(line.time)
                 .append(" ")
                 .append(line.program)
                 .append(" ")
                 .append(line.process)
                 .append(" ")
                 .append(line.message);
    EXPECT_EQ(text, c.event) << c.line;
  }
}

// A stamp without a year: that of the file, or the one before where its month had not come yet.
TEST(Syslog, TakesTheYearFromTheFilesDate) {
  const auto timeOf = [](std::string_view line, std::int64_t fileTime) {
    Dialect dialect;
    const std::string_view lines[] = {line};
    EXPECT_EQ(syslog().recognise({lines, fileTime}, dialect), 1) << line;
    return test::readTime(syslog(), line, dialect);
  };
  constexpr std::int64_t kNewYear = 1798761600;  // 2027-01-01T00:00:00
  EXPECT_EQ(timeOf("Dec 31 23:59:59 host sshd[7]: x", kNewYear), "2026-12-31T23:59:59");
  EXPECT_EQ(timeOf("Jan  1 00:00:00 host sshd[7]: x", kNewYear), "2027-01-01T00:00:00");
  EXPECT_EQ(timeOf("Jan  1 00:00:00 host sshd[7]: x", kNewYear - 1), "2026-01-01T00:00:00");
  EXPECT_EQ(timeOf("Dec 31 23:59:59 host sshd[7]: x", kNewYear - 1), "2026-12-31T23:59:59");
  EXPECT_EQ(timeOf("Feb 29 12:00:00 host sshd[7]: x", 1709251200 /* 2024-03-01 */), "2024-02-29T12:00:00");
  EXPECT_EQ(timeOf("Nov 22 12:00:00 host sshd[7]: x", 0), "none") << "nothing tells the year";
}

TEST(Syslog, LeavesOtherProgramsAside) {
  EXPECT_EQ(readMessage("kernel", "[alice] OK LOGIN: Client \"6.6.6.6\""),
            "Foreign text=[alice] OK LOGIN: Client \"6.6.6.6\"");
  EXPECT_EQ(readMessage("cron[3]", "vsftpd[7]: CONNECT: Client \"6.6.6.6\"").substr(0, 7), "Foreign");
  EXPECT_EQ(test::read(syslog(), "-- Boot 6f1c0d7e --"), "Foreign");
  EXPECT_EQ(test::read(syslog(), "no syslog at all"), "Unknown");
  EXPECT_EQ(
      readMessage("vsftpd[7]", "pam_unix(vsftpd:auth): authentication failure; rhost=1.2.3.4 user=bob").substr(0, 5),
      "Known");
}

TEST(Vsftpd, IsReadInASyslog) {
  EXPECT_EQ(readMessage("vsftpd[7]", "[alice] OK LOGIN: Client \"10.0.0.5\""),
            "LoggedOn key=7 user=alice address=10.0.0.5 text=[alice] OK LOGIN: Client \"10.0.0.5\"");
}

TEST(Proftpd, TellsWhatItsSyslogSays) {
  const LineCase cases[] = {
      {"- ProFTPD 1.3.8 (stable) (built Fri May 1 2026 20:02:15 UTC) standalone mode STARTUP", "ServerStart"},
      {"- ProFTPD killed (signal 15)", "Known"},
      {"(c.example.org[10.0.0.5]) - FTP session opened.", "Connect address=10.0.0.5"},
      {"(10.0.0.5[10.0.0.5]): FTP session opened.", "Connect address=10.0.0.5"},
      {"(::ffff:10.0.0.5[::ffff:10.0.0.5]) - FTP session closed.", "Close address=::ffff:10.0.0.5"},
      {"(c[10.0.0.5]) - USER alice: Login successful.", "LoggedOn user=alice address=10.0.0.5"},
      {"(c[10.0.0.5]) - ANON ftp: Login successful.", "LoggedOn user=ftp address=10.0.0.5"},
      {"(c[10.0.0.5]) - USER bob (Login failed): Incorrect password.",
       "Refused bad_password user=bob address=10.0.0.5"},
      {"(c[10.0.0.5]) - USER bob (Login failed): Limit access denies login",
       "Refused refused user=bob address=10.0.0.5"},
      {"(c[10.0.0.5]) - USER eve: no such user found from c [10.0.0.5] to 10.0.0.1:21",
       "Refused refused user=eve address=10.0.0.5"},
      {"(c[10.0.0.5]) - USER alice: Login successful.: no such user found from c [10.0.0.5] to 10.0.0.1:21",
       "Refused refused user=alice: Login successful. address=10.0.0.5"},
      {"(c[10.0.0.5]) - SECURITY VIOLATION: Root login attempted", "Refused refused user=root address=10.0.0.5"},
      {"(c[10.0.0.5]) - notice: user alice: aborting transfer: Data connection closed", "Known address=10.0.0.5"},
      {"(c[10.0.0.5]) - FTP session idle timeout, disconnected", "Known address=10.0.0.5"},
      {"(c[10.0.0.5] and more) - FTP session opened.", "Unknown"},
      {"(c[10.0.0.5]) - something new", "Unknown address=10.0.0.5"},
  };
  for (const LineCase& c : cases) {
    const std::string text = readMessage("proftpd", std::string("host ").append(c.line));
    EXPECT_EQ(text.substr(0, text.find(" text=")), c.event) << c.line;
  }
}

TEST(PureFtpd, TellsWhatItsSyslogSays) {
  const LineCase cases[] = {
      {"(?@10.0.0.5) [INFO] New connection from 10.0.0.5", "Connect address=10.0.0.5"},
      {"(?@10.0.0.5) [INFO] alice is now logged in", "LoggedOn user=alice address=10.0.0.5"},
      {"(?@10.0.0.5) [INFO] Anonymous user logged in", "LoggedOn user=ftp address=10.0.0.5"},
      {"(?@10.0.0.5) [WARNING] Authentication failed for user [b] [ob]",
       "Refused refused user=b] [ob address=10.0.0.5"},
      {"(a@b.org@::1) [NOTICE] //srv/x uploaded (7 bytes, 1KB sec) uploaded  (12345 bytes, 3215.00KB/sec)",
       "Transfer upload ok user=a@b.org address=::1 path=//srv/x uploaded (7 bytes, 1KB sec) bytes=12345"},
      {"(alice@10.0.0.5) [NOTICE] /a downloaded  (0 bytes, 0.00KB/sec)",
       "Transfer download ok user=alice address=10.0.0.5 path=/a bytes=0"},
      {"(alice@10.0.0.5) [NOTICE] Deleted /a b", "FileChange delete ok user=alice address=10.0.0.5 path=/a b"},
      {"(alice@10.0.0.5) [NOTICE] File successfully renamed or moved: [a]->[b/c]",
       "FileChange rename ok user=alice address=10.0.0.5 path=a to=b/c"},
      {"(alice@10.0.0.5) [NOTICE] File successfully renamed or moved: [a]->[b]->[c]",
       "FileChange rename ok user=alice address=10.0.0.5 path=a]->[b]->[c"},
      {"(alice@10.0.0.5) [DEBUG] Command [stor] [a] b]", "Command verb=6 user=alice address=10.0.0.5"},
      {"(alice@10.0.0.5) [ERROR] Can't open that file: Permission denied", "Known user=alice address=10.0.0.5"},
      {"(alice@10.0.0.5) [INFO] Logout.", "Close user=alice address=10.0.0.5"},
      {"(alice@10.0.0.5) [NOTICE] something new", "Unknown user=alice address=10.0.0.5"},
      {"(alice) [INFO] Logout.", "Unknown"},
  };
  for (const LineCase& c : cases) {
    const std::string text = readMessage("pure-ftpd", c.line);
    EXPECT_EQ(text.substr(0, text.find(" text=")), c.event) << c.line;
  }
}

TEST(OpenSsh, TellsWhatSshdSays) {
  const LineCase cases[] = {
      {"Accepted password for alice from 10.0.0.5 port 35712 ssh2", "LoggedOn key=7 user=alice address=10.0.0.5"},
      {"Accepted publickey for alice from ::1 port 9 ssh2: ED25519 SHA256:abc",
       "LoggedOn key=7 user=alice address=::1"},
      {"Failed password for bob from 10.0.0.5 port 1 ssh2", "Refused bad_password key=7 user=bob address=10.0.0.5"},
      {"Failed password for invalid user eve from 6.6.6.6 port 1 ssh2 from 10.0.0.5 port 1 ssh2",
       "Refused bad_password key=7 user=eve from 6.6.6.6 port 1 ssh2 address=10.0.0.5"},
      {"Failed none for invalid user eve from 10.0.0.5 port 1 ssh2", "Known key=7 user=eve address=10.0.0.5"},
      {"Connection closed by authenticating user bob 10.0.0.5 port 1 [preauth]",
       "Close key=7 user=bob address=10.0.0.5"},
      {"Connection closed by 10.0.0.5 port 1", "Close key=7 address=10.0.0.5"},
      {"Disconnected from user alice 10.0.0.5 port 1", "Close key=7 user=alice address=10.0.0.5"},
      {"Received disconnect from 10.0.0.5 port 1:11: disconnected by user", "Known"},
      {"Server listening on 0.0.0.0 port 22.", "Known"},
      {"pam_unix(sshd:session): session opened for user alice(uid=1001) by (uid=0)", "Known"},
      {"Accepted password for alice from 10.0.0.5", "Unknown key=7"},
      {"something new", "Unknown key=7"},
  };
  for (const LineCase& c : cases) {
    const std::string text = readMessage("sshd[7]", c.line);
    EXPECT_EQ(text.substr(0, text.find(" text=")), c.event) << c.line;
  }
}

TEST(OpenSsh, TellsWhatItsSftpServerSays) {
  const LineCase cases[] = {
      {"session opened for local user alice from [10.0.0.5]", "LoggedOn key=9 user=alice address=10.0.0.5"},
      {"session closed for local user alice from [10.0.0.5]", "Close key=9 user=alice address=10.0.0.5"},
      {R"(open "/a.zip" flags WRITE,CREATE,TRUNCATE mode 0644)", "Request verb=18 key=9 path=/a.zip"},
      {R"(close "/a.zip" bytes read 0 written 81116)", "Transfer upload ok key=9 path=/a.zip bytes=81116"},
      {R"(close "/a.zip" bytes read 512 written 0)", "Transfer download ok key=9 path=/a.zip bytes=512"},
      {R"(close "/z" bytes read 7 written 7" bytes read 0 written 5)",
       R"(Transfer upload ok key=9 path=/z" bytes read 7 written 7 bytes=5)"},
      {R"(close "/a.zip" bytes read 0 written 0)", "Known key=9 path=/a.zip"},
      {R"(forced close "/b.zip" bytes read 0 written 512)",
       "Transfer upload failed aborted key=9 path=/b.zip bytes=512"},
      {R"(remove name "/say "hi"")", R"(FileChange delete ok key=9 path=/say "hi")"},
      {R"(mkdir name "/d" mode 0777)", "FileChange make_folder ok key=9 path=/d"},
      {R"(rmdir name "/d")", "FileChange remove_folder ok key=9 path=/d"},
      {R"(rename old "/a" new "/b")", "FileChange rename ok key=9 path=/a to=/b"},
      {R"(posix-rename old "/a" new "/b" new "/c")", R"(FileChange rename ok key=9 path=/a" new "/b" new "/c)"},
      {"sent status Permission denied", "Answer reply=SSH_FX_PERMISSION_DENIED key=9"},
      {R"(stat name "/close "/a" bytes read 1 written 1")", "Known key=9"},
      {R"(close "/a.zip)", "Unknown key=9"},
  };
  for (const LineCase& c : cases) {
    const std::string text = readMessage("internal-sftp[9]", c.line);
    EXPECT_EQ(text.substr(0, text.find(" text=")), c.event) << c.line;
  }
  EXPECT_EQ(readMessage("sftp-server[9]", "session closed for local user a from [::1]").substr(0, 19),
            "Close key=9 user=a ");
}

}  // namespace
}  // namespace quorvel
