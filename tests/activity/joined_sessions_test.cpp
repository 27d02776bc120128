// Sessions of formats without a session number, put together from hand-made events.
#include <gtest/gtest.h>

#include "activity/activity_builder.h"
#include "tests/support/activity_text.h"

namespace quorvel::test {
namespace {

constexpr LogTime kEight = 1118044800;  // 2005-06-06 08:00

/// Feeds events whose positions count up, each on a line of one byte.
class Lines {
 public:
  explicit Lines(SessionRule rule) {
    m_traits.sessions = rule;
    m_traits.tellsLogons = rule != SessionRule::ByUserAndAddress;
    m_builder.beginLog(0, m_traits);
  }

  Lines& add(EventKind kind, std::string_view key, std::string_view user, LogTime second,
             std::string_view address = "10.0.0.5") {
    Event event;
    event.kind = kind;
    event.speaker = Speaker::Server;
    event.key = key;
    event.user = user;
    event.address = address;
    event.time = kEight + second;
    event.outcome = Outcome::Ok;
    event.bytes = 1;
    event.seconds = kind == EventKind::Transfer ? 10 : -1;
    event.path = kind == EventKind::Transfer ? "/a" : "";
    event.position = ++m_position;
    EXPECT_TRUE(m_builder.take(event));
    return *this;
  }

  std::string sessions() {
    Activity activity;
    m_builder.addTo(activity);
    std::string text;
    for (std::size_t i = 0; i < activity.sessions.size(); ++i) {
      const SessionRow& row = activity.sessions[i];
      EXPECT_TRUE(row.isInferred);
      text += std::string(activity.text(row.user)) + "@" + std::string(activity.text(row.address)) + " " +
              std::to_string(row.position) + "-" + std::to_string(row.lastPosition) + " lines " +
              std::to_string(row.lines) + " down " + std::to_string(row.downloads) + "\n";
    }
    return text;
  }

 private:
  GrammarTraits m_traits;
  ActivityBuilder m_builder;
  std::uint64_t m_position = 0;
};

TEST(JoinedSessions, ByUserAndAddressEndWithHalfAnHourWithoutTransfers) {
  Lines lines(SessionRule::ByUserAndAddress);
  lines.add(EventKind::Transfer, "", "alice", 100)
      .add(EventKind::Transfer, "", "bob", 101)
      .add(EventKind::Transfer, "", "alice", 102, "10.0.0.6")
      .add(EventKind::Transfer, "", "alice", 100 + 1810)  // began half an hour behind the first one's end
      .add(EventKind::Transfer, "", "bob", 101 + 1811)    // a second more
      .add(EventKind::Transfer, "", "alice", 50);         // the clock was set back
  EXPECT_EQ(lines.sessions(),
            "alice@10.0.0.5 1-6 lines 3 down 3\n"
            "bob@10.0.0.5 2-2 lines 1 down 1\n"
            "alice@10.0.0.6 3-3 lines 1 down 1\n"
            "bob@10.0.0.5 5-5 lines 1 down 1\n");
}

TEST(JoinedSessions, ByUserAndAddressTakeWhatHappenedBeforeTheLogon) {
  Lines lines(SessionRule::ByUserAndAddress);
  lines.add(EventKind::Connect, "", "", 0)
      .add(EventKind::LoggedOn, "", "alice", 1)
      .add(EventKind::Transfer, "", "alice", 20)
      .add(EventKind::Connect, "", "", 30);
  EXPECT_EQ(lines.sessions(),
            "alice@10.0.0.5 1-3 lines 3 down 1\n"
            "@10.0.0.5 4-4 lines 1 down 0\n");
}

TEST(JoinedSessions, ByProcessNeighboursMeetThroughAddressAndUser) {
  Lines lines(SessionRule::ByProcessNeighbours);
  lines.add(EventKind::Connect, "30231", "", 0)
      .add(EventKind::Connect, "30246", "", 0, "10.0.0.7")
      .add(EventKind::LoggedOn, "30230", "alice", 1)
      .add(EventKind::Transfer, "30232", "alice", 2)
      .add(EventKind::LoggedOn, "30245", "bob", 2, "10.0.0.7")
      .add(EventKind::Transfer, "30233", "bob", 3, "10.0.0.7")  // next to alice's, but not hers
      .add(EventKind::Transfer, "30247", "bob", 4, "10.0.0.7")
      .add(EventKind::Transfer, "30232", "alice", 5)
      .add(EventKind::Connect, "30231", "", 6)  // a number used again
      .add(EventKind::LoggedOn, "30230", "alice", 7);
  EXPECT_EQ(lines.sessions(),
            "alice@10.0.0.5 1-8 lines 4 down 2\n"
            "bob@10.0.0.7 2-7 lines 3 down 1\n"
            "bob@10.0.0.7 6-6 lines 1 down 1\n"
            "alice@10.0.0.5 9-10 lines 2 down 0\n");
}

}  // namespace
}  // namespace quorvel::test
