#include "classic/counter/transfer_tokens.h"

namespace quorvel {

void TransferTokens::addStartOf(std::string_view text) {
  if (text.starts_with(kSentFile)) sent = true;
  if (text.starts_with(kReceivedFile)) received = true;
  if (text.starts_with(kErrorSending)) sendError = true;
  if (text.starts_with(kErrorReceiving)) receiveError = true;
}

void TransferTokens::add(const TransferTokens& other) {
  sent = sent || other.sent;
  received = received || other.received;
  sendError = sendError || other.sendError;
  receiveError = receiveError || other.receiveError;
}

}  // namespace quorvel
