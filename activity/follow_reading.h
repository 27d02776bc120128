// Follows a log that grows, by its name: through renames, copies that are made before it is emptied, and files that
// take its place. What rotation made of it between two looks is read from the files beside it, packed ones too.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "activity/read_activity.h"
#include "log/following_source.h"

namespace quorvel {

/// Not for several threads. Each file of the log is a log of the activity; together they are one set.
class FollowReading {
 public:
  /// name as in the tables. Nothing is opened yet.
  FollowReading(FileSystem& files, std::filesystem::path path, std::string name, UnpackPlace unpack);

  /// Reads the files that rotation made of the log so far before the log itself.
  void beginWithSiblings() { m_withSiblings = true; }
  /// Goes on where an earlier run ended. The first look reads the log's files whose first stamp is from or later, up to
  /// that place, wherever it is now; what follows is for the looks after it. hasResumed() tells whether it was found.
  void resume(LogPlace place, LogTime from);
  [[nodiscard]] bool hasResumed() const { return m_hasResumed; }

  /// Reads what is new. Fails at first where there is no such log; later looks go on as well as they can. goesOn is
  /// asked about every megabyte.
  Status look(const std::function<bool()>& goesOn = {});
  /// Grows with what is read; the same number: nothing was new.
  [[nodiscard]] std::uint64_t bytesRead() const { return m_bytesRead; }
  /// Up to where the log was read; empty head: nothing was.
  [[nodiscard]] const LogPlace& place() const { return m_place; }
  /// The tables as they are now.
  [[nodiscard]] Activity snapshot() { return m_reader.snapshot(); }
  /// Sentences on what was cut off, or could not be read, since the last call.
  [[nodiscard]] std::vector<std::string> takeNotes() { return std::exchange(m_notes, {}); }

 private:
  using Change = FollowingSource::Change;
  using Piece = std::unique_ptr<FollowingSource>;

  Status begin();
  void readToPlace(const std::function<bool()>& goesOn);
  void read(bool isGrowing, const std::function<bool()>& goesOn);
  void endCurrent(const std::function<bool()>& goesOn);
  /// False where nothing has the name for now.
  bool rotate(Change change, const std::function<bool()>& goesOn);
  [[nodiscard]] bool goOnInCopy(std::vector<std::unique_ptr<LogSource>>& siblings);
  [[nodiscard]] std::vector<std::unique_ptr<LogSource>> openSiblings(const FollowingSource& except);
  void queueSiblings(std::vector<std::unique_ptr<LogSource>> siblings, Piece next);
  [[nodiscard]] bool isKnown(std::string_view head) const;
  void know(std::string head);

  FileSystem& m_files;
  std::filesystem::path m_path;
  std::string m_name;
  UnpackPlace m_unpack;
  bool m_withSiblings = false;
  std::optional<LogPlace> m_resume;  ///< until it is reached
  bool m_hasResumed = false;
  ActivityReader m_reader;
  bool m_hasRead = false;           ///< some file, so that the next one continues it
  bool m_isTold = false;            ///< that the current file cannot be read
  Piece m_current;                  ///< null before the first look
  std::deque<Piece> m_queue;        ///< what comes behind it; the last one grows
  std::deque<std::string> m_known;  ///< heads of files that need not be read again
  LogTime m_from = kNoTime;         ///< files that begin earlier are not of interest
  LogPlace m_place;
  std::uint64_t m_bytesRead = 0;
  std::vector<std::string> m_notes;
};

}  // namespace quorvel
