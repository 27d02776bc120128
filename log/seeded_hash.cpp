#include "log/seeded_hash.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace quorvel {
namespace {

constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;

std::uint64_t randomSeed() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device();
}

std::uint64_t mix(std::uint64_t value) {
  value = (value ^ (value >> 32)) * kOdd;
  value = (value ^ (value >> 29)) * kOdd;
  return value ^ (value >> 32);
}

}  // namespace

std::uint64_t hashSeed() {
  static const std::uint64_t seed = randomSeed();
  return seed;
}

std::uint64_t seededHash(std::uint64_t number) {
  return mix(number ^ hashSeed());
}

std::uint64_t seededHash(std::string_view text) {
  std::uint64_t hash = hashSeed() + text.size();
  for (; !text.empty(); text.remove_prefix(std::min(text.size(), sizeof hash))) {
    std::uint64_t part = 0;
    std::memcpy(&part, text.data(), std::min(text.size(), sizeof part));
    hash = mix(hash ^ part);
  }
  return hash;
}

}  // namespace quorvel
