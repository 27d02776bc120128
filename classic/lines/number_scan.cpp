#include "classic/lines/number_scan.h"

#include <algorithm>
#include <string_view>

#include "log/byte_scan.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kConnected = " Connected to ";
constexpr std::size_t kLookedAt = 64;  ///< bytes after a number
constexpr int kKindBits = 2;
constexpr int kMarkBits = 30;
constexpr LogPosition kBackToNumber = kSessionNumberLength - 1;
static_assert(kBlockHead >= kSessionNumberLength + 3 && kBlockTail >= kLookedAt + kScanSlack);

std::uint64_t packed(LineEvent::Kind kind, std::size_t offset, std::uint32_t marks = 0) {
  return (static_cast<std::uint64_t>(offset) << 32) | (marks << kKindBits) | kind;
}

}  // namespace

void NumberScan::search(LogBlock& block) {
  scanBytes(ScanFor::SessionLines, block.data(), block.count, block.offsets);
  for (const std::uint32_t offset : block.offsets) {
    switch (block.data()[offset]) {
      case '\n':
        endLine(block, offset);
        break;
      case '-':
        if (!startsWithFolded({block.data() + offset, kServerStartMark.size()}, kServerStartMark)) break;
        block.findings.push_back(packed(LineEvent::ServerStart, offset));
        m_hasEvents = true;
        break;
      default:
        examineNumber(block, offset);
    }
  }
  if (block.end() > m_logLength) endLine(block, block.count);
}

void NumberScan::examineNumber(LogBlock& block, std::uint32_t offset) {
  const char* const number = block.data() + offset - kBackToNumber;
  const bool folds = m_rule.kind().foldsCase;
  const auto left = static_cast<std::size_t>(m_logLength - block.first) - offset;
  const std::string_view after(block.data() + offset + 1, std::min(left, kLookedAt));
  const bool hasDash = number[-2] == '-' && number[-1] == ' ';
  std::uint32_t marks = kNumberMark | m_rule.marksOf(hasDash, after);
  if (hasDash && number[-3] == ' ' && (folds ? startsWithFolded(after, kConnected) : after.starts_with(kConnected))) {
    marks |= kConnectMark;
  }
  block.findings.push_back(packed(LineEvent::Number, offset, marks));
  block.findings.push_back(sessionIdAt(block.data() + offset, folds));
  m_hasEvents = true;
}

void NumberScan::endLine(LogBlock& block, std::size_t offset) {
  if (m_hasEvents) {
    block.findings.push_back(packed(LineEvent::LineEnd, offset));
    block.findings.push_back(static_cast<std::uint64_t>(m_lineBegin));
  }
  m_hasEvents = false;
  m_lineBegin = block.first + static_cast<LogPosition>(offset) + 1;
}

LineEvent takeEvent(const LogBlock& block, std::size_t& index) {
  LineEvent event;
  const std::uint64_t word = block.findings[index++];
  event.kind = static_cast<LineEvent::Kind>(word & ((1u << kKindBits) - 1));
  event.position = block.first + static_cast<LogPosition>(word >> 32);
  if (event.kind == LineEvent::Number) {
    event.position -= kBackToNumber;
    event.marks = static_cast<std::uint32_t>(word >> kKindBits) & ((1u << kMarkBits) - 1);
    event.id = block.findings[index++];
  } else if (event.kind == LineEvent::LineEnd) {
    event.lineBegin = static_cast<LogPosition>(block.findings[index++]);
  }
  return event;
}

}  // namespace quorvel
