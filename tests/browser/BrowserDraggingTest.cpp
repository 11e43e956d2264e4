// The browser view's drags, copy and paste, and preview panel: what may be dragged and when a press
// becomes a drag, the operations offered, what the pasteboard commands allow, and what the panel
// is shown — driven offscreen through scripted events.
#include "BrowserViewFixture.h"

#include <vesperon/browser/MCBrowserViewPreviewItem.h>
#include <vesperon/toolkit/MCMenuItem.h>
#include <vesperon/toolkit/MCPasteboard.h>
#include <vesperon/toolkit/MCPreviewPanel.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

/// Only the middle of the cell (its inner half) counts as the item, as with a cell whose image
/// does not fill its frame.
class InnerHitCell : public FixedCell {
 public:
  InnerHitCell() : FixedCell(false) {}
  bool containsPoint(MCPoint point, const MCRect& frame) override {
    return MCPointInRect(point, MCInsetRect(frame, frame.size.width / 4, frame.size.height / 4));
  }
};

class FilePreviewItem : public MCPreviewItem {
 public:
  explicit FilePreviewItem(std::filesystem::path path) : path_(std::move(path)) {}
  std::filesystem::path previewItemURL() const override { return path_; }

 private:
  std::filesystem::path path_;
};

/// A delegate that gives each item the file "/photos/<group>-<item>.jpg", and writes down the
/// drag, pasteboard and drop calls it gets.
struct FileDelegate : Recorder {
  uint64_t dropAnswer = MCDragOperationCopy;

  static std::filesystem::path fileOf(const MCIndexPath& p) {
    return "/photos/" + std::to_string(p.group) + "-" + std::to_string(p.item) + ".jpg";
  }
  std::shared_ptr<MCPasteboardWriting> pasteboardWriterForItemAtIndexPath(MCBrowserView&, const MCIndexPath& p) override {
    log.push_back("writer " + describe(p));
    return MCPasteboardItem::itemWithFileURL(fileOf(p));
  }
  void draggingSessionWillBeginAtPoint(MCBrowserView&, MCDraggingSession&, MCPoint) override {
    log.push_back("drag begins");
  }
  void draggingSessionEndedAtPoint(MCBrowserView&, MCDraggingSession&, MCPoint, uint64_t operation) override {
    log.push_back("drag ended " + std::to_string(operation));
  }
  void readItemsFromPasteboard(MCBrowserView&, MCPasteboard& pasteboard) override {
    log.push_back("read " + std::to_string(pasteboard.readFileURLs().size()));
  }
  void writeItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& paths, MCPasteboard& pasteboard) override {
    log.push_back("write " + describe(paths));
    std::vector<std::filesystem::path> files;
    for (const MCIndexPath& p : paths) files.push_back(fileOf(p));
    pasteboard.writeFileURLs(files);
  }
  uint64_t validateDrop(MCBrowserView&, const MCDraggingInfo&) override {
    log.push_back("validate drop");
    return dropAnswer;
  }
  bool acceptDrop(MCBrowserView&, const MCDraggingInfo&) override {
    log.push_back("accept drop");
    return dropAnswer != MCDragOperationNone;
  }
  std::shared_ptr<MCPreviewItem> previewItemAtIndexPath(MCBrowserView&, const MCIndexPath& p) override {
    return std::make_shared<FilePreviewItem>(fileOf(p));
  }
};

/// The browser fixture with the file delegate and the inner-hit cell; groups of 5 and 10 items
/// unless told otherwise.
struct DragFixture : BrowserFixture {
  std::shared_ptr<FileDelegate> files = std::make_shared<FileDelegate>();
  std::shared_ptr<InnerHitCell> cell = std::make_shared<InnerHitCell>();

  explicit DragFixture(std::vector<uint64_t> groups = {5, 10}) : BrowserFixture(std::move(groups)) {
    view->setDelegate(files);
    view->setItemCell(cell);
    view->sizeToFit(false);
    files->log.clear();
  }
  void select(const MCIndexSet& items) { view->setSelectionIndexes(items, false, false); }
  MCEvent pressAt(MCPoint windowPoint) const { return MCEvent::mouseEvent(MCEventType::LeftMouseDown, windowPoint); }
  /// A window point inside the item's cell frame but outside the part that hits.
  MCPoint windowPointOfItemMargin(uint64_t item) const {
    const MCRect frame = layout().cellFrameAtItemIndex(item);
    return windowPoint({frame.origin.x + 3, frame.origin.y + 3});
  }
};

