#include "classic/counter/counted_line.h"

#include <algorithm>

namespace quorvel {
namespace {

// The byte count stands between the first of each in the line.
constexpr std::string_view kBeforeByteCount = "Kb/sec - ";
constexpr std::string_view kAfterByteCount = " bytes)";
/// Of a long line, what is read at once, and what is shown of both ends.
constexpr LogPosition kPiece = 64 * 1024;

std::string readPart(const LogFile& log, LogPosition begin, LogPosition end, Status& status) {
  std::string part(static_cast<std::size_t>(std::max<LogPosition>(0, end - begin)), '\0');
  const auto count = log.readAt(begin, part);
  if (!count.isOk()) status = count.error();
  part.resize(count.isOk() ? count.value() : 0);
  return part;
}

std::string_view byteCountIn(std::string_view line) {
  const auto before = line.find(kBeforeByteCount);
  const auto end = line.find(kAfterByteCount);
  if (before == std::string_view::npos || end == std::string_view::npos) return {};
  const auto begin = before + kBeforeByteCount.size();
  return end < begin ? std::string_view() : line.substr(begin, end - begin);
}

}  // namespace

LogPosition TextInLongLine::find(const LogFile& log, LogPosition begin, LogPosition end, Status& status) {
  if (m_end == end && m_from <= begin && begin <= m_found) return m_found;
  m_from = begin;
  m_end = m_found = end;
  for (LogPosition at = begin; at < end; at += kPiece) {
    const auto overlap = static_cast<LogPosition>(m_text.size()) - 1;
    const std::string piece = readPart(log, at, std::min(end, at + kPiece + overlap), status);
    const std::size_t hit = piece.find(m_text);
    if (hit == std::string::npos && !piece.empty()) continue;
    if (!piece.empty()) m_found = at + static_cast<LogPosition>(hit);
    break;
  }
  return m_found;
}

void LineCounter::count(const TransferTokens& tokens, const LogLine& line, std::uint32_t times) {
  if (tokens.sent) {
    countGood(m_totals.SentFiles, m_totals.BytesSent, line, times);
  } else if (tokens.received) {
    countGood(m_totals.ReceivedFiles, m_totals.BytesReceived, line, times);
  } else if (tokens.sendError) {
    countMore(m_totals.SendErrors, times);
  } else if (tokens.receiveError) {
    countMore(m_totals.ReceiveErrors, times);
  }
}

void LineCounter::countGood(std::int32_t& files, std::int64_t& sum, const LogLine& line, std::uint32_t times) {
  countMore(files, times);
  if (!m_options.countBytes) return;
  if (const auto bytes = parseFixedPoint(line.isLong() ? byteCount(line) : byteCountIn(line.text)))
    addBytes(sum, *bytes, times);
}

std::string LineCounter::byteCount(const LogLine& line) {
  const LogPosition before = m_beforeByteCount.find(m_log, line.begin, line.end, m_status);
  const LogPosition end = m_afterByteCount.find(m_log, line.begin, line.end, m_status);
  const LogPosition begin = before + static_cast<LogPosition>(kBeforeByteCount.size());
  if (end == line.end || end - begin > kPiece) return {};
  return read(begin, end);
}

std::string LineCounter::shown(const LogLine& line) {
  if (!line.isLong()) return std::string(line.text);
  return read(line.begin, line.begin + kPiece) + read(line.end - kPiece, line.end);
}

std::string LineCounter::read(LogPosition begin, LogPosition end) {
  return readPart(m_log, begin, end, m_status);
}

}  // namespace quorvel
