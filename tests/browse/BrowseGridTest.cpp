// The grid of `vesperon browse` offscreen: the sort orders and their groups, the status line
// (counts, the filter's "of", the selection's size), the thumbnail size by keys, wheel and slider
// and its memory between runs, and the wheel's step.

#include "../../tools/vesperon/browse/BrowseController.h"
#include "../../tools/vesperon/browse/BrowseDayReader.h"
#include "../../tools/vesperon/browse/BrowseFolderMonitor.h"
#include "../../tools/vesperon/browse/BrowseNotice.h"
#include "../../tools/vesperon/browse/BrowsePlacesSidebar.h"
#include "../../tools/vesperon/browse/BrowsePreferences.h"
#include "../../tools/vesperon/browse/BrowseStatusBar.h"
#include "../../tools/vesperon/MediaFiles.h"

#include <vesperon/catalogue/MCSearchableProperties.h>

#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCWindow.h>

#include <gtest/gtest.h>

#include <glib.h>

#include <unistd.h>

#include <cmath>
#include <fstream>

namespace fs = std::filesystem;

namespace {

BrowseFileFacts fact(const char* name, const char* day, std::time_t modified, uint64_t size) {
  return {fs::path("/photos") / name, day, modified, size};
}

std::vector<std::string> names(const BrowseCollection& collection) {
  std::vector<std::string> out;
  for (const auto& group : collection.groups()) {
    out.push_back("[" + group.day + "]");
    for (const auto& file : group.files) out.push_back(file.filename().string());
  }
  return out;
}

std::vector<BrowseFileFacts> sampleFacts() {
  return {fact("b.jpg", "2024-05-01", 300, 10), fact("a.jpg", "2024-05-01", 100, 30), fact("c.jpg", "2023-01-02", 200, 20),
          fact("d.jpg", "", 400, 20), fact("e.jpg", "2024-12-31", 50, 5)};
}

}  // namespace

TEST(BrowseSorting, EachOrderAndItsReverse) {
  const auto facts = sampleFacts();
  using V = std::vector<std::string>;
  // By capture date: newest day first, names in order within a day, the unknown day last.
  EXPECT_EQ(names(BrowseCollection::withFacts(facts, {})),
            (V{"[2024-12-31]", "e.jpg", "[2024-05-01]", "a.jpg", "b.jpg", "[2023-01-02]", "c.jpg", "[unknown day]", "d.jpg"}));
  // Reversed: the oldest day first, the names backwards; the unknown day still last.
  EXPECT_EQ(names(BrowseCollection::withFacts(facts, {BrowseSortKey::Date, true})),
            (V{"[2023-01-02]", "c.jpg", "[2024-05-01]", "b.jpg", "a.jpg", "[2024-12-31]", "e.jpg", "[unknown day]", "d.jpg"}));
  EXPECT_EQ(names(BrowseCollection::withFacts(facts, {BrowseSortKey::Name, false})),
            (V{"[Name, A to Z]", "a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"}));
  EXPECT_EQ(names(BrowseCollection::withFacts(facts, {BrowseSortKey::Name, true})),
            (V{"[Name, Z to A]", "e.jpg", "d.jpg", "c.jpg", "b.jpg", "a.jpg"}));
  EXPECT_EQ(names(BrowseCollection::withFacts(facts, {BrowseSortKey::Modified, false})),
            (V{"[Modified, newest first]", "d.jpg", "b.jpg", "c.jpg", "a.jpg", "e.jpg"}));
  // Equal sizes keep the names' order.
  EXPECT_EQ(names(BrowseCollection::withFacts(facts, {BrowseSortKey::Size, false})),
            (V{"[Size, largest first]", "a.jpg", "c.jpg", "d.jpg", "b.jpg", "e.jpg"}));
  EXPECT_EQ(names(BrowseCollection::withFacts(facts, {BrowseSortKey::Size, true})),
            (V{"[Size, smallest first]", "e.jpg", "b.jpg", "d.jpg", "c.jpg", "a.jpg"}));

  // A filter keeps the order; sorting again keeps the files.
  const BrowseCollection bySize = BrowseCollection::withFacts(facts, {BrowseSortKey::Size, false});
  const BrowseCollection some = bySize.filtered([](const fs::path& file) { return file.filename() != "c.jpg"; });
  EXPECT_EQ(names(some), (V{"[Size, largest first]", "a.jpg", "d.jpg", "b.jpg", "e.jpg"}));
  EXPECT_EQ(some.sorted({}).numberOfFiles(), 4u);
  EXPECT_EQ(some.sizeOfFile("/photos/a.jpg"), 30u);
  EXPECT_EQ(some.sizeOfFile("/photos/c.jpg"), 0u);
  EXPECT_TRUE(BrowseCollection::withFacts({}, {}).groups().empty());

  for (auto key : {BrowseSortKey::Date, BrowseSortKey::Name, BrowseSortKey::Modified, BrowseSortKey::Size})
    EXPECT_EQ(BrowseSortOrder::keyNamed(BrowseSortOrder::nameOfKey(key)), key);
  EXPECT_EQ(BrowseSortOrder::keyNamed("Date"), std::nullopt);
  EXPECT_EQ(BrowseSortOrder::keyNamed(""), std::nullopt);
}

