#pragma once
// The viewer page of `vesperon browse`: one photo in a zoom view (pinch, wheel, drag to pan,
// double-click to toggle fit and 1:1, keys), its histogram, a toolbar (back, previous, next, zoom
// in, zoom out, fit, 1:1) and a colour-label row that writes the file's label to its XMP sidecar.
// It shows the thumbnail at once, scaled to the photo's own size so nothing jumps, and replaces it
// with the photo's own pixels, turned by its orientation, when they arrive from the pipeline; the
// neighbours in the sequence are decoded ahead. Next and previous walk the sequence the grid gives
// (its order, its filter); `i` or the Info button shows what the photo is (BrowseInfoPanel); F5
// plays a slideshow, F11 fills the screen; Escape leaves the full screen, then returns to the grid.

#include "BrowseInfoPanel.h"

#include <vesperon/controls/MCColorLabelControl.h>
#include <vesperon/controls/MCHistogramView.h>
#include <vesperon/controls/MCToolbarItemControl.h>
#include <vesperon/controls/MCViewController.h>
#include <vesperon/controls/MCZoomView.h>
#include <vesperon/pipeline/MCResourceReceivers.h>
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

/// The pixels of `image` (32-bit, Cairo's layout) turned as Exif orientation 1…8 says; the image
/// itself for orientation 1 or anything else it cannot turn.
MCRasterImageRef BrowseOrientedImage(const MCRasterImageRef& image, int orientation);

class BrowseViewerPage : public MCViewController,
                         public MCZoomViewDelegate,
                         public MCImageReceiver {
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
  /// The photo's own pixels are shown, or its decoding failed and the thumbnail stays.
  bool isSharp() const { return sharp_; }
  bool hasFailed() const { return failed_; }
  /// The photo's properties have been read (for the information panel).
  bool hasProperties() const { return properties_.has_value(); }
  /// The zoom as the share of the photo's pixels a screen pixel shows, in percent.
  double zoomPercent() const;
  /// What the toolbar says of the photo: pixel size, file size, zoom.
  std::string info() const;
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
  /// The photo's size in pixels as shown (turned), once its pixels arrived; else the thumbnail's.
  MCSize photoSize() const;
  void close();

  // MCZoomViewDelegate
  MCSize zoomViewOriginalContentSize(MCZoomView& view) override;
  void zoomViewDidChange(MCZoomView& view) override;
  // MCImageReceiver
  void receiveImage(std::shared_ptr<const MCImage> image, std::optional<MCDictionary> metadata,
                    const std::string& uuid) override;

 private:
  void show(MCRasterImageRef image);
  void request(const std::filesystem::path& file);
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
  BrowseViewerSequence sequence_;
  std::size_t position_ = 0;
  bool sharp_ = false;  // image_ holds the photo's own pixels
  bool failed_ = false;
  std::shared_ptr<MCView> toolbar_;
  std::shared_ptr<BrowseInfoPanel> infoPanel_;
  std::optional<MCDictionary> properties_;  // of file_, once read
  std::jthread propertyReader_;
  std::shared_ptr<MCTimer> slideshow_;
  double slideshowInterval_ = 4;
  // Requests in flight by identifier, and the photos decoded ahead (the current one's neighbours).
  std::map<std::string, std::filesystem::path> requests_;
  std::map<std::filesystem::path, MCRasterImageRef> decoded_;
};
