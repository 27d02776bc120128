#include "log/unpack.h"

namespace quorvel {

bool isPacked(std::string_view) {
  return false;
}

std::string unpackerVersion() {
  return {};
}

Result<std::unique_ptr<LogSource>> unpackedStream(std::shared_ptr<File>, std::string, std::int64_t) {
  return std::unique_ptr<LogSource>();
}

Result<std::vector<ReadableLog>> unpackAll(FileSystem&, std::shared_ptr<File>, const std::string&, const UnpackPlace&) {
  return std::vector<ReadableLog>();
}

}  // namespace quorvel