TEST(BrowseStatus, CountsAndSizes) {
  EXPECT_EQ(BrowseController::formatCount(0), "0");
  EXPECT_EQ(BrowseController::formatCount(999), "999");
  EXPECT_EQ(BrowseController::formatCount(1000), "1,000");
  EXPECT_EQ(BrowseController::formatCount(20000), "20,000");
  EXPECT_EQ(BrowseController::formatCount(1234567), "1,234,567");
  EXPECT_EQ(BrowseController::formatByteCount(1), "1 byte");
  EXPECT_EQ(BrowseController::formatByteCount(999), "999 bytes");
  EXPECT_EQ(BrowseController::formatByteCount(1000), "1.0 kB");
  EXPECT_EQ(BrowseController::formatByteCount(25'300'000), "25.3 MB");
  // Rounding up to 1000.0 MB reads as 1.0 GB.
  EXPECT_EQ(BrowseController::formatByteCount(999'960'000), "1.0 GB");
}

namespace {

// A grid in an offscreen window, as the program makes it: the view in a scroll view.
struct Grid {
  std::shared_ptr<MCWindow> window = MCWindow::create({800, 600});
  std::shared_ptr<MCScrollView> scroll = std::make_shared<MCScrollView>(MCMakeRect(0, 0, 800, 600));
  std::shared_ptr<BrowseView> view = std::make_shared<BrowseView>(MCMakeRect(0, 0, 800, 600));
  std::unique_ptr<MCOffscreenHost> host;
  std::shared_ptr<BrowseController> controller;
  std::vector<std::string> statuses;

  explicit Grid(BrowseCollection collection, std::size_t total) {
    scroll->setDocumentView(view);
    window->setContentView(scroll);
    window->makeFirstResponder(view.get());
    host = std::make_unique<MCOffscreenHost>(window, 1.0);
    controller = std::make_shared<BrowseController>(std::move(collection), nullptr,
                                                     [this](const std::string& line) { statuses.push_back(line); });
    controller->setTotalCount(total);
    controller->attach(view);
    host->render();
  }
  MCPoint inWindow(MCPoint inView) const { return view->convertPointToView(inView, nullptr); }
};

std::vector<BrowseFileFacts> manyFacts(std::size_t count) {
  std::vector<BrowseFileFacts> facts;
  for (std::size_t i = 0; i < count; ++i)
    facts.push_back({"/nowhere/" + std::to_string(1000 + i) + ".jpg", i % 2 ? "2024-01-02" : "2024-01-01", 0,
                     uint64_t(2'811'111)});
  return facts;
}

}  // namespace

TEST(BrowseStatus, SaysTheFilterAndTheSelection) {
  Grid all(BrowseCollection::withFacts(manyFacts(2000), {}), 2000);
  EXPECT_EQ(all.controller->statusLine(), "2,000 photos in 2 days");
  // Nine photos of about 2.8 MB each.
  for (uint64_t i = 0; i < 9; ++i) all.view->selectItemAtIndexPath(MCIndexPath::indexPathForItem(i, 0), i > 0, false);
  EXPECT_EQ(all.controller->statusLine(), "2,000 photos in 2 days, 9 photos selected (25.3 MB)");
  EXPECT_EQ(all.statuses.back(), all.controller->statusLine());

  // A filter lets 89 of 2,000 through: the status says of how many.
  const BrowseCollection some = BrowseCollection::withFacts(manyFacts(2000), {}).filtered([](const fs::path& file) {
    return std::stoi(file.stem().string()) % 22 == 0 && std::stoi(file.stem().string()) < 1000 + 89 * 22;
  });
  ASSERT_EQ(some.numberOfFiles(), 89u);
  Grid filtered(some, 2000);
  EXPECT_EQ(filtered.controller->statusLine(), "89 of 2,000 photos");
  filtered.view->selectItemAtIndexPath(MCIndexPath::indexPathForItem(0, 0), false, false);
  EXPECT_EQ(filtered.controller->statusLine(), "89 of 2,000 photos, 1 photo selected (2.8 MB)");

  // The flat orders have no days to count.
  Grid byName(BrowseCollection::withFacts(manyFacts(3), {BrowseSortKey::Name, false}), 3);
  EXPECT_EQ(byName.controller->statusLine(), "3 photos");
}

TEST(BrowseStatus, FollowsARubberBandWhileItIsDragged) {
  Grid grid(BrowseCollection::withFacts(manyFacts(40), {BrowseSortKey::Name, false}), 40);
  // From the empty margin left of the first card, over the first row and a half.
  const MCRect first = grid.view->contentLayout()->cellFrameAtItemIndex(0);
  const MCPoint from = grid.inWindow({2, MCMinY(first) - 4});
  grid.host->mouseDown(from);
  grid.host->mouseDragged(grid.inWindow({500, MCMaxY(first) - 20}));
  // The status line changes before the button comes up.
  grid.host->addWait(0.05);
  std::size_t seenWhileDragging = 0;
  grid.host->run();
  for (const auto& line : grid.statuses)
    if (line.find("selected") != std::string::npos) ++seenWhileDragging;
  EXPECT_GT(seenWhileDragging, 0u);
  grid.host->mouseUp(grid.inWindow({500, MCMaxY(first) - 20}));
  grid.host->run();
  EXPECT_NE(grid.statuses.back().find("selected"), std::string::npos) << grid.statuses.back();
}

