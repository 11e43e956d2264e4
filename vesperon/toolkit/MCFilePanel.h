#pragma once
// MCFilePanel: an open or save panel, as a model; an MCDialogPresenter runs it (the GTK host with a
// native file chooser) and fills in the chosen URLs. Result codes: 1 for OK, 0 for cancel.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class MCView;

struct MCFilePanel {
  /// Whether the panel opens or saves.
  enum Kind { Open, Save };
  /// The result of a panel accepted.
  static constexpr long OKButton = 1;
  /// The result of a panel cancelled.
  static constexpr long CancelButton = 0;

  /// Whether the panel opens or saves.
  Kind kind = Open;
  /// The panel's title.
  std::string title;
  /// A line of text above the files.
  std::string message;
  /// The text of the button that accepts.
  std::string prompt;
  /// The folder shown first; empty for the chooser's own choice.
  std::filesystem::path directoryURL;
  /// Whether files can be chosen.
  bool canChooseFiles = true;
  /// Whether folders can be chosen.
  bool canChooseDirectories = false;
  /// Whether more than one can be chosen.
  bool allowsMultipleSelection = false;
  /// Save panels: the proposed file name.
  std::string nameFieldStringValue;
  /// A view shown with the panel (hosts that cannot show views show its text, when it has some).
  std::shared_ptr<MCView> accessoryView;
  /// Whether the accessory view shows at first.
  bool accessoryViewDisclosed = false;

  /// What the user chose, set by the presenter.
  std::vector<std::filesystem::path> URLs;
  /// The first chosen URL; empty when none.
  std::filesystem::path URL() const { return URLs.empty() ? std::filesystem::path() : URLs.front(); }
};
