// The row above the pages: which period and which words they are about, how many rows that leaves, how far the log is
// read.
#pragma once

#include <QWidget>

#include "report/scope.h"

class QBoxLayout;
class QComboBox;
class QCompleter;
class QDateTimeEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QStringListModel;

namespace quorvel {

class ScopeRow : public QWidget {
  Q_OBJECT

 public:
  explicit ScopeRow(QWidget* parent = nullptr);

  [[nodiscard]] const Scope& scope() const { return m_scope; }
  /// Shows a scope and announces it.
  void setScope(const Scope& scope);
  /// Adds a word; the same word with the other sign gives way to it.
  void addWord(const ScopeWord& word);
  /// Only the period; the words stay.
  void setPeriod(LogTime from, LogTime to);
  /// The log's first and last instant; both kNoTime while there is none.
  void setLogPeriod(LogTime first, LogTime last);
  /// Names to complete behind user:.
  void setUsers(const QStringList& users);
  /// How many rows the page shows of how many; negative: none to count.
  void setCount(std::int64_t shown, std::int64_t all);
  /// percent as of BackgroundReading; with isReading a Stop button stands beside it.
  void showReading(const QString& text, bool isReading);
  void focusWords();

  /// Narrow, the words stand below the period.
  [[nodiscard]] QSize minimumSizeHint() const override;

 signals:
  void scopeChanged();
  void stopRequested();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] QWidget* makePeriod();
  [[nodiscard]] QWidget* makeWords();
  void onPresetChosen(int index);
  void onTimeEdited();
  void onWordsEdited();
  void onCompleted(const QString& word);
  void showPeriod();
  void showMistake(const QString& sentence);
  void offerCompletions();

  QBoxLayout* m_parts;
  QWidget* m_periodPart;
  QWidget* m_wordsPart;
  Scope m_scope;
  LogTime m_first = kNoTime;
  LogTime m_last = kNoTime;
  QComboBox* m_preset;
  QDateTimeEdit* m_from;
  QDateTimeEdit* m_to;
  QLineEdit* m_words;
  QCompleter* m_completer;
  QStringListModel* m_completions;
  QStringList m_users;
  QLabel* m_count;
  QLabel* m_reading;
  QPushButton* m_stop;
  QAction* m_mistake;
  bool m_isShowing = false;  // what the fields announce is not the reader's
};

}  // namespace quorvel