TEST(BrowseThumbnailSize, KeysWheelAndTheirLimits) {
  Grid grid(BrowseCollection::withFacts(manyFacts(300), {}), 300);
  std::vector<double> told;
  grid.view->scaleChanged = [&](double scale) { told.push_back(scale); };
  ASSERT_DOUBLE_EQ(grid.view->scale(), BrowseView::kDefaultScale);
  grid.host->keyPress(U'=', MCEventModifierFlagCommand);
  grid.host->run();
  EXPECT_DOUBLE_EQ(grid.view->scale(), 0.5 * BrowseView::kZoomStep);
  for (int i = 0; i < 10; ++i) grid.host->keyPress(U'+', MCEventModifierFlagCommand);
  grid.host->run();
  EXPECT_DOUBLE_EQ(grid.view->scale(), grid.view->maxScale());
  for (int i = 0; i < 20; ++i) grid.host->keyPress(U'-', MCEventModifierFlagCommand);
  grid.host->run();
  EXPECT_DOUBLE_EQ(grid.view->scale(), grid.view->minScale());
  grid.host->keyPress(U'0', MCEventModifierFlagCommand);
  grid.host->run();
  EXPECT_DOUBLE_EQ(grid.view->scale(), BrowseView::kDefaultScale);
  ASSERT_FALSE(told.empty());
  EXPECT_DOUBLE_EQ(told.back(), BrowseView::kDefaultScale);
  // A plain minus is no zoom.
  grid.host->keyPress(U'-');
  grid.host->run();
  EXPECT_DOUBLE_EQ(grid.view->scale(), BrowseView::kDefaultScale);

  // Ctrl with a wheel notch up grows the thumbnails by a tenth, and does not scroll.
  const MCPoint middle = grid.inWindow({400, 300});
  grid.host->addEvent(MCEvent::scrollWheelEvent(middle, 0, 1, false, MCEventModifierFlagCommand));
  grid.host->run();
  EXPECT_NEAR(grid.view->scale(), 0.55, 1e-9);
  EXPECT_DOUBLE_EQ(grid.scroll->contentView()->bounds().origin.y, 0);

  // A plain notch down scrolls by the visible height to the power two thirds.
  grid.view->zoomTo(BrowseView::kDefaultScale);
  grid.host->scrollWheel(middle, 0, -1, false);
  grid.host->run();
  grid.host->addWait(0.5);  // the wheel scrolls smoothly, over a few frames
  grid.host->run();
  EXPECT_NEAR(grid.scroll->contentView()->bounds().origin.y, std::pow(grid.scroll->contentSize().height, 2.0 / 3.0), 1.0);
}

TEST(BrowseThumbnailSize, APinchGrowsAndShrinksWithinTheLimits) {
  Grid grid(BrowseCollection::withFacts(manyFacts(300), {}), 300);
  std::vector<double> told;
  grid.view->scaleChanged = [&](double scale) { told.push_back(scale); };
  const MCPoint middle = grid.inWindow({400, 300});
  const int64_t before = grid.controller->thumbnailCache()->thumbnailSize();
  // A pinch comes as a run of small magnifications; they add up.
  for (int i = 0; i < 4; ++i) grid.host->magnify(middle, 0.05);
  grid.host->run();
  EXPECT_NEAR(grid.view->scale(), BrowseView::kDefaultScale + 0.2, 1e-9);
  ASSERT_FALSE(told.empty());
  EXPECT_NEAR(told.back(), grid.view->scale(), 1e-9);
  // The thumbnails asked for from now on are of the new size.
  EXPECT_GT(grid.controller->thumbnailCache()->thumbnailSize(), before);
  // Far past either end: held at the largest, then at the smallest size.
  for (int i = 0; i < 40; ++i) grid.host->magnify(middle, 0.1);
  grid.host->run();
  EXPECT_DOUBLE_EQ(grid.view->scale(), grid.view->maxScale());
  for (int i = 0; i < 80; ++i) grid.host->magnify(middle, -0.1);
  grid.host->run();
  EXPECT_DOUBLE_EQ(grid.view->scale(), grid.view->minScale());
  EXPECT_LT(grid.controller->thumbnailCache()->thumbnailSize(), before);
}

TEST(BrowseThumbnailSize, TheSliderSetsItAndTheLinkClearsTheFilter) {
  auto window = MCWindow::create({600, BrowseStatusBar::kHeight});
  auto bar = std::make_shared<BrowseStatusBar>(MCMakeRect(0, 0, 600, BrowseStatusBar::kHeight));
  window->setContentView(bar);
  MCOffscreenHost host(window, 1.0);
  bar->setScaleRange(0.25, 1.0);
  std::vector<double> values;
  int cleared = 0;
  bar->scaleChanged = [&](double value) { values.push_back(value); };
  bar->clearFilter = [&] { ++cleared; };
  const MCRect track = bar->sliderTrackRect();
  auto at = [&](double x) { return bar->convertPointToView({x, MCMidY(track)}, nullptr); };
  host.mouseDown(at(track.origin.x + track.size.width / 3));
  host.mouseDragged(at(MCMaxX(track) + 50));  // past the end: the largest
  host.mouseUp(at(MCMaxX(track) + 50));
  host.run();
  ASSERT_EQ(values.size(), 2u);
  EXPECT_NEAR(values[0], 0.5, 1e-9);
  EXPECT_DOUBLE_EQ(values[1], 1.0);
  EXPECT_DOUBLE_EQ(bar->scale(), 1.0);

  // The link is there only while a filter narrows.
  bar->setText("89 of 2,000 photos");
  host.click(bar->convertPointToView({30, BrowseStatusBar::kHeight / 2}, nullptr));
  host.run();
  EXPECT_EQ(cleared, 0);
  bar->setShowsClearFilter(true);
  const MCRect link = bar->clearFilterRect();
  EXPECT_GT(link.origin.x, 60);
  host.click(bar->convertPointToView({MCMidX(link), MCMidY(link)}, nullptr));
  host.run();
  EXPECT_EQ(cleared, 1);
  EXPECT_EQ(values.size(), 2u);
}

