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

auto threadCount() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

std::string joined(const std::multiset<std::string>& names) {
  std::string text;
  for (const std::string& name : names)
    text += name + ' ';
  return text;
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

  void doSomething() {
    if (pick(2) == 0) {
      chooseItem(static_cast<MenuItem>(pick(Menus::kItemCount)));
    } else {
      (this->*kOthers[pick(kOthers.size())])();
    }
    runEvents();
  }
  /// Everything once: what Qt loads and opens at first use is there afterwards.
  void doEverything() {
    for (std::size_t item = 0; item < Menus::kItemCount; ++item)
      chooseItem(static_cast<MenuItem>(item));
    for (const auto other : kOthers)
      (this->*other)();
    runEvents();
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

  std::size_t pick(std::size_t count) { return m_random() % count; }

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
    const QAbstractItemModel& model = *window.panes().tree().model();
    if (model.rowCount() == 0) return {};
    const QModelIndex top = model.index(static_cast<int>(pick(static_cast<std::size_t>(model.rowCount()))), 0);
    const int children = model.rowCount(top);
    return pick(4) == 0 ? top : model.index(static_cast<int>(pick(static_cast<std::size_t>(children))), 0, top);
  }
  void clickNode() {
    SessionTreeBox& tree = window.panes().tree();
    const QModelIndex node = anyNode();
    tree.scrollTo(node);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualRect(node).center());
  }
  void tickNode() {
    window.panes().tree().setCurrentIndex(anyNode());
    QTest::keyClick(&window.panes().tree(), Qt::Key_Space);
  }
  void searchTree() { window.panes().tree().keyboardSearch(QStringLiteral("b")); }
  void openPopUp() {
    QContextMenuEvent press(QContextMenuEvent::Mouse, QPoint(5, 5), window.mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(window.panes().tree().viewport(), &press);
  }
  void openBranches() {
    for (int row = 0; row < window.panes().tree().model()->rowCount(); ++row)
      window.panes().tree().setExpanded(window.panes().tree().model()->index(row, 0), pick(2) == 0);
  }
  void resize() { window.resize(300 + static_cast<int>(pick(900)), 200 + static_cast<int>(pick(700))); }
  void copyText() {
    window.panes().filter().selectAll();
    window.panes().filter().copy();
  }
  /// As the server, or somebody else, changes it.
  void changeLog() {
    const std::filesystem::path log = folder / "changing.log";
    const std::string text = sessionLog(7, "10.0.0.7", "zoe");
    const auto size = std::filesystem::exists(log) ? std::filesystem::file_size(log) : 0;
    switch (pick(4)) {
      case 0:
        if (size > 0) std::filesystem::resize_file(log, pick(size));
        break;
      case 1:
        std::filesystem::remove(log);
        break;
      case 2:
        folder.write("changing.log", text + text);
        break;
      default:
        if (size < 100'000) std::ofstream(log, std::ios::app) << text + text + text;
    }
  }
  void dropLog() { commands.openLogFile(m_logs[pick(m_logs.size())]); }
  void changeSetting() {
    constexpr std::array kSettings = {std::pair("OPTION-FILTER", "FilterTransfers"),
                                      std::pair("OPTION-FILTER", "AutoFilterSession"),
                                      std::pair("OPTION-TREEVIEW", "TreeViewType"),
                                      std::pair("OPTION-TREEVIEW", "DisplayQUITUsers"),
                                      std::pair("OPTION-SAVE", "AppendWhenFilter"),
                                      std::pair("MAIN", "TrunkLongUsernames"),
                                      std::pair("OPTION-COUNTER", "GetFilenameOnTransferError"),
                                      std::pair("Main", "LastOpenFile01")};
    constexpr std::array kValues = {"0", "1", "2", "-1", "x"};
    const auto& [section, key] = kSettings[pick(kSettings.size())];
    settings.WriteSetting(section, key, kValues[pick(kValues.size())]);
    commands.toggleAutoFilter();
  }
  void askForFile() {
    FileRequest request;
    request.filter = "Log (*.*)|*.*";
    request.folder = folder.path();
    (void)QtFileDialogs().askOpenFile(&window, request);
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
      if (pick(2) == 0) list->setCurrentRow(static_cast<int>(pick(static_cast<std::size_t>(list->count()))));
    for (QLineEdit* const field : dialog.findChildren<QLineEdit*>())
      if (!field->isReadOnly()) field->setText(QString::fromLatin1(kInputs[pick(kInputs.size())]));
    const auto buttons = dialog.findChildren<QAbstractButton*>();
    if (buttons.isEmpty()) return;
    auto* const button = buttons[static_cast<qsizetype>(pick(static_cast<std::size_t>(buttons.size())))];
    if (button->isVisible()) QMetaObject::invokeMethod(button, "click", Qt::QueuedConnection);
  }

  static constexpr std::array kOthers = {&Desk::clickNode,    &Desk::tickNode,      &Desk::searchTree, &Desk::openPopUp,
                                         &Desk::openBranches, &Desk::resize,        &Desk::copyText,   &Desk::changeLog,
                                         &Desk::dropLog,      &Desk::changeSetting, &Desk::askForFile};
  static constexpr std::array kNames = {"alice", "bob", "<b>carol</b>", "a-name-that-is-longer-than-a-record-allows"};
  static constexpr std::array kInputs = {"1", "5000", "-3", "99999999999", "127.0.0.1", "::1", "no host!", ""};
  std::mt19937 m_random;
  std::vector<std::filesystem::path> m_logs;
  QTimer m_hand;
  std::size_t m_turnsLeft = 0;
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
  EXPECT_LE(threadCount(), kMostThreads);
  // A lookup given up on may still be on its way.
  EXPECT_TRUE(QTest::qWaitFor([&handles] { return openHandles().size() <= handles.size(); }))
      << joined(handles) << "\nnow " << joined(openHandles());
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
