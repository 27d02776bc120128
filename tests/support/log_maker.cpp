#include "tests/support/log_maker.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <initializer_list>
#include <random>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "tests/reference/block_search.h"

namespace quorvel::test {
namespace {

using namespace std::string_view_literals;

constexpr std::int64_t kBlock = 4000;

/// The texts of a table between its bars.
std::vector<std::string_view> split(std::string_view table) {
  std::vector<std::string_view> texts;
  for (std::size_t bar = table.find('|'); bar != std::string_view::npos; bar = table.find('|')) {
    texts.push_back(table.substr(0, bar));
    table.remove_prefix(bar + 1);
  }
  texts.push_back(table);
  return texts;
}

const auto kUsualNumbers = split("(000001)|(000007)|(000012)|(000013)|(000123)|(999999)|(100000)|(000012)"sv);
const auto kOddNumbers = split(
    "(1)|(12)|(00012)|(0000012)|(ABCdef)|(abcDEF)|(------)|(0 0 0 )|()|(((((((|(\xC9\xE8\xDC\x8A\xD7\xDF)|"
    "(\xE9\xC8\xFC\x9A\xD7\xDF)|(\xC9\xE8\xDC\x8A\xF7\xDF)|(a\0b\0c\0)|- (12)|(000001|(      )|(000012) (000013)"sv);

const auto kNames = split(
    "alice|bob|anonymous|anonymous|Anonymous|QUIT|quit|NO_USER_FOUND|twelve_chars|thirteen_char|thirteen_chaR|| |"
    "two words |x logged in|bob logged in - User alice|a.*[b](c)+\\d|<b>bold</b>&amp;|J\xD6RG|j\xF6rg|"
    "\x8A\x8C\x8E\x9F|x) Connected to 10.9.8.7 y|(000012) QUIT|- (000007) Closing connection|nul\0nul|"
    "tab\tquote\"%s\x1b[31m"sv);

/// What a session's line may say; an asterisk stands for its user's name.
const auto kEvents = split(
    "USER *|USER *|USER *|USER|User * logged in|User * logged in|User * logged in|anonymous logged in|PASS xxxxx|"
    "331 User name okay, need password.|530 Not logged in - password incorrect|530 Incorrect password.|"
    "530 Not logged in - unauthorized IP address.|530 Not logged in - cannot find home directory.|"
    "530 Not logged in.|530|QUIT|QUIT|221 Goodbye!|RETR a.zip|STOR b.txt|"
    "150 Opening BINARY mode data connection for a.zip (40960 bytes).|"
    "Sent file C:\\ftp\\a.zip successfully (12.5 Kb/sec - 40960 bytes)|"
    "Received file C:\\ftp\\b.txt successfully (3.1 Kb/sec - 1024 bytes)|"
    "Received file C:\\ftp\\Sent file x successfully (3.1 Kb/sec - many bytes)|Sent file without a count|"
    "Error sending file C:\\ftp\\c.zip, aborted|Error receiving file C:\\ftp\\d.zip, aborted|"
    "550 /test.txt: No such file or directory.|550 Access denied|501 Syntax error|DELE old.txt|DELE old.txt|"
    "250 File deleted.|SITE HELP|200 Command okay.|MDTM a.zip|213 20050119132808|253 Date/time changed okay.|"
    "553 Not allowed.|Connected to 10.0.0.5 (Local address 10.0.0.1)|Connected to 10.0.0.77|Closing connection"sv);

/// Texts the searches look for; logs like to end inside or directly behind one.
const auto kTokens = split(") Connected to| USER| QUIT| logged in| Closing connection| 530|FTP Server...|\r|("sv);

class LogMaker {
 public:
  explicit LogMaker(std::uint64_t seed) : m_random(seed) {}

