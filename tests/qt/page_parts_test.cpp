// The parts that pages are made of.
#include <QAbstractItemModelTester>

#include "tests/qt/pages_fixture.h"
#include "tests/support/activity_of.h"
#include "ui/qt/pages/bar_chart.h"
#include "ui/qt/pages/hour_grid.h"
#include "ui/qt/pages/log_view.h"
#include "ui/qt/pages/newest_job.h"
#include "ui/qt/pages/shown_text.h"
#include "ui/qt/pages/traffic_bars.h"

namespace quorvel::test {
namespace {

/// Three rows of every kind of cell, one of them as hostile as a log can make it.
class SmallTable final : public Table {
 public:
  [[nodiscard]] std::string_view name() const override { return "small"; }
  [[nodiscard]] std::span<const Column> columns() const override { return kColumns; }
  [[nodiscard]] std::size_t rowCount() const override { return 3; }
  [[nodiscard]] Cell cell(std::size_t row, std::size_t column) const override {
    if (row == 2) return {};
    static constexpr std::string_view kNames[] = {"alice", "<b>\t\"x\"\r\nbob</b>"};
    if (column == 0) return {CellKind::Text, 0, kNames[row]};
    if (column == 1) return {CellKind::Bytes, row == 0 ? 1'234'567 : 5, {}};
    return {CellKind::Name, 0, row == 0 ? "bad_password" : "logged_on"};
  }
  [[nodiscard]] RowSource source(std::size_t row) const override {
    return {RowSource::Kind::Session, static_cast<RowNumber>(row + 10)};
  }

