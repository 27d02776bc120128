#include "log/unpack.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include "log/text.h"

namespace quorvel {
namespace {

constexpr std::size_t kBlock = 256 * 1024;
/// A packed log in an archive is unpacked as well; nothing packed in that one.
constexpr int kDeepest = 2;
constexpr std::size_t kMostLogs = 10'000;

/// An archive being read from a file, front to back.
class Archive {
 public:
  explicit Archive(std::shared_ptr<File> packed) : m_packed(std::move(packed)), m_archive(archive_read_new()) {
    archive_read_support_filter_gzip(m_archive.get());
    archive_read_support_filter_bzip2(m_archive.get());
    archive_read_support_filter_xz(m_archive.get());
    archive_read_support_filter_zstd(m_archive.get());
    archive_read_support_filter_lz4(m_archive.get());
    archive_read_support_format_tar(m_archive.get());
    archive_read_support_format_zip(m_archive.get());
    archive_read_support_format_raw(m_archive.get());
    archive_read_set_read_callback(m_archive.get(), readPacked);
    archive_read_set_seek_callback(m_archive.get(), seekPacked);
    archive_read_set_skip_callback(m_archive.get(), skipPacked);
    archive_read_set_callback_data(m_archive.get(), this);
    m_isGood = archive_read_open1(m_archive.get()) == ARCHIVE_OK;
  }

  [[nodiscard]] const std::shared_ptr<File>& packed() const { return m_packed; }

  /// Goes to the next plain file; false at the end and where the archive is damaged.
  [[nodiscard]] bool next() {
    while (m_isGood) {
      archive_entry* entry = nullptr;
      const int outcome = archive_read_next_header(m_archive.get(), &entry);
      if (outcome == ARCHIVE_EOF) return false;
      if (outcome < ARCHIVE_WARN) m_isGood = false;
      if (!m_isGood || archive_entry_filetype(entry) != AE_IFREG) continue;
      const char* const name = archive_entry_pathname(entry);
      m_entry = name != nullptr ? name : "";
      m_isAlone = archive_format(m_archive.get()) == ARCHIVE_FORMAT_RAW;
      // What begins like a packed file and is none would be handed out as it stands.
      m_isGood = !m_isAlone || archive_filter_code(m_archive.get(), 0) != ARCHIVE_FILTER_NONE;
      return m_isGood;
    }
    return false;
  }
  [[nodiscard]] const std::string& entry() const { return m_entry; }
  /// The file is one packed log, no archive.
  [[nodiscard]] bool isAlone() const { return m_isAlone; }

  /// Fills buffer from the file gone to; less only at its end and where it is damaged.
  [[nodiscard]] std::size_t read(std::span<char> buffer) {
    std::size_t done = 0;
    while (m_isGood && done < buffer.size()) {
      const la_ssize_t count = archive_read_data(m_archive.get(), buffer.data() + done, buffer.size() - done);
      if (count == 0) break;
      if (count > 0) done += static_cast<std::size_t>(count);
      m_isGood = count > 0 || count == ARCHIVE_RETRY || count == ARCHIVE_WARN;
    }
    return done;
  }

  /// What is wrong with the archive, as half a sentence; empty while it is good.
  [[nodiscard]] std::string damage() const {
    if (m_isGood) return {};
    const char* const text = archive_error_string(m_archive.get());
    return validUtf8(text != nullptr ? text : "it breaks off in its head");
  }

 private:
  struct Free {
    void operator()(archive* a) const { archive_read_free(a); }
  };

  static la_ssize_t readPacked(archive*, void* self, const void** buffer) {
    auto& me = *static_cast<Archive*>(self);
    *buffer = me.m_buffer.data();
    const auto count = me.m_packed->readAt(me.m_offset, me.m_buffer);
    if (!count.isOk()) {
      archive_set_error(me.m_archive.get(), count.error().number(), "%s", count.error().description().c_str());
      return ARCHIVE_FATAL;
    }
    me.m_offset += count.value();
    return static_cast<la_ssize_t>(count.value());
  }

  static la_int64_t seekPacked(archive*, void* self, la_int64_t offset, int whence) {
    auto& me = *static_cast<Archive*>(self);
    const auto size = me.m_packed->size();
    if (!size.isOk()) return ARCHIVE_FATAL;
    const auto end = static_cast<la_int64_t>(size.value());
    const la_int64_t from = whence == SEEK_CUR ? static_cast<la_int64_t>(me.m_offset) : whence == SEEK_END ? end : 0;
    me.m_offset = static_cast<std::uint64_t>(std::clamp<la_int64_t>(from + offset, 0, end));
    return static_cast<la_int64_t>(me.m_offset);
  }

  static la_int64_t skipPacked(archive*, void* self, la_int64_t count) {
    auto& me = *static_cast<Archive*>(self);
    me.m_offset += static_cast<std::uint64_t>(count);
    return count;
  }

  std::shared_ptr<File> m_packed;
  std::vector<char> m_buffer = std::vector<char>(kBlock);
  std::uint64_t m_offset = 0;
  std::string m_entry;
  bool m_isAlone = false;
  bool m_isGood = false;
  std::unique_ptr<archive, Free> m_archive;
};

std::string damageNote(const std::string& name, std::uint64_t bytes, const std::string& damage) {
  return name + ": the packed file is damaged (" + damage + "); " + std::to_string(bytes) +
         " unpacked bytes could be read.";
}

class UnpackedStream final : public LogSource {
 public:
  UnpackedStream(std::unique_ptr<Archive> archive, std::string name, std::int64_t changedTime)
      : m_archive(std::move(archive)), m_name(std::move(name)), m_changedTime(changedTime) {}

