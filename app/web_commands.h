// The commands of the web menu: each hands an address to the desktop and does not wait for it.
#pragma once

#include <string>

#include "app/view.h"

namespace quorvel {

void visitWebsite(DialogView& view);
void sendEmail(DialogView& view);
void reportBug(DialogView& view);

/// The mailto address of a bug report: subject and the start of the body, not encoded.
[[nodiscard]] std::string bugReportAddress();

}  // namespace quorvel
