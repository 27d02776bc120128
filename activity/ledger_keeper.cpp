#include "activity/ledger_keeper.h"

#include <algorithm>

#include "activity/text_hash.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kLongestShape = 256;
constexpr std::size_t kLongestExample = 512;
constexpr std::string_view kPass = "PASS ";
constexpr std::string_view kPasswordMark = "password \"";
constexpr std::string_view kHidden = "****";
/// Lines of several processes may be a second out of order.
constexpr LogTime kDisorder = 1;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// text up to the first password in it.
std::string_view frontOfPassword(std::string_view text) {
  std::size_t end = text.size();
  for (const std::string_view mark : {kPass, kPasswordMark}) {
    const std::size_t at = findFolded(text, mark);
    if (at != std::string_view::npos) end = std::min(end, at + mark.size());
  }
  return text.substr(0, end);
}

void appendShape(std::string& shape, std::string_view text) {
  for (std::size_t at = 0; at < text.size() && shape.size() < kLongestShape; ++at) {
    if (isDigit(text[at])) {
      if (shape.empty() || shape.back() != '#') shape += '#';
    } else if (text[at] == '"') {
      shape += "\"...\"";
      at = std::min(text.find('"', at + 1), text.size());
    } else {
      shape += text[at];
    }
  }
}

}  // namespace

std::string shapeOf(std::string_view text) {
  text = text.substr(0, 2 * kLongestShape);
  const std::string_view front = frontOfPassword(text);
  std::string shape;
  appendShape(shape, front);
  if (front.size() < text.size()) shape += kHidden;
  return shape;
}

std::string withoutPasswords(std::string_view text) {
  const std::string_view front = frontOfPassword(text);
  return front.size() < text.size() ? std::string(front).append(kHidden) : std::string(text);
}

LedgerKeeper::LedgerKeeper() : m_seed(randomSeed()) {
  m_ledger.shapes.reserve(kMostShapes + 1);  // m_lastShape points into it
}

void LedgerKeeper::take(Verdict verdict, const Event& event, std::string_view line) {
  passTime(event.time);
  m_lastShape = nullptr;
  switch (verdict) {
    case Verdict::Understood:
      m_lastShare = &m_ledger.understood;
      break;
    case Verdict::Foreign:
      m_lastShare = &m_ledger.foreign;
      break;
    case Verdict::SetAside:
      m_lastShare = &m_ledger.setAside;
      m_lastShape = &shape(event.text.empty() ? line : event.text, line, event.position);
      ++m_lastShape->lines;
      break;
  }
  ++m_lastShare->lines;
  takeMore(event.length);
}

void LedgerKeeper::takeMore(std::uint64_t bytes) {
  m_lastShare->bytes += bytes;
  if (m_lastShape != nullptr) m_lastShape->bytes += bytes;
}

void LedgerKeeper::passTime(LogTime time) {
  if (time == kNoTime) return;
  if (m_ledger.first == kNoTime) m_ledger.first = time;
  if (m_ledger.last != kNoTime && time + kDisorder < m_ledger.last) ++m_ledger.clockJumps;
  m_ledger.last = time;
}

SetAsideShape& LedgerKeeper::shape(std::string_view text, std::string_view line, std::uint64_t position) {
  std::string shape = shapeOf(text);
  std::vector<SetAsideShape>& shapes = m_ledger.shapes;
  const std::uint64_t hash = textHash(shape, m_seed);
  const auto found = m_shapes.find(hash);
  if (found != m_shapes.end()) return shapes[found->second];
  const bool isRest = m_shapes.size() == kMostShapes;
  if (isRest && shapes.size() > kMostShapes) return shapes.back();
  if (!isRest) m_shapes.emplace(hash, shapes.size());
  SetAsideShape& added = shapes.emplace_back();
  if (!isRest) added.shape = std::move(shape);
  added.example = withoutPasswords(line.substr(0, kLongestExample));
  added.position = position;
  return added;
}

}  // namespace quorvel