  [[nodiscard]] std::string name() const override { return m_name; }
  [[nodiscard]] std::uint64_t size() const override { return 0; }
  [[nodiscard]] std::int64_t changedTime() const override { return m_changedTime; }
  [[nodiscard]] bool rewind() override {
    m_archive = std::make_unique<Archive>(m_archive->packed());
    m_bytes = 0;
    return m_archive->next();
  }
  [[nodiscard]] Result<std::size_t> read(std::span<char> buffer) override {
    const std::size_t count = m_archive->read(buffer);
    m_bytes += count;
    return count;
  }
  [[nodiscard]] std::string note() const override {
    const std::string damage = m_archive->damage();
    return damage.empty() ? std::string() : damageNote(m_name, m_bytes, damage);
  }

 private:
  std::unique_ptr<Archive> m_archive;
  std::string m_name;
  std::int64_t m_changedTime;
  std::uint64_t m_bytes = 0;
};

/// Unpacks into files without a name, as long as there is room.
class Unpacking {
 public:
  Unpacking(FileSystem& files, const UnpackPlace& place) : m_files(files), m_place(place) {
    std::error_code error;
    const auto space = std::filesystem::space(place.folder, error);
    m_room = error ? ~std::uint64_t{0} : space.available - space.available / 20;
  }

  Status unpack(std::shared_ptr<File> packed, const std::string& name, int depth) {
    Archive archive(std::move(packed));
    while (m_goOn && m_logs.size() < kMostLogs && archive.next()) {
      const std::string logName = archive.isAlone() ? name : name + "/" + validUtf8(archive.entry());
      auto file = m_files.openTemporary(m_place.folder);
      if (!file.isOk()) return file.error();
      ReadableLog log{logName, std::move(file.value()), {}};
      const auto bytes = copy(archive, *log.file, logName);
      if (!bytes.isOk()) return bytes.error();
      if (!archive.damage().empty()) log.note = damageNote(logName, bytes.value(), archive.damage());
      if (const Status status = take(std::move(log), depth); !status.isOk()) return status;
    }
    if (m_logs.empty() && !archive.damage().empty()) {
      return Error{ErrorCode::DeviceIoError, name, "The packed file is damaged (" + archive.damage() + ")"};
    }
    if (m_logs.size() == kMostLogs) {
      m_logs.back().note += name + ": more than " + std::to_string(kMostLogs) + " files; the others are left out.";
    }
    return {};
  }

  [[nodiscard]] std::vector<ReadableLog> takeLogs() { return std::move(m_logs); }

 private:
  /// Keeps a log, or what is in it where it is packed once more.
  Status take(ReadableLog log, int depth) {
    std::array<char, kPackedHead> head{};
    const auto count = log.file->readAt(0, head);
    if (!count.isOk()) return count.error();
    if (depth < kDeepest && isPacked({head.data(), count.value()})) {
      return unpack(std::move(log.file), log.name, depth + 1);
    }
    m_logs.push_back(std::move(log));
    return {};
  }

  Result<std::uint64_t> copy(Archive& archive, File& file, const std::string& name) {
    std::uint64_t bytes = 0;
    while (m_goOn) {
      const std::size_t count = archive.read(m_buffer);
      if (count > m_room - std::min(m_room, m_written)) {
        return Error{ErrorCode::DiskFull, m_place.folder, "There is not enough room to unpack " + name};
      }
      if (count == 0) break;
      if (const Status status = file.writeAt(bytes, {m_buffer.data(), count}); !status.isOk()) return status.error();
      bytes += count;
      m_written += count;
      if (m_place.keepGoing) m_goOn = m_place.keepGoing(m_written);
    }
    return bytes;
  }

  FileSystem& m_files;
  const UnpackPlace& m_place;
  std::vector<char> m_buffer = std::vector<char>(1024 * 1024);
  std::vector<ReadableLog> m_logs;
  std::uint64_t m_room = 0;
  std::uint64_t m_written = 0;
  bool m_goOn = true;
};

}  // namespace

bool isPacked(std::string_view head) {
  using namespace std::string_view_literals;
  static constexpr std::array kMagics = {"\x1F\x8B"sv,         "BZh"sv,       "\xFD\x37zXZ\0"sv, "\x28\xB5\x2F\xFD"sv,
                                         "\x04\x22\x4D\x18"sv, "PK\x03\x04"sv};
  const bool isKnown =
      std::any_of(kMagics.begin(), kMagics.end(), [head](std::string_view magic) { return head.starts_with(magic); });
  return isKnown || (head.size() > 262 && head.substr(257, 5) == "ustar");
}

std::string unpackerVersion() {
  return ARCHIVE_VERSION_STRING;
}

Result<std::unique_ptr<LogSource>> unpackedStream(std::shared_ptr<File> packed, std::string name,
                                                  std::int64_t changedTime) {
  auto archive = std::make_unique<Archive>(std::move(packed));
  if (!archive->next()) {
    const std::string damage = archive->damage();
    return Error{ErrorCode::DeviceIoError, name,
                 "The packed file is " + (damage.empty() ? "empty" : "damaged (" + damage + ")")};
  }
  if (!archive->isAlone()) return std::unique_ptr<LogSource>();
  return std::unique_ptr<LogSource>(std::make_unique<UnpackedStream>(std::move(archive), std::move(name), changedTime));
}

Result<std::vector<ReadableLog>> unpackAll(FileSystem& files, std::shared_ptr<File> packed, const std::string& name,
                                           const UnpackPlace& place) {
  Unpacking unpacking(files, place);
  if (const Status status = unpacking.unpack(std::move(packed), name, 1); !status.isOk()) return status.error();
  return unpacking.takeLogs();
}

}  // namespace quorvel
