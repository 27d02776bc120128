#include "filter/session_mark.h"

#include <cstring>

#include "core/text.h"

namespace quorvel {
namespace {

bool hasNoCase(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 'A';  // digits, blanks and most punctuation: all that an ordinary session number consists of
}

}  // namespace

SessionMark::SessionMark(std::string_view numberInLog) : m_text(numberInLog) {
  for (std::size_t i = 0; i < m_text.size() && m_anchor == std::string::npos; ++i) {
    if (hasNoCase(m_text[i])) m_anchor = i;
  }
}

std::size_t SessionMark::find(std::string_view line, std::size_t from) const {
  if (m_anchor == std::string::npos) return findFolded(line, m_text, from);
  for (std::size_t at = from + m_anchor; at < line.size(); ++at) {
    const void* const hit = std::memchr(line.data() + at, m_text[m_anchor], line.size() - at);
    if (hit == nullptr) break;
    at = static_cast<std::size_t>(static_cast<const char*>(hit) - line.data());
    if (startsWithFolded(line.substr(at - m_anchor), m_text)) return at - m_anchor;
  }
  return std::string_view::npos;
}

}  // namespace quorvel
