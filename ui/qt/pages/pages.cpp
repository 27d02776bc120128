#include "ui/qt/pages/pages.h"

#include <QFileInfo>
#include <QSettings>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>
#include <algorithm>
#include <set>

#include "app/program_folder.h"
#include "log/file_system.h"
#include "ui/qt/file_dialogs.h"
#include "ui/qt/pages/export_table.h"
#include "ui/qt/pages/files_page.h"
#include "ui/qt/pages/lines_box.h"
#include "ui/qt/pages/log_bytes.h"
#include "ui/qt/pages/log_page.h"
#include "ui/qt/pages/logins_page.h"
#include "ui/qt/pages/overview_page.h"
#include "ui/qt/pages/scope_row.h"
#include "ui/qt/pages/sessions_page.h"
#include "ui/qt/pages/shown_text.h"
#include "ui/qt/pages/start_page.h"
#include "ui/qt/pages/table_box.h"
#include "ui/qt/pages/traffic_page.h"
#include "ui/qt/pages/transfers_page.h"
#include "ui/qt/plain_message.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

constexpr int kGap = 4;  // pixels
constexpr qsizetype kMostRecent = 5;
const QString kRecentKey = QStringLiteral("Pages/recent");
const QString kFolderKey = QStringLiteral("Pages/lastSaveFolder");
const QString kPageKey = QStringLiteral("Pages/page");

QStringList samples() {
  const std::filesystem::path beside = executableFolder();
  QStringList found;
  for (const auto& folder : {beside / "samples", beside.parent_path() / "share" / "quorvel" / "samples"}) {
    for (const char* const name : {"ftp-server.log", "serv-u.log"})
      if (const QString file = toFileName(folder / name); QFileInfo(file).isFile()) found += file;
    if (!found.isEmpty()) break;
  }
  return found;
}

QStringList firstLines(FileSystem& files, const std::filesystem::path& path) {
  constexpr std::size_t kBytes = 600;
  constexpr qsizetype kLines = 4;
  std::string text(kBytes, '\0');
  const auto file = files.open(path, OpenMode::Read);
  if (!file.isOk()) return {};
  const auto count = file.value()->readAt(0, text);
  text.resize(count.isOk() ? count.value() : 0);
  QStringList lines;
  for (const QString& line : toQString(text).split(u'\n', Qt::SkipEmptyParts).mid(0, kLines))
    lines += toOneLine(line.trimmed());
  return lines;
}

}  // namespace

Pages::Pages(QWidget* sessionTree, FileDialogs& dialogs, QWidget* parent)
    : QWidget(parent),
      m_dialogs(dialogs),
      m_tabs(new QTabBar),
      m_scope(new ScopeRow),
      m_stack(new QStackedWidget),
      m_start(new StartPage),
      m_sessionTree(sessionTree),
      m_answering(std::make_unique<Answering>()) {
  makePages();
  arrange();
  connect(m_tabs, &QTabBar::currentChanged, this, [this] { showPage(page()); });
  connect(m_scope, &ScopeRow::scopeChanged, this, &Pages::ask);
  connect(m_scope, &ScopeRow::stopRequested, this, [this] {
    if (m_reading) m_reading->stop();
  });
  connect(m_start, &StartPage::openAsked, this, &Pages::openAsked);
  connect(m_start, &StartPage::logAsked, this, &Pages::logAsked);
  connect(m_answering.get(), &Answering::ranOutOfMemory, this, [this] {
    showPlainMessage(this, QStringLiteral("There is not enough memory for this page. A shorter period needs less."));
  });
  m_tabs->setCurrentIndex(static_cast<int>(PageName::Overview));
  m_stack->setCurrentWidget(m_start);
}

Pages::~Pages() {
  m_answering.reset();
  m_reading.reset();
}

