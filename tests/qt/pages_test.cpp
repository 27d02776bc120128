// An administrator's questions, from opening a log to the answer.
#include <sstream>

#include "cli/named_commands.h"
#include "tests/qt/pages_fixture.h"
#include "ui/qt/pages/log_page.h"
#include "ui/qt/pages/log_view.h"
#include "ui/qt/text.h"

namespace quorvel::test {
namespace {

class QuestionsTest : public PagesTest, public testing::WithParamInterface<const char*> {
 protected:
  QuestionsTest() { openAndRead(sample(GetParam())); }
};

INSTANTIATE_TEST_SUITE_P(Samples, QuestionsTest, testing::Values("ftp-server.log", "serv-u.log"));

TEST_P(QuestionsTest, OpeningShowsTheOverviewWithNumbersThatLead) {
  EXPECT_EQ(pages.page(), PageName::Overview);
  EXPECT_TRUE(label("overviewHead").find(GetParam()) != std::string::npos) << label("overviewHead");
  const auto sessions = pages.reading()->activity()->sessions.size();
  auto& tile = part<QPushButton>(window, "tile_sessions");
  EXPECT_EQ(tile.text().toStdString(), "Sessions\n" + std::to_string(sessions));
  tile.click();
  settle();
  EXPECT_EQ(pages.page(), PageName::Sessions);
  EXPECT_EQ(table("SessionsTable").rows().rowCount(), static_cast<int>(sessions));
}

TEST_P(QuestionsTest, WhoTriedToGetIn) {
  show(PageName::Logins);  // one step
  TableBox& addresses = table("LoginsTable");
  ASSERT_GT(addresses.rows().rowCount(), 0);
  addresses.setCurrentIndex(addresses.rows().index(0, 0));  // two
  TableBox& attempts = table("AttemptsTable");
  ASSERT_TRUE(QTest::qWaitFor([&attempts] { return attempts.rows().rowCount() > 0; }));
  EXPECT_EQ(cell(attempts, 0, "address"), cell(addresses, 0, "address"));
  auto& lines = part<QPlainTextEdit>(part<QWidget>(window, "Logins"), "sessionLines");
  EXPECT_TRUE(QTest::qWaitFor([&lines] { return lines.toPlainText().contains(QStringLiteral("USER")); }));
  EXPECT_FALSE(lines.toPlainText().contains(QStringLiteral("PASS xxxxx"))) << "passwords are not shown here";
}

TEST_P(QuestionsTest, WhatHappenedToAFile) {
  show(PageName::Files);
  const int all = table("FilesTable").rows().rowCount();
  ASSERT_GT(all, 0);
  const std::string path = cell(table("FilesTable"), 0, "path");
  type(QStringLiteral("path:\"%1\"").arg(QString::fromStdString(path)));
  EXPECT_GT(table("FilesTable").rows().rowCount(), 0);
  EXPECT_LT(table("FilesTable").rows().rowCount(), all);
  EXPECT_EQ(cell(table("FilesTable"), 0, "path"), path);
}

TEST_P(QuestionsTest, WhatDidOneUserFetch) {
  show(PageName::Transfers);
  auto& choice = part<QComboBox>(part<QWidget>(window, "Transfers"), "show");
  choice.setCurrentIndex(1);
  emit choice.activated(1);
  settle();
  const std::string user = cell(table("TransfersTable"), 0, "user");
  type(QStringLiteral("user:%1").arg(QString::fromStdString(user)));
  ASSERT_GT(table("TransfersTable").rows().rowCount(), 0);
  for (int row = 0; row < table("TransfersTable").rows().rowCount(); ++row)
    EXPECT_EQ(cell(table("TransfersTable"), row, "user"), user);
}

TEST_P(QuestionsTest, WhatBrokeAndHowMuchTrafficWasThere) {
  show(PageName::Transfers);
  TableBox& broken = table("TransfersTable");
  ASSERT_GT(broken.rows().rowCount(), 0);
  EXPECT_FALSE(cell(broken, 0, "cause").empty());
  show(PageName::Traffic);
  TableBox& traffic = table("TrafficTable");
  ASSERT_GT(traffic.rows().rowCount(), 1);
  EXPECT_EQ(cell(traffic, traffic.rows().rowCount() - 1, "user"), "total");
}

TEST_P(QuestionsTest, WhatAPageExportsIsWhatTheShellWrites) {
  if (!isNamedCommand("sessions")) GTEST_SKIP() << "built without commands that have a name";
  struct Same {
    PageName page;
    std::vector<std::string> command;
  };
  const std::vector<Same> questions{{PageName::Sessions, {"sessions"}},
                                    {PageName::Logins, {"logins"}},
                                    {PageName::Files, {"files"}},
                                    {PageName::Transfers, {"transfers"}},
                                    {PageName::Traffic, {"traffic", "--by", "user"}}};
  for (const char* const user : {"", "alice"}) {
    type(*user != '\0' ? QStringLiteral("user:") + QString::fromLatin1(user) : QString());
    for (const auto& [page, command] : questions) {
      for (const std::string format : {"csv", "jsonl"}) {
        show(page);
        dialogs.answer = folder / ("page." + format);
        pages.exportShown();
        std::vector<std::string> arguments{command.front(), sample(GetParam()).string()};
        arguments.insert(arguments.end(), command.begin() + 1, command.end());
        const std::string shellFile = (folder / "shell").string();
        for (const std::string& argument : {std::string("--format"), format, std::string("--output"), shellFile})
          arguments.push_back(argument);
        if (*user != '\0') arguments.insert(arguments.end(), {"--user", user});
        std::ostringstream errors;
        EXPECT_EQ(runNamedCommand(arguments, {systemFiles(), errors, 0, false, {}}), 0) << errors.str();
        EXPECT_EQ(readFile(dialogs.answer), readFile(shellFile)) << command[0] << ' ' << format << ' ' << user;
        EXPECT_TRUE(format != "csv" || !readFile(shellFile).empty()) << "there is a header line at least";
      }
    }
  }
}

class PagesWindowTest : public PagesTest {};

TEST_F(PagesWindowTest, WithoutALogThePagesShowWhatTheProgramTells) {
  EXPECT_TRUE(part<QPushButton>(window, "openLog").isVisible());
  EXPECT_FALSE(part<QWidget>(window, "scope").isVisible());
  openAndRead(folder.write("notes.txt", "Shopping list\nmilk\n<b>bread</b>\n"));
  EXPECT_TRUE(part<QPushButton>(window, "openLog").isVisible());
  EXPECT_TRUE(label("startProblem").find("Shopping list") != std::string::npos) << label("startProblem");
  show(PageName::Log);
  EXPECT_TRUE(QTest::qWaitFor([this] { return part<LogView>(window, "logView").lineCount() == 3; }))
      << "the raw lines can be looked at all the same";
}

TEST_F(PagesWindowTest, TheSessionTreeKeepsItsMenuAndOtherPagesHaveTheirOwnKeys) {
  openAndRead(sample("ftp-server.log"));
  const auto works = [this](MenuItem item) { return window.menus().action(item).isEnabled(); };
  EXPECT_FALSE(works(MenuItem::mnuPrint) || works(MenuItem::mnuGotoPosition) || works(MenuItem::mnuCountAllTransfers));
  EXPECT_TRUE(works(MenuItem::mnuOpenLogFile) && works(MenuItem::mnuFindUsers));
  choose(MenuItem::mnuFindUsers);
  EXPECT_EQ(pages.page(), PageName::SessionTree) << "where its result appears";
  EXPECT_TRUE(works(MenuItem::mnuPrint) && works(MenuItem::mnuCountAllTransfers));
  EXPECT_GT(commands.state().tree.nodeCount(), 0);
}

TEST_F(PagesWindowTest, WordsNarrowEveryPageAndAMistakeIsToldInTheBox) {
  openAndRead(sample("ftp-server.log"));
  show(PageName::Sessions);
  TableBox& sessions = table("SessionsTable");
  const int all = sessions.rows().rowCount();
  type(QStringLiteral("user:alice"));
  const int some = sessions.rows().rowCount();
  EXPECT_TRUE(some > 0 && some < all);
  EXPECT_EQ(label("scopeCount"), std::to_string(some) + " of " + std::to_string(all));
  auto& box = part<QLineEdit>(window, "scopeWords");
  box.selectAll();
  box.insert(QStringLiteral("nokey:alice"));
  emit box.textEdited(box.text());
  settle();
  EXPECT_EQ(sessions.rows().rowCount(), some) << "nothing jumps";
  EXPECT_FALSE(box.accessibleDescription().isEmpty());
  type(QStringLiteral("nobody-of-this-name"));
  EXPECT_EQ(sessions.rows().rowCount(), 0);
  EXPECT_TRUE(sessions.accessibleDescription().contains(QStringLiteral("words above")));
  QTest::keyClick(&box, Qt::Key_Escape);
  settle();
  EXPECT_EQ(sessions.rows().rowCount(), all);
}

TEST_F(PagesWindowTest, TablesSortByAnyColumnAndKeepTheirRow) {
  openAndRead(sample("ftp-server.log"));
  show(PageName::Sessions);
  TableBox& sessions = table("SessionsTable");
  sessions.setCurrentIndex(sessions.rows().index(3, 0));
  const RowSource chosen = sessions.rows().source(3);
  for (int column = 0; column < sessions.rows().columnCount(); ++column) {
    for (const auto order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
      sessions.horizontalHeader()->setSortIndicator(column, order);
      settle();
      EXPECT_EQ(sessions.rows().source(sessions.currentIndex().row()).row, chosen.row) << column;
      const auto value = [&sessions, column](int row) {
        return sessions.rows().index(row, column).data(TableModel::kSortRole);
      };
      for (int row = 1; row < sessions.rows().rowCount(); ++row) {
        const bool isNumber = value(row).typeId() == QMetaType::LongLong;
        if (!isNumber || value(row - 1).isNull()) continue;
        EXPECT_TRUE(order == Qt::AscendingOrder ? value(row - 1).toLongLong() <= value(row).toLongLong()
                                                : value(row - 1).toLongLong() >= value(row).toLongLong());
      }
    }
  }
}

TEST_F(PagesWindowTest, FindMarksAndCountsHitsInTheLinesAndInTheLog) {
  openAndRead(sample("ftp-server.log"));
  show(PageName::Sessions);
  TableBox& sessions = table("SessionsTable");
  sessions.setCurrentIndex(sessions.rows().index(0, 0));
  QWidget& page = part<QWidget>(window, "Sessions");
  auto& lines = part<QPlainTextEdit>(page, "sessionLines");
  ASSERT_TRUE(QTest::qWaitFor([&lines] { return lines.toPlainText().contains(QStringLiteral("220")); }));
  QTest::keyClicks(&part<QLineEdit>(page, "findInLines"), QStringLiteral("transfer complete"));
  const auto expected = lines.toPlainText().count(QStringLiteral("Transfer complete"));
  EXPECT_EQ(part<QLabel>(page, "findHits").text(), QStringLiteral("%1 hits").arg(expected));
  show(PageName::Log);
  auto& view = part<LogView>(window, "logView");
  ASSERT_TRUE(QTest::qWaitFor([&view] { return view.lineCount() == 498; })) << view.lineCount();
  const QByteArray log = QByteArray::fromStdString(readFile(sample("ftp-server.log")));
  for (const bool isRegex : {false, true}) {
    part<QCheckBox>(window, "isRegex").setChecked(isRegex);
    auto& find = part<QLineEdit>(window, "findInLog");
    find.clear();
    QTest::keyClicks(&find, isRegex ? QStringLiteral("^.*starting ftp") : QStringLiteral("starting ftp server"));
    QTest::keyClick(&find, Qt::Key_Return);
    const auto hits = log.count("Starting FTP Server");
    const QString told = hits == 1 ? QStringLiteral("1 hit") : QStringLiteral("%1 hits").arg(hits);
    EXPECT_TRUE(QTest::qWaitFor([this, &told] { return part<QLabel>(window, "logHits").text() == told; }))
        << label("logHits");
    EXPECT_TRUE(view.lineText(view.currentLine()).contains(QStringLiteral("Starting FTP Server")));
  }
}

TEST_F(PagesWindowTest, GoesToAPositionALineAndATime) {
  openAndRead(sample("ftp-server.log"));
  show(PageName::Log);
  auto& view = part<LogView>(window, "logView");
  ASSERT_TRUE(QTest::qWaitFor([&view] { return view.lineCount() == 498; }));
  auto& field = part<QLineEdit>(window, "goTo");
  for (const auto& [text, line] : {std::pair("line 12", 11), {"1", 0}, {"60", 1}, {"2005-06-06 08:03", 2}}) {
    field.setText(QString::fromLatin1(text));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&view, line = line] { return view.currentLine() == static_cast<quint64>(line); }))
        << text << " " << view.currentLine();
  }
}

