#include "BrowseViewer.h"

#include "BrowseController.h"

#include "../MediaFiles.h"

#include <vesperon/controls/MCColorLabelMapper.h>
#include <vesperon/controls/MCNavigationController.h>
#include <vesperon/drawing/MCBadgeFactory.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pipeline/MCResourceLoader.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/platform/MCUserDefaults.h>
#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCImageDrawing.h>
#include <vesperon/toolkit/MCWindow.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr double kToolbarHeight = 56;

/// The photo, drawn to fill its bounds (the zoom view sizes it to the photo's proportions), and
/// over it the part decoded at the photo's own pixels, where it lies.
class PhotoView : public MCView {
 public:
  using MCView::MCView;
  MCRasterImageRef image;
  MCRasterImageRef detail;
  MCRect detailRect;  // in the photo's full-size pixels
  MCSize photoSize;
  bool isFlipped() const override { return true; }
  bool isOpaque() const override { return false; }
  void drawRect(const MCRect&) override {
    MCGraphicsContext* context = MCGraphicsContext::currentContext();
    if (!context || !image) return;
    // The fit decode has the size the view needs, so a good filter is enough; the best one costs
    // a tenth of a second per frame on a large window.
    context->setInterpolationQuality(MCInterpolationQuality::Medium);
    MCDrawImageInRect(*context, image, bounds());
    if (!detail || !(photoSize.width > 0)) return;
    const double sx = bounds().size.width / photoSize.width, sy = bounds().size.height / photoSize.height;
    MCDrawImageInRect(*context, detail,
                      MCMakeRect(detailRect.origin.x * sx, detailRect.origin.y * sy, detailRect.size.width * sx,
                                 detailRect.size.height * sy));
  }
};

/// The zoom view of the viewer: takes the keys (the viewer's own first, the rest through the
/// responder chain, so that Escape reaches the page).
class ViewerZoomView : public MCZoomView {
 public:
  using MCZoomView::MCZoomView;
  std::function<bool(const MCEvent&)> keyHandler;
  std::function<double()> oneToOne, fit;
  bool acceptsFirstResponder() const override { return true; }
  bool isFlipped() const override { return true; }
  void keyDown(const MCEvent& event) override {
    if (keyHandler && keyHandler(event)) return;
    MCZoomView::keyDown(event);
  }
  void drawRect(const MCRect& dirty) override {
    MCGraphicsContext* context = MCGraphicsContext::currentContext();
    if (!context) return;
    MCColor::colorWithHex(0x242424).setFill(*context);
    context->fillRect(dirty);
  }
  /// A double-click toggles between the whole photo and its pixels one to one, around the click;
  /// a photo that shows one to one at fit doubles.
  void mouseDown(const MCEvent& event) override {
    if (event.clickCount() != 2 || !oneToOne || !fit) return;
    const double target = oneToOne(), whole = fit();
    if (!(target > 0)) return;
    const MCPoint anchor = convertPoint(event.locationInWindow(), nullptr);
    zoomTo(zoom() > whole * 1.0001 ? whole : target > whole * 1.0001 ? target : 2 * whole, anchor);
  }
};

/// The toolbar's grey band, with what the photo is along its right end.
class Toolbar : public MCView {
 public:
  using MCView::MCView;
  /// What the photo is, its parts from the most to the least needed; as many are drawn as fit
  /// between `minX` (right of the controls) and the right end.
  std::vector<std::string> info;
  double minX = 0;
  bool isFlipped() const override { return true; }
  void drawRect(const MCRect& dirty) override {
    MCGraphicsContext* context = MCGraphicsContext::currentContext();
    if (!context) return;
    MCColor::colorWithHex(0x303030).setFill(*context);
    context->fillRect(dirty);
    MCTextAttributes attributes;
    attributes.font = MCFont::systemFontOfSize(12);
    attributes.foregroundColor = MCColor::colorWithHex(0xE0E0E0);  // 9:1 on the grey
    // A narrow window drops the parts at the end (zoom, then file size) rather than overlap.
    for (std::size_t parts = info.size(); parts > 0; --parts) {
      std::string text;
      for (std::size_t i = 0; i < parts; ++i) text += (i ? "   " : "") + info[i];
      const MCAttributedString line(text, attributes);
      const MCSize size = line.size();
      const double x = bounds().size.width - size.width - 12;
      if (x < minX) continue;
      line.drawAtPoint({x, (bounds().size.height - size.height) / 2}, *context);
      return;
    }
  }
};

}  // namespace

