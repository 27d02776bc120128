#include "classic/counter/transfer_tokens.h"

namespace quorvel {
namespace {

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
  for (std::size_t at = text.find(' ', from); at != std::string_view::npos; at = text.find(' ', at + 1)) {
    if (startsWithToken(text.substr(at))) return at;
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
