// Long life: a user who never stops, on the real window, and nothing that grows. QUORVEL_SOAK in the environment says
// how many operations, 480 when it is not set.
#include <malloc.h>

#include <QPixmapCache>
#include <iostream>
#include <optional>
#include <random>

#include "tests/qt/window_fixture.h"
#include "tests/support/sanitizers.h"
#ifdef QUORVEL_ADDRESS_SANITIZER
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace quorvel::test {
namespace {

/// Bytes in use on the heap.
std::ptrdiff_t liveBytes() {
#ifdef QUORVEL_ADDRESS_SANITIZER
  return static_cast<std::ptrdiff_t>(__sanitizer_get_current_allocated_bytes());
#else
  const struct mallinfo2 info = ::mallinfo2();
  return static_cast<std::ptrdiff_t>(info.uordblks + info.hblkhd);
#endif
}

/// Those that each of Qt's threads has are left out: it keeps some threads for later lookups.
std::ptrdiff_t openHandles() {
  return std::count_if(std::filesystem::directory_iterator("/proc/self/fd"), {}, [](const auto& handle) {
    std::error_code closed;  // the handle of this walk itself
    return std::filesystem::read_symlink(handle, closed) != "anon_inode:[eventfd]";
  });
}

/// What the program uses at a moment of rest.
struct Use {
  std::ptrdiff_t handles = openHandles();
  std::ptrdiff_t bytes = liveBytes();

  void expectNoGrowth(const char* when) const {
    constexpr std::ptrdiff_t kAllowed = 128 * 1024;
    constexpr std::ptrdiff_t kMostThreads = 25;  // Qt's lookups take up to 20
    // A lookup given up on may still be on its way.
    EXPECT_TRUE(QTest::qWaitFor([this] { return openHandles() <= handles; })) << handles << " before";
    EXPECT_LE(std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}), kMostThreads);
    EXPECT_LT(liveBytes() - bytes, kAllowed) << when;
    std::cout << when << ": " << liveBytes() - bytes << " bytes more, " << openHandles() << " handles\n";
  }
};

/// One start of the program, and what a user does to it from there.
class Desk final : ProgramWindow {
 public:
  explicit Desk(unsigned seed) : m_random(seed) {
    QObject::connect(&m_hand, &QTimer::timeout, &m_hand, [this] { onTurn(); });
    m_hand.start(0);
    for (int i = 1; i <= 300; ++i)
      m_log += logSession("000001", oneOf(kNames), "10.0.0." + std::to_string(i % 20), "DELE a.zip");
    m_logs = {folder.write("large.log", m_log), folder.write("empty.log", {}), folder / "missing.log",
              folder.write("changing.log", m_log)};
    rest();
  }

  /// Everything once: what Qt loads and opens at first use is there afterwards.
  void doEverything() {
    for (std::size_t n = 0; n < Menus::kItemCount; ++n)
      chooseItem(static_cast<MenuItem>(n));
    for (const auto& action : m_others)
      action();
  }
  void work(int operations) {
    for (; operations > 0; --operations) {
      pick(2) == 0 ? chooseItem(static_cast<MenuItem>(pick(Menus::kItemCount))) : oneOf(m_others)();
      runEvents();
    }
    rest();
  }

