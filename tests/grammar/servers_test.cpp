// The logs that servers write themselves, and which grammar a log is recognised for.
#include <gtest/gtest.h>

#include <vector>

#include "grammar/all_grammars.h"
#include "tests/grammar/event_text.h"

namespace quorvel {
namespace {

using test::LineCase;

struct Log {
  explicit Log(std::vector<std::string_view> lines, std::int64_t fileTime = 1795318600)
      : m_lines(std::move(lines)), m_recognised(recogniseLog({m_lines, fileTime})) {}

  [[nodiscard]] std::string server() const {
    return m_recognised.grammar == nullptr ? "none" : std::string(m_recognised.grammar->name());
  }
  /// What the log's lines say, as they would be read.
  [[nodiscard]] std::vector<std::string> events(bool withTimes = false) {
    std::vector<std::string> events;
    for (const std::string_view line : m_lines) {
      Event event;
      if (line.starts_with('#')) m_recognised.grammar->takeDirective(line, m_recognised.dialect);
      m_recognised.grammar->parse(line, m_recognised.dialect, event);
      events.push_back((withTimes ? test::timeText(event.time) + " " : "") + test::eventText(event));
    }
    return events;
  }

 private:
  std::vector<std::string_view> m_lines;
  Recognised m_recognised;
};

using Texts = std::vector<std::string>;

TEST(Recognition, TellsLogsByTheirContent) {
  EXPECT_EQ(Log({"hello", "world"}).server(), "none");
  EXPECT_EQ(Log({}).server(), "none");
  EXPECT_EQ(Log({"10.0.0.5 - - [22/Nov/2026:03:15:29 +0000] \"GET /x HTTP/1.1\" 200 5"}).server(), "none")
      << "a web server's";
  EXPECT_EQ(Log({"#Software: Microsoft Internet Information Services 10.0",
                 "#Fields: date time s-ip cs-method cs-uri-stem sc-status", "2022-11-22 01:10:00 10.0.0.1 GET /x 200"})
                .server(),
            "none")
      << "a web server's";
  EXPECT_EQ(Log({R"(10.0.0.5 - alice [22/Nov/2026:03:15:29 -0000] "PUT /x" 200 5)"}).server(), "pure-ftpd");
  EXPECT_EQ(Log({R"(10.0.0.5 UNKNOWN alice [22/Nov/2026:03:15:29 +0000] "STOR x" 226 5)"}).server(), "proftpd");
  EXPECT_EQ(Log({"Sun Nov 22 01:03:39 2026 1 10.0.0.5 1 /x b _ i r alice ftp 0 * c"}).server(), "xferlog");
  EXPECT_EQ(Log({"Nov 22 01:10:00 host cron[1]: x", "Nov 22 01:10:00 host sshd[1]: x"}).server(), "syslog");
  EXPECT_EQ(Log({"cut in the middle", R"(Sun Nov 22 01:03:39 2026 [pid 3] CONNECT: Client "::1")"}).server(), "vsftpd");
  // A path that holds another server's line.
  EXPECT_EQ(Log({R"(Nov 22 01:10:00 host vsftpd[3]: [a] OK DELETE: Client "::1", "Sun Nov 22 01:03:39 2026 [pid 3]")"})
                .server(),
            "syslog");
}

TEST(Proftpd, TellsWhatItsOwnLogsSay) {
  const LineCase cases[] = {
      {"2026-11-22 03:15:59,656 host proftpd[48] 10.0.0.1: ProFTPD 1.3.8 (stable) standalone mode STARTUP",
       "ServerStart"},
      {"2026-11-22 03:15:59,767 host proftpd[58] 10.0.0.1 (c[10.0.0.5]): USER bob (Login failed): Incorrect password",
       "Refused bad_password key=58 user=bob address=10.0.0.5"},
      {"2026-11-22 03:15:59,767 host proftpd[58]: fatal: unknown configuration directive", "Known"},
      {R"(10.0.0.5 UNKNOWN - [22/Nov/2026:03:14:24 +0000] "USER bob" 331 - 62)",
       "Command verb=1 reply=331 key=62 address=10.0.0.5 text=bob"},
      {R"(10.0.0.5 UNKNOWN alice [22/Nov/2026:03:14:24 +0000] "STOR a" 226 7 b.bin" 226 12345)",
       R"(Command verb=6 reply=226 user=alice address=10.0.0.5 bytes=12345 text=a" 226 7 b.bin)"},
      {R"(10.0.0.5 UNKNOWN alice [22/Nov/2026:03:14:24 +0000] "DELE a" 250 12345 62)",
       "Command verb=10 reply=250 key=62 user=alice address=10.0.0.5 text=a"},
      {R"(10.0.0.5 UNKNOWN alice [22/Nov/2026:03:14:24 +0000] "LIST" - - 62)",
       "Command key=62 user=alice address=10.0.0.5"},
      {R"(10.0.0.5 UNKNOWN alice [22/Nov/2026:03:14:24 +0000] "STOR a" 226 x)", "Unknown"},
      {R"(10.0.0.5 UNKNOWN alice [32/Nov/2026:03:14:24 +0000] "STOR a" 226 1)", "Unknown"},
  };
  for (const LineCase& c : cases)
    EXPECT_EQ(test::read(proftpd(), c.line).substr(0, c.event.size()), c.event) << c.line;
}

TEST(PureFtpd, TellsWhatItsOwnLogsSay) {
  EXPECT_EQ(Log({R"(10.0.0.5 - alice [22/Nov/2026:03:15:29 -0000] "GET /two%20words" 200 5)"}).events(true),
            Texts{"2026-11-22T03:15:29 Transfer download ok user=alice address=10.0.0.5 path=/two%20words bytes=5"});
  EXPECT_EQ(Log({"1795317480 6b025ee7.73 alice 10.0.0.5 U 12345 2 /two words",
                 "1795317480 6b025ee7.73 alice 10.0.0.5 X 1 2 /x"})
                .events(true),
            (Texts{"2026-11-22T03:18:00 Transfer upload ok key=6b025ee7.73 user=alice address=10.0.0.5 path=/two words "
                   "bytes=12345 seconds=2",
                   "1970-01-01T00:00:00 Unknown"}));
  EXPECT_EQ(Log({"#Software: Pure-FTPd 1.0.50",
                 "#Fields: date time c-ip cs-method cs-uri-stem sc-status cs-username sc-bytes",
                 "2026-11-22 03:16:19 10.0.0.5 []created /x 226 alice 12345",
                 "2026-11-22 03:16:19 10.0.0.5 []created /x 226 alice"})
                .events(),
            (Texts{"Known", "Known", "Transfer upload ok user=alice address=10.0.0.5 path=/x bytes=12345", "Unknown"}));
}

// Made up from what is known of the format.
TEST(Iis, TellsWhatItsLinesSay) {
  Log log({"#Software: Microsoft Internet Information Services 10.0", "#Date: 2022-11-22 01:10:00",
           "#Fields: date time c-ip cs-username s-ip s-port cs-method cs-uri-stem sc-status sc-win32-status "
           "sc-substatus x-session x-fullpath",
           "2022-11-22 01:10:00 10.0.0.5 - 10.0.0.1 21 ControlChannelOpened - - 0 0 1b4e-28 -",
           "2022-11-22 01:10:00 10.0.0.5 - 10.0.0.1 21 USER alice 331 0 0 1b4e-28 -",
           "2022-11-22 01:10:00 10.0.0.5 - 10.0.0.1 21 PASS *** 530 1326 41 1b4e-28 -",
           "2022-11-22 01:10:02 10.0.0.5 HOST\\alice 10.0.0.1 21 PASS *** 230 0 0 1b4e-28 /",
           "2022-11-22 01:10:03 10.0.0.5 HOST\\alice 10.0.0.1 21 DataChannelClosed - - 0 0 1b4e-28 -",
           "#Fields: time c-ip cs-username cs-method cs-uri-stem sc-status sc-bytes cs-bytes time-taken x-session "
           "x-fullpath",
           "01:10:04 10.0.0.5 HOST\\alice STOR a+b.txt 226 0 512 1500 1b4e-28 /in/a+b.txt",
           "01:10:05 10.0.0.5 HOST\\alice FAKE a 226 0 512 1500 1b4e-28 -", "01:10:06 10.0.0.5 HOST\\alice STOR a",
           "01:10:07 10.0.0.5 HOST\\alice ControlChannelClosed - 0 0 0 0 1b4e-28 -"});
  EXPECT_EQ(log.server(), "iis");
  EXPECT_EQ(log.events(),
            (Texts{"Known", "Known", "Known", "Connect key=1b4e-28 address=10.0.0.5",
                   "Command verb=1 reply=331 key=1b4e-28 address=10.0.0.5 text=alice",
                   "Command verb=2 reply=530 key=1b4e-28 address=10.0.0.5 text=***",
                   "Command verb=2 reply=230 key=1b4e-28 user=HOST\\alice address=10.0.0.5 path=/ text=***",
                   "Known key=1b4e-28 user=HOST\\alice address=10.0.0.5", "Known",
                   "Command verb=6 reply=226 key=1b4e-28 user=HOST\\alice address=10.0.0.5 path=/in/a+b.txt bytes=512 "
                   "seconds=1 text=a+b.txt",
                   "Unknown reply=226 key=1b4e-28 user=HOST\\alice address=10.0.0.5 seconds=1 text=a", "Unknown",
                   "Close key=1b4e-28 user=HOST\\alice address=10.0.0.5 seconds=0"}));
  EXPECT_EQ(log.events(true)[9].substr(0, 19), "2022-11-22T01:10:04") << "the date of the head";
}

TEST(Iis, ReadsVersionsFiveAndSix) {
  Log log({"#Software: Microsoft Internet Information Services 6.0", "#Date: 2004-02-29 17:58:00",
           "#Fields: time c-ip cs-username s-sitename s-computername s-ip s-port cs-method cs-uri-stem cs-uri-query "
           "sc-status sc-win32-status sc-bytes cs-bytes time-taken cs-version cs-host cs(User-Agent) cs(Cookie) "
           "cs(Referer)",
           "17:58:01 10.0.0.5 - MSFTPSVC1 HOST 10.0.0.1 21 [144]USER alice - 331 0 0 0 0 FTP - - - -",
           "17:58:11 10.0.0.5 alice MSFTPSVC1 HOST 10.0.0.1 21 [144]sent /a.txt - 226 0 14903 0 250 FTP - - - -",
           "17:58:12 10.0.0.5 alice MSFTPSVC1 HOST 10.0.0.1 21 [144]closed - - 421 121 0 0 0 FTP - - - -",
           "17:58:12 10.0.0.5 alice MSFTPSVC1 HOST 10.0.0.1 21 [x]sent /a.txt - 226 0 14903 0 250 FTP - - - -"});
  EXPECT_EQ(log.server(), "iis");
  EXPECT_EQ(
      log.events(true)[4],
      "2004-02-29T17:58:11 Transfer download ok key=144 user=alice address=10.0.0.5 path=/a.txt bytes=14903 seconds=0");
  EXPECT_EQ(log.events()[0], "ServerStart");
  EXPECT_EQ(log.events()[3], "Command verb=1 reply=331 key=144 address=10.0.0.5 seconds=0 text=alice");
  EXPECT_EQ(log.events()[5].substr(0, 13), "Close key=144");
  EXPECT_EQ(log.events()[6], "Unknown");
}

// Made up from what is known of the format.
TEST(FileZilla, TellsWhatVersionOneSays) {
  const LineCase cases[] = {
      {"2024-04-17T20:48:57.788Z << [FTP Session 35 10.0.0.5] 220 welcome",
       "Connect key=35 address=10.0.0.5 text=welcome"},
      {"2024-04-17T20:48:57.788Z >> [FTP Session 35 10.0.0.5] USER alice",
       "Command verb=1 key=35 address=10.0.0.5 text=alice"},
      {"2024-04-17T20:48:58.788Z << [FTP Session 35 10.0.0.5 alice] 230 Login successful.",
       "Reply reply=230 key=35 user=alice address=10.0.0.5 text=Login successful."},
      {"2024-04-17T20:48:58.788Z >> [FTP Session 35 10.0.0.5 alice] 226 [FTP Server] Session 35 ended",
       "Command key=35 user=alice address=10.0.0.5 text=[FTP Server] Session 35 ended"},
      {"2024-04-17T20:48:58.788Z == [FTP Server] Session 35 ended gracefully.", "Close key=35"},
      {"2024-04-17T20:48:58.788Z == [SSH SFTP Session 36 10.0.0.5] Closing connection [code=0]",
       "Known key=36 address=10.0.0.5 text=Closing connection [code=0]"},
      {"2024-04-17T20:48:58.788Z !! [SSH SFTP Session 36 10.0.0.5] User authentication attempt with method 'password' "
       "failed [user=eve] [next methods=none]",
       "Refused refused key=36 user=eve address=10.0.0.5"},
      {"2024-04-17T20:48:58.788Z == [Web UI] Started", "Known"},
      {"2024-04-17T20:48:58.788Z >> [FTP Session x 10.0.0.5] USER alice", "Unknown"},
      {"2024-04-17T20:48:58.788Z >>", "Unknown"},
  };
  for (const LineCase& c : cases)
    EXPECT_EQ(test::read(fileZilla(), c.line).substr(0, c.event.size()), c.event) << c.line;
}

TEST(FileZilla, TellsWhatVersionZeroNineSays) {
  const LineCase cases[] = {
      {"(not logged in) (10.0.0.5)> Connected on port 21, sending welcome message...",
       "Connect key=000286 address=10.0.0.5"},
      {"(not logged in) (10.0.0.5)> USER alice", "Command verb=1 key=000286 address=10.0.0.5 text=alice"},
      {"alice (10.0.0.5)> 230 Logged on", "Reply reply=230 key=000286 user=alice address=10.0.0.5 text=Logged on"},
      {"(not logged in) (10.0.0.5)> 230 Logged on", "Known key=000286 address=10.0.0.5 text=Logged on"},
      {"alice (x) (10.0.0.5)> RETR a (b)> c",
       "Command verb=5 key=000286 user=alice (x) address=10.0.0.5 text=a (b)> c"},
      {"alice (10.0.0.5)> disconnected.", "Close key=000286 user=alice address=10.0.0.5"},
      {"alice (10.0.0.5)> disconnected. now", "Unknown key=000286 user=alice address=10.0.0.5"},
      {"alice 10.0.0.5> disconnected.", "Unknown"},
  };
  for (const LineCase& c : cases)
    EXPECT_EQ(test::read(fileZilla(), std::string("(000286) 6/14/2016 14:07:11 PM - ").append(c.line))
                  .substr(0, c.event.size()),
              c.event)
        << c.line;
}

TEST(FileZilla, DecidesOnceWhichNumberIsTheDay) {
  const auto times = [](std::vector<std::string> stamps) {
    std::vector<std::string> lines;
    for (const std::string& stamp : stamps)
      lines.push_back("(1) " + stamp + " - (not logged in) (::1)> disconnected.");
    Log log(std::vector<std::string_view>(lines.begin(), lines.end()));
    Texts read;
    for (const std::string& event : log.events(true))
      read.push_back(event.substr(0, event.find(' ')));
    return read;
  };
  EXPECT_EQ(times({"6/5/2016 2:07:11 PM", "6/14/2016 12:07:11 AM"}),
            (Texts{"2016-06-05T14:07:11", "2016-06-14T00:07:11"}));
  EXPECT_EQ(times({"5/6/2016 14:07:11", "14/6/2016 14:07:11"}), (Texts{"2016-06-05T14:07:11", "2016-06-14T14:07:11"}));
  EXPECT_EQ(times({"21.12.2021 14:07:08"}), Texts{"2021-12-21T14:07:08"});
  EXPECT_EQ(times({"9/8/2016 1:00:00", "10/8/2016 1:00:00", "1/9/2016 1:00:00"}),
            (Texts{"2016-08-09T01:00:00", "2016-08-10T01:00:00", "2016-09-01T01:00:00"}))
      << "by order";
  EXPECT_EQ(times({"12/12/2015 23:59:59", "1/1/2016 0:00:00", "1/2/2016 0:00:00 "}).back(), "2016-01-02T00:00:00")
      << "the shorter period";
  EXPECT_EQ(times({"01.02.2016 10:00:00"}), Texts{"2016-02-01T10:00:00"});
  EXPECT_EQ(times({"1/2/2016 10:00:00 AM"}), Texts{"2016-01-02T10:00:00"});
  EXPECT_EQ(times({"2016-01-02 10:00:00"}), Texts{"2016-01-02T10:00:00"});
  EXPECT_EQ(test::read(fileZilla(), "(1) 31/31/2016 10:00:00 - (not logged in) (::1)> disconnected."), "Unknown");
}

}  // namespace
}  // namespace quorvel