BrowseViewerPage::BrowseViewerPage(std::filesystem::path file, MCRasterImageRef thumbnail,
                                   std::function<void(const std::string&)> report, std::function<void(long)> labelChanged)
    : file_(std::move(file)), image_(BrowseDrawableImage(thumbnail, 1)), report_(std::move(report)), labelChanged_(std::move(labelChanged)) {}

void BrowseViewerPage::loadView() {
  class PageView : public MCView {
   public:
    using MCView::MCView;
    bool isFlipped() const override { return true; }
  };
  auto root = std::make_shared<PageView>(MCMakeRect(0, 0, 800, 600));
  root->registerCommand("cancelOperation:", [this] { close(); });
  auto toolbar = std::make_shared<Toolbar>(MCMakeRect(0, 0, 800, kToolbarHeight));
  toolbar_ = toolbar;
  toolbar->setAutoresizingMask(MCViewWidthSizable);
  root->addSubview(toolbar);

  auto zoomView = std::make_shared<ViewerZoomView>(MCMakeRect(0, kToolbarHeight, 800, 600 - kToolbarHeight));
  std::weak_ptr<BrowseViewerPage> weakPage = self();
  zoomView->keyHandler = [weakPage](const MCEvent& event) {
    auto page = weakPage.lock();
    return page && page->handleKey(event);
  };
  zoomView->oneToOne = [weakPage] {
    auto page = weakPage.lock();
    return page ? page->oneToOneZoom() : 0.0;
  };
  zoomView->fit = [weakPage] {
    auto page = weakPage.lock();
    return page ? page->fitZoom() : 1.0;
  };
  zoomView_ = zoomView;
  zoomView_->setMaxZoom(16);
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
    return button;
  };
  std::weak_ptr<MCZoomView> zoom = zoomView_;
  auto centre = [zoom] {
    auto z = zoom.lock();
    return z ? MCPoint{MCMidX(z->bounds()), MCMidY(z->bounds())} : MCPoint{0, 0};
  };
  addButton("Back", "square.grid.2x2", [this] { close(); });
  addButton("Previous", "chevron.backward", [weakPage] { if (auto p = weakPage.lock()) p->step(-1); });
  addButton("Next", "chevron.forward", [weakPage] { if (auto p = weakPage.lock()) p->step(1); });
  addButton("Zoom In", "plus.magnifyingglass", [zoom, centre] { if (auto z = zoom.lock()) z->zoomBy(0.5, centre()); });
  addButton("Zoom Out", "minus.magnifyingglass", [zoom, centre] { if (auto z = zoom.lock()) z->zoomBy(-1.0 / 3.0, centre()); });
  addButton("Fit", "arrow.down.right.and.arrow.up.left", [weakPage] { if (auto p = weakPage.lock()) p->zoomToFit(); });
  addButton("1:1", "1.magnifyingglass", [weakPage, zoom, centre] {
    auto p = weakPage.lock();
    auto z = zoom.lock();
    if (p && z) z->zoomTo(p->oneToOneZoom(), centre());
  });

  // These two stay pressed while what they turn on is on.
  infoButton_ = addButton("Info", "info.circle", [weakPage] { if (auto p = weakPage.lock()) p->toggleInfo(); });
  slideshowButton_ =
      addButton("Slideshow", "play.rectangle", [weakPage] { if (auto p = weakPage.lock()) p->toggleSlideshow(); });

  labelControl_ = std::make_shared<MCColorLabelControl>();
  labelControl_->setTextColor(MCColor::colorWithHex(0xE0E0E0));  // 9:1 on the toolbar's grey
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
  toolbar->minX = MCMaxX(labelControl_->frame()) + 16;

  infoPanel_ = std::make_shared<BrowseInfoPanel>(
      MCMakeRect(800 - BrowseInfoPanel::kWidth, kToolbarHeight, BrowseInfoPanel::kWidth, 600 - kToolbarHeight));
  infoPanel_->setAutoresizingMask(MCViewMinXMargin | MCViewHeightSizable);
  const auto shown = MCUserDefaults(MCUserDefaults::defaultFileURL()).objectForKey("ViewerShowsInfo");
  infoPanel_->setHidden(!(shown && shown->isBool() && shown->integerValue().value_or(0)));
  infoButton_->setIsSelected(!infoPanel_->isHidden());
  root->addSubview(infoPanel_);

  histogramView_ = std::make_shared<MCHistogramView>(MCMakeRect(800 - 216, 600 - 116, 200, 100));
  histogramView_->setAutoresizingMask(MCViewMinXMargin | MCViewMinYMargin);
  histogramView_->setImage(image_);
  root->addSubview(histogramView_);
  setView(root);
  placeBesidePanel();
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
    std::weak_ptr<BrowseViewerPage> weak = self();
    loader_ = std::make_unique<BrowsePhotoLoader>([weak](BrowsePhotoPixels pixels) {
      if (auto page = weak.lock()) page->receive(std::move(pixels));
    });
    wantOnly();
    fitRequested_ = firstFitRequest();
    loader_->loadFit(file_, fitRequested_);
    readProperties();
  }
}

