// Texts that grow side by side and come out one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <queue>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "classic/lines/session_lines.h"
#include "log/file_system.h"
#include "log/log_file.h"

namespace quorvel {

/// Keeps texts numbered from 0 and hands each to the target when those before it are finished. What is too much for
/// memory goes to the temporary file in runs, each with a piece of every text in ascending order, so that texts are
/// read back from all runs side by side, each from its start to its end.
class OrderedTexts {
 public:
  /// All references must outlive the texts.
  OrderedTexts(std::size_t count, const LogFile& log, SessionTextTarget& target, const LineReading& reading);
  OrderedTexts(const OrderedTexts&) = delete;
  OrderedTexts& operator=(const OrderedTexts&) = delete;

  void add(std::size_t index, std::string_view text);
  /// Adds a part of the log, which is read when the text is handed out.
  void addPart(std::size_t index, LogPosition begin, LogPosition end);
  /// What was added last was one of the lines to be told of.
  void countLine(std::size_t index) { ++m_slots[index].lines; }
  void finish(std::size_t index) { m_slots[index].isFinished = true; }
  [[nodiscard]] bool isFinished(std::size_t index) const { return m_slots[index].isFinished; }

  /// Hands out all there is of the first texts, up to the first that is not finished. position is what the target is
  /// asked with. False when the target wants no more, or after a failure.
  [[nodiscard]] bool handOut(LogPosition position);
  /// Ends the text being handed out, with what was handed out of it.
  void endCurrent();
  [[nodiscard]] const Status& status() const { return m_status; }

 private:
  struct Slot {
    std::uint32_t buffer : 31 = 0;  ///< number of its buffer, 0 for none
    std::uint32_t isFinished : 1 = 0;
    std::uint32_t lines = 0;
  };
  /// A part of the log in a text.
  struct Part {
    std::uint64_t at;  ///< in front of this byte of the text
    LogPosition begin;
    LogPosition end;
  };
  /// The end of a text that is in memory.
  struct Buffer {
    std::size_t index = 0;  ///< of the text
    std::string text;
    std::vector<Part> parts;
  };
  /// What stands in the temporary file in front of the parts and the text of one piece.
  struct PieceHead {
    std::uint64_t index;
    std::uint64_t partCount;
    std::uint64_t textSize;
  };
  struct Run {
    std::uint64_t at;
    std::uint64_t end;
    PieceHead next;
    std::string read;  ///< bytes of the file read ahead
    std::size_t used = 0;
  };

  Buffer& bufferOf(std::size_t index);
  void emptyBuffer(Slot& slot);
  void spill();
  void startRun(std::uint64_t begin, std::uint64_t end);
  [[nodiscard]] bool writeFile(std::uint64_t& at, std::string& batch);
  /// Up to count next bytes of a run, at least one.
  [[nodiscard]] std::string_view readRun(Run& run, std::size_t count);
  template <typename Value>
  bool readValue(Run& run, Value& value);
  void readHead(std::size_t run);
  void handOutSpilled();
  void handOutParts(std::vector<Part>& parts, std::uint64_t textSize,
                    const std::function<std::string_view(std::size_t)>& text);
  void handOutPart(const Part& part);
  void write(std::string_view piece);
  void endText();

  const LogFile& m_log;
  SessionTextTarget& m_target;
  const LineReading& m_reading;
  std::vector<Slot> m_slots;
  std::deque<Buffer> m_buffers;  ///< number n at n - 1
  std::vector<std::uint32_t> m_spare;
  std::size_t m_held = 0;  ///< bytes that the buffers take

  std::unique_ptr<File> m_file;
  std::uint64_t m_fileEnd = 0;
  std::deque<Run> m_runs;
  using NextPiece = std::pair<std::uint64_t, std::size_t>;  ///< index of the text, and number of the run
  std::priority_queue<NextPiece, std::vector<NextPiece>, std::greater<>> m_pieces;

  std::size_t m_current = 0;  ///< index of the text being handed out
  LogPosition m_position = 0;
  std::size_t m_sinceAsked = 0;
  bool m_hasBegun = false;  ///< the current text
  bool m_isWholeLine = true;
  std::uint32_t m_leftOut = 0;  ///< lines of the current text that were not written
  bool m_goOn = true;
  Status m_status;
};

}  // namespace quorvel
