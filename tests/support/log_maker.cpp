#include "tests/support/log_maker.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <random>
#include <span>
#include <string_view>
#include <vector>

namespace quorvel::test {
namespace {

using namespace std::string_view_literals;

constexpr std::int64_t kBlock = 4000;

constexpr std::array kUsualNumbers = {"(000001)"sv, "(000007)"sv, "(000012)"sv, "(000013)"sv,
                                      "(000123)"sv, "(999999)"sv, "(100000)"sv, "(000012)"sv};
constexpr std::array kOddNumbers = {"(1)"sv,
                                    "(12)"sv,
                                    "(00012)"sv,
                                    "(0000012)"sv,
                                    "(ABCdef)"sv,
                                    "(abcDEF)"sv,
                                    "(------)"sv,
                                    "(0 0 0 )"sv,
                                    "()"sv,
                                    "((((((("sv,
                                    "(\xC9\xE8\xDC\x8A\xD7\xDF)"sv,
                                    "(\xE9\xC8\xFC\x9A\xD7\xDF)"sv,
                                    "(\xC9\xE8\xDC\x8A\xF7\xDF)"sv,
                                    "(a\0b\0c\0)"sv,
                                    "- (12)"sv,
                                    "(000001"sv,
                                    "(      )"sv,
                                    "(000012) (000013)"sv};

constexpr std::array kNames = {"alice"sv,
                               "bob"sv,
                               "anonymous"sv,
                               "anonymous"sv,
                               "Anonymous"sv,
                               "QUIT"sv,
                               "quit"sv,
                               "NO_USER_FOUND"sv,
                               "twelve_chars"sv,
                               "thirteen_char"sv,
                               "thirteen_chaR"sv,
                               ""sv,
                               " "sv,
                               "two words "sv,
                               "x logged in"sv,
                               "bob logged in - User alice"sv,
                               "a.*[b](c)+\\d"sv,
                               "<b>bold</b>&amp;"sv,
                               "J\xD6RG"sv,
                               "j\xF6rg"sv,
                               "\x8A\x8C\x8E\x9F"sv,
                               "x) Connected to 10.9.8.7 y"sv,
                               "(000012) QUIT"sv,
                               "- (000007) Closing connection"sv,
                               "nul\0nul"sv,
                               "tab\tquote\"%s\x1b[31m"sv};

/// What a session's line may say; an asterisk stands for its user's name.
constexpr std::array kEvents = {"USER *"sv,
                                "USER *"sv,
                                "USER *"sv,
                                "USER"sv,
                                "User * logged in"sv,
                                "User * logged in"sv,
                                "User * logged in"sv,
                                "anonymous logged in"sv,
                                "PASS xxxxx"sv,
                                "331 User name okay, need password."sv,
                                "530 Not logged in - password incorrect"sv,
                                "530 Incorrect password."sv,
                                "530 Not logged in - unauthorized IP address."sv,
                                "530 Not logged in - cannot find home directory."sv,
                                "530 Not logged in."sv,
                                "530"sv,
                                "QUIT"sv,
                                "QUIT"sv,
                                "221 Goodbye!"sv,
                                "RETR a.zip"sv,
                                "STOR b.txt"sv,
                                "150 Opening BINARY mode data connection for a.zip (40960 bytes)."sv,
                                "Sent file C:\\ftp\\a.zip successfully (12.5 Kb/sec - 40960 bytes)"sv,
                                "Received file C:\\ftp\\b.txt successfully (3.1 Kb/sec - 1024 bytes)"sv,
                                "Received file C:\\ftp\\Sent file x successfully (3.1 Kb/sec - many bytes)"sv,
                                "Sent file without a count"sv,
                                "Error sending file C:\\ftp\\c.zip, aborted"sv,
                                "Error receiving file C:\\ftp\\d.zip, aborted"sv,
                                "550 /test.txt: No such file or directory."sv,
                                "550 Access denied"sv,
                                "501 Syntax error"sv,
                                "DELE old.txt"sv,
                                "DELE old.txt"sv,
                                "250 File deleted."sv,
                                "SITE HELP"sv,
                                "200 Command okay."sv,
                                "MDTM a.zip"sv,
                                "213 20050119132808"sv,
                                "253 Date/time changed okay."sv,
                                "553 Not allowed."sv,
                                "Connected to 10.0.0.5 (Local address 10.0.0.1)"sv,
                                "Connected to 10.0.0.77"sv,
                                "Closing connection"sv};

/// Texts the searches look for; logs like to end inside or directly behind one.
constexpr std::array kTokens = {
    ") Connected to"sv, " USER"sv,         " QUIT"sv, " logged in"sv, " Closing connection"sv,
    " 530"sv,           "FTP Server..."sv, "\r"sv,    "("sv};

class LogMaker {
 public:
  explicit LogMaker(std::uint64_t seed) : m_random(seed) {}

