// The classic commands' engine on logs in the current shape: records, lines and counts of hand-made logs.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "classic/counter/transfer_counter.h"
#include "classic/filter/session_filter.h"
#include "classic/find/current_sessions.h"
#include "classic/find/log_shape.h"
#include "classic/lines/current_lines.h"
#include "tests/support/opened_log.h"
#include "tests/support/records.h"
#include "tests/support/temp_folder.h"

namespace quorvel::test {
namespace {

/// `20 01 USER alice`, one line a row: the bracket, the second, and what stands behind " - ".
std::string logOf(std::initializer_list<std::string_view> rows) {
  std::string log;
  for (const std::string_view row : rows) {
    log.append("[").append(row.substr(0, 2)).append("] Tue 19Jan21 00:18:");
    log.append(row.substr(3, 2)).append(" - ").append(row.substr(6)).append("\r\n");
  }
  return log;
}

const std::string kStart = logOf({"01 00 Serv-U File Server (64-bit) - Version 15.1 (15.1.6.25) - (C) 2017"});

struct Sessions : FindObserver {
  void onSession(const FoundSession& session) override {
    records.push_back(decodeRecord(session.record, slotSize).value_or(UserAct()));
  }
  bool keepGoing(LogPosition) override { return true; }

  std::size_t slotSize = 0;
  std::vector<UserAct> records;
};

std::vector<UserAct> sessionsOf(const std::string& log, bool trunkLongUsernames = true) {
  const FindOptions options{.trunkLongUsernames = trunkLongUsernames};
  Sessions sessions;
  sessions.slotSize = currentSlotSize(options);
  EXPECT_TRUE(findCurrentSessions(openLog(log), options, sessions).isOk());
  for (const UserAct& record : sessions.records)
    EXPECT_LE(encodeRecord(record, sessions.slotSize).size(), recordRoom(sessions.slotSize));
  return sessions.records;
}

/// The seconds of a stamp and what follows it: "14 BAD_PASSWORD".
std::string secondsOf(const std::string& time) {
  return time.starts_with("Tue 19Jan21 00:18:") ? time.substr(18) : time;
}

struct RecordCase {
  std::string log;
  std::string records;  ///< number name address connected|logged on|ended
};

TEST(CurrentLog, RecordsTellWhatBecameOfASession) {
  const RecordCase cases[] = {
      {logOf({"02 01 (000007) Connected to 10.0.0.5 (local address 10.0.0.1, port 21)", "20 02 (000007) USER Alice",
              "20 03 (000007) PASS ***", "02 04 (000007) User \"alice\" logged in", "21 04 (000007) 230 ok",
              "02 05 (000007) Closed session", "02 05 (000007) User \"alice\" logged out"}),
       "(000007) Alice 10.0.0.5 01|04|05"},
      {logOf({"02 01 (1234567) Connected to 2001:db8:85a3:8d3:1319:8a2e:370:7348 (local address ::1, port 21)",
              "20 02 (1234567) USER bob", "21 03 (1234567) 331 x", "20 04 (1234567) PASS ***",
              "21 05 (1234567) 530 Not logged in - password incorrect."}),
       "(1234567) bob 2001:db8:85a3:8d3:1319:8a2e:370:7348 01|05 BAD_PASSWORD|NOT_LOGGED_OUT"},
      {logOf({"02 01 (000001) Connected to 10.0.0.5 (local)", "20 02 (000001) USER a", "20 02 (000001) PASS *",
              "21 03 (000001) 530 Not logged in - unauthorized IP address.", "02 04 (000001) Closed session"}),
       "(000001) a 10.0.0.5 01|03 UNAUTHORIZED_IP|04"},
      {logOf({"02 01 (000001) Connected to 10.0.0.5 (local)", "20 02 (000001) USER a", "20 02 (000001) PASS *",
              "21 03 (000001) 530 Not logged in - cannot find home directory.", "20 04 (000001) PASS *",
              "21 05 (000001) 530 No."}),
       "(000001) a 10.0.0.5 01|05 NotLoggedIn|NOT_LOGGED_OUT"},
      // A command before the log-on is answered with 530 too.
      {logOf({"02 01 (000001) Connected to 10.0.0.5 (local)", "20 02 (000001) SYST",
              "21 02 (000001) 530 Not logged in."}),
       "(000001) NO_USER_FOUND 10.0.0.5 01|01|NOT_LOGGED_OUT"},
      {logOf({"02 01 (000001) Connected to 10.0.0.5 (local)", "20 02 (000001) QUIT", "02 03 (000001) Closed session"}),
       "(000001) QUIT 10.0.0.5 01|03|03"},
      {logOf(
           {"02 01 (000001) Connected to 10.0.0.5 (local)", "20 02 (000001) USER a", "02 03 (000001) Closed session"}),
       "(000001) a 10.0.0.5 01|03 NotLoggedIn|03"},
      {logOf({"02 01 (000001) Connected to 10.0.0.5 (local)", "20 02 (000001) USER a"}) + kStart +
           logOf({"02 09 (000001) Connected to 10.0.0.6 (local)"}),
       "(000001) a 10.0.0.5 01| NotLoggedIn|SERVER_RESTART\n(000001) NO_USER_FOUND 10.0.0.6 09|09|NOT_LOGGED_OUT"},
      // The log begins in the middle of a session.
      {logOf({"21 02 (000001) 226 done", "02 03 (000001) Closed session"}), "(000001) QUIT  |03|03"},
      // What a client typed makes neither a log-on nor an end nor a session; it may be a name.
      {logOf({"02 01 (000001) Connected to 10.0.0.5 (local)", "20 02 (000001) USER a\" logged in",
              "20 03 (000001) Closed session", "20 04 (000001) Connected to 6.6.6.6",
              "20 04 (000001) User \"root\" logged in", "21 05 (000001) 500 what?"}),
       "(000001) \"root\" logged in 10.0.0.5 01| NotLoggedIn|NOT_LOGGED_OUT"},
  };
  for (const RecordCase& each : cases) {
    SCOPED_TRACE(each.log);
    EXPECT_EQ(originOf(openLog(each.log)).value().shape, LogShape::Current);
    std::string told;
    for (const UserAct& record : sessionsOf(each.log, false)) {
      told += (told.empty() ? "" : "\n") + record.NumberInLog + ' ' + record.Name + ' ' + record.IP + ' ' +
              secondsOf(record.ConnectTime) + '|' + secondsOf(record.LogonTime) + '|' + secondsOf(record.LogoffTime);
      EXPECT_EQ(each.log.substr(static_cast<std::size_t>(record.Position) - record.NumberInLog.size(),
                                record.NumberInLog.size()),
                record.NumberInLog);
    }
    EXPECT_EQ(told, each.records);
  }
}

TEST(CurrentLog, NoNameOrAddressCostsASession) {
  for (const std::size_t length : {13u, 64u, 255u, 256u, 5000u}) {
    const std::string name(length, 'n');
    const std::string log =
        kStart + logOf({"02 01 (12345678901234567890) Connected to " + std::string(255, 'a') + " (local)",
                        "20 02 (12345678901234567890) USER " + name});
    for (const bool isCut : {true, false}) {
      const auto records = sessionsOf(log, isCut);
      ASSERT_EQ(records.size(), 1u);
      EXPECT_EQ(records[0].Name, name.substr(0, isCut ? 12 : 255)) << length;
      EXPECT_EQ(records[0].IP.size(), 255u);
    }
  }
}

class Chosen final : public SessionList {
 public:
  explicit Chosen(std::vector<UserAct> sessions) : m_sessions(std::move(sessions)) {}
  std::size_t size() const override { return m_sessions.size(); }
  LogPosition position(std::size_t index) const override { return m_sessions[index].Position; }
  const UserAct& session(std::size_t index) override { return m_sessions[index]; }

