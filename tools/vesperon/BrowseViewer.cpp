#include "BrowseViewer.h"

#include <vesperon/controls/MCColorLabelMapper.h>
#include <vesperon/controls/MCNavigationController.h>
#include <vesperon/drawing/MCBadgeFactory.h>
#include <vesperon/pipeline/MCResourceLoader.h>
#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCImageDrawing.h>
#include <vesperon/toolkit/MCWindow.h>

namespace {

constexpr double kToolbarHeight = 56;

/// The photo, drawn to fill its bounds (the zoom view sizes it to the image's proportions).
class PhotoView : public MCView {
 public:
  using MCView::MCView;
  MCRasterImageRef image;
  bool isFlipped() const override { return true; }
  bool isOpaque() const override { return false; }
  void drawRect(const MCRect&) override {
    MCGraphicsContext* context = MCGraphicsContext::currentContext();
    if (!context || !image) return;
    context->setInterpolationQuality(MCInterpolationQuality::Medium);
    MCDrawImageInRect(*context, image, bounds());
  }
};

/// The zoom view of the viewer: takes the keys, so that Escape reaches the page.
class ViewerZoomView : public MCZoomView {
 public:
  using MCZoomView::MCZoomView;
  bool acceptsFirstResponder() const override { return true; }
  bool isFlipped() const override { return true; }
  void scrollWheel(const MCEvent& event) override {
    // A plain wheel zooms too: a viewer has nothing to scroll.
    MCZoomView::scrollWheel(event);
  }
  void drawRect(const MCRect& dirty) override {
    MCGraphicsContext* context = MCGraphicsContext::currentContext();
    if (!context) return;
    MCColor::colorWithHex(0x242424).setFill(*context);
    context->fillRect(dirty);
  }
  /// A double-click toggles between the whole photo and its pixels one to one, around the click.
  void mouseDown(const MCEvent& event) override {
    if (event.clickCount() != 2) return;
    auto photo = delegate();
    if (!photo) return;
    const MCSize original = photo->zoomViewOriginalContentSize(*this), fitted = sizeForZoom(1);
    if (!(fitted.width > 0)) return;
    const double scale = window() ? window()->backingScaleFactor() : 1.0;
    const double oneToOne = original.width / (fitted.width * scale);
    const MCPoint anchor = convertPoint(event.locationInWindow(), nullptr);
    setMaxZoom(std::max(maxZoom(), oneToOne));
    zoomTo(zoom() > 1.0001 ? 1.0 : std::max(oneToOne, 1.0001), anchor);
  }
};

class Toolbar : public MCView {
 public:
  using MCView::MCView;
  bool isFlipped() const override { return true; }
  void drawRect(const MCRect& dirty) override {
    MCGraphicsContext* context = MCGraphicsContext::currentContext();
    if (!context) return;
    MCColor::colorWithHex(0x303030).setFill(*context);
    context->fillRect(dirty);
  }
};

/// The pixels in Cairo's own layout, so that every later draw uses them where they lie.
MCRasterImageRef drawable(const MCRasterImageRef& image) {
  if (!image) return nullptr;
  auto context = MCGraphicsContext::create(image->width(), image->height(), 8, 0, MCColorSpace::sRGB(),
                                           MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little);
  if (!context) return image;
  context->drawImage(MCMakeRect(0, 0, double(image->width()), double(image->height())), image);
  return context->createImage();
}

}  // namespace

BrowseViewerPage::BrowseViewerPage(std::filesystem::path file, MCRasterImageRef thumbnail,
                                   std::function<void(const std::string&)> report, std::function<void(long)> labelChanged)
    : file_(std::move(file)), image_(drawable(thumbnail)), report_(std::move(report)), labelChanged_(std::move(labelChanged)) {}

