// The inner part of the main window: the tree on the left, the two text boxes on the right, the progress row below.
#pragma once

#include <QWidget>
#include <string_view>

class QLabel;
class QSplitter;
class QStackedWidget;

namespace quorvel {

class PlainTextBox;
class ProgressRow;
class SessionTreeBox;

/// Width of the tree in pixels in a window of the inner width: 0.5175 of it, in a narrow window 0.5175 of 512 pixels.
[[nodiscard]] int treeWidth(int windowWidth);

class MainPanes : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kGap = 7;  ///< pixels between the parts and at the edges

  explicit MainPanes(QWidget* parent = nullptr);

  [[nodiscard]] SessionTreeBox& tree() { return *m_tree; }
  [[nodiscard]] PlainTextBox& userInfo() { return *m_userInfo; }
  [[nodiscard]] PlainTextBox& filter() { return *m_filter; }
  [[nodiscard]] ProgressRow& progress() { return *m_progress; }

  void setTreeHeader(std::string_view text);
  /// Shows the tree, or the words that it is hidden.
  void showTree(bool visible);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] QWidget* makeTreeSide();
  [[nodiscard]] QWidget* makeTextSide();

  QLabel* m_treeHeader;
  QStackedWidget* m_treeStack;
  QLabel* m_hidingLabel;
  SessionTreeBox* m_tree;
  PlainTextBox* m_userInfo;
  PlainTextBox* m_filter;
  ProgressRow* m_progress;
  QSplitter* m_splitter;
  bool m_userMovedSplitter = false;  // from then on the proportions are the user's
};

}  // namespace quorvel
