#pragma once
// A browser view in a scroll view in an offscreen window, with a data source of fixed groups, a
// cell of a fixed size that counts its preparations, and a delegate and a prefetch source that
// write down what they are told.

#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <string>
#include <vector>

/// Cells 200 × 200 at scale 1 (100 × 100 at the default 0.5); headers 20 high across the bounds.
class FixedCell : public MCBrowserViewCell {
 public:
  explicit FixedCell(bool header) : header_(header) {}
  int prepared = 0;
  int drawn = 0;
  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override {
    if (header_) return {bounds.size.width > 1e300 ? 100 : bounds.size.width, 20};
    return {200 * scale, 200 * scale};
  }
  std::shared_ptr<const MCImage> previewImage() override { return nullptr; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override { return frame; }
  void drawWithFrame(const MCRect&, MCView*) override { ++drawn; }
  std::shared_ptr<MCBrowserViewCell> copy() const override { return std::make_shared<FixedCell>(header_); }

 private:
  bool header_;
};

struct Recorder : MCBrowserViewDataSource, MCBrowserViewDelegate, MCBrowserViewPrefetching {
  std::vector<uint64_t> groupSizes;
  std::vector<std::string> log;
  int selectionChanges = 0;
  int scaleChanges = 0;
  bool answersEverything = true;
  bool namesItems = false;  // names items "g.i.jpg" for assistive technologies

  uint64_t numberOfGroupsInBrowserView(MCBrowserView&) override { return groupSizes.size(); }
  uint64_t numberOfItemsInGroup(MCBrowserView&, uint64_t group) override { return groupSizes.at(group); }
  void updateItemCell(MCBrowserView&, MCBrowserViewCell& cell, const MCIndexPath&) override {
    ++static_cast<FixedCell&>(cell).prepared;
  }
  void updateHeaderCell(MCBrowserView&, MCBrowserViewCell& cell, uint64_t) override {
    ++static_cast<FixedCell&>(cell).prepared;
  }
  std::string accessibilityNameForItem(MCBrowserView&, const MCIndexPath& p) override {
    return namesItems ? describe(p) + ".jpg" : std::string();
  }
  bool respondsTo(MCBrowserViewDelegateOperation) const override { return answersEverything; }
  void browserViewSelectionDidChange(MCBrowserView&) override { ++selectionChanges; }
  void browserViewScaleDidChange(MCBrowserView&) override { ++scaleChanges; }
  void cellWasDoubleClickedAtIndexPath(MCBrowserView&, const MCIndexPath& p, const MCEvent&) override {
    log.push_back("double " + describe(p));
  }
  void cellWasRightClickedAtIndexPath(MCBrowserView&, const MCIndexPath& p, const MCEvent&) override {
    log.push_back("right " + describe(p));
  }
  void backgroundWasRightClickedWithEvent(MCBrowserView&, const MCEvent&) override { log.push_back("right background"); }
  void prefetchItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& paths) override {
    log.push_back("prefetch " + describe(paths));
  }
  void cancelPrefetchingForItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& paths) override {
    log.push_back("cancel " + describe(paths));
  }

  static std::string describe(const MCIndexPath& p) { return std::to_string(p.group) + "." + std::to_string(p.item); }
  static std::string describe(const std::vector<MCIndexPath>& paths) {
    if (paths.empty()) return "none";
    return describe(paths.front()) + ".." + describe(paths.back()) + " (" + std::to_string(paths.size()) + ")";
  }
};

struct BrowserFixture {
  std::shared_ptr<MCWindow> window;
  std::unique_ptr<MCOffscreenHost> host;
  std::shared_ptr<MCScrollView> scrollView;
  std::shared_ptr<MCBrowserView> view;
  std::shared_ptr<FixedCell> itemCell = std::make_shared<FixedCell>(false);
  std::shared_ptr<FixedCell> headerCell = std::make_shared<FixedCell>(true);
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();

  /// Vertical layout in a 600 × 400 window: five columns of 100 with spacing 12 (aligned).
  explicit BrowserFixture(std::vector<uint64_t> groups, bool headers = false, bool horizontal = false,
                          MCSize size = {600, 400}) {
    window = MCWindow::create(size);
    host = std::make_unique<MCOffscreenHost>(window);
    scrollView = std::make_shared<MCScrollView>(MCMakeRect(0, 0, size.width, size.height));
    scrollView->setAutoresizingMask(MCViewWidthSizable | MCViewHeightSizable);
    view = std::make_shared<MCBrowserView>(MCMakeRect(0, 0, size.width, size.height));
    view->setItemCell(itemCell);
    view->setHeaderCell(headerCell);
    view->setDataSource(recorder);
    view->setDelegate(recorder);
    view->setPrefetchDataSource(recorder);
    scrollView->setDocumentView(view);
    window->contentView()->addSubview(scrollView);
    view->setShowsGroupHeaders(headers);
    view->setHorizontal(horizontal);
    recorder->groupSizes = std::move(groups);
    view->reloadData();
    window->makeFirstResponder(view.get());
    recorder->log.clear();
  }

  const MCBrowserViewLayout& layout() const { return *view->contentLayout(); }
  /// The window point over the centre of an item's cell.
  MCPoint windowPointOfItem(uint64_t item) const {
    const MCRect frame = layout().cellFrameAtItemIndex(item);
    return view->convertPointToView({MCMidX(frame), MCMidY(frame)}, nullptr);
  }
  MCPoint windowPoint(MCPoint inView) const { return view->convertPointToView(inView, nullptr); }
  void click(uint64_t item, uint64_t flags = 0) {
    host->click(windowPointOfItem(item), flags);
    host->run();
  }
  void key(char32_t key, uint64_t flags = 0) {
    host->keyPress(key, flags);
    host->run();
  }
  double scrollY() const { return scrollView->contentView()->bounds().origin.y; }
};