  std::string make() {
    const std::size_t size = pickSize();
    pickHabits(size);
    while (m_log.size() < size)
      step();
    cutEnd();
    if (chance(20)) m_log.erase(0, below(80));
    scribble();
    return std::move(m_log);
  }

 private:
  struct Session {
    std::string number;
    std::string name;
    std::size_t begin = 0;  ///< index of the ")" of its connect line
  };

  std::size_t below(std::size_t count) { return static_cast<std::size_t>(m_random() % count); }
  bool chance(std::size_t percent) { return below(100) < percent; }
  template <typename T>
  const T& pick(std::span<const T> choices) {
    return choices[below(choices.size())];
  }

  std::size_t pickSize() {
    const std::size_t kind = below(1000);
    if (kind < 100) return 10 + below(300);
    if (kind < 600) return 300 + below(4000);
    if (kind < 900) return 3000 + below(14000);
    if (kind < 995) return 10000 + below(60000);
    return 60000 + below(340000);
  }

  void pickHabits(std::size_t size) {
    m_lineFeedOnly = chance(15);
    m_mixedLineEnds = chance(5);
    m_bracketPercent = pick<std::size_t>(std::array<std::size_t, 4>{0, 100, 100, 50});
    m_casePercent = chance(50) ? 0 : 20;
    m_oddPercent = chance(60) ? 0 : 40;
    m_noisePercent = chance(50) ? 5 : 20;
    m_alignPercent = chance(50) ? 0 : 8;
    m_closePercent = pick<std::size_t>(std::array<std::size_t, 4>{0, 10, 10, 25});
    m_restartPercent = chance(60) ? 0 : 3;
    m_longNames = chance(3);
    // Long logs get few sessions: each that never ends is searched for up to the end of the log.
    m_connectPercent = size > 80000 ? 2 : 5 + below(30);
    m_mostOpen = 1 + below(12);
  }

  void step() {
    if (chance(m_noisePercent)) noise();
    if (chance(m_alignPercent)) chance(25) ? alignConnect() : align();
    if (chance(m_restartPercent)) return serverStart();
    if (m_open.empty() || (m_open.size() < m_mostOpen && chance(m_connectPercent))) return connect();
    const std::size_t at = below(m_open.size());
    if (!chance(m_closePercent)) return sessionLine(m_open[at], event(m_open[at]));
    if (chance(30)) sessionLine(m_open[at], "QUIT");
    close(m_open[at]);
    if (chance(85)) m_open.erase(m_open.begin() + static_cast<std::ptrdiff_t>(at));
  }

  std::string event(const Session& session) {
    std::string text(pick<std::string_view>(kEvents));
    if (const auto star = text.find('*'); star != std::string::npos) {
      text.replace(star, 1, chance(85) ? session.name : makeName());
    }
    return text;
  }

  std::string makeName() {
    constexpr std::array<std::size_t, 8> kLengths = {30, 300, 3950, 3973, 3974, 3980, 9000, 40000};
    if (m_longNames && chance(15)) return std::string(pick<std::size_t>(kLengths), 'n');
    return std::string(pick<std::string_view>(kNames));
  }

