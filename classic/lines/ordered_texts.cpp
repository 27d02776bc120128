#include "classic/lines/ordered_texts.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace quorvel {
namespace {

constexpr std::size_t kBatchSize = 1024 * 1024;
constexpr std::size_t kPieceSize = 64 * 1024;
/// Read ahead of all runs together, as long as each of them has enough to be read in useful pieces.
constexpr std::size_t kReadAhead = 8 * 1024 * 1024;
constexpr std::size_t kLeastReadAhead = 4 * 1024;
/// A buffer that has grown larger is not kept for the next text.
constexpr std::size_t kLargestSpare = 16 * 1024;

template <typename Value>
void appendBytes(std::string& to, const Value* values, std::size_t count) {
  static_assert(std::is_trivially_copyable_v<Value>);
  to.append(reinterpret_cast<const char*>(values), count * sizeof(Value));
}

}  // namespace

OrderedTexts::OrderedTexts(std::size_t count, const LogFile& log, SessionTextTarget& target, const LineReading& reading)
    : m_log(log), m_target(target), m_reading(reading), m_slots(count) {}

void OrderedTexts::add(std::size_t index, std::string_view text) {
  if (text.empty()) return;  // a buffer holds something
  std::string& held = bufferOf(index).text;
  const std::size_t before = held.capacity();
  held.append(text);
  m_held += held.capacity() - before;
  if (m_held > m_reading.mostText) spill();
}

void OrderedTexts::addPart(std::size_t index, LogPosition begin, LogPosition end) {
  Buffer& buffer = bufferOf(index);
  buffer.parts.push_back({buffer.text.size(), begin, end});
  m_held += sizeof(Part);
  if (m_held > m_reading.mostText) spill();
}

OrderedTexts::Buffer& OrderedTexts::bufferOf(std::size_t index) {
  Slot& slot = m_slots[index];
  if (slot.buffer == 0) {
    if (m_spare.empty()) {
      m_buffers.emplace_back();
      m_spare.push_back(static_cast<std::uint32_t>(m_buffers.size()));
      m_held += sizeof(Buffer);
    }
    slot.buffer = m_spare.back() & 0x7FFFFFFFu;
    m_spare.pop_back();
    m_buffers[slot.buffer - 1].index = index;
  }
  return m_buffers[slot.buffer - 1];
}

void OrderedTexts::emptyBuffer(Slot& slot) {
  Buffer& buffer = m_buffers[slot.buffer - 1];
  buffer.text.clear();
  m_held -= buffer.parts.size() * sizeof(Part);
  buffer.parts.clear();
  if (buffer.text.capacity() > kLargestSpare) {
    m_held -= buffer.text.capacity();
    buffer.text = {};
    m_held += buffer.text.capacity();
  }
  m_spare.push_back(slot.buffer);
  slot.buffer = 0;
}

void OrderedTexts::spill() {
  if (!m_status.isOk()) return;
  if (!m_file) {
    auto file = m_reading.files.openTemporary(m_reading.folder);
    if (!file.isOk()) {
      m_status = file.error();
      return;
    }
    m_file = std::move(file.value());
  }
  if (m_pieces.empty()) m_fileEnd = 0;  // what was there was read
  std::vector<const Buffer*> filled;
  for (const Buffer& buffer : m_buffers)
    if (!buffer.text.empty() || !buffer.parts.empty()) filled.push_back(&buffer);  // else it is a spare one
  std::sort(filled.begin(), filled.end(), [](const Buffer* a, const Buffer* b) { return a->index < b->index; });

  const std::uint64_t begin = m_fileEnd;
  std::string batch;
  for (const Buffer* const buffer : filled) {
    const PieceHead head{buffer->index, buffer->parts.size(), buffer->text.size()};
    appendBytes(batch, &head, 1);
    appendBytes(batch, buffer->parts.data(), buffer->parts.size());
    batch.append(buffer->text);
    m_slots[buffer->index].buffer = 0;
    if (batch.size() >= kBatchSize && !writeFile(m_fileEnd, batch)) return;
  }
  if (!writeFile(m_fileEnd, batch)) return;
  m_buffers.clear();
  m_spare.clear();
  m_held = 0;
  m_runs.push_back({begin, m_fileEnd, {}, {}});
  readHead(m_runs.size() - 1);
}

bool OrderedTexts::writeFile(std::uint64_t& at, std::string& batch) {
  m_status = m_file->writeAt(at, batch);
  at += batch.size();
  batch.clear();
  return m_status.isOk();
}

std::string_view OrderedTexts::readRun(Run& run, std::size_t count) {
  if (run.used == run.read.size() && m_status.isOk()) {
    const std::size_t ahead = std::clamp(kReadAhead / m_runs.size(), kLeastReadAhead, kPieceSize);
    run.read.resize(static_cast<std::size_t>(std::min<std::uint64_t>(ahead, run.end - run.at)));
    run.used = 0;
    const auto got = m_file->readAt(run.at, run.read);
    if (!got.isOk()) m_status = got.error();
    if (got.isOk() && got.value() < run.read.size()) m_status = Error{ErrorCode::InputPastEnd, m_reading.folder};
    run.at += run.read.size();
  }
  if (!m_status.isOk()) return {};
  const std::string_view piece = std::string_view(run.read).substr(run.used, count);
  run.used += piece.size();
  return piece;
}

