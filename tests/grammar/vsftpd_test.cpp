#include <gtest/gtest.h>

#include "grammar/all_grammars.h"
#include "tests/grammar/event_text.h"

namespace quorvel {
namespace {

using test::LineCase;
using test::read;
using test::readTime;

constexpr std::string_view kStamp = "Sun Nov 22 01:03:39 2026 [pid 30] ";

std::string readVsftpd(std::string_view words) {
  return read(vsftpd(), std::string(kStamp).append(words));
}

TEST(Vsftpd, TellsWhatItsLinesSay) {
  const LineCase cases[] = {
      {R"(CONNECT: Client "10.0.0.5")", "Connect key=30 address=10.0.0.5"},
      {R"(CONNECT: Client "::ffff:10.0.0.5")", "Connect key=30 address=::ffff:10.0.0.5"},
      {R"([alice] OK LOGIN: Client "10.0.0.5")", "LoggedOn key=30 user=alice address=10.0.0.5"},
      {R"([ftp] OK LOGIN: Client "10.0.0.5", anon password "a@b")", "LoggedOn key=30 user=ftp address=10.0.0.5"},
      {R"([bob] FAIL LOGIN: Client "10.0.0.5")", "Refused refused key=30 user=bob address=10.0.0.5"},
      {R"([alice] OK UPLOAD: Client "10.0.0.5", "/home/alice/up.bin", 12345 bytes, 35353.85Kbyte/sec)",
       "Transfer upload ok key=30 user=alice address=10.0.0.5 path=/home/alice/up.bin bytes=12345"},
      {R"([bob] FAIL DOWNLOAD: Client "10.0.0.5", "/x.iso", 86880 bytes, 1896.33Kbyte/sec)",
       "Transfer download failed key=30 user=bob address=10.0.0.5 path=/x.iso bytes=86880"},
      {R"([bob] FAIL DOWNLOAD: Client "10.0.0.5", "/none", 0.00Kbyte/sec)",
       "Transfer download failed key=30 user=bob address=10.0.0.5 path=/none"},
      {R"([alice] OK DELETE: Client "10.0.0.5", "/a "quoted" name")",
       R"(FileChange delete ok key=30 user=alice address=10.0.0.5 path=/a "quoted" name)"},
      {R"([alice] OK MKDIR: Client "10.0.0.5", "/d")",
       "FileChange make_folder ok key=30 user=alice address=10.0.0.5 path=/d"},
      {R"([alice] FAIL RMDIR: Client "10.0.0.5", "/d")",
       "FileChange remove_folder failed key=30 user=alice address=10.0.0.5 path=/d"},
      {R"([alice] OK RENAME: Client "10.0.0.5", "/home/a b.bin /home/c d.bin")",
       "FileChange rename ok key=30 user=alice address=10.0.0.5 path=/home/a b.bin to=/home/c d.bin"},
      {R"([alice] OK RENAME: Client "10.0.0.5", "/a /b /c")",
       "FileChange rename ok key=30 user=alice address=10.0.0.5 path=/a /b /c"},
      {R"([alice] OK CHMOD: Client "10.0.0.5", "/a 600")", "Known key=30 user=alice address=10.0.0.5"},
      {R"([alice] DEBUG: Client "10.0.0.5", "Control connection terminated without SSL shutdown.")",
       "Known key=30 user=alice address=10.0.0.5"},
      {R"([bob] FTP command: Client "10.0.0.5", "USER bob")",
       "Command verb=1 key=30 user=bob address=10.0.0.5 text=bob"},
      {R"-(FTP response: Client "10.0.0.5", "220 (vsFTPd 3.0.3)")-",
       "Reply reply=220 key=30 address=10.0.0.5 text=(vsFTPd 3.0.3)"},
      {R"([bob] FTP response: Client "10.0.0.5", " EPRT")", "Known key=30 user=bob address=10.0.0.5"},
      // What a client wrote, as far as the line's end tells it from the server's words.
      {R"([a] OK LOGIN: Client "6.6.6.6"] FAIL LOGIN: Client "10.0.0.5")",
       R"(Refused refused key=30 user=a] OK LOGIN: Client "6.6.6.6" address=10.0.0.5)"},
      {R"([bob] OK UPLOAD: Client "10.0.0.5", "/x] OK LOGIN: Client "6.6.6.6", 7 bytes, 1.00Kbyte/sec)",
       R"(Transfer upload ok key=30 user=bob address=10.0.0.5 path=/x] OK LOGIN: Client "6.6.6.6 bytes=7)"},
      {R"([bob] FTP command: Client "10.0.0.5", "STOR x] OK LOGIN: Client "6.6.6.6"")",
       R"(Command verb=6 key=30 user=bob address=10.0.0.5 text=x] OK LOGIN: Client "6.6.6.6")"},
      {R"(FTP command: Client "10.0.0.5", "USER a] OK LOGIN: Client "6.6.6.6"")",
       R"(Command verb=1 key=30 address=10.0.0.5 text=a] OK LOGIN: Client "6.6.6.6")"},
  };
  for (const LineCase& c : cases)
    EXPECT_EQ(readVsftpd(c.line), c.event) << c.line;
}

