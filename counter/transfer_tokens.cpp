#include "counter/transfer_tokens.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr std::size_t kChunk = 64;

using Flag = unsigned char;

/// Whether one of the four tokens may start here: tells by " Se", " Re" and " Er" alone and without a jump, so that
/// the compiler can look at many positions at once.
inline Flag mayStartAt(const char* at) {
  const auto isBlank = static_cast<Flag>(at[0] == ' ');
  const auto isSentOrReceived = static_cast<Flag>(static_cast<Flag>((at[1] == 'S') | (at[1] == 'R')) & (at[2] == 'e'));
  const auto isError = static_cast<Flag>((at[1] == 'E') & (at[2] == 'r'));
  return static_cast<Flag>(isBlank & (isSentOrReceived | isError));
}

/// Whether a token may start at any of the kChunk bytes at begin. Two more bytes behind them are read.
bool mayHoldStart(const char* begin) {
  Flag found = 0;
  for (std::size_t i = 0; i < kChunk; ++i)
    found = static_cast<Flag>(found | mayStartAt(begin + i));
  return found != 0;
}

bool startsWithToken(std::string_view text) {
  TransferTokens tokens;
  tokens.addStartOf(text);
  return tokens.any();
}

}  // namespace

void TransferTokens::addStartOf(std::string_view text) {
  if (text.starts_with(kSentFile)) sent = true;
  if (text.starts_with(kReceivedFile)) received = true;
  if (text.starts_with(kErrorSending)) sendError = true;
  if (text.starts_with(kErrorReceiving)) receiveError = true;
}

std::size_t findTransferToken(std::string_view text, std::size_t from) {
  std::size_t at = from;
  while (at + kSentFile.size() <= text.size()) {
    if (at + kChunk + 2 <= text.size() && !mayHoldStart(text.data() + at)) {
      at += kChunk;
      continue;
    }
    const std::size_t end = std::min(at + kChunk, text.size() - 2);
    for (; at < end; ++at) {
      if (mayStartAt(text.data() + at) != 0 && startsWithToken(text.substr(at))) return at;
    }
  }
  return std::string_view::npos;
}

TransferTokens transferTokensIn(std::string_view line) {
  TransferTokens tokens;
  for (std::size_t at = findTransferToken(line); at != std::string_view::npos; at = findTransferToken(line, at + 1)) {
    tokens.addStartOf(line.substr(at));
  }
  return tokens;
}

}  // namespace quorvel
