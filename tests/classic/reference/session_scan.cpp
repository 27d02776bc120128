// The session finder's scan, step by step and without any shortcut.
#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "tests/classic/reference/literal_scans.h"

namespace quorvel::test {
namespace {

constexpr std::int64_t kBlockSize = 4000;
constexpr std::size_t kLongestText = 32767;

std::int64_t size64(std::string_view text) {
  return static_cast<std::int64_t>(text.size());
}

/// A log and the session being looked at. Positions are bytes counted from 1; in front of the log and behind it lie
/// blanks.
class Scan {
 public:
  Scan(std::string_view log, bool trunkLongUsernames)
      : m_length(size64(log)), m_longestName(trunkLongUsernames ? 12 : kLongestText) {
    const std::string blanks(kBlockSize, ' ');
    m_log = blanks + std::string(log) + blanks;
    m_folded = lowerCase(m_log);
  }

  std::vector<UserAct> run() {
    std::vector<UserAct> records;
    for (m_position = 1; m_position < m_length; m_position += 60) {
      m_position = FindForward(") Connected to ", m_position);
      if (m_position == 0) break;
      records.push_back(record());
      records.back().LogonNo = static_cast<std::int32_t>(records.size());
    }
    return records;
  }

 private:
  [[nodiscard]] std::string_view foldedBlock(std::int64_t position) const {
    return std::string_view(m_folded).substr(static_cast<std::size_t>(position - 1 + kBlockSize), kBlockSize);
  }
  /// As they stand in the log, blanks where there is none.
  [[nodiscard]] std::string bytesAt(std::int64_t position, std::size_t count) const {
    const std::int64_t from = std::clamp<std::int64_t>(position - 1 + kBlockSize, 0, size64(m_log));
    std::string bytes = m_log.substr(static_cast<std::size_t>(from), count);
    bytes.resize(count, ' ');
    return bytes;
  }
  [[nodiscard]] std::string stampBefore(std::int64_t mark) const { return bytesAt(mark - 21, 20); }

  [[nodiscard]] std::int64_t FindForward(std::string_view text, std::int64_t start) const {
    return start >= m_length ? 0 : FindForwardLimited(text, start, m_length);
  }

  [[nodiscard]] std::int64_t FindForwardLimited(std::string_view text, std::int64_t start, std::int64_t limit) const {
    if (start >= m_length) return start;
    const std::string wanted = lowerCase(text);
    const std::int64_t step = kBlockSize - size64(text);
    for (std::int64_t at = start; at < m_length && (at == start || at <= limit); at += step) {
      const std::size_t index = foldedBlock(at).find(wanted);
      if (index != std::string_view::npos) return at + static_cast<std::int64_t>(index);
      if (step <= 0) break;  // the next block would not lie further on
    }
    return 0;
  }

  /// The place of the first event, with its number, in the session.
  [[nodiscard]] std::int64_t find(const std::string& event) const {
    return FindForwardLimited(m_id + event, m_position, m_limit);
  }
  [[nodiscard]] std::int64_t findDashed(const std::string& event) const {
    return FindForwardLimited("- " + m_id + event, m_position, m_limit);
  }

  /// The place of the close or of the server start, 0 for neither, and whether it is the latter.
  [[nodiscard]] std::pair<std::int64_t, bool> FindSessionEnd() const {
    if (m_position >= m_length) return {m_position, false};
    const std::string close = lowerCase("- " + m_id + " Closing connection");
    const std::string serverStart = "- starting ftp server...";
    const std::int64_t step = kBlockSize - size64(close) - size64(serverStart);
    for (std::int64_t at = m_position; at < m_length; at += step) {
      const std::size_t closeIndex = foldedBlock(at).find(close);
      const std::size_t serverIndex = foldedBlock(at).find(serverStart);
      const std::size_t first = std::min(closeIndex, serverIndex);
      if (first != std::string_view::npos) return {at + static_cast<std::int64_t>(first), serverIndex < closeIndex};
    }
    return {0, false};
  }

  /// From position up to, not including, the next of the ends; to the end of the log when there is none.
  [[nodiscard]] std::string textUpTo(std::string_view ends, std::int64_t position) const {
    std::int64_t behind = m_length + 1;
    for (const char end : ends) {
      const std::int64_t found = FindForward(std::string_view(&end, 1), position);
      if (found != 0) behind = std::min(behind, found);
    }
    if (behind <= position) return {};
    const std::string text = bytesAt(position, static_cast<std::size_t>(behind - position));
    return text.substr(0, std::min(text.find_first_of(ends), kLongestText));  // no search looks at a last byte alone
  }

