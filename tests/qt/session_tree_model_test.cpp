#include "ui/qt/session_tree_model.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "ui/qt/session_tree_box.h"
#include "ui/qt/text.h"

namespace quorvel::test {
namespace {

constexpr SessionTree::KeyPrefixes kPrefixes = {"p", "c"};

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

  /// The model as lines, the other way round.
  [[nodiscard]] QStringList lines() const {
    QStringList result;
    for (int row = 0; row < m_model.rowCount(); ++row) {
      const QModelIndex parent = m_model.index(row, 0);
      result += parent.data().toString();
      for (int child = 0; child < m_model.rowCount(parent); ++child)
        result += u' ' + m_model.index(child, 0, parent).data().toString();
    }
    return result;
  }

  void obeyChecks() {
    QObject::connect(&m_model, &SessionTreeModel::checkRequested, &m_model,
                     [this](std::int32_t node, bool checked) { m_tree.setChecked(node, checked); });
    m_model.showCheckBoxes(true);
  }

  SessionTree m_tree;
  SessionTreeModel m_model{m_tree};
  QAbstractItemModelTester m_tester{&m_model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

const QStringList kSample = {QStringLiteral("anna"),  QStringLiteral(" Mon 1"), QStringLiteral(" Tue 2"),
                             QStringLiteral("berta"), QStringLiteral(" Mon 3"), QStringLiteral("carl")};

TEST_F(SessionTreeModelTest, ShowsTheTreeAndItsChanges) {
  EXPECT_EQ(lines(), QStringList());
  fill(kSample);
  EXPECT_EQ(lines(), kSample);
  EXPECT_FALSE(m_model.index(3, 0).isValid());
  EXPECT_FALSE(m_model.index(0, 1).isValid());
  EXPECT_FALSE(m_model.index(2, 0, m_model.index(0, 0)).isValid());
  EXPECT_EQ(m_model.indexOf(3), m_model.index(1, 0, m_model.index(0, 0)));
  fill({QStringLiteral("other")});
  EXPECT_EQ(lines(), QStringList(QStringLiteral("other")));
}

TEST_F(SessionTreeModelTest, IsEmptyWhileTheTreeChanges) {
  fill(kSample);
  m_model.beginChange();
  EXPECT_EQ(m_model.rowCount(), 0);
  m_tree.clear();
  m_model.endChange();
  EXPECT_EQ(m_model.rowCount(), 0);
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

TEST_F(SessionTreeModelTest, HostileNamesAreOneLineOfPlainText) {
  const std::string hostile = "<b>bold</b>\r\n\x1b[31m\x81&amp;" + std::string(500, 'x');
  fill({toQString(hostile)});
  const QString shown = m_model.index(0, 0).data().toString();
  EXPECT_TRUE(shown.startsWith(QStringLiteral("<b>bold</b>\u240d\u240a\u241b[31m\u0081&amp;")));
  EXPECT_EQ(shown.size(), static_cast<qsizetype>(hostile.size()));
}

TEST_F(SessionTreeModelTest, ChecksOnlyWhileCheckBoxesShow) {
  fill(kSample);
  const QModelIndex anna = m_model.index(0, 0);
  EXPECT_FALSE(anna.data(Qt::CheckStateRole).isValid());
  EXPECT_FALSE(m_model.setData(anna, Qt::Checked, Qt::CheckStateRole));
  obeyChecks();
  EXPECT_TRUE(m_model.setData(anna, Qt::Checked, Qt::CheckStateRole));
  EXPECT_TRUE(m_tree.isChecked(1));
  EXPECT_EQ(anna.data(Qt::CheckStateRole).toInt(), Qt::Checked);
}

TEST_F(SessionTreeModelTest, TypeAheadFindsNamesOnTheScreenAndGoesRound) {
  fill(kSample);
  EXPECT_EQ(m_model.findText(QStringLiteral("BER"), 0, false, {}), 4);
  EXPECT_EQ(m_model.findText(QStringLiteral("a"), 6, false, {}), 1);
  EXPECT_EQ(m_model.findText(QStringLiteral("a"), 1, true, {}), 1);
  EXPECT_EQ(m_model.findText(QStringLiteral("Mon"), 0, false, {}), 0);
  EXPECT_EQ(m_model.findText(QStringLiteral("Mon"), 0, false, {4}), 5);
  EXPECT_EQ(m_model.findText(QStringLiteral("anna"), 5, false, {4}), 1);
}

TEST_F(SessionTreeModelTest, KeysMoveCheckFindAndClick) {
  fill(kSample);
  obeyChecks();
  SessionTreeBox box;
  box.showModel(&m_model);
  QSignalSpy clicks(&box, &SessionTreeBox::nodeClicked);
  box.show();
  box.setCurrentIndex(m_model.index(0, 0));
  QTest::keyClick(&box, Qt::Key_Down);
  QTest::keyClick(&box, Qt::Key_Space);
  EXPECT_TRUE(m_tree.isChecked(4));
  EXPECT_EQ(clicks.size(), 0);
  QTest::keyClick(&box, Qt::Key_Return);
  ASSERT_EQ(clicks.size(), 1);
  EXPECT_EQ(clicks[0][0].toInt(), 4);
  QTest::keyClicks(&box, QStringLiteral("ca"));
  EXPECT_EQ(SessionTreeModel::nodeOf(box.currentIndex()), 6);
}

TEST_F(SessionTreeModelTest, TheLeftButtonClicksANodeOrItsCheckBoxAndNotBoth) {
  fill(kSample);
  obeyChecks();
  SessionTreeBox box;
  box.showModel(&m_model);
  QSignalSpy clicks(&box, &SessionTreeBox::nodeClicked);
  box.resize(300, 200);
  box.show();
  const QRect row = box.visualRect(m_model.index(1, 0));
  QTest::mouseClick(box.viewport(), Qt::RightButton, {}, row.center());
  EXPECT_EQ(clicks.size(), 0);
  EXPECT_FALSE(box.currentIndex().isValid());
  QTest::mouseClick(box.viewport(), Qt::LeftButton, {}, row.center());
  EXPECT_EQ(clicks.size(), 1);
  QTest::mouseClick(box.viewport(), Qt::LeftButton, {}, row.topLeft() + QPoint(10, row.height() / 2));
  EXPECT_TRUE(m_tree.isChecked(4));
  EXPECT_EQ(clicks.size(), 1) << "a click on the check box is no click on the node";
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
  model.showCheckBoxes(true);
  SessionTreeBox box;
  QElapsedTimer time;
  qint64 worst = 0;
  const auto step = [&](const char* name, auto act) {
    time.start();
    act();
    QCoreApplication::processEvents();
    worst = std::max(worst, time.elapsed());
    testing::Test::RecordProperty(name, static_cast<int>(time.elapsed()));
  };
  box.resize(300, 400);
  box.showModel(&model);
  step("show", [&] { box.show(); });
  step("expand", [&] { box.expand(model.index(0, 0)); });
  step("scroll", [&] { box.verticalScrollBar()->setValue(box.verticalScrollBar()->maximum() / 2); });
  step("last", [&] { box.setCurrentIndex(model.indexOf(tree.nodeCount())); });
  step("search", [&] { box.keyboardSearch(QStringLiteral("zzz")); });
  step("checks", [&] { box.noteChecksChanged(); });
  step("check", [&] { model.setData(model.indexOf(500), Qt::Checked, Qt::CheckStateRole); });
  EXPECT_EQ(box.currentIndex(), model.indexOf(tree.nodeCount()));
  EXPECT_LT(worst, 5'000) << "far above what any step takes, far below what items of Qt's own would need";
}

}  // namespace
}  // namespace quorvel::test
