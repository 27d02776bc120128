// The files of this machine: what becomes of links, modes and torn lines.
#include "log/file_system.h"

#include <gtest/gtest.h>

#include "log/text.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

using std::filesystem::perms;

TEST(FileSystem, AReplacedFileKeepsItsModeAndItsLink) {
  const TempFolder folder;
  const auto file = folder.write("settings", "old");
  std::filesystem::permissions(file, perms::owner_read | perms::owner_write);
  std::filesystem::create_symlink("settings", folder / "link");
  std::filesystem::create_symlink(folder / "link", folder / "link to it");
  std::filesystem::create_symlink("new", folder / "dangling");
  EXPECT_TRUE(systemFiles().replaceWhole(folder / "link to it", "text").isOk());
  EXPECT_TRUE(systemFiles().replaceWhole(folder / "dangling", "text").isOk());
  EXPECT_EQ(folder.read("settings") + folder.read("new"), "texttext");
  EXPECT_EQ(std::filesystem::status(file).permissions(), perms::owner_read | perms::owner_write);
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link") && std::filesystem::is_symlink(folder / "link to it"));
  const auto left = std::distance(std::filesystem::directory_iterator(folder.path()), {});
  EXPECT_EQ(left, 5) << "and no temporary file";
}

TEST(FileSystem, AWorkingFileIsNeverBehindALink) {
  const TempFolder folder;
  folder.write("victim", "kept");
  std::filesystem::create_symlink("victim", folder / "link");
  std::filesystem::create_symlink("missing", folder / "dangling");
  for (const auto mode : {OpenMode::Read, OpenMode::ReadWrite, OpenMode::Append, OpenMode::Replace}) {
    for (const char* const name : {"link", "dangling", "/dev/null", "."}) {
      const auto file = systemFiles().open(folder / name, mode, Owner::Program);
      EXPECT_TRUE(!file.isOk() && file.error().code == ErrorCode::PathFileAccess) << name;
    }
    EXPECT_TRUE(systemFiles().open(folder / "victim", OpenMode::Append, Owner::Program).isOk());
  }
  EXPECT_EQ(folder.read("victim"), "kept");
  EXPECT_FALSE(folder.has("missing"));
}

TEST(FileSystem, LinesAreAppendedToWholeLines) {
  const TempFolder folder;
  const std::pair<const char*, const char*> cases[] = {
      {"", "new"}, {"whole\r\n", "whole\r\nnew"}, {"to", "to\r\nnew"}, {"torn\r", "torn\r\r\nnew"}};
  for (const auto& [before, after] : cases) {
    const auto path = folder.write("out.txt", before);
    EXPECT_TRUE(systemFiles().openToAppendLines(path).value()->append("new", {}).isOk());
    EXPECT_EQ(folder.read("out.txt"), after);
  }
}

/// Writes half of what is appended, lets somebody else write a line, and then finds the disk full.
class FileOnFullDisk final : public File {
 public:
  FileOnFullDisk(const std::filesystem::path& path, std::string_view others)
      : m_file(std::move(systemFiles().open(path, OpenMode::Append).value())), m_others(others) {}

  Result<std::size_t> readAt(std::uint64_t offset, std::span<char> buffer) const override {
    return m_file->readAt(offset, buffer);
  }
  Status writeAt(std::uint64_t offset, std::string_view data) override { return m_file->writeAt(offset, data); }
  Status append(std::string_view data, std::string_view /*end*/) override {
    (void)m_file->append(data.substr(0, data.size() / 2), m_others);
    return Error{ErrorCode::DiskFull, {}};
  }
  Status resize(std::uint64_t length) override { return m_file->resize(length); }
  Result<std::uint64_t> size() const override { return m_file->size(); }
  Status sync() override { return m_file->sync(); }

 private:
  std::unique_ptr<File> m_file;
  std::string_view m_others;
};

TEST(FileSystem, TornLinesAreCutButNothingOfOthers) {
  const TempFolder folder;
  const std::pair<std::string_view, const char*> cases[] = {
      {"", "old\r\n1\r\n"}, {"!\r\n", "old\r\n1\r\n2!\r\n"}, {"somebody's\r\n", "old\r\n1\r\n2somebody's\r\n"}};
  for (const auto& [others, after] : cases) {
    const auto path = folder.write("error.log", "old\r\n");
    EXPECT_FALSE(FileOnFullDisk(path, others).appendLines("1\r\n23456").isOk());
    EXPECT_EQ(folder.read("error.log"), after);
  }
}

}  // namespace
}  // namespace quorvel::test
