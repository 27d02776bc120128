// What ends a line of a log.
#include "log/log_file.h"

#include <gtest/gtest.h>

#include "tests/support/memory_log.h"

namespace quorvel::test {
namespace {

using namespace std::string_literals;

std::string repeat(std::string_view text, std::size_t size) {
  std::string repeated;
  while (repeated.size() < size)
    repeated += text;
  return repeated;
}

TEST(LogFile, TellsTheLineEndByTheFirstLinesItMeets) {
  struct Case {
    const char* what;
    std::string log;
    char lineEnd;
  };
  const std::string damage = repeat("\0\r"s, 5'000'000);
  const Case cases[] = {
      {"nothing", "", '\r'},
      {"no line end", "x", '\r'},
      {"bare LF, then CR LF", "x\ny\r\n", '\n'},
      {"CR LF, then bare LF", "x\r\ny\n", '\r'},
      {"cut behind a CR", "\nx\r\n", '\r'},
      {"an empty line", "\n\nx\r\n", '\n'},
      {"CR LF across two reads", repeat("x", 65'535) + "\r\n", '\r'},
      {"LF at the start of a read", repeat("x", 65'536) + "\n", '\n'},
      {"damaged megabytes, then LF", damage + repeat("line\n", 5'000'000), '\n'},
      {"damaged megabytes, then CR LF", damage + repeat("line\r\n", 5'000'000), '\r'},
  };
  for (const auto& [what, log, lineEnd] : cases)
    EXPECT_EQ(openLog(log).lineEnd(), lineEnd) << what;
}

}  // namespace
}  // namespace quorvel::test
