#include "cli/standard_output.h"

#include <cerrno>
#include <cstdio>

namespace quorvel {
namespace {

class StandardOutput final : public Output {
 protected:
  Status write(std::string_view piece) override {
    errno = 0;
    const bool isWritten =
        std::fwrite(piece.data(), 1, piece.size(), stdout) == piece.size() && std::fflush(stdout) == 0;
    if (isWritten) return {};
    if (errno == ENOSPC) return Error{ErrorCode::DiskFull, "standard output"};
    return Error{ErrorCode::DeviceIoError, "standard output", errno == EPIPE ? "Nobody reads any more" : ""};
  }
};

}  // namespace

std::unique_ptr<Output> standardOutput() {
  return std::make_unique<StandardOutput>();
}

}  // namespace quorvel
