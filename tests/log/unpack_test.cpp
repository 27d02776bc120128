#include "log/unpack.h"

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/memory_files.h"
#include "tests/support/temp_folder.h"

namespace quorvel {
namespace {

using test::MemoryFiles;
using test::TempFolder;

struct Packing {
  const char* name;
  int (*filter)(archive*);
  int (*format)(archive*);
};
const Packing kAlone[] = {{"gz", archive_write_add_filter_gzip, archive_write_set_format_raw},
                          {"bz2", archive_write_add_filter_bzip2, archive_write_set_format_raw},
                          {"xz", archive_write_add_filter_xz, archive_write_set_format_raw},
                          {"zst", archive_write_add_filter_zstd, archive_write_set_format_raw},
                          {"lz4", archive_write_add_filter_lz4, archive_write_set_format_raw}};
const Packing kArchives[] = {{"zip", archive_write_add_filter_none, archive_write_set_format_zip},
                             {"tar", archive_write_add_filter_none, archive_write_set_format_ustar},
                             {"tar.xz", archive_write_add_filter_xz, archive_write_set_format_ustar}};

/// The bytes of the named files, packed.
std::string pack(const Packing& packing, const std::vector<std::pair<std::string, std::string>>& files) {
  std::string packed(4'000'000, '\0');
  std::size_t used = 0;
  archive* const a = archive_write_new();
  packing.filter(a);
  packing.format(a);
  archive_write_open_memory(a, packed.data(), packed.size(), &used);
  for (const auto& [name, content] : files) {
    archive_entry* const entry = archive_entry_new();
    archive_entry_set_pathname(entry, name.c_str());
    archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
    archive_entry_set_filetype(entry, name.ends_with('/') ? AE_IFDIR : AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_write_header(a, entry);
    archive_write_data(a, content.data(), content.size());
    archive_entry_free(entry);
  }
  archive_write_close(a);
  archive_write_free(a);
  packed.resize(used);
  return packed;
}

std::string lines(int count) {
  std::string text;
  for (int i = 0; i < count; ++i)
    text += "[2] Mon 06Jun05 08:03:11 - (" + std::to_string(100000 + i * 7919 % 900000) + ") USER user" +
            std::to_string(i) + "\r\n";
  return text;
}

std::unique_ptr<File> fileOf(const std::string& bytes) {
  MemoryFiles files;
  files.put("packed", bytes);
  return std::move(files.open("packed", OpenMode::Read).value());
}

std::string wholeOf(const File& file) {
  std::string bytes(static_cast<std::size_t>(file.size().value()), '\0');
  EXPECT_EQ(file.readAt(0, bytes).value(), bytes.size());
  return bytes;
}

/// The stream's bytes, read in pieces of a size that fits nothing.
std::string wholeOf(LogSource& source) {
  std::string whole, piece(997, '\0');
  for (std::size_t count = 1; count > 0;) {
    count = source.read(piece).value();
    whole.append(piece, 0, count);
  }
  return whole;
}

std::vector<ReadableLog> unpack(const std::string& packed, const std::function<bool(std::uint64_t)>& keepGoing = {}) {
  const TempFolder folder;
  auto logs = unpackAll(systemFiles(), fileOf(packed), "p", {folder.path(), keepGoing});
  EXPECT_TRUE(logs.isOk()) << logs.error().sentence();
  EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "unpacked files have no name";
  return logs.isOk() ? std::move(logs.value()) : std::vector<ReadableLog>();
}

TEST(Unpack, EachPackingIsKnownByItsContentAndGivesTheLogBack) {
  const std::string log = lines(5000);
  for (const Packing& packing : kAlone) {
    SCOPED_TRACE(packing.name);
    const std::string packed = pack(packing, {{"log", log}});
    ASSERT_TRUE(isPacked(std::string_view(packed).substr(0, kPackedHead)));
    const auto stream = unpackedStream(fileOf(packed), "p", 0);
    ASSERT_TRUE(stream.isOk() && stream.value());
    EXPECT_EQ(wholeOf(*stream.value()), log);
    EXPECT_EQ(stream.value()->note(), "");
    const auto logs = unpack(packed);
    ASSERT_EQ(logs.size(), 1u);
    EXPECT_EQ(logs[0].name, "p");
    EXPECT_EQ(wholeOf(*logs[0].file), log);
  }
  EXPECT_FALSE(isPacked(log));
  EXPECT_FALSE(isPacked(""));
}

TEST(Unpack, EveryPlainFileOfAnArchiveIsALogAndPackedOnesAreUnpackedOnceMore) {
  const std::string inner = pack(kAlone[0], {{"log", "two\n"}});
  for (const Packing& packing : kArchives) {
    SCOPED_TRACE(packing.name);
    const std::string packed = pack(packing, {{"logs/", ""}, {"logs/a.log", "one\n"}, {"b.gz", inner}, {"empty", ""}});
    ASSERT_TRUE(isPacked(std::string_view(packed).substr(0, kPackedHead)));
    EXPECT_FALSE(unpackedStream(fileOf(packed), "p", 0).value()) << "an archive is no single log";
    const auto logs = unpack(packed);
    ASSERT_EQ(logs.size(), 3u);
    EXPECT_EQ(logs[0].name, "p/logs/a.log");
    EXPECT_EQ(wholeOf(*logs[0].file), "one\n");
    EXPECT_EQ(logs[1].name, "p/b.gz");
    EXPECT_EQ(wholeOf(*logs[1].file), "two\n");
    EXPECT_EQ(wholeOf(*logs[2].file), "");
  }
}

TEST(Unpack, DamageEndsTheLogAndIsTold) {
  const std::string log = lines(90'000);
  for (const Packing& packing : kAlone) {
    SCOPED_TRACE(packing.name);
    const std::string packed = pack(packing, {{"log", log}});
    const std::string cut = packed.substr(0, packed.size() - packed.size() / 20);
    const auto stream = unpackedStream(fileOf(cut), "p", 0);
    ASSERT_TRUE(stream.isOk() && stream.value());
    const std::string got = wholeOf(*stream.value());
    EXPECT_TRUE(log.starts_with(got) && got.size() < log.size());
    EXPECT_NE(stream.value()->note().find("p: the packed file is damaged"), std::string::npos)
        << stream.value()->note();
    EXPECT_NE(stream.value()->note().find(std::to_string(got.size()) + " unpacked bytes"), std::string::npos);
  }
  for (const std::string& head : {std::string("\x1F\x8B"), std::string("PK\x03\x04"), std::string("BZhx")}) {
    const auto stream = unpackedStream(fileOf(head), "p", 0);
    ASSERT_FALSE(stream.isOk());
    EXPECT_NE(stream.error().sentence().find("p: The packed file is damaged"), std::string::npos)
        << stream.error().sentence();
  }
}

TEST(Unpack, StopsWhenTold) {
  const std::string log(20'000'000, 'x');
  const auto logs = unpack(pack(kAlone[0], {{"log", log}}), [](std::uint64_t bytes) { return bytes < 5'000'000; });
  ASSERT_EQ(logs.size(), 1u);
  EXPECT_LT(logs[0].file->size().value(), 8'000'000u);
}

}  // namespace
}  // namespace quorvel