  UserAct record() {
    UserAct record;
    record.Position = m_position;
    record.ConnectTime = bytesAt(m_position - 30, 20);
    record.IP = textUpTo(" ", m_position + 15);
    record.NumberInLog = m_id = bytesAt(m_position - 7, 8);
    record.LogoffTime = logoffTime();
    std::string wholeName;
    record.Name = userName(wholeName);
    const std::int64_t logon = findLogonLine(record.Name, wholeName);
    record.LogonTime = logon > 0 ? stampBefore(logon) : failedLogonTime();
    return record;
  }

  std::string logoffTime() {
    const auto [position, isServerStart] = FindSessionEnd();
    m_limit = position;
    if (!isServerStart && position - 21 <= 0) return "NOT_LOGGED_OUT";
    if (isServerStart && position - 21 >= 0) return "SERVER_RESTART";
    return stampBefore(position);
  }

  /// As the record has it; wholeName is the one the log has.
  [[nodiscard]] std::string userName(std::string& wholeName) const {
    const std::int64_t u = find(" USER ");
    const std::int64_t q = find(" QUIT");
    std::string name;
    if (u == 0 && q == 0) name = "NO_USER_FOUND";
    if (q > 0 && (q < u || m_limit < u)) name = "QUIT";
    if (u == 0 && (q > 0 || m_limit >= 1)) name = "QUIT";
    if (!name.empty()) return name;
    wholeName = textUpTo("\r\n", u + 14);
    return wholeName.substr(0, m_longestName);
  }

  [[nodiscard]] std::int64_t findLogonLine(const std::string& name, const std::string& wholeName) const {
    if (name == "anonymous") return findDashed(" anonymous logged in");
    if (name == "QUIT") return findDashed(" Closing connection");
    if (name != "NO_USER_FOUND") return findDashed(" User " + wholeName + " logged in");
    return FindForwardLimited("- " + m_id + " Connected to ", m_position - 20, m_limit);
  }

  [[nodiscard]] std::string failedLogonTime() const {
    const std::int64_t qq = find(" QUIT");
    const std::int64_t cc = FindForwardLimited(m_id + " Closing connection", m_position, m_limit + 100);
    std::string word;
    std::int64_t m = 0;
    constexpr std::pair<const char*, const char*> kReplies[] = {
        {" 530 Not logged in - password incorrect", " BAD_PASSWORD"},
        {" 530 Incorrect password", " BAD_PASSWORD"},
        {" 530 Not logged in - unauthorized IP address", " UNAUTHORIZED_IP"},
        {" 530 Not logged in - cannot find home directory", " HOMEDIR_NOT_FOUND"},
        {" 530", " NotLoggedIn"}};
    for (const auto& [reply, meaning] : kReplies) {
      word = meaning;
      m = findDashed(reply);
      if (m != 0) break;
    }
    if (m == 0 && cc == 0 && qq == 0) return word;
    if (m == 0) m = (cc > 0 ? cc : qq) - 2;
    return stampBefore(m) + word;
  }

  const std::int64_t m_length;
  const std::size_t m_longestName;
  std::string m_log;     ///< with a block of blanks on either side
  std::string m_folded;  ///< the same in lower case
  std::int64_t m_position = 0;
  std::string m_id;
  std::int64_t m_limit = 0;  ///< where the session's end limits the searches
};

}  // namespace

std::string lowerCase(std::string_view text) {
  constexpr std::string_view kUpper =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZ\x8A\x8C\x8E\x9F\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xCE\xCF"
      "\xD0\xD1\xD2\xD3\xD4\xD5\xD6\xD8\xD9\xDA\xDB\xDC\xDD\xDE";
  constexpr std::string_view kLower =
      "abcdefghijklmnopqrstuvwxyz\x9A\x9C\x9E\xFF\xE0\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xEE\xEF"
      "\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF8\xF9\xFA\xFB\xFC\xFD\xFE";
  static_assert(kUpper.size() == kLower.size());
  static const std::array<char, 256> kTable = [&] {
    std::array<char, 256> table{};
    std::iota(table.begin(), table.end(), '\0');
    for (std::size_t letter = 0; letter < kUpper.size(); ++letter)
      table[static_cast<unsigned char>(kUpper[letter])] = kLower[letter];
    return table;
  }();
  std::string folded(text);
  for (char& c : folded)
    c = kTable[static_cast<unsigned char>(c)];
  return folded;
}

std::vector<UserAct> scanSessions(std::string_view log, bool trunkLongUsernames) {
  return Scan(log, trunkLongUsernames).run();
}

}  // namespace quorvel::test