void BrowseViewerPage::loadView() {
  class PageView : public MCView {
   public:
    using MCView::MCView;
    bool isFlipped() const override { return true; }
  };
  auto root = std::make_shared<PageView>(MCMakeRect(0, 0, 800, 600));
  root->registerCommand("cancelOperation:", [this] { close(); });
  auto toolbar = std::make_shared<Toolbar>(MCMakeRect(0, 0, 800, kToolbarHeight));
  toolbar->setAutoresizingMask(MCViewWidthSizable);
  root->addSubview(toolbar);

  zoomView_ = std::make_shared<ViewerZoomView>(MCMakeRect(0, kToolbarHeight, 800, 600 - kToolbarHeight));
  zoomView_->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
  auto photo = std::make_shared<PhotoView>(zoomView_->bounds());
  photo->image = image_;
  imageView_ = photo;
  zoomView_->setContentView(photo);
  root->addSubview(zoomView_);

  double x = 8;
  auto addButton = [&](const char* title, const char* symbol, std::function<void()> act) {
    auto button = MCToolbarItemControl::create();
    button->setTitle(std::string(title));
    button->setImage(MCBadgeFactory::iconNamed(symbol, 18));
    button->setFrameOrigin({x, 4});
    button->action = [act](MCToolbarItemControl&) { act(); };
    toolbar->addSubview(button);
    x += button->frame().size.width + 4;
  };
  std::weak_ptr<MCZoomView> zoom = zoomView_;
  auto centre = [zoom] {
    auto z = zoom.lock();
    return z ? MCPoint{MCMidX(z->bounds()), MCMidY(z->bounds())} : MCPoint{0, 0};
  };
  addButton("Back", "arrowshape.turn.up.right.fill", [this] { close(); });
  addButton("Zoom In", "star.fill", [zoom, centre] { if (auto z = zoom.lock()) z->zoomBy(0.5, centre()); });
  addButton("Zoom Out", "star.fill", [zoom, centre] { if (auto z = zoom.lock()) z->zoomBy(-1.0 / 3.0, centre()); });
  addButton("Fit", "star.fill", [zoom] { if (auto z = zoom.lock()) z->setOffset({0, 0}, 1.0); });

  labelControl_ = std::make_shared<MCColorLabelControl>();
  labelControl_->setFrameOrigin({x + 12, 4});
  const long current = MCColorLabelMapper::labelOfFile(file_);
  if (current) labelControl_->setUsedColorLabels({current});
  labelControl_->action = [this](MCColorLabelControl& control) {
    const long label = control.command() == 1 ? 0 : control.tag();
    if (MCColorLabelMapper::setLabelOfFile(file_, label)) {
      control.setUsedColorLabels(label ? std::set<long>{label} : std::set<long>{});
      if (report_) report_("label " + std::to_string(label) + " " + file_.string());
      if (labelChanged_) labelChanged_(label);
    }
  };
  toolbar->addSubview(labelControl_);

  histogramView_ = std::make_shared<MCHistogramView>(MCMakeRect(800 - 216, 600 - 116, 200, 100));
  histogramView_->setAutoresizingMask(MCViewMinXMargin | MCViewMinYMargin);
  histogramView_->setImage(image_);
  root->addSubview(histogramView_);
  setView(root);
}

void BrowseViewerPage::viewControllerDidAppear(bool) {
  if (MCWindow* window = zoomView_->window()) window->makeFirstResponder(zoomView_.get());
  zoomView_->setDelegate(self());
  zoomView_->updateLayout();
  if (report_) {
    report_("viewer open " + file_.string());
    // Where the first colour dot is, in the window's own coordinates (y down), to aim at.
    if (MCWindow* window = labelControl_->window()) {
      const auto& dot = labelControl_->labelItemControls().front();
      const MCPoint centre = dot->convertPointToView({MCMidX(dot->bounds()), MCMidY(dot->bounds())}, nullptr);
      report_("label-dot " + std::to_string(dot->tag()) + " " + std::to_string(long(centre.x)) + " " +
              std::to_string(long(window->contentSize().height - centre.y)));
    }
  }
  if (!requested_) {
    requested_ = true;
    MCResourceLoader::sharedInstance().requestImage(std::make_shared<MCImageDescriptor>(file_), self());
  }
}

void BrowseViewerPage::viewControllerDidDisappear(bool) {
  if (report_) report_("viewer closed");
}

void BrowseViewerPage::close() {
  if (MCNavigationController* navigation = navigationController()) navigation->popViewControllerAnimated(false);
}

MCSize BrowseViewerPage::zoomViewOriginalContentSize(MCZoomView&) {
  return image_ ? MCSize{double(image_->width()), double(image_->height())} : MCSize{0, 0};
}

void BrowseViewerPage::zoomViewDidChange(MCZoomView& view) { view.setNeedsDisplay(true); }

void BrowseViewerPage::receiveImage(std::shared_ptr<const MCImage> image, std::optional<MCDictionary>, const std::string&) {
  if (!image || !image->CGImage()) return;  // the thumbnail stays
  show(drawable(image->CGImage()));
}

void BrowseViewerPage::show(MCRasterImageRef image) {
  image_ = std::move(image);
  static_cast<PhotoView&>(*imageView_).image = image_;
  imageView_->setNeedsDisplay(true);
  histogramView_->setImage(image_);
  zoomView_->updateLayout();
  zoomView_->setNeedsLayout(true);
}
