#include "ui/qt/pages/files_page.h"

#include <QComboBox>
#include <QSplitter>
#include <algorithm>

#include "report/files.h"
#include "report/raw_tables.h"

namespace quorvel {
namespace {

bool asksForPath(const Scope& scope) {
  return std::any_of(scope.words.begin(), scope.words.end(),
                     [](const ScopeWord& word) { return word.field == ScopeWord::Field::Path && !word.isExcluded; });
}

}  // namespace

FilesPage::FilesPage(QWidget* parent)
    : TablePage(QStringLiteral("Files"), QStringLiteral("What happened to files"), parent),
      m_choice(addChoice(QStringLiteral("show"), QStringLiteral("Sho&w"),
                         {QStringLiteral("What happened"), QStringLiteral("By folder")})),
      m_folders(new TableBox(QStringLiteral("FoldersTable"), QStringLiteral("Folders"))) {
  splitter().insertWidget(0, m_folders);
  connectTable(*m_folders);
  connect(m_folders, &TableBox::rowActivated, this, [this](int row) {
    if (const auto word = m_folders->rows().word(m_folders->rows().index(row, 0))) {
      m_choice->setCurrentIndex(0);
      emit wordAsked(*word);
    }
  });
  m_folders->hide();
}

bool FilesPage::showsFolders() const {
  return m_choice->currentIndex() == 1;
}

TableBox* FilesPage::mainTable() {
  return showsFolders() ? m_folders : &table();
}

Inquiry FilesPage::inquiry() {
  m_folders->setVisible(showsFolders());
  table().setVisible(!showsFolders());
  lines().setVisible(!showsFolders());
  return [this, showsFolders = showsFolders(),
          sort = mainTable()->sortOrder()](const std::shared_ptr<const Subject>& subject) -> std::function<void()> {
    const Activity& activity = *subject->activity;
    std::vector<RowNumber> actions =
        asksForPath(subject->scope) ? fileActions(activity, subject->scope) : subject->selection.actions;
    const auto count = static_cast<qint64>(actions.size());
    OrderedTable rows =
        inOrder(showsFolders ? foldersTable(activity, actions) : actionsTable(activity, std::move(actions)), sort);
    return [this, subject, showsFolders, count, rows = std::move(rows)] {
      const QString nothing = QStringLiteral("This log tells of no files.");
      if (showsFolders) {
        m_folders->setEmptyText(whyEmpty(*subject, nothing));
        m_folders->show(rows.table, rows.order);
      } else {
        showRows(subject, rows, nothing);
      }
      emit counted(count, static_cast<qint64>(subject->activity->actions.size()));
    };
  };
}

void FilesPage::save(QSettings& settings) const {
  TablePage::save(settings);
  m_folders->save(settings);
}

void FilesPage::restore(QSettings& settings) {
  TablePage::restore(settings);
  m_folders->restore(settings);
}

}  // namespace quorvel
