// The words by which the server reports transfers, and the fast search for them.
#pragma once

#include <cstddef>
#include <string_view>

namespace quorvel {

// Matched in the case shown. None starts inside another, which findTransferToken() relies on.
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
  [[nodiscard]] bool all() const { return sent && received && sendError && receiveError; }
  [[nodiscard]] bool isFailure() const { return sendError || receiveError; }
  /// Notes the token that text starts with, if any.
  void addStartOf(std::string_view text);
};

/// Index of the first of the four tokens in text at or after from, std::string_view::npos when there is none.
[[nodiscard]] std::size_t findTransferToken(std::string_view text, std::size_t from = 0);

/// All tokens of a line.
[[nodiscard]] TransferTokens transferTokensIn(std::string_view line);

}  // namespace quorvel
