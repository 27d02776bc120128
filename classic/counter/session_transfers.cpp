#include <string>

#include "classic/counter/counted_line.h"
#include "classic/counter/transfer_counter.h"

namespace quorvel {
namespace {

constexpr std::string_view kClosing = " Closing connection";

class SessionCounter final : public SessionLineConsumer {
 public:
  explicit SessionCounter(CountRun run) : m_run(run) {}

  bool beginSession(const UserAct& session) override {
    m_number = session.NumberInLog;
    m_beforeConnect = session.ConnectTime + " - ";
    m_behindConnect = " Connected to " + session.IP;
    m_isConnected = false;
    return session.Position != 0;
  }

  bool line(const SessionLine& line) override {
    if (!m_isConnected) m_isConnected = isConnectLine(line);
    if (!m_isConnected) return true;
    TransferTokens tokens;
    const bool isClosing = findTokens(line, tokens);
    if (tokens.any()) countLine(tokens, line.text, byteCountText(line.text), m_run);
    return !isClosing;
  }

  void endSession(const UserAct&) override {}

  bool keepGoing(std::uint64_t position) override {
    return m_run.observer.keepGoing(static_cast<LogPosition>(position));
  }

 private:
  [[nodiscard]] bool isConnectLine(const SessionLine& line) const {
    return anyExactNumber(line, [this](std::string_view before, std::string_view after) {
      return before.ends_with(m_beforeConnect) && after.starts_with(m_behindConnect);
    });
  }

  /// Notes the tokens that stand behind "- " and the session number; returns whether the line closes the session.
  [[nodiscard]] bool findTokens(const SessionLine& line, TransferTokens& tokens) const {
    bool isClosing = false;
    anyExactNumber(line, [&](std::string_view before, std::string_view after) {
      if (!before.ends_with("- ")) return false;
      tokens.addStartOf(after);
      if (after.starts_with(kClosing)) isClosing = true;
      return false;
    });
    return isClosing;
  }

  /// As SessionLine::anyNumber, for numbers of the same case.
  template <typename Function>
  bool anyExactNumber(const SessionLine& line, Function what) const {
    return line.anyNumber([&](std::string_view before, std::string_view after) {
      return line.text.substr(before.size(), m_number.size()) == m_number && what(before, after);
    });
  }

  CountRun m_run;
  std::string m_number;
  std::string m_beforeConnect;
  std::string m_behindConnect;
  bool m_isConnected = false;
};

}  // namespace

Status CountSessionTransfers(const LogFile& log, const SessionSource& sessions, const CountOptions& options,
                             TransferCount& totals, CountObserver& observer) {
  SessionCounter counter({options, totals, observer});
  return readSessionLines(log, sessions, counter);
}

}  // namespace quorvel
