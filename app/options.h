// The options dialog without its widgets: six pages of flags of the settings file.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "app/command_context.h"

namespace quorvel {

/// The state of a check box; stored as its number, do not change.
enum class CheckState {
  Clear = 0,
  Checked = 1,
  Greyed = 2,
};

// What the dialog draws. Controls that are not visible on the page shown hold nothing of interest.
struct CheckBoxControl {
  bool isVisible = false;
  bool isEnabled = true;
  CheckState value = CheckState::Clear;
  std::string caption;
  std::string toolTip;  ///< empty: none
};

struct OptionButtonControl {
  bool isVisible = false;
  bool isOn = false;
  std::string caption;
};

struct ComboBoxControl {
  bool isVisible = false;
  std::vector<std::string> entries;
  int selected = -1;  ///< -1: none
};

struct LabelControl {
  bool isVisible = false;
  std::string text;
};

/// One page's rows, drawn under each other: option buttons, check boxes, the combo box with the first label beside
/// it, the second label.
struct OptionControls {
  std::string frameCaption;
  std::array<OptionButtonControl, 10> optOption;
  std::array<CheckBoxControl, 10> chkOption;
  ComboBoxControl comboBox;
  LabelControl unitLabel;
  LabelControl footnote;
};

/// Reads a page from the settings when it is shown and writes it back when it is left. A dialog forwards what the
/// user does and draws controls() again after each call.
class frmOption {
 public:
  static constexpr int kPageCount = 6;

  /// context must outlive this.
  explicit frmOption(CommandContext& context) : m_context(context) {}

  /// The entries of the page list.
  [[nodiscard]] static std::array<std::string_view, kPageCount> lstSelectOption();
  [[nodiscard]] const OptionControls& controls() const { return m_controls; }

  /// Shows page 0. Nothing is written.
  void Form_Load();
  /// Saves the page that is left and shows another one, from 0.
  void lstSelectOption_Click(int page);
  /// The user clicked a check box that is enabled: checked becomes clear, clear checked, greyed clear.
  void chkOption_Click(std::size_t index);
  void optOption_Click(std::size_t index);
  /// OK was chosen and the dialog is closed: saves the page shown and brings the main window up to date. After Cancel
  /// nothing is called, so that only pages left before are saved.
  void cmdOK_Click();

  /// Shows the page of the finder's buffer size. No entry of the page list leads to it, and saveOptions() writes
  /// nothing of it: the size is changed in the settings file only.
  void loadFindUserinfoOptions();
  /// Writes the page shown to the settings.
  void saveOptions();

 private:
  void loadPage();
  void loadTreeViewOptions();
  void saveCheckBoxes();
  void saveTreeViewOptions();
  void saveLayout();

  CommandContext& m_context;
  OptionControls m_controls;
  int m_page = -1;  ///< -1: a page that is not in the list
};

}  // namespace quorvel
