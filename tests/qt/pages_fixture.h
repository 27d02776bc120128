// What the tests of the pages share.
#pragma once

#include "report/raw_tables.h"
#include "tests/qt/window_fixture.h"
#include "ui/qt/pages/answer_page.h"
#include "ui/qt/pages/background_reading.h"
#include "ui/qt/pages/pages.h"
#include "ui/qt/pages/scope_row.h"
#include "ui/qt/pages/table_box.h"

namespace quorvel::test {

/// The real window on a page that answers a question.
class PagesTest : public testing::Test, protected ProgramWindow {
 protected:
  PagesTest() { pages.showPage(PageName::Overview); }

  /// Opens a log and waits until it is read and the page shows it.
  void openAndRead(const std::filesystem::path& log) {
    open(log);
    settle();
  }
  void settle() {
    EXPECT_TRUE(QTest::qWaitFor([this] { return pages.isIdle(); }));
    runEvents();
    EXPECT_TRUE(QTest::qWaitFor([this] { return pages.isIdle(); }));
  }
  void show(PageName page) {
    pages.showPage(page);
    settle();
  }
  void type(const QString& words) {
    auto& box = part<QLineEdit>(window, "scopeWords");
    box.setFocus();
    box.selectAll();
    QTest::keyClicks(&box, words);
    settle();
  }
  [[nodiscard]] TableBox& table(const char* name) { return part<TableBox>(window, name); }
  [[nodiscard]] static std::string cell(TableBox& box, int row, std::string_view column) {
    return box.rows().index(row, box.rows().columnNamed(column)).data().toString().toStdString();
  }
  [[nodiscard]] std::string label(const char* name) { return part<QLabel>(window, name).text().toStdString(); }

  Pages& pages = window.pages();
};

inline std::filesystem::path sample(std::string_view name) {
  return std::filesystem::path(QUORVEL_SAMPLES) / name;
}

}  // namespace quorvel::test