void BrowseViewerPage::readProperties() {
  properties_.reset();
  updateInfo();
  std::weak_ptr<BrowseViewerPage> weak = self();
  const std::filesystem::path file = file_;
  // Joins the reader of the photo shown before, which has little left to do.
  propertyReader_ = std::jthread([weak, file] {
    auto properties = mediaPropertiesOfFile(file).value_or(MCDictionary{});
    MCMainQueue::async([weak, file, properties = std::move(properties)]() mutable {
      auto page = weak.lock();
      if (!page || page->file_ != file) return;
      page->properties_ = std::move(properties);
      page->updateInfo();
      if (page->report_) {
        std::string line = "viewer info-rows " + file.filename().string();
        for (const auto& [label, value] : page->infoPanel_->rows()) line += " | " + label + ": " + value;
        page->report_(line);
      }
    });
  });
}

void BrowseViewerPage::placeBesidePanel() {
  // The photo and its histogram make room for the information panel rather than lie under it.
  const MCRect page = view()->bounds();
  const double panel = infoPanel_->isHidden() ? 0 : BrowseInfoPanel::kWidth;
  MCRect zoom = zoomView_->frame();
  zoom.size.width = std::max(0.0, page.size.width - panel);
  zoomView_->setFrame(zoom);
  refit();
  // With the panel, the histogram sits at the panel's foot, off the photo; without, it floats in
  // the photo's bottom right corner.
  MCRect frame = histogramView_->frame();
  frame.origin.x = panel > 0 ? MCMaxX(page) - panel + (panel - frame.size.width) / 2 : MCMaxX(page) - 16 - frame.size.width;
  histogramView_->setFrame(frame);
  zoomView_->updateLayout();
  updateSharpness();  // a wider view may need more pixels than the fit decode has
  updateInfo();       // fit has another size now, and so the zoom in percent
}

void BrowseViewerPage::toggleInfo() {
  infoPanel_->setHidden(!infoPanel_->isHidden());
  infoButton_->setIsSelected(!infoPanel_->isHidden());
  placeBesidePanel();
  MCUserDefaults(MCUserDefaults::defaultFileURL()).setObject(MCValue(!infoPanel_->isHidden()), "ViewerShowsInfo");
  if (report_) report_(std::string("viewer info ") + (infoPanel_->isHidden() ? "hidden" : "shown"));
}