 private:
  static constexpr Column kColumns[] = {
      {"user", "User", CellKind::Text}, {"bytes", "Size", CellKind::Bytes}, {"outcome", "Outcome", CellKind::Name}};
};

TEST(TableModelTest, KeepsTheRulesOfModels) {
  TableModel model;
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  for (const std::vector<RowNumber>& order : {std::vector<RowNumber>{}, {2, 0, 1}}) {
    model.show(std::make_shared<SmallTable>(), order);
    EXPECT_EQ(model.rowCount(), 3);
    EXPECT_FALSE(model.data(model.index(3, 0), Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.index(0, 3).isValid());
    EXPECT_FALSE(model.headerData(3, Qt::Horizontal, Qt::DisplayRole).isValid());
  }
  model.show(nullptr, {});
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.columnCount(), 3) << "the columns stay";
}

TEST(TableModelTest, ShowsValuesPlainlyAndFindsRowsAgain) {
  TableModel model;
  model.show(std::make_shared<SmallTable>(), {2, 1, 0});
  EXPECT_EQ(model.index(2, 1).data().toString(), QStringLiteral("1.2 MB"));
  EXPECT_TRUE(model.index(2, 1).data(Qt::ToolTipRole).toString().contains(QStringLiteral("1,234,567 bytes")));
  EXPECT_EQ(model.index(2, 2).data().toString(), QStringLiteral("bad password"));
  EXPECT_FALSE(model.index(2, 2).data(Qt::DecorationRole).isNull()) << "a refusal is marked";
  EXPECT_TRUE(model.index(1, 2).data(Qt::DecorationRole).isNull());
  const QString tip = model.index(1, 0).data(Qt::ToolTipRole).toString();
  EXPECT_FALSE(tip.contains(QStringLiteral("<b>"))) << qPrintable(tip);
  EXPECT_EQ(model.rowLike({RowSource::Kind::Session, 11}, {}), 1);
  EXPECT_EQ(model.rowLike({RowSource::Kind::Session, 99}, {}), -1);
  EXPECT_EQ(model.word(model.index(2, 0)), (ScopeWord{ScopeWord::Field::User, "alice", false}));
  EXPECT_FALSE(model.word(model.index(0, 0))) << "there is no value";
}

TEST(TableModelTest, CopiesRowsSeparatedByTabsWhateverTheyHold) {
  TableModel model;
  model.show(std::make_shared<SmallTable>(), {});
  const QString copied = tabSeparated(model, {0, 1}, {2, 0});
  EXPECT_EQ(copied.count(u'\n'), 3);
  EXPECT_EQ(copied.count(u'\t'), 3);
  EXPECT_TRUE(copied.startsWith(QStringLiteral("Outcome\tUser\nbad password\talice\nlogged on\t<b>")))
      << qPrintable(copied);
}

TEST(ShownTextTest, NumbersAreReadable) {
  EXPECT_EQ(shownSize(999), QStringLiteral("999 bytes"));
  EXPECT_EQ(shownSize(1'234'567'890), QStringLiteral("1.2 GB"));
  EXPECT_EQ(shownSeconds(41) + u'|' + shownSeconds(725) + u'|' + shownSeconds(10'920) + u'|' + shownSeconds(176'400),
            QStringLiteral("41 s|12 min 5 s|3 h 2 min|2 d 1 h"));
  EXPECT_EQ(shownTime(1'118'044'991), QStringLiteral("2005-06-06 08:03:11"));
  EXPECT_EQ(shownTime(kNoTime), QString());
}

TEST(NewestJobTest, OfJobsThatWaitTheNewestIsDone) {
  NewestJob job;
  std::vector<int> shown;
  std::atomic<bool> mayGoOn = false;
  job.start([&](const std::atomic<bool>&) -> NewestJob::Show {
    while (!mayGoOn)
      std::this_thread::yield();
    return [&shown] { shown.push_back(0); };
  });
  QTest::qWait(1);
  for (int i = 1; i <= 3; ++i)
    job.start([&shown, i](const std::atomic<bool>&) { return NewestJob::Show([&shown, i] { shown.push_back(i); }); });
  mayGoOn = true;
  EXPECT_TRUE(QTest::qWaitFor([&job] { return !job.isBusy(); }));
  EXPECT_EQ(shown.back(), 3);
  EXPECT_LE(shown.size(), 2U);
}

TEST(NewestJobTest, WhatWasCancelledEndsAndIsNotShown) {
  NewestJob job;
  bool isShown = false;
  std::atomic<bool> hasBegun = false;
  job.start([&](const std::atomic<bool>& isCancelled) -> NewestJob::Show {
    hasBegun = true;
    while (!isCancelled)
      std::this_thread::yield();
    return [&isShown] { isShown = true; };
  });
  EXPECT_TRUE(QTest::qWaitFor([&hasBegun] { return hasBegun.load(); }));
  job.cancel();
  EXPECT_TRUE(QTest::qWaitFor([&job] { return !job.isBusy(); }));
  EXPECT_FALSE(isShown);
}

/// 8 bars of a day each, from a fixed day on.
Bars eightDays() {
  constexpr LogTime kDay = 86'400;
  Bars bars{QStringLiteral("Bytes a day"), {QStringLiteral("down"), QStringLiteral("up")}, true, {}};
  for (LogTime day = 0; day < 8; ++day) {
    const LogTime from = (12'000 + day) * kDay;
    bars.bars.push_back({shownTime(from).left(10), {day * 1000, 500}, from, from + kDay, {}});
  }
  return bars;
}

TEST(BarChartTest, KeysAndDraggingChooseAPeriodAndTheTextTellsIt) {
  BarChart chart;
  chart.setBars(eightDays());
  chart.resize(400, 200);
  chart.show();
  QSignalSpy chosen(&chart, &BarChart::periodChosen);
  for (const Qt::Key key : {Qt::Key_Home, Qt::Key_Right})
    QTest::keyClick(&chart, key);
  EXPECT_EQ(chart.accessibleDescription(), QStringLiteral("2002-11-10: 1.5 kB (down 1.0 kB, up 500 bytes)"));
  QTest::keyClick(&chart, Qt::Key_Right, Qt::ShiftModifier);
  QTest::keyClick(&chart, Qt::Key_Return);
  ASSERT_EQ(chosen.size(), 1);
  EXPECT_EQ(chosen[0][0].value<LogTime>(), chart.bars().bars[1].from);
  EXPECT_EQ(chosen[0][1].value<LogTime>(), chart.bars().bars[2].to);
  QTest::mousePress(&chart, Qt::LeftButton, {}, QPoint(395, 100));
  QTest::mouseMove(&chart, QPoint(100, 100));
  QTest::mouseRelease(&chart, Qt::LeftButton, {}, QPoint(100, 100));
  ASSERT_EQ(chosen.size(), 2);
  EXPECT_EQ(chosen[1][1].value<LogTime>(), chart.bars().bars[7].to);
  chart.setBars({});
  QTest::keyClick(&chart, Qt::Key_Return);
  chart.grab();
  EXPECT_EQ(chosen.size(), 2);
}

TEST(HourGridTest, TellsTheBusiestHoursFirst) {
  HourGrid grid(QStringLiteral("Bytes"));
  HourValues values{};
  values[0][8] = 2'000;
  values[6][23] = 5'000;
  grid.setValues(values);
  EXPECT_EQ(grid.asText(), QStringLiteral("Sun 23:00 - 24:00: 5.0 kB\nMon 8:00 - 9:00: 2.0 kB"));
  grid.grab();
}

class LogViewTest : public testing::Test {
 protected:
  void show(std::string_view log) {
    const auto opened = systemFiles().open(m_folder.write("a.log", log), OpenMode::Read);
    const std::shared_ptr<const File> file = std::move(const_cast<Result<std::unique_ptr<File>>&>(opened).value());
    const auto index = std::make_shared<LineIndex>();
    ASSERT_TRUE(index->build(*file, [](std::uint64_t) { return true; }).isOk());
    view.resize(500, 300);
    view.show(file, index, {}, TextEncoding::Utf8);
    view.QWidget::show();
  }

  LogView view;

 private:
  TempFolder m_folder;
};

TEST_F(LogViewTest, KeysGoThroughALogOfAnyLengthAndCopyItsLines) {
  std::string log;
  for (int i = 1; i <= 100'000; ++i)
    log += "line " + std::to_string(i) + "\n";
  show(log);
  EXPECT_EQ(view.lineCount(), 100'000U);
  QTest::keyClick(&view, Qt::Key_End);
  EXPECT_EQ(view.currentLine(), 99'999U);
  QTest::keyClick(&view, Qt::Key_Up, Qt::ShiftModifier);
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("line 99999\nline 100000\n"));
  view.goToOffset(log.find("line 5000\n") + 3);
  EXPECT_EQ(view.currentLine(), 4'999U);
  EXPECT_EQ(view.accessibleDescription(), QStringLiteral("line 5000"));
  EXPECT_EQ(view.currentOffset(), log.find("line 5000\n"));
  view.grab();
}

TEST_F(LogViewTest, AnEmptyLogHasNoCurrentLine) {
  show("");
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_PageUp})
    QTest::keyClick(&view, key);
  view.goToOffset(10);
  view.copySelection();
  view.grab();
  EXPECT_EQ(view.currentLine(), 0U);
}

}  // namespace
}  // namespace quorvel::test
