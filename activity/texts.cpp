#include "activity/texts.h"

#include <cstring>
#include <string>
#include <utility>

#include "activity/text_hash.h"

namespace quorvel {
namespace {

constexpr std::size_t kPiece = 1024 * 1024;

}  // namespace

TextPool::TextPool() : m_slots(1024, kNoText), m_seed(randomSeed()) {
  m_texts.append({});
}

TextId TextPool::add(std::string_view text) {
  if (text.empty()) return kNoText;
  std::string cut;
  if (text.size() > kLongestText) text = cut.append(text.substr(0, kLongestText - kCutMark.size())).append(kCutMark);
  if (m_texts.size() * 4 > m_slots.size() * 3) grow();
  const std::size_t mask = m_slots.size() - 1;
  std::size_t slot = textHash(text, m_seed) & mask;
  for (; m_slots[slot] != kNoText; slot = (slot + 1) & mask) {
    if (m_texts[m_slots[slot]] == text) return m_slots[slot];
  }
  const auto id = static_cast<TextId>(m_texts.size());
  m_texts.append(keep(text));
  m_slots[slot] = id;
  return id;
}

Texts TextPool::snapshot() {
  Texts texts(*this);
  return texts;
}

std::string_view TextPool::keep(std::string_view text) {
  if (text.size() > m_room) {
    m_bytes.push_back(std::shared_ptr<char[]>(new char[kPiece]));
    m_next = m_bytes.back().get();
    m_room = kPiece;
  }
  char* const begin = std::exchange(m_next, m_next + text.size());
  std::memcpy(begin, text.data(), text.size());
  m_room -= text.size();
  return {begin, text.size()};
}

void TextPool::grow() {
  std::vector<TextId> slots(m_slots.size() * 2, kNoText);
  const std::size_t mask = slots.size() - 1;
  for (TextId id = 1; id < m_texts.size(); ++id) {
    std::size_t slot = textHash(m_texts[id], m_seed) & mask;
    while (slots[slot] != kNoText)
      slot = (slot + 1) & mask;
    slots[slot] = id;
  }
  m_slots.swap(slots);
}

}  // namespace quorvel
