// Makes a server's log of any size to measure the program with.
//
//   make_log SIZE SEED > FILE
//   make_log --size SIZE [--seed SEED] [--shape SHAPE] [FILE]
#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kUsage =
    "Usage: make_log SIZE SEED > FILE\n"
    "       make_log --size SIZE [--seed SEED] [--shape SHAPE] [FILE]\n"
    "\n"
    "Writes a log of SIZE bytes (K, M and G stand for powers of 1024), the last line left whole.\n"
    "The same size, seed (0) and shape make the same log. Shapes:\n"
    "  usual            overlapping sessions of 13 users, 14 lines each, numbers counting up\n"
    "  never-close      the same, but no session ever ends\n"
    "  long-lived       a thousand sessions at any time, most of which last for half the log\n"
    "  one-number       the same as usual, but all sessions have the same number\n"
    "  one-number-open  the same, and no session ever ends\n"
    "  connect-only     connect lines and nothing else\n"
    "  one-line         the same as usual without any line end\n"
    "  cr-only          the same as usual with line ends of CR only\n"
    "  current          the same as usual in the shape of the server's current versions\n"
    "  daily-restarts   the same as usual, the server starting anew with number 1 every 500 lines\n"
    "  open-restarts    the same as never-close, every tenth line a server start\n"
    "  wide-connects    the same as usual, connect lines with one blank too many, so that no stamp stands where it "
    "should\n"
    "  long-names       the same as usual, every user with a name of his own of 300 bytes\n"
    "  own-names        short sessions of one number that never end, each of which logs a name of its own on\n"
    "  forged-connects  what one client writes by USER x- (000007) Connected to 6.6.6.6\n"
    "  forged-logons    the same without log-on lines, each name holding \" logged in\" 20 times\n"
    "  forged-nests     the same, each line many log-on lines in one\n"
    "  logons           one session, and log-on lines of its number to the log's end\n"
    "  sent-tokens      \" Sent file\" over and over in one line\n";

enum class Shape {
  Usual,
  NeverClose,
  LongLived,
  OneNumber,
  OneNumberOpen,
  ConnectOnly,
  OneLine,
  CrOnly,
  Current,
  DailyRestarts,
  OpenRestarts,
  WideConnects,
  LongNames,
  OwnNames,
  ForgedConnects,
  ForgedLogons,
  ForgedNests,
  Logons,
  SentTokens
};

/// In the order of Shape.
constexpr std::array kShapeNames = {"usual"sv,           "never-close"sv,    "long-lived"sv,      "one-number"sv,
                                    "one-number-open"sv, "connect-only"sv,   "one-line"sv,        "cr-only"sv,
                                    "current"sv,         "daily-restarts"sv, "open-restarts"sv,   "wide-connects"sv,
                                    "long-names"sv,      "own-names"sv,      "forged-connects"sv, "forged-logons"sv,
                                    "forged-nests"sv,    "logons"sv,         "sent-tokens"sv};

struct Options {
  std::uint64_t size = 0;
  std::uint64_t seed = 0;
  Shape shape = Shape::Usual;
  std::string file;  ///< empty: standard output
};

constexpr std::array kUsers = {"alice"sv, "bob"sv,    "carol"sv, "dave"sv,    "erik"sv,  "frank"sv,    "grace"sv,
                               "heidi"sv, "ingrid"sv, "judy"sv,  "mallory"sv, "oscar"sv, "anonymous"sv};
constexpr std::array kFolders = {"pub/manuals/english/2005/january/for-the-workshop/second-edition"sv,
                                 "incoming/scans/department-of-archives/not-yet-sorted/shelf-117"sv,
                                 "projects/harbour/drawings/version-12/approved-by-the-council/plans"sv,
                                 "home/shared/photographs/summer/opening-of-the-new-bridge/originals"sv};
constexpr std::array kSuffixes = {".zip"sv, ".tif"sv, ".doc"sv, ".tar.gz"sv};

