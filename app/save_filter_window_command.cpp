#include "app/save_filter_window_command.h"

#include <string>

#include "app/command_report.h"
#include "app/file_choice.h"
#include "classic/tools/report_head.h"
#include "log/clock.h"
#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kFilter = "Filtered logfile (filter window)             (*.txt)|*.txt";

std::string windowReport(const CommandContext& context) {
  std::string report = reportHead(context.state.logPath, localNow());
  report.append(context.view.userInfo()).append(kLineEnd).append(kLineEnd);
  report.append(context.view.filterText()).append(kLineEnd);
  return report;
}

}  // namespace

void saveFilterWindow(CommandContext& context) {
  const CommandGuard guard(context);
  if (!guard) return;
  const auto path = chooseSavePathInLastFolder(context, kFilter);
  if (!path) return;
  context.view.setStatusPanel(StatusPanel::Text, "Saving " + pathText(*path));
  const Status saved = context.files.replaceWhole(*path, windowReport(context));
  if (!saved.isOk()) reportFailure(context, saved.error().sentence());
  context.view.setStatusPanel(StatusPanel::Text, "Using " + context.state.logTitle);
}

}  // namespace quorvel