  std::string make() {
    while (m_log.size() < m_size)
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
  std::string pick(const std::vector<std::string_view>& texts) { return std::string(texts[below(texts.size())]); }
  template <typename T>
  T pick(std::initializer_list<T> values) {
    return values.begin()[below(values.size())];
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
    std::string text = pick(kEvents);
    if (const auto star = text.find('*'); star != std::string::npos)
      text.replace(star, 1, chance(85) ? session.name : makeName());
    return text;
  }

  std::string makeName() {
    if (!m_longNames || !chance(15)) return pick(kNames);
    return std::string(pick({30u, 300u, 3950u, 3973u, 3974u, 3980u, 9000u, 40000u}), 'n');
  }

  void connect() {
    Session session{pick(chance(m_oddPercent) ? kOddNumbers : kUsualNumbers), makeName(), 0};
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
    line(stamp() + (chance(10) ? " ! " : " - ") + session.number +
         " Closing connection for user TEST (00:01:08 connected)");
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
    const std::string lower = lowerCase(text);
    const std::string upper = upperCase(text);
    const std::size_t upperPercent = pick({0u, 50u, 100u});
    for (std::size_t i = 0; i < text.size(); ++i)
      text[i] = chance(upperPercent) ? upper[i] : lower[i];
  }

  void noise() {
    static const auto kNoise = split(
        "| |(000012)|) Connected to|- (000012) |) Connected to  x|- Starting FTP|\0\0\0|- Starting FTP Server..|"
        "(((((((((((((((((((((((((((((((((((("sv);
    if (chance(70)) return line(pick(kNoise));
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
    static const auto kAligned = split(
        "USER alice|QUIT|Closing connection|530 Incorrect password|530 Not logged in - password incorrect|"
        "User alice logged in"sv);
    if (m_open.empty()) return;
    const Session session = m_open[below(m_open.size())];
    // The length of the text searched for, and where it begins in a line without a bracket: at the dash or the number.
    const auto [overlap, begin] =
        pick({std::pair{13, 23}, {14, 23}, {27, 23}, {53, 21}, {53, 21}, {31, 21}, {14, 21}, {49, 21}});
    fillTo(session.begin, overlap, pick({-2, -1, 0, 0, 1, 2, -92, -97, -98, -99, -100, -101}) - begin);
    m_log +=
        stamp() + (chance(20) ? " - Starting FTP Server..." : " - " + session.number + " " + pick(kAligned)) + "\r\n";
    for (std::size_t more = below(4); more > 0; --more)
      sessionLine(session, event(session));
    if (chance(30)) close(session);
  }

  /// A connect line whose mark starts where the search for the next session changes blocks.
  void alignConnect() {
    const std::size_t last = m_log.rfind(") Connected to ");
    fillTo(last == std::string::npos ? 0 : last + 60, 15, static_cast<int>(below(5)) - 32);
    m_log += stamp() + " - (000042) Connected to 10.0.0.42 (Local address 10.0.0.1)\r\n";
  }

  /// Fills up to so many bytes beside the start of some block of a search from begin.
  void fillTo(std::size_t begin, int overlap, int beside) {
    std::int64_t target = static_cast<std::int64_t>(begin) + beside;
    while (target < static_cast<std::int64_t>(m_log.size()) + 2)
      target += kBlock - overlap;
    fill(static_cast<std::size_t>(target) - m_log.size() - 2);
  }

  void cutEnd() {
    const std::size_t way = below(6);
    if (way == 2) m_log.resize(m_log.size() - below(std::min<std::size_t>(m_log.size(), 200)));
    if (way == 3) {  // exactly at, or next to, the end of a block
      const std::size_t begin = m_open.empty() ? 0 : m_open.back().begin;
      const std::size_t blocks = (m_log.size() - begin) / kBlock;
      if (blocks > 0) m_log.resize(begin + blocks * (kBlock - below(60)) + below(5));
    }
    if (way < 4) return;
    const std::string token = pick(kTokens);
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

  // The habits of this log, drawn in this order.
  const std::size_t m_size =
      10 + below(chance(1) ? 400'000 : pick({300u, 6000u, 6000u, 6000u, 6000u, 24'000u, 24'000u, 70'000u}));
  const bool m_lineFeedOnly = chance(15);
  const bool m_mixedLineEnds = chance(5);
  const std::size_t m_bracketPercent = pick({0u, 100u, 100u, 50u});
  const std::size_t m_casePercent = chance(50) ? 0 : 20;
  const std::size_t m_oddPercent = chance(60) ? 0 : 40;
  const std::size_t m_noisePercent = chance(50) ? 5 : 20;
  const std::size_t m_alignPercent = pick({0u, 0u, 8u, 25u});
  const std::size_t m_closePercent = pick({0u, 10u, 10u, 25u});
  const std::size_t m_restartPercent = chance(60) ? 0 : 3;
  const bool m_longNames = chance(3);
  // Long logs get few sessions: each that never ends is searched for up to the end of the log.
  const std::size_t m_connectPercent = m_size > 80000 ? 2 : 5 + below(30);
  const std::size_t m_mostOpen = 1 + below(12);
};

}  // namespace

std::string makeLog(std::uint64_t seed) {
  return LogMaker(seed).make();
}

}  // namespace quorvel::test
