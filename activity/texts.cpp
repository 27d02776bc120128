#include "activity/texts.h"

#include <cstring>
#include <string>
#include <utility>

#include "activity/text_hash.h"

namespace quorvel {
namespace {

constexpr std::size_t kPiece = 1024 * 1024;

}  // namespace

TextPool::TextPool() : m_slots(1024), m_seed(randomSeed()) {
  m_texts.append({});
}

TextId TextPool::add(std::string_view text) {
  if (text.empty()) return kNoText;
  std::string cut;
  if (text.size() > kLongestText) text = cut.append(text.substr(0, kLongestText - kCutMark.size())).append(kCutMark);
  if (m_texts.size() * 4 > m_slots.size() * 3) grow();
  const auto hash = static_cast<std::uint32_t>(textHash(text, m_seed) >> 32);
  const std::size_t mask = m_slots.size() - 1;
  std::size_t slot = hash & mask;
  for (; m_slots[slot].text != kNoText; slot = (slot + 1) & mask) {
    if (m_slots[slot].hash == hash && m_texts[m_slots[slot].text] == text) return m_slots[slot].text;
  }
  const auto id = static_cast<TextId>(m_texts.size());
  m_texts.append(keep(text));
  m_slots[slot] = {id, hash};
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
  std::vector<Slot> slots(m_slots.size() * 2);
  const std::size_t mask = slots.size() - 1;
  for (const Slot& taken : m_slots) {
    if (taken.text == kNoText) continue;
    std::size_t slot = taken.hash & mask;
    while (slots[slot].text != kNoText)
      slot = (slot + 1) & mask;
    slots[slot] = taken;
  }
  m_slots.swap(slots);
}

}  // namespace quorvel