std::size_t BrowseViewerPage::fitPixelSize(MCSize photo) const {
  // The photo at fit fills the view along one side. Its proportions come from what is shown (the
  // thumbnail, before the photo itself); without them, the view's larger side is always enough.
  const double scale = zoomView_ && zoomView_->window() ? zoomView_->window()->backingScaleFactor() : 1.0;
  const MCSize view = zoomView_ ? zoomView_->bounds().size : MCSize{800, 600};
  double side = std::max(view.width, view.height);
  if (photo.width > 0 && photo.height > 0 && view.width > 0 && view.height > 0) {
    const double fit = std::min(view.width / photo.width, view.height / photo.height);
    side = std::max(photo.width, photo.height) * fit;
  }
  // Rounded, not raised: a side of 816.0000001 wants 816 pixels, drawn one to one.
  return std::size_t(std::lround(side * scale));
}

void BrowseViewerPage::wantOnly() {
  if (!loader_) return;
  // The photo shown and its neighbours; every other load still queued is dropped.
  std::set<std::filesystem::path> wanted{file_};
  if (sequence_.file)
    for (long d : {1L, -1L}) {
      const long at = long(position_) + d;
      if (at >= 0 && at < long(sequence_.paths.size())) wanted.insert(sequence_.file(sequence_.paths[std::size_t(at)]));
    }
  loader_->setWanted(std::move(wanted));
}

bool BrowseViewerPage::isNeighbour(const std::filesystem::path& file) const {
  if (!sequence_.file) return false;
  for (long d : {1L, -1L}) {
    const long at = long(position_) + d;
    if (at >= 0 && at < long(sequence_.paths.size()) && sequence_.file(sequence_.paths[std::size_t(at)]) == file)
      return true;
  }
  return false;
}

void BrowseViewerPage::lookAhead() {
  if (sequence_.paths.empty() || !sequence_.file || !loader_ || !looksAhead_) return;
  std::map<std::filesystem::path, BrowsePhotoPixels> kept;
  for (long d : {1L, -1L}) {
    const long at = long(position_) + d;
    if (at < 0 || at >= long(sequence_.paths.size())) continue;
    const std::filesystem::path neighbour = sequence_.file(sequence_.paths[std::size_t(at)]);
    if (auto found = decoded_.find(neighbour); found != decoded_.end()) kept.insert(*found);
    else {
      // Its proportions come from its thumbnail, whose rounding may miss the photo's by a pixel:
      // a little more is decoded, so the photo is sharp as it appears rather than decoded again.
      const MCRasterImageRef thumbnail = sequence_.thumbnail ? sequence_.thumbnail(sequence_.paths[std::size_t(at)]) : nullptr;
      const std::size_t side =
          fitPixelSize(thumbnail ? MCSize{double(thumbnail->width()), double(thumbnail->height())} : MCSize{0, 0});
      loader_->loadFit(neighbour, side + side / 50 + 2);
    }
  }
  decoded_ = std::move(kept);  // at most the two neighbours: memory stays flat however far one walks
}

void BrowseViewerPage::setSequence(BrowseViewerSequence sequence, std::size_t position) {
  sequence_ = std::move(sequence);
  position_ = std::min(position, sequence_.paths.empty() ? 0 : sequence_.paths.size() - 1);
}

void BrowseViewerPage::step(long by) {
  if (sequence_.paths.empty() || !sequence_.file || by == 0) return;
  const long last = long(sequence_.paths.size()) - 1;
  long at = std::clamp(long(position_) + by, 0L, last);
  // Photos deleted since the grid was read are passed over, in the direction of the step.
  const long direction = by > 0 ? 1 : -1;
  std::error_code ec;
  while (at != long(position_) && !std::filesystem::exists(sequence_.file(sequence_.paths[std::size_t(at)]), ec)) {
    if (report_) report_("viewer skipped " + sequence_.file(sequence_.paths[std::size_t(at)]).string() + ": it is gone");
    const long next = at + direction;
    if (next < 0 || next > last) return;  // nothing left that way
    at = next;
  }
  showPosition(std::size_t(at));
}

