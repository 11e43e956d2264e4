#pragma once
// The viewer's information panel: what the library reads of the photo shown, a row a fact —
// camera, lens, exposure, aperture, ISO, focal length, flash, capture date with its offset, GPS
// position, dimensions, colour profile, and a clip's duration and codec. It is filled from the
// same property dictionary `vesperon info` prints (mediaPropertiesOfFile), read off the main
// thread; rows the photo does not have are left out.

#include <vesperon/core/MCValue.h>
#include <vesperon/toolkit/MCView.h>

#include <string>
#include <utility>
#include <vector>

/// The rows, label and value, of a property dictionary; `pixelSize` is "W × H" when known.
std::vector<std::pair<std::string, std::string>> BrowseInfoRows(const MCDictionary& properties,
                                                                 const std::string& pixelSize);

class BrowseInfoPanel : public MCView {
 public:
  static constexpr double kWidth = 280;
  using MCView::MCView;
  void setRows(std::vector<std::pair<std::string, std::string>> rows);
  const std::vector<std::pair<std::string, std::string>>& rows() const { return rows_; }
  bool isFlipped() const override { return true; }
  bool isOpaque() const override { return true; }
  void drawRect(const MCRect& dirtyRect) override;

 private:
  std::vector<std::pair<std::string, std::string>> rows_;
};
