#include "activity/follow_reading.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "activity/log_set.h"
#include "activity/log_start.h"
#include "log/unpack.h"

namespace quorvel {
namespace {

constexpr std::size_t kMostKnown = 1'000;
constexpr int kMostListings = 5;

std::uint64_t lengthOf(LogSource& source) {
  std::vector<char> passed(256 * 1024);
  std::uint64_t length = 0;
  for (;;) {
    const auto count = source.read(passed);
    if (!count.isOk() || count.value() == 0) return source.rewind() ? length : 0;
    length += count.value();
  }
}

LogTime firstTime(const FollowingSource& source) {
  return firstTimeOf(source.place().head, source.changedTime());
}

}  // namespace

FollowReading::FollowReading(FileSystem& files, std::filesystem::path path, std::string name, UnpackPlace unpack)
    : m_files(files), m_path(std::move(path)), m_name(std::move(name)), m_unpack(std::move(unpack)) {}

void FollowReading::resume(LogPlace place, LogTime from) {
  m_resume = std::move(place);
  m_from = from;
}

Status FollowReading::look(const std::function<bool()>& goesOn) {
  if (!m_current) {
    if (Status begun = begin(); !begun.isOk()) return begun;
  }
  for (;;) {
    if (m_resume && haveSameHead(m_resume->head, m_current->place().head)) {
      readToPlace(goesOn);
      return {};
    }
    if (!m_queue.empty()) {
      endCurrent(goesOn);
      if (goesOn && !goesOn()) return {};
      m_current = std::move(m_queue.front());
      m_queue.pop_front();
      continue;
    }
    const Change change = m_current->look();
    read(true, goesOn);
    if (change == Change::None || (goesOn && !goesOn())) return {};
    if (!rotate(change, goesOn)) return {};
  }
}

Status FollowReading::begin() {
  auto opened = FollowingSource::open(m_files, m_path, m_name);
  if (!opened.isOk()) return opened.error();
  Piece next = std::move(opened.value());
  const auto head = headOf(*next);
  if (!head.isOk()) return head.error();
  if (isPacked(head.value())) return Error{ErrorCode::PathFileAccess, m_path, "A packed log does not grow"};
  auto siblings = openSiblings(*next);
  if (!m_withSiblings && !m_resume) {
    m_from = firstTimeOf(head.value(), next->changedTime());
    for (const auto& sibling : siblings) {
      if (auto known = headOf(*sibling); known.isOk()) know(std::move(known.value()));
    }
    siblings.clear();
  }
  queueSiblings(std::move(siblings), std::move(next));
  if (m_resume) {
    const bool isThere = std::any_of(m_queue.begin(), m_queue.end(), [this](const Piece& piece) {
      return haveSameHead(piece->place().head, m_resume->head);
    });
    if (!isThere) {
      m_notes.push_back(m_name + ": the file that was read last is gone; what it held since then is lost.");
      const LogTime last = firstTimeOf(m_resume->head, 0);
      while (m_queue.size() > 1 && last != kNoTime && firstTime(*m_queue.front()) <= last)
        m_queue.pop_front();
      m_resume.reset();
    }
  }
  m_current = std::move(m_queue.front());
  m_queue.pop_front();
  return {};
}

void FollowReading::readToPlace(const std::function<bool()>& goesOn) {
  m_current->stopAt(m_resume->offset);
  read(true, goesOn);
  m_current->liftLimit();
  m_resume.reset();
  m_hasResumed = true;
}

void FollowReading::read(bool isGrowing, const std::function<bool()>& goesOn) {
  const std::uint64_t before = m_current->place().offset;
  ReadOptions options;
  options.isGrowing = isGrowing;
  options.continuesSet = m_hasRead;
  if (goesOn) options.keepGoing = [&goesOn](const ReadProgress&) { return goesOn(); };
  const Status done = m_reader.read(*m_current, options);
  const LogPlace& now = m_current->place();
  if (done.isOk() && now.offset > 0) m_hasRead = true;
  if (!done.isOk() && now.offset > 0 && !std::exchange(m_isTold, true)) m_notes.push_back(done.error().sentence());
  if (now.offset > before) m_bytesRead += now.offset - before;
  if (now.offset > 0) m_place = now;
}

/// Its last line counts though it may have no line end.
void FollowReading::endCurrent(const std::function<bool()>& goesOn) {
  read(false, goesOn);
  m_isTold = false;
  const LogTime first = firstTime(*m_current);
  if (first != kNoTime) m_from = first;
  if (const std::string note = m_current->note(); !note.empty()) m_notes.push_back(note);
  know(m_current->place().head);
}

/// The file that has the name now is opened before the others are looked for: what takes its place later is noticed by
/// the next look.
bool FollowReading::rotate(Change change, const std::function<bool()>& goesOn) {
  auto opened = FollowingSource::open(m_files, m_path, m_name);
  if (!opened.isOk()) return false;
  Piece next = std::move(opened.value());
  auto siblings = openSiblings(*next);
  if (change == Change::Truncated) {
    bool isKept = goOnInCopy(siblings);
    for (int i = 1; i < kMostListings && !isKept; ++i) {  // the copy may have been renamed while it was looked for
      siblings = openSiblings(*next);
      isKept = goOnInCopy(siblings);
    }
    if (!isKept)
      m_current->addNote(m_name + " was emptied after " + std::to_string(m_current->place().offset) +
                         " bytes of it were read; lines written to it since then may be lost.");
  }
  endCurrent(goesOn);
  queueSiblings(std::move(siblings), std::move(next));
  m_current = std::move(m_queue.front());
  m_queue.pop_front();
  return true;
}

/// The longest file that begins like the one that was emptied tells what stood in it.
bool FollowReading::goOnInCopy(std::vector<std::unique_ptr<LogSource>>& siblings) {
  std::unique_ptr<LogSource>* longest = nullptr;
  std::uint64_t mostBytes = 0;
  for (auto& sibling : siblings) {
    const auto head = headOf(*sibling);
    if (!head.isOk() || !haveSameHead(head.value(), m_current->place().head)) continue;
    const std::uint64_t bytes = lengthOf(*sibling);
    if (bytes < std::max<std::uint64_t>(mostBytes, 1)) continue;
    mostBytes = bytes;
    longest = &sibling;
  }
  const std::uint64_t read = m_current->place().offset;
  const bool isKept = longest != nullptr && mostBytes >= read && m_current->goOnIn(std::move(*longest));
  std::erase(siblings, nullptr);
  return isKept;
}

std::vector<std::unique_ptr<LogSource>> FollowReading::openSiblings(const FollowingSource& except) {
  std::vector<std::unique_ptr<LogSource>> siblings;
  for (int i = 0; i < kMostListings; ++i) {
    siblings.clear();
    bool isTorn = false;
    for (const auto& path : rotatedSiblings(m_path)) {
      const auto stamp = m_files.stamp(path);
      isTorn = isTorn || !stamp.isOk();
      if (!stamp.isOk() || stamp.value().size == 0 || path.filename() == m_path.filename()) continue;
      const LogPlace& own = except.place();
      if (own.number != 0 && stamp.value().number == own.number && stamp.value().device == own.device) continue;
      const auto name = path.filename().u8string();
      auto logs = openLogs(m_files, path, {name.begin(), name.end()}, m_unpack);
      isTorn = isTorn || (!logs.isOk() && logs.error().code == ErrorCode::FileNotFound);
      if (!logs.isOk()) continue;
      std::move(logs.value().begin(), logs.value().end(), std::back_inserter(siblings));
    }
    if (!isTorn) break;  // else files were renamed meanwhile
  }
  return siblings;
}

void FollowReading::queueSiblings(std::vector<std::unique_ptr<LogSource>> siblings, Piece next) {
  const auto nextHead = headOf(*next);
  auto ordered = orderSet(std::move(siblings));
  if (ordered.isOk() && nextHead.isOk()) {
    std::vector<std::string> queued{nextHead.value()};
    for (SetFile& file : ordered.value()) {
      if (file.first == kNoTime || (m_from != kNoTime && file.first < m_from)) continue;
      const auto head = headOf(*file.source);
      const auto isAlike = [&head](const std::string& other) { return haveSameHead(other, head.value()); };
      if (!head.isOk() || isKnown(head.value()) || std::any_of(queued.begin(), queued.end(), isAlike)) continue;
      queued.push_back(head.value());
      m_queue.push_back(std::make_unique<FollowingSource>(std::move(file.source)));
      (void)headOf(*m_queue.back());
    }
  }
  m_queue.push_back(std::move(next));
}

bool FollowReading::isKnown(std::string_view head) const {
  return std::any_of(m_known.begin(), m_known.end(),
                     [head](const std::string& known) { return haveSameHead(known, head); });
}

void FollowReading::know(std::string head) {
  if (head.empty()) return;
  m_known.push_back(std::move(head));
  if (m_known.size() > kMostKnown) m_known.pop_front();
}

}  // namespace quorvel