TEST(BrowseThumbnailSize, TheMemoryCacheHoldsAFewScreensAtEverySize) {
  const double budget = BrowseController::kThumbnailBytesInMemory;
  for (uint64_t side : {40u, 90u, 180u, 360u, 720u}) {
    const uint64_t kept = BrowseController::thumbnailsToKeep(side, 0);
    const double each = double(side) * double(side) * 3;
    // Within the budget, and not far below it: small thumbnails are kept by the hundred.
    EXPECT_LE(double(kept) * each, budget) << side;
    EXPECT_GT(double(kept + 1) * each, budget) << side;
  }
  // The default size keeps several screens of a dozen cards.
  EXPECT_GE(BrowseController::thumbnailsToKeep(180, 24), 60u);
  // Many small cards on a large screen: never fewer than twice what the view prefetches.
  EXPECT_EQ(BrowseController::thumbnailsToKeep(180, 600), 1200u);
  EXPECT_EQ(BrowseController::thumbnailsToKeep(720, 30), 60u);
}

TEST(BrowsePreferences, KeepScaleAndOrderAndMistrustTheFile) {
  const fs::path file = fs::temp_directory_path() / ("browse-preferences-" + std::to_string(::getpid())) / "settings.json";
  fs::remove_all(file.parent_path());
  BrowsePreferences preferences(file);
  EXPECT_EQ(preferences.scale(0.25, 1), std::nullopt);
  EXPECT_EQ(preferences.sortOrder(), BrowseSortOrder{});
  preferences.setScale(0.7);
  preferences.setSortOrder({BrowseSortKey::Modified, true});
  const BrowsePreferences again(file);
  EXPECT_DOUBLE_EQ(again.scale(0.25, 1).value_or(0), 0.7);
  EXPECT_EQ(again.sortOrder(), (BrowseSortOrder{BrowseSortKey::Modified, true}));
  // Out of range is brought into it; another kind of value reads as the default.
  EXPECT_DOUBLE_EQ(again.scale(0.25, 0.5).value_or(0), 0.5);
  std::ofstream(file, std::ios::trunc) << R"({"BrowseThumbnailScale": "big", "BrowseSortOrder": "colour", "BrowseSortReversed": 1})";
  EXPECT_EQ(again.scale(0.25, 1), std::nullopt);
  EXPECT_EQ(again.sortOrder(), BrowseSortOrder{});
  fs::remove_all(file.parent_path());
}

TEST(BrowseItemCell, NamesAreCutInTheMiddleSoTheExtensionStays) {
  const MCTextAttributes font{MCFont::systemFontOfSize(12), MCColor::labelColor(), {}, {}, {}};
  const auto width = [&](const std::string& text) { return MCAttributedString(text, font).size().width; };
  EXPECT_EQ(BrowseItemCell::titleFittingWidth("short.jpg", 200, font), "short.jpg");
  EXPECT_EQ(BrowseItemCell::titleFittingWidth("", 200, font), "");
  const std::string name = "IMG_20240321_black-sand-beach-at-dawn-from-the-cliffs.jpg";
  for (double room : {180.0, 120.0, 70.0}) {
    SCOPED_TRACE(room);
    const std::string cut = BrowseItemCell::titleFittingWidth(name, room, font);
    EXPECT_LE(width(cut), room);
    EXPECT_NE(cut.find("…"), std::string::npos) << cut;
    EXPECT_EQ(cut.substr(cut.size() - 4), ".jpg") << cut;
    EXPECT_EQ(cut.substr(0, 3), "IMG") << cut;
    // As much kept as fits: one more character would not.
    EXPECT_GT(width(cut) + width("MM"), room - 1) << cut;
  }
  // No room at all: the ellipsis alone, never a broken character.
  const std::string accented = "été-à-Trouville-près-de-la-mer-éclairée.jpg";
  EXPECT_EQ(BrowseItemCell::titleFittingWidth(accented, 1, font), "…");
  for (double room : {60.0, 90.0, 130.0}) {
    const std::string cut = BrowseItemCell::titleFittingWidth(accented, room, font);
    EXPECT_TRUE(g_utf8_validate(cut.c_str(), -1, nullptr)) << cut;
    EXPECT_EQ(cut.substr(cut.size() - 4), ".jpg") << cut;
  }
}

TEST(BrowseItemCell, LoadingAndFailureAreVisible) {
  // Files that do not exist: every card first loads, then fails.
  Grid grid(BrowseCollection::withFacts(manyFacts(4), {BrowseSortKey::Name, false}), 4);
  const MCRect frame = grid.view->contentLayout()->cellFrameAtItemIndex(0);
  BrowseItemCell card;
  const MCRect image = card.imageRectForBounds(frame);
  // Dark text pixels in the middle of the placeholder: the words over it.
  const auto darkPixelsOverPlaceholder = [&] {
    MCRasterImageRef shot = grid.host->render();
    const MCPoint centre = grid.view->convertPointToView({MCMidX(image), MCMidY(image)}, nullptr);
    const long cx = std::lround(centre.x), cy = std::lround(double(shot->height()) - centre.y);
    std::size_t dark = 0;
    const std::size_t step = shot->bitsPerPixel() / 8;
    for (long y = cy - 8; y < cy + 8; ++y)
      for (long x = cx - 40; x < cx + 40; ++x) dark += shot->row(std::size_t(y))[std::size_t(x) * step] < 140;
    return dark;
  };
  EXPECT_GT(darkPixelsOverPlaceholder(), 20u) << "no Loading… over the placeholder";
  MCMainQueue::runUntil([&] { return grid.controller->pendingCount() == 0; }, std::chrono::seconds(20));
  EXPECT_GT(darkPixelsOverPlaceholder(), 20u) << "no word of the failure";
  EXPECT_EQ(grid.statuses.back(), "4 photos, 4 cannot be read");
}

