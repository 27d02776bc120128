#include <string>

#include "classic/counter/counted_line.h"
#include "classic/counter/transfer_counter.h"

namespace quorvel {
namespace {

enum Mark : std::uint32_t {
  kSent = 1u << 0,
  kReceived = 1u << 1,
  kSendError = 1u << 2,
  kReceiveError = 1u << 3,
  kClosing = 1u << 4,
};
constexpr std::uint32_t kAllMarks = kSent | kReceived | kSendError | kReceiveError | kClosing;

// What stands in front of a failed transfer's line among the texts of sessions.
constexpr std::string_view kCountedAsError = "-";
constexpr std::string_view kCountedAsGood = "+";

TransferTokens tokensOf(std::uint32_t marks) {
  return {.sent = (marks & kSent) != 0,
          .received = (marks & kReceived) != 0,
          .sendError = (marks & kSendError) != 0,
          .receiveError = (marks & kReceiveError) != 0};
}

/// Counts as lines come, in log order; the lines of failed transfers become the texts of their sessions and are told
/// of when these come out.
class SessionCounter final : public LineRule, public SessionTextTarget {
 public:
  SessionCounter(const LogFile& log, const CountOptions& options, TransferCount& totals, CountObserver& observer)
      : LineRule({.foldsCase = false, .waitsForConnect = true, .endsAtServerStart = false, .dashMarks = kAllMarks}),
        m_options(options),
        m_counter(log, options, totals),
        m_observer(observer) {}

  [[nodiscard]] const Status& status() const { return m_counter.status(); }

  [[nodiscard]] std::uint32_t marksOf(bool hasDash, std::string_view after) const override {
    if (!hasDash) return 0;
    TransferTokens tokens;
    tokens.addStartOf(after);
    return (tokens.sent ? kSent : 0u) | (tokens.received ? kReceived : 0u) | (tokens.sendError ? kSendError : 0u) |
           (tokens.receiveError ? kReceiveError : 0u) | (after.starts_with(" Closing connection") ? kClosing : 0u);
  }
  [[nodiscard]] std::string_view header(const UserAct&) override { return {}; }

  bool take(const LogLine& line, std::uint32_t marks, bool, std::uint8_t&, SessionTexts& texts) override {
    const TransferTokens tokens = tokensOf(marks);
    m_counter.count(tokens, line, texts.count());
    if (m_options.showsFailures && tokens.isFailure()) {
      texts.add(tokens.sent || tokens.received ? kCountedAsGood : kCountedAsError);
      texts.add(m_counter.shown(line) + '\n');
    }
    return (marks & kClosing) == 0;
  }

  void write(std::string_view piece) override {
    m_failures.append(piece);
    std::size_t at = 0;
    for (std::size_t end; (end = m_failures.find('\n', at)) != std::string::npos; at = end + 1) {
      const auto line = std::string_view(m_failures).substr(at, end - at);
      m_observer.onFailedTransfer(line.substr(kCountedAsError.size()), !m_hasError);
      m_hasError = m_hasError || line.starts_with(kCountedAsError);
    }
    m_failures.erase(0, at);
  }
  void endSession(std::size_t, std::uint32_t) override {}
  bool keepGoing(LogPosition position) override { return m_observer.keepGoing(position); }

 private:
  const CountOptions m_options;
  LineCounter m_counter;
  CountObserver& m_observer;
  std::string m_failures;   ///< the line under way
  bool m_hasError = false;  ///< a line told of was counted as an error
};

}  // namespace

Status CountSessionTransfers(const LogFile& log, SessionList& sessions, const CountOptions& options,
                             TransferCount& totals, CountObserver& observer, const LineReading& reading) {
  SessionCounter counter(log, options, totals, observer);
  Status read = readSessionLines(log, sessions, counter, counter, reading);
  return read.isOk() ? counter.status() : read;
}

}  // namespace quorvel
