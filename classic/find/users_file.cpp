#include "classic/find/users_file.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "classic/find/record_format.h"

namespace quorvel {
namespace {

constexpr std::size_t kBatchSize = 512 * 1024;
constexpr std::int32_t kSlotsPerBlock = 512;

/// The size of a file's slots, told by the mark at the end of the first one.
std::size_t slotSizeOf(const File& file) {
  for (const std::size_t size : {kLargeSlotSize, kLargestSlotSize}) {
    std::array<char, kSlotMark.size()> end{};
    const auto count = file.readAt(recordRoom(size), end);
    if (count.isOk() && std::string_view(end.data(), count.value()) == kSlotMark) return size;
  }
  return kRecordSize;
}

}  // namespace

UsersFileWriter::UsersFileWriter(FileSystem& files, std::filesystem::path path, FailureReporter onFailure,
                                 std::size_t slotSize)
    : m_files(files),
      m_path(std::move(path)),
      m_onFailure(std::move(onFailure)),
      m_slotSize(slotSize),
      m_writer([this](const std::string& batch) { return writeBatch(batch); }) {}

UsersFileWriter::~UsersFileWriter() {
  flush();
}

void UsersFileWriter::WriteSessionRecord(std::string_view record, std::int32_t recordNumber) {
  if (record.size() > recordRoom(m_slotSize)) {
    const Error error{ErrorCode::BadRecordLength, {}};
    return m_onFailure(decodeRecord(record, m_slotSize).value_or(UserAct()), recordNumber, error);
  }
  m_batch.resize(static_cast<std::size_t>(recordNumber - m_firstInBatch) * m_slotSize);
  if (hasSlotMark() && m_firstInBatch == 1 && recordNumber > 1)
    m_batch.replace(recordRoom(m_slotSize), kSlotMark.size(), kSlotMark);
  m_batch.append(record);
  if (m_batch.size() < kBatchSize) return;
  m_firstInBatch = recordNumber + 1;
  m_writer.append(m_batch);
}

void UsersFileWriter::flush() {
  (void)m_writer.finish();
  if (!m_batch.empty()) {
    m_firstInBatch += slotsIn(m_batch);
    (void)writeBatch(m_batch);
    m_batch.clear();
  }
  for (const Failure& failure : std::exchange(m_failures, {}))
    m_onFailure(failure.record, failure.recordNumber, failure.error);
}

Status UsersFileWriter::writeBatch(std::string_view batch) {
  const Status opened = m_file ? Status() : openFile();
  if (!opened.isOk()) {
    retryOneByOne(batch, opened.error());
  } else {
    const std::uint64_t offset = recordOffset(m_firstToWrite, m_slotSize);
    const Status written = m_file->writeAt(offset, batch);
    if (!written.isOk()) retryOneByOne(batch, written.error());
  }
  m_firstToWrite += slotsIn(batch);
  return {};  // later batches are tried all the same
}

Status UsersFileWriter::openFile() {
  auto opened = m_files.open(m_path, OpenMode::ReadWrite, Owner::Program);
  if (!opened.isOk()) return opened.error();
  m_file = std::move(opened.value());
  Status marked = writeSlotMark();  // first of all, since without it no record could be read
  if (!marked.isOk()) m_file.reset();
  return marked;
}

Status UsersFileWriter::writeSlotMark() {
  return hasSlotMark() ? m_file->writeAt(recordRoom(m_slotSize), kSlotMark) : Status();
}

std::int32_t UsersFileWriter::slotsIn(std::string_view batch) const {
  return static_cast<std::int32_t>((batch.size() + m_slotSize - 1) / m_slotSize);
}

void UsersFileWriter::retryOneByOne(std::string_view batch, const Error& error) {
  for (std::size_t at = 0; at < batch.size(); at += m_slotSize) {
    const std::string_view slot = batch.substr(at, m_slotSize);
    const std::string_view record = slot.substr(0, recordRoom(m_slotSize));
    if (record.find_first_not_of('\0') == std::string_view::npos) continue;  // there is none
    const std::int32_t recordNumber = m_firstToWrite + static_cast<std::int32_t>(at / m_slotSize);
    const std::uint64_t offset = recordOffset(recordNumber, m_slotSize);
    const Status written = m_file ? m_file->writeAt(offset, slot) : Status(error);
    if (written.isOk()) continue;
    if (m_file) cutAt(offset);
    if (m_file && offset == 0) (void)writeSlotMark();
    m_failures.push_back({decodeRecord(record, m_slotSize).value_or(UserAct()), recordNumber, written.error()});
  }
}

void UsersFileWriter::cutAt(std::uint64_t offset) {
  const auto size = m_file->size();
  if (size.isOk() && size.value() > offset) (void)m_file->resize(offset);
}

UsersFile::UsersFile(std::unique_ptr<File> file, std::size_t slotSize, std::int32_t recordCount)
    : m_file(std::move(file)), m_slotSize(slotSize), m_recordCount(recordCount) {}

Result<UsersFile> UsersFile::open(FileSystem& files, const std::filesystem::path& path, OpenMode mode) {
  const bool mayCreate = mode != OpenMode::Read;
  if (mayCreate && !files.Exist(path)) return Error{ErrorCode::FileNotFound, path};
  auto file = files.open(path, mode, Owner::Program);
  if (!file.isOk()) return file.error();
  const auto size = file.value()->size();
  if (!size.isOk()) return size.error();
  constexpr std::uint64_t kMostRecords = 0x7FFFFFFF;
  const std::size_t slotSize = slotSizeOf(*file.value());
  const std::uint64_t count = std::min((size.value() + slotSize - 1) / slotSize, kMostRecords);
  return UsersFile(std::move(file.value()), slotSize, static_cast<std::int32_t>(count));
}

const UserAct* UsersFile::read(std::int32_t recordNumber) {
  if (recordNumber < 1 || recordNumber > m_recordCount) return nullptr;
  const std::string_view bytes = slot(recordNumber);
  if (bytes.empty()) return nullptr;
  (void)decodeRecord(bytes, m_record, m_slotSize);
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
  return m_file->writeAt(recordOffset(m_firstInBlock, m_slotSize), m_block);
}

std::string_view UsersFile::slot(std::int32_t recordNumber) {
  const std::int32_t first = (recordNumber - 1) / kSlotsPerBlock * kSlotsPerBlock + 1;
  if (first != m_firstInBlock) {
    (void)flush();  // a tree index that cannot be written is ignored, as every failure of a tree build
    m_block.resize(static_cast<std::size_t>(kSlotsPerBlock) * m_slotSize);
    const auto count = m_file->readAt(recordOffset(first, m_slotSize), m_block);
    const auto left = static_cast<std::size_t>(m_recordCount - first) * m_slotSize;  // and a part of the last slot
    if (!count.isOk()) m_status = count.error();
    if (count.isOk() && count.value() <= std::min(left, m_block.size() - 1))
      m_status = Error{ErrorCode::InputPastEnd, {}};
    m_block.resize(count.isOk() ? count.value() : 0);
    m_firstInBlock = first;
  }
  const auto at = static_cast<std::size_t>(recordNumber - first) * m_slotSize;
  return at < m_block.size() ? std::string_view(m_block).substr(at, recordRoom(m_slotSize)) : std::string_view();
}

}  // namespace quorvel