TEST(BrowseItemInfo, EveryFormatGivesItsDateAndLocation) {
  const fs::path samples = VESPERON_SAMPLES_DIR;
  struct Case {
    const char* file;
    const char* date;
    bool located;
  };
  for (const Case& c : {Case{"market-phone.heic", "2019-05-03 10:30", true}, Case{"harbour-noon-web.webp", "2019-05-02 12:03", true},
                        Case{"beach-clip.mp4", "2022-10-02 09:15", true}, Case{"beach.jpg", "2020-08-14 15:20", true}}) {
    SCOPED_TRACE(c.file);
    const BrowseItemInfo info = BrowseItemInfo::read(samples / c.file);
    EXPECT_EQ(info.captureDate, c.date);
    EXPECT_EQ(info.hasLocation, c.located);
  }
  // An Exif block that leaves out the dimensions: the card still says them.
  EXPECT_EQ(BrowseItemInfo::read(samples / "portrait-window.jpg").pixelSize, (MCSize{480, 600}));
  // Nothing to read: no date, no pin, no crash.
  const BrowseItemInfo none = BrowseItemInfo::read(samples / "no-such-file.jpg");
  EXPECT_EQ(none.captureDate, "");
  EXPECT_FALSE(none.hasLocation);
  BrowseItemInfo odd;
  odd.applyProperties({{kCGImagePropertyExifDictionary, MCValue(MCDictionary{{kCGImagePropertyExifDateTimeOriginal, MCValue("0000:00:00 00:00:00")}})}});
  EXPECT_EQ(odd.captureDate, "");
}

TEST(BrowseLargeFolder, GroupsFillInAsCaptureDaysArrive) {
  std::vector<BrowseFileFacts> facts;
  for (int i = 0; i < 6; ++i) facts.push_back({"/p/" + std::to_string(i) + ".jpg", "", 0, 0, true});
  BrowseCollection collection = BrowseCollection::withFacts(facts, {});
  using V = std::vector<std::string>;
  // Until a day is read, no day is claimed for the file.
  EXPECT_EQ(names(collection), (V{std::string("[") + kPendingDayTitle + "]", "0.jpg", "1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg"}));
  EXPECT_EQ(collection.filesWithPendingDays().size(), 6u);
  EXPECT_TRUE(collection.setCaptureDays({{"/p/4.jpg", "2024-03-20"}, {"/p/1.jpg", "2024-03-21"}, {"/p/9.jpg", "2020-01-01"}}));
  EXPECT_EQ(names(collection), (V{"[2024-03-21]", "1.jpg", "[2024-03-20]", "4.jpg", std::string("[") + kPendingDayTitle + "]",
                                  "0.jpg", "2.jpg", "3.jpg", "5.jpg"}));
  // The same news again changes nothing; a file whose day cannot be read leaves the pending group.
  EXPECT_FALSE(collection.setCaptureDays({{"/p/4.jpg", "2024-03-20"}}));
  EXPECT_TRUE(collection.setCaptureDays({{"/p/0.jpg", ""}, {"/p/2.jpg", "2024-03-20"}, {"/p/3.jpg", "2024-03-20"},
                                         {"/p/5.jpg", "2024-03-21"}}));
  EXPECT_EQ(names(collection), (V{"[2024-03-21]", "1.jpg", "5.jpg", "[2024-03-20]", "2.jpg", "3.jpg", "4.jpg", "[unknown day]", "0.jpg"}));
  EXPECT_TRUE(collection.filesWithPendingDays().empty());
  // A flat order keeps its one group whatever days arrive.
  BrowseCollection flat = BrowseCollection::withFacts(facts, {BrowseSortKey::Name, false});
  EXPECT_FALSE(flat.setCaptureDays({{"/p/1.jpg", "2024-03-21"}}));
  EXPECT_EQ(flat.groups().size(), 1u);
  EXPECT_EQ(flat.sorted({}).groups().front().day, "2024-03-21");
}

