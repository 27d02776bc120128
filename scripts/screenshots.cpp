// Takes pictures of the real window and of every dialog: quorvel_screenshots LOG FOLDER [dark] [large]
#include <QContextMenuEvent>
#include <QDeadlineTimer>
#include <QDialog>
#include <QFileDialog>
#include <QHash>
#include <QImage>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QStyleFactory>
#include <algorithm>
#include <cstdio>

#include "tests/support/answering_socket.h"
#include "tests/support/program_window.h"
#include "ui/qt/about_dialog.h"
#include "ui/qt/computer_ip_dialog.h"
#include "ui/qt/pages/answer_page.h"
#include "ui/qt/pages/pages.h"
#include "ui/qt/pages/table_box.h"
#include "ui/qt/print_pages.h"
#include "ui/qt/readable_colours.h"
#include "ui/qt/session_tree_box.h"
#include "ui/qt/session_tree_page.h"
#include "ui/qt/splash_window.h"
#include "ui/qt/text.h"
#include "ui/qt/window_icon.h"

namespace quorvel::test {
namespace {

constexpr int kLargePoints = 22;

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
  std::sort(colours.begin(), colours.end(), [&counts](QRgb a, QRgb b) {
    return std::pair(counts[a], a) > std::pair(counts[b], b);  // the same picture is the same file
  });
  colours.resize(std::min<qsizetype>(colours.size(), 256));
  return opaque.convertToFormat(QImage::Format_Indexed8, colours, Qt::ThresholdDither);
}

/// A dialog below a bar with its title, which is a window manager's to draw and missing here.
QPixmap withTitleBar(QDialog& dialog) {
  const QPixmap inside = dialog.grab();
  const int barHeight = dialog.fontMetrics().height() + 10;
  const qreal ratio = inside.devicePixelRatio();
  QPixmap picture(QSize(dialog.width() + 2, dialog.height() + barHeight + 2) * ratio);
  picture.setDevicePixelRatio(ratio);
  picture.fill(dialog.palette().color(QPalette::Mid));
  QPainter painter(&picture);
  painter.setPen(dialog.palette().color(QPalette::WindowText));
  painter.drawText(QRect(1, 0, dialog.width(), barHeight), Qt::AlignCenter,
                   dialog.windowTitle().replace(QStringLiteral("[*]"), QString()));
  painter.drawPixmap(1, barHeight + 1, inside);
  return picture;
}

void press(QWidget& widget, Qt::Key key) {
  QKeyEvent event(QEvent::KeyPress, key, {});
  QCoreApplication::sendEvent(&widget, &event);
}

/// Runs the interface for a while, for what happens on another thread.
void wait(std::chrono::milliseconds time) {
  const QDeadlineTimer enough(time);
  while (!enough.hasExpired())
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
}

constexpr std::pair<PageName, const char*> kPagePictures[] = {{PageName::Overview, "overview"},
                                                              {PageName::Sessions, "sessions"},
                                                              {PageName::Logins, "logins"},
                                                              {PageName::Files, "files"},
                                                              {PageName::Transfers, "transfers"},
                                                              {PageName::Traffic, "traffic"},
                                                              {PageName::Log, "log"}};

/// A window on a copy of the log that takes pictures of itself.
class Photographer : private ProgramWindow {
 public:
  Photographer(const std::filesystem::path& log, QString outputFolder) : m_output(std::move(outputFolder)) {
    window.resize(960, 620);
    m_log = folder / "ftp-server.log";
    std::filesystem::copy_file(log, m_log);
  }

  void takeAll() {
    takeSplash();
    takeOpening();
    open(m_log);
    choose(MenuItem::mnuFindUsers);
    openFirst();
    take("main-window");
    takeLayouts();
    takePopUpAndCheckBoxes();
    takeDialog(MenuItem::mnuCountAllTransfers, "counter-result");
    takeDialog(MenuItem::mnuGotoPosition, "goto-position", "5000");
    takeComputerIp();
    takeOptions();
    takeDialog(MenuItem::mnuHelpCommandLineReference, "command-line-reference");
    takeAbout();
    takeSaving();
    takePrinting();
    takeLostFile();
    takePages();
    takeScan();
  }

 private:
  /// Every page that answers a question, at a usual size and at the smallest.
  void takePages() {
    const QSize usual = window.size();
    for (const auto& [size, suffix] : {std::pair(QSize(1120, 740), ""), {QSize(800, 600), "-800x600"}}) {
      window.resize(size);
      for (const auto& [page, name] : kPagePictures) {
        window.pages().showPage(page);
        settle();
        chooseRow(page);
        take(name + std::string(suffix));
      }
    }
    window.pages().showPage(PageName::SessionTree);
    window.resize(usual);
  }