MCPoint rightOf(MCPoint point, double dx) { return MCMakePoint(point.x + dx, point.y); }

std::string ascending(const MCIndexSet& set) {
  std::string text;
  for (uint64_t i : set) text += (text.empty() ? "" : ",") + std::to_string(i);
  return text;
}

}  // namespace

TEST(BrowserDragging, DragsStartOnlyFromTheHitPartOfASelectedItem) {
  DragFixture f;
  MCBrowserView& v = *f.view;
  f.select(MCIndexSet::indexSetWithIndexesInRange({2, 3}));  // 2, 3, 4

  EXPECT_TRUE(v.canBeginDragging(f.pressAt(f.windowPointOfItem(3))));
  EXPECT_TRUE(v.acceptsFirstMouse(&static_cast<const MCEvent&>(f.pressAt(f.windowPointOfItem(3)))));
  EXPECT_TRUE(v.shouldDelayWindowOrderingForEvent(f.pressAt(f.windowPointOfItem(3))));
  // Not selected; selected but on the margin that does not hit; beside every item.
  EXPECT_FALSE(v.canBeginDragging(f.pressAt(f.windowPointOfItem(1))));
  EXPECT_FALSE(v.canBeginDragging(f.pressAt(f.windowPointOfItemMargin(3))));
  EXPECT_FALSE(v.acceptsFirstMouse(&static_cast<const MCEvent&>(f.pressAt(f.windowPointOfItemMargin(3)))));
  EXPECT_FALSE(v.canBeginDragging(f.pressAt(f.windowPoint({590, 390}))));
  // The alternate selection is not dragged.
  v.setAllowsAlternateSelection(true);
  v.setAlternateSelectionIndexes(MCIndexSet(7), false, false);
  EXPECT_FALSE(v.canBeginDragging(f.pressAt(f.windowPointOfItem(7))));
  // Without the delegate's writers, nothing is dragged from anywhere.
  f.files->answersEverything = false;
  for (uint64_t item : {2u, 3u, 4u, 7u}) EXPECT_FALSE(v.canBeginDragging(f.pressAt(f.windowPointOfItem(item)))) << item;
  EXPECT_TRUE(f.files->log.empty());  // no writer asked for on the way
}

