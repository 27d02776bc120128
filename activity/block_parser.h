// Parses a log's blocks on several threads and hands them over in log order.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "activity/block_cutter.h"
#include "grammar/event.h"
#include "grammar/grammar.h"
#include "log/result.h"

namespace quorvel {

/// A block and what its lines say. The events' texts lie in the block.
struct ParsedBlock {
  Block block;
  std::vector<Event> events;
  bool isUtf8 = true;
};

/// Longer lines are read by their first bytes: a command or a reply is what it is, anything else is not known.
inline constexpr std::size_t kLongestLine = 64 * 1024;

/// Fills in the events of the block's lines; server is the grammar's number.
void parseBlock(const Grammar& grammar, std::uint8_t server, ParsedBlock& parsed);

/// The cutter and the grammar must outlive it. Handing over is for one thread.
class BlockParser {
 public:
  struct Options {
    unsigned threads = 1;  ///< 0: none but the caller's
    bool isFinal = true;   ///< of BlockCutter::next
  };

  BlockParser(BlockCutter& cutter, const Grammar& grammar, std::uint8_t server, const Options& options);
  ~BlockParser();
  BlockParser(const BlockParser&) = delete;
  BlockParser& operator=(const BlockParser&) = delete;

  /// The next block in log order, null at the log's end. Valid until the next call.
  [[nodiscard]] Result<const ParsedBlock*> next();

 private:
  /// How a block, or the end, came out.
  struct Outcome {
    ParsedBlock* parsed = nullptr;  ///< null: the end, or a failure
    std::optional<Error> error;
    std::exception_ptr exception;
    bool isThere = false;
  };

  void work();
  [[nodiscard]] Outcome takeBlock(ParsedBlock& parsed, std::uint64_t& number);
  [[nodiscard]] Outcome& outcomeOf(std::uint64_t number) { return m_outcomes[number % m_outcomes.size()]; }

  BlockCutter& m_cutter;
  const Grammar& m_grammar;
  const std::uint8_t m_server;
  const Options m_options;
  std::vector<std::unique_ptr<ParsedBlock>> m_blocks;
  ParsedBlock* m_handedOver = nullptr;

  std::mutex m_cutting;  ///< held while the next block is read; guards m_nextCut
  std::uint64_t m_nextCut = 0;
  bool m_isCutThrough = false;

  std::mutex m_mutex;  ///< guards what follows
  std::condition_variable m_changed;
  std::vector<ParsedBlock*> m_free;
  std::vector<Outcome> m_outcomes;  ///< ring, by number of block
  std::uint64_t m_nextOut = 0;
  bool m_isStopped = false;

  std::vector<std::thread> m_threads;
};

}  // namespace quorvel