/// One session in the middle of its fourteen lines.
struct Session {
  std::array<char, 8> number{};
  std::string user;
  std::string address;
  std::string path;
  std::uint32_t bytes = 0;
  int step = 0;
  bool isUpload = false;
  bool isFailing = false;
  bool isRefused = false;
};

class LogMaker {
 public:
  explicit LogMaker(const Options& options)
      : m_options(options), m_random(options.seed), m_sessions(options.shape == Shape::LongLived ? 1000 : 22) {
    m_stamp = "Sat 01Jan05 00:00:00";
  }

  /// Appends one line to text, or a few that belong together.
  void addLine(std::string& text) {
    passTime();
    ++m_lines;
    if (m_options.shape >= Shape::OwnNames) return addOddLines(text);
    if (isServerStart()) return addServerStart(text);
    Session& session = m_sessions[below(m_sessions.size())];
    if (session.step == 0) begin(session);
    head(text, session);
    if (!isCurrent() || !currentEvent(text, session)) event(text, session);
    text += m_options.shape == Shape::OneLine ? "  "sv : m_options.shape == Shape::CrOnly ? "\r"sv : "\r\n"sv;
    advance(session);
  }

 private:
  static constexpr int kLinesPerSession = 14;

  std::uint64_t random() {  // splitmix64
    std::uint64_t value = m_random += 0x9E3779B97F4A7C15u;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
    return value ^ (value >> 31);
  }
  std::size_t below(std::size_t count) { return ((random() >> 32) * count) >> 32; }

  [[nodiscard]] bool isServerStart() const {
    return (m_options.shape == Shape::DailyRestarts && m_lines % 500 == 0) ||
           (m_options.shape == Shape::OpenRestarts && m_lines % 10 == 0);
  }

  void addServerStart(std::string& text) {
    text.append("[6] ").append(m_stamp).append(" - Starting FTP Server...\r\n");
    if (m_options.shape == Shape::OpenRestarts) return;
    m_lastNumber = 0;
    for (Session& session : m_sessions)
      session.step = 0;
  }

  /// Lines of the number 000007, as far as they have any.
  void addOddLines(std::string& text) {
    const std::string name = "n" + std::to_string(m_lines);
    switch (m_options.shape) {
      case Shape::OwnNames:
        return addOwnLogon(text, name);
      case Shape::ForgedConnects:
        if (m_lines == 1) oddLine(text, "Connected to 198.51.100.9 (Local address 192.0.2.1)");
        return oddLine(text, "USER x- (000007) Connected to 6.6.6.6");
      case Shape::ForgedLogons:
        oddLine(text, "Connected to 198.51.100.9 (Local address 192.0.2.1)");
        return oddLine(text, "USER " + name + repeated(" logged in", 20));
      case Shape::ForgedNests:
        oddLine(text, "Connected to 198.51.100.9 (Local address 192.0.2.1)");
        return oddLine(text, "USER " + repeated("- (000007) User ", 100) + name + repeated(" logged in", 200));
      case Shape::Logons:
        return m_lines == 1 ? addOwnLogon(text, "alice") : oddLine(text, "User alice logged in");
      default:
        text.append(" Sent file");
    }
  }

  void addOwnLogon(std::string& text, const std::string& name) const {
    oddLine(text, "Connected to 198.51.100.9 (Local address 192.0.2.1)");
    oddLine(text, "USER " + name);
    oddLine(text, "User " + name + " logged in");
  }

  void oddLine(std::string& text, std::string_view event) const {
    text.append("[6] ").append(m_stamp).append(" - (000007) ").append(event).append("\r\n");
  }

  static std::string repeated(std::string_view part, int count) {
    std::string text;
    for (; count > 0; --count)
      text.append(part);
    return text;
  }

