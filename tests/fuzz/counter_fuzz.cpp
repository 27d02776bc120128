// Transfers are counted as a plain loop over the log's lines counts them: those of sessions and those of the whole log.
#include "counter/transfer_counter.h"
#include "tests/fuzz/session_input.h"
#include "tests/reference/session_text.h"

namespace {

using namespace quorvel;
using namespace quorvel::test;

struct BadLines final : CountObserver {
  std::vector<std::string> lines;
  void onFailedTransfer(std::string_view line, const TransferCount&) override {
    lines.emplace_back(line.substr(std::min<std::size_t>(line.size(), 27)));
  }
  bool keepGoing(LogPosition) override { return true; }
};

/// Whether the plain loop, which knows only short numbers of digits, reads every byte count of the log.
bool hasPlainByteCounts(std::string_view log) {
  constexpr std::string_view kMark = "Kb/sec - ";
  for (std::size_t at = log.find(kMark); at != std::string_view::npos; at = log.find(kMark, at + 1)) {
    const std::string_view rest = log.substr(at + kMark.size());
    const std::size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
    if (digits == 0 || digits > 10 || !rest.substr(digits).starts_with(" bytes)")) return false;
  }
  return true;
}

void compare(const TransferCount& found, const BadLines& bad, const CountedTransfers& expected, std::string_view log) {
  constexpr std::int64_t kScale = 10'000;
  constexpr std::size_t kLongestShownWhole = 250'000;
  require(found.SentFiles == expected.sentFiles && found.ReceivedFiles == expected.receivedFiles, "good transfers");
  require(found.SendErrors == expected.sendErrors && found.ReceiveErrors == expected.receiveErrors, "bad transfers");
  require(bad.lines.size() == expected.badLines.size(), "lines of bad transfers");
  if (log.size() < kLongestShownWhole) require(bad.lines == expected.badLines, "text of bad transfers");
  if (!hasPlainByteCounts(log)) return;
  require(found.BytesSent == expected.bytesSent * kScale, "bytes sent");
  require(found.BytesReceived == expected.bytesReceived * kScale, "bytes received");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kLongestLog = 600'000;
  FuzzInput input(data, size);
  FuzzInput odd = input;
  for (int bytes = 0; bytes < 14; ++bytes)
    (void)input.byte();
  const std::string text = input.expandedRest(kLongestLog);
  const LogFile log = openLog(text);
  TransferCount all;
  BadLines allBad;
  require(CountAllTransfers(log, {}, all, allBad).isOk(), "the log can be read");
  compare(all, allBad, allTransfers(text), text);
  for (const UserAct& session : chooseSessions(log, text, odd)) {
    TransferCount totals;
    BadLines bad;
    const std::vector<UserAct> alone{session};
    require(CountSessionTransfers(log, sourceOf(alone), {}, totals, bad).isOk(), "the log can be read");
    compare(totals, bad, sessionTransfers(text, session), text);
  }
  return 0;
}