  void connect() {
    Session session{
        std::string(chance(m_oddPercent) ? pick<std::string_view>(kOddNumbers) : pick<std::string_view>(kUsualNumbers)),
        makeName(), 0};
    const std::size_t before = m_log.size();
    std::string text = std::string("Connected to 10.").append(std::to_string(below(300))).append(".0.5");
    if (chance(80)) text += " (Local address 10.0.0.1)";
    if (chance(5)) text += session.number + " Connected to 10.1.1.1 ";  // a second one, closer than a line
    sessionLine(session, text);
    session.begin = std::min(m_log.find(')', before), m_log.size());
    if (chance(60)) sessionLine(session, "USER " + session.name);
    if (chance(40)) sessionLine(session, (session.name == "anonymous" ? "" : "User ") + session.name + " logged in");
    m_open.push_back(std::move(session));
  }

  void close(const Session& session) {
    std::string text = "Closing connection for user TEST (00:01:08 connected)";
    if (chance(10)) return line(stamp() + " ! " + session.number + " " + text);
    sessionLine(session, text);
  }

  void serverStart() {
    if (chance(70)) m_open.clear();
    line(stamp() + " - Starting FTP Server..." + (chance(20) ? "" : " (version 3.0)"));
  }

  void sessionLine(const Session& session, std::string_view text) {
    line(stamp() + " - " + session.number + " " + std::string(text));
  }

  void line(std::string text) {
    if (chance(m_bracketPercent)) m_log.append("[").append(1, static_cast<char>('1' + below(6))).append("] ");
    if (chance(m_casePercent)) changeCase(text);
    m_log += text;
    const bool lineFeedOnly = m_mixedLineEnds ? chance(50) : m_lineFeedOnly;
    m_log += chance(1) ? "" : lineFeedOnly ? "\n" : "\r\n";
  }

  /// A stamp that no other line of the log has, nearly always.
  std::string stamp() {
    m_clock += below(90);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "Wed %02uJan05 %02u:%02u:%02u", unsigned(m_clock / 86400 % 31 + 1),
                  unsigned(m_clock / 3600 % 24), unsigned(m_clock / 60 % 60), unsigned(m_clock % 60));
    return text.data();
  }

  void changeCase(std::string& text) {
    const std::size_t way = below(3);
    for (char& c : text) {
      const bool flip = way == 2 ? chance(50) : true;
      const auto byte = static_cast<unsigned char>(c);
      const bool isLatinLetter = byte >= 0xC0 && byte != 0xD7 && byte != 0xDF && byte != 0xF7 && byte != 0xFF;
      if (!flip || !(isLatinLetter || (byte < 0x80 && std::isalpha(byte)))) continue;
      c = static_cast<char>(way == 0 ? byte | 0x20u : way == 1 ? byte & ~0x20u : byte ^ 0x20u);
    }
  }

  void noise() {
    constexpr std::array kNoise = {""sv,
                                   " "sv,
                                   "(000012)"sv,
                                   ") Connected to"sv,
                                   "- (000012) "sv,
                                   ") Connected to  x"sv,
                                   "- Starting FTP"sv,
                                   "\0\0\0"sv,
                                   "- Starting FTP Server.."sv,
                                   "(((((((((((((((((((((((((((((((((((("sv};
    if (chance(70)) return line(std::string(pick<std::string_view>(kNoise)));
    fill(below(chance(95) ? 400 : 9000));
  }

  /// One line of about this many bytes.
  void fill(std::size_t size) {
    constexpr std::string_view kBytes = "abc XYZ(012)-\xE9\xC9";
    std::string text(size, chance(50) ? '(' : ' ');
    if (chance(50)) std::generate(text.begin(), text.end(), [&] { return kBytes[below(kBytes.size())]; });
    m_log += text + "\r\n";
  }

