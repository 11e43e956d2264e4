#pragma once
// The header cell of `vesperon browse`: the day, and how many photos it holds. Items are drawn
// by the library's card cell (MCBrowserViewItemCardCell).

#include <vesperon/browser/MCBrowserViewCell.h>
#include <vesperon/toolkit/MCColor.h>

#include <string>

class BrowseHeaderCell : public MCBrowserViewCell {
 public:
  static constexpr double kHeight = 30;
  void configure(std::string day, std::size_t count);
  MCColor textColor = MCColor::labelColor(), secondaryColor = MCColor::secondaryLabelColor(),
          separatorColor = MCColor::separatorColor();
  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override;
  std::shared_ptr<const MCImage> previewImage() override { return nullptr; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override { return frame; }
  void drawWithFrame(const MCRect& frame, MCView* view) override;
  std::shared_ptr<MCBrowserViewCell> copy() const override;

 private:
  std::string day_;
  std::size_t count_ = 0;
};