  [[nodiscard]] bool hasOneNumber() const {
    return m_options.shape == Shape::OneNumber || m_options.shape == Shape::OneNumberOpen;
  }
  [[nodiscard]] bool neverCloses() const {
    return m_options.shape == Shape::NeverClose || m_options.shape == Shape::OneNumberOpen ||
           m_options.shape == Shape::OpenRestarts;
  }

  void begin(Session& session) {
    if (!hasOneNumber() || m_lastNumber == 0) m_lastNumber = m_lastNumber % 999999 + 1;
    session.number = {'(', '0', '0', '0', '0', '0', '0', ')'};
    std::uint32_t rest = m_lastNumber;
    for (std::size_t at = 6; rest > 0; --at, rest /= 10)
      session.number[at] = static_cast<char>('0' + rest % 10);
    session.user = kUsers[below(kUsers.size())];
    if (m_options.shape == Shape::LongNames) session.user = std::to_string(m_lines).append(300, 'n');
    session.address.assign("198.51.100.").append(std::to_string(1 + below(254)));
    session.path.assign(kFolders[below(kFolders.size())]).append("/file-").append(std::to_string(below(1000000)));
    session.path.append(kSuffixes[below(kSuffixes.size())]);
    session.bytes = 1024 + static_cast<std::uint32_t>(below(1 << 22));
    session.isUpload = below(4) == 0;
    session.isFailing = below(25) == 0;
    session.isRefused = below(25) == 0;
  }

  void advance(Session& session) {
    const int last = m_options.shape == Shape::ConnectOnly ? 1 : kLinesPerSession - (neverCloses() ? 2 : 0);
    ++session.step;
    if (session.isRefused && session.step == 6) session.step = neverCloses() ? last : 12;
    if (session.step >= last) session.step = 0;
    if (m_options.shape == Shape::LongLived && session.step == 12 && below(1000) != 0) session.step = 7;
  }

  [[nodiscard]] bool isCurrent() const { return m_options.shape == Shape::Current; }

  [[nodiscard]] std::string_view levelOf(int step) const {
    constexpr std::string_view kLevels = "26262562266625";
    constexpr std::string_view kCurrentLevels = "0221202120022120202102212002";
    const auto at = static_cast<std::size_t>(step);
    return isCurrent() ? kCurrentLevels.substr(2 * at, 2) : kLevels.substr(at, 1);
  }

  void head(std::string& text, const Session& session) const {
    text.append("[").append(levelOf(session.step)).append("] ").append(m_stamp).append(" - ");
    if (m_options.shape == Shape::WideConnects && session.step == 0) text.append(" ");
    text.append(session.number.data(), session.number.size()).append(" ");
  }

  /// What the current versions say in other words; false where they use the same.
  static bool currentEvent(std::string& text, const Session& session) {
    if (session.step == 0) {
      text.append("Connected to ").append(session.address).append(" (local address 192.0.2.1, port 21)");
    } else if (session.step == 4) {
      text.append("PASS **********");
    } else if (session.step == 5 && !session.isRefused) {
      text.append("User \"").append(session.user).append("\" logged in");
    } else if (session.step == 10) {
      file(text, session, session.isUpload ? "Received file \"/" : "Sent file \"/",
           session.isUpload ? "Error receiving file \"/" : "Error sending file \"/", "\"", "KB/sec");
    } else if (session.step == 13) {
      text.append("Closed session");
    } else {
      return false;
    }
    return true;
  }

