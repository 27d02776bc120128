#include "app/web_commands.h"

#include "app/program.h"

namespace quorvel {
namespace {

std::string supportMailAddress() {
  return "mailto:" + std::string(kSupportAddress);
}

}  // namespace

void visitWebsite(DialogView& view) {
  view.openAddress(kWebAddress);
}

void sendEmail(DialogView& view) {
  view.openAddress(supportMailAddress());
}

void reportBug(DialogView& view) {
  view.openAddress(bugReportAddress());
}

std::string bugReportAddress() {
  return supportMailAddress() + "?Subject=" + std::string(kProgramName) +
         " - Bug&Body=Version: " + std::string(kVersion) + "   Decsribe the bug below:";
}

}  // namespace quorvel
