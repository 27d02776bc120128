// Long life: a user who never stops, on the real window, and nothing that grows. QUORVEL_SOAK in the environment says
// how many operations, 300 when it is not set.
#include <gtest/gtest.h>
#include <malloc.h>

#include <QAbstractButton>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmapCache>
#include <QTest>
#include <QWindow>
#include <array>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <iterator>
#include <random>
#include <set>
#include <string>

#include "tests/qt/window_fixture.h"
#ifdef __SANITIZE_ADDRESS__
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace quorvel::test {
namespace {

int operations() {
  const char* const text = std::getenv("QUORVEL_SOAK");
  return text == nullptr ? 300 : std::atoi(text);
}

/// Bytes in use on the heap.
std::size_t liveBytes() {
#ifdef __SANITIZE_ADDRESS__
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}

/// What the open handles lead to, those left out that each of Qt's threads has: it keeps some threads for later
/// lookups.
std::multiset<std::string> openHandles() {
  std::multiset<std::string> targets;
  std::error_code closed;  // the handle of this walk itself
  for (const auto& handle : std::filesystem::directory_iterator("/proc/self/fd")) {
    const std::string target = std::filesystem::read_symlink(handle, closed).string();
    if (target != "anon_inode:[eventfd]") targets.insert(target);
  }
  return targets;
}

/// One start of the program, and what a user does to it from there.
class Desk final : public WindowTest {
 public:
  explicit Desk(unsigned seed) : m_random(seed) {
    QObject::connect(&m_hand, &QTimer::timeout, &m_hand, [this] { onTurn(); });
    m_hand.start(0);
    std::string log;
    for (int i = 1; i <= 300; ++i)
      log += sessionLog(i, "10.0.0." + std::to_string(i % 20), kNames[static_cast<std::size_t>(i) % kNames.size()],
                        i % 3 == 0 ? "Sent file c:\\a.zip successfully (1.00 Kb/sec - 1024 bytes)" : "DELE a.zip");
    m_logs = {folder.write("large.log", log), folder.write("empty.log", {}), folder / "missing.log",
              folder.write("changing.log", log.substr(0, log.size() / 3))};
    rest();
  }

  void doSomething() { act(pick(2) == 0 ? pick(Menus::kItemCount) : Menus::kItemCount + pick(m_others.size())); }
  /// Everything once: what Qt loads and opens at first use is there afterwards.
  void doEverything() {
    for (std::size_t n = 0; n < Menus::kItemCount + m_others.size(); ++n)
      act(n);
  }
  /// To where every start begins: what is then in use can be compared.
  void rest() {
    std::filesystem::remove(folder / "out.txt");
    std::filesystem::remove(folder / "error.log");
    std::filesystem::remove(settings.path());
    settings.WriteDefaultSettingsFile();
    commands.load();
    commands.state().filterMemory = {};
    window.resize(900, 600);
    openAndFind(sessionLog(1, "10.0.0.5", "alice"));
    window.setFilterText({});
    window.setUserInfo({});
    QApplication::clipboard()->clear();
    // At each activation of the window Qt connects this once more.
    QObject::disconnect(window.windowHandle(), SIGNAL(focusObjectChanged(QObject*)), qApp, nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    runEvents();
  }

 private:
  void TestBody() override {}

  template <typename Count>
  Count pick(Count count) {
    return count == 0 ? 0 : static_cast<Count>(m_random() % static_cast<std::size_t>(count));
  }
  void act(std::size_t n) {
    if (n < Menus::kItemCount) {
      chooseItem(static_cast<MenuItem>(n));
    } else {
      m_others[n - Menus::kItemCount]();
    }
    runEvents();
  }
  void chooseItem(MenuItem item) {
    if (item == MenuItem::mnuExit || item == MenuItem::mnuWebVisitWebsite || item == MenuItem::mnuWebSendEmail ||
        item == MenuItem::mnuWebReportBug)
      return;
    const std::array targets = {folder / "out.txt", folder / "no" / "out.txt", std::filesystem::path()};
    dialogs.answer = item == MenuItem::mnuOpenLogFile ? m_logs[pick(m_logs.size())] : targets[pick(targets.size())];
    choose(item);
    if (std::filesystem::exists(folder / "out.txt") && std::filesystem::file_size(folder / "out.txt") > 1'000'000)
      std::filesystem::remove(folder / "out.txt");
  }
  [[nodiscard]] QModelIndex anyNode() {
    const QAbstractItemModel& model = *m_tree.model();
    const QModelIndex top = model.index(pick(model.rowCount()), 0);
    return pick(4) == 0 ? top : model.index(pick(model.rowCount(top)), 0, top);
  }

  /// The user's other hand: whatever is open is played with and closed, whatever runs is now and then stopped.
  void onTurn() {
    if (QWidget* const menu = QApplication::activePopupWidget()) menu->close();
    auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) {
      m_turnsLeft = pick(5);
      if (commands.state().commandRunning && pick(500) == 0) commands.mnuStop_Click();
    } else if (dialog->inherits("QPrintDialog")) {  // printed pages have a test of their own
      QMetaObject::invokeMethod(dialog, "reject", Qt::QueuedConnection);
    } else if (m_turnsLeft-- == 0 || qobject_cast<QFileDialog*>(dialog) != nullptr) {
      m_turnsLeft = pick(5);
      QMetaObject::invokeMethod(dialog, pick(2) == 0 ? "accept" : "reject", Qt::QueuedConnection);
    } else {
      playWith(*dialog);
    }
  }
  /// Buttons are clicked later: another dialog may come of it.
  void playWith(QDialog& dialog) {
    for (QListWidget* const list : dialog.findChildren<QListWidget*>())
      if (pick(2) == 0) list->setCurrentRow(pick(list->count()));
    for (QLineEdit* const field : dialog.findChildren<QLineEdit*>())
      if (!field->isReadOnly()) field->setText(QString::fromLatin1(kInputs[pick(kInputs.size())]));
    const auto buttons = dialog.findChildren<QAbstractButton*>();
    if (buttons.isEmpty()) return;
    auto* const button = buttons[pick(buttons.size())];
    if (button->isVisible()) QMetaObject::invokeMethod(button, "click", Qt::QueuedConnection);
  }

  static constexpr std::array kNames = {"alice", "bob", "<b>carol</b>", "a-name-that-is-longer-than-a-record-allows"};
  static constexpr std::array kInputs = {"1", "5000", "-3", "99999999999", "127.0.0.1", "::1", "no host!", ""};
  std::mt19937 m_random;
  SessionTreeBox& m_tree = window.panes().tree();
  /// What is done apart from choosing menu items.
  const std::vector<std::function<void()>> m_others = {
      [this] {
        const QModelIndex node = anyNode();
        m_tree.scrollTo(node);
        QTest::mouseClick(m_tree.viewport(), Qt::LeftButton, {}, m_tree.visualRect(node).center());
      },
      [this] {
        m_tree.setCurrentIndex(anyNode());
        QTest::keyClick(&m_tree, Qt::Key_Space);
      },
      [this] { m_tree.keyboardSearch(QStringLiteral("b")); },
      [this] {
        QContextMenuEvent press(QContextMenuEvent::Mouse, QPoint(5, 5), window.mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(m_tree.viewport(), &press);
      },
      [this] {
        for (int row = 0; row < m_tree.model()->rowCount(); ++row)
          m_tree.setExpanded(m_tree.model()->index(row, 0), pick(2) == 0);
      },
      [this] { window.resize(300 + pick(900), 200 + pick(700)); },
      [this] {
        window.panes().filter().selectAll();
        window.panes().filter().copy();
      },
      [this] {  // as the server, or somebody else, changes it
        const std::string old = folder.read("changing.log");
        const std::string line = sessionLog(7, "10.0.0.7", "zoe");
        const std::string texts[] = {old.substr(0, pick(old.size() + 1)), line + line,
                                     old.substr(0, 100'000) + line + line + line};
        folder.write("changing.log", texts[pick(3)]);
        if (pick(4) == 0) std::filesystem::remove(folder / "changing.log");
      },
      [this] { commands.openLogFile(m_logs[pick(m_logs.size())]); },
      [this] {  // as an editor changes any setting
        constexpr std::array kValues = {"0", "1", "2", "-1", "x"};
        std::string text = folder.read("quorvel.ini");
        const auto value = text.find('=', pick(text.size() + 1)) + 1;
        text.replace(value, text.find('\r', value) - value, kValues[pick(kValues.size())]);
        folder.write("quorvel.ini", text);
        commands.toggleAutoFilter();
      },
      [this] {
        FileRequest request;
        request.filter = "Log (*.*)|*.*";
        request.folder = folder.path();
        (void)QtFileDialogs().askOpenFile(&window, request);
      }};
  std::vector<std::filesystem::path> m_logs;
  QTimer m_hand;
  int m_turnsLeft = 0;
};

/// Runs a start of the program and returns how much more memory it has at its end than after a fifth of the way.
std::ptrdiff_t growthOf(Desk& desk, int count) {
  for (int i = 0; i < count / 5; ++i)
    desk.doSomething();
  desk.rest();
  const auto handles = openHandles();
  const std::size_t bytes = liveBytes();
  for (int i = count / 5; i < count && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE("operation " + std::to_string(i));
    desk.doSomething();
  }
  desk.rest();
  constexpr std::ptrdiff_t kMostThreads = 25;  // Qt's lookups take up to 20
  EXPECT_LE(std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}), kMostThreads);
  // A lookup given up on may still be on its way.
  EXPECT_TRUE(QTest::qWaitFor([&handles] { return openHandles().size() <= handles.size(); }))
      << testing::PrintToString(handles) << "\nnow " << testing::PrintToString(openHandles());
  return static_cast<std::ptrdiff_t>(liveBytes()) - static_cast<std::ptrdiff_t>(bytes);
}

TEST(Soak, NeitherMemoryNorHandlesGrow) {
  constexpr int kStarts = 5;
  constexpr std::ptrdiff_t kAllowed = 128 * 1024;
  QPixmapCache::setCacheLimit(0);  // it lets go of its pixmaps now and then only
  std::size_t handles = 0;
  std::size_t bytes = 0;
  for (unsigned start = 1; start <= kStarts && !HasFailure(); ++start) {
    std::ptrdiff_t grown = 0;
    {
      Desk desk(start);
      if (start == 1) desk.doEverything();
      grown = growthOf(desk, operations() / kStarts);
      EXPECT_LT(grown, kAllowed) << "start " << start;
    }
    if (start == 1) {
      handles = openHandles().size();
      bytes = liveBytes();
    }
    std::cout << "start " << start << ": " << grown << " bytes more at the end, " << liveBytes() << " bytes and "
              << openHandles().size() << " handles behind it\n";
  }
  EXPECT_LE(openHandles().size(), handles);
  EXPECT_LT(static_cast<std::ptrdiff_t>(liveBytes()), static_cast<std::ptrdiff_t>(bytes) + kAllowed);
}

}  // namespace
}  // namespace quorvel::test