// Names and paths that look like the server's words make nothing.
TEST(Vsftpd, SetsAsideWhatAClientMayHaveWritten) {
  for (const std::string_view words : {
           R"([a] OK DELETE: Client "6.6.6.6", "/x] FAIL LOGIN: Client "10.0.0.5")",
           R"([ftp] OK LOGIN: Client "10.0.0.5", anon password "x] FAIL LOGIN: Client "6.6.6.6", anon password "y")",
           R"([a] OK LOGIN: Client "6.6.6.6" and more)",
           R"([a] OK LOGIN: Client "6.6.6.6 7")",
           R"(a] OK LOGIN: Client "6.6.6.6")",
           R"([a] OK UPLOAD: Client "6.6.6.6", "/x", many bytes, 1.00Kbyte/sec)",
           R"([a] OK DELETE: Client "6.6.6.6", "/cut)",
           R"([a] OK DELETE: Client "6.6.6.6")",
           R"([a] FTP command: Client "6.6.6.6", ")",
           "",
       })
    EXPECT_EQ(readVsftpd(words).substr(0, 14), "Unknown key=30") << words;
  std::string many = "[a] OK DELETE: Client \"6.6.6.6\", \"";
  for (int i = 0; i < 9; ++i)
    many += ": Client \"";
  EXPECT_EQ(readVsftpd(many).substr(0, 14), "Unknown key=30");
}

TEST(Vsftpd, ReadsItsStampOrNothing) {
  EXPECT_EQ(readTime(vsftpd(), R"(Sun Nov 22 01:03:39 2026 [pid 3] CONNECT: Client "::1")"), "2026-11-22T01:03:39");
  EXPECT_EQ(readTime(vsftpd(), R"(Thu Feb 29 23:59:60 2024 [pid 3] CONNECT: Client "::1")"), "2024-03-01T00:00:00");
  EXPECT_EQ(readTime(vsftpd(), R"(Sat Jan  3 00:00:00 1970 [pid 3] CONNECT: Client "::1")"), "1970-01-03T00:00:00");
  for (const std::string_view line : {
           R"(Sun Feb 30 01:03:39 2026 [pid 3] CONNECT: Client "::1")",
           R"(Sun Nov 22 24:03:39 2026 [pid 3] CONNECT: Client "::1")",
           R"(Sun Nov 22 01:03:39 1969 [pid 3] CONNECT: Client "::1")",
           R"(Sun Nov 22 01:03:39 2106 [pid 3] CONNECT: Client "::1")",
           R"(Sun Nov 22 01:03:39 2026 [pid ] CONNECT: Client "::1")",
           R"(Sun Nov 22 01:03:39 2026)",
       })
    EXPECT_EQ(read(vsftpd(), line), "Unknown") << line;
}

}  // namespace
}  // namespace quorvel
