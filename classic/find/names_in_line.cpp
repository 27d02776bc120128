#include "classic/find/names_in_line.h"

#include <algorithm>
#include <array>

#include "log/seeded_hash.h"

namespace quorvel {
namespace {

constexpr std::uint64_t kPrime = 0x7FFFFFFF;

/// Below 2^30, which with numbers below 2^33 leaves room for reduced().
const TextHash& bases() {
  constexpr std::uint64_t kRange = (1 << 30) - 1000;
  static const TextHash bases{1000 + hashSeed() % kRange, 1000 + (hashSeed() >> 32) * 7 % kRange};
  return bases;
}

/// A smaller number that is the same modulo the prime, below 2^33 for all below 2^63.
constexpr std::uint64_t reduced(std::uint64_t number) {
  return (number & kPrime) + (number >> 31);
}

TextHash product(const TextHash& a, const TextHash& b) {
  return {a.first % kPrime * b.first % kPrime, a.second % kPrime * b.second % kPrime};
}

/// The bases to the power of 0 to kLongestSearchedName.
const std::array<TextHash, kLongestSearchedName + 1>& powersOfBases() {
  static const auto powers = [] {
    std::array<TextHash, kLongestSearchedName + 1> made{};
    made[0] = {1, 1};
    for (std::size_t i = 1; i < made.size(); ++i)
      made[i] = product(made[i - 1], bases());
    return made;
  }();
  return powers;
}

}  // namespace

void NamesInLine::lookAt(const char* name) {
  const bool isSameLine = m_begin != nullptr && (name < m_scanned || (name == m_scanned && m_isAtEnd));
  if (!isSameLine) startAt(name);
  m_name = name;
  const char* at = m_scanned;
  bool isAtEnd = m_isAtEnd;
  for (const char* const furthest = name + kLongestSearchedName + 1; !isAtEnd && at < furthest; ++at) {
    if (*at == ' ' && foldCase(at[1]) == 'l' && standsAt(at, " logged in")) m_loggedIn.push_back(at);
    isAtEnd = at[1] == '\r' || at[1] == '\n';
  }
  m_scanned = at;
  m_isAtEnd = isAtEnd;
  m_firstLoggedIn =
      static_cast<std::size_t>(std::lower_bound(m_loggedIn.begin(), m_loggedIn.end(), name) - m_loggedIn.begin());
}

std::uint64_t NamesInLine::hash(const char* end) {
  hashTo(end);
  const TextHash& before = m_hashes[static_cast<std::size_t>(m_name - m_hashedFrom)];
  const TextHash& all = m_hashes[static_cast<std::size_t>(end - m_hashedFrom)];
  TextHash moved;
  if (m_name != m_hashedFrom) moved = product(before, powersOfBases()[static_cast<std::size_t>(end - m_name)]);
  const std::uint64_t first = (all.first + kPrime - moved.first) % kPrime;
  const std::uint64_t second = (all.second + kPrime - moved.second) % kPrime;
  return std::uint64_t{1} << 62 | first << 31 | second;
}

void NamesInLine::startAt(const char* name) {
  m_begin = m_scanned = name;
  m_isAtEnd = *name == '\r' || *name == '\n';
  m_loggedIn.clear();
  m_hashes.clear();
}

/// Goes on behind what an earlier name had hashed, or anew where this one starts behind it.
void NamesInLine::hashTo(const char* end) {
  if (m_hashes.empty() || m_name >= m_hashedFrom + m_hashes.size()) {
    m_hashedFrom = m_name;
    m_hashes.assign(1, {});
  }
  const char* at = m_hashedFrom + m_hashes.size() - 1;
  if (at >= end) return;
  const TextHash base = bases();
  TextHash hash = m_hashes.back();
  m_hashes.resize(static_cast<std::size_t>(end - m_hashedFrom) + 1);
  for (TextHash* to = &m_hashes.back() - (end - at); at < end; ++at) {
    const std::uint64_t byte = static_cast<unsigned char>(foldCase(*at)) + std::uint64_t{1};
    hash = {reduced(hash.first * base.first + byte), reduced(hash.second * base.second + byte)};
    *++to = hash;
  }
}

}  // namespace quorvel
