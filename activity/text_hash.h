// A hash of texts that nobody can foresee: without the seed nobody can choose texts that meet.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <string_view>

namespace quorvel {

/// A new one each time the program runs.
[[nodiscard]] inline std::uint64_t randomSeed() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device();
}

/// Multiplies and folds eight bytes at a time.
[[nodiscard]] inline std::uint64_t textHash(std::string_view text, std::uint64_t seed) {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
  std::uint64_t hash = seed ^ (text.size() * kFactor);
  const auto mix = [&hash](std::uint64_t word) {
    hash = (hash ^ word) * kFactor;
    hash ^= hash >> 29;
    hash *= 0xBF58476D1CE4E5B9u;
    hash ^= hash >> 32;
  };
  std::uint64_t word = 0;
  for (; text.size() >= sizeof word; text.remove_prefix(sizeof word)) {
    std::memcpy(&word, text.data(), sizeof word);
    mix(word);
  }
  word = 0;
  if (!text.empty()) std::memcpy(&word, text.data(), text.size());
  mix(word);
  return hash;
}

}  // namespace quorvel