template <typename Value>
bool OrderedTexts::readValue(Run& run, Value& value) {
  static_assert(std::is_trivially_copyable_v<Value>);
  for (std::size_t done = 0; done < sizeof value;) {
    const std::string_view bytes = readRun(run, sizeof value - done);
    if (bytes.empty()) return false;
    std::memcpy(reinterpret_cast<char*>(&value) + done, bytes.data(), bytes.size());
    done += bytes.size();
  }
  return true;
}

void OrderedTexts::readHead(std::size_t run) {
  if (m_runs[run].at == m_runs[run].end && m_runs[run].used == m_runs[run].read.size()) {
    m_runs[run].read = {};
    m_runs[run].used = 0;
  } else if (readValue(m_runs[run], m_runs[run].next)) {
    m_pieces.emplace(m_runs[run].next.index, run);
  }
  if (m_pieces.empty()) m_runs.clear();
}

bool OrderedTexts::handOut(LogPosition position) {
  m_position = position;
  while (m_goOn && m_current < m_slots.size() && m_status.isOk()) {
    handOutSpilled();
    Slot& slot = m_slots[m_current];
    if (slot.buffer != 0) {
      Buffer& buffer = m_buffers[slot.buffer - 1];
      std::string_view text = buffer.text;
      handOutParts(buffer.parts, text.size(), [&text](std::size_t count) {
        const std::string_view piece = text.substr(0, count);
        text.remove_prefix(piece.size());
        return piece;
      });
      emptyBuffer(slot);
    }
    if (!slot.isFinished || !m_goOn || !m_status.isOk()) break;
    endText();
    m_goOn = m_target.keepGoing(m_position);
  }
  return m_goOn && m_status.isOk();
}

void OrderedTexts::endCurrent() {
  if (m_hasBegun) endText();
}

void OrderedTexts::endText() {
  const std::uint32_t lines = m_slots[m_current].lines;
  m_target.endSession(m_current, lines - std::min(lines, m_leftOut));
  ++m_current;
  m_hasBegun = false;
  m_leftOut = 0;
}

void OrderedTexts::handOutSpilled() {
  while (!m_pieces.empty() && m_pieces.top().first == m_current && m_status.isOk()) {
    const std::size_t number = m_pieces.top().second;
    m_pieces.pop();
    Run& run = m_runs[number];
    std::vector<Part> parts(static_cast<std::size_t>(run.next.partCount));
    for (Part& part : parts)
      if (!readValue(run, part)) return;
    handOutParts(parts, run.next.textSize, [this, &run](std::size_t count) { return readRun(run, count); });
    readHead(number);
  }
}

void OrderedTexts::handOutParts(std::vector<Part>& parts, std::uint64_t textSize,
                                const std::function<std::string_view(std::size_t)>& text) {
  std::uint64_t at = 0;
  const auto writeUpTo = [&](std::uint64_t end) {
    while (at < end && m_status.isOk()) {
      const std::string_view piece = text(static_cast<std::size_t>(std::min<std::uint64_t>(kBatchSize, end - at)));
      at += piece.size();
      write(piece);
    }
  };
  for (const Part& part : parts) {
    writeUpTo(part.at);
    handOutPart(part);
  }
  writeUpTo(textSize);
}

void OrderedTexts::handOutPart(const Part& part) {
  std::string piece;
  for (LogPosition at = part.begin; at < part.end && (m_goOn || !m_isWholeLine);) {
    piece.resize(static_cast<std::size_t>(std::min<LogPosition>(kPieceSize, part.end - at)));
    const auto count = m_log.readAt(at, piece);
    if (!count.isOk() || count.value() < piece.size()) {
      m_status = count.isOk() ? Status(Error{ErrorCode::InputPastEnd, m_log.path()}) : Status(count.error());
      return;
    }
    write(piece);
    at += static_cast<LogPosition>(piece.size());
  }
}

/// Once the target wants no more, it gets the rest of the line and nothing else.
void OrderedTexts::write(std::string_view piece) {
  if (!m_status.isOk()) return;
  if (!m_goOn) {
    const std::string_view all = piece;
    piece = m_isWholeLine ? std::string_view() : all.substr(0, std::min(all.find('\n'), all.size() - 1) + 1);
    m_leftOut += static_cast<std::uint32_t>(std::count(all.begin() + std::ssize(piece), all.end(), '\n'));
  }
  if (piece.empty()) return;
  m_hasBegun = true;
  m_target.write(piece);
  m_isWholeLine = piece.back() == '\n';
  m_sinceAsked += piece.size();
  if (m_sinceAsked < kBatchSize || !m_goOn) return;
  m_sinceAsked = 0;
  m_goOn = m_target.keepGoing(m_position);
}

}  // namespace quorvel
