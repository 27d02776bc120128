// The words by which the server reports transfers.
#pragma once

#include <cstddef>
#include <string_view>

namespace quorvel {

// Matched in the case shown.
inline constexpr std::string_view kSentFile = " Sent file ";
inline constexpr std::string_view kReceivedFile = " Received file ";
inline constexpr std::string_view kErrorSending = " Error sending ";
inline constexpr std::string_view kErrorReceiving = " Error receiving ";
/// Length of the longest of the four.
inline constexpr std::size_t kLongestToken = kErrorReceiving.size();

/// Which of the four a line holds.
struct TransferTokens {
  bool sent = false;
  bool received = false;
  bool sendError = false;
  bool receiveError = false;

  [[nodiscard]] bool any() const { return sent || received || sendError || receiveError; }
  [[nodiscard]] bool isFailure() const { return sendError || receiveError; }
  /// Notes the token that text starts with, if any.
  void addStartOf(std::string_view text);
  void add(const TransferTokens& other);
};

}  // namespace quorvel
