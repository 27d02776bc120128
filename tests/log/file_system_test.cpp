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

}  // namespace
}  // namespace quorvel::test
