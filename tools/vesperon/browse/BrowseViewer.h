#pragma once
// The viewer page of `vesperon browse`: one photo in a zoom view (pinch, wheel, drag to pan,
// double-click to toggle fit and 1:1, keys), its histogram, a toolbar (back, previous, next, zoom
// in, zoom out, fit, 1:1) and a colour-label row that writes the file's label to its XMP sidecar.
// It shows the thumbnail at once, scaled to the photo's own size so nothing jumps, and replaces it
// with the photo decoded at the size the screen needs (BrowsePhotoLoader, off the main thread);
// zoomed in beyond what that resolves, the visible part comes at the photo's own pixels, and the
// whole photo after it when it is not too large to hold. The neighbours in the sequence are
// decoded ahead at fit, so the next photo is sharp as it appears. Next and previous walk the sequence the grid gives
// (its order, its filter); `i` or the Info button shows what the photo is (BrowseInfoPanel); F5
// plays a slideshow, F11 fills the screen; Escape leaves the full screen, then returns to the grid.

#include "BrowseInfoPanel.h"
#include "BrowsePhotoLoader.h"

#include <vesperon/controls/MCColorLabelControl.h>
#include <vesperon/controls/MCHistogramView.h>
#include <vesperon/controls/MCToolbarItemControl.h>
#include <vesperon/controls/MCViewController.h>
#include <vesperon/controls/MCZoomView.h>
#include <vesperon/toolkit/MCTimer.h>

#include <vesperon/core/MCIndexPath.h>

#include <filesystem>
#include <map>
#include <thread>
#include <functional>
#include <memory>
#include <string>

/// The photos next and previous walk, in the grid's order, and what the grid does as they change.
struct BrowseViewerSequence {
  std::vector<MCIndexPath> paths;
  std::function<std::filesystem::path(const MCIndexPath&)> file;
  std::function<MCRasterImageRef(const MCIndexPath&)> thumbnail;
  /// Told each photo shown, with its place: the grid selects it, the title names it.
  std::function<void(const MCIndexPath&, std::size_t position)> shown;
  /// Told when the viewer goes.
  std::function<void()> closed;
};

class BrowseViewerPage : public MCViewController, public MCZoomViewDelegate {
 public:
  BrowseViewerPage(std::filesystem::path file, MCRasterImageRef thumbnail, std::function<void(const std::string&)> report,
                   std::function<void(long label)> labelChanged);
  /// Gives the sequence and the place of the photo opened in it.
  void setSequence(BrowseViewerSequence sequence, std::size_t position);
  std::size_t position() const { return position_; }
  /// Shows the photo `step` places on (negative: back), held to the sequence's ends.
  void step(long step);
  void showPosition(std::size_t position);
  /// Zoom that shows the photo's pixels one to one on the window's backing.
  double oneToOneZoom() const;
  /// The zoom of "fit": the whole photo as large as the view holds it, but a photo smaller than
  /// the view at its own pixels (one to one), not enlarged. 1 while the photo's size is unknown.
  double fitZoom() const;
  /// Shows the whole photo at fit, centred.
  void zoomToFit();
  /// What is shown resolves the photo at the present zoom: the fit decode at fit, the photo's own
  /// pixels (the whole, or the visible part) when zoomed in beyond it.
  bool isSharp() const { return sharp_; }
  /// The photo's decode at fit arrived (its full size is known), or it failed.
  bool isLoaded() const { return loaded_ || failed_; }
  /// The visible part of the photo, in its upright full-size pixels.
  MCRect visiblePhotoRect() const;
  /// Whether the neighbours are decoded ahead (on by default; off only to measure what it brings).
  void setLooksAhead(bool looksAhead) { looksAhead_ = looksAhead; }
  /// Decodes whole photos up to this many pixels when zoomed in (beyond, only the visible parts).
  static constexpr double kWholeDecodeLimit = 50e6;
  bool hasFailed() const { return failed_; }
  /// Nothing sharper is on its way: what is shown resolves the zoom, or the decodes that could
  /// give more failed (beyond the decode budget, a damaged file).
  bool isSettled() const {
    return sharp_ || failed_ || regionFailed_ || (wholeFailed_ && !fitPixels_.decodesRegionsAlone);
  }
  /// The photo's properties have been read (for the information panel).
  bool hasProperties() const { return properties_.has_value(); }
  /// The zoom as the share of the photo's pixels a screen pixel shows, in percent.
  double zoomPercent() const;
  /// What the toolbar says of the photo: pixel size, file size, zoom.
  std::string info() const;
  /// The same in parts, from the most needed: pixel size, file size, zoom.
  std::vector<std::string> infoParts() const;
  /// Shows or hides the information panel; the choice is kept in the settings for the next run.
  void toggleInfo();
  const std::shared_ptr<BrowseInfoPanel>& infoPanel() const { return infoPanel_; }
  /// The slideshow: the next photo every interval until the last, or until any key is pressed.
  void toggleSlideshow();
  bool isPlayingSlideshow() const { return slideshow_ != nullptr; }
  void setSlideshowInterval(double seconds) { slideshowInterval_ = seconds; }
  /// The window over the whole screen (F11), or as it was (F11 again, or Escape).
  void setFullScreen(bool fullScreen);
  /// The keys of the viewer; false for a key it leaves to the responder chain.
  bool handleKey(const MCEvent& event);

