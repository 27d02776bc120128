#include "classic/find/log_marks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>

#include "log/byte_scan.h"
#include "log/text.h"

namespace quorvel {
namespace {

static_assert(kBlockHead >= kSessionNumberLength + 2);
static_assert(kBlockTail >= kScanSlack && kBlockTail >= kLongestSearchedName + 32);

constexpr int kKindBits = 4;
constexpr std::string_view kLoggedInText = " logged in";
/// So many " logged in" behind one name are looked at, each of which may end it.
constexpr std::size_t kMostNameEnds = 16;

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

/// Two polynomials in the bytes of a folded text, modulo a prime: the hash of a part follows from those of two
/// beginnings.
struct TextHash {
  static constexpr std::uint64_t kPrime = 0x7FFFFFFF;

  std::uint64_t first = 0;
  std::uint64_t second = 0;

  static const TextHash& bases() {
    static const TextHash bases{1000 + hashSeed() % (kPrime - 2000), 1000 + (hashSeed() >> 32) * 7 % (kPrime - 2000)};
    return bases;
  }
  [[nodiscard]] TextHash times(const TextHash& other) const {
    return {first * other.first % kPrime, second * other.second % kPrime};
  }
  [[nodiscard]] TextHash with(char c) const {
    const std::uint64_t byte = static_cast<unsigned char>(foldCase(c)) + std::uint64_t{1};
    return {(first * bases().first + byte) % kPrime, (second * bases().second + byte) % kPrime};
  }
  /// Never 0.
  [[nodiscard]] std::uint64_t value() const { return std::uint64_t{1} << 62 | first << 31 | second; }
};

const std::array<TextHash, kLongestSearchedName + 1>& powersOfBases() {
  static const auto powers = [] {
    std::array<TextHash, kLongestSearchedName + 1> made{};
    made[0] = {1, 1};
    for (std::size_t i = 1; i < made.size(); ++i)
      made[i] = made[i - 1].times(TextHash::bases());
    return made;
  }();
  return powers;
}

/// The names in a line. A line may hold many that overlap: each byte is looked at once all the same.
class NamesInLine {
 public:
  /// Looks at the name that starts here, up to the line's end or as far as a name is looked for.
  void lookAt(const char* name) {
    if (m_begin == nullptr || name > m_scanned || (name == m_scanned && !m_isAtEnd)) startAt(name);
    const char* const furthest = name + kLongestSearchedName + 1;
    for (; !m_isAtEnd && m_scanned < furthest; ++m_scanned) {
      const char c = *m_scanned;
      m_isAtEnd = c == '\r' || c == '\n';
      if (m_isAtEnd) break;
      if (c == ' ' && standsAt(m_scanned, kLoggedInText)) m_ends.push_back(m_scanned);
      m_hashes.push_back(m_hashes.back().with(c));
    }
    m_firstEnd = static_cast<std::size_t>(std::lower_bound(m_ends.begin(), m_ends.end(), name) - m_ends.begin());
  }
  /// The places at which the name looked at last may end, because " logged in" stands there.
  [[nodiscard]] std::span<const char* const> ends(const char* name) const {
    const std::span<const char* const> ends = std::span(m_ends).subspan(m_firstEnd);
    std::size_t count = 0;
    while (count < std::min(ends.size(), kMostNameEnds) &&
           ends[count] - name <= static_cast<std::ptrdiff_t>(kLongestSearchedName))
      ++count;
    return ends.first(count);
  }
  /// Where the line ends, null when that lies further than any name reaches.
  [[nodiscard]] const char* lineEnd(const char* name) const {
    const bool isNear = m_isAtEnd && m_scanned - name <= static_cast<std::ptrdiff_t>(kLongestSearchedName);
    return isNear ? m_scanned : nullptr;
  }
  [[nodiscard]] std::uint64_t hash(const char* from, const char* to) const {
    const TextHash& before = m_hashes[static_cast<std::size_t>(from - m_begin)];
    const TextHash& all = m_hashes[static_cast<std::size_t>(to - m_begin)];
    const TextHash moved = before.times(powersOfBases()[static_cast<std::size_t>(to - from)]);
    constexpr std::uint64_t kPrime = TextHash::kPrime;
    return TextHash{(all.first + kPrime - moved.first) % kPrime, (all.second + kPrime - moved.second) % kPrime}.value();
  }

 private:
  void startAt(const char* name) {
    m_begin = m_scanned = name;
    m_isAtEnd = false;
    m_ends.clear();
    m_hashes.assign(1, {});
  }

  const char* m_begin = nullptr;
  const char* m_scanned = nullptr;
  bool m_isAtEnd = false;
  std::vector<const char*> m_ends;  ///< every " logged in" from m_begin on
  std::size_t m_firstEnd = 0;       ///< of the name looked at last
  std::vector<TextHash> m_hashes;   ///< of what lies between m_begin and each byte up to m_scanned
};

/// Writes the marks of one block.
class MarkWriter {
 public:
  explicit MarkWriter(LogBlock& block) : m_block(block) {}

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
    const char* const name = event + kUser.size();
    m_names.lookAt(name);
    const auto ends = m_names.ends(name);
    const char* const lineEnd = m_names.lineEnd(name);
    add(at, MarkKind::User, id);
    const bool isIndexed = lineEnd != nullptr && ends.size() < kMostNameEnds;
    m_block.findings.push_back(isIndexed ? m_names.hash(name, lineEnd) : 0);
    if (!hasDash(at)) return;
    for (const char* const end : ends) {
      add(at, MarkKind::LoggedIn, id);
      m_block.findings.push_back(m_names.hash(name, end));
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
  NamesInLine m_names;
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

}  // namespace

SessionId sessionIdAt(const char* bracket, bool foldsCase) {
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
    bytes |= SessionId{static_cast<unsigned char>(foldsCase ? foldCase(text[i]) : text[i])} << (8 * i);
  }
  return bytes;
}

std::uint64_t hashName(std::string_view name) {
  TextHash hash;
  for (const char c : name)
    hash = hash.with(c);
  return hash.value();
}

bool isIndexedName(std::string_view name) {
  std::size_t ends = 0;
  if (name.size() >= kMostNameEnds * kLoggedInText.size()) {
    for (std::size_t at = 0; (at = findFolded(name, kLoggedInText, at)) != std::string_view::npos; ++at)
      ++ends;
  }
  return ends < kMostNameEnds;
}

void findMarks(LogBlock& block) {
  scanBytes(ScanFor::SessionEvents, block.data(), block.count, block.offsets);
  MarkWriter writer(block);
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
