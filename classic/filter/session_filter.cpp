#include "classic/filter/session_filter.h"

#include <array>

#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kCloseText = " Closing connection";

bool endsWithFolded(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && equalsFolded(text.substr(text.size() - suffix.size()), suffix);
}

/// Takes suffix off the end of text; false, and text as it was, when it does not end so.
bool takeSuffix(std::string_view& text, std::string_view suffix) {
  if (!endsWithFolded(text, suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!startsWithFolded(text, prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool isClosing(std::string_view before, std::string_view after) {
  return endsWithFolded(before, "- ") && startsWithFolded(after, kCloseText);
}

/// What may stand behind the session number in a line.
enum Mark : std::uint32_t {
  kStor = 1u << 0,
  kRetr = 1u << 1,
  kDele = 1u << 2,
  kSite = 1u << 3,
  kMdtm = 1u << 4,
  kTransferDone = 1u << 5,
  k550 = 1u << 6,
  k250 = 1u << 7,
  kSiteDone = 1u << 8,
  kMdtmDone = 1u << 9,
  kClosing = 1u << 10,
};

struct MarkText {
  std::string_view text;
  std::uint32_t marks;
};

// " 550 Access denied" needs no entry of its own: " 550 " covers it.
constexpr std::array kMarkTexts = {
    MarkText{" STOR", kStor},
    MarkText{" RETR", kRetr},
    MarkText{" DELE", kDele},
    MarkText{" SITE", kSite},
    MarkText{" MDTM", kMdtm},
    MarkText{" Received file", kTransferDone},
    MarkText{" Sent file", kTransferDone},
    MarkText{" Error ", kTransferDone},
    MarkText{" 501 Syntax error", kTransferDone},
    MarkText{" 550 ", kTransferDone | k550},
    MarkText{" 250 ", k250},
    MarkText{" 200 ", kSiteDone},
    MarkText{" 501", kSiteDone | kMdtmDone},
    MarkText{" 213", kMdtmDone},
    MarkText{" 253", kMdtmDone},
    MarkText{" 550", kMdtmDone},
    MarkText{" 553", kMdtmDone},
};

/// All marks that stand behind any occurrence of the session number.
std::uint32_t marksIn(const SessionLine& line) {
  std::uint32_t found = 0;
  line.anyNumber([&found](std::string_view before, std::string_view after) {
    if (isClosing(before, after)) found |= kClosing;
    for (const MarkText& mark : kMarkTexts) {
      if (startsWithFolded(after, mark.text)) found |= mark.marks;
    }
    return false;
  });
  return found;
}

}  // namespace

void EntireSessionFilter::begin(const UserAct& session) {
  m_connectTime = session.ConnectTime;
  m_ip = session.IP;
  m_isConnected = false;
}

bool EntireSessionFilter::line(const SessionLine& line, FilterOutput& output) {
  if (!m_isConnected) m_isConnected = isConnectLine(line);
  if (!m_isConnected) return true;
  if (line.hasSessionNumber()) output.writeLine(line.text);
  return !line.hasServerStart && !line.anyNumber(isClosing);
}

bool EntireSessionFilter::isConnectLine(const SessionLine& line) const {
  return line.anyNumber([this](std::string_view before, std::string_view after) {
    return takeSuffix(before, " - ") && takeSuffix(before, m_connectTime) && takePrefix(after, " Connected to ") &&
           takePrefix(after, m_ip);
  });
}

void CommandFilter::begin(const UserAct&) {
  *this = CommandFilter(m_options);
}

bool CommandFilter::line(const SessionLine& line, FilterOutput& output) {
  if (line.hasServerStart) return false;
  if (!line.hasSessionNumber()) return true;
  const std::uint32_t marks = marksIn(line);
  if ((marks & kClosing) != 0) return false;
  detectCommands(marks);
  writeBlockLine(marks, line.text, output);
  return true;
}

void CommandFilter::detectCommands(std::uint32_t marks) {
  if (m_options.transfers && !m_inTransfer) m_inTransfer = (marks & (kStor | kRetr)) != 0;
  if (m_options.deletes && !m_inDelete) {
    m_inDelete = (marks & kDele) != 0;
    if (m_inDelete) m_deleteFirstLine = true;
  }
  if (m_options.site && !m_inSite) m_inSite = (marks & kSite) != 0;
  if (m_options.mdtm && !m_inMdtm) m_inMdtm = (marks & kMdtm) != 0;
}

void CommandFilter::writeBlockLine(std::uint32_t marks, std::string_view text, FilterOutput& output) {
  const auto writeUntil = [&](std::uint32_t endMark, bool& inBlock) {
    output.writeLine(text);
    if ((marks & endMark) == 0) return;
    output.writeLine({});
    inBlock = false;
  };
  if (m_inTransfer) {
    writeUntil(kTransferDone, m_inTransfer);
  } else if (m_inDelete && m_deleteFirstLine) {
    output.writeLine(text);
    m_deleteFirstLine = false;
  } else if (m_inDelete) {
    writeDeleteReply(marks, text, output);
    m_inDelete = false;
  } else if (m_inSite) {
    writeUntil(kSiteDone, m_inSite);
  } else if (m_inMdtm) {
    writeUntil(kMdtmDone, m_inMdtm);
  }
}

void CommandFilter::writeDeleteReply(std::uint32_t marks, std::string_view text, FilterOutput& output) {
  const bool isReply = (marks & (k550 | k250)) != 0;
  const bool isNextDelete = (marks & kDele) != 0 && !isReply;
  if (isNextDelete) output.writeLine({});
  if (isNextDelete || isReply) output.writeLine(text);
  output.writeLine({});
}

}  // namespace quorvel
