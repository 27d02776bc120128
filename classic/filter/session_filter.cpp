#include "classic/filter/session_filter.h"

#include <array>

#include "log/text.h"

namespace quorvel {
namespace {

/// What may stand after the session number in a line.
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

/// The replies that end a transfer.
constexpr std::array<std::string_view, 8> kTransferReplies = {" 226", " 250", " 425", " 426",
                                                              " 450", " 451", " 552", " 553"};

/// What a command filter is in the middle of.
enum State : std::uint8_t {
  InTransfer = 1u << 0,
  InDelete = 1u << 1,
  DeleteFirstLine = 1u << 2,
  InSite = 1u << 3,
  InMdtm = 1u << 4,
};

bool isClosing(bool hasDash, std::string_view after) {
  return hasDash && startsWithFolded(after, " Closing connection");
}

std::string_view headerOf(const UserAct& session, FilterHeader kind, std::string& header) {
  header.clear();
  if (kind == FilterHeader::Block && session.Position != 0) appendSessionBlockHeader(header, session);
  return header;
}

void addDeleteReply(std::uint32_t marks, const LogLine& line, SessionTexts& texts) {
  const bool isReply = (marks & (k550 | k250)) != 0;
  const bool isNextDelete = (marks & kDele) != 0 && !isReply;
  if (isNextDelete) texts.add(kLineEnd);
  if (isNextDelete || isReply) texts.addLine(line);
  texts.add(kLineEnd);
}

}  // namespace

void appendSessionBlockHeader(std::string& text, const UserAct& session) {
  constexpr std::size_t kRuleLength = 50;
  constexpr std::size_t kValueColumn = 20;
  text.append(kRuleLength, '-').append(kLineEnd);
  const auto add = [&text](std::string_view label, std::string_view value) {
    appendAtColumn(text, label, kValueColumn, value);
    text.append(kLineEnd);
  };
  add("Username:", session.Name);
  add("IP:", session.IP);
  add("Connect time:", session.ConnectTime);
  add("Logon time:", session.LogonTime);
  add("Logoff time:", session.LogoffTime);
  add("Number in log:", session.NumberInLog);
  add("Position:", std::to_string(session.Position));
  text.append(kLineEnd);
}

EntireSessionFilter::EntireSessionFilter(FilterHeader header)
    : LineRule({.foldsCase = true, .waitsForConnect = true, .endsAtServerStart = true, .dashMarks = kClosing}),
      m_kind(header) {}

std::string_view EntireSessionFilter::header(const UserAct& session) {
  return headerOf(session, m_kind, m_header);
}

std::uint32_t EntireSessionFilter::marksOf(bool hasDash, std::string_view after) const {
  return isClosing(hasDash, after) ? kClosing : 0u;
}

bool EntireSessionFilter::take(const LogLine& line, std::uint32_t marks, bool, std::uint8_t&, SessionTexts& texts) {
  texts.addLine(line);
  return (marks & kClosing) == 0;
}

CommandFilter::CommandFilter(const CommandFilterOptions& options, FilterHeader header)
    : LineRule({.foldsCase = true, .waitsForConnect = false, .endsAtServerStart = true, .dashMarks = kClosing}),
      m_options(options),
      m_kind(header) {}

std::string_view CommandFilter::header(const UserAct& session) {
  return headerOf(session, m_kind, m_header);
}

std::uint32_t CommandFilter::marksOf(bool hasDash, std::string_view after) const {
  std::uint32_t found = isClosing(hasDash, after) ? kClosing : 0u;
  for (const MarkText& mark : kMarkTexts) {
    if (startsWithFolded(after, mark.text)) found |= mark.marks;
  }
  if (m_options.repliesEndTransfers) {
    for (const std::string_view reply : kTransferReplies)
      if (after.starts_with(reply)) found |= kTransferDone;
  }
  return found;
}

bool CommandFilter::take(const LogLine& line, std::uint32_t marks, bool hasServerStart, std::uint8_t& state,
                         SessionTexts& texts) {
  if (hasServerStart || (marks & kClosing) != 0) return false;
  state = withCommands(state, marks);
  const auto addUntil = [&](std::uint32_t endMark, State block) {
    texts.addLine(line);
    if ((marks & endMark) == 0) return;
    texts.add(kLineEnd);
    state = static_cast<std::uint8_t>(state & ~block);
  };
  if ((state & InTransfer) != 0) {
    addUntil(kTransferDone, InTransfer);
  } else if ((state & InDelete) != 0 && (state & DeleteFirstLine) != 0) {
    texts.addLine(line);
    state = static_cast<std::uint8_t>(state & ~DeleteFirstLine);
  } else if ((state & InDelete) != 0) {
    addDeleteReply(marks, line, texts);
    state = static_cast<std::uint8_t>(state & ~InDelete);
  } else if ((state & InSite) != 0) {
    addUntil(kSiteDone, InSite);
  } else if ((state & InMdtm) != 0) {
    addUntil(kMdtmDone, InMdtm);
  }
  return true;
}

/// The state with the commands that begin in a line.
std::uint8_t CommandFilter::withCommands(std::uint8_t state, std::uint32_t marks) const {
  unsigned all = state;
  if (m_options.transfers && (marks & (kStor | kRetr)) != 0) all |= InTransfer;
  if (m_options.deletes && (all & InDelete) == 0 && (marks & kDele) != 0) all |= InDelete | DeleteFirstLine;
  if (m_options.site && (marks & kSite) != 0) all |= InSite;
  if (m_options.mdtm && (marks & kMdtm) != 0) all |= InMdtm;
  return static_cast<std::uint8_t>(all);
}

}  // namespace quorvel
