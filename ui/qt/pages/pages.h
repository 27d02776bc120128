// The tabs of the window: the session tree as it was given, and the pages that answer questions, with the scope row
// above them.
#pragma once

#include <QWidget>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>

#include "ui/qt/pages/answer_page.h"
#include "ui/qt/pages/answering.h"
#include "ui/qt/pages/background_reading.h"
#include "ui/qt/pages/page_name.h"

class QSettings;
class QStackedWidget;
class QTabBar;

namespace quorvel {

class FileDialogs;
struct FileRequest;
class LogPage;
class LoginsPage;
class OverviewPage;
class ScopeRow;
class StartPage;

class Pages : public QWidget {
  Q_OBJECT

 public:
  /// Takes the session tree. dialogs must outlive the pages.
  Pages(QWidget* sessionTree, FileDialogs& dialogs, QWidget* parent = nullptr);
  ~Pages() override;

  /// Once, before a log is opened. files and settings must outlive the pages' use; folder is the program's.
  void start(FileSystem& files, const std::filesystem::path& folder, QSettings& settings);
  void save();
  /// Reads a log for the pages, from its beginning.
  void openLog(const std::filesystem::path& log);

  [[nodiscard]] PageName page() const;
  void showPage(PageName page);
  [[nodiscard]] bool showsSessionTree() const { return page() == PageName::SessionTree; }
  [[nodiscard]] AnswerPage& answerPage(PageName page) const;
  [[nodiscard]] ScopeRow& scopeRow() { return *m_scope; }
  /// Null before start().
  [[nodiscard]] BackgroundReading* reading() { return m_reading.get(); }
  /// Nothing is being read, and what was asked is answered.
  [[nodiscard]] bool isIdle() const;

  // What the keys of the window mean on a page.
  void find();
  void findNext();
  void findPrevious();
  void exportShown();
  void printShown();
  void goTo();
  void focusWords();

 signals:
  void pageChanged();
  void openAsked();
  void logAsked(const QString& fileName);
  /// A session is to be shown in the session tree: position of its first line.
  void treeAsked(quint64 position);
  void addressAsked(const QString& address);

 private:
  void makePages();
  void connectPage(AnswerPage& page);
  void arrange();
  void ask();
  void onActivityChanged();
  void onEnded();
  void showReading();
  void noteLog(const std::filesystem::path& log);
  void showUsers();
  void showStart();
  void goToPage(PageName page, const std::vector<ScopeWord>& words);
  void goToSession(RowSource source);
  void saveText(const QString& text);
  [[nodiscard]] QString shownTitle() const;
  [[nodiscard]] TableBox* shownTable() const;
  [[nodiscard]] std::filesystem::path saveFolder() const;
  [[nodiscard]] std::optional<std::filesystem::path> askFile(const FileRequest& request);
  [[nodiscard]] AnswerPage* current() const;
  [[nodiscard]] bool refusesFile(const std::filesystem::path& path);

  FileDialogs& m_dialogs;
  FileSystem* m_files = nullptr;
  QSettings* m_settings = nullptr;
  std::filesystem::path m_folder;
  std::unique_ptr<BackgroundReading> m_reading;
  QTabBar* m_tabs;
  ScopeRow* m_scope;
  QStackedWidget* m_stack;
  StartPage* m_start;
  OverviewPage* m_overview = nullptr;
  LoginsPage* m_logins = nullptr;
  LogPage* m_log = nullptr;
  QWidget* m_sessionTree;
  std::array<AnswerPage*, kPageCount> m_pages{};  // null for the session tree
  std::unique_ptr<Answering> m_answering;         // ends before the pages do
};

}  // namespace quorvel
