// What the filters and the counter take from a log for one session, as plain loops over its lines.
#include <algorithm>
#include <initializer_list>
#include <sstream>
#include <utility>

#include "tests/classic/reference/literal_scans.h"

namespace quorvel::test {
namespace {

std::vector<std::string> splitLines(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream stream{std::string(text)};
  for (std::string line; std::getline(stream, line); lines.push_back(line))
    if (line.ends_with('\r')) line.pop_back();
  return lines;
}

bool holds(std::string_view line, std::string_view text) {
  return line.find(text) != std::string_view::npos;
}

/// Questions about one line that ignore letter case; marks are texts behind the session number.
struct FoldedLine {
  FoldedLine(std::string_view text, std::string_view sessionNumber)
      : line(lowerCase(text)), number(lowerCase(sessionNumber)) {}

  [[nodiscard]] bool contains(std::string_view text) const { return holds(line, lowerCase(text)); }
  [[nodiscard]] bool hasMark(std::initializer_list<const char*> texts) const {
    return std::any_of(texts.begin(), texts.end(), [this](const char* text) { return contains(number + text); });
  }
  [[nodiscard]] bool isOfSession() const { return contains(number); }
  [[nodiscard]] bool isClose() const { return contains("- " + number + " Closing connection"); }
  [[nodiscard]] bool isServerStart() const { return contains("- Starting FTP Server..."); }

  std::string line;
  std::string number;
};

/// Lines of the log from 50 bytes before the session's position on; none where that is unknown.
std::vector<std::string> linesFrom(std::string_view log, const UserAct& session) {
  if (session.Position <= 0) return {};
  const auto before = static_cast<std::size_t>(std::max<std::int64_t>(0, session.Position - 51));
  return splitLines(log.substr(std::min(before, log.size())));
}

std::string connectMark(const UserAct& session) {
  return session.ConnectTime + " - " + session.NumberInLog + " Connected to " + session.IP;
}

/// The command filter's flags and output.
struct CommandBlocks {
  CommandFilterOptions switches;
  std::vector<std::string> written;
  bool inTransfer = false;
  bool inDelete = false;
  bool deleteFirstLine = false;
  bool inSite = false;
  bool inMdtm = false;

  void take(const std::string& text, const FoldedLine& line) {
    if (!inTransfer && switches.transfers) inTransfer = line.hasMark({" STOR", " RETR"});
    if (!inDelete && switches.deletes) inDelete = deleteFirstLine = line.hasMark({" DELE"});
    if (!inSite && switches.site) inSite = line.hasMark({" SITE"});
    if (!inMdtm && switches.mdtm) inMdtm = line.hasMark({" MDTM"});
    if (inTransfer) {
      block(text, line.hasMark({" Received file", " Sent file", " Error ", " 550 ", " 501 Syntax error"}), inTransfer);
    } else if (std::exchange(deleteFirstLine, false)) {
      written.push_back(text);
    } else if (inDelete) {
      deleteReply(text, line);
    } else if (inSite) {
      block(text, line.hasMark({" 200 ", " 501"}), inSite);
    } else if (inMdtm) {
      block(text, line.hasMark({" 213", " 253", " 501", " 550", " 553"}), inMdtm);
    }
  }

  void block(const std::string& text, bool isLast, bool& flag) {
    written.push_back(text);
    if (isLast) written.emplace_back();
    flag = !isLast;
  }

  void deleteReply(const std::string& text, const FoldedLine& line) {
    const bool isReply = line.hasMark({" 550 ", " 250 "});
    const bool isNextDelete = line.hasMark({" DELE"}) && !isReply;
    if (isNextDelete) written.emplace_back();
    if (isNextDelete || isReply) written.push_back(text);
    written.emplace_back();
    inDelete = false;
  }
};

void addByteCount(std::string_view line, std::int64_t& total) {
  const std::size_t speed = line.find("Kb/sec - ");
  const std::size_t end = line.find(" bytes)");
  if (speed == std::string_view::npos || end == std::string_view::npos || end < speed + 9) return;
  addBytes(total, parseFixedPoint(line.substr(speed + 9, end - speed - 9)).value_or(0));
}

/// Counts a line by its tokens, each behind prefix; letter case matters.
void countLine(const std::string& line, const std::string& prefix, CountedTransfers& counted) {
  const bool isSendError = holds(line, prefix + " Error sending ");
  const bool isReceiveError = holds(line, prefix + " Error receiving ");
  if (isSendError || isReceiveError) counted.badLines.push_back(line.size() > 27 ? line.substr(27) : "");
  TransferCount& totals = counted.totals;
  if (holds(line, prefix + " Sent file ")) {
    ++totals.SentFiles;
    addByteCount(line, totals.BytesSent);
  } else if (holds(line, prefix + " Received file ")) {
    ++totals.ReceivedFiles;
    addByteCount(line, totals.BytesReceived);
  } else if (isSendError) {
    ++totals.SendErrors;
  } else if (isReceiveError) {
    ++totals.ReceiveErrors;
  }
}

}  // namespace

std::vector<std::string> linesAbout(std::string_view log, const UserAct& session) {
  std::vector<std::string> lines = linesFrom(log, session);
  std::erase_if(lines, [&](const std::string& text) {
    const FoldedLine line(text, session.NumberInLog);
    return !line.isOfSession() && !line.isServerStart();
  });
  return lines;
}

std::vector<std::string> entireSession(std::string_view log, const UserAct& session) {
  std::vector<std::string> written;
  bool isConnected = false;
  for (const std::string& text : linesFrom(log, session)) {
    const FoldedLine line(text, session.NumberInLog);
    isConnected = isConnected || line.contains(connectMark(session));
    if (!isConnected) continue;
    if (line.isOfSession()) written.push_back(text);
    if (line.isClose() || line.isServerStart()) break;
  }
  return written;
}

std::vector<std::string> sessionCommands(std::string_view log, const UserAct& session, CommandFilterOptions switches) {
  CommandBlocks filter{switches, {}};
  for (const std::string& text : linesFrom(log, session)) {
    const FoldedLine line(text, session.NumberInLog);
    if (line.isServerStart() || line.isClose()) break;
    if (line.isOfSession()) filter.take(text, line);
  }
  return filter.written;
}

CountedTransfers sessionTransfers(std::string_view log, const UserAct& session) {
  CountedTransfers counted;
  const std::string prefix = "- " + session.NumberInLog;
  bool isConnected = false;
  for (const std::string& line : linesFrom(log, session)) {
    isConnected = isConnected || holds(line, connectMark(session));
    if (!isConnected) continue;
    countLine(line, prefix, counted);
    if (holds(line, prefix + " Closing connection")) break;
  }
  return counted;
}

CountedTransfers allTransfers(std::string_view log) {
  CountedTransfers counted;
  for (const std::string& line : splitLines(log))
    countLine(line, "", counted);
  return counted;
}

}  // namespace quorvel::test
