// What the pages show while no log is open: what the program tells, and the ways to open one.
#pragma once

#include <QStringList>
#include <QWidget>

class QLabel;
class QListWidget;
class QVBoxLayout;

namespace quorvel {

class StartPage : public QWidget {
  Q_OBJECT

 public:
  explicit StartPage(QWidget* parent = nullptr);

  /// File names; those that are gone are left out.
  void setRecent(const QStringList& logs);
  void setSamples(const QStringList& logs);
  /// Why the log that was to be opened is not shown; empty: there was none.
  void setProblem(const QString& sentence, const QString& firstLines);

 signals:
  void openAsked();
  void logAsked(const QString& fileName);

 private:
  void addLogs(QVBoxLayout& column, QListWidget& list, const QString& title);
  void fill(QListWidget& list, const QStringList& logs);

  QLabel* m_problem;
  QListWidget* m_recent;
  QListWidget* m_samples;
};

}  // namespace quorvel