  /// Chooses the row of a page's table that its picture is about.
  void chooseRow(PageName page) {
    if (page == PageName::Log) wait(std::chrono::milliseconds(300));
    TableBox* const table = window.pages().answerPage(page).mainTable();
    if (page == PageName::Overview || page == PageName::Log || table == nullptr) return;
    table->setCurrentIndex(table->rows().index(std::min(2, table->rows().rowCount() - 1), 0));
    table->setFocus();
    wait(std::chrono::milliseconds(300));
  }

  void settle() {
    const QDeadlineTimer enough(std::chrono::seconds(20));
    do
      wait(std::chrono::milliseconds(100));
    while (!window.pages().isIdle() && !enough.hasExpired());
  }

  void takeSplash() {
    frmSplash splash;
    save(splash.pixmap(), "start-up");
    save(windowIcon().pixmap(256), "icon");
    take("main-window-empty");
    window.pages().showPage(PageName::Overview);
    take("start");
    window.pages().showPage(PageName::SessionTree);
  }

  void takeOpening() {
    onDialog<QDialog>([this](QDialog& dialog) { photograph(dialog, "open-log"); });
    (void)QtFileDialogs().askOpenFile(&window, {.title = {},
                                                .filter = "Serv-U log file                    (*.*)|*.*",
                                                .folder = folder.path(),
                                                .fileMustExist = true});
  }

  void takeLayouts() {
    static constexpr std::pair<MenuItem, const char*> kLayouts[] = {
        {MenuItem::mnuShowUsernameIP, "layout-username-ip"},
        {MenuItem::mnuShowIPUsername, "layout-ip-username"},
        {MenuItem::mnuShowIPLogontime, "layout-ip-logontime"},
        {MenuItem::mnuShowUsernameLogontime, "layout-username-logontime"}};
    for (const auto& [item, name] : kLayouts) {
      openPopUp();
      window.menus().treePopup().hide();
      onDialog<QMessageBox>([this](QMessageBox& question) {
        save(withTitleBar(question), "layout-question");
        question.button(QMessageBox::Yes)->click();
      });
      choose(item);
      openFirst();
      take(name);
    }
  }

  void takePopUpAndCheckBoxes() {
    choose(MenuItem::mnuShowCheckboxesInTreeView);
    openPopUp();
    runEvents();
    QPixmap picture = window.grab();
    const QWidget& popUp = window.menus().treePopup();
    QPainter(&picture).drawPixmap(window.mapFromGlobal(popUp.pos()), window.menus().treePopup().grab());
    save(picture, "tree-menu");
    window.menus().treePopup().hide();
    choose(MenuItem::mnuShowCheckboxesInTreeView);
  }

  /// The dialog that the item opens, with a text for its first field, which Enter then hands to the tool.
  void takeDialog(MenuItem item, const char* name, const char* text = nullptr) {
    onDialog<QDialog>([this, name, text](QDialog& dialog) {
      if (text != nullptr) enter(dialog, text);
      photograph(dialog, name);
    });
    choose(item);
  }

  static void enter(QDialog& dialog, const char* text) {
    auto& field = *dialog.findChild<QLineEdit*>();
    field.setText(QString::fromLatin1(text));
    press(field, Qt::Key_Return);
  }

  void takeComputerIp() {
    frmComputerIP dialog(settings, {}, openAnsweringSocket, &window);
    dialog.show();
    enter(dialog, "localhost");
    wait(std::chrono::milliseconds(2500));
    photograph(dialog, "computer-ip");
  }

  void takeOptions() {
    onDialog<QDialog>([this](QDialog& dialog) {
      static constexpr const char* kPages[] = {"filter", "short-info", "save", "tree-view", "counter", "command-line"};
      auto& pages = *dialog.findChild<QListWidget*>();
      for (int page = 0; page < pages.count(); ++page) {
        pages.setCurrentRow(page);
        runEvents();
        save(withTitleBar(dialog), std::string("options-") + kPages[page]);
      }
      dialog.reject();
    });
    choose(MenuItem::mnuOptions);
  }

  /// With the folder of an installed program: this run's own is gone tomorrow.
  void takeAbout() {
    frmAbout dialog("/home/admin/.local/share/quorvel", &window);
    dialog.show();
    photograph(dialog, "about");
  }

