#pragma once
// The card of one photo in `vesperon browse`: the library's card cell, with the name cut in the
// middle so that its end and extension stay ("IMG_2024…-sand.jpg"), and a visible state while the
// thumbnail is on its way ("Loading…") or could not be made ("Cannot be read").

#include <vesperon/browser/MCBrowserViewItemCardCell.h>
#include <vesperon/toolkit/MCColor.h>

#include <string>

class BrowseItemCell : public MCBrowserViewItemCardCell {
 public:
  using MCBrowserViewItemCardCell::MCBrowserViewItemCardCell;

  enum class State { Shown, Loading, Failed };
  State state = State::Shown;
  MCColor placeholderColor = MCColor::colorWithHex(0xDEDDDA), placeholderTextColor = MCColor::colorWithHex(0x5E5C64);

  /// `text` as it fits `width` in these attributes: whole, or its head and tail around an
  /// ellipsis, the tail at least as long as the head so the extension stays. Never splits a
  /// character of UTF-8.
  static std::string titleFittingWidth(const std::string& text, double width, const MCTextAttributes& attributes);

  void drawWithFrame(const MCRect& frame, MCView* view) override;
  std::shared_ptr<MCBrowserViewCell> copy() const override;
};
