#include "ui/qt/session_tree_model.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "tests/qt/row_texts.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/text.h"

namespace quorvel::test {
namespace {

constexpr SessionTree::KeyPrefixes kPrefixes = {"p", "c"};

const QStringList kSample = {QStringLiteral("anna"),  QStringLiteral(" Mon 1"), QStringLiteral(" Tue 2"),
                             QStringLiteral("berta"), QStringLiteral(" Mon 3"), QStringLiteral("carl")};

class SessionTreeModelTest : public testing::Test {
 protected:
  /// Lines of names; those indented by a blank are sessions of the name above.
  void fill(const QStringList& lines) {
    m_model.beginChange();
    m_tree.clear(kPrefixes);
    std::string parent;
    std::int32_t record = 0;
    for (const QString& line : lines) {
      const std::string text = toBytes(line.trimmed());
      if (line.startsWith(u' ')) {
        m_tree.addChild(parent, ++record, text);
      } else {
        m_tree.addParent(parent = text);
      }
    }
    m_model.endChange();
  }

  void showInBox() {
    fill(kSample);
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
  SessionTreeModel m_model{m_tree};
  SessionTreeBox m_box;
  QSignalSpy m_clicks{&m_box, &SessionTreeBox::nodeClicked};
  QAbstractItemModelTester m_tester{&m_model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(SessionTreeModelTest, ShowsTheTreeAndItsChanges) {
  EXPECT_EQ(rowTexts(m_model), QStringList());
  fill(kSample);
  EXPECT_EQ(rowTexts(m_model), kSample);
  EXPECT_FALSE(m_model.index(3, 0).isValid());
  EXPECT_FALSE(m_model.index(0, 1).isValid());
  EXPECT_FALSE(m_model.index(2, 0, m_model.index(0, 0)).isValid());
  EXPECT_EQ(m_model.indexOf(3), m_model.index(1, 0, m_model.index(0, 0)));
  m_model.beginChange();
  EXPECT_EQ(m_model.rowCount(), 0) << "the tree must not be looked at";
  m_tree.clear();
  m_model.endChange();
  EXPECT_EQ(rowTexts(m_model), QStringList());
}

TEST_F(SessionTreeModelTest, ASessionBelowASessionIsShownThere) {
  m_model.beginChange();
  m_tree.clear({"", ""});
  m_tree.addParent("x");
  m_tree.addChild("x", 1, "y");   // its key is "1y"
  m_tree.addChild("1y", 2, "z");  // which a user's name happens to be
  m_model.endChange();
  const QModelIndex inner = m_model.indexOf(3);
  EXPECT_EQ(inner.data().toString(), QStringLiteral("z"));
  EXPECT_EQ(inner.parent(), m_model.indexOf(2));
  EXPECT_EQ(m_model.findText(QStringLiteral("z"), 1, false, {1, 2}), 3);
}

TEST_F(SessionTreeModelTest, TypeAheadFindsNamesOnTheScreenAndGoesRound) {
  fill(kSample);
  EXPECT_EQ(m_model.findText(QStringLiteral("BER"), 0, false, {}), 4);
  EXPECT_EQ(m_model.findText(QStringLiteral("a"), 6, false, {}), 1);
  EXPECT_EQ(m_model.findText(QStringLiteral("a"), 1, true, {}), 1);
  EXPECT_EQ(m_model.findText(QStringLiteral("Mon"), 0, false, {}), 0);
  EXPECT_EQ(m_model.findText(QStringLiteral("Mon"), 0, false, {4}), 5);
  EXPECT_EQ(m_model.findText(QStringLiteral("anna"), 5, false, {4}), 1);
  EXPECT_EQ(m_model.findText(QStringLiteral("zzz"), 2, false, {}), 0) << "a session in a branch closed meanwhile";
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
  constexpr std::int32_t kSessions = 1'000'000;
  SessionTree tree;
  tree.clear(kPrefixes);
  tree.addParent("anonymous");
  for (std::int32_t record = 1; record <= kSessions; ++record)
    tree.addChild("anonymous", record, "Mon 05Mar01 10:15:02");
  tree.seal();
  SessionTreeModel model(tree);
  SessionTreeBox box;
  box.resize(300, 400);
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
  EXPECT_EQ(box.currentIndex(), model.indexOf(tree.nodeCount()));
}

}  // namespace
}  // namespace quorvel::test
