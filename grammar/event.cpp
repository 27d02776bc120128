#include "grammar/event.h"

#include <array>

namespace quorvel {
namespace {

constexpr std::array<std::string_view, 6> kActionNames = {"download", "upload",      "delete",
                                                          "rename",   "make_folder", "remove_folder"};
constexpr std::array<std::string_view, 7> kLogonResultNames = {
    "", "no_logon", "logged_on", "bad_password", "refused_address", "no_home", "refused"};
/// By number.
constexpr std::array<std::string_view, 9> kSftpStatusNames = {"SSH_FX_OK",
                                                              "SSH_FX_EOF",
                                                              "SSH_FX_NO_SUCH_FILE",
                                                              "SSH_FX_PERMISSION_DENIED",
                                                              "SSH_FX_FAILURE",
                                                              "SSH_FX_BAD_MESSAGE",
                                                              "SSH_FX_NO_CONNECTION",
                                                              "SSH_FX_CONNECTION_LOST",
                                                              "SSH_FX_OP_UNSUPPORTED"};

}  // namespace

std::string_view actionName(FileAction action) {
  return kActionNames[static_cast<std::size_t>(action)];
}

std::string_view logonResultName(LogonResult result) {
  return kLogonResultNames[static_cast<std::size_t>(result)];
}

std::string replyName(ReplyCode reply) {
  if (reply == 0) return {};
  if (reply < kSftpStatus) return std::to_string(reply);
  const auto status = static_cast<std::size_t>(reply - kSftpStatus);
  return status < kSftpStatusNames.size() ? std::string(kSftpStatusNames[status]) : "SSH_FX_" + std::to_string(status);
}

}  // namespace quorvel
