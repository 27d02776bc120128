#include "ui/qt/pages/find_in_log.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "log/line_walk.h"
#include "log/text_find.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kBetweenReports = std::chrono::milliseconds(50);

}  // namespace

/// One search, on the other thread.
class FindInLog::Search {
 public:
  Search(FindInLog& owner, const File& file, const std::atomic<bool>& isCancelled)
      : m_owner(owner),
        m_file(file),
        m_isCancelled(isCancelled),
        m_size(file.size().isOk() ? file.size().value() : 0) {}

  void findPlain(const std::string& text, std::uint64_t from, std::uint64_t to) {
    const auto progress = [this, start = m_read](std::uint64_t bytes) { return report(start + bytes); };
    (void)findText(
        m_file, from, to, TextFinder(text), [this](std::uint64_t offset) { return add(offset); }, progress);
    m_read += to - std::min(from, to);
  }

  void findRegex(const QRegularExpression& expression, std::uint64_t from, std::uint64_t to) {
    (void)walkLines(m_file, from, to, m_isCancelled, [&](std::uint64_t offset, std::string_view line) {
      if (expression.match(QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()))).hasMatch())
        if (!add(offset)) return false;
      return report(m_read + offset - from);
    });
    m_read += to - std::min(from, to);
  }

  [[nodiscard]] std::uint64_t size() const { return m_size; }
  [[nodiscard]] std::vector<std::uint64_t> rest() { return std::exchange(m_found, {}); }

 private:
  bool add(std::uint64_t offset) {
    m_found.push_back(offset);
    return ++m_count < kMostHits && !m_isCancelled;
  }

  bool report(std::uint64_t bytes) {
    if (m_isCancelled) return false;
    const auto now = Clock::now();
    if (now - m_last < kBetweenReports) return true;
    m_last = now;
    constexpr std::uint64_t kAll = 100;
    const auto percent = static_cast<int>(std::min(bytes, m_size) * kAll / std::max<std::uint64_t>(1, m_size));
    m_owner.m_job.post([owner = &m_owner, hits = rest(), percent] { owner->take(hits, percent); });
    return true;
  }

  FindInLog& m_owner;
  const File& m_file;
  const std::atomic<bool>& m_isCancelled;
  std::uint64_t m_size;
  std::uint64_t m_read = 0;
  std::size_t m_count = 0;
  std::vector<std::uint64_t> m_found;
  Clock::time_point m_last = Clock::now();
};

void FindInLog::start(std::shared_ptr<const File> file, const QString& text, bool isRegex, std::uint64_t from) {
  m_job.cancel();
  m_hits.clear();
  m_percent = 0;
  m_isRunning = true;
  m_job.start([this, file = std::move(file), text, isRegex, from](const std::atomic<bool>& isCancelled) {
    Search search(*this, *file, isCancelled);
    const QRegularExpression expression(text, QRegularExpression::CaseInsensitiveOption);
    const std::string bytes = text.toStdString();
    for (const auto& [begin, end] : {std::pair(from, search.size()), std::pair(std::uint64_t{0}, from)}) {
      if (isRegex) search.findRegex(expression, begin, end);
      if (!isRegex) search.findPlain(bytes, begin, end);
    }
    return NewestJob::Show([this, hits = search.rest()] {
      constexpr int kAll = 100;
      m_isRunning = false;
      take(hits, kAll);
      emit ended();
    });
  });
}

void FindInLog::stop() {
  if (!std::exchange(m_isRunning, false)) return;
  m_job.cancel();
  emit ended();
}

void FindInLog::take(const std::vector<std::uint64_t>& hits, int percent) {
  const auto before = static_cast<std::ptrdiff_t>(m_hits.size());
  m_hits.insert(m_hits.end(), hits.begin(), hits.end());
  std::inplace_merge(m_hits.begin(), m_hits.begin() + before, m_hits.end());
  m_percent = percent;
  emit progressed();
}

}  // namespace quorvel