  void loadView() override;
  void viewControllerDidAppear(bool animated) override;
  void viewControllerDidDisappear(bool animated) override;

  const std::shared_ptr<MCZoomView>& zoomView() const { return zoomView_; }
  const std::shared_ptr<MCColorLabelControl>& labelControl() const { return labelControl_; }
  const MCRasterImageRef& image() const { return image_; }
  const std::filesystem::path& file() const { return file_; }
  /// The photo's full size in pixels, upright, once its first decode arrived; else the thumbnail's.
  MCSize photoSize() const;
  void close();

  // MCZoomViewDelegate
  MCSize zoomViewOriginalContentSize(MCZoomView& view) override;
  void zoomViewDidChange(MCZoomView& view) override;

 private:
  void show(MCRasterImageRef image);
  void receive(BrowsePhotoPixels pixels);
  /// Applies a decode at fit of the photo shown.
  void showFit(const BrowsePhotoPixels& pixels);
  /// Works out whether what is shown resolves the present zoom, and asks for more if not.
  void updateSharpness();
  /// The larger side, in pixels, a photo of these proportions needs at fit in the zoom view (the
  /// view's larger side when they are not known).
  std::size_t fitPixelSize(MCSize photo) const;
  /// The fit decode to ask for as a photo opens, while its size may be only the thumbnail's.
  std::size_t firstFitRequest() const;
  void wantOnly();
  void lookAhead();
  bool isNeighbour(const std::filesystem::path& file) const;
  void reportSharp();
  void updateInfo();
  void readProperties();
  void placeBesidePanel();
  std::shared_ptr<BrowseViewerPage> self() { return std::static_pointer_cast<BrowseViewerPage>(shared_from_this()); }
  std::filesystem::path file_;
  MCRasterImageRef image_;
  std::function<void(const std::string&)> report_;
  std::function<void(long)> labelChanged_;
  std::shared_ptr<MCZoomView> zoomView_;
  std::shared_ptr<MCView> imageView_;
  std::shared_ptr<MCHistogramView> histogramView_;
  std::shared_ptr<MCColorLabelControl> labelControl_;
  bool requested_ = false;
  std::unique_ptr<BrowsePhotoLoader> loader_;
  MCSize photoSize_{0, 0};  // full, upright; 0 × 0 until the first decode says
  double fitZoom_ = 1;      // the fit zoom applied last, to tell whether the view still fits
  void refit();
  int orientation_ = 1;
  bool loaded_ = false;     // the decode at fit (or the whole) of file_ arrived
  bool whole_ = false;      // image_ holds every pixel of the photo
  bool wholeRequested_ = false;
  bool wholeFailed_ = false;
  std::size_t fitRequested_ = 0;  // the larger side of the last fit decode asked for file_
  std::optional<MCRect> regionRequested_;  // the part asked for and not yet arrived
  bool regionFailed_ = false;
  bool reportedSharp_ = false;
  bool looksAhead_ = true;
  BrowsePhotoPixels fitPixels_;  // the decode at fit of file_, kept for a step back
  BrowseViewerSequence sequence_;
  std::size_t position_ = 0;
  bool sharp_ = false;  // image_ holds the photo's own pixels
  bool failed_ = false;
  std::shared_ptr<MCView> toolbar_;
  std::shared_ptr<MCToolbarItemControl> infoButton_, slideshowButton_;
  std::shared_ptr<BrowseInfoPanel> infoPanel_;
  std::optional<MCDictionary> properties_;  // of file_, once read
  std::jthread propertyReader_;
  std::shared_ptr<MCTimer> slideshow_;
  double slideshowInterval_ = 4;
  // The photos decoded ahead at fit (the current one's neighbours, and the one just left).
  std::map<std::filesystem::path, BrowsePhotoPixels> decoded_;
};
