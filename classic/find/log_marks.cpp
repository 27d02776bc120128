#include "classic/find/log_marks.h"

#include <array>
#include <bit>
#include <cstring>

#include "classic/find/names_in_line.h"
#include "log/byte_scan.h"
#include "log/text.h"

namespace quorvel {
namespace {

static_assert(kBlockHead >= kSessionNumberLength + 2);
static_assert(kBlockTail >= kScanSlack && kBlockTail >= kLongestSearchedName + 32);

constexpr int kKindBits = 4;

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
    if (!standsAt(event, " USER ")) return;
    const SessionId id = sessionIdAt(at);
    const char* const name = at + kForwardToName;
    m_names.lookAt(name);
    const char* const loggedIn = m_names.loggedIn(0);
    const char* const lineEnd = m_names.lineEnd();
    add(at, MarkKind::User, id);
    const bool holdsLoggedIn = loggedIn != nullptr && lineEnd != nullptr;
    m_block.findings.push_back(holdsLoggedIn ? kHoldsLoggedIn : lineEnd != nullptr ? m_names.hash(lineEnd) : 0);
    if (loggedIn == nullptr || !hasDash(at)) return;
    add(at, MarkKind::LoggedIn, id);
    m_block.findings.push_back(m_names.hash(loggedIn));
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

void findMarks(LogBlock& block) {
  scanBytes(ScanFor::SessionEvents, block.data(), block.count, block.offsets);
  MarkWriter writer(block);
  for (const std::uint32_t offset : block.offsets)
    writer.examineEvent(block.data() + offset);
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