void BrowseViewerPage::showPosition(std::size_t position) {
  if (position >= sequence_.paths.size() || !sequence_.file) return;
  if (position == position_ && sequence_.file(sequence_.paths[position]) == file_) return;
  // The photo left stays at hand at fit: one step back shows it without decoding it again.
  if (loaded_ && fitPixels_.image) decoded_[file_] = fitPixels_;
  position_ = position;
  const MCIndexPath path = sequence_.paths[position];
  file_ = sequence_.file(path);
  sharp_ = failed_ = loaded_ = whole_ = wholeRequested_ = wholeFailed_ = regionFailed_ = reportedSharp_ = false;
  regionRequested_.reset();
  photoSize_ = {0, 0};
  fitPixels_ = {};
  wantOnly();
  zoomToFit();
  fitRequested_ = 0;
  if (auto found = decoded_.find(file_); found != decoded_.end() && found->second.image) {
    fitRequested_ = std::max(found->second.image->width(), found->second.image->height());
    showFit(found->second);
  } else {
    show(BrowseDrawableImage(sequence_.thumbnail ? sequence_.thumbnail(path) : nullptr, 1));
    fitRequested_ = firstFitRequest();
    if (loader_) loader_->loadFit(file_, fitRequested_);
  }
  const long label = MCColorLabelMapper::labelOfFile(file_);
  labelControl_->setUsedColorLabels(label ? std::set<long>{label} : std::set<long>{});
  if (sequence_.shown) sequence_.shown(path, position);
  readProperties();
  if (report_) report_("viewer open " + file_.string());
  if (loaded_) lookAhead();
}

std::size_t BrowseViewerPage::firstFitRequest() const {
  // Until the properties tell the photo's size, its proportions are the thumbnail's, a little
  // off; asking a little more than the guess keeps the decode from being asked again at once.
  const std::size_t guess = fitPixelSize(photoSize());
  return photoSize_.width > 0 ? guess : guess + guess / 50 + 2;
}

MCSize BrowseViewerPage::photoSize() const {
  if (photoSize_.width > 0 && photoSize_.height > 0) return photoSize_;
  return image_ ? MCSize{double(image_->width()), double(image_->height())} : MCSize{0, 0};
}

MCRect BrowseViewerPage::visiblePhotoRect() const {
  const MCSize photo = photoSize();
  if (!zoomView_ || !(photo.width > 0)) return MCZeroRect;
  const MCRect content = zoomView_->contentRectFor(zoomView_->zoom(), zoomView_->offset());
  const MCRect seen = MCIntersectionRect(content, zoomView_->bounds());
  if (MCIsEmptyRect(seen) || !(content.size.width > 0)) return MCZeroRect;
  const double sx = photo.width / content.size.width, sy = photo.height / content.size.height;
  return MCMakeRect((MCMinX(seen) - MCMinX(content)) * sx, (MCMinY(seen) - MCMinY(content)) * sy,
                    seen.size.width * sx, seen.size.height * sy);
}

double BrowseViewerPage::fitZoom() const {
  if (!(photoSize_.width > 0)) return 1;  // the thumbnail's size says nothing of the photo's
  const double oneToOne = oneToOneZoom();
  return oneToOne > 0 && oneToOne < 1 ? oneToOne : 1;
}

void BrowseViewerPage::refit() {
  // The photo's size is known only once its first decode came, and the view's can change: a view
  // that fitted fits again, at the new fit.
  const double fit = fitZoom();
  if (std::abs(fit - fitZoom_) < 1e-9) return;
  const bool fitted = std::abs(zoomView_->zoom() - fitZoom_) < 1e-4;
  fitZoom_ = fit;
  zoomView_->setMinZoom(fit);
  if (fitted) zoomView_->setOffset({0, 0}, fit);
}

