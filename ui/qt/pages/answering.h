// Answers the questions of the pages in the background.
#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "activity/activity.h"
#include "report/scope.h"
#include "ui/qt/pages/newest_job.h"

namespace quorvel {

/// What an answer is made from. Never changes.
struct Subject {
  std::shared_ptr<const Activity> activity;  ///< never null
  Scope scope;
  Selection selection;  ///< the rows the scope chooses
};

/// Finds the answer on another thread; what it returns shows it, on the interface's thread.
using Inquiry = std::function<std::function<void()>(const std::shared_ptr<const Subject>&)>;

/// Holds what the pages ask about: the tables read so far and the scope. Choosing rows is done once for all
/// questions that are asked about the same.
class Answering : public QObject {
  Q_OBJECT

 public:
  explicit Answering(QObject* parent = nullptr);

  void setActivity(std::shared_ptr<const Activity> activity) { m_activity = std::move(activity); }
  void setScope(const Scope& scope) { m_scope = scope; }
  [[nodiscard]] const std::shared_ptr<const Activity>& activity() const { return m_activity; }
  [[nodiscard]] const Scope& scope() const { return m_scope; }

  /// Of inquiries made faster than they are answered the newest is answered.
  void ask(Inquiry inquiry);
  /// Forgets what was asked.
  void cancel() { m_job.cancel(); }
  [[nodiscard]] bool isBusy() const { return m_job.isBusy(); }

 signals:
  void answered();
  void ranOutOfMemory();

 private:
  std::shared_ptr<const Activity> m_activity = std::make_shared<const Activity>();
  Scope m_scope;
  std::shared_ptr<const Subject> m_last;  // of the other thread
  NewestJob m_job;
};

}  // namespace quorvel