TEST(BrowseLargeFolder, TheReaderDeliversEveryDayOnceOnTheMainQueue) {
  const fs::path samples = VESPERON_SAMPLES_DIR;
  std::vector<fs::path> files;
  for (const char* name : {"beach.jpg", "market-phone.heic", "harbour-noon-web.webp", "corrupt-half-downloaded.jpg"})
    for (int copy = 0; copy < 40; ++copy) files.push_back(samples / name);
  std::vector<std::pair<fs::path, std::string>> got;
  std::size_t batches = 0;
  bool finished = false;
  {
    BrowseDayReader reader(
        files,
        [&](BrowseDayReader::Batch batch) {
          EXPECT_TRUE(MCMainQueue::isMainThread());
          ++batches;
          got.insert(got.end(), batch.begin(), batch.end());
        },
        [&] { finished = true; });
    MCMainQueue::runUntil([&] { return finished; }, std::chrono::seconds(30));
  }
  ASSERT_TRUE(finished);
  ASSERT_EQ(got.size(), files.size());
  EXPECT_GE(batches, 2u);  // the first screenful early, the rest after
  for (std::size_t i = 0; i < files.size(); ++i) {
    EXPECT_EQ(got[i].first, files[i]);
    EXPECT_EQ(got[i].second, BrowseCollection::captureDay(files[i], true));
  }
  EXPECT_EQ(got[0].second, "2020-08-14");
  EXPECT_EQ(got[40].second, "2019-05-03");

  // Gone before it finishes: nothing more arrives.
  std::size_t late = 0;
  {
    BrowseDayReader reader(std::vector<fs::path>(2000, samples / "beach.jpg"), [&](BrowseDayReader::Batch) { ++late; });
  }
  MCMainQueue::runUntil([] { return false; }, std::chrono::milliseconds(200));
  EXPECT_EQ(late, 0u);
}

