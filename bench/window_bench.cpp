// Measures the real window on logs of many sessions.
// usage: quorvel_window_bench LOG...
#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include "tests/support/program_window.h"
#include "ui/qt/pages/answer_page.h"
#include "ui/qt/pages/background_reading.h"
#include "ui/qt/pages/find_in_log.h"
#include "ui/qt/pages/log_view.h"
#include "ui/qt/pages/pages.h"
#include "ui/qt/pages/table_box.h"

namespace quorvel::test {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// The longest time between two ticks of a timer that wants to tick every 10 ms.
class PauseMeter {
 public:
  PauseMeter() {
    QObject::connect(&m_timer, &QTimer::timeout, [this] { tick(); });
    m_timer.start(10);
  }
  double longestMilliseconds() {
    tick();
    return 1000 * m_longest;
  }

 private:
  void tick() {
    m_longest = std::max(m_longest, secondsSince(m_last));
    m_last = Clock::now();
  }

  QTimer m_timer;
  Clock::time_point m_last = Clock::now();
  double m_longest = 0;
};

long residentKiB() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long value = 0;
    if (word == "VmRSS:" && status >> value) return value;
  }
  return 0;
}

class WindowBench : private ProgramWindow {
 public:
  WindowBench() : ProgramWindow(Pacer::kInterval) {}

  void measure(const std::filesystem::path& log) {
    open(log);
    const long before = residentKiB();
    PauseMeter find;
    auto start = Clock::now();
    choose(MenuItem::mnuFindUsers);
    runEvents();
    const double findSeconds = secondsSince(start);
    const double findPause = find.longestMilliseconds();

    PauseMeter build;
    start = Clock::now();
    choose(MenuItem::mnuReloadTreeView);
    runEvents();
    const double buildSeconds = secondsSince(start);
    const double buildPause = build.longestMilliseconds();
    const long used = residentKiB() - before;

    std::printf(
        "%-8s sessions: find and tree %6.2f s, longest pause %4.0f ms; tree alone %5.2f s, pause %4.0f ms; "
        "memory %+7ld KiB\n",
        commands.state().tree.nodeCount() == 0 ? "no" : statusNumber().c_str(), findSeconds, findPause, buildSeconds,
        buildPause, used);
    clickSome();
  }

 private:
  std::string statusNumber() {
    const std::string text = window.statusText(StatusPanel::Logons).toStdString();
    return text.substr(text.find(' ') + 1);
  }

  /// First and second click on nodes from the whole tree.
  void clickSome() {
    double first = 0;
    double second = 0;
    const std::int32_t count = commands.state().tree.nodeCount();
    for (std::int32_t node = 1; node <= count; node += std::max(1, count / 50)) {
      first = std::max(first, click(node));
      second = std::max(second, click(node));
    }
    std::printf("         slowest of 50 clicks %.1f ms, of their repetitions %.1f ms\n", 1000 * first, 1000 * second);
  }

  double click(std::int32_t node) {
    const auto start = Clock::now();
    commands.TreeView1_NodeClick(node);
    runEvents();
    return secondsSince(start);
  }
};

/// The pages that answer questions: how long they keep the reader waiting.
class PagesBench : private ProgramWindow {
 public:
  PagesBench() : ProgramWindow(Pacer::kInterval) { window.resize(1120, 740); }

  void measure(const std::filesystem::path& log) {
    pages.showPage(PageName::Overview);
    const double reference = readAll(log);
    const long before = residentKiB();
    auto start = Clock::now();
    PauseMeter reading;
    open(log);
    runEvents();
    const double usable = secondsSince(start);
    waitUntilIdle();
    const double overview = secondsSince(start);
    const double pause = reading.longestMilliseconds();
    std::printf(
        "%zu sessions, reading the bytes alone %.2f s: usable after %.0f ms, overview after %.2f s, longest pause "
        "%.0f ms, memory %+ld KiB\n",
        pages.reading()->activity()->sessions.size(), reference, 1000 * usable, overview, pause,
        residentKiB() - before);
    for (const auto& [page, name] : kPages)
      measurePage(page, name);
    measureFind(log);
    std::printf("  memory at the end %+ld KiB\n", residentKiB() - before);
  }