TEST(BrowserDragging, AHeldPressOrAMoveBeginsADragAQuickReleaseIsAClick) {
  DragFixture f;
  MCBrowserView& v = *f.view;
  f.select(MCIndexSet::indexSetWithIndexesInRange({2, 3}));

  // Released within half a second: a click, which selects the item alone.
  f.host->mouseDown(f.windowPointOfItem(3));
  f.host->addWait(0.1);
  f.host->mouseUp(f.windowPointOfItem(3));
  f.host->run();
  EXPECT_TRUE(f.host->draggingSessions().empty());
  EXPECT_EQ(ascending(v.selectionIndexes()), "3");

  // A press on an item that is not selected, held well past half a second: still a click.
  f.host->mouseDown(f.windowPointOfItem(8));
  f.host->addWait(0.7);
  f.host->mouseUp(f.windowPointOfItem(8));
  f.host->run();
  EXPECT_TRUE(f.host->draggingSessions().empty());
  EXPECT_EQ(ascending(v.selectionIndexes()), "8");

  // Held still on a selected item for half a second: a drag of the whole selection, in item order.
  f.select(MCIndexSet::indexSetWithIndexesInRange({6, 2}));  // 6, 7 …
  v.setSelectionIndexes(MCIndexSet(1), true, false);  // … and 1
  f.files->log.clear();
  f.host->mouseDown(f.windowPointOfItem(7));
  f.host->addWait(0.7);
  f.host->mouseUp(f.windowPointOfItem(7));
  f.host->run();
  ASSERT_EQ(f.host->draggingSessions().size(), 1u);
  EXPECT_EQ(ascending(v.selectionIndexes()), "1,6,7");  // the press did not change the selection
  const auto& session = *f.host->draggingSessions().back();
  EXPECT_EQ(session.source(), static_cast<MCDraggingSource*>(&v));
  EXPECT_EQ(session.draggingFormation(), 0);
  ASSERT_EQ(session.draggingItems().size(), 3u);
  EXPECT_EQ(f.files->log, (std::vector<std::string>{"writer 0.1", "writer 1.1", "writer 1.2", "drag begins"}));
  const uint64_t order[] = {1, 6, 7};
  for (std::size_t k = 0; k < 3; ++k) {
    const MCDraggingItem& item = session.draggingItems()[k];
    const MCIndexPath path = *f.layout().indexPathFromItemIndex(order[k]);
    auto writer = std::dynamic_pointer_cast<MCPasteboardItem>(item.item);
    ASSERT_NE(writer, nullptr);
    EXPECT_EQ(writer->fileURL(), FileDelegate::fileOf(path)) << k;
    EXPECT_EQ(item.draggingFrame.size, f.layout().cellFrameAtItemIndex(order[k]).size) << k;
    // The image comes later, from the provider: one icon component the size of the cell.
    const auto components = item.imageComponents();
    ASSERT_EQ(components.size(), 1u) << k;
    EXPECT_EQ(components[0].key, MCDraggingImageComponentIconKey);
  }
  f.host->endDraggingSession(MCDragOperationCopy);
  EXPECT_EQ(f.files->log.back(), "drag ended 1");

  // A move before the half second is up begins the drag at once.
  f.host->mouseDown(f.windowPointOfItem(6));
  f.host->mouseDragged(rightOf(f.windowPointOfItem(6), 12));
  f.host->mouseUp(rightOf(f.windowPointOfItem(6), 12));
  f.host->run();
  EXPECT_EQ(f.host->draggingSessions().size(), 2u);
  EXPECT_EQ(ascending(v.selectionIndexes()), "1,6,7");
}

TEST(BrowserDragging, OperationsOfferedAndDropsAnsweredByTheDelegate) {
  DragFixture f;
  MCBrowserView& v = *f.view;
  f.select(MCIndexSet(0));
  f.host->mouseDown(f.windowPointOfItem(0));
  f.host->mouseDragged(rightOf(f.windowPointOfItem(0), 20));
  f.host->run();
  ASSERT_EQ(f.host->draggingSessions().size(), 1u);
  MCDraggingSession& session = *f.host->draggingSessions().back();
  EXPECT_EQ(session.sourceOperationMask(MCDraggingContext::OutsideApplication), 33u);  // copy and delete
  EXPECT_EQ(session.sourceOperationMask(MCDraggingContext::WithinApplication), 1u);    // copy
  EXPECT_EQ(v.sourceOperationMaskForDraggingContext(session, static_cast<MCDraggingContext>(7)), 0u);
  // Without the optional delegate operations the session's news goes nowhere.
  f.files->answersEverything = false;
  f.files->log.clear();
  f.host->endDraggingSession(MCDragOperationDelete);
  EXPECT_TRUE(f.files->log.empty());
  EXPECT_EQ(session.operation(), MCDragOperationDelete);

  // A drag over the view: the delegate's answers, asked whether or not it says it has them.
  MCDraggingInfo info;
  info.draggingPasteboard = MCPasteboard::pasteboardWithUniqueName();
  f.files->dropAnswer = MCDragOperationCopy;
  EXPECT_EQ(v.draggingEntered(info), MCDragOperationCopy);
  EXPECT_TRUE(v.performDragOperation(info));
  f.files->dropAnswer = MCDragOperationNone;
  EXPECT_EQ(v.draggingEntered(info), MCDragOperationNone);
  EXPECT_FALSE(v.performDragOperation(info));
  EXPECT_EQ(f.files->log, (std::vector<std::string>{"validate drop", "accept drop", "validate drop", "accept drop"}));
}