TEST(BrowseLargeFolder, TheQuickDayReadAgreesWithTheFullReading) {
  // The day of every sample, read for the grid's groups, is the day of the DateTimeOriginal the
  // full property dictionary holds, whatever the format and wherever the tag sits.
  const fs::path samples = VESPERON_SAMPLES_DIR;
  std::size_t dated = 0;
  for (const auto& item : fs::directory_iterator(samples)) {
    const fs::path& file = item.path();
    if (!MCIsMediaFileName(file)) continue;
    const auto properties = mediaPropertiesOfFile(file);
    const MCDictionary* exif = properties ? MCDictionaryGetDictionary(*properties, kCGImagePropertyExifDictionary) : nullptr;
    const MCValue* date = exif ? MCDictionaryGet(*exif, kCGImagePropertyExifDateTimeOriginal) : nullptr;
    if (!date || !date->string() || date->string()->size() < 10) continue;
    std::string day = date->string()->substr(0, 10);
    day[4] = day[7] = '-';
    EXPECT_EQ(BrowseCollection::captureDay(file, true), day) << file;
    ++dated;
  }
  EXPECT_GE(dated, 20u);

  // An Exif block cut short, or bytes that only look like one, give the file's own day.
  const fs::path folder = fs::temp_directory_path() / ("browse-days-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  std::ifstream in(samples / "beach.jpg", std::ios::binary);
  const std::string whole((std::istreambuf_iterator<char>(in)), {});
  const std::string exifMarker = "Exif";
  const std::size_t start = whole.find(exifMarker);
  ASSERT_NE(start, std::string::npos);
  std::ofstream(folder / "cut.jpg", std::ios::binary) << whole.substr(0, start + 40);
  std::ofstream(folder / "fake.jpg", std::ios::binary) << std::string("\xFF\xD8\xFF\xE1\xFF\xFF", 6) + "Exif" +
                                                             std::string(2, '\0') + "MM" + std::string(200, '\xFF');
  const std::string today = BrowseCollection::captureDay(folder / "cut.jpg", false);
  ASSERT_EQ(today.size(), 10u);
  EXPECT_EQ(BrowseCollection::captureDay(folder / "cut.jpg", true), today);
  EXPECT_EQ(BrowseCollection::captureDay(folder / "fake.jpg", true), today);
  fs::remove_all(folder);
}

TEST(BrowseLargeFolder, TheSameFilesStayOnScreenAndSelectedAsGroupsChange) {
  std::vector<BrowseFileFacts> facts;
  for (int i = 0; i < 400; ++i) facts.push_back({"/nowhere/" + std::to_string(1000 + i) + ".jpg", "", 0, 0, true});
  BrowseCollection collection = BrowseCollection::withFacts(facts, {});
  Grid grid(collection, 400);
  grid.scroll->contentView()->scrollToPoint({0, 2000});
  grid.scroll->reflectScrolledClipView(grid.scroll->contentView().get());
  grid.view->selectItemAtIndexPath(MCIndexPath::indexPathForItem(150, 0), false, false);
  const BrowseScrollAnchor anchor = grid.controller->scrollAnchor();
  ASSERT_FALSE(anchor.file.empty());
  const std::vector<fs::path> selected = grid.controller->selectedFiles();
  // Days arrive for every other file: groups appear above the anchor's file.
  std::vector<std::pair<fs::path, std::string>> days;
  for (int i = 0; i < 400; i += 2) days.emplace_back(facts[std::size_t(i)].file, i < 200 ? "2024-01-02" : "2024-01-01");
  ASSERT_TRUE(collection.setCaptureDays(days));
  auto next = std::make_shared<BrowseController>(collection, nullptr, nullptr, grid.controller->handOverThumbnailCache());
  grid.controller = next;
  next->setTotalCount(400);
  next->attach(grid.view);
  next->selectFiles(selected);
  next->restoreScrollAnchor(anchor);
  EXPECT_EQ(next->selectedFiles(), selected);
  const auto path = next->indexPathOfFile(anchor.file);
  ASSERT_TRUE(path);
  const MCRect cell = grid.view->contentLayout()->cellFrameAtItemIndex(grid.view->contentLayout()->itemIndexFromIndexPath(*path));
  EXPECT_NEAR(MCMinY(cell) - MCMinY(grid.scroll->documentVisibleRect()), anchor.offset, 0.5);
  // At the top, the grid stays at the top.
  next->restoreScrollAnchor({});
  EXPECT_DOUBLE_EQ(grid.scroll->documentVisibleRect().origin.y, 0);
}

TEST(BrowseFolderMonitor, TellsAdditionsRemovalsRenamesAndRewritesInBatches) {
  const fs::path folder = fs::temp_directory_path() / ("browse-monitor-" + std::to_string(::getpid()));
  fs::remove_all(folder);
  fs::create_directories(folder / "old");
  std::ofstream(folder / "a.jpg") << "a";
  std::vector<std::set<fs::path>> batches;
  BrowseFolderMonitor monitor(folder, [&](std::set<fs::path> changed) { batches.push_back(std::move(changed)); }, 0.1, 1.0);
  EXPECT_EQ(monitor.folderCount(), 2u);
  const auto settle = [&](std::size_t count) {
    MCMainQueue::runUntil([&] { return batches.size() >= count; }, std::chrono::seconds(5));
    return batches.size() >= count;
  };
  // Ten files at once make one batch.
  for (int i = 0; i < 10; ++i) std::ofstream(folder / ("new" + std::to_string(i) + ".jpg")) << i;
  ASSERT_TRUE(settle(1));
  EXPECT_EQ(batches.size(), 1u);
  EXPECT_TRUE(batches[0].count(folder / "new0.jpg"));
  EXPECT_TRUE(batches[0].count(folder / "new9.jpg"));
  fs::rename(folder / "a.jpg", folder / "b.jpg");
  ASSERT_TRUE(settle(2));
  EXPECT_TRUE(batches[1].count(folder / "a.jpg") || batches[1].count(folder / "b.jpg"));
  // A file in a folder made after the watch began is seen as well.
  fs::create_directories(folder / "later");
  ASSERT_TRUE(settle(3));
  std::ofstream(folder / "later" / "c.jpg") << "c";
  ASSERT_TRUE(settle(4));
  EXPECT_TRUE(batches[3].count(folder / "later" / "c.jpg"));
  std::ofstream(folder / "old" / "d.jpg", std::ios::app) << "rewritten";
  ASSERT_TRUE(settle(5));
  EXPECT_TRUE(batches[4].count(folder / "old" / "d.jpg"));
  fs::remove(folder / "b.jpg");
  ASSERT_TRUE(settle(6));
  EXPECT_TRUE(batches[5].count(folder / "b.jpg"));
  fs::remove_all(folder);
}

TEST(BrowseFolderMonitor, ARescanKeepsWhatItKnowsAndReadsWhatChanged) {
  const fs::path folder = fs::temp_directory_path() / ("browse-rescan-" + std::to_string(::getpid()));
  fs::remove_all(folder);
  fs::create_directories(folder);
  const fs::path samples = VESPERON_SAMPLES_DIR;
  fs::copy_file(samples / "beach.jpg", folder / "beach.jpg");
  fs::copy_file(samples / "boat.jpg", folder / "boat.jpg");
  const BrowseCollection first = BrowseCollection::scan(folder);
  ASSERT_EQ(first.numberOfFiles(), 2u);
  fs::remove(folder / "boat.jpg");
  fs::copy_file(samples / "lake.jpg", folder / "lake.jpg");
  // beach.jpg rewritten with another photo: its day must be read again.
  fs::copy_file(samples / "cliffs.jpg", folder / "beach.jpg", fs::copy_options::overwrite_existing);
  fs::last_write_time(folder / "beach.jpg", fs::file_time_type::clock::now() + std::chrono::seconds(5));
  const BrowseCollection second = first.rescanned(folder);
  EXPECT_EQ(second.numberOfFiles(), 2u);
  EXPECT_EQ(second.factsOfFile(folder / "boat.jpg"), nullptr);
  ASSERT_NE(second.factsOfFile(folder / "lake.jpg"), nullptr);
  EXPECT_EQ(second.factsOfFile(folder / "lake.jpg")->captureDay, "2022-10-02");
  EXPECT_EQ(second.factsOfFile(folder / "beach.jpg")->captureDay, "2020-08-16");
  // Above the limit a new file's day waits for the reader.
  std::ofstream(folder / "zz.jpg") << "not yet";
  const BrowseCollection third = second.rescanned(folder, 2);
  EXPECT_TRUE(third.factsOfFile(folder / "zz.jpg")->dayPending);
  EXPECT_FALSE(third.factsOfFile(folder / "lake.jpg")->dayPending);
  fs::remove_all(folder);
}

TEST(BrowsePlacesSidebar, ListsThePlacesOnceAndOpensTheOneClicked) {
  const fs::path root = fs::temp_directory_path() / ("browse-places-" + std::to_string(::getpid()));
  fs::remove_all(root);
  for (const char* name : {"Pictures", "trip", "garden", "card/DCIM"}) fs::create_directories(root / name);
  // Remembered in the order opened: the last opened comes first; a folder gone is left out, and
  // the Pictures folder is not listed twice.
  const auto places = BrowsePlacesSidebar::placesFrom(
      root / "Pictures", {root / "trip", root / "gone", root / "Pictures", root / "garden", root / "trip/"},
      {root / "card", root / "system"}, [&](const fs::path& volume) { return fs::is_directory(volume / "DCIM"); });
  std::vector<std::string> listed;
  for (const auto& place : places) listed.push_back(place.section + ":" + place.title);
  EXPECT_EQ(listed, (std::vector<std::string>{"Places:Pictures", "Recent:trip", "Recent:garden", "Volumes:card"}));
  // Only volumes mounted for a person are looked into.
  EXPECT_FALSE(BrowsePlacesSidebar::volumeHasPhotos(root / "card"));
  EXPECT_FALSE(BrowsePlacesSidebar::volumeHasPhotos("/"));

  auto window = MCWindow::create({BrowsePlacesSidebar::kWidth, 400});
  auto sidebar = std::make_shared<BrowsePlacesSidebar>(MCMakeRect(0, 0, BrowsePlacesSidebar::kWidth, 400));
  window->setContentView(sidebar);
  MCOffscreenHost host(window, 1.0);
  sidebar->setPlaces(places);
  std::vector<fs::path> chosen;
  sidebar->placeChosen = [&](const fs::path& folder) { chosen.push_back(folder); };
  // Rows lie below one another, a section title before each section.
  EXPECT_GT(MCMinY(sidebar->rectOfPlace(1)), MCMaxY(sidebar->rectOfPlace(0)) + 10);
  EXPECT_DOUBLE_EQ(MCMinY(sidebar->rectOfPlace(2)), MCMaxY(sidebar->rectOfPlace(1)));
  for (std::size_t i : {2u, 3u, 0u}) {
    const MCRect row = sidebar->rectOfPlace(i);
    host.click(sidebar->convertPointToView({MCMidX(row), MCMidY(row)}, nullptr));
  }
  host.click(sidebar->convertPointToView({20, 390}, nullptr));  // below the rows: nothing
  host.run();
  EXPECT_EQ(chosen, (std::vector<fs::path>{root / "garden", root / "card", root / "Pictures"}));
  fs::remove_all(root);
}

TEST(BrowsePalette, EveryTextReadsAtFourAndAHalfToOneInBothSchemes) {
  // The ratio itself, on WCAG's own examples: black on white is 21, a colour on itself 1.
  EXPECT_NEAR(BrowsePalette::contrast(MCColor::blackColor(), MCColor::whiteColor()), 21.0, 1e-9);
  EXPECT_NEAR(BrowsePalette::contrast(MCColor::colorWithHex(0x777777), MCColor::whiteColor()), 4.48, 0.01);
  EXPECT_NEAR(BrowsePalette::contrast(MCColor::colorWithHex(0x3584E4), MCColor::colorWithHex(0x3584E4)), 1.0, 1e-9);
  for (const BrowsePalette& p : {BrowsePalette::light(), BrowsePalette::darkPalette()}) {
    SCOPED_TRACE(p.dark ? "dark" : "light");
    const std::vector<std::pair<MCColor, MCColor>> pairs = {
        {p.text, p.card},          {p.secondaryText, p.card}, {p.text, p.background},
        {p.secondaryText, p.background}, {p.barText, p.bar}, {p.link, p.bar},
        {p.text, p.bar},           {p.placeholderText, p.placeholder}, {p.text, p.placeholder}};
    for (const auto& [text, ground] : pairs)
      EXPECT_GE(BrowsePalette::contrast(BrowsePalette::over(text, ground), ground), 4.5);
    // The notice (Delete's Undo …) floats over cards and background alike: its text and action
    // read on it over either, and it stands apart from the cards under it.
    for (const MCColor& under : {p.background, p.card}) {
      const MCColor notice = BrowsePalette::over(p.noticeBackground, under);
      EXPECT_GE(BrowsePalette::contrast(p.noticeText, notice), 4.5);
      EXPECT_GE(BrowsePalette::contrast(p.noticeAction, notice), 4.5);
      EXPECT_GE(BrowsePalette::contrast(notice, p.card), 1.5);
    }
  }

  // The notice draws in the scheme it is given.
  for (const BrowsePalette& p : {BrowsePalette::light(), BrowsePalette::darkPalette()}) {
    auto window = MCWindow::create({BrowseNotice::kWidth, BrowseNotice::kHeight});
    auto notice = std::make_shared<BrowseNotice>(MCMakeRect(0, 0, BrowseNotice::kWidth, BrowseNotice::kHeight));
    window->setContentView(notice);
    MCOffscreenHost host(window, 1.0);
    notice->setPalette(p);
    notice->show("3 photos moved to the trash", "Undo", [] {});
    MCRasterImageRef shot = host.render();
    ASSERT_TRUE(shot);
    // Between the text and the action, away from the rounded corners: the notice's own colour.
    const uint8_t* inside = shot->row(4) + 300 * (shot->bitsPerPixel() / 8);
    const MCColor expected = BrowsePalette::over(p.noticeBackground, MCColor::whiteColor());
    for (int c = 0; c < 3; ++c) {
      const double want = c == 0 ? expected.redComponent() : c == 1 ? expected.greenComponent() : expected.blueComponent();
      EXPECT_NEAR(inside[c] / 255.0, want, 0.06) << (p.dark ? "dark" : "light") << " channel " << c;
    }
  }
  EXPECT_TRUE(BrowsePalette::named("dark")->dark);
  EXPECT_FALSE(BrowsePalette::named("light")->dark);
  EXPECT_FALSE(BrowsePalette::named("Dark"));

  // The grid draws its background in the scheme it is given.
  Grid grid(BrowseCollection::withFacts(manyFacts(2), {BrowseSortKey::Name, false}), 2);
  grid.view->palette = BrowsePalette::darkPalette();
  grid.controller->attach(grid.view);
  MCRasterImageRef shot = grid.host->render();
  const uint8_t* corner = shot->row(shot->height() - 5) + (shot->width() - 30) * (shot->bitsPerPixel() / 8);
  EXPECT_LT(corner[0], 60);
  EXPECT_LT(corner[1], 60);
}
