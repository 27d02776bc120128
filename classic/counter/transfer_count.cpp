#include "classic/counter/transfer_count.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace quorvel {
namespace {

constexpr std::int64_t kScale = 10'000;
constexpr int kDecimals = 4;
constexpr std::size_t kLongestNumber = 1024;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// A number as it stands in a text: digits x 10 ^ (pointAt - number of digits).
struct Decimal {
  bool isNegative = false;
  std::string digits;
  int pointAt = 0;
};

void takeDigits(std::string_view& text, std::string& digits) {
  while (!text.empty() && isDigit(text.front())) {
    digits += text.front();
    text.remove_prefix(1);
  }
}

/// Takes "e+12" off text, if it starts so; false when the exponent is malformed. One that no number of kLongestNumber
/// digits could make up for is as good as any larger one.
bool takeExponent(std::string_view& text, int& exponent) {
  if (text.empty() || (text.front() != 'e' && text.front() != 'E')) return true;
  text.remove_prefix(1);
  if (text.size() > 1 && text.front() == '+' && isDigit(text[1])) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
  if (error == std::errc::invalid_argument) return false;
  constexpr int kLargestExponent = 9999;
  if (error == std::errc::result_out_of_range) exponent = text.front() == '-' ? -kLargestExponent : kLargestExponent;
  exponent = std::clamp(exponent, -kLargestExponent, kLargestExponent);
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return true;
}

std::optional<Decimal> parseDecimal(std::string_view text) {
  Decimal number;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    number.isNegative = text.front() == '-';
    text.remove_prefix(1);
  }
  takeDigits(text, number.digits);
  number.pointAt = static_cast<int>(number.digits.size());
  if (!text.empty() && text.front() == '.') {
    text.remove_prefix(1);
    takeDigits(text, number.digits);
  }
  if (number.digits.empty()) return std::nullopt;
  int exponent = 0;
  if (!takeExponent(text, exponent) || !text.empty()) return std::nullopt;
  number.pointAt += exponent;
  return number;
}

/// Whether the digits from cut on round the number before them, which ends in lastDigit, up.
bool roundsUp(std::string_view digits, int cut, bool lastDigitIsOdd) {
  if (cut < 0 || cut >= static_cast<int>(digits.size())) return false;
  const std::string_view rest = digits.substr(static_cast<std::size_t>(cut));
  if (rest.front() != '5') return rest.front() > '5';
  return lastDigitIsOdd || rest.find_first_not_of('0', 1) != std::string_view::npos;
}

std::optional<std::int64_t> scaled(const Decimal& number) {
  const int wanted = number.pointAt + kDecimals;
  constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
  const std::uint64_t limit = number.isNegative ? kLargest + 1 : kLargest;
  std::uint64_t value = 0;
  for (int i = 0; i < wanted; ++i) {
    const bool isGiven = i < static_cast<int>(number.digits.size());
    const auto digit = static_cast<std::uint64_t>(isGiven ? number.digits[static_cast<std::size_t>(i)] - '0' : 0);
    if (value > (limit - digit) / 10) return std::nullopt;
    value = value * 10 + digit;
  }
  if (roundsUp(number.digits, wanted, value % 2 != 0) && value++ == limit) return std::nullopt;
  return static_cast<std::int64_t>(number.isNegative ? 0 - value : value);
}

}  // namespace

void ResetTransferCount(TransferCount& totals) {
  totals = TransferCount();
}

void countMore(std::int32_t& count, std::uint32_t more) {
  const auto left = static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max() - count);
  count += static_cast<std::int32_t>(std::min(left, more));
}

void addBytes(std::int64_t& sum, std::int64_t bytes, std::uint32_t times) {
  using Limits = std::numeric_limits<std::int64_t>;
  if (bytes == 0) return;
  // Wraps around to the right distance where sum and limit lie on different sides of 0.
  const std::uint64_t room = bytes > 0 ? static_cast<std::uint64_t>(Limits::max()) - static_cast<std::uint64_t>(sum)
                                       : static_cast<std::uint64_t>(sum) - static_cast<std::uint64_t>(Limits::min());
  const std::uint64_t size = bytes > 0 ? static_cast<std::uint64_t>(bytes) : 0 - static_cast<std::uint64_t>(bytes);
  const std::uint64_t added = std::min<std::uint64_t>(times, room / size) * static_cast<std::uint64_t>(bytes);
  sum = static_cast<std::int64_t>(static_cast<std::uint64_t>(sum) + added);
}

std::optional<std::int64_t> parseFixedPoint(std::string_view text) {
  if (text.size() > kLongestNumber) return std::nullopt;
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return std::nullopt;
  const auto number = parseDecimal(text.substr(first, text.find_last_not_of(" \t") - first + 1));
  return number ? scaled(*number) : std::nullopt;
}

std::string fixedPointSumText(std::int64_t a, std::int64_t b) {
  std::int64_t whole = a / kScale + b / kScale;
  std::int64_t rest = a % kScale + b % kScale;
  whole += rest / kScale;
  rest %= kScale;
  if (whole > 0 && rest < 0) {
    --whole;
    rest += kScale;
  } else if (whole < 0 && rest > 0) {
    ++whole;
    rest -= kScale;
  }
  std::string text = whole < 0 || rest < 0 ? "-" : "";
  text += std::to_string(whole < 0 ? -whole : whole);
  if (rest == 0) return text;
  const std::string decimals = std::to_string(kScale + (rest < 0 ? -rest : rest)).substr(1);
  return text + '.' + decimals.substr(0, decimals.find_last_not_of('0') + 1);
}

}  // namespace quorvel
