#include "ui/qt/menus.h"

#include <QMenuBar>
#include <algorithm>
#include <array>

#include "ui/qt/edit_actions.h"

namespace quorvel {
namespace {

QString latin(const char* text) {
  return QString::fromLatin1(text);
}

/// Find users brings the session tree to the front; the others open something of their own.
bool worksOnEveryPage(MenuItem item) {
  using enum MenuItem;
  constexpr std::array kItems{mnuOpenLogFile,     mnuExit,        mnuStop,
                              mnuFindUsers,       mnuOptions,     mnuGetComputersIP,
                              mnuWebVisitWebsite, mnuAbout,       mnuHelpCommandLineReference,
                              mnuWebSendEmail,    mnuWebReportBug};
  return std::find(kItems.begin(), kItems.end(), item) != kItems.end();
}

}  // namespace

Menus::Menus(QMenuBar& bar) : QObject(&bar), m_treePopup(new QMenu(&bar)) {
  m_isEnabled.fill(true);
  for (const MenuPart& part : menuBarParts()) {
    fill(*bar.addMenu(latin(part.caption)), part);
    if (bar.actions().size() == 1) addEditMenu(bar);
  }
  fill(*m_treePopup, treePopupPart());
  setCommandRunning(false);
}

void Menus::fill(QMenu& menu, const MenuPart& part) {
  menu.setObjectName(latin(part.name));
  for (const MenuLine& line : part.lines)
    addLine(menu, line);
}

void Menus::addLine(QMenu& menu, const MenuLine& line) {
  if (line.submenu != nullptr) return fill(*menu.addMenu(latin(line.submenu->caption)), *line.submenu);
  const QString caption = latin(line.caption);
  QAction* const action = caption.isEmpty() ? menu.addSeparator() : menu.addAction(caption);
  action->setObjectName(latin(line.name));
  action->setMenuRole(QAction::NoRole);
  if (!line.item) return action->setVisible(action->isSeparator());
  action->setShortcut(QKeySequence(latin(line.keys), QKeySequence::PortableText));
  action->setCheckable(line.isCheckable);
  const MenuItem item = *line.item;
  m_actions[static_cast<std::size_t>(item)] = action;
  connect(action, &QAction::triggered, this, [this, item, action](bool checked) {
    if (action->isCheckable()) action->setChecked(!checked);
    emit chosen(item);
  });
}

void Menus::addEditMenu(QMenuBar& bar) {
  QMenu& menu = *bar.addMenu(QStringLiteral("&Edit"));
  menu.setObjectName(QStringLiteral("mnuEdit"));
  menu.menuAction()->setVisible(false);
  addEditActions(menu);
  bar.window()->addActions(menu.actions());  // a menu that is not visible keeps its shortcuts from working
}

void Menus::enable(MenuItem item, bool enabled) {
  m_isEnabled[static_cast<std::size_t>(item)] = enabled;
  applyEnabled(item);
}

void Menus::check(MenuItem item, bool checked) {
  action(item).setChecked(checked);
}

void Menus::setCommandRunning(bool running) {
  m_commandRunning = running;
  for (std::size_t i = 0; i < kItemCount; ++i)
    applyEnabled(static_cast<MenuItem>(i));
}

void Menus::setTreeShown(bool shown) {
  m_isTreeShown = shown;
  for (std::size_t i = 0; i < kItemCount; ++i)
    applyEnabled(static_cast<MenuItem>(i));
}

void Menus::applyEnabled(MenuItem item) {
  const bool worksNow = item == MenuItem::mnuExit || m_commandRunning == (item == MenuItem::mnuStop);
  const bool worksHere = m_isTreeShown || worksOnEveryPage(item);
  action(item).setEnabled(worksNow && worksHere && m_isEnabled[static_cast<std::size_t>(item)]);
}

}  // namespace quorvel