void Pages::makePages() {
  m_overview = new OverviewPage;
  m_logins = new LoginsPage;
  m_log = new LogPage;
  m_pages = {nullptr, m_overview, new SessionsPage, m_logins, new FilesPage, new TransfersPage, new TrafficPage, m_log};
  m_stack->addWidget(m_start);
  m_stack->addWidget(m_sessionTree);
  for (AnswerPage* const page : m_pages) {
    if (page == nullptr) continue;
    connectPage(*page);
    m_stack->addWidget(page);
  }
  connect(m_logins, &LoginsPage::thresholdsChanged, this,
          [this] { m_overview->setThresholds(m_logins->thresholds()); });
}

void Pages::arrange() {
  static constexpr std::array kTitles{"Session tree", "Overview",  "Sessions", "Logins",
                                      "Files",        "Transfers", "Traffic",  "Log"};
  m_tabs->setObjectName(QStringLiteral("pages"));
  m_tabs->setAccessibleName(QStringLiteral("Pages"));
  m_tabs->setExpanding(false);
  m_tabs->setDrawBase(false);
  for (std::size_t i = 0; i < kTitles.size(); ++i) {
    m_tabs->addTab(QString::fromLatin1(kTitles[i]));
    m_tabs->setTabToolTip(static_cast<int>(i), QStringLiteral("Ctrl+%1").arg(i + 1));
  }
  m_scope->setObjectName(QStringLiteral("scope"));
  auto* const rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(kGap);
  auto* const head = new QVBoxLayout;
  head->setContentsMargins(kGap, kGap, kGap, 0);
  head->setSpacing(kGap);
  head->addWidget(m_tabs);
  head->addWidget(m_scope);
  rows->addLayout(head);
  rows->addWidget(m_stack, 1);
}

void Pages::connectPage(AnswerPage& page) {
  page.setContentsMargins(kGap, 0, kGap, 0);
  page.setMinimumSize(1, 1);  // a page that is not shown must not make the window larger
  connect(&page, &AnswerPage::asks, this, &Pages::ask);
  connect(&page, &AnswerPage::counted, this, [this, &page](qint64 shown, qint64 all) {
    if (current() == &page) m_scope->setCount(shown, all);
  });
  connect(&page, &AnswerPage::wordAsked, m_scope, &ScopeRow::addWord);
  connect(&page, &AnswerPage::periodAsked, m_scope, &ScopeRow::setPeriod);
  connect(&page, &AnswerPage::pageAsked, this, &Pages::goToPage);
  connect(&page, &AnswerPage::sessionAsked, this, &Pages::goToSession);
  connect(&page, &AnswerPage::saveLinesAsked, this, &Pages::saveText);
  connect(&page, &AnswerPage::treeAsked, this, &Pages::treeAsked);
  connect(&page, &AnswerPage::addressAsked, this, &Pages::addressAsked);
  connect(&page, &AnswerPage::lineAsked, this, [this](quint64 position) {
    showPage(PageName::Log);
    m_log->goToPosition(position);
  });
}

void Pages::start(FileSystem& files, const std::filesystem::path& folder, QSettings& settings) {
  m_files = &files;
  m_settings = &settings;
  m_folder = folder;
  m_reading = std::make_unique<BackgroundReading>(files, folder);
  connect(m_reading.get(), &BackgroundReading::activityChanged, this, &Pages::onActivityChanged);
  connect(m_reading.get(), &BackgroundReading::progressed, this, &Pages::showReading);
  connect(m_reading.get(), &BackgroundReading::ended, this, &Pages::onEnded);
  for (AnswerPage* const page : m_pages)
    if (page != nullptr) page->restore(settings);
  m_overview->setThresholds(m_logins->thresholds());
  const int kept = settings.value(kPageKey, static_cast<int>(PageName::Overview)).toInt();
  m_tabs->setCurrentIndex(std::clamp(kept, 0, kPageCount - 1));
  m_start->setRecent(settings.value(kRecentKey).toStringList());
  m_start->setSamples(samples());
  showPage(page());
}

void Pages::save() {
  if (m_settings == nullptr) return;
  m_settings->setValue(kPageKey, m_tabs->currentIndex());
  for (const AnswerPage* const page : m_pages)
    if (page != nullptr) page->save(*m_settings);
}

