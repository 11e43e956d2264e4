#pragma once
// The viewer page of `vesperon browse`: one photo in a zoom view (pinch, Ctrl+wheel, drag to pan,
// double-click to toggle fit and 1:1), its histogram, a toolbar (back, zoom in, zoom out, fit)
// and a colour-label row that writes the file's label to its XMP sidecar. It shows the thumbnail
// at once and loads the full image through the pipeline on the operation queue; Escape or Back
// returns to the grid.

#include <vesperon/controls/MCColorLabelControl.h>
#include <vesperon/controls/MCHistogramView.h>
#include <vesperon/controls/MCToolbarItemControl.h>
#include <vesperon/controls/MCViewController.h>
#include <vesperon/controls/MCZoomView.h>
#include <vesperon/pipeline/MCResourceReceivers.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

class BrowseViewerPage : public MCViewController,
                         public MCZoomViewDelegate,
                         public MCImageReceiver {
 public:
  BrowseViewerPage(std::filesystem::path file, MCRasterImageRef thumbnail, std::function<void(const std::string&)> report,
                   std::function<void(long label)> labelChanged);

  void loadView() override;
  void viewControllerDidAppear(bool animated) override;
  void viewControllerDidDisappear(bool animated) override;

  const std::shared_ptr<MCZoomView>& zoomView() const { return zoomView_; }
  const std::shared_ptr<MCColorLabelControl>& labelControl() const { return labelControl_; }
  const MCRasterImageRef& image() const { return image_; }
  void close();

  // MCZoomViewDelegate
  MCSize zoomViewOriginalContentSize(MCZoomView& view) override;
  void zoomViewDidChange(MCZoomView& view) override;
  // MCImageReceiver
  void receiveImage(std::shared_ptr<const MCImage> image, std::optional<MCDictionary> metadata,
                    const std::string& uuid) override;

 private:
  void show(MCRasterImageRef image);
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
};
