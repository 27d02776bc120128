#include "log/block_reader.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t kMostReady = 8;
/// Once all are ready the reading thread sleeps until so few are left: waking it costs as much as reading a block.
constexpr std::size_t kFewReady = kMostReady / 2;

}  // namespace

Status readBlock(const LogFile& log, LogPosition first, std::size_t size, LogBlock& block) {
  const LogPosition left = log.length() - first + 1;
  block.first = first;
  block.count = std::min(size, static_cast<std::size_t>(std::max<LogPosition>(0, left)));
  block.buffer.resize(kBlockHead + block.count + kBlockTail);

  const LogPosition from = std::max<LogPosition>(1, first - static_cast<LogPosition>(kBlockHead));
  const auto blanks = static_cast<std::size_t>(from - (first - static_cast<LogPosition>(kBlockHead)));
  const std::span<char> target = std::span(block.buffer).subspan(blanks);
  const auto read = log.readAt(from, target);
  if (!read.isOk()) return read.error();
  const auto expected = std::min(target.size(), static_cast<std::size_t>(log.length() - from + 1));
  if (read.value() < expected) return Error{ErrorCode::InputPastEnd, log.path()};

  std::fill_n(block.buffer.begin(), blanks, ' ');
  std::fill(target.begin() + static_cast<std::ptrdiff_t>(read.value()), target.end(), ' ');
  return {};
}

BlockReader::BlockReader(const LogFile& log, LogPosition first, std::size_t blockSize, Search search)
    : m_log(log), m_blockSize(blockSize), m_search(std::move(search)), m_at(first) {
  constexpr LogPosition kBlocksWorthAThread = 3;
  m_ready.reserve(kMostReady);
  if (log.length() - first <= kBlocksWorthAThread * static_cast<LogPosition>(blockSize)) return;
  try {
    m_thread = std::thread([this] { readAhead(); });
  } catch (const std::system_error&) {  // the system has no thread left: next() reads
  }
}

BlockReader::~BlockReader() {
  if (!m_thread.joinable()) return;
  {
    const std::lock_guard lock(m_mutex);
    m_isStopping = true;
  }
  m_changed.notify_all();
  m_thread.join();
}

std::unique_ptr<LogBlock> BlockReader::next() {
  if (m_isAtEnd) return nullptr;
  Item item;
  if (m_thread.joinable()) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_ready.empty(); });
    item = std::move(m_ready.front());
    m_ready.erase(m_ready.begin());
    const bool isFew = m_ready.size() == kFewReady;
    lock.unlock();
    if (isFew) m_changed.notify_all();
  } else {
    item = readNext();
  }
  m_isAtEnd = item.block == nullptr;
  m_status = std::move(item.status);
  return std::move(item.block);
}

void BlockReader::recycle(std::unique_ptr<LogBlock> block) {
  const std::lock_guard lock(m_mutex);
  m_spare.push_back(std::move(block));
}

BlockReader::Item BlockReader::readNext() {
  if (m_at > m_log.length()) return {};
  std::unique_ptr<LogBlock> block;
  {
    const std::lock_guard lock(m_mutex);
    if (!m_spare.empty()) {
      block = std::move(m_spare.back());
      m_spare.pop_back();
    }
  }
  if (!block) block = std::make_unique<LogBlock>();
  block->findings.clear();
  Status status = readBlock(m_log, m_at, m_blockSize, *block);
  if (!status.isOk()) return {nullptr, std::move(status)};
  m_search(*block);
  m_at = block->end();
  return {std::move(block), {}};
}

void BlockReader::readAhead() {
  while (true) {
    Item item = readNext();
    const bool isLast = item.block == nullptr;
    std::unique_lock lock(m_mutex);
    if (m_ready.size() == kMostReady)
      m_changed.wait(lock, [this] { return m_isStopping || m_ready.size() <= kFewReady; });
    if (m_isStopping) return;
    m_ready.push_back(std::move(item));
    lock.unlock();
    m_changed.notify_all();
    if (isLast) return;
  }
}

}  // namespace quorvel
