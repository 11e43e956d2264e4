#pragma once
// MCSandboxAccessoryView: the strip shown with the folder panel when the program asks for access —
// a folder icon, the title ("Grant access to …") and a line that says why access is needed.
// Hosts that cannot show a view inside their file chooser show the two texts instead.

#include <vesperon/toolkit/MCView.h>

#include <memory>
#include <string>

class MCSandboxAccessoryView : public MCView {
 public:
  /// The view with `title` and the localised "open_panel_description_access_needed".
  static std::shared_ptr<MCSandboxAccessoryView> accessoryViewWithTitle(const std::string& title);

  /// The headline shown with the panel.
  const std::string& titleLabel() const { return title_; }
  /// The text under it.
  const std::string& descriptionLabel() const { return description_; }
  /// The icon-theme name of the image beside the texts.
  const std::string& imageName() const { return imageName_; }

  bool isFlipped() const override { return true; }
  void drawRect(const MCRect& dirtyRect) override;

 private:
  explicit MCSandboxAccessoryView(MCRect frame) : MCView(frame) {}
  std::string title_;
  std::string description_;
  std::string imageName_ = "folder";
};
