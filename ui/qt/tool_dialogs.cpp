#include "ui/qt/tool_dialogs.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

struct ToolLine {
  MenuItem item;
  Tool open;
};

using enum MenuItem;

constexpr std::array kTools = {
    ToolLine{mnuGotoPosition, nullptr},    ToolLine{mnuGetComputersIP, nullptr},
    ToolLine{mnuOptions, nullptr},         ToolLine{mnuHelpCommandLineReference, nullptr},
    ToolLine{mnuWebVisitWebsite, nullptr}, ToolLine{mnuWebSendEmail, nullptr},
    ToolLine{mnuWebReportBug, nullptr},    ToolLine{mnuAbout, nullptr},
};

const ToolLine* find(MenuItem item) {
  const auto* const line =
      std::find_if(kTools.begin(), kTools.end(), [item](const ToolLine& t) { return t.item == item; });
  return line == kTools.end() ? nullptr : line;
}

}  // namespace

Tool toolFor(MenuItem item) {
  const ToolLine* const line = find(item);
  return line == nullptr ? nullptr : line->open;
}

bool isTool(MenuItem item) {
  return find(item) != nullptr;
}

}  // namespace quorvel
