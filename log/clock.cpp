#include "log/clock.h"

#include <array>
#include <ctime>

namespace quorvel {
namespace {

std::string format(const char* pattern, const std::tm& time) {
  std::array<char, 32> text{};
  return {text.data(), std::strftime(text.data(), text.size(), pattern, &time)};
}

}  // namespace

DateTime localNow() {
  const std::time_t now = std::time(nullptr);
  const std::tm local = *std::localtime(&now);  // the program has one thread that asks for the time
  return {format("%Y-%m-%d", local), format("%H:%M:%S", local)};
}

}  // namespace quorvel