void Pages::openLog(const std::filesystem::path& log) {
  if (!m_reading) return;
  m_answering->cancel();
  m_start->setProblem({}, {});
  const auto bytes = std::make_shared<LogBytes>(*m_files, log, m_folder);
  m_scope->setScope({});
  m_scope->setLogPeriod(kNoTime, kNoTime);
  m_reading->start(log);
  for (AnswerPage* const page : m_pages)
    if (page != nullptr) page->setLog(bytes);
  noteLog(log);
  showPage(page());
}

void Pages::noteLog(const std::filesystem::path& log) {
  const QString name = toFileName(log);
  QStringList recent = m_settings->value(kRecentKey).toStringList();
  recent.removeAll(name);
  recent.prepend(name);
  m_settings->setValue(kRecentKey, recent.mid(0, kMostRecent));
  m_start->setRecent(recent.mid(0, kMostRecent));
}

PageName Pages::page() const {
  return static_cast<PageName>(m_tabs->currentIndex());
}

AnswerPage& Pages::answerPage(PageName page) const {
  return *m_pages[static_cast<std::size_t>(page)];
}

AnswerPage* Pages::current() const {
  return m_pages[static_cast<std::size_t>(page())];
}

bool Pages::isIdle() const {
  return !m_answering->isBusy() && (!m_reading || m_reading->state() != BackgroundReading::State::Reading);
}

void Pages::showPage(PageName page) {
  const QSignalBlocker quiet(m_tabs);
  m_tabs->setCurrentIndex(static_cast<int>(page));
  const BackgroundReading::State state = m_reading ? m_reading->state() : BackgroundReading::State::None;
  const bool hasLog = state != BackgroundReading::State::None && state != BackgroundReading::State::Failed;
  AnswerPage* const shown = current();
  // The raw log can be looked at even where nothing in it is understood.
  const bool showsStart = shown != nullptr && !hasLog && !(shown == m_log && state == BackgroundReading::State::Failed);
  m_scope->setVisible(shown != nullptr && !showsStart);
  m_stack->setCurrentWidget(showsStart ? m_start : shown != nullptr ? shown : m_sessionTree);
  m_scope->setCount(-1, -1);
  if (shown != nullptr && !showsStart) ask();
  emit pageChanged();
}

void Pages::ask() {
  m_answering->setScope(m_scope->scope());
  m_answering->cancel();
  if (AnswerPage* const page = current()) m_answering->ask(page->inquiry());
}

void Pages::onActivityChanged() {
  m_answering->setActivity(m_reading->activity());
  const auto& logs = m_reading->activity()->logs;
  LogTime first = kNoTime;
  LogTime last = kNoTime;
  for (const LogInfo& log : logs) {
    if (log.ledger.first != kNoTime && (first == kNoTime || log.ledger.first < first)) first = log.ledger.first;
    last = std::max(last, log.ledger.last);
  }
  m_scope->setLogPeriod(first, last);
  AnswerPage* const page = current();
  if (page != nullptr && m_stack->currentWidget() == page) m_answering->ask(page->inquiry());
}

void Pages::onEnded() {
  showUsers();
  if (m_reading->state() != BackgroundReading::State::Failed) return;
  m_start->setProblem(m_reading->problem(), firstLines(*m_files, m_reading->log()).join(u'\n'));
  showPage(page());
}

void Pages::showUsers() {
  constexpr std::size_t kMost = 10'000;
  const auto activity = m_reading->activity();
  std::set<TextId> ids;
  for (std::size_t i = 0; i < activity->logons.size() && ids.size() < kMost; ++i)
    ids.insert(activity->logons[i].user);
  ids.erase(kNoText);
  QStringList users;
  for (const TextId id : ids)
    users += plainLine(utf8Of(activity->text(id), activity->logs.front().encoding));
  users.sort(Qt::CaseInsensitive);
  m_scope->setUsers(users);
}