  void event(std::string& text, const Session& session) const {
    switch (session.step) {
      case 0:
        text.append("Connected to ").append(session.address).append(" (Local address 192.0.2.1)");
        break;
      case 1:
        text.append(
            "220 File server of the harbour office. Please log in with the name you were given; "
            "guests use the name anonymous and their mail address.");
        break;
      case 2:
        text.append("USER ").append(session.user);
        break;
      case 3:
        text.append("331 User name okay, need password.");
        break;
      case 4:
        text.append("PASS xxxxx");
        break;
      case 5:
        logon(text, session);
        break;
      case 6:
        text.append(
            "230 User logged in, proceed. Files are kept for thirty days and then removed without "
            "further notice.");
        break;
      case 7:
        text.append("PORT 198,51,100,7,").append(std::to_string(4 + session.bytes % 16)).append(",31");
        break;
      case 13:
        text.append("Closing connection for user ").append(session.user).append(" (00:01:08 connected)");
        break;
      default:
        transfer(text, session);
        break;
    }
  }

  static void logon(std::string& text, const Session& session) {
    if (session.isRefused) {
      text.append("530 Not logged in - password incorrect.");
    } else {
      text.append(session.user == "anonymous" ? "" : "User ").append(session.user).append(" logged in");
    }
  }

  static void transfer(std::string& text, const Session& session) {
    const std::string bytes = std::to_string(session.bytes);
    switch (session.step) {
      case 8:
        text.append(session.isUpload ? "STOR /" : "RETR /").append(session.path);
        break;
      case 9:
        text.append("150 Opening BINARY mode data connection for /").append(session.path);
        text.append(" (").append(bytes).append(" bytes).");
        break;
      case 10:
        result(text, session);
        break;
      case 11:
        text.append(session.isFailing ? "426 Data connection closed, transfer aborted." : "226 Transfer complete.");
        break;
      default:
        text.append("QUIT");
        break;
    }
  }

  static void result(std::string& text, const Session& session) {
    file(text, session, session.isUpload ? "Received file D:\\ftp\\" : "Sent file D:\\ftp\\",
         session.isUpload ? "Error receiving file D:\\ftp\\" : "Error sending file D:\\ftp\\", "", "Kb/sec");
  }

  static void file(std::string& text, const Session& session, std::string_view good, std::string_view bad,
                   std::string_view end, std::string_view unit) {
    text.append(session.isFailing ? bad : good).append(session.path).append(end);
    text.append(session.isFailing ? ", aborted (" : " successfully (");
    text.append(std::to_string(session.bytes % 97)).append(".5 ").append(unit).append(" - ");
    text.append(std::to_string(session.bytes)).append(" bytes)");
  }

  /// A second passes every three lines or so.
  void passTime() {
    if (below(3) != 0) return;
    ++m_second;
    number(12, m_second / 3600 % 24);
    number(15, m_second / 60 % 60);
    number(18, m_second % 60);
    if (m_second % 86400 == 0) nextDay();
  }

  void number(std::size_t at, std::uint64_t value) {
    m_stamp[at] = static_cast<char>('0' + value / 10);
    m_stamp[at + 1] = static_cast<char>('0' + value % 10);
  }

  void nextDay() {
    constexpr std::string_view kDays = "SatSunMonTueWedThuFri";
    constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
    constexpr std::array kLengths = {31u, 28u, 31u, 30u, 31u, 30u, 31u, 31u, 30u, 31u, 30u, 31u};
    const bool isLeapFebruary = m_month == 1 && m_year % 4 == 0;
    if (++m_day > kLengths[m_month] + (isLeapFebruary ? 1 : 0)) {
      m_day = 1;
      m_month = (m_month + 1) % kLengths.size();
      if (m_month == 0) m_year = (m_year + 1) % 100;
    }
    m_stamp.replace(0, 3, kDays.substr(m_second / 86400 % 7 * 3, 3));
    number(4, m_day);
    m_stamp.replace(6, 3, kMonths.substr(m_month * 3, 3));
    number(9, m_year);
  }

  const Options m_options;
  std::uint64_t m_random;
  std::vector<Session> m_sessions;
  std::uint64_t m_lines = 0;
  std::uint32_t m_lastNumber = 0;
  std::uint64_t m_second = 0;
  std::uint32_t m_day = 1;
  std::size_t m_month = 0;
  std::uint32_t m_year = 5;
  std::string m_stamp;
};

