// Keeps a log's ledger: what became of every byte.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "activity/activity.h"
#include "grammar/event.h"

namespace quorvel {

enum class Verdict : std::uint8_t {
  Understood,
  SetAside,
  Foreign,
};

/// The shape of a line set aside: runs of digits as #, quoted texts as "...", passwords left out.
[[nodiscard]] std::string shapeOf(std::string_view text);
/// text with **** for what stands behind a PASS.
[[nodiscard]] std::string withoutPasswords(std::string_view text);

class LedgerKeeper {
 public:
  LedgerKeeper();
  LedgerKeeper(const LedgerKeeper&) = delete;
  LedgerKeeper& operator=(const LedgerKeeper&) = delete;

  /// The next line, and what became of it. The shape of one set aside is made from the event's text, or from all of the
  /// line where there is none.
  void take(Verdict verdict, const Event& event, std::string_view line);
  /// Lines that were taken already in another file.
  void takeRepeated(std::uint64_t lines, std::uint64_t bytes) {
    m_ledger.repeated.lines += lines;
    m_ledger.repeated.bytes += bytes;
  }
  /// More bytes of the line that was taken last.
  void takeMore(std::uint64_t bytes);

  [[nodiscard]] const Ledger& ledger() const { return m_ledger; }

 private:
  static constexpr std::size_t kMostShapes = 1000;

  void passTime(LogTime time);
  [[nodiscard]] SetAsideShape& shape(std::string_view text, std::string_view line, std::uint64_t position);

  Ledger m_ledger;
  std::unordered_map<std::uint64_t, std::size_t> m_shapes;  ///< hash of a shape -> index in the ledger
  Ledger::Share* m_lastShare = &m_ledger.understood;
  SetAsideShape* m_lastShape = nullptr;
  std::uint64_t m_seed;
};

}  // namespace quorvel
