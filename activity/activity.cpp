#include "activity/activity.h"

#include <array>

#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::array<std::string_view, 3> kEndNames = {"open", "closed", "server_start"};
constexpr std::array<std::string_view, 5> kCauseNames = {"", "reply", "closed", "server_start", "aborted"};

}  // namespace

std::string_view sessionEndName(SessionEnd end) {
  return kEndNames[static_cast<std::size_t>(end)];
}

std::string_view failureCauseName(FailureCause cause) {
  return kCauseNames[static_cast<std::size_t>(cause)];
}

std::string utf8Of(std::string_view text, TextEncoding encoding) {
  return encoding == TextEncoding::Utf8 ? validUtf8(text) : toUtf8(text);
}

}  // namespace quorvel
