// Puts together what the lines of a log mean: which session they belong to, which reply ends which command, what became
// of every file. Fed with events in log order; can be asked for the tables at any time, and goes on.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "activity/activity.h"
#include "activity/session_finder.h"
#include "activity/tables_in_work.h"
#include "grammar/event.h"
#include "grammar/grammar.h"

namespace quorvel {

/// Constant work for each event but a server start, which ends the sessions that are open. Memory grows with sessions,
/// log-ons, actions and distinct texts only. Not for several threads.
class ActivityBuilder {
 public:
  ActivityBuilder() = default;
  ActivityBuilder(const ActivityBuilder&) = delete;
  ActivityBuilder& operator=(const ActivityBuilder&) = delete;

  /// The events that follow are those of another log. Sessions of logs before it do not go on.
  void beginLog(LogNumber log, const GrammarTraits& traits);
  /// The events that follow are those of the next file of the same log: its sessions go on.
  void continueLog(LogNumber log) { m_tables.log = log; }
  /// Takes the next line. False: the line's text does not fit what is going on, it belongs to its session and is set
  /// aside.
  [[nodiscard]] bool take(const Event& event);

  [[nodiscard]] std::size_t sessionCount() const { return m_tables.sessions.size(); }
  /// Transfers that nothing is told of because more sessions were open at a time than are remembered.
  [[nodiscard]] std::uint64_t forgottenTransfers() const { return m_tables.sessions.forgottenTransfers(); }
  /// Adds the tables as they are now.
  void addTo(Activity& activity);

 private:
  /// One of those whose lines a log holds.
  struct Server {
    Server(const GrammarTraits& itsTraits, const TablesInWork& tables)
        : traits(itsTraits),
          finder(itsTraits, tables.sessions, tables.texts),
          firstSinceStart(static_cast<RowNumber>(tables.sessions.size())) {}
    GrammarTraits traits;
    SessionFinder finder;
    RowNumber firstSinceStart;  ///< sessions before it are over
  };

  [[nodiscard]] Server& serverOf(const Event& event);
  void startServer(const Event& event);
  [[nodiscard]] bool takeConnect(const Event& event, RowNumber session);
  [[nodiscard]] bool takeLine(SessionState& session, const Event& event);
  [[nodiscard]] bool close(SessionState& session, const Event& event);
  [[nodiscard]] bool isStateless(RowNumber session, const Event& event) const;
  SessionState& begin(const Event& event);
  void endTransfersOf(SessionState& session, const Event& event, FailureCause cause);

  TablesInWork m_tables;
  GrammarTraits m_traits;
  std::vector<std::unique_ptr<Server>> m_servers;  ///< by Event::server where the log is mixed, else one
};

}  // namespace quorvel
