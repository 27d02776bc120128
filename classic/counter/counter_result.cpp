#include "classic/counter/counter_result.h"

#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kLookInFile = "Look in the file:";
constexpr std::string_view kMoreInfo = "for more info on the bad transfers.";

/// Sums are wider than the counts they are made of.
std::string sumText(std::int32_t a, std::int32_t b) {
  return std::to_string(std::int64_t{a} + b);
}

std::string bytesText(std::int64_t a, std::int64_t b) {
  return " - (" + fixedPointSumText(a, b) + " bytes)";
}

std::string goodTransfers(const TransferCount& totals, bool withBytes) {
  const auto bytes = [withBytes](std::int64_t a, std::int64_t b) {
    return withBytes ? bytesText(a, b) : std::string();
  };
  return "RETR - Server sends: " + std::to_string(totals.SentFiles) + bytes(totals.BytesSent, 0) +
         "\r\nSTOR - Server receives: " + std::to_string(totals.ReceivedFiles) + bytes(totals.BytesReceived, 0) +
         "\r\nTotal good transfers: " + sumText(totals.SentFiles, totals.ReceivedFiles) +
         bytes(totals.BytesSent, totals.BytesReceived);
}

std::string badTransfers(const TransferCount& totals) {
  return "\r\n\r\nRETR errors: " + std::to_string(totals.SendErrors) +
         "\r\nSTOR errors: " + std::to_string(totals.ReceiveErrors) +
         "\r\nTotal bad transfers: " + sumText(totals.SendErrors, totals.ReceiveErrors);
}

}  // namespace

std::string counterResultText(const TransferCount& totals, const CounterResultOptions& options) {
  std::string text = goodTransfers(totals, options.countBytes) + badTransfers(totals);
  if (options.getFilenameOnTransferError && (totals.SendErrors > 0 || totals.ReceiveErrors > 0)) {
    text.append("\r\n\r\n").append(kLookInFile).append(kLineEnd).append(pathText(options.badTransfersPath));
    text.append(kLineEnd).append(kMoreInfo);
  }
  return text;
}

std::string counterResultBlock(const TransferCount& totals, std::string_view description,
                               const CounterResultOptions& options) {
  constexpr std::size_t kRuleLength = 31;
  std::string block = "\r\n\r\n\r\n" + std::string(kRuleLength, '-') + "\r\nCounter results: ";
  block.append(description).append("\r\n\r\n");
  block.append(goodTransfers(totals, true)).append(badTransfers(totals)).append(kLineEnd);
  if (options.getFilenameOnTransferError) {
    block.append(kLookInFile).append(pathText(options.badTransfersPath)).append(kLineEnd);
    block.append(kMoreInfo).append("\r\n\r\n");
  }
  return block;
}

Status AppendCounterResult(FileSystem& files, const std::filesystem::path& path, const TransferCount& totals,
                           std::string_view description, const CounterResultOptions& options) {
  auto file = files.openToAppendLines(path);
  if (!file.isOk()) return file.error();
  return file.value()->appendLines(counterResultBlock(totals, description, options));
}

}  // namespace quorvel
