#pragma once
// BrowsePhotoLoader: the viewer's decodes, on threads of their own, answered on the main queue.
//
// Three kinds of load, each giving pixels ready to draw (Cairo's layout, turned upright by the
// photo's orientation, so the main thread only paints them):
//
//   fit     the whole photo decoded at the size the screen needs (JPEG through DCT scaling, the
//           other plug-ins through their reduced decodes), with the photo's full size and
//           orientation read from the same file;
//   whole   every pixel of the photo;
//   region  a rectangle of the photo at its own pixels, decoded alone where the plug-in can (a
//           100-megapixel JPEG's centre costs a fraction of the whole).
//
// Loads of files no longer wanted (`setWanted`) are dropped before they start, so a user who holds
// the Right key does not queue a decode per photo passed, and so is a region overtaken by a later
// one, so a fast pan decodes only where it stops; a loader destroyed drops every answer still
// under way.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCRasterImage.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>

class MCDispatchQueue;

/// What one load gave.
struct BrowsePhotoPixels {
  enum class Kind { Fit, Whole, Region };
  Kind kind = Kind::Fit;
  std::filesystem::path file;
  /// Cairo's layout, upright; none when the file could not be decoded.
  MCRasterImageRef image;
  /// The photo's full size in pixels, upright; 0 × 0 when the file did not say.
  MCSize photoSize;
  /// The Exif orientation the pixels were turned by (1 to 8).
  int orientation = 1;
  /// The part of the upright photo, in its full-size pixels, that `image` shows.
  MCRect rect;
  /// The file's format decodes a region alone (JPEG, TIFF), cheaply; others decode the whole to cut it.
  bool decodesRegionsAlone = false;
};

class BrowsePhotoLoader {
 public:
  using Arrival = std::function<void(BrowsePhotoPixels)>;
  /// Loads on `width` threads; `arrived` is called on the main queue, once per load.
  explicit BrowsePhotoLoader(Arrival arrived, std::size_t width = 2);
  ~BrowsePhotoLoader();
  BrowsePhotoLoader(const BrowsePhotoLoader&) = delete;
  BrowsePhotoLoader& operator=(const BrowsePhotoLoader&) = delete;

  /// The files whose loads may still run; loads of others are dropped before they start.
  void setWanted(std::set<std::filesystem::path> files);
  /// The whole photo with its larger side `maxPixelSize` (never more than the photo's own).
  void loadFit(const std::filesystem::path& file, std::size_t maxPixelSize);
  /// Every pixel of the photo, within the decode budget.
  void loadWhole(const std::filesystem::path& file);
  /// The part `rect` of the upright photo of full size `photoSize`, stored turned by `orientation`.
  void loadRegion(const std::filesystem::path& file, MCRect rect, MCSize photoSize, int orientation);

 private:
  struct State;
  /// Queues `load` for `file`; a region load (`region`, its number) runs only while it is the latest.
  void run(const std::filesystem::path& file, std::function<BrowsePhotoPixels()> load, uint64_t region = 0);
  std::shared_ptr<State> state_;
  std::unique_ptr<MCDispatchQueue> queue_;
};

/// The pixels of `image` in Cairo's layout (premultiplied BGRA), turned upright as Exif
/// orientation 1…8 says, in one pass; none for none.
MCRasterImageRef BrowseDrawableImage(const MCRasterImageRef& image, int orientation);

/// The pixels of `image` (32-bit, Cairo's layout) turned as Exif orientation 1…8 says; the image
/// itself for orientation 1 or anything else it cannot turn.
MCRasterImageRef BrowseOrientedImage(const MCRasterImageRef& image, int orientation);

/// Where the rectangle `upright` of a photo of upright size `uprightSize` lies in the photo as
/// stored, when the file's orientation is `orientation`.
MCRect BrowseStoredRect(MCRect upright, MCSize uprightSize, int orientation);
