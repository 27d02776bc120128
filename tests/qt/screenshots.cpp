// Takes the pictures of the documentation from the real window: quorvel_screenshots LOG FOLDER [all|main NAME [dark]]
#include <QApplication>
#include <QContextMenuEvent>
#include <QDeadlineTimer>
#include <QDialog>
#include <QHash>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QPalette>
#include <QProgressBar>
#include <QStyleFactory>
#include <QTimer>
#include <algorithm>
#include <cstdio>

#include "app/main_window.h"
#include "app/settings.h"
#include "tests/support/temp_folder.h"
#include "ui/qt/file_dialogs.h"
#include "ui/qt/main_panes.h"
#include "ui/qt/main_window.h"
#include "ui/qt/menus.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/splash_window.h"
#include "ui/qt/text.h"
#include "ui/qt/window_icon.h"

namespace quorvel::test {
namespace {

QPalette darkPalette() {
  QPalette palette(QColor(0x35, 0x38, 0x3c));
  palette.setColor(QPalette::Base, QColor(0x1e, 0x20, 0x22));
  palette.setColor(QPalette::Text, QColor(0xe6, 0xe6, 0xe6));
  palette.setColor(QPalette::Highlight, QColor(0x2a, 0x6f, 0xb5));
  return palette;
}

/// The picture in its 256 most frequent colours: a seventh of the size, and nobody sees it.
QImage withCommonColours(const QImage& picture) {
  const QImage opaque = picture.convertToFormat(QImage::Format_RGB32);
  QHash<QRgb, int> counts;
  for (int y = 0; y < opaque.height(); ++y) {
    for (int x = 0; x < opaque.width(); ++x)
      ++counts[opaque.pixel(x, y)];
  }
  QList<QRgb> colours = counts.keys();
  std::sort(colours.begin(), colours.end(), [&counts](QRgb a, QRgb b) { return counts[a] > counts[b]; });
  colours.resize(std::min<qsizetype>(colours.size(), 256));
  return opaque.convertToFormat(QImage::Format_Indexed8, colours, Qt::ThresholdDither);
}

/// A window on a copy of the log that takes pictures of itself.
class Photographer {
 public:
  Photographer(const std::filesystem::path& log, QString outputFolder) : m_output(std::move(outputFolder)) {
    m_settings.prepareFile();
    m_settings.resetOtherVersion();
    m_window.connectCommands(m_commands);
    m_commands.load();
    m_window.resize(960, 620);
    m_window.show();
    m_log = m_folder / "ftp-server.log";
    std::filesystem::copy_file(log, m_log);
  }
  ~Photographer() { m_window.disconnectCommands(); }

  void showSession() {
    m_commands.openLogFile(m_log);
    choose(MenuItem::mnuFindUsers);
    openFirst();
  }

  void take(const QString& name, QWidget* inFront = nullptr) {
    QCoreApplication::processEvents();
    QPixmap picture = m_window.grab();
    if (inFront != nullptr) {
      QPainter painter(&picture);
      const QPoint place = inFront->isWindow() && qobject_cast<QDialog*>(inFront) != nullptr
                               ? m_window.rect().center() - inFront->rect().center()
                               : m_window.mapFromGlobal(inFront->pos());
      painter.drawPixmap(place, inFront->grab());
      painter.setPen(Qt::gray);
      painter.drawRect(QRect(place, inFront->size()).adjusted(-1, -1, 0, 0));
    }
    save(picture, name);
  }

  void takeLayouts() {
    static constexpr MenuItem kLayouts[] = {MenuItem::mnuShowUsernameIP, MenuItem::mnuShowIPUsername,
                                            MenuItem::mnuShowIPLogontime, MenuItem::mnuShowUsernameLogontime};
    static constexpr const char* kNames[] = {"layout-username-ip", "layout-ip-username", "layout-ip-logontime",
                                             "layout-username-logontime"};
    for (std::size_t i = 0; i < std::size(kLayouts); ++i) {
      openPopUp();
      m_window.menus().treePopup().hide();
      onDialog([](QDialog& question) { question.accept(); });
      choose(kLayouts[i]);
      choose(MenuItem::mnuReloadTreeView);
      openFirst();
      take(QString::fromLatin1(kNames[i]));
    }
  }

  void takePopUpAndCheckBoxes() {
    choose(MenuItem::mnuShowCheckboxesInTreeView);
    openPopUp();
    take(QStringLiteral("tree-menu"), &m_window.menus().treePopup());
    m_window.menus().treePopup().hide();
    choose(MenuItem::mnuShowCheckboxesInTreeView);
  }

  void takeCounterResult() {
    onDialog([this](QDialog& result) {
      take(QStringLiteral("counter-result"), &result);
      result.reject();
    });
    choose(MenuItem::mnuCountAllTransfers);
  }