  void takeSaving() {
    onDialog<QFileDialog>([this](QFileDialog& dialog) {
      onDialog<QMessageBox>([this](QMessageBox& question) { photograph(question, "save-question"); });
      QTimer::singleShot(100, &dialog,
                         [this] { onDialog<QFileDialog>([this](QFileDialog& again) { photograph(again, "save"); }); });
      dialog.selectFile(toFileName(m_log));
      press(*dialog.findChild<QLineEdit*>(), Qt::Key_Return);
    });
    (void)QtFileDialogs().askSaveFile(&window, {.title = "Save filter results (all sessions)",
                                                .filter = "Filtered logfile (all sessions)             (*.txt)|*.txt",
                                                .folder = folder.path(),
                                                .existing = ExistingFile::AskedToAppend});
  }

  void takePrinting() {
    takeDialog(MenuItem::mnuPrint, "print");
    QPrinter printer(QPrinter::HighResolution);
    QPrintPreviewWidget preview(&printer);
    const PrintedDocument document{"ftp-server.log", "2005-06-07 17:20:09",
                                   window.userInfo() + "\r\n\r\n" + window.filterText()};
    QObject::connect(&preview, &QPrintPreviewWidget::paintRequested, &preview,
                     [&document](QPrinter* device) { (void)printPages(*device, document, [] { return true; }); });
    preview.resize(700, 940);
    preview.show();
    preview.updatePreview();
    preview.fitInView();
    runEvents();
    save(preview.grab(), "printed-page");
  }

  void takeLostFile() {
    std::filesystem::rename(folder / "users.qva", folder / "users.old");
    onDialog<QMessageBox>([this](QMessageBox& message) { photograph(message, "lost-file"); });
    openFirst();
    std::filesystem::rename(folder / "users.old", folder / "users.qva");
  }

  void takeScan() {
    const std::string once = folder.read("ftp-server.log");
    std::string often;
    while (often.size() < 24'000'000)
      often += once;
    open(folder.write("busy-server.log", often));
    QTimer::singleShot(0, &window, [this] { takeScanLater(); });
    choose(MenuItem::mnuFindUsers);
  }

  /// Lets the scan come some way before its picture is taken.
  void takeScanLater() {
    const auto* const bar = window.findChild<QProgressBar*>();
    const auto* const stop = window.findChild<QPushButton*>(QStringLiteral("cmdStop"));
    if (bar->value() < bar->maximum() / 3 || !stop->isVisible())
      return QTimer::singleShot(0, &window, [this] { takeScanLater(); });
    take("scan");
    choose(MenuItem::mnuStop);
  }

  /// Opens the first name of the tree and shows its first session.
  void openFirst() {
    SessionTreeBox& tree = window.sessionTreePage().tree();
    const QModelIndex top = tree.model()->index(0, 0);
    tree.expandAll();
    tree.setCurrentIndex(tree.model()->index(0, 0, top));
    press(tree, Qt::Key_Return);
    tree.scrollToTop();
  }

  void openPopUp() {
    QWidget* const viewport = window.sessionTreePage().tree().viewport();
    const QPoint place(60, 40);
    QContextMenuEvent press(QContextMenuEvent::Mouse, place, viewport->mapToGlobal(place));
    QCoreApplication::sendEvent(viewport, &press);
  }

  void take(const std::string& name) {
    runEvents();
    save(window.grab(), name);
  }

  void photograph(QDialog& dialog, const std::string& name) {
    runEvents();
    save(withTitleBar(dialog), name);
    dialog.reject();
  }

  void save(const QPixmap& picture, const std::string& name) {
    constexpr int kBestCompression = 0;
    QImage smallest = picture.toImage();
    if (name != "icon") smallest = withCommonColours(smallest);
    const QString fileName = m_output + u'/' + QString::fromStdString(name) + QStringLiteral(".png");
    if (!smallest.save(fileName, "PNG", kBestCompression)) std::printf("cannot write %s\n", qPrintable(fileName));
  }

  std::filesystem::path m_log;
  QString m_output;
};

int run(const QStringList& arguments) {
  if (arguments.size() < 3) return std::fputs("usage: quorvel_screenshots LOG FOLDER [dark] [large]\n", stderr), 1;
  if (arguments.contains(QStringLiteral("large"))) {
    QFont large = QApplication::font();
    large.setPointSize(kLargePoints);
    QApplication::setFont(large);
  }
  if (arguments.contains(QStringLiteral("dark"))) QApplication::setPalette(darkPalette());
  useReadableColours();
  Photographer(toPath(arguments[1]), arguments[2]).takeAll();
  return 0;
}

}  // namespace
}  // namespace quorvel::test

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  const QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  return quorvel::test::run(QApplication::arguments());
}
