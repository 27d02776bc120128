#include <string>

#include "counter/counted_line.h"
#include "counter/transfer_counter.h"

namespace quorvel {
namespace {

constexpr std::string_view kClosing = " Closing connection";

class SessionCounter final : public SessionLineConsumer {
 public:
  explicit SessionCounter(CountRun run) : m_run(run) {}

  bool beginSession(const UserAct& session) override {
    m_number = "- " + session.NumberInLog;
    m_connectText = session.ConnectTime + " " + m_number + " Connected to " + session.IP;
    m_isConnected = false;
    return session.Position != 0;
  }

  bool line(const SessionLine& line) override {
    if (!line.hasSessionMark) return true;
    if (!m_isConnected) m_isConnected = line.text.find(m_connectText) != std::string_view::npos;
    if (!m_isConnected) return true;
    TransferTokens tokens;
    const bool isClosing = findTokens(line.text, tokens);
    if (tokens.any()) countLine(tokens, line.text, byteCountText(line.text), m_run);
    return !isClosing;
  }

  void endSession(const UserAct&) override {}

  bool keepGoing(std::uint64_t position) override {
    return m_run.observer.keepGoing(static_cast<LogPosition>(position));
  }

 private:
  /// Notes the tokens that stand behind this session's number; returns whether the line closes the session.
  [[nodiscard]] bool findTokens(std::string_view text, TransferTokens& tokens) const {
    bool isClosing = false;
    for (auto at = text.find(m_number); at != std::string_view::npos; at = text.find(m_number, at + 1)) {
      const std::string_view after = text.substr(at + m_number.size());
      tokens.addStartOf(after);
      if (after.starts_with(kClosing)) isClosing = true;
    }
    return isClosing;
  }

  CountRun m_run;
  std::string m_number;  ///< with "- " in front
  std::string m_connectText;
  bool m_isConnected = false;
};

}  // namespace

Status CountSessionTransfers(const LogFile& log, const SessionSource& sessions, const CountOptions& options,
                             TransferCount& totals, CountObserver& observer) {
  SessionCounter counter({options, totals, observer});
  return readSessionLines(log, sessions, counter);
}

}  // namespace quorvel
