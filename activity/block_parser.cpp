#include "activity/block_parser.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
/// Blocks that are parsed ahead while one is looked at.
constexpr unsigned kBlocksAhead = 3;

void parseLine(const Grammar& grammar, const Dialect& dialect, std::string_view line, Event& event) {
  if (line.empty()) {
    event.kind = EventKind::Known;
    return;
  }
  grammar.parse(line.substr(0, kLongestLine), dialect, event);
  const bool isWhole = line.size() <= kLongestLine;
  if (!isWhole && event.kind != EventKind::Command && event.kind != EventKind::Reply) event.kind = EventKind::Unknown;
}

}  // namespace

void parseBlock(const Grammar& grammar, std::uint8_t server, ParsedBlock& parsed) {
  const Block& block = parsed.block;
  const std::string_view text = block.text();
  parsed.isUtf8 = isUtf8(text);
  parsed.events.clear();
  auto range = block.dialects.begin();
  for (std::size_t at = block.continued; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    while (range + 1 != block.dialects.end() && (range + 1)->begin <= at)
      ++range;
    std::string_view line = text.substr(at, end - at);
    if (end < text.size() && line.ends_with('\r')) line.remove_suffix(1);
    if (block.position == 1 && at == 0 && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
    Event& event = parsed.events.emplace_back();
    event.server = server;
    parseLine(grammar, *range->dialect, line, event);
    const std::size_t next = std::min(end + 1, text.size());
    event.position = block.position + at;
    event.length = static_cast<std::uint32_t>(next - at);
    at = next;
  }
}

BlockParser::BlockParser(BlockCutter& cutter, const Grammar& grammar, std::uint8_t server, const Options& options)
    : m_cutter(cutter), m_grammar(grammar), m_server(server), m_options(options) {
  const std::size_t blocks = options.threads == 0 ? 1 : options.threads + kBlocksAhead;
  for (std::size_t i = 0; i < blocks; ++i)
    m_free.push_back(m_blocks.emplace_back(std::make_unique<ParsedBlock>()).get());
  m_outcomes.resize(blocks + options.threads);
  for (unsigned i = 0; i < options.threads; ++i)
    m_threads.emplace_back([this] { work(); });
}

BlockParser::~BlockParser() {
  {
    const std::lock_guard lock(m_mutex);
    m_isStopped = true;
  }
  m_changed.notify_all();
  for (std::thread& thread : m_threads)
    thread.join();
}

Result<const ParsedBlock*> BlockParser::next() {
  Outcome outcome;
  if (m_threads.empty()) {
    std::uint64_t number = 0;
    outcome = takeBlock(*m_blocks.front(), number);
  } else {
    std::unique_lock lock(m_mutex);
    if (m_handedOver != nullptr) {
      m_free.push_back(std::exchange(m_handedOver, nullptr));
      m_changed.notify_all();
    }
    m_changed.wait(lock, [this] { return outcomeOf(m_nextOut).isThere; });
    outcome = std::exchange(outcomeOf(m_nextOut), {});
    if (outcome.parsed != nullptr) ++m_nextOut;
    m_handedOver = outcome.parsed;
  }
  if (outcome.exception) std::rethrow_exception(outcome.exception);
  if (outcome.error) return *outcome.error;
  return outcome.parsed;
}

void BlockParser::work() {
  for (;;) {
    ParsedBlock* parsed = nullptr;
    {
      std::unique_lock lock(m_mutex);
      m_changed.wait(lock, [this] { return m_isStopped || !m_free.empty(); });
      if (m_isStopped) return;
      parsed = m_free.back();
      m_free.pop_back();
    }
    std::uint64_t number = 0;
    Outcome outcome = takeBlock(*parsed, number);
    const bool isEnd = outcome.parsed == nullptr;
    {
      const std::lock_guard lock(m_mutex);
      if (outcome.isThere) outcomeOf(number) = std::move(outcome);
    }
    m_changed.notify_all();
    if (isEnd) return;
  }
}

/// Only one thread tells of the end; the others come out with nothing.
BlockParser::Outcome BlockParser::takeBlock(ParsedBlock& parsed, std::uint64_t& number) {
  Outcome outcome;
  try {
    {
      const std::lock_guard lock(m_cutting);
      if (m_isCutThrough) return outcome;
      number = m_nextCut++;
      outcome.isThere = true;
      m_isCutThrough = true;  // should reading fail
      const auto isMore = m_cutter.next(parsed.block, m_options.isFinal);
      if (!isMore.isOk()) {
        outcome.error = isMore.error();
        return outcome;
      }
      if (!isMore.value()) return outcome;
      m_isCutThrough = false;
    }
    parseBlock(m_grammar, m_server, parsed);
    outcome.parsed = &parsed;
  } catch (...) {
    outcome.exception = std::current_exception();
  }
  return outcome;
}

}  // namespace quorvel