  /// Writes a line whose token starts where a search from an open session changes blocks, or right beside that, and
  /// a few more of the session's lines behind it.
  void align() {
    if (m_open.empty()) return;
    struct Search {
      std::size_t overlap;      ///< length of the text searched for
      std::size_t tokenOffset;  ///< where it starts in a line without a bracket: at the dash or at the number
    };
    constexpr std::array<Search, 8> kSearches = {
        {{13, 23}, {14, 23}, {27, 23}, {53, 21}, {53, 21}, {31, 21}, {14, 21}, {49, 21}}};
    constexpr std::array<int, 12> kBeside = {-2, -1, 0, 0, 1, 2, -92, -97, -98, -99, -100, -101};
    const Session session = m_open[below(m_open.size())];
    const Search search = pick<Search>(kSearches);
    fillTo(session.begin, search.overlap, pick<int>(kBeside), search.tokenOffset);
    m_log += alignedLine(session);
    for (std::size_t more = below(4); more > 0; --more)
      sessionLine(session, event(session));
    if (chance(30)) close(session);
  }

  std::string alignedLine(const Session& session) {
    constexpr std::array kAligned = {"USER alice"sv,
                                     "QUIT"sv,
                                     "Closing connection"sv,
                                     "530 Incorrect password"sv,
                                     "530 Not logged in - password incorrect"sv,
                                     "User alice logged in"sv};
    if (chance(20)) return stamp() + " - Starting FTP Server...\r\n";
    return stamp() + " - " + session.number + " " + std::string(pick<std::string_view>(kAligned)) + "\r\n";
  }

  /// A connect line whose mark starts where the search for the next session changes blocks.
  void alignConnect() {
    constexpr std::string_view kMark = ") Connected to ";
    const std::size_t last = m_log.rfind(kMark);
    fillTo(last == std::string::npos ? 0 : last + 60, kMark.size(), static_cast<int>(below(5)) - 2, 30);
    m_log += stamp() + " - (000042) Connected to 10.0.0.42 (Local address 10.0.0.1)\r\n";
  }

  /// Fills up so that offset bytes further on, some block of a search from begin starts, give or take beside bytes.
  void fillTo(std::size_t begin, std::size_t overlap, int beside, std::size_t offset) {
    std::int64_t target = static_cast<std::int64_t>(begin) + beside - static_cast<std::int64_t>(offset);
    while (target < static_cast<std::int64_t>(m_log.size()) + 2)
      target += kBlock - static_cast<std::int64_t>(overlap);
    fill(static_cast<std::size_t>(target) - m_log.size() - 2);
  }

  void cutEnd() {
    const std::size_t way = below(6);
    if (way < 2) return;
    if (way == 2) return m_log.resize(m_log.size() - below(std::min<std::size_t>(m_log.size(), 200)));
    if (way == 3 && m_log.size() > kBlock) {  // an end that lies exactly at, or next to, the end of a block
      const std::size_t begin = m_open.empty() ? 0 : m_open.back().begin;
      const std::size_t blocks = (m_log.size() - begin) / kBlock;
      if (blocks > 0) m_log.resize(begin + blocks * (kBlock - below(60)) + below(5));
      return;
    }
    const std::string_view token = pick<std::string_view>(kTokens);
    const std::size_t at = m_log.rfind(token);
    if (at != std::string::npos) m_log.resize(at + (chance(50) ? token.size() : 1 + below(token.size())));
  }

  /// Overwrites some bytes with anything at all.
  void scribble() {
    if (m_log.empty() || chance(80)) return;
    for (std::size_t left = 1 + below(1 + m_log.size() / 300); left > 0; --left)
      m_log[below(m_log.size())] = static_cast<char>(chance(30) ? 0 : below(256));
  }

  std::mt19937_64 m_random;
  std::string m_log;
  std::vector<Session> m_open;
  std::size_t m_clock = 0;
  bool m_lineFeedOnly = false;
  bool m_mixedLineEnds = false;
  bool m_longNames = false;
  std::size_t m_bracketPercent = 0;
  std::size_t m_casePercent = 0;
  std::size_t m_oddPercent = 0;
  std::size_t m_noisePercent = 0;
  std::size_t m_alignPercent = 0;
  std::size_t m_closePercent = 0;
  std::size_t m_restartPercent = 0;
  std::size_t m_connectPercent = 0;
  std::size_t m_mostOpen = 1;
};

}  // namespace

std::string makeLog(std::uint64_t seed) {
  return LogMaker(seed).make();
}

}  // namespace quorvel::test