void Pages::showReading() {
  QString text;
  switch (m_reading->state()) {
    case BackgroundReading::State::Reading:
      text =
          m_reading->percent() < 0 ? QStringLiteral("reading") : QStringLiteral("%1 % read").arg(m_reading->percent());
      break;
    case BackgroundReading::State::Stopped:
      text = QStringLiteral("stopped at %1 %").arg(m_reading->percent());
      break;
    default:
      break;
  }
  m_scope->showReading(text, m_reading->state() == BackgroundReading::State::Reading);
}

void Pages::goToPage(PageName page, const std::vector<ScopeWord>& words) {
  if (!words.empty()) {
    Scope scope = m_scope->scope();
    scope.words = words;
    const QSignalBlocker quiet(m_scope);
    m_scope->setScope(scope);
  }
  showPage(page);
}

/// Shows the session of a row among all sessions: the words that chose the row may not choose its session.
void Pages::goToSession(RowSource source) {
  const RowPlace place = placeOf(*m_answering->activity(), source);
  if (page() == PageName::Sessions) return emit treeAsked(m_answering->activity()->sessions[place.session].position);
  {
    const QSignalBlocker quiet(m_scope);
    m_scope->setScope({});
  }
  answerPage(PageName::Sessions).goTo({RowSource::Kind::Session, place.session});
  showPage(PageName::Sessions);
}

void Pages::find() {
  if (AnswerPage* const page = current()) page->focusFind();
}

void Pages::findNext() {
  if (AnswerPage* const page = current()) page->findNext();
}

void Pages::findPrevious() {
  if (AnswerPage* const page = current()) page->findPrevious();
}

void Pages::goTo() {
  if (m_reading && m_reading->state() == BackgroundReading::State::None) return;
  showPage(PageName::Log);
  m_log->focusGoTo();
}

void Pages::focusWords() {
  if (m_scope->isVisible()) m_scope->focusWords();
}

bool Pages::refusesFile(const std::filesystem::path& path) {
  if (m_reading->log().empty() || !isSameFile(path, m_reading->log())) return false;
  showPlainMessage(this, QStringLiteral("This is the log itself. It is never written to."));
  return true;
}

QString Pages::shownTitle() const {
  return toFileName(m_reading->log().filename()) + QStringLiteral(" - ") + m_tabs->tabText(m_tabs->currentIndex());
}

std::optional<std::filesystem::path> Pages::askFile(const FileRequest& request) {
  auto path = quorvel::askFile(*this, m_dialogs, request);
  if (!path || refusesFile(*path)) return std::nullopt;
  m_settings->setValue(kFolderKey, toFileName(path->parent_path()));
  return path;
}

std::filesystem::path Pages::saveFolder() const {
  const QString kept = m_settings->value(kFolderKey).toString();
  return kept.isEmpty() ? m_folder : toPath(kept);
}

TableBox* Pages::shownTable() const {
  TableBox* const table = current() != nullptr ? current()->mainTable() : nullptr;
  return table != nullptr && table->rows().table() != nullptr ? table : nullptr;
}

void Pages::exportShown() {
  const TableBox* const box = shownTable();
  if (box == nullptr) return;
  const auto table = box->rows().sharedTable();
  const TableView shown = box->shown();
  const auto path = askFile(exportRequest(saveFolder()));
  if (!path) return;
  const QString problem = exportTable(*m_files, *path, table, shown, shownTitle());
  if (!problem.isEmpty()) showPlainMessage(this, problem);
}

void Pages::saveText(const QString& text) {
  const auto path = askFile(linesRequest(saveFolder()));
  if (!path) return;
  const Status status = m_files->replaceWhole(*path, text.toStdString() + '\n');
  if (!status.isOk()) showPlainMessage(this, toQString(status.error().sentence()));
}

void Pages::printShown() {
  if (const TableBox* const box = shownTable())
    printTable(*this, box->rows().sharedTable(), box->shown(), shownTitle());
}

}  // namespace quorvel
