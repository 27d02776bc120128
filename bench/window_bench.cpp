// Measures the real window on logs of many sessions.
// usage: quorvel_window_bench LOG...
#include <QApplication>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include "tests/support/program_window.h"

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

}  // namespace
}  // namespace quorvel::test

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  for (int i = 1; i < argc; ++i) {
    quorvel::test::WindowBench bench;
    bench.measure(argv[i]);
  }
}
