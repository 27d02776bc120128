// The main window's page of sessions: the tree on the left, the two text boxes on the right, the progress row below.
#pragma once

#include <QWidget>
#include <optional>
#include <string_view>

class QLabel;
class QSettings;
class QSplitter;
class QStackedWidget;

namespace quorvel {

class PlainTextBox;
class ProgressRow;
class SessionTreeBox;

/// Width of the tree in pixels in a window of the inner width: 0.5175 of it, in a narrow window 0.5175 of 512 pixels.
[[nodiscard]] int treeWidth(int windowWidth);

class SessionTreePage : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kGap = 7;  ///< pixels between the parts and at the edges

  explicit SessionTreePage(QWidget* parent = nullptr);

  [[nodiscard]] SessionTreeBox& tree() { return *m_tree; }
  [[nodiscard]] PlainTextBox& userInfo() { return *m_userInfo; }
  [[nodiscard]] PlainTextBox& filter() { return *m_filter; }
  [[nodiscard]] ProgressRow& progress() { return *m_progress; }

  void setTreeHeader(std::string_view text);
  /// Shows the tree, or the words that it is hidden.
  void showTree(bool visible);

  /// Where the user has moved the line between tree and text boxes to, kept from one start to the next.
  void restore(const QSettings& settings);
  void save(QSettings& settings) const;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] QWidget* makeTreeSide();
  [[nodiscard]] QWidget* makeTextSide();
  void divide();

  QLabel* m_treeHeader;
  QStackedWidget* m_treeStack;
  QLabel* m_hidingLabel;
  SessionTreeBox* m_tree;
  PlainTextBox* m_userInfo;
  PlainTextBox* m_filter;
  ProgressRow* m_progress;
  QSplitter* m_splitter;
  std::optional<double> m_treeShare;  // of the splitter's width, once the user has moved it
};

}  // namespace quorvel
