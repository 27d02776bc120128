#include "activity/log_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tests/support/sample_log.h"
#include "tests/support/temp_folder.h"

namespace quorvel {
namespace {

using test::logLine;
using test::TempFolder;

class TextSource final : public LogSource {
 public:
  TextSource(std::string name, std::string text) : m_name(std::move(name)), m_text(std::move(text)) {}
  [[nodiscard]] std::string name() const override { return m_name; }
  [[nodiscard]] std::uint64_t size() const override { return m_text.size(); }
  [[nodiscard]] bool rewind() override {
    m_at = 0;
    return true;
  }
  [[nodiscard]] Result<std::size_t> read(std::span<char> buffer) override {
    const std::size_t count = m_text.copy(buffer.data(), buffer.size(), m_at);
    m_at += count;
    return count;
  }

 private:
  std::string m_name;
  std::string m_text;
  std::size_t m_at = 0;
};

struct NamedText {
  std::string name;
  std::string text;
};

std::vector<SetFile> ordered(const std::vector<NamedText>& files) {
  std::vector<std::unique_ptr<LogSource>> sources;
  for (const NamedText& file : files)
    sources.push_back(std::make_unique<TextSource>(file.name, file.text));
  auto set = orderSet(std::move(sources));
  EXPECT_TRUE(set.isOk());
  return std::move(set.value());
}

Activity read(std::vector<SetFile> files) {
  ActivityReader reader;
  bool isFirst = true;
  for (SetFile& file : files) {
    ReadOptions options;
    options.continuesSet = !isFirst;
    options.repeatedBytes = file.repeatedBytes;
    EXPECT_TRUE(reader.read(*file.source, options).isOk());
    isFirst = false;
  }
  return reader.snapshot();
}

/// A line of the classic shape, so many seconds after eight o'clock.
std::string lineAt(int second, const std::string& number, const std::string& event) {
  char stamp[32];
  std::snprintf(stamp, sizeof stamp, "Wed 19Jan05 %02d:%02d:%02d", 8 + second / 3600, second / 60 % 60, second % 60);
  return std::string(stamp) + " - (" + number + ") " + event + "\r\n";
}

/// Sessions that overlap: each line in front of which it may be cut.
std::vector<std::string> busyLog() {
  std::vector<std::string> lines;
  int second = 0;
  const auto add = [&](int session, const std::string& event) {
    lines.push_back(lineAt(second++, std::to_string(100000 + session), event));
  };
  for (int i = 0; i < 120; ++i) {
    const std::string user = "user" + std::to_string(i % 7);
    add(i, "Connected to 10.0.0." + std::to_string(i % 11) + " (Local address 10.0.0.1)");
    add(i, "USER " + user);
    add(i, "331 User name okay, need password.");
    if (i > 0) add(i - 1, "RETR a" + std::to_string(i) + ".zip");
    add(i, "PASS xxx");
    add(i, i % 5 == 0 ? "530 Not logged in - password incorrect" : "User " + user + " logged in");
    if (i > 0) add(i - 1, "Sent file c:\\a" + std::to_string(i) + ".zip successfully (12.34 Kb/sec - 5120 bytes)");
    if (i > 2) add(i - 3, "Closing connection for user " + user);
  }
  return lines;
}

/// Every table as text; positions are those in all files one after the other.
std::string tablesOf(const Activity& activity, const std::vector<std::uint64_t>& offsets) {
  std::string text;
  const auto number = [&text](auto value) { text += std::to_string(value) + ' '; };
  for (std::size_t i = 0; i < activity.sessions.size(); ++i) {
    const SessionRow& row = activity.sessions[i];
    text.append(activity.text(row.key)).append(" ").append(activity.text(row.user)).append(" ");
    text.append(activity.text(row.address)).append(" ");
    number(row.position + offsets[row.log]);
    number(row.lastPosition + offsets[row.lastLog]);
    number(row.connected), number(row.loggedOn), number(row.ended), number(row.lines), number(row.downloads);
    number(row.downloadBytes), number(row.failedTransfers), number(row.failedLogons), number(int(row.outcome));
    number(int(row.end));
    text += '\n';
  }
  for (std::size_t i = 0; i < activity.logons.size(); ++i) {
    const LogonRow& row = activity.logons[i];
    number(row.session), number(row.position + offsets[row.log]), number(row.time), number(int(row.result));
  }
  for (std::size_t i = 0; i < activity.actions.size(); ++i) {
    const ActionRow& row = activity.actions[i];
    number(row.session), number(row.position + offsets[row.log]), number(row.bytes), number(row.seconds);
    text.append(activity.text(row.path)).append("\n");
  }
  return text;
}

TEST(LogSet, ALogCutAnywhereIsOneLogWhateverTheFilesAreCalled) {
  const std::vector<std::string> lines = busyLog();
  std::string whole;
  for (const std::string& line : lines)
    whole += line;
  const std::string expected = tablesOf(read(ordered({{"whole", whole}})), {0});
  ASSERT_NE(expected.find("a119.zip"), std::string::npos);

  std::mt19937 random(4711);
  for (int round = 0; round < 20; ++round) {
    std::vector<std::size_t> cuts = {0, lines.size()};
    for (int i = 0; i < 19; ++i)
      cuts.push_back(1 + random() % (lines.size() - 1));
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    std::vector<NamedText> files;
    std::vector<std::uint64_t> offsets;
    std::uint64_t offset = 0;
    for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
      std::string text;
      for (std::size_t line = cuts[i]; line < cuts[i + 1]; ++line)
        text += lines[line];
      offsets.push_back(offset);
      offset += text.size();
      files.push_back({"file" + std::to_string(random()), text});
    }
    std::shuffle(files.begin(), files.end(), random);
    ASSERT_EQ(tablesOf(read(ordered(files)), offsets), expected) << "round " << round;
  }
}

TEST(LogSet, WhatStandsInTwoFilesIsTakenOnceAndTold) {
  const std::string old = lineAt(0, "000001", "Connected to 10.0.0.1 (Local address 10.0.0.2)") +
                          lineAt(1, "000001", "USER alice") + lineAt(2, "000001", "User alice logged in");
  const std::string more = lineAt(3, "000001", "Closing connection for user alice");
  // A copy made while the log was written, an older one of it, and one without its last line's end.
  const std::string unended = old + more.substr(0, more.size() - 2);
  for (const std::vector<NamedText>& files :
       {std::vector<NamedText>{{"copy", old}, {"log", old + more}},
        {{"log", old + more}, {"copy", old}},
        {{"copy", old}, {"log", old + more}, {"older", old.substr(0, old.size() / 3)}},
        {{"a", unended}, {"b", unended}}}) {
    const Activity activity = read(ordered(files));
    ASSERT_EQ(activity.sessions.size(), 1u);
    EXPECT_EQ(activity.sessions[0].end, SessionEnd::Closed);
    EXPECT_EQ(activity.sessions[0].lines, 4u);
    std::uint64_t given = 0, told = 0, repeated = 0;
    for (const NamedText& file : files)
      given += file.text.size();
    for (const LogInfo& log : activity.logs) {
      told += log.ledger.bytes();
      repeated += log.ledger.repeated.bytes;
    }
    EXPECT_EQ(told, given) << "every byte has its place";
    EXPECT_GT(repeated, 0u);
  }
}

TEST(LogSet, AGapOfADayIsTold) {
  const Activity activity = read(ordered({{"b", "Fri 21Jan05 09:00:00 - (000002) Connected to 10.0.0.1 (x)\r\n"},
                                          {"a", "Wed 19Jan05 08:00:00 - (000001) Connected to 10.0.0.1 (x)\r\n"}}));
  ASSERT_EQ(activity.logs.size(), 2u);
  ASSERT_EQ(activity.logs[1].notes.size(), 1u);
  EXPECT_EQ(activity.logs[1].notes[0], "Between a and b there is nothing for 2 days.");
}

TEST(LogSet, RotatedNamesHaveOneStem) {
  const struct {
    std::string_view stem;
    std::vector<std::string_view> names;
  } kStems[] = {
      {"server.log",
       {"server.log", "server.log.1", "server.log.12.gz", "SERVER.LOG.2.XZ", "server-20051104.log",
        "server.log-20051104.zst", "server_2005-11-04.log", "server.log.2005-11-04_00.bz2"}},
      {"ftp.log", {"ftp.log", "ftp2005Nov04.log", "ftp2005Nov05.log.zip", "ftp05Nov04.log"}},
      {"server2.log", {"server2.log", "server2.log.1", "server2-20051104.log"}},
      {"u_ex.log", {"u_ex221122.log", "u_ex221123.log"}},
      {"2", {"2"}},
  };
  for (const auto& [stem, names] : kStems) {
    for (const std::string_view name : names)
      EXPECT_EQ(rotationStem(name), stem) << name;
  }
  EXPECT_NE(rotationStem("server1.log"), rotationStem("server2.log"));
}

TEST(LogSet, SiblingsLieBesideTheLog) {
  const TempFolder folder;
  for (const char* name : {"server.log", "server.log.1", "server.log.2.gz", "server2.log", "notes.txt"})
    folder.write(name, "x");
  std::vector<std::string> names;
  for (const auto& path : rotatedSiblings(folder / "server.log.1"))
    names.push_back(path.filename().string());
  EXPECT_EQ(names, (std::vector<std::string>{"server.log", "server.log.1", "server.log.2.gz"}));
  EXPECT_EQ(filesOfFolder(folder.path()).size(), 5u);
}

}  // namespace
}  // namespace quorvel
