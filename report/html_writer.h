// An answer as one HTML file: no script, nothing from elsewhere, charts as SVG; to be read, printed and mailed.
#pragma once

#include "report/output.h"
#include "report/report.h"

namespace quorvel {

Status writeHtml(const Report& report, Output& output);

/// text, valid UTF-8, as it may stand between tags and in attributes. Characters that must not be shown are replaced.
[[nodiscard]] std::string htmlText(std::string_view text);

}  // namespace quorvel
