#pragma once
// MCFilePanel: an open or save panel, as a model; an MCDialogPresenter runs it (the GTK host with a
// native file chooser) and fills in the chosen URLs. Result codes: 1 for OK, 0 for cancel.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class MCView;

struct MCFilePanel {
  enum Kind { Open, Save };
  static constexpr long OKButton = 1;
  static constexpr long CancelButton = 0;

  Kind kind = Open;
  std::string title;
  std::string message;
  /// The text of the button that accepts.
  std::string prompt;
  std::filesystem::path directoryURL;
  bool canChooseFiles = true;
  bool canChooseDirectories = false;
  bool allowsMultipleSelection = false;
  /// Save panels: the proposed file name.
  std::string nameFieldStringValue;
  /// A view shown with the panel (hosts that cannot show views show its text, when it has some).
  std::shared_ptr<MCView> accessoryView;
  bool accessoryViewDisclosed = false;

  /// What the user chose, set by the presenter.
  std::vector<std::filesystem::path> URLs;
  std::filesystem::path URL() const { return URLs.empty() ? std::filesystem::path() : URLs.front(); }
};