 private:
  std::vector<UserAct> m_sessions;
};

struct Texts : SessionTextTarget {
  void write(std::string_view piece) override { text.append(piece); }
  void endSession(std::size_t index, std::uint32_t lines) override {
    text += std::to_string(index) + ": " + std::to_string(lines) + " lines\n";
  }
  bool keepGoing(LogPosition) override { return true; }
  std::string text;
};

std::string linesOf(const std::string& log, const std::vector<UserAct>& sessions, LineRule& rule) {
  Chosen chosen(sessions);
  Texts texts;
  const TempFolder folder;
  EXPECT_TRUE(readCurrentLines(openLog(log), chosen, rule, texts, {systemFiles(), folder.path()}).isOk());
  return texts.text;
}

/// Two sessions of one number and one beside them.
const std::string kFirst = logOf({"02 01 (12) Connected to 10.0.0.5 (local)", "20 02 (12) RETR a"});
const std::string kBeside = logOf({"02 02 (000003) Connected to 10.0.0.6 (local)"});
const std::string kFirstEnd = logOf({"02 03 (12) Closed session", "02 03 (12) User \"a\" logged out"});
const std::string kSecond = logOf({"02 04 (12) Connected to 10.0.0.5 (local)", "20 05 (12) STOR b", "21 06 (12) 150 go",
                                   "21 07 (12) 226 done", "20 08 (12) NOOP"});
const std::string kBesideEnd = logOf({"02 09 (000003) Closed session"});
const std::string kLog = kStart + kFirst + kBeside + kFirstEnd + kSecond + kBesideEnd;

TEST(CurrentLog, LinesAreThoseFromASessionsFirstToItsLast) {
  const auto sessions = sessionsOf(kLog);
  ASSERT_EQ(sessions.size(), 3u);
  EntireSessionFilter entire(FilterHeader::None);
  EXPECT_EQ(linesOf(kLog, sessions, entire),
            kFirst + kFirstEnd + "0: 4 lines\n" + kBeside + kBesideEnd + "1: 2 lines\n" + kSecond + "2: 5 lines\n");
  EXPECT_EQ(linesOf(kLog, {sessions[2], UserAct(), sessions[0]}, entire),
            kSecond + "0: 5 lines\n1: 0 lines\n" + kFirst + kFirstEnd + "2: 4 lines\n");
}

TEST(CurrentLog, CommandFilterEndsATransferAtItsReply) {
  const auto sessions = sessionsOf(kLog);
  CommandFilter transfers({.transfers = true, .repliesEndTransfers = true}, FilterHeader::None);
  EXPECT_EQ(linesOf(kLog, {sessions[0], sessions[2]}, transfers),
            logOf({"20 02 (12) RETR a"}) + "0: 1 lines\n" +
                logOf({"20 05 (12) STOR b", "21 06 (12) 150 go", "21 07 (12) 226 done"}) + "\r\n1: 3 lines\n");
}

TEST(CurrentLog, LinesLongerThanABlockAreWhole) {
  for (const std::size_t length : {262'100u, 262'144u, 262'145u, 600'000u}) {
    const std::string log =
        kStart + kFirst + logOf({"20 02 (12) XXXX " + std::string(length, 'x')}) + kFirstEnd + kSecond + "[20] Tue";
    EntireSessionFilter entire(FilterHeader::None);
    const std::size_t begin = kStart.size();
    const std::size_t end = log.size() - kSecond.size() - 8;
    EXPECT_EQ(linesOf(log, {sessionsOf(log).at(0)}, entire), log.substr(begin, end - begin) + "0: 5 lines\n") << length;
  }
}

struct Failures : CountObserver {
  void onFailedTransfer(std::string_view line, bool isFirst) override {
    text.append(isFirst ? "first " : "").append(line).append("\n");
  }
  bool keepGoing(LogPosition) override { return true; }
  std::string text;
};

TEST(CurrentLog, CountsFilesBySentenceOrElseByReply) {
  const std::string log =
      kStart +
      logOf({"02 01 (000001) Connected to 10.0.0.5 (local)", "20 02 (000001) RETR a",
             "04 03 (000001) Sent file \"/a\" successfully (1.0 KB/sec - 1,000 bytes)", "21 03 (000001) 226 done",
             "20 04 (000001) STOR b", "21 05 (000001) 226 done", "20 06 (000001) RETR c",
             "21 07 (000001) 550 no such file", "02 08 (000002) Connected to 10.0.0.6 (local)", "20 09 (000002) STOR d",
             "21 09 (000002) 150 go", "20 10 (000001) Sent file \"/x\" successfully (1.0 KB/sec - 7 bytes)",
             "02 11 (000002) Closed session"});
  const auto count = [&log](SessionList* sessions, std::string& failures) {
    TransferCount totals;
    Failures observer;
    EXPECT_TRUE(
        countCurrentTransfers(openLog(log), sessions, {.countBytes = true, .showsFailures = true}, totals, observer)
            .isOk());
    failures = observer.text;
    return totals;
  };
  std::string failures;
  EXPECT_EQ(count(nullptr, failures), (TransferCount{1, 1, 1, 1, 10'000'000, 0}));
  EXPECT_EQ(failures,
            "first 21] Tue 19Jan21 00:18:07 - (000001) 550 no such file\n02] Tue 19Jan21 00:18:11 - (000002) Closed "
            "session\n");
  Chosen second({sessionsOf(log).at(1)});
  EXPECT_EQ(count(&second, failures), (TransferCount{0, 0, 0, 1, 0, 0}));
}

TEST(CurrentLog, OnlyWhatIsPositivelyAnothersIsNotClassic) {
  const std::pair<std::string, LogShape> cases[] = {
      {"", LogShape::Classic},
      {"no log at all\n", LogShape::Classic},
      {"[2] Mon 06Jun05 08:03:11 - (000001) Connected to 10.0.0.5\n", LogShape::Classic},
      {"Mon 06Jun05 08:03:11 - (000001) Connected to 10.0.0.5\n" + kStart, LogShape::Classic},
      {kStart, LogShape::Current},
      {"\xEF\xBB\xBF" + kStart, LogShape::Current},
      {"Sun Nov 22 01:03:39 2026 [pid 30231] CONNECT: Client \"10.0.0.5\"\n", LogShape::Other},
      {"Sun Nov 22 01:03:39 2026 1 10.0.0.5 12345 /up.bin b _ i r alice ftp 0 * c\n", LogShape::Other},
  };
  for (const auto& [log, shape] : cases)
    EXPECT_EQ(originOf(openLog(log)).value().shape, shape) << log;
}

}  // namespace
}  // namespace quorvel::test