void BrowseViewerPage::zoomToFit() {
  if (!zoomView_) return;
  fitZoom_ = fitZoom();
  zoomView_->setMinZoom(fitZoom_);
  zoomView_->setOffset({0, 0}, fitZoom_);
}

double BrowseViewerPage::oneToOneZoom() const {
  if (!zoomView_) return 0;
  const MCSize original = photoSize(), fitted = zoomView_->sizeForZoom(1);
  if (!(fitted.width > 0)) return 0;
  const double scale = zoomView_->window() ? zoomView_->window()->backingScaleFactor() : 1.0;
  return original.width / (fitted.width * scale);
}

void BrowseViewerPage::toggleSlideshow() {
  if (slideshow_) {
    slideshow_->invalidate();
    slideshow_.reset();
    slideshowButton_->setIsSelected(false);
    if (report_) report_("viewer slideshow off");
    return;
  }
  std::weak_ptr<BrowseViewerPage> weak = self();
  slideshow_ = MCTimer::scheduledTimer(slideshowInterval_, true, [weak](MCTimer&) {
    auto page = weak.lock();
    if (!page) return;
    if (page->position_ + 1 >= page->sequence_.paths.size()) {
      page->toggleSlideshow();  // the last photo stays
      return;
    }
    page->step(1);
  });
  slideshowButton_->setIsSelected(true);
  if (report_) report_("viewer slideshow on");
}

void BrowseViewerPage::setFullScreen(bool fullScreen) {
  MCWindow* window = zoomView_ ? zoomView_->window() : nullptr;
  if (!window || window->isFullScreen() == fullScreen) return;
  if (window->setFullScreen(fullScreen) && report_)
    report_(std::string("viewer fullscreen ") + (fullScreen ? "on" : "off"));
}

bool BrowseViewerPage::handleKey(const MCEvent& event) {
  const std::u32string& keys = event.charactersIgnoringModifiers();
  if (keys.size() != 1 || !zoomView_) return false;
  constexpr char32_t kF5 = MCF1FunctionKey + 4, kF11 = MCF1FunctionKey + 10;
  // A playing slideshow stops at any key, which does nothing else.
  if (slideshow_) {
    toggleSlideshow();
    return true;
  }
  if (keys[0] == kF5) {
    toggleSlideshow();
    return true;
  }
  if (keys[0] == kF11) {
    MCWindow* window = zoomView_->window();
    setFullScreen(!(window && window->isFullScreen()));
    return true;
  }
  if (keys[0] == MCEscapeCharacter && zoomView_->window() && zoomView_->window()->isFullScreen()) {
    setFullScreen(false);  // the next Escape returns to the grid
    return true;
  }
  const MCPoint centre = {MCMidX(zoomView_->bounds()), MCMidY(zoomView_->bounds())};
  switch (keys[0]) {
    case MCRightArrowFunctionKey: case MCSpaceCharacter: case MCPageDownFunctionKey: step(1); return true;
    case MCLeftArrowFunctionKey: case MCDeleteCharacter: case MCPageUpFunctionKey: step(-1); return true;
    case MCHomeFunctionKey: showPosition(0); return true;
    case MCEndFunctionKey: if (!sequence_.paths.empty()) showPosition(sequence_.paths.size() - 1); return true;
    case U'+': case U'=': zoomView_->zoomBy(0.5, centre); return true;
    case U'-': zoomView_->zoomBy(-1.0 / 3.0, centre); return true;
    case U'0': zoomToFit(); return true;
    case U'1': zoomView_->zoomTo(oneToOneZoom(), centre); return true;
    case U'h': case U'H': histogramView_->setHidden(!histogramView_->isHidden()); return true;
    case U'i': case U'I': toggleInfo(); return true;
    default: return false;
  }
}

void BrowseViewerPage::viewControllerDidDisappear(bool) {
  if (slideshow_) toggleSlideshow();
  if (sequence_.closed) sequence_.closed();
  if (report_) report_("viewer closed");
}