TEST_F(PagesWindowTest, ASessionIsShownInTheTreeFromItsRow) {
  openAndRead(sample("ftp-server.log"));
  show(PageName::Sessions);
  TableBox& sessions = table("SessionsTable");
  sessions.setCurrentIndex(sessions.rows().index(1, 0));
  QWidget& page = part<QWidget>(window, "Sessions");
  ASSERT_TRUE(QTest::qWaitFor([&page] { return part<QPushButton>(page, "openInTree").isEnabled(); }));
  part<QPushButton>(page, "openInTree").click();
  EXPECT_EQ(pages.page(), PageName::SessionTree);
  EXPECT_TRUE(window.userInfo().find("bob") != std::string::npos) << window.userInfo();
}

TEST_F(PagesWindowTest, AnotherLogOpenedWhileOneIsReadTakesItsPlace) {
  std::string much;
  for (int i = 0; i < 20'000; ++i)
    much += logSession("000001", "alice", "10.0.0.5");
  open(folder.write("much.log", much));
  open(folder.write("small.log", logSession("000001", "carol", "10.0.0.7")));
  settle();
  EXPECT_EQ(pages.reading()->activity()->sessions.size(), 1U);
  EXPECT_EQ(label("overviewHead").find("much"), std::string::npos);
}

TEST_F(PagesWindowTest, PageColumnsAndSortOrderComeBack) {
  openAndRead(sample("ftp-server.log"));
  show(PageName::Sessions);
  TableBox& sessions = table("SessionsTable");
  const int column = sessions.rows().columnNamed("user");
  sessions.setColumnWidth(column, 222);
  sessions.horizontalHeader()->setSortIndicator(column, Qt::DescendingOrder);
  settle();
  pages.save();
  QSettings kept(toFileName(folder / "pages.ini"), QSettings::IniFormat);
  MainWindow again(dialogs);
  Pages& restored = again.pages();
  restored.start(systemFiles(), folder.path(), kept);
  EXPECT_EQ(restored.page(), PageName::Sessions);
  restored.openLog(sample("ftp-server.log"));
  EXPECT_TRUE(QTest::qWaitFor([&restored] { return restored.isIdle(); }));
  auto& table = part<TableBox>(again, "SessionsTable");
  ASSERT_TRUE(QTest::qWaitFor([&table] { return table.rows().rowCount() > 0; }));
  EXPECT_EQ(table.columnWidth(column), 222);
  EXPECT_EQ(table.sortOrder().column, column);
}

}  // namespace
}  // namespace quorvel::test
