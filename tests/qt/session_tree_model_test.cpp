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

  SessionTree m_tree;
  std::int32_t m_records = 0;
  SessionTreeModel m_model{m_tree};
  QAbstractItemModelTester m_tester{&m_model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(SessionTreeModelTest, ShowsTheTreeAndItsChanges) {
  fill();
  EXPECT_EQ(rowTexts(m_model), "anna| Mon 1| Tue 2|berta| Mon 3|carl");
  EXPECT_FALSE(m_model.index(3, 0).isValid() || m_model.index(0, 1).isValid());
  m_model.beginChange();
  EXPECT_EQ(m_model.rowCount(), 0) << "the tree must not be looked at";
  m_tree.clear({"", ""});
  add("x", {"y"});                // its key is "4y"
  m_tree.addChild("4y", 5, "z");  // which a user's name happens to be
  m_model.endChange();
  EXPECT_EQ(rowTexts(m_model), "x| y");
  EXPECT_EQ(m_model.indexOf(3).data().toString(), QStringLiteral("z")) << "a session below a session";
  EXPECT_EQ(m_model.indexOf(3).parent(), m_model.indexOf(2));
}

TEST_F(SessionTreeModelTest, TypeAheadFindsNamesOnTheScreenAndGoesRound) {
  fill();
  using Nodes = std::unordered_set<std::int32_t>;
  const std::tuple<const char*, std::int32_t, bool, Nodes, std::int32_t> cases[] = {
      // found, from a node, or on it
      {"BER", 0, false, {}, 4},  {"a", 6, false, {}, 1},     {"", 4, true, {}, 4},     {"Mon", 0, false, {}, 0},
      {"Mon", 0, false, {4}, 5}, {"anna", 5, false, {4}, 1}, {"zzz", 2, false, {}, 0},  // 2: closed meanwhile
      {"carl", 2, false, {1}, 6}};
  for (const auto& [typed, from, includesFrom, open, found] : cases)
    EXPECT_EQ(m_model.findText(QString::fromLatin1(typed), from, includesFrom, open), found) << typed;
}

TEST_F(SessionTreeModelTest, KeysAndTheMouseMoveCheckFindAndClick) {
  fill();
  QObject::connect(&m_model, &SessionTreeModel::checkRequested, &m_model,
                   [this](std::int32_t node, bool checked) { m_tree.setChecked(node, checked); });
  EXPECT_FALSE(m_model.setData(m_model.index(0, 0), Qt::Checked, Qt::CheckStateRole)) << "only while check boxes show";
  SessionTreeBox box;
  const QSignalSpy clicks(&box, &SessionTreeBox::nodeClicked);
  m_model.showCheckBoxes(true);
  box.showModel(&m_model);
  box.show();
  const QRect carl = box.visualRect(m_model.index(2, 0));
  QTest::mouseClick(box.viewport(), Qt::RightButton, {}, carl.center());
  EXPECT_FALSE(box.currentIndex().isValid());
  QTest::mouseClick(box.viewport(), Qt::LeftButton, {}, carl.topLeft() + QPoint(10, carl.height() / 2));
  EXPECT_TRUE(m_tree.isChecked(6));
  box.setCurrentIndex(m_model.index(0, 0));
  QTest::keyClick(&box, Qt::Key_Down);
  QTest::keyClick(&box, Qt::Key_Space);
  EXPECT_TRUE(m_tree.isChecked(4));
  EXPECT_EQ(clicks.size(), 0) << "a check box is no node";
  QTest::keyClick(&box, Qt::Key_Return);
  QTest::mouseClick(box.viewport(), Qt::LeftButton, {}, carl.center());
  EXPECT_EQ(clicks.size(), 2);
  box.setCurrentIndex(m_model.index(0, 0));
  QTest::keyClicks(&box, QStringLiteral("ca"));
  EXPECT_EQ(SessionTreeModel::nodeOf(box.currentIndex()), 6);
}

TEST(SessionTreeBoxTest, AMillionSessionsOfOneUserExpandScrollAndCheckWithoutAPause) {
  SessionTree tree;
  tree.addParent("anonymous");
  for (std::int32_t record = 1; record <= 1'000'000; ++record)
    tree.addChild("anonymous", record, " Mon 05Mar01 10:15:02");
  SessionTreeModel model(tree);
  SessionTreeBox box;
  QElapsedTimer time;
  time.start();
  box.showModel(&model);
  box.show();
  box.expand(model.index(0, 0));
  box.setCurrentIndex(model.indexOf(tree.nodeCount()));
  box.keyboardSearch(QStringLiteral("zzz"));
  box.showCheckBoxes(true);
  QCoreApplication::processEvents();
  EXPECT_LT(time.elapsed(), 5'000) << "far above what it takes, far below what items of Qt's own would need";
  EXPECT_EQ(box.currentIndex(), model.indexOf(1'000'001));
}

}  // namespace
}  // namespace quorvel::test