void BrowseViewerPage::close() {
  if (MCNavigationController* navigation = navigationController()) navigation->popViewControllerAnimated(false);
}

MCSize BrowseViewerPage::zoomViewOriginalContentSize(MCZoomView&) { return photoSize(); }

void BrowseViewerPage::zoomViewDidChange(MCZoomView& view) {
  view.setNeedsDisplay(true);
  updateSharpness();
  updateInfo();
}

double BrowseViewerPage::zoomPercent() const {
  const double oneToOne = oneToOneZoom();
  return zoomView_ && oneToOne > 0 ? 100 * zoomView_->zoom() / oneToOne : 0;
}

std::vector<std::string> BrowseViewerPage::infoParts() const {
  if (failed_) return {"cannot be decoded: the thumbnail shows"};
  if (!image_) return {};
  const MCSize photo = photoSize();
  std::vector<std::string> parts{std::to_string(long(photo.width)) + " × " + std::to_string(long(photo.height)) + " px"};
  std::error_code ec;
  const std::uintmax_t bytes = std::filesystem::file_size(file_, ec);
  if (!ec) parts.push_back(BrowseController::formatByteCount(bytes));  // as the grid's status line says it
  if (loaded_) parts.push_back(std::to_string(std::lround(zoomPercent())) + "%");
  return parts;
}

std::string BrowseViewerPage::info() const {
  std::string text;
  for (const std::string& part : infoParts()) text += (text.empty() ? "" : "   ") + part;
  return text;
}

void BrowseViewerPage::updateInfo() {
  auto toolbar = std::static_pointer_cast<Toolbar>(toolbar_);
  if (!toolbar) return;
  toolbar->info = infoParts();
  toolbar->setNeedsDisplay(true);
  if (!infoPanel_) return;
  std::string pixels;
  if (loaded_) pixels = std::to_string(long(photoSize_.width)) + " × " + std::to_string(long(photoSize_.height));
  infoPanel_->setRows(properties_ ? BrowseInfoRows(*properties_, pixels)
                                  : std::vector<std::pair<std::string, std::string>>{});
  infoPanel_->setMapURI(properties_ ? BrowseGeoURI(*properties_) : std::string());
}

void BrowseViewerPage::receive(BrowsePhotoPixels pixels) {
  using Kind = BrowsePhotoPixels::Kind;
  if (pixels.file != file_) {
    // A neighbour decoded ahead; one that stopped being a neighbour while it decoded is dropped.
    if (pixels.kind == Kind::Fit && pixels.image && isNeighbour(pixels.file)) decoded_[pixels.file] = std::move(pixels);
    return;
  }
  if (!pixels.image) {
    if (pixels.kind == Kind::Region) {
      regionRequested_.reset();
      regionFailed_ = true;  // asking again would fail again; what is shown stays
      if (report_) report_("viewer cannot decode a region of " + file_.string());
    } else if (pixels.kind == Kind::Whole) {
      // The visible parts will do instead, where they decode alone; else the fit decode stays.
      wholeFailed_ = true;
      if (!fitPixels_.decodesRegionsAlone && report_) report_("viewer cannot decode the whole of " + file_.string());
      updateSharpness();
    } else {
      failed_ = true;  // the thumbnail stays
      if (report_) report_("viewer cannot decode " + file_.string());
      updateInfo();
    }
    return;
  }
  switch (pixels.kind) {
    case Kind::Fit:
      if (!whole_) showFit(pixels);
      return;
    case Kind::Whole:
      whole_ = true;
      show(std::move(pixels.image));
      break;
    case Kind::Region: {
      // An earlier region may land while the latest is still on its way: that one stays asked.
      if (regionRequested_ && *regionRequested_ == pixels.rect) regionRequested_.reset();
      if (whole_) return;
      auto& photo = static_cast<PhotoView&>(*imageView_);
      photo.detail = std::move(pixels.image);
      photo.detailRect = pixels.rect;
      imageView_->setNeedsDisplay(true);
      break;
    }
  }
  updateSharpness();
}

