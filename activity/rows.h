// A table that only grows, and snapshots of it that cost next to nothing.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace quorvel {

/// Rows in chunks that are shared with snapshots. One thread appends and edits; snapshots may be read and dropped by
/// others meanwhile. Row is trivially copyable.
template <typename Row>
class Rows {
 public:
  [[nodiscard]] std::size_t size() const { return m_size; }
  [[nodiscard]] bool empty() const { return m_size == 0; }
  [[nodiscard]] const Row& operator[](std::size_t index) const {
    return (*m_chunks[index / kChunkRows])[index % kChunkRows];
  }

  void append(const Row& row) {
    if (m_size % kChunkRows == 0) {
      m_chunks.push_back(std::make_shared<Chunk>());
      m_isShared.push_back(false);
    }
    (*m_chunks.back())[m_size++ % kChunkRows] = row;  // beyond what any snapshot looks at
  }
  /// A row to change: its chunk is copied first where a snapshot may be looking. Valid until the next snapshot().
  [[nodiscard]] Row& edit(std::size_t index) {
    const std::size_t chunk = index / kChunkRows;
    if (m_isShared[chunk]) {
      m_chunks[chunk] = std::make_shared<Chunk>(*m_chunks[chunk]);
      m_isShared[chunk] = false;
    }
    return (*m_chunks[chunk])[index % kChunkRows];
  }
  /// The rows as they are now.
  [[nodiscard]] Rows snapshot() {
    m_isShared.assign(m_chunks.size(), true);
    return *this;
  }

 private:
  static constexpr std::size_t kChunkRows = 8192;
  using Chunk = std::array<Row, kChunkRows>;

  std::vector<std::shared_ptr<Chunk>> m_chunks;
  std::vector<bool> m_isShared;  ///< by chunk: a snapshot has it too
  std::size_t m_size = 0;
};

}  // namespace quorvel
