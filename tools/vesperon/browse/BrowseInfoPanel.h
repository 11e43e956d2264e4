#pragma once
// The viewer's information panel: what the library reads of the photo shown, a row a fact —
// camera, lens, exposure, aperture, ISO, focal length, flash, capture date with its offset, GPS
// position, dimensions, colour profile, and a clip's duration and codec. It is filled from the
// same property dictionary `vesperon info` prints (mediaPropertiesOfFile), read off the main
// thread; rows the photo does not have are left out.

#include <vesperon/core/MCValue.h>
#include <vesperon/toolkit/MCView.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// The photo's position as a "geo:" URI (RFC 5870: "geo:LAT,LON", south and west negative), for
/// the desktop's map handler; empty when the dictionary holds no usable GPS position.
std::string BrowseGeoURI(const MCDictionary& properties);

/// The rows, label and value, of a property dictionary; `pixelSize` is "W × H" when known.
std::vector<std::pair<std::string, std::string>> BrowseInfoRows(const MCDictionary& properties,
                                                                 const std::string& pixelSize);

class BrowseInfoPanel : public MCView {
 public:
  static constexpr double kWidth = 280;
  using MCView::MCView;
  void setRows(std::vector<std::pair<std::string, std::string>> rows);
  const std::vector<std::pair<std::string, std::string>>& rows() const { return rows_; }
  /// The "geo:" URI of the position; with one, "Show on map" appears under the Position row and a
  /// click on it opens the URI with the desktop's map handler (or `openMap`, when set).
  void setMapURI(std::string uri);
  const std::string& mapURI() const { return mapURI_; }
  std::function<void(const std::string& uri)> openMap;
  void mouseDown(const MCEvent& event) override;
  bool isFlipped() const override { return true; }
  bool isOpaque() const override { return true; }
  void drawRect(const MCRect& dirtyRect) override;

 private:
  std::vector<std::pair<std::string, std::string>> rows_;
  std::string mapURI_;
  MCRect mapLink_;  // where "Show on map" was drawn
};