void BrowseViewerPage::showFit(const BrowsePhotoPixels& pixels) {
  fitPixels_ = pixels;
  photoSize_ = pixels.photoSize;
  orientation_ = pixels.orientation;
  loaded_ = true;
  // A photo no larger than the screen needs came whole.
  whole_ = pixels.image && double(pixels.image->width()) >= photoSize_.width;
  show(pixels.image);
  updateSharpness();
  lookAhead();
}

void BrowseViewerPage::updateSharpness() {
  if (!loaded_ || failed_ || !zoomView_ || !image_) return;
  const MCSize photo = photoSize();
  const double scale = zoomView_->window() ? zoomView_->window()->backingScaleFactor() : 1.0;
  // Screen pixels across the photo's width now, against the pixels the fit decode has there.
  const double shownWidth = zoomView_->sizeForZoom(zoomView_->zoom()).width * scale;
  const MCRect visible = visiblePhotoRect();
  const auto& view = static_cast<const PhotoView&>(*imageView_);
  // The pixels shown must reach the screen's: a fit decode a pixel short is enlarged, and blurred.
  bool sharp = whole_ || shownWidth <= double(image_->width()) + 1;
  if (!sharp && view.detail && MCContainsRect(MCInsetRect(view.detailRect, -1, -1), visible)) sharp = true;
  if (!sharp) reportedSharp_ = false;  // told again once it is
  sharp_ = sharp;
  if (sharp_) {
    if (!reportedSharp_) {
      reportedSharp_ = true;
      reportSharp();
    }
    return;
  }
  if (!loader_) return;
  // At fit or below, a decode at the size the view has now (it was laid out anew, or the first
  // guess of the photo's proportions was wrong), rather than the photo's own pixels scaled down.
  const std::size_t fitSize = fitPixelSize(photo);
  if (zoomView_->zoom() <= 1.0001 && fitSize > fitRequested_) {
    fitRequested_ = fitSize;
    loader_->loadFit(file_, fitSize);
    return;
  }
  // A format that can only cut a region from the whole is decoded whole, once (within the budget).
  const bool regions = fitPixels_.decodesRegionsAlone;
  if (!wholeRequested_ && (photo.width * photo.height <= kWholeDecodeLimit || !regions)) {
    wholeRequested_ = true;
    loader_->loadWhole(file_);
  }
  // The visible part comes first, with room to pan around it, so the pixels one looks at are sharp
  // long before the whole photo is decoded (or when it is too large to be).
  if (!regions || regionFailed_ || MCIsEmptyRect(visible)) return;
  if (regionRequested_ && MCContainsRect(*regionRequested_, visible)) return;
  const MCRect wanted = MCIntersectionRect(MCInsetRect(visible, -visible.size.width / 2, -visible.size.height / 2),
                                           MCMakeRect(0, 0, photo.width, photo.height));
  regionRequested_ = MCIntegralRect(wanted);
  loader_->loadRegion(file_, *regionRequested_, photo, orientation_);
}

void BrowseViewerPage::reportSharp() {
  const MCSize photo = photoSize();
  if (report_ && image_)
    report_("viewer sharp " + std::to_string(long(photo.width)) + "x" + std::to_string(long(photo.height)) + " " +
            file_.string());
}

void BrowseViewerPage::show(MCRasterImageRef image) {
  // The zoom is relative to fit, so a sharper image of the same proportions takes the place of
  // the thumbnail without a jump.
  image_ = std::move(image);
  auto& photo = static_cast<PhotoView&>(*imageView_);
  photo.image = image_;
  photo.detail = nullptr;
  photo.photoSize = photoSize();
  imageView_->setNeedsDisplay(true);
  histogramView_->setImage(image_);
  // Room to look closer than the pixels themselves, whatever the photo's size.
  zoomView_->setMaxZoom(std::max(16.0, 8 * oneToOneZoom()));
  refit();
  zoomView_->updateLayout();
  zoomView_->setNeedsLayout(true);
  updateInfo();
}