  void takeTools() {
    takeTool(MenuItem::mnuGotoPosition, "goto-position", "5000");
    takeTool(MenuItem::mnuGetComputersIP, "computer-ip", "localhost");
    takeTool(MenuItem::mnuOptions, "options");
    takeTool(MenuItem::mnuHelpCommandLineReference, "command-line-reference");
    takeTool(MenuItem::mnuAbout, "about");
  }

  void takeScan() {
    const std::string once = m_folder.read("ftp-server.log");
    std::string often;
    while (often.size() < 4'000'000)
      often += once;
    m_commands.openLogFile(m_folder.write("busy-server.log", often));
    QTimer::singleShot(0, &m_window, [this] { takeScanLater(); });
    choose(MenuItem::mnuFindUsers);
  }

  void takeSplash() {
    frmSplash splash;
    save(splash.pixmap(), QStringLiteral("start-up"));
    save(windowIcon().pixmap(256), QStringLiteral("icon"));
  }

 private:
  void choose(MenuItem item) { m_window.menus().action(item).trigger(); }

  /// Opens the first name of the tree and shows its first session.
  void openFirst() {
    SessionTreeBox& tree = m_window.panes().tree();
    const QModelIndex top = tree.model()->index(0, 0);
    tree.expandAll();
    tree.setCurrentIndex(tree.model()->index(0, 0, top));
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, {});
    QCoreApplication::sendEvent(&tree, &enter);
    tree.scrollToTop();
  }

  void openPopUp() {
    QWidget* const viewport = m_window.panes().tree().viewport();
    const QPoint place(60, 40);
    QContextMenuEvent press(QContextMenuEvent::Mouse, place, viewport->mapToGlobal(place));
    QCoreApplication::sendEvent(viewport, &press);
  }

  /// Calls act on the dialog that opens next.
  void onDialog(const std::function<void(QDialog&)>& act) {
    QTimer::singleShot(10, &m_window, [this, act] {
      auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr) return onDialog(act);
      act(*dialog);
    });
  }

  /// With a text for its first field, which Enter then hands to the tool.
  void takeTool(MenuItem item, const char* name, const char* text = nullptr) {
    onDialog([this, name, text](QDialog& dialog) {
      auto* const field = text == nullptr ? nullptr : dialog.findChild<QLineEdit*>();
      if (field != nullptr) {
        field->setText(QString::fromLatin1(text));
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, {});
        QCoreApplication::sendEvent(field, &enter);
        // A name is looked up on another thread.
        const QDeadlineTimer enough(1500);
        while (!enough.hasExpired())
          QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
      }
      take(QString::fromLatin1(name), &dialog);
      dialog.reject();
    });
    choose(item);
  }

  /// Lets the scan come some way before its picture is taken.
  void takeScanLater() {
    const auto* const bar = m_window.findChild<QProgressBar*>();
    if (bar->value() < bar->maximum() / 3) return QTimer::singleShot(0, &m_window, [this] { takeScanLater(); });
    take(QStringLiteral("scan"));
    choose(MenuItem::mnuStop);
  }

  void save(const QPixmap& picture, const QString& name) {
    constexpr int kBestCompression = 0;
    QImage smallest = picture.toImage();
    if (name != QStringLiteral("icon")) smallest = withCommonColours(smallest);
    const QString fileName = m_output + u'/' + name + QStringLiteral(".png");
    std::printf("%s %s\n", smallest.save(fileName, "PNG", kBestCompression) ? "wrote" : "cannot write",
                qPrintable(fileName));
  }

  TempFolder m_folder;
  std::filesystem::path m_log;
  QString m_output;
  Settings m_settings{systemFiles(), m_folder.path()};
  QtFileDialogs m_dialogs;
  Pacer m_pacer{Pacer::Clock::duration::zero()};  // a scan runs the interface at every step
  MainWindow m_window{m_dialogs};
  frmMain m_commands{systemFiles(), m_settings, m_window, m_pacer, m_folder.path()};
};

int run(const QStringList& arguments) {
  if (arguments.size() < 4) return std::fputs("usage: quorvel_screenshots LOG FOLDER all|NAME [dark]\n", stderr), 1;
  if (arguments.contains(QStringLiteral("dark"))) QApplication::setPalette(darkPalette());
  Photographer photographer(toPath(arguments[1]), arguments[2]);
  photographer.showSession();
  const bool takesAll = arguments[3] == QStringLiteral("all");
  photographer.take(takesAll ? QStringLiteral("main-window") : arguments[3]);
  if (!takesAll) return 0;
  photographer.takeLayouts();
  photographer.takePopUpAndCheckBoxes();
  photographer.takeCounterResult();
  photographer.takeTools();
  photographer.takeScan();
  photographer.takeSplash();
  return 0;
}

}  // namespace
}  // namespace quorvel::test

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  return quorvel::test::run(QApplication::arguments());
}
