#include "classic/find/log_marks.h"

#include <array>
#include <bit>
#include <cstring>
#include <random>

#include "log/byte_scan.h"
#include "log/text.h"

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

/// Whether text stands at from, which has enough readable bytes, in either case; usually in the same one.
bool standsAt(const char* from, std::string_view text) {
  if (std::memcmp(from, text.data(), text.size()) == 0) return true;
  for (const char c : text) {
    if (foldCase(*from++) != foldCase(c)) return false;
  }
  return true;
}

void addMark(LogBlock& block, const char* at, MarkKind kind, SessionId id) {
  const LogPosition position = block.first + (at - block.data());
  block.findings.push_back((static_cast<std::uint64_t>(position) << kKindBits) | static_cast<std::uint64_t>(kind));
  block.findings.push_back(id);
}

bool isServerStart(const char* dash) {
  return standsAt(dash, kServerStartMark);
}

/// Writes the marks of one block.
class MarkWriter {
 public:
  MarkWriter(LogBlock& block, char lineEnd, std::size_t longestName)
      : m_block(block), m_lineEnd(lineEnd), m_longestName(longestName) {}

  void examineEvent(const char* at) {
    if (*at == '-') {
      if (isServerStart(at)) add(at, MarkKind::ServerStart, 0);
      return;
    }
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

  void add(const char* at, MarkKind kind, SessionId id) { addMark(m_block, at, kind, id); }

  LogBlock& m_block;
  const char m_lineEnd;
  const std::size_t m_longestName;
};

/// Writes the session numbers of one block, each with the extent of its line.
class LineWriter {
 public:
  LineWriter(LogBlock& block, const SessionIdSet& wanted, LastPlaces* places)
      : m_block(block), m_wanted(wanted), m_places(places) {
    if (block.first == 1 || block.data()[-1] == '\n') m_lineBegin = block.data();
  }

  void examine(const char* at) {
    if (*at == '\n') {
      endLine(at);
    } else if (*at == '-') {
      if (isServerStart(at)) addMark(m_block, at, MarkKind::ServerStart, 0);
    } else {
      examineNumber(at, sessionIdAt(at));
    }
  }

 private:
  struct Number {
    const char* at;
    std::size_t detail;  ///< index in the findings
  };

  void examineNumber(const char* at, SessionId id) {
    if (m_places != nullptr) m_places->note(id, m_block);
    if (!m_wanted.contains(id)) return;
    addMark(m_block, at, MarkKind::Line, id);
    m_numbers.push_back({at, m_block.findings.size()});
    m_block.findings.push_back(std::bit_cast<std::uint64_t>(LineExtent{}));
  }

  void endLine(const char* lineEnd) {
    for (const Number& number : m_numbers) {
      const auto before = m_lineBegin != nullptr ? number.at - m_lineBegin : 0;
      m_block.findings[number.detail] = std::bit_cast<std::uint64_t>(
          LineExtent{static_cast<std::uint32_t>(before), static_cast<std::uint32_t>(lineEnd - number.at)});
    }
    m_numbers.clear();
    m_lineBegin = lineEnd + 1;
  }

  LogBlock& m_block;
  const SessionIdSet& m_wanted;
  LastPlaces* const m_places;
  const char* m_lineBegin = nullptr;  ///< null while the line started before the block
  std::vector<Number> m_numbers;      ///< of the line looked at
};

std::uint64_t randomSeed() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device();
}

}  // namespace

SessionId sessionIdAt(const char* bracket) {
  constexpr auto kZero = std::bit_cast<std::uint64_t>(std::array{'(', '0', '0', '0', '0', '0', '0', ')'});
  constexpr auto kCarry = std::bit_cast<std::uint64_t>(std::array<std::uint8_t, 8>{0, 6, 6, 6, 6, 6, 6, 0});
  constexpr auto kBeyond =
      std::bit_cast<std::uint64_t>(std::array<std::uint8_t, 8>{0xFF, 0xF0, 0xF0, 0xF0, 0xF0, 0xF0, 0xF0, 0xFF});
  const char* const text = bracket - (kSessionNumberLength - 1);
  std::uint64_t digits = 0;
  std::memcpy(&digits, text, sizeof digits);
  digits ^= kZero;  // leaves a digit's value in each byte, and 0 for the parentheses
  if (((digits | (digits + kCarry)) & kBeyond) == 0) {
    const auto digit = std::bit_cast<std::array<std::uint8_t, 8>>(digits);
    return digit[1] * 100'000u + digit[2] * 10'000u + digit[3] * 1'000u + digit[4] * 100u + digit[5] * 10u + digit[6];
  }
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
  scanBytes(ScanFor::SessionEvents, block.data(), block.count, block.offsets);
  MarkWriter writer(block, lineEnd, longestName);
  for (const std::uint32_t offset : block.offsets)
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

void LastPlaces::note(SessionId id, const LogBlock& block) {
  if (id >= kDigitIds) return;
  auto& page = m_pages[static_cast<std::size_t>(id) / kNumbersPerPage];
  if (!page) page = std::make_unique<Page>();
  (*page)[static_cast<std::size_t>(id) % kNumbersPerPage] = static_cast<std::uint32_t>(block.end() / kUnit);
}

std::optional<LogPosition> LastPlaces::of(SessionId id) const {
  if (id >= kDigitIds) return std::nullopt;
  const auto& page = m_pages[static_cast<std::size_t>(id) / kNumbersPerPage];
  return page ? (LogPosition{(*page)[static_cast<std::size_t>(id) % kNumbersPerPage]} + 1) * kUnit : 0;
}

void findSessionNumbers(LogBlock& block, const SessionIdSet& wanted, LastPlaces* places) {
  scanBytes(ScanFor::SessionLines, block.data(), block.count, block.offsets);
  LineWriter writer(block, wanted, places);
  for (const std::uint32_t offset : block.offsets)
    writer.examine(block.data() + offset);
}

LogMark takeMark(const std::vector<std::uint64_t>& findings, std::size_t& index) {
  LogMark mark;
  const std::uint64_t word = findings[index++];
  mark.position = static_cast<LogPosition>(word >> kKindBits);
  mark.kind = static_cast<MarkKind>(word & ((1u << kKindBits) - 1));
  mark.id = findings[index++];
  if (hasDetail(mark.kind)) mark.detail = findings[index++];
  return mark;
}

}  // namespace quorvel
