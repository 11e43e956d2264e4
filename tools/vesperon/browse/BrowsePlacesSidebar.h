#pragma once
// The places sidebar of `vesperon browse` (F9 shows and hides it): the XDG Pictures folder, the
// folders opened before (as MCSandboxHelper remembers them, the last first), and the mounted
// volumes that hold photos (a camera card's DCIM folder, or photos at their top); a click opens
// the place. The folder shown is marked.

#include "BrowsePalette.h"

#include <vesperon/toolkit/MCView.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

class BrowsePlacesSidebar : public MCView {
 public:
  using MCView::MCView;
  static constexpr double kWidth = 200;
  static constexpr double kRowHeight = 28;
  static constexpr double kHeaderHeight = 30;

  struct Place {
    std::string section;  ///< "Places", "Recent", "Volumes"
    std::string title;
    std::filesystem::path folder;
  };

  /// The places from what the desktop says: the pictures folder (if it exists), the remembered
  /// folders (the last first, those that exist, each once, none repeating the pictures folder),
  /// and the volumes for which `hasPhotos` answers true.
  static std::vector<Place> placesFrom(const std::filesystem::path& pictures,
                                       const std::vector<std::filesystem::path>& remembered,
                                       const std::vector<std::filesystem::path>& volumes,
                                       const std::function<bool(const std::filesystem::path&)>& hasPhotos);
  /// Whether a volume is one a person put photos on: it is mounted for a user (under /media,
  /// /run/media or /mnt, or by GVfs) and holds a DCIM folder or a photo at its top.
  static bool volumeHasPhotos(const std::filesystem::path& volume);

  void setPalette(const BrowsePalette& palette) {
    palette_ = palette;
    setNeedsDisplay(true);
  }
  void setPlaces(std::vector<Place> places);
  const std::vector<Place>& places() const { return places_; }
  void setCurrentFolder(const std::filesystem::path& folder);
  /// Called with the folder of the place clicked.
  std::function<void(const std::filesystem::path&)> placeChosen;
  /// The row of a place, in this view's coordinates (y down).
  MCRect rectOfPlace(std::size_t index) const;

  bool isFlipped() const override { return true; }
  bool isOpaque() const override { return true; }
  void drawRect(const MCRect& dirty) override;
  void mouseDown(const MCEvent& event) override;

 private:
  std::vector<Place> places_;
  std::filesystem::path current_;
  BrowsePalette palette_ = BrowsePalette::light();
};
