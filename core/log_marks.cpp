#include "core/log_marks.h"

#include <cstring>
#include <random>

#include "core/byte_scan.h"
#include "core/text.h"

namespace quorvel {
namespace {

static_assert(kBlockHead >= kSessionNumberLength + 2);
static_assert(kBlockTail >= kScanSlack && kBlockTail >= kLongestIndexedName + 32);

constexpr int kKindBits = 4;
constexpr std::string_view kLoggedInText = " logged in";

struct FailureText {
  std::string_view text;
  MarkKind kind;
};
/// In the order in which they are told apart; the last fits all.
constexpr FailureText kFailureTexts[] = {
    {" 530 Not logged in - password incorrect", MarkKind::PasswordIncorrect},
    {" 530 Incorrect password", MarkKind::IncorrectPassword},
    {" 530 Not logged in - unauthorized IP address", MarkKind::UnauthorizedIp},
    {" 530 Not logged in - cannot find home directory", MarkKind::NoHomeDirectory},
    {" 530", MarkKind::Other530},
};

/// Whether text stands at from, which has enough readable bytes. text is in lower case where it has letters.
bool standsAt(const char* from, std::string_view text) {
  for (const char c : text) {
    if (foldCase(*from++) != foldCase(c)) return false;
  }
  return true;
}

/// Writes the marks of one block.
class MarkWriter {
 public:
  MarkWriter(LogBlock& block, char lineEnd, std::size_t longestName)
      : m_block(block), m_lineEnd(lineEnd), m_longestName(longestName) {}

  void examineNumber(const char* at, const SessionIdSet& wanted) {
    if (*at == '-') return examineServerStart(at);
    const SessionId id = sessionIdAt(at);
    if (wanted.contains(id)) add(at, MarkKind::Line, id);
  }

  void examineEvent(const char* at) {
    if (*at == '-') return examineServerStart(at);
    const char* const event = at + 1;
    switch (foldCase(event[1])) {
      case 'c':
        return examineConnectOrClose(at, event);
      case 'u':
        return examineUser(at, event);
      case 'q':
        if (standsAt(event, " QUIT")) add(at, MarkKind::Quit, sessionIdAt(at));
        return;
      case '5':
        return examineFailure(at, event);
      case 'a':
        if (hasDash(at) && standsAt(event, " anonymous logged in")) add(at, MarkKind::Anonymous, sessionIdAt(at));
        return;
      default:
        return;
    }
  }

 private:
  static bool hasDash(const char* bracket) {
    const char* const dash = bracket - (kSessionNumberLength + 1);
    return dash[0] == '-' && dash[1] == ' ';
  }

  void examineServerStart(const char* at) {
    if (standsAt(at, kServerStartMark)) add(at, MarkKind::ServerStart, 0);
  }

  void examineConnectOrClose(const char* at, const char* event) {
    if (standsAt(event, " Connected to ")) {
      add(at, hasDash(at) ? MarkKind::ConnectDash : MarkKind::Connect, sessionIdAt(at));
    } else if (standsAt(event, " Closing connection")) {
      add(at, hasDash(at) ? MarkKind::CloseDash : MarkKind::Close, sessionIdAt(at));
    }
  }

  void examineUser(const char* at, const char* event) {
    constexpr std::string_view kUser = " USER ";
    if (!standsAt(event, kUser)) return;
    const SessionId id = sessionIdAt(at);
    add(at, MarkKind::User, id);
    if (!hasDash(at)) return;
    const char* const name = event + kUser.size();
    for (std::size_t length = 0; length <= m_longestName; ++length) {
      if (name[length] == ' ' && standsAt(name + length, kLoggedInText)) {
        add(at, MarkKind::LoggedIn, id);
        m_block.findings.push_back(hashName({name, length}));
      }
      if (name[length] == m_lineEnd) return;
    }
  }

  void examineFailure(const char* at, const char* event) {
    if (!hasDash(at)) return;
    for (const auto& [text, kind] : kFailureTexts) {
      if (standsAt(event, text)) return add(at, kind, sessionIdAt(at));
    }
  }

  void add(const char* at, MarkKind kind, SessionId id) {
    const LogPosition position = m_block.first + (at - m_block.data());
    m_block.findings.push_back((static_cast<std::uint64_t>(position) << kKindBits) | static_cast<std::uint64_t>(kind));
    m_block.findings.push_back(id);
  }

  LogBlock& m_block;
  const char m_lineEnd;
  const std::size_t m_longestName;
};

std::uint64_t randomSeed() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device();
}

}  // namespace

SessionId sessionIdAt(const char* bracket) {
  const char* const text = bracket - (kSessionNumberLength - 1);
  SessionId number = 0;
  bool isPlain = text[0] == '(';
  for (int i = 1; i < kSessionNumberLength - 1; ++i) {
    const auto digit = static_cast<unsigned char>(text[i] - '0');
    isPlain = isPlain && digit <= 9;
    number = number * 10 + digit;
  }
  if (isPlain) return number;
  SessionId bytes = 0;
  for (int i = 0; i < kSessionNumberLength; ++i) {
    bytes |= SessionId{static_cast<unsigned char>(foldCase(text[i]))} << (8 * i);
  }
  return bytes;
}

std::uint64_t hashName(std::string_view name) {
  static const std::uint64_t seed = randomSeed();
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
  std::uint64_t hash = seed + name.size();
  for (const char c : name) {
    hash = (hash ^ static_cast<unsigned char>(foldCase(c))) * kOdd;
    hash ^= hash >> 29;
  }
  return hash;
}

void findMarks(LogBlock& block, char lineEnd, std::size_t longestName) {
  thread_local std::vector<std::uint32_t> offsets;
  scanBytes(ScanFor::SessionEvents, block.data(), block.count, offsets);
  MarkWriter writer(block, lineEnd, longestName);
  for (const std::uint32_t offset : offsets)
    writer.examineEvent(block.data() + offset);
}

SessionIdSet::SessionIdSet() : m_digitIds(kDigitIds) {}

void SessionIdSet::insert(SessionId id) {
  if (id < kDigitIds) {
    m_digitIds[static_cast<std::size_t>(id)] = true;
  } else {
    m_oddIds.insert(id);
  }
}

void findSessionNumbers(LogBlock& block, const SessionIdSet& wanted) {
  thread_local std::vector<std::uint32_t> offsets;
  scanBytes(ScanFor::SessionLines, block.data(), block.count, offsets);
  MarkWriter writer(block, '\r', 0);
  for (const std::uint32_t offset : offsets)
    writer.examineNumber(block.data() + offset, wanted);
}

LogMark takeMark(const std::vector<std::uint64_t>& findings, std::size_t& index) {
  LogMark mark;
  const std::uint64_t word = findings[index++];
  mark.position = static_cast<LogPosition>(word >> kKindBits);
  mark.kind = static_cast<MarkKind>(word & ((1u << kKindBits) - 1));
  mark.id = findings[index++];
  if (mark.kind == MarkKind::LoggedIn) mark.nameHash = findings[index++];
  return mark;
}

}  // namespace quorvel
