#include "classic/find/users_file.h"

#include <algorithm>
#include <new>
#include <span>
#include <utility>

#include "classic/find/record_format.h"
#include "log/memory_limit.h"

namespace quorvel {
namespace {

constexpr std::size_t kBatchSize = 4096 * kRecordSize;
/// Reserved in the file where records come in whole batches.
constexpr std::size_t kReserved = 64 * kBatchSize;
constexpr std::int32_t kSlotsPerBlock = 512;
/// The Position of a slot without a record, which none has.
constexpr std::string_view kEmptySlotStart{"\0\0\0\0", 4};

std::int32_t slotsIn(std::string_view batch) {
  return static_cast<std::int32_t>((batch.size() + kRecordSize - 1) / kRecordSize);
}

}  // namespace

UsersFileWriter::UsersFileWriter(FileSystem& files, std::filesystem::path path, FailureReporter onFailure)
    : m_files(files),
      m_path(std::move(path)),
      m_onFailure(std::move(onFailure)),
      m_writer([this](const std::string& batch) { return writeBatch(batch); }) {}

UsersFileWriter::~UsersFileWriter() {
  asMemoryAllows([this] { flush(); });
}

void UsersFileWriter::WriteSessionRecord(std::string_view record, std::int32_t recordNumber) {
  if (record.size() > kRecordSize) {
    return m_onFailure(decodeRecord(record).value_or(UserAct()), recordNumber, {ErrorCode::BadRecordLength, {}});
  }
  m_batch.resize(static_cast<std::size_t>(recordNumber - m_firstInBatch) * kRecordSize);
  m_batch.append(record);
  if (m_batch.size() < kBatchSize) return;
  m_firstInBatch = recordNumber + 1;
  m_writer.append(m_batch);
}

void UsersFileWriter::flush() {
  if (!m_writer.finish().isOk()) throw std::bad_alloc();  // the only failure that writeBatch() does not keep
  if (!m_batch.empty()) {
    m_firstInBatch += slotsIn(m_batch);
    (void)writeBatch(m_batch);
    m_batch.clear();
  }
  for (const Failure& failure : std::exchange(m_failures, {}))
    m_onFailure(failure.record, failure.recordNumber, failure.error);
}

Status UsersFileWriter::writeBatch(std::string_view batch) {
  if (!m_file) {
    auto opened = m_files.open(m_path, OpenMode::ReadWrite);
    if (opened.isOk()) {
      m_file = std::move(opened.value());
    } else {
      retryOneByOne(batch, opened.error());
    }
  }
  if (m_file) {
    const std::uint64_t offset = recordOffset(m_firstToWrite);
    if (batch.size() > kBatchSize / 2 && offset + kBatchSize > m_reservedTo) {
      m_file->reserve(offset, kReserved);
      m_reservedTo = offset + kReserved;
    }
    const Status written = m_file->writeAt(offset, batch);
    if (!written.isOk()) retryOneByOne(batch, written.error());
  }
  m_firstToWrite += slotsIn(batch);
  return {};  // later batches are tried all the same
}

void UsersFileWriter::retryOneByOne(std::string_view batch, const Error& error) {
  for (std::size_t at = 0; at < batch.size(); at += kRecordSize) {
    const std::string_view slot = batch.substr(at, kRecordSize);
    if (slot.starts_with(kEmptySlotStart)) continue;
    const std::int32_t recordNumber = m_firstToWrite + static_cast<std::int32_t>(at / kRecordSize);
    const Status written = m_file ? m_file->writeAt(recordOffset(recordNumber), slot) : Status(error);
    if (written.isOk()) continue;
    if (m_file) cutAt(recordOffset(recordNumber));
    m_failures.push_back({decodeRecord(slot).value_or(UserAct()), recordNumber, written.error()});
  }
}

void UsersFileWriter::cutAt(std::uint64_t offset) {
  const auto size = m_file->size();
  if (size.isOk() && size.value() > offset) (void)m_file->resize(offset);
}

UsersFile::UsersFile(std::unique_ptr<File> file, std::int32_t recordCount)
    : m_file(std::move(file)), m_recordCount(recordCount) {}

Result<UsersFile> UsersFile::open(FileSystem& files, const std::filesystem::path& path, OpenMode mode) {
  const bool mayCreate = mode != OpenMode::Read;
  if (mayCreate && !files.Exist(path)) return Error{ErrorCode::FileNotFound, path};
  auto file = files.open(path, mode);
  if (!file.isOk()) return file.error();
  const auto size = file.value()->size();
  if (!size.isOk()) return size.error();
  constexpr std::uint64_t kMostRecords = 0x7FFFFFFF;
  const std::uint64_t count = std::min((size.value() + kRecordSize - 1) / kRecordSize, kMostRecords);
  return UsersFile(std::move(file.value()), static_cast<std::int32_t>(count));
}

const UserAct* UsersFile::read(std::int32_t recordNumber) {
  if (recordNumber < 1 || recordNumber > m_recordCount) return nullptr;
  const std::string_view bytes = slot(recordNumber);
  if (bytes.empty()) return nullptr;
  (void)decodeRecord(bytes, m_record);
  return &m_record;
}

std::optional<std::int32_t> UsersFile::treeIndex(std::int32_t recordNumber) {
  if (recordNumber < 1 || recordNumber > m_recordCount) return std::nullopt;
  return decodeTreeIndex(slot(recordNumber));
}

void UsersFile::setTreeIndex(std::int32_t recordNumber, std::int32_t treeIndex) {
  const std::string_view bytes = slot(recordNumber);
  if (bytes.empty()) return;
  const auto at = static_cast<std::size_t>(bytes.data() - m_block.data());
  if (encodeTreeIndex(treeIndex, std::span(m_block).subspan(at, bytes.size()))) m_isChanged = true;
}

Status UsersFile::flush() {
  if (!std::exchange(m_isChanged, false)) return {};
  return m_file->writeAt(recordOffset(m_firstInBlock), m_block);
}

std::string_view UsersFile::slot(std::int32_t recordNumber) {
  const std::int32_t first = (recordNumber - 1) / kSlotsPerBlock * kSlotsPerBlock + 1;
  if (first != m_firstInBlock) {
    (void)flush();  // a tree index that cannot be written is ignored, as every failure of a tree build
    m_block.resize(static_cast<std::size_t>(kSlotsPerBlock) * kRecordSize);
    const auto count = m_file->readAt(recordOffset(first), m_block);
    const auto left = static_cast<std::size_t>(m_recordCount - first) * kRecordSize;  // and a part of the last slot
    if (!count.isOk()) m_status = count.error();
    if (count.isOk() && count.value() <= std::min(left, m_block.size() - 1))
      m_status = Error{ErrorCode::InputPastEnd, {}};
    m_block.resize(count.isOk() ? count.value() : 0);
    m_firstInBlock = first;
  }
  const auto at = static_cast<std::size_t>(recordNumber - first) * kRecordSize;
  return at < m_block.size() ? std::string_view(m_block).substr(at, kRecordSize) : std::string_view();
}

}  // namespace quorvel
