#pragma once
// The cells of `vesperon browse`: a plain item cell with the thumbnail above the file name, and a
// header cell that names the day and counts its photos.

#include <vesperon/browser/MCBrowserViewCell.h>
#include <vesperon/platform/MCRasterImage.h>

#include <string>

class BrowsePlainCell : public MCBrowserViewCell {
 public:
  /// At scale 1 the cell is 400 points wide: a square for the image and a line for the name.
  static constexpr double kSideAtScaleOne = 400;
  static constexpr double kLabelHeight = 22;
  static constexpr double kInset = 6;

  enum class State { Loading, Loaded, Failed };
  void configure(MCRasterImageRef thumbnail, std::string title, State state, bool selected, bool alternate);

  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override;
  std::shared_ptr<const MCImage> previewImage() override;
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override;
  void drawWithFrame(const MCRect& frame, MCView* view) override;
  std::shared_ptr<MCBrowserViewCell> copy() const override;
  /// The item is its image square and its name, not the margin around them.
  bool containsPoint(MCPoint point, const MCRect& frame) override;

  /// The square of the image within a cell frame.
  static MCRect imageSquare(const MCRect& frame);

 private:
  MCRasterImageRef thumbnail_;
  std::string title_;
  State state_ = State::Loading;
  bool alternate_ = false;
};

class BrowseHeaderCell : public MCBrowserViewCell {
 public:
  static constexpr double kHeight = 30;
  void configure(std::string day, std::size_t count);
  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override;
  std::shared_ptr<const MCImage> previewImage() override { return nullptr; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override { return frame; }
  void drawWithFrame(const MCRect& frame, MCView* view) override;
  std::shared_ptr<MCBrowserViewCell> copy() const override;

 private:
  std::string day_;
  std::size_t count_ = 0;
};