TEST(BrowserDragging, CopyAndPasteFollowTheSelectionTheTypesAndTheDelegate) {
  DragFixture f;
  MCBrowserView& v = *f.view;
  auto general = MCPasteboard::generalPasteboard();
  general->clearContents();
  const MCMenuItem copyItem("Copy", "copy:"), pasteItem("Paste", "paste:"), selectAllItem("Select All", "selectAll:");

  // Copy with nothing selected: the item is off and nothing is written.
  EXPECT_FALSE(v.validateMenuItem(copyItem));
  v.copy();
  EXPECT_TRUE(f.files->log.empty());
  EXPECT_TRUE(general->pasteboardItems().empty());
  EXPECT_TRUE(v.validateMenuItem(selectAllItem));

  // With a selection, the delegate writes the paths in item order.
  f.select(MCIndexSet(9));
  v.setSelectionIndexes(MCIndexSet(4), true, false);
  EXPECT_TRUE(v.validateMenuItem(copyItem));
  v.copy();
  EXPECT_EQ(f.files->log, std::vector<std::string>{"write 0.4..1.4 (2)"});
  EXPECT_EQ(general->readFileURLs(), (std::vector<std::filesystem::path>{"/photos/0-4.jpg", "/photos/1-4.jpg"}));

  // Paste: the view registers no types itself, so file URLs on the pasteboard are not for it.
  f.files->log.clear();
  EXPECT_FALSE(v.validateMenuItem(pasteItem));
  v.paste();
  EXPECT_TRUE(f.files->log.empty());
  // Registered for file URLs, a pasteboard of text alone is still not read …
  v.registerForDraggedTypes({MCPasteboardTypeFileURL});
  general->clearContents();
  general->setString("not a file", MCPasteboardTypeString);
  EXPECT_FALSE(v.validateMenuItem(pasteItem));
  v.paste();
  EXPECT_TRUE(f.files->log.empty());
  // … and one of files is.
  general->clearContents();
  general->writeFileURLs({"/photos/a.jpg", "/photos/b.jpg", "/photos/c.jpg"});
  EXPECT_TRUE(v.validateMenuItem(pasteItem));
  v.paste();
  EXPECT_EQ(f.files->log, std::vector<std::string>{"read 3"});

  // A delegate without the pasteboard operations: both commands off, and nothing is called.
  f.files->answersEverything = false;
  f.files->log.clear();
  EXPECT_FALSE(v.validateMenuItem(copyItem));
  EXPECT_FALSE(v.validateMenuItem(pasteItem));
  v.copy();
  v.paste();
  EXPECT_TRUE(f.files->log.empty());
  general->clearContents();

  // No items: select all is off.
  f.recorder->groupSizes = {};
  v.reloadData();
  EXPECT_FALSE(v.validateMenuItem(selectAllItem));
}

