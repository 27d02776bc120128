// The running totals of one count, and the numbers it adds up.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Totals of one count run. The byte sums are fixed-point numbers with four decimals: the value times 10,000.
struct TransferCount {
  std::int32_t SentFiles = 0;
  std::int32_t ReceivedFiles = 0;
  std::int32_t SendErrors = 0;
  std::int32_t ReceiveErrors = 0;
  std::int64_t BytesSent = 0;
  std::int64_t BytesReceived = 0;

  friend bool operator==(const TransferCount&, const TransferCount&) = default;
};

void ResetTransferCount(TransferCount& totals);

/// Raises a count; it stays at its largest value.
void countMore(std::int32_t& count, std::uint32_t more);
/// Adds a fixed-point number so many times; whenever the result is out of range the sum stays as it was.
void addBytes(std::int64_t& sum, std::int64_t bytes, std::uint32_t times = 1);

/// Reads a decimal number, the same in every locale: blanks around it, a sign, a decimal point and an exponent are
/// understood, grouping is not. The fifth decimal is rounded half to even. Empty when text is no number, is longer
/// than 1024 characters, or does not fit.
[[nodiscard]] std::optional<std::int64_t> parseFixedPoint(std::string_view text);

/// a + b as a plain decimal number without grouping and without closing zeros behind the point: "41984", "0.5".
/// The sum may be larger than a single fixed-point number can be.
[[nodiscard]] std::string fixedPointSumText(std::int64_t a, std::int64_t b);
[[nodiscard]] inline std::string fixedPointText(std::int64_t value) {
  return fixedPointSumText(value, 0);
}

}  // namespace quorvel
