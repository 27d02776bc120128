#include "activity/follow_reading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "log/unpack.h"
#include "tests/support/temp_folder.h"

namespace quorvel {
namespace {

using test::TempFolder;

/// A server that writes one line a second, each of a session of its own, and what rotates its log.
class Writer {
 public:
  explicit Writer(const TempFolder& folder) : m_folder(folder.path()) {}

  void line() { write(nextLine()); }
  void halfLine() {
    const std::string text = nextLine();
    write(text.substr(0, text.size() / 2));
    m_half = text.substr(text.size() / 2);
  }
  /// The lines that the log holds are renamed away, and a new file takes their place.
  void rename(bool leavesNone = false) {
    shift();
    std::filesystem::rename(log(), m_folder / "server.log.1");
    if (!leavesNone) append(log(), "");
  }
  void copyAndEmpty() {
    shift();
    std::filesystem::copy_file(log(), m_folder / "server.log.1");
    empty();
  }
  void empty() { std::filesystem::resize_file(log(), 0); }
  void pack(int number) {
    const auto path = m_folder / ("server.log." + std::to_string(number));
    if (unpackerVersion().empty() || !std::filesystem::exists(path)) return;
    EXPECT_EQ(std::system(("gzip -f " + path.string()).c_str()), 0);
  }
  [[nodiscard]] std::filesystem::path log() const { return m_folder / "server.log"; }
  [[nodiscard]] const std::vector<std::string>& written() const { return m_written; }

 private:
  std::string nextLine() {
    const int number = static_cast<int>(m_written.size());
    char text[96];
    std::snprintf(text, sizeof text, "[6] Mon 06Jun05 %02d:%02d:%02d - (%06d) Connected to 10.0.0.%d\r\n",
                  8 + number / 3600, number / 60 % 60, number % 60, number + 1, number % 250 + 1);
    char key[16];
    std::snprintf(key, sizeof key, "%06d", number + 1);
    m_written.emplace_back(key);
    return text;
  }
  void write(const std::string& text) {
    append(log(), m_half + text);
    m_half.clear();
  }
  static void append(const std::filesystem::path& path, const std::string& text) {
    auto file = systemFiles().open(path, OpenMode::Append);
    ASSERT_TRUE(file.isOk());
    ASSERT_TRUE(file.value()->append(text, "").isOk());
  }
  void shift() {
    for (int i = 400; i > 0; --i) {
      for (const char* const packing : {"", ".gz"}) {
        const auto from = m_folder / ("server.log." + std::to_string(i) + packing);
        if (std::filesystem::exists(from))
          std::filesystem::rename(from, m_folder / ("server.log." + std::to_string(i + 1) + packing));
      }
    }
  }

  std::filesystem::path m_folder;
  std::string m_half;
  std::vector<std::string> m_written;
};

FollowReading follow(const TempFolder& folder) {
  return {systemFiles(), folder.path() / "server.log", "server.log", {folder.path()}};
}

std::vector<std::string> sessionKeys(FollowReading& reading) {
  const Activity activity = reading.snapshot();
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < activity.sessions.size(); ++i)
    keys.emplace_back(activity.text(activity.sessions[i].key));
  return keys;
}

TEST(FollowReading, readsWhatIsNewAndWaitsForTheEndOfALine) {
  const TempFolder folder;
  Writer writer(folder);
  writer.line();
  FollowReading reading = follow(folder);
  ASSERT_TRUE(reading.look().isOk());
  EXPECT_EQ(sessionKeys(reading), writer.written());

  writer.halfLine();
  ASSERT_TRUE(reading.look().isOk());
  EXPECT_EQ(sessionKeys(reading).size(), 1u);
  writer.line();
  ASSERT_TRUE(reading.look().isOk());
  EXPECT_EQ(sessionKeys(reading), writer.written());
  const std::uint64_t read = reading.bytesRead();
  ASSERT_TRUE(reading.look().isOk());
  EXPECT_EQ(reading.bytesRead(), read);
}

TEST(FollowReading, tellsThatALogWasEmptied) {
  const TempFolder folder;
  Writer writer(folder);
  writer.line();
  FollowReading reading = follow(folder);
  ASSERT_TRUE(reading.look().isOk());
  writer.empty();
  writer.line();
  ASSERT_TRUE(reading.look().isOk());
  const auto notes = reading.takeNotes();
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_NE(notes.front().find("was emptied"), std::string::npos) << notes.front();
  EXPECT_EQ(sessionKeys(reading), writer.written());
}

/// Nothing that could still be read is lost or read twice, however often the log is rotated between two looks.
TEST(FollowReading, losesNothingAcrossRotations) {
  for (unsigned seed = 0; seed < 10; ++seed) {
    const TempFolder folder;
    Writer writer(folder);
    std::mt19937 random(seed);
    writer.line();
    FollowReading reading = follow(folder);
    ASSERT_TRUE(reading.look().isOk());
    for (int i = 0; i < 60; ++i) {
      switch (random() % 8) {
        case 0:
          writer.rename();
          break;
        case 1:
          writer.rename(true);
          break;
        case 2:
          writer.copyAndEmpty();
          break;
        case 3:
          writer.pack(1 + static_cast<int>(random() % 3));
          continue;
        case 4:
          writer.halfLine();
          break;
        case 5:
        case 6:
          ASSERT_TRUE(reading.look().isOk());
          continue;
        default:
          break;
      }
      writer.line();
    }
    ASSERT_TRUE(reading.look().isOk());
    ASSERT_EQ(sessionKeys(reading), writer.written()) << "seed " << seed;
    ASSERT_TRUE(reading.takeNotes().empty());
  }
}

TEST(FollowReading, goesOnWhereAnEarlierRunEndedWhereverThatIsNow) {
  for (const int rotations : {0, 1, 3}) {
    for (const bool copies : {false, true}) {
      const TempFolder folder;
      Writer writer(folder);
      writer.line();
      writer.rename();
      writer.line();
      writer.line();
      LogPlace place;
      LogTime from = kNoTime;
      {
        FollowReading reading = follow(folder);
        ASSERT_TRUE(reading.look().isOk());
        place = reading.place();
        from = reading.snapshot().logs.front().ledger.first;
      }
      for (int i = 0; i < rotations; ++i) {
        writer.line();
        copies ? writer.copyAndEmpty() : writer.rename();
        writer.line();
        writer.pack(2);
      }
      FollowReading reading = follow(folder);
      reading.resume(place, from);
      ASSERT_TRUE(reading.look().isOk());
      EXPECT_TRUE(reading.hasResumed());
      EXPECT_EQ(sessionKeys(reading).size(), 2u) << "the first file is older than what is asked for";
      ASSERT_TRUE(reading.look().isOk());
      EXPECT_EQ(sessionKeys(reading).size(), writer.written().size() - 1);
      EXPECT_TRUE(reading.takeNotes().empty());
    }
  }
}

TEST(FollowReading, tellsThatThePlaceIsGone) {
  const TempFolder folder;
  Writer writer(folder);
  writer.line();
  FollowReading before = follow(folder);
  ASSERT_TRUE(before.look().isOk());
  writer.empty();
  writer.line();
  FollowReading reading = follow(folder);
  reading.resume(before.place(), before.snapshot().logs.front().ledger.first);
  ASSERT_TRUE(reading.look().isOk());
  EXPECT_FALSE(reading.hasResumed());
  EXPECT_EQ(reading.takeNotes().size(), 1u);
  EXPECT_EQ(sessionKeys(reading), std::vector<std::string>{"000002"});
}

}  // namespace
}  // namespace quorvel
