#include "report/check.h"

#include <bitset>

#include "log/text.h"
#include "report/cell_text.h"

namespace quorvel {
namespace {

std::string percentText(std::int64_t hundredths) {
  return readableText({CellKind::Percent, hundredths, {}});
}

/// Each with the log's name in front.
class Sentences {
 public:
  /// servers: those whose sessions the log holds, by Event::server.
  Sentences(const LogInfo& log, const std::bitset<256>& servers) : m_log(log), m_servers(servers) {}

  void tell(std::vector<std::string>& sentences) const {
    const auto add = [&](const std::string& sentence) {
      if (!sentence.empty()) sentences.push_back(validUtf8(m_log.name) + ": " + sentence);
    };
    add(understood());
    add(others());
    add(clock());
    if (m_log.grammar != nullptr) add(std::string(m_log.grammar->traits().missing));
    for (std::size_t i = 0; i < grammars().size(); ++i)
      if (m_servers[i] && grammars()[i] != m_log.grammar) add(std::string(grammars()[i]->traits().missing));
    if (!m_log.isComplete) add("It was not read to its end.");
    for (const std::string& note : m_log.notes)
      add(validUtf8(note));
  }

 private:
  [[nodiscard]] std::string understood() const {
    const Ledger& ledger = m_log.ledger;
    if (ledger.lines() == 0) return "It is empty.";
    const std::string server = m_log.grammar == nullptr ? "" : std::string(m_log.grammar->title()) + ", ";
    const std::uint64_t ours = ledger.understood.lines + ledger.setAside.lines;
    std::string sentence = server + countOf(ledger.lines(), "line") + ", " +
                           percentText(percentOf(ledger.understood.lines, ours)) + " understood";
    if (ledger.setAside.lines > 0) sentence += ", " + countOf(ledger.setAside.lines, "line") + " set aside";
    return sentence + ".";
  }
  [[nodiscard]] std::string others() const {
    const Ledger& ledger = m_log.ledger;
    std::string sentence;
    if (ledger.foreign.lines > 0) sentence = countOf(ledger.foreign.lines, "line") + " of other programs";
    if (ledger.repeated.lines > 0) {
      sentence += sentence.empty() ? "" : ", ";
      sentence += countOf(ledger.repeated.lines, "line") + " that another file of the set holds too";
    }
    return sentence.empty() ? sentence : "It holds " + sentence + ".";
  }
  [[nodiscard]] std::string clock() const {
    const std::uint64_t jumps = m_log.ledger.clockJumps;
    return jumps == 0 ? "" : "Its clock went back " + countOf(jumps, "time") + "; lines keep the order of the log.";
  }

  const LogInfo& m_log;
  const std::bitset<256>& m_servers;
};

}  // namespace

std::vector<std::string> checkSentences(const Activity& activity) {
  std::vector<std::bitset<256>> servers(activity.logs.size());
  for (std::size_t i = 0; i < activity.sessions.size(); ++i) {
    const SessionRow& row = activity.sessions[i];
    const Grammar* const grammar = activity.logs[row.log].grammar;
    if (grammar != nullptr && grammar->traits().isMixed) servers[row.log].set(row.server);
  }
  std::vector<std::string> sentences;
  for (std::size_t i = 0; i < activity.logs.size(); ++i)
    Sentences(activity.logs[i], servers[i]).tell(sentences);
  return sentences;
}

std::int64_t setAsidePercent(const Ledger& ledger) {
  const std::uint64_t ours = ledger.understood.lines + ledger.setAside.lines;
  return ledger.setAside.lines == 0 ? 0 : std::max<std::int64_t>(1, 10'000 - percentOf(ledger.understood.lines, ours));
}

}  // namespace quorvel
