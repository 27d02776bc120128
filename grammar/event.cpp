#include "grammar/event.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

constexpr std::array<std::string_view, 6> kActionNames = {"download", "upload",      "delete",
                                                          "rename",   "make_folder", "remove_folder"};
constexpr std::array<std::string_view, 7> kLogonResultNames = {
    "", "no_logon", "logged_on", "bad_password", "refused_address", "no_home", "refused"};
/// By number.
constexpr std::array<std::string_view, 32> kSftpStatusNames = {"SSH_FX_OK",
                                                               "SSH_FX_EOF",
                                                               "SSH_FX_NO_SUCH_FILE",
                                                               "SSH_FX_PERMISSION_DENIED",
                                                               "SSH_FX_FAILURE",
                                                               "SSH_FX_BAD_MESSAGE",
                                                               "SSH_FX_NO_CONNECTION",
                                                               "SSH_FX_CONNECTION_LOST",
                                                               "SSH_FX_OP_UNSUPPORTED",
                                                               "SSH_FX_INVALID_HANDLE",
                                                               "SSH_FX_NO_SUCH_PATH",
                                                               "SSH_FX_FILE_ALREADY_EXISTS",
                                                               "SSH_FX_WRITE_PROTECT",
                                                               "SSH_FX_NO_MEDIA",
                                                               "SSH_FX_NO_SPACE_ON_FILESYSTEM",
                                                               "SSH_FX_QUOTA_EXCEEDED",
                                                               "SSH_FX_UNKNOWN_PRINCIPAL",
                                                               "SSH_FX_LOCK_CONFLICT",
                                                               "SSH_FX_DIR_NOT_EMPTY",
                                                               "SSH_FX_NOT_A_DIRECTORY",
                                                               "SSH_FX_INVALID_FILENAME",
                                                               "SSH_FX_LINK_LOOP",
                                                               "SSH_FX_CANNOT_DELETE",
                                                               "SSH_FX_INVALID_PARAMETER",
                                                               "SSH_FX_FILE_IS_A_DIRECTORY",
                                                               "SSH_FX_BYTE_RANGE_LOCK_CONFLICT",
                                                               "SSH_FX_BYTE_RANGE_LOCK_REFUSED",
                                                               "SSH_FX_DELETE_PENDING",
                                                               "SSH_FX_FILE_CORRUPT",
                                                               "SSH_FX_OWNER_INVALID",
                                                               "SSH_FX_GROUP_INVALID",
                                                               "SSH_FX_NO_MATCHING_BYTE_RANGE_LOCK"};

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

ReplyCode sftpReply(std::string_view statusName) {
  if (!statusName.starts_with("SSH_FX_")) return 0;
  const auto found = std::find(kSftpStatusNames.begin(), kSftpStatusNames.end(), statusName);
  constexpr std::ptrdiff_t kFailure = 4;
  const std::ptrdiff_t status = found == kSftpStatusNames.end() ? kFailure : found - kSftpStatusNames.begin();
  return static_cast<ReplyCode>(kSftpStatus + status);
}

}  // namespace quorvel