 private:
  template <typename Count>
  Count pick(Count count) {
    return count == 0 ? 0 : static_cast<Count>(m_random() % static_cast<std::size_t>(count));
  }
  template <typename List>
  auto oneOf(const List& list) -> decltype(*std::data(list)) {
    return std::data(list)[pick(std::size(list))];
  }
  void chooseItem(MenuItem item) {
    using enum MenuItem;
    if (item == mnuExit || (item >= mnuWebVisitWebsite && item <= mnuWebReportBug)) return;
    const std::filesystem::path targets[] = {folder / "out.txt", folder / "no" / "out.txt", ""};
    dialogs.answer = item == mnuOpenLogFile ? oneOf(m_logs) : oneOf(targets);
    choose(item);
    if (folder.read("out.txt").size() > 1'000'000) std::filesystem::remove(folder / "out.txt");
  }
  /// To where every start begins: what is then in use can be compared.
  void rest() {
    for (const char* left : {"out.txt", "error.log", "quorvel.ini"})
      std::filesystem::remove(folder / left);
    settings.WriteDefaultSettingsFile();
    commands.load();
    commands.state().filterMemory = {};
    window.resize(900, 600);
    open(folder.write("small.log", logSession("000001", "alice", "10.0.0.5")));
    choose(MenuItem::mnuFindUsers);
    window.setFilterText({});
    window.setUserInfo({});
    // At each activation of the window Qt connects this once more.
    QObject::disconnect(window.windowHandle(), SIGNAL(focusObjectChanged(QObject*)), qApp, nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    runEvents();
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
    } else {  // later: another dialog may come of it
      QMetaObject::invokeMethod(
          dialog, [this, dialog] { poke(*dialog); }, Qt::QueuedConnection);
    }
  }
  /// A key or a click for any part of it.
  void poke(QWidget& whole) {
    QList<QWidget*> parts = whole.findChildren<QWidget*>() << &whole;
    parts.removeIf([](const QWidget* part) { return !part->isVisible() || !part->isEnabled(); });
    QWidget* const part = parts.value(pick(parts.size()), &whole);
    if (auto* const field = qobject_cast<QLineEdit*>(part)) field->setText(QString::fromLatin1(oneOf(kInputs)));
    constexpr std::array kKeys = {Qt::Key_Down,   Qt::Key_Up,  Qt::Key_Right, Qt::Key_Left, Qt::Key_Space,
                                  Qt::Key_Return, Qt::Key_Tab, Qt::Key_A,     Qt::Key_B};
    if (pick(2) == 0) return QTest::keyClick(part, oneOf(kKeys));
    QTest::mouseClick(part, pick(4) == 0 ? Qt::RightButton : Qt::LeftButton, {},
                      QPoint(pick(part->width()), pick(part->height())));
  }
  /// As the server, or somebody else, changes it.
  void changeLog() {
    folder.write("changing.log", m_log.substr(pick(m_log.size()), pick(m_log.size())));
    if (pick(4) == 0) std::filesystem::remove(folder / "changing.log");
  }
  /// As an editor changes it.
  void changeAnySetting() {
    constexpr std::array kValues = {"0", "1", "2", "-1", "x"};
    std::string text = folder.read("quorvel.ini");
    const auto value = text.find('=', pick(text.size() + 1)) + 1;
    text.replace(value, text.find('\r', value) - value, oneOf(kValues));
    folder.write("quorvel.ini", text);
    commands.toggleAutoFilter();
  }

  static constexpr std::array kNames = {"alice", "bob", "<b>carol</b>", "a-name-that-is-longer-than-a-record-allows"};
  static constexpr std::array kInputs = {"1", "5000", "-3", "99999999999", "127.0.0.1", "::1", "no host!", ""};
  std::mt19937 m_random;
  std::string m_log;
  std::vector<std::filesystem::path> m_logs;
  QTimer m_hand;
  int m_turnsLeft = 0;
  /// What is done apart from choosing menu items.
  const std::vector<std::function<void()>> m_others = {
      [this] { poke(window); },
      [this] { poke(window.sessionTreePage().tree()); },
      [this] { window.sessionTreePage().tree().keyboardSearch(QStringLiteral("b")); },
      [this] {
        QContextMenuEvent press(QContextMenuEvent::Mouse, QPoint(5, 5), window.mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(window.sessionTreePage().tree().viewport(), &press);
      },
      [this] { window.resize(300 + pick(900), 200 + pick(700)); },
      [this] { changeLog(); },
      [this] { changeAnySetting(); },
      [this] { commands.openLogFile(oneOf(m_logs)); },
      [this] {
        (void)QtFileDialogs().askOpenFile(&window, {"", "Log (*.*)|*.*", 1, folder.path()});
      }};
};

TEST(Soak, NeitherMemoryNorHandlesGrow) {
  constexpr unsigned kStarts = 8;
  constexpr unsigned kWarmUp = 3;  // Qt's own tables of shortcuts and fonts have grown by then
  const char* const wanted = std::getenv("QUORVEL_SOAK");
  const int operations = (wanted == nullptr ? 480 : std::atoi(wanted)) / static_cast<int>(kStarts);
  QPixmapCache::setCacheLimit(0);  // it lets go of its pixmaps now and then only
  std::optional<Use> warm;
  for (unsigned start = 1; start <= kStarts && !HasFailure(); ++start) {
    {
      Desk desk(start);
      if (start == 1) desk.doEverything();
      desk.work(operations / 5);
      const Use before;
      desk.work(operations - operations / 5);
      if (start > kWarmUp) before.expectNoGrowth("at the end of a start");
    }
    if (start < kWarmUp) continue;
    if (!warm) warm.emplace();
    warm->expectNoGrowth("after a start");
  }
}

}  // namespace
}  // namespace quorvel::test
