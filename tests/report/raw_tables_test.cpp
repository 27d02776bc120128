// Every column of the tables by name, in order, and what its cells hold.
#include "report/raw_tables.h"

#include <gtest/gtest.h>

#include "tests/support/activity_maker.h"

namespace quorvel::test {
namespace {

/// name=value for every column of a row.
std::string rowText(const Table& table, std::size_t row) {
  std::string text;
  for (std::size_t column = 0; column < table.columns().size(); ++column) {
    const Cell cell = table.cell(row, column);
    const CellKind kind = table.columns()[column].kind;
    EXPECT_EQ(cell.kind, cell.kind == CellKind::Null ? CellKind::Null : kind) << table.columns()[column].name;
    text.append(table.columns()[column].name).append("=");
    appendPlain(text, cell);
    text += '\n';
  }
  return text;
}

TEST(RawTables, Sessions) {
  ActivityMaker maker;
  maker.session("alice", "10.0.0.5", 191, 232);
  SessionRow& row = maker.lastRow();
  row.key = maker.text("000012");
  row.loggedOn = row.connected + 3;
  row.downloads = 2;
  row.downloadBytes = 48128;
  row.uploads = 1;
  row.uploadBytes = -1;
  row.failedTransfers = 4;
  row.deletes = 5;
  row.renames = 6;
  row.failedLogons = 7;
  row.lines = 8;
  row.position = 9;
  row.lastPosition = 10;
  EXPECT_EQ(rowText(*sessionsTable(maker.activity(), {0}), 0).substr(0, 40),
            "session=1\nlog=a.log\nkey=000012\ninferred=");
  const std::string text = rowText(*sessionsTable(maker.activity(), {0}), 0);
  EXPECT_EQ(text.substr(text.find("user=")),
            "user=alice\naddress=10.0.0.5\nconnected=2005-06-06T08:03:11\nlogged_on=2005-06-06T08:03:14\n"
            "ended=2005-06-06T08:03:52\nseconds=41\noutcome=logged_on\nend=closed\ndownloads=2\ndownload_bytes=48128\n"
            "uploads=1\nupload_bytes=\nfailed_transfers=4\ndeletes=5\nrenames=6\nfailed_logons=7\nlines=8\nposition=9\n"
            "last_position=10\n");
}

TEST(RawTables, WhatALogDoesNotTellIsNull) {
  ActivityMaker maker;
  maker.session("", "");
  SessionRow& row = maker.lastRow();
  row.first = row.connected = row.ended = kNoTime;
  row.outcome = LogonResult::Unknown;
  row.isInferred = true;
  const auto table = sessionsTable(maker.activity(), {0});
  EXPECT_EQ(tableText(*table,
                      {"key", "inferred", "user", "address", "connected", "logged_on", "ended", "seconds", "outcome"}),
            "- true - - - - - - -\n");
}

TEST(RawTables, LogonsAndActions) {
  ActivityMaker maker;
  maker.session("alice", "10.0.0.5").logon(2, false, "root").logon(5, true);
  maker.action(9, FileAction::Upload, "b.zip", 100, Outcome::Failed, "", "/in")
      .action(11, FileAction::Rename, "a", -1, Outcome::Unknown, "b");
  maker.lastAction().reply = kSftpStatus + 4;
  maker.lastAction().seconds = 2;
  const Activity activity = maker.activity();
  const auto logons = logonsTable(activity, {0, 1});
  EXPECT_EQ(rowText(*logons, 0),
            "session=1\nlog=a.log\ntime=2005-06-06T08:00:02\nuser=root\naddress=10.0.0.5\noutcome=failed\n"
            "reason=bad_password\nreply=530\nposition=1\n");
  EXPECT_EQ(tableText(*logons, {"user", "outcome", "reason", "reply"}),
            "root failed bad_password 530\nalice ok logged_on 230\n");
  const auto actions = actionsTable(activity, {1, 0});
  EXPECT_EQ(rowText(*actions, 0),
            "session=1\nlog=a.log\ntime=2005-06-06T08:00:11\nuser=alice\naddress=10.0.0.5\naction=rename\npath=a\n"
            "to_path=b\nfolder=\nbytes=\nseconds=2\noutcome=\ncause=\nreply=SSH_FX_FAILURE\nposition=4\n");
  EXPECT_EQ(tableText(*actions, {"action", "path", "folder", "bytes", "seconds", "outcome", "cause", "reply"}),
            "rename a - - 2 - - SSH_FX_FAILURE\nupload b.zip /in 100 - failed reply -\n");
  EXPECT_EQ(actions->source(0).row, 1u);
}

TEST(RawTables, LedgerAndWhatWasSetAside) {
  ActivityMaker maker;
  Ledger& ledger = maker.log().ledger;
  ledger.understood = {10, 1000};
  ledger.setAside = {3, 30};
  ledger.foreign = {2, 20};
  ledger.repeated = {1, 10};
  ledger.first = ActivityMaker::kStart;
  ledger.clockJumps = 4;
  ledger.shapes = {{"x 0", "x 17", 2, 20, 101}, {"", "y", 1, 10, 202}};
  const Activity activity = maker.activity();
  EXPECT_EQ(
      rowText(*checkTable(activity), 0),
      "schema=1\nlog=a.log\nserver=\ntext=utf-8\nbytes=1060\nlines=16\nunderstood_lines=10\nunderstood_bytes=1000\n"
      "set_aside_lines=3\nset_aside_bytes=30\nforeign_lines=2\nforeign_bytes=20\nrepeated_lines=1\n"
      "repeated_bytes=10\nsessions=0\nfirst=2005-06-06T08:00:00\nlast=\nclock_jumps=4\n");
  EXPECT_EQ(rowText(*setAsideTable(activity), 0),
            "log=a.log\nshape=x 0\nlines=2\nbytes=20\nposition=101\nexample=x 17\n");
  EXPECT_EQ(tableText(*setAsideTable(activity), {"shape", "lines"}), "x 0 2\n- 1\n");
}

TEST(RawTables, TextsAreUtf8WhateverTheLogHolds) {
  for (const auto& [encoding, text] :
       {std::pair(TextEncoding::Utf8, "\xEF\xBF\xBDke"), {TextEncoding::Windows1252, "\xC3\xA5ke"}}) {
    ActivityMaker maker(encoding);
    maker.session("\xE5ke", "10.0.0.5");
    maker.log().name = "\xE5.log";
    EXPECT_EQ(tableText(*sessionsTable(maker.activity(), {0}), {"user", "log"}),
              std::string(text) + " \xEF\xBF\xBD.log\n");
  }
}

TEST(RawTables, RowsComeInTheOrderOfAnyColumn) {
  ActivityMaker maker;
  maker.session("bob", "b").session("Alice", "b").session("", "a");
  const auto table = sessionsTable(maker.activity(), {0, 1, 2});
  const auto columnOf = [&table](std::string_view name) {
    std::size_t column = 0;
    while (table->columns()[column].name != name)
      ++column;
    return column;
  };
  using Order = std::vector<RowNumber>;
  EXPECT_EQ(sortedRows(*table, columnOf("user"), false), (Order{2, 1, 0}));
  EXPECT_EQ(sortedRows(*table, columnOf("user"), true), (Order{0, 1, 2}));
  EXPECT_EQ(sortedRows(*table, columnOf("address"), false), (Order{2, 0, 1}));
  EXPECT_EQ(sortedRows(*table, columnOf("session"), true), (Order{2, 1, 0}));
}

}  // namespace
}  // namespace quorvel::test
