// The tables while they are made, and how a row gets into them.
#pragma once

#include <string_view>

#include "activity/activity.h"
#include "activity/open_sessions.h"
#include "activity/texts.h"
#include "grammar/event.h"

namespace quorvel {

/// What is told of a file action, by a sentence or by a reply.
struct ToldAction {
  FileAction action = FileAction::Download;
  Outcome outcome = Outcome::Unknown;
  FailureCause cause = FailureCause::None;
  ReplyCode reply = 0;
  std::int64_t bytes = -1;
  LogTime started = kNoTime;  ///< time of its command
  std::string_view path;
  std::string_view toPath;
};

struct TablesInWork {
  OpenSessions sessions;
  Rows<LogonRow> logons;
  Rows<ActionRow> actions;
  TextPool texts;
  LogNumber log = 0;  ///< that is read

  /// Adds the row and counts it in its session. Time and position are those of the line that told it.
  RowNumber tellAction(SessionState& session, const Event& line, const ToldAction& told);
  /// The size of a file that was told without one before.
  void tellSize(SessionState& session, RowNumber action, std::int64_t bytes);

  /// A change that was told as done, and was not.
  void takeBack(SessionState& session, RowNumber action, ReplyCode reply);

  /// Adds the row; who is logged on, and the session's outcome, follow from it.
  RowNumber tellLogon(SessionState& session, const Event& line, LogonResult result, TextId user, ReplyCode reply);
};

}  // namespace quorvel
