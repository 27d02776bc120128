#include "ui/qt/session_tree_model.h"

#include "tests/qt/window_fixture.h"

namespace quorvel::test {
namespace {

class SessionTreeModelTest : public testing::Test {
 protected:
  void add(std::string_view parent, std::initializer_list<std::string_view> children) {
    m_tree.addParent(parent);
    for (const std::string_view child : children)
      m_tree.addChild(parent, ++m_records, child);
  }
  void fill() {
    m_model.beginChange();
    m_tree.clear({"p", "c"});
    add("anna", {"Mon 1", "Tue 2"});
    add("berta", {"Mon 3"});
    add("carl", {});
    m_model.endChange();
  }
  void showInBox() {
    fill();
    QObject::connect(&m_model, &SessionTreeModel::checkRequested, &m_model,
                     [this](std::int32_t node, bool checked) { m_tree.setChecked(node, checked); });
    const QModelIndex first = m_model.index(0, 0);
    EXPECT_FALSE(m_model.setData(first, Qt::Checked, Qt::CheckStateRole)) << "only while check boxes show";
    EXPECT_FALSE(first.data(Qt::CheckStateRole).isValid());
    m_model.showCheckBoxes(true);
    m_box.showModel(&m_model);
    m_box.resize(300, 200);
    m_box.show();
  }

  SessionTree m_tree;
  std::int32_t m_records = 0;
  SessionTreeModel m_model{m_tree};
  SessionTreeBox m_box;
  QSignalSpy m_clicks{&m_box, &SessionTreeBox::nodeClicked};
  QAbstractItemModelTester m_tester{&m_model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(SessionTreeModelTest, ShowsTheTreeAndItsChanges) {
  EXPECT_EQ(rowTexts(m_model), "");
  fill();
  EXPECT_EQ(rowTexts(m_model), "anna| Mon 1| Tue 2|berta| Mon 3|carl");
  const QModelIndex anna = m_model.index(0, 0);
  EXPECT_EQ(m_model.indexOf(3), m_model.index(1, 0, anna));
  for (const QModelIndex& none : {m_model.index(3, 0), m_model.index(0, 1), m_model.index(2, 0, anna)})
    EXPECT_FALSE(none.isValid());
  m_model.beginChange();
  EXPECT_EQ(m_model.rowCount(), 0) << "the tree must not be looked at";
  m_tree.clear({"", ""});
  add("x", {"y"});                // its key is "4y"
  m_tree.addChild("4y", 5, "z");  // which a user's name happens to be
  m_model.endChange();
  EXPECT_EQ(rowTexts(m_model), "x| y");
  EXPECT_EQ(m_model.indexOf(3).data().toString(), QStringLiteral("z")) << "a session below a session";
  EXPECT_EQ(m_model.indexOf(3).parent(), m_model.indexOf(2));
  EXPECT_EQ(m_model.findText(QStringLiteral("z"), 1, false, {1, 2}), 3);
}

TEST_F(SessionTreeModelTest, TypeAheadFindsNamesOnTheScreenAndGoesRound) {
  fill();
  using Nodes = std::unordered_set<std::int32_t>;
  const std::tuple<const char*, std::int32_t, bool, Nodes, std::int32_t> cases[] = {
      // found, from a node, or on it
      {"BER", 0, false, {}, 4},  {"a", 6, false, {}, 1},     {"", 4, true, {}, 4},    {"Mon", 0, false, {}, 0},
      {"Mon", 0, false, {4}, 5}, {"anna", 5, false, {4}, 1}, {"zzz", 2, false, {}, 0}};  // 2: closed meanwhile
  for (const auto& [typed, from, includesFrom, open, found] : cases)
    EXPECT_EQ(m_model.findText(QString::fromLatin1(typed), from, includesFrom, open), found) << typed;
}

TEST_F(SessionTreeModelTest, KeysMoveCheckFindAndClick) {
  showInBox();
  m_box.setCurrentIndex(m_model.index(0, 0));
  QTest::keyClick(&m_box, Qt::Key_Down);
  QTest::keyClick(&m_box, Qt::Key_Space);
  EXPECT_EQ(m_box.currentIndex().data(Qt::CheckStateRole).toInt(), Qt::Checked);
  EXPECT_EQ(m_clicks.size(), 0);
  QTest::keyClick(&m_box, Qt::Key_Return);
  ASSERT_EQ(m_clicks.size(), 1);
  EXPECT_EQ(m_clicks[0][0].toInt(), 4);
  QTest::keyClicks(&m_box, QStringLiteral("ca"));
  EXPECT_EQ(SessionTreeModel::nodeOf(m_box.currentIndex()), 6);
}

TEST_F(SessionTreeModelTest, TheLeftButtonClicksANodeOrItsCheckBoxAndNotBoth) {
  showInBox();
  const QRect row = m_box.visualRect(m_model.index(1, 0));
  QTest::mouseClick(m_box.viewport(), Qt::RightButton, {}, row.center());
  EXPECT_EQ(m_clicks.size(), 0);
  EXPECT_FALSE(m_box.currentIndex().isValid());
  QTest::mouseClick(m_box.viewport(), Qt::LeftButton, {}, row.center());
  EXPECT_EQ(m_clicks.size(), 1);
  QTest::mouseClick(m_box.viewport(), Qt::LeftButton, {}, row.topLeft() + QPoint(10, row.height() / 2));
  EXPECT_TRUE(m_tree.isChecked(4));
  EXPECT_EQ(m_clicks.size(), 1) << "a click on the check box is no click on the node";
}

TEST(SessionTreeBoxTest, AMillionSessionsOfOneUserExpandScrollAndCheckWithoutAPause) {
  SessionTree tree;
  tree.addParent("anonymous");
  for (std::int32_t record = 1; record <= 1'000'000; ++record)
    tree.addChild("anonymous", record, " Mon 05Mar01 10:15:02");
  SessionTreeModel model(tree);
  SessionTreeBox box;
  box.showModel(&model);
  const std::function<void()> steps[] = {
      [&] { box.show(); },
      [&] { box.expand(model.index(0, 0)); },
      [&] { box.verticalScrollBar()->setValue(box.verticalScrollBar()->maximum() / 2); },
      [&] { box.setCurrentIndex(model.indexOf(tree.nodeCount())); },
      [&] { box.keyboardSearch(QStringLiteral("zzz")); },
      [&] { box.showCheckBoxes(true); },
      [&] { model.setData(model.indexOf(500), Qt::Checked, Qt::CheckStateRole); }};
  for (const auto& step : steps) {
    QElapsedTimer time;
    time.start();
    step();
    QCoreApplication::processEvents();
    EXPECT_LT(time.elapsed(), 5'000) << "far above what it takes, far below what items of Qt's own would need";
  }
  EXPECT_EQ(box.currentIndex(), model.indexOf(1'000'001));
}

}  // namespace
}  // namespace quorvel::test