TEST(BrowserDragging, ThePreviewPanelShowsTheSelectionInItemOrder) {
  DragFixture f;
  MCBrowserView& v = *f.view;
  auto panel = MCPreviewPanel::sharedPreviewPanel();
  panel->orderOut();

  EXPECT_TRUE(v.acceptsPreviewPanelControl(*panel));
  v.setAllowsPreviewPanel(false);
  EXPECT_FALSE(v.acceptsPreviewPanelControl(*panel));
  v.setAllowsPreviewPanel(true);
  v.beginPreviewPanelControl(*panel);
  EXPECT_EQ(panel->dataSource(), static_cast<MCPreviewPanelDataSource*>(&v));
  EXPECT_EQ(panel->delegate(), static_cast<MCPreviewPanelDelegate*>(&v));

  // Selected in the order 12, 3, 7: shown as 3, 7, 12.
  f.select(MCIndexSet(12));
  v.setSelectionIndexes(MCIndexSet(3), true, false);
  v.setSelectionIndexes(MCIndexSet(7), true, false);
  ASSERT_EQ(v.numberOfPreviewItemsInPreviewPanel(*panel), 3);
  const char* expected[] = {"/photos/0-3.jpg", "/photos/1-2.jpg", "/photos/1-7.jpg"};
  const MCIndexPath paths[] = {{0, 3}, {1, 2}, {1, 7}};
  for (long k = 0; k < 3; ++k) {
    auto item = std::dynamic_pointer_cast<MCBrowserViewPreviewItem>(v.previewItemAtIndex(*panel, k));
    ASSERT_NE(item, nullptr) << k;
    EXPECT_EQ(item->previewItemURL(), expected[k]) << k;
    EXPECT_EQ(item->previewItemTitle(), std::filesystem::path(expected[k]).filename()) << k;
    EXPECT_EQ(std::any_cast<MCIndexPath>(item->previewItemDisplayState()), paths[k]) << k;
  }
  EXPECT_EQ(v.previewItemAtIndex(*panel, 3), nullptr);

  // Keys the panel gets go to the view: the right arrow moves the selection on.
  f.select(MCIndexSet(3));
  const std::u32string arrow(1, char32_t(MCRightArrowFunctionKey));
  const MCEvent right = MCEvent::keyEvent(MCEventType::KeyDown, arrow, arrow);
  EXPECT_TRUE(v.handleEvent(*panel, right));
  EXPECT_EQ(ascending(v.selectionIndexes()), "4");
  EXPECT_FALSE(v.handleEvent(*panel, MCEvent::mouseEvent(MCEventType::LeftMouseDown, f.windowPointOfItem(0))));
  EXPECT_EQ(ascending(v.selectionIndexes()), "4");

  // Space opens the panel, with option full screen; space closes it whatever the modifiers.
  f.key(' ');
  EXPECT_TRUE(panel->isVisible());
  EXPECT_FALSE(panel->isInFullScreenMode());
  f.key(' ', MCEventModifierFlagOption | MCEventModifierFlagShift);
  EXPECT_FALSE(panel->isVisible());
  f.key(' ', MCEventModifierFlagOption);
  EXPECT_TRUE(panel->isVisible());
  EXPECT_TRUE(panel->isInFullScreenMode());
  f.key(' ', MCEventModifierFlagShift);
  EXPECT_FALSE(panel->isVisible());

  v.endPreviewPanelControl(*panel);
  EXPECT_EQ(panel->dataSource(), nullptr);
  EXPECT_EQ(panel->delegate(), nullptr);
  panel->exitFullScreenMode();
  panel->orderOut();
}

TEST(BrowserDragging, APreviewItemWhoseCellIsPartlyHiddenHasNoSourceFrame) {
  DragFixture f({5, 15});
  MCBrowserView& v = *f.view;
  auto panel = MCPreviewPanel::sharedPreviewPanel();
  // Rows of 100 start at y 24, 148, 272 and 396: in the 400 high window the fourth row (items 15
  // to 19) shows only its top 4 points.
  auto previewOf = [&](uint64_t item) {
    return MCBrowserViewPreviewItem(nullptr, *f.layout().indexPathFromItemIndex(item));
  };
  const MCRect visibleItem = v.sourceFrameOnScreenForPreviewItem(*panel, previewOf(0));
  EXPECT_EQ(visibleItem.size, MCMakeSize(100, 100));
  const MCRect frame0 = f.layout().cellFrameAtItemIndex(0);
  EXPECT_EQ(visibleItem, f.window->convertRectToScreen(v.convertRectToView(frame0, nullptr)));
  EXPECT_EQ(v.sourceFrameOnScreenForPreviewItem(*panel, previewOf(15)), MCRect{});
  // Scrolled down by 100, the first row is cut at the top and the fourth shows whole.
  v.scrollToVisibleRect(MCMakeRect(0, 100, 600, 400));
  ASSERT_EQ(f.scrollY(), 100);
  EXPECT_EQ(v.sourceFrameOnScreenForPreviewItem(*panel, previewOf(0)), MCRect{});
  const MCRect fourthRow = v.sourceFrameOnScreenForPreviewItem(*panel, previewOf(15));
  EXPECT_EQ(fourthRow.size, MCMakeSize(100, 100));
  // Screen coordinates grow upwards: the fourth row, 372 points below the first, now lies 100
  // points higher than that.
  EXPECT_EQ(fourthRow.origin.y, visibleItem.origin.y - 372 + 100);
}
