#include "classic/counter/counted_line.h"

namespace quorvel {
namespace {

void countGood(std::int32_t& files, std::int64_t& sum, std::string_view byteCount, const CountOptions& options) {
  countOne(files);
  if (!options.countBytes) return;
  if (const auto bytes = parseFixedPoint(byteCount)) addBytes(sum, *bytes);
}

}  // namespace

std::string_view byteCountText(std::string_view line) {
  const auto before = line.find(kBeforeByteCount);
  const auto end = line.find(kAfterByteCount);
  if (before == std::string_view::npos || end == std::string_view::npos) return {};
  const auto begin = before + kBeforeByteCount.size();
  return end < begin ? std::string_view() : line.substr(begin, end - begin);
}

void countLine(const TransferTokens& tokens, std::string_view line, std::string_view byteCount, CountRun& run) {
  if (tokens.isFailure()) run.observer.onFailedTransfer(line, run.totals);
  if (tokens.sent) {
    countGood(run.totals.SentFiles, run.totals.BytesSent, byteCount, run.options);
  } else if (tokens.received) {
    countGood(run.totals.ReceivedFiles, run.totals.BytesReceived, byteCount, run.options);
  } else if (tokens.sendError) {
    countOne(run.totals.SendErrors);
  } else if (tokens.receiveError) {
    countOne(run.totals.ReceiveErrors);
  }
}

}  // namespace quorvel
