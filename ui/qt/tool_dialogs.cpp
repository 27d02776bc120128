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

}  // namespace

Tool toolFor(MenuItem item) {
  const auto* const line =
      std::find_if(kTools.begin(), kTools.end(), [item](const ToolLine& tool) { return tool.item == item; });
  return line == kTools.end() ? nullptr : line->open;
}

std::vector<MenuItem> toolItems() {
  std::vector<MenuItem> items;
  for (const ToolLine& line : kTools)
    items.push_back(line.item);
  return items;
}

}  // namespace quorvel
