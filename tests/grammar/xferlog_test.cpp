#include <gtest/gtest.h>

#include "grammar/all_grammars.h"
#include "tests/grammar/event_text.h"

namespace quorvel {
namespace {

using test::LineCase;

std::string readXferlog(std::string_view words) {
  return test::read(xferlog(), std::string("Sun Nov  1 01:03:39 2026 ").append(words));
}

TEST(Xferlog, TellsWhatItsLinesSay) {
  const LineCase cases[] = {
      {"1 10.0.0.5 12345 /home/alice/up.bin b _ i r alice ftp 0 * c",
       "Transfer upload ok user=alice address=10.0.0.5 path=/home/alice/up.bin bytes=12345 seconds=1"},
      {"120 ::1 99999999999 /a/b  c.iso a _ o r bob ftp 1 bob i",
       "Transfer download failed aborted user=bob address=::1 path=/a/b  c.iso bytes=99999999999 seconds=120"},
      {"1 10.0.0.5 0 /x b _ i r alice ftp 0 * i",
       "Transfer upload failed user=alice address=10.0.0.5 path=/x bytes=0 seconds=1"},
      {"0 host.example.org 0 /pub/x b _ d g guest sftp 0 * c",
       "FileChange delete ok user=guest address=host.example.org path=/pub/x"},
      {"1 10.0.0.5 7 /x b CT i r two words ftp 0 * c",
       "Transfer upload ok user=two words address=10.0.0.5 path=/x bytes=7 seconds=1"},
      {"1 10.0.0.5 7 /pub/x b _ o a me@home ftp 0 * c",
       "Transfer download ok user=anonymous address=10.0.0.5 path=/pub/x bytes=7 seconds=1"},
      // The password of a guest who would like to be somebody else, and a path that tries the same.
      {"1 10.0.0.5 7 /pub/x b _ o a x b _ i r root ftp 0 * c", "Unknown"},
      {"1 10.0.0.5 7 /x b _ i r root ftp 0 * c b _ o r eve ftp 0 * c", "Unknown"},
      {"1 10.0.0.5 7 /x b _ i r alice ftp 0 * x", "Unknown"},
      {"1 10.0.0.5 7 /x b _ i r alice ftp 2 * c", "Unknown"},
      {"1 10.0.0.5 -7 /x b _ i r alice ftp 0 * c", "Unknown"},
      {"1 10.0.0.5 7 b _ i r alice ftp 0 * c", "Unknown"},
      {"1 10.0.0.5 7 /x b _ i r ftp 0 * c", "Unknown"},
      {"", "Unknown"},
  };
  for (const LineCase& c : cases)
    EXPECT_EQ(readXferlog(c.line), c.event) << c.line;
}

}  // namespace
}  // namespace quorvel