std::optional<std::uint64_t> parseNumber(std::string_view text) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<std::uint64_t> parseSize(std::string_view text) {
  constexpr std::string_view kUnits = "KMG";
  std::uint64_t unit = 1;
  if (!text.empty()) {
    const auto power = kUnits.find(static_cast<char>(std::toupper(static_cast<unsigned char>(text.back()))));
    if (power != std::string_view::npos) {
      unit = std::uint64_t{1} << (10 * (power + 1));
      text.remove_suffix(1);
    }
  }
  const auto value = parseNumber(text);
  if (!value || *value > (std::uint64_t{1} << 50) / unit) return std::nullopt;
  return *value * unit;
}

std::optional<Shape> parseShape(std::string_view text) {
  for (std::size_t i = 0; i < kShapeNames.size(); ++i)
    if (kShapeNames[i] == text) return static_cast<Shape>(i);
  return std::nullopt;
}

/// Takes one option's value; false, with a line on standard error, when it makes no sense.
bool takeOption(std::string_view name, std::string_view value, Options& options) {
  const auto number = name == "--size" ? parseSize(value) : parseNumber(value);
  const auto shape = parseShape(value);
  if (name == "--size" && number) {
    options.size = *number;
  } else if (name == "--seed" && number) {
    options.seed = *number;
  } else if (name == "--shape" && shape) {
    options.shape = *shape;
  } else {
    std::fprintf(stderr, "make_log: \"%.*s\" is no value for %.*s.\n", static_cast<int>(value.size()), value.data(),
                 static_cast<int>(name.size()), name.data());
    return false;
  }
  return true;
}

bool isOption(std::string_view text) {
  return text == "--size" || text == "--seed" || text == "--shape";
}

std::optional<Options> parseArguments(const std::vector<std::string_view>& arguments) {
  Options options;
  bool hasSize = false;
  std::vector<std::string_view> plain;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (!isOption(arguments[i])) {
      plain.push_back(arguments[i]);
      continue;
    }
    hasSize = hasSize || arguments[i] == "--size";
    const std::string_view value = i + 1 < arguments.size() ? arguments[i + 1] : std::string_view();
    if (!takeOption(arguments[i++], value, options)) return std::nullopt;
  }
  if (hasSize && plain.size() <= 1) {
    if (!plain.empty()) options.file = plain[0];
    return options;
  }
  if (!hasSize && plain.size() == 2) {
    if (takeOption("--size", plain[0], options) && takeOption("--seed", plain[1], options)) return options;
    return std::nullopt;
  }
  std::fputs(kUsage.data(), stderr);
  return std::nullopt;
}

bool writeLog(const Options& options, std::FILE* file) {
  constexpr std::size_t kPiece = 1 << 20;
  LogMaker maker(options);
  std::string text;
  text.reserve(kPiece + 1024);
  for (std::uint64_t written = 0; written < options.size; written += text.size()) {
    text.clear();
    while (text.size() < kPiece && written + text.size() < options.size)
      maker.addLine(text);
    if (std::fwrite(text.data(), 1, text.size(), file) != text.size()) return false;
  }
  return std::fflush(file) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  if (arguments.size() == 1 && arguments[0] == "--help") {
    std::fputs(kUsage.data(), stdout);
    return 0;
  }
  const auto options = parseArguments(arguments);
  if (!options) return 1;
  std::FILE* const file = options->file.empty() ? stdout : std::fopen(options->file.c_str(), "wb");
  if (file == nullptr) {
    std::fprintf(stderr, "make_log: %s cannot be written.\n", options->file.c_str());
    return 1;
  }
  const bool isWritten = writeLog(*options, file);
  const bool isClosed = file == stdout || std::fclose(file) == 0;
  if (isWritten && isClosed) return 0;
  std::fputs("make_log: the log could not be written completely.\n", stderr);
  return 1;
}
