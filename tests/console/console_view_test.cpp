#include "ui/console/console_view.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

#include "ui/console/plain_line.h"

namespace quorvel::test {
namespace {

TEST(PlainLine, HoldsNothingATerminalObeys) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"a.log: File not found.", "a.log: File not found."}, {" Error 5\r\n\r\n  again \n", "Error 5 again"},
      {"\x1B]0;title\x07\x7F\t!", "?]0;title??\?!"},        {"a\x9B\x90\x9Dz", "a\xE2\x80\xBA??z"},
      {"\xE5ngstr\xF6m", "\xC3\xA5ngstr\xC3\xB6m"},         {"\r\n", ""},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(plainLine(text), expected);
}

TEST(ConsoleView, RewritesItsProgressLineAndClearsIt) {
  const std::tuple<std::int64_t, std::int64_t, std::int64_t, const char*> cases[] = {
      {0, 200, 100, "50 %"},
      {0, 0, 0, "0 %"},
      {5, 1, 3, "0 %"},
      {0, 10, 99, "100 %"},
      {INT64_MIN, INT64_MAX, INT64_MAX, "100 %"}};
  for (const auto& [minimum, maximum, value, shown] : cases) {
    std::ostringstream out;
    ConsoleView view(out, ConsoleView::Progress::Shown);
    view.yield();
    EXPECT_EQ(out.str(), "");
    view.setStatusPanel(StatusPanel::Text, "Searching \x1B.log");
    view.showProgress(true);
    view.setProgressRange(minimum, maximum);
    view.setProgress(value);
    view.setPositionLabels("Current position:", "100");
    view.yield();
    view.yield();  // too soon to draw again
    const std::string line = std::string(shown) + "  Current position: 100  Searching ?.log";
    EXPECT_EQ(out.str(), line);
    EXPECT_TRUE(view.showMessage({"Text", Buttons::OkCancel, {}}));
    EXPECT_EQ(out.str(), line + '\r' + std::string(line.size(), ' ') + "\rquorvel: Text\n");
  }
}

}  // namespace
}  // namespace quorvel::test
