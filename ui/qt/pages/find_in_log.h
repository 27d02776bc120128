// Looks for a text in the whole log in the background.
#pragma once

#include <QObject>
#include <QRegularExpression>
#include <memory>
#include <vector>

#include "log/file_system.h"
#include "ui/qt/pages/newest_job.h"

namespace quorvel {

/// Hits are told as they are found: from a place to the log's end, then from its beginning to that place.
class FindInLog : public QObject {
  Q_OBJECT

 public:
  static constexpr std::size_t kMostHits = 1'000'000;

  using QObject::QObject;

  /// Without regard to case. A regular expression is matched with each line as UTF-8.
  void start(std::shared_ptr<const File> file, const QString& text, bool isRegex, std::uint64_t from);
  void stop();
  [[nodiscard]] bool isRunning() const { return m_isRunning; }
  /// Offsets from 0, in order.
  [[nodiscard]] const std::vector<std::uint64_t>& hits() const { return m_hits; }
  /// In the order of the search: the first hit from the place it began at.
  [[nodiscard]] int percent() const { return m_percent; }

 signals:
  /// More hits, or further.
  void progressed();
  void ended();

 private:
  class Search;
  void take(const std::vector<std::uint64_t>& hits, int percent);

  NewestJob m_job;
  std::vector<std::uint64_t> m_hits;
  int m_percent = 0;
  bool m_isRunning = false;
};

}  // namespace quorvel