 private:
  static constexpr std::pair<PageName, const char*> kPages[] = {
      {PageName::Overview, "overview"}, {PageName::Sessions, "sessions"},   {PageName::Logins, "logins"},
      {PageName::Files, "files"},       {PageName::Transfers, "transfers"}, {PageName::Traffic, "traffic"}};

  static double readAll(const std::filesystem::path& log) {
    const auto start = Clock::now();
    std::ifstream file(log, std::ios::binary);
    std::string block(1 << 20, ' ');
    while (file.read(block.data(), static_cast<std::streamsize>(block.size()))) {
    }
    return secondsSince(start);
  }

  void waitUntilIdle() {
    while (!pages.isIdle())
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    runEvents();
  }

  double answerTime(const std::function<void()>& act) {
    const auto start = Clock::now();
    act();
    waitUntilIdle();
    return 1000 * secondsSince(start);
  }

  void measurePage(PageName page, const char* name) {
    const double shown = answerTime([&] { pages.showPage(page); });
    auto* const words = window.findChild<QLineEdit*>(QStringLiteral("scopeWords"));
    double slowestKey = 0;
    const QString typed = QStringLiteral("user:a ip:1");
    for (qsizetype length = 1; length <= typed.size(); ++length)
      slowestKey = std::max(slowestKey, answerTime([&] {
                              words->setText(typed.left(length));
                              emit words->textEdited(words->text());
                            }));
    const double cleared = answerTime([&] { words->clear(); });
    std::printf("  %-10s shown %5.0f ms, slowest key %5.0f ms, cleared %5.0f ms", name, shown, slowestKey, cleared);
    TableBox* const table = page == PageName::Overview ? nullptr : pages.answerPage(page).mainTable();
    if (table != nullptr) measureTable(*table);
    std::printf("\n");
  }

  void measureTable(TableBox& table) {
    double slowestSort = 0;
    QString slowestColumn;
    for (int column = 0; column < table.rows().columnCount(); ++column) {
      const double time = answerTime([&] { table.horizontalHeader()->setSortIndicator(column, Qt::DescendingOrder); });
      if (time > slowestSort)
        slowestColumn = table.rows().headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
      slowestSort = std::max(slowestSort, time);
    }
    (void)answerTime([&] { table.horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder); });
    double slowestScroll = 0;
    QScrollBar& bar = *table.verticalScrollBar();
    for (int i = 0; i < 50; ++i) {
      const auto start = Clock::now();
      bar.setValue(static_cast<int>(static_cast<qint64>(bar.maximum()) * i / 50));
      table.viewport()->repaint();
      slowestScroll = std::max(slowestScroll, 1000 * secondsSince(start));
    }
    std::printf(", %d rows: slowest sort %5.0f ms (%s), scroll %4.1f ms", table.rows().rowCount(), slowestSort,
                qPrintable(slowestColumn), slowestScroll);
  }

  void measureFind(const std::filesystem::path& log) {
    pages.showPage(PageName::Log);
    auto* const view = window.findChild<LogView*>(QStringLiteral("logView"));
    const auto start = Clock::now();
    std::uint64_t lines = 0;
    do {
      lines = view->lineCount();
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    } while (view->lineCount() != lines || lines == 0);
    const double indexed = secondsSince(start);
    FindInLog search;
    const auto begin = Clock::now();
    search.start(std::shared_ptr<const File>(std::move(systemFiles().open(log, OpenMode::Read).value())),
                 QStringLiteral("No such text in it"), false, 0);
    while (search.isRunning())
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    const double seconds = secondsSince(begin);
    const auto bytes = static_cast<double>(std::filesystem::file_size(log));
    std::printf("  log: %llu lines counted in %.2f s; plain text found at %.2f GB/s\n",
                static_cast<unsigned long long>(view->lineCount()), indexed, bytes / seconds / 1e9);
  }

  Pages& pages = window.pages();
};

}  // namespace
}  // namespace quorvel::test

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  for (int i = 1; i < argc; ++i) {
    quorvel::test::PagesBench().measure(argv[i]);
    quorvel::test::WindowBench().measure(argv[i]);
  }
}
