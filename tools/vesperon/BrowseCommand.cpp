// vesperon browse: every image under a folder as a grid of thumbnails in a window, grouped by
// capture day. With --render it draws the first screen offscreen into a PNG instead, once the
// visible thumbnails have arrived.
//
// The folders opened are remembered between runs (MCSandboxHelper); without a folder named the
// last one opens again, or, when it is gone, the one before it, with a word on why. "Open Folder…" (the title bar's button, Ctrl+O) shows another; a right
// click on the selection offers "Open With" and "Move to Trash" (also the Delete key, with Undo in
// a notice). The filter bar (the title bar's button, Ctrl+F) narrows the grid by name, camera
// model, capture date, file size, ISO and f-number. The sort menu (the title bar's button,
// --sort, --reverse) and the thumbnail size (Ctrl+wheel, Ctrl+plus/minus/0, the status bar's
// slider) are remembered; F9 shows the places sidebar; the folder is watched for changes.

#include "browse/BrowseController.h"
#include "browse/BrowseDayReader.h"
#include "browse/BrowsePlacesWatcher.h"
#include "browse/BrowseFilter.h"
#include "browse/BrowseFilterBar.h"
#include "browse/BrowseFolderMonitor.h"
#include "browse/BrowseNotice.h"
#include "browse/BrowsePlacesSidebar.h"
#include "browse/BrowseTrash.h"
#include "browse/BrowsePreferences.h"
#include "browse/BrowseStatusBar.h"
#include "browse/BrowseViewer.h"

#include <vesperon/browser/MCBrowserViewItemCardCell.h>
#include <vesperon/catalogue/MCCatalogue.h>
#include <vesperon/controls/MCNavigationController.h>
#include <vesperon/files/MCMenuExtensions.h>
#include <vesperon/files/MCFileManagerExtensions.h>
#include <vesperon/files/MCSandboxHelper.h>
#include <vesperon/files/MCWorkspaceExtensions.h>
#include <vesperon/toolkit/MCFilePanel.h>
#include "VesperonCommand.h"

#include <hosts/gtk/MCGtkDialogPresenter.h>
#include <hosts/gtk/MCGtkPreviewPresenter.h>
#include <hosts/gtk/MCGtkWindowHost.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCOffscreenHost.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCTimer.h>

#include <glib.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <optional>
#include <thread>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

struct BrowseSettings {
  fs::path folder;
  fs::path render;
  fs::path open;             // a photo to show in the viewer at start
  std::optional<double> zoom;  // the viewer's zoom in percent of the photo's pixels; none: fit
  bool zoomGiven = false;
  double slideshowInterval = 4;  // seconds
  MCSize size{1024, 720};
  bool report = false;
  std::optional<BrowseSortKey> sort;  // none: the order remembered
  std::optional<BrowsePalette> palette;  // none: as the desktop prefers
  bool reverse = false;
};

/// The grid page: the browser in its scroll view, and the status line.
class GridPage : public MCViewController {
 public:
  GridPage(MCViewRef content, std::weak_ptr<MCView> focus) : content_(std::move(content)), focus_(std::move(focus)) {}
  void loadView() override { setView(content_); }
  /// Back from a viewer: the keys go to the grid again.
  void viewControllerDidAppear(bool) override {
    if (auto focus = focus_.lock())
      if (focus->window()) focus->window()->makeFirstResponder(focus.get());
  }

 private:
  MCViewRef content_;
  std::weak_ptr<MCView> focus_;
};

/// The window of the program and what it shows. `load` puts a folder's photos behind the view;
/// the file actions (open a folder, trash, open with) work on the folder loaded last.
struct Browser : std::enable_shared_from_this<Browser> {
  BrowseSettings settings;
  std::shared_ptr<MCWindow> window;
  std::shared_ptr<BrowseView> view;
  std::shared_ptr<BrowseStatusBar> status;
  std::shared_ptr<BrowseNotice> notice;
  std::shared_ptr<BrowsePlacesSidebar> sidebar;
  MCViewRef grid;  // lays out the sidebar, the grid, the status bar and the notice
  BrowsePreferences preferences;
  /// Marks the filter's button while a filter narrows the grid (set by the window's host).
  std::function<void(bool)> filterMarked;
  /// Turns the filter bar's rows off (set by the window's host); without it the filter's own.
  std::function<void()> clearFilterRows;
  /// Gives the grid, the status bar and the sidebar these colours.
  void setPalette(const BrowsePalette& palette);
  BrowseSortOrder order;
  std::shared_ptr<BrowseController> controller;
  std::shared_ptr<MCNavigationController> navigation;
  fs::path folder;
  std::weak_ptr<BrowseViewerPage> viewer;  // the viewer page while it shows
  BrowseCollection all;  // the folder's photos; the grid shows those the filter lets through
  BrowseFilter filter;
  std::jthread propertyReader;
  std::unique_ptr<BrowseDayReader> dayReader;  // a large folder's capture days, read after it shows
  bool readingDays = false;                     // until the reader delivered its last batch
  /// The catalogue of `vesperon index`, when the user keeps one: a catalogued folder's capture days
  /// and the filter's properties come from it instead of the files.
  std::shared_ptr<MCCatalogue> catalogue;
  std::jthread catalogueChecker;  // the folder checked against the catalogue's rows it shows
  bool catalogueChecked = false;  // its answer arrived
  std::unique_ptr<BrowseFolderMonitor> monitor;  // files added, removed, renamed, rewritten
  bool regroupWaiting = false;  // days arrived while the viewer showed

  void report(const std::string& line) const {
    if (!settings.report) return;
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
  }
  void load(const fs::path& newFolder);
  /// Shows what the filter lets through; reads the folder's properties first when it needs them.
  void applyFilter();
  /// `keepPlace`: the same files stay on screen and selected, as the groups change under them.
  void show(BrowseCollection collection, bool keepPlace = false);
  /// Reads the capture days still unknown, in the background.
  /// Gives pending files the capture days the catalogue holds for them, when the folder is catalogued.
  void takeCataloguedDays();
  /// A catalogued folder too large for its days to be read before it shows: its files, sizes and
  /// days as the catalogue holds them, so that it shows without walking it first; the folder is
  /// walked in the background and read again if it differs. False when the catalogue cannot.
  bool takeCataloguedFolder();
  void readPendingDays();
  /// Files of the folder changed on disk: the grid shows the folder as it is now.
  void folderChanged();
  /// Capture days arrived: the grid takes its new groups where it stands.
  void regroup();
  void openFolder();
  /// Shows `file` in the viewer; false when the grid does not show it.
  bool openFile(const fs::path& file);
  /// Sets the viewer's zoom: fit for none, else percent of the photo's pixels, centred.
  void zoomViewer(std::optional<double> percent);
  void trashSelection();
  void showContextMenu(MCPoint pointInView);
  /// Shows the photos in another order, and remembers it.
  void sortBy(const BrowseSortOrder& newOrder);
  /// The menu of orders, at a point of the grid view.
  void showSortMenu(MCPoint pointInView);
  /// Turns every filter row off.
  void clearFilter();
  /// Shows the places sidebar, its places read anew, or hides it.
  void toggleSidebar();
  /// Reads the places anew while the sidebar shows: a volume came or went, a folder was opened.
  void refreshPlaces();
  std::unique_ptr<BrowsePlacesWatcher> placesWatcher;
};

/// Remembers `folder` as the one opened last, through the folders the sandbox helper keeps.
void rememberFolder(const fs::path& folder) {
  if (auto grant = MCSandboxURL::create(fs::absolute(folder).lexically_normal()))
    MCSandboxHelper::sharedInstance()->addSandboxURLs({grant});
}

void Browser::load(const fs::path& newFolder) {
  folder = newFolder;
  window->setTitle("Vesperon — " + folder.string());
  if (propertyReader.joinable()) {
    propertyReader.request_stop();
    propertyReader.join();
  }
  filter.forgetProperties();
  dayReader.reset();
  regroupWaiting = false;
  if (catalogueChecker.joinable()) {
    catalogueChecker.request_stop();
    catalogueChecker.join();
  }
  catalogueChecked = false;
  if (!takeCataloguedFolder()) {
    all = BrowseCollection::scan(folder, order);
    takeCataloguedDays();
  }
  readPendingDays();
  std::weak_ptr<Browser> weak = weak_from_this();
  monitor = std::make_unique<BrowseFolderMonitor>(folder, [weak](std::set<fs::path>) {
    if (auto b = weak.lock()) b->folderChanged();
  });
  if (filter.predicate()) applyFilter();
  else show(all);
  report("folder " + folder.string() + " " + std::to_string(all.numberOfFiles()) + " photos");
  refreshPlaces();  // the folder is among the remembered ones now, and the one marked
}

void Browser::applyFilter() {
  const MCPredicateRef predicate = filter.predicate();
  if (!predicate) {
    show(all);
    report("filter " + std::to_string(all.numberOfFiles()) + " photos: none");
    return;
  }
  if (!filter.hasProperties()) {
    if (propertyReader.joinable()) return;  // applied once they are read
    std::vector<fs::path> files;
    for (const auto& group : all.groups()) files.insert(files.end(), group.files.begin(), group.files.end());
    std::weak_ptr<Browser> self = weak_from_this();
    const fs::path reading = folder;
    propertyReader = std::jthread([self, files, reading, catalogue = catalogue](std::stop_token stop) {
      auto properties = BrowseFilter::readProperties(files, stop, catalogue.get(), reading);
      if (stop.stop_requested()) return;
      MCMainQueue::async([self, reading, properties = std::move(properties)]() mutable {
        auto b = self.lock();
        if (!b || b->folder != reading) return;
        b->filter.setProperties(std::move(properties));
        b->applyFilter();
      });
    });
    return;
  }
  BrowseCollection shown = all.filtered([&](const fs::path& file) { return filter.passes(*predicate, file); });
  report("filter " + std::to_string(shown.numberOfFiles()) + " photos: " + predicate->predicateFormat());
  show(std::move(shown));
}

void Browser::takeCataloguedDays() {
  if (!catalogue || all.filesWithPendingDays().empty()) return;
  try {
    if (!catalogue->rootContaining(folder)) return;
    // Days as of the catalogue's last scan: a file changed since then is refreshed when the
    // folder's monitor sees it, or by the next `vesperon index`.
    std::vector<std::pair<fs::path, std::string>> days;
    for (MCCatalogueEntry& entry : catalogue->entriesByCaptureDate(nullptr, folder))
      if (!entry.day.empty()) days.emplace_back(std::move(entry.path), std::move(entry.day));
    all.setCaptureDays(days);
    report("catalogue days " + std::to_string(days.size()));
  } catch (const std::exception& error) {
    report(std::string("catalogue unusable: ") + error.what());
  }
}

bool Browser::takeCataloguedFolder() {
  constexpr std::size_t kDaysReadBeforeShowing = 5000;  // BrowseCollection::scan's own limit
  if (!catalogue) return false;
  std::vector<BrowseFileFacts> facts;
  auto identities = std::make_shared<std::vector<BrowseCollection::FileIdentity>>();
  try {
    if (!catalogue->rootContaining(folder)) return false;
    std::vector<MCCatalogueEntry> entries = catalogue->entries(nullptr, folder);
    if (entries.size() <= kDaysReadBeforeShowing) return false;  // the scan reads its days itself
    facts.reserve(entries.size());
    identities->reserve(entries.size());
    for (MCCatalogueEntry& entry : entries) {
      identities->push_back({entry.path.native(), uint64_t(entry.size), std::time_t(entry.modificationTime)});
      facts.push_back({std::move(entry.path), std::move(entry.day), std::time_t(entry.modificationTime), uint64_t(entry.size), false});
    }
  } catch (const std::exception& error) {
    report(std::string("catalogue unusable: ") + error.what());
    return false;
  }
  report("catalogue days " + std::to_string(facts.size()));
  std::weak_ptr<Browser> self = weak_from_this();
  catalogueChecker = std::jthread([self, reading = folder, identities](std::stop_token stop) {
    // Behind the first screen's thumbnails, not beside them.
    ::setpriority(PRIO_PROCESS, ::gettid(), 10);
    const auto matches = BrowseCollection::folderHolds(*identities, reading, stop);
    if (!matches) return;
    MCMainQueue::async([self, reading, same = *matches] {
      auto b = self.lock();
      if (!b || b->folder != reading) return;
      b->report(std::string("catalogue checked: ") + (same ? "the folder is as catalogued" : "the folder changed since"));
      // Files added, removed or rewritten since the catalogue's last scan: the folder as it is.
      if (!same) b->folderChanged();
      b->catalogueChecked = true;
    });
  });
  all = BrowseCollection::withFacts(std::move(facts), order);
  return true;
}

void Browser::readPendingDays() {
  dayReader.reset();
  readingDays = false;
  auto pending = all.filesWithPendingDays();
  if (pending.empty()) return;
  readingDays = true;
  std::weak_ptr<Browser> self = weak_from_this();
  dayReader = std::make_unique<BrowseDayReader>(
      std::move(pending),
      [self](BrowseDayReader::Batch batch) {
        auto b = self.lock();
        if (!b) return;
        const bool changed = b->all.setCaptureDays(batch);
        b->report("days " + std::to_string(batch.size()));
        if (changed) b->regroup();
      },
      [self] {
        auto b = self.lock();
        if (!b) return;
        b->readingDays = false;
        b->report("days read");
      });
}

void Browser::folderChanged() {
  std::error_code ec;
  if (!fs::is_directory(folder, ec)) {
    // Gone (deleted, unmounted, renamed): say so, and keep the window for another folder.
    dayReader.reset();
    readingDays = false;
    monitor.reset();
    all = BrowseCollection::withFacts({}, order);
    show(all);
    status->setText("The folder " + folder.string() + " is gone. Open another with Ctrl+O.");
    std::weak_ptr<Browser> self = weak_from_this();
    notice->show("The folder " + folder.filename().string() + " is gone", "Open Another…", [self] {
      if (auto b = self.lock()) b->openFolder();
    }, 3600);
    report("folder-gone " + folder.string());
    return;
  }
  all = all.rescanned(folder);
  readPendingDays();
  report("folder-changed " + std::to_string(all.numberOfFiles()) + " photos");
  if (filter.predicate()) {
    // The new files' properties are not known yet: read again, then filter.
    if (propertyReader.joinable()) {
      propertyReader.request_stop();
      propertyReader.join();
    }
    filter.forgetProperties();
    applyFilter();
    return;
  }
  regroup();
}

void Browser::regroup() {
  if (!viewer.expired()) {
    regroupWaiting = true;  // not under the viewer's feet; when it closes
    return;
  }
  regroupWaiting = false;
  if (filter.predicate()) {
    if (!filter.hasProperties()) return;  // applied with the new groups once they are read
    const MCPredicateRef predicate = filter.predicate();
    show(all.filtered([&](const fs::path& file) { return filter.passes(*predicate, file); }), true);
  } else {
    show(all, true);
  }
}

void Browser::show(BrowseCollection collection, bool keepPlace) {
  BrowseScrollAnchor anchor;
  std::vector<fs::path> selected;
  if (keepPlace && controller) {
    anchor = controller->scrollAnchor();
    selected = controller->selectedFiles();
  }
  if (navigation) navigation->popToRootViewControllerAnimated(false);
  std::weak_ptr<BrowseStatusBar> weakStatus = status;
  std::weak_ptr<Browser> self = weak_from_this();
  auto thumbnails = controller ? controller->handOverThumbnailCache() : nullptr;
  controller = std::make_shared<BrowseController>(
      std::move(collection),
      [self](const std::string& line) {
        if (auto b = self.lock()) b->report(line);
      },
      [weakStatus, self](const std::string& line) {
        if (auto bar = weakStatus.lock()) {
          if (line == bar->text()) return;
          bar->setText(line);
          if (auto b = self.lock()) b->report("status " + line);
        }
      },
      std::move(thumbnails));
  controller->setTotalCount(all.numberOfFiles());
  const bool narrowed = filter.predicate() != nullptr;
  status->setShowsClearFilter(narrowed);
  if (filterMarked) filterMarked(narrowed);
  if (narrowed && window->host()) {
    // Where the status bar's link lies (window coordinates, y down), for a test to aim at.
    const MCRect link = status->clearFilterRect();
    const MCPoint centre = status->convertPointToView({MCMidX(link), MCMidY(link)}, nullptr);
    report("clear-filter-link " + std::to_string(std::lround(centre.x)) + " " +
           std::to_string(std::lround(window->contentSize().height - centre.y)));
  }
  // A double-click or Return opens the photo in a viewer page; leaving it gives the keys back.
  auto open = [self](const MCIndexPath& path) {
    auto b = self.lock();
    if (!b || !b->navigation || !b->controller) return;
    std::weak_ptr<BrowseController> controller = b->controller;
    auto page = std::make_shared<BrowseViewerPage>(
        b->controller->collection().file(path.group, path.item), b->controller->thumbnailAt(path),
        [self](const std::string& line) {
          if (auto b2 = self.lock()) b2->report(line);
        },
        [controller, path](long) {
          if (auto c = controller.lock()) c->itemChanged(path);
        });
    // Next and previous walk the grid as it shows now: its order, its filter.
    BrowseViewerSequence sequence;
    std::size_t position = 0;
    const auto& groups = b->controller->collection().groups();
    for (std::size_t g = 0; g < groups.size(); ++g)
      for (std::size_t i = 0; i < groups[g].files.size(); ++i) {
        if (g == path.group && i == path.item) position = sequence.paths.size();
        sequence.paths.push_back(MCIndexPath::indexPathForItem(i, g));
      }
    sequence.file = [controller](const MCIndexPath& at) {
      auto c = controller.lock();
      return c ? c->collection().file(at.group, at.item) : fs::path();
    };
    sequence.thumbnail = [controller](const MCIndexPath& at) {
      auto c = controller.lock();
      return c ? c->thumbnailAt(at) : nullptr;
    };
    const std::size_t total = sequence.paths.size();
    sequence.shown = [self, total](const MCIndexPath& at, std::size_t place) {
      auto b2 = self.lock();
      if (!b2 || !b2->controller) return;
      // The grid's selection follows, so that Escape comes back to the photo shown last.
      b2->view->selectItemAtIndexPath(at, false, true);
      b2->window->setTitle(b2->controller->collection().file(at.group, at.item).filename().string() + " — " +
                           std::to_string(place + 1) + " of " + std::to_string(total));
    };
    sequence.closed = [self] {
      auto b2 = self.lock();
      if (!b2) return;
      b2->window->setTitle("Vesperon — " + b2->folder.string());
      if (b2->regroupWaiting)
        MCMainQueue::async([self] {
          if (auto b3 = self.lock(); b3 && b3->regroupWaiting) b3->regroup();
        });
    };
    page->setSequence(std::move(sequence), position);
    page->setSlideshowInterval(b->settings.slideshowInterval);
    b->viewer = page;
    b->navigation->pushViewController(page, false);
    b->window->setTitle(b->controller->collection().file(path.group, path.item).filename().string() + " — " +
                        std::to_string(position + 1) + " of " + std::to_string(total));
  };
  controller->openItem = open;
  view->openItem = open;
  controller->showContextMenu = [self](MCPoint point) {
    if (auto b = self.lock()) b->showContextMenu(point);
  };
  view->trashSelection = [self] {
    if (auto b = self.lock()) b->trashSelection();
  };
  view->openFolder = [self] {
    if (auto b = self.lock()) b->openFolder();
  };
  view->toggleSidebar = [self] {
    if (auto b = self.lock()) b->toggleSidebar();
  };
  if (window->host()) {
    controller->attach(view);
    if (keepPlace) {
      controller->selectFiles(selected);
      controller->restoreScrollAnchor(anchor);
    }
  }
}

bool Browser::openFile(const fs::path& file) {
  if (!controller || !controller->openItem) return false;
  std::error_code ec;
  const fs::path wanted = fs::weakly_canonical(file, ec);
  const auto& groups = controller->collection().groups();
  for (std::size_t g = 0; g < groups.size(); ++g)
    for (std::size_t i = 0; i < groups[g].files.size(); ++i) {
      std::error_code ignored;
      if (fs::weakly_canonical(groups[g].files[i], ignored) != wanted) continue;
      const MCIndexPath path = MCIndexPath::indexPathForItem(i, g);
      view->selectItemAtIndexPath(path, false, true);
      controller->openItem(path);
      return true;
    }
  return false;
}

void Browser::zoomViewer(std::optional<double> percent) {
  auto page = viewer.lock();
  if (!page || !page->zoomView()) return;
  const auto& zoom = page->zoomView();
  const MCPoint centre = {MCMidX(zoom->bounds()), MCMidY(zoom->bounds())};
  page->zoomToFit();
  if (percent) zoom->zoomTo(page->oneToOneZoom() * *percent / 100, centre);
}

void Browser::openFolder() {
  std::optional<fs::path> chosen;
  MCSandboxHelper::sharedInstance()->runModalOpenPanel(
      [&](MCFilePanel& panel) {
        panel.title = "Open Folder";
        panel.prompt = "Open";
        panel.canChooseFiles = false;
        panel.canChooseDirectories = true;
        panel.directoryURL = folder.parent_path();
      },
      [&](MCFilePanel& panel, long result) {
        if (result == MCFilePanel::OKButton && !panel.URLs.empty()) chosen = panel.URL();
        return std::vector<fs::path>{};  // remembered below, as the folder opened last
      });
  if (!chosen) return;
  rememberFolder(*chosen);
  load(*chosen);
  report("opened " + chosen->string());
}

void Browser::trashSelection() {
  const std::vector<fs::path> files = controller->selectedFiles();
  if (files.empty()) return;
  // The selection moves on to the photo after the last one trashed, or else the one before the
  // first, in the grid's order.
  std::vector<fs::path> order;
  for (const auto& group : controller->collection().groups()) order.insert(order.end(), group.files.begin(), group.files.end());
  const std::unordered_set<std::string> chosen = [&] {
    std::unordered_set<std::string> set;
    for (const auto& file : files) set.insert(file.native());
    return set;
  }();
  fs::path next;
  std::size_t last = 0, first = order.size();
  for (std::size_t i = 0; i < order.size(); ++i)
    if (chosen.count(order[i].native())) {
      last = i;
      first = std::min(first, i);
    }
  for (std::size_t i = last + 1; i < order.size() && next.empty(); ++i)
    if (!chosen.count(order[i].native())) next = order[i];
  for (std::size_t i = first; i-- > 0 && next.empty();)
    if (!chosen.count(order[i].native())) next = order[i];

  std::vector<BrowseTrash::Item> trashed;
  std::unordered_set<std::string> gone;
  for (const fs::path& file : files) {
    std::string error;
    if (auto item = BrowseTrash::trash(file, &error)) {
      trashed.push_back(*item);
      gone.insert(file.native());
      report("trashed " + file.string());
    } else {
      report("not trashed " + file.string() + ": " + error);
    }
  }
  if (trashed.empty()) return;
  all = all.filtered([&](const fs::path& file) { return !gone.count(file.native()); });
  regroup();
  if (auto path = controller->indexPathOfFile(next)) view->selectItemAtIndexPath(*path, false, true);
  const std::string what = trashed.size() == 1 ? "“" + trashed.front().original.filename().string() + "” moved to the trash"
                                               : BrowseController::formatCount(trashed.size()) + " photos moved to the trash";
  std::weak_ptr<Browser> self = weak_from_this();
  const fs::path from = folder;
  notice->show(what, "Undo", [self, trashed, from] {
    auto b = self.lock();
    if (!b) return;
    std::vector<fs::path> restored;
    for (const auto& item : trashed) {
      std::string error;
      if (BrowseTrash::restore(item, &error)) restored.push_back(item.original);
      else b->report("not restored " + item.original.string() + ": " + error);
    }
    b->report("restored " + std::to_string(restored.size()));
    if (restored.empty() || b->folder != from) return;
    b->load(from);
    if (b->controller) {
      b->controller->selectFiles(restored);
      if (auto path = b->controller->indexPathOfFile(restored.front())) b->view->scrollToIndex(b->view->contentLayout()->itemIndexFromIndexPath(*path));
    }
  });
  report("notice " + what);
  if (window->host()) {
    // Where its Undo lies (window coordinates, y down), for a test to aim at.
    const MCRect action = notice->actionRect();
    const MCPoint centre = notice->convertPointToView({MCMidX(action), MCMidY(action)}, nullptr);
    report("notice-action " + std::to_string(std::lround(centre.x)) + " " +
           std::to_string(std::lround(window->contentSize().height - centre.y)));
  }
}

void Browser::showContextMenu(MCPoint pointInView) {
  const std::vector<fs::path> files = controller->selectedFiles();
  if (files.empty()) return;
  MCMenu menu;
  MCMenuItem openWith("Open With");
  openWith.submenu = std::make_shared<MCMenu>("Open With");
  buildOpenWithMenuForURLs(*openWith.submenu, files, nullptr, "openWith:");
  menu.addItem(openWith);
  menu.addSeparator();
  menu.addItem(MCMenuItem("Move to Trash", "moveToTrash:"));
  std::string titles;
  for (const MCMenuItem& item : openWith.submenu->items()) titles += " | " + (item.separator ? "-" : item.title);
  report("menu Open With" + titles + " | Move to Trash");
  std::weak_ptr<Browser> self = weak_from_this();
  window->popUpContextMenu(menu, pointInView, view.get(), [self, files](const MCMenuItem& item) {
    auto b = self.lock();
    if (!b) return;
    if (item.action == "moveToTrash:") {
      b->trashSelection();
    } else if (item.action == "openWith:") {
      std::string error;
      if (openURLsWithApplication(files, item.representedObject, &error))
        b->report("opened " + std::to_string(files.size()) + " with " + item.representedObject);
      else
        b->report("not opened with " + item.representedObject + ": " + error);
    }
  });
}

void Browser::sortBy(const BrowseSortOrder& newOrder) {
  order = newOrder;
  preferences.setSortOrder(order);
  all = all.sorted(order);
  report("sort " + std::string(BrowseSortOrder::nameOfKey(order.key)) + (order.reversed ? " reversed" : ""));
  if (filter.predicate()) applyFilter();
  else show(all);
}

void Browser::showSortMenu(MCPoint pointInView) {
  MCMenu menu;
  for (BrowseSortKey key : {BrowseSortKey::Date, BrowseSortKey::Name, BrowseSortKey::Modified, BrowseSortKey::Size}) {
    MCMenuItem item(BrowseSortOrder{key, false}.title(), "sortBy:", long(key));
    if (key == order.key) item.iconName = "object-select-symbolic";
    menu.addItem(item);
  }
  menu.addSeparator();
  MCMenuItem reversed("Reversed", "sortReversed:");
  if (order.reversed) reversed.iconName = "object-select-symbolic";
  menu.addItem(reversed);
  std::weak_ptr<Browser> self = weak_from_this();
  window->popUpContextMenu(menu, pointInView, view.get(), [self](const MCMenuItem& item) {
    auto b = self.lock();
    if (!b) return;
    BrowseSortOrder next = b->order;
    if (item.action == "sortBy:") next.key = BrowseSortKey(item.tag);
    else if (item.action == "sortReversed:") next.reversed = !next.reversed;
    else return;
    b->sortBy(next);
  });
}

void Browser::setPalette(const BrowsePalette& palette) {
  view->palette = palette;
  status->setPalette(palette);
  sidebar->setPalette(palette);
  notice->setPalette(palette);
  if (controller && window->host()) controller->attach(view);  // the cells take the new colours
  view->setNeedsDisplay(true);
}

void Browser::refreshPlaces() {
  if (sidebar->isHidden()) return;
  {
    std::vector<fs::path> remembered;
    for (const auto& url : MCSandboxHelper::sharedInstance()->sandboxURLs()) remembered.push_back(url->securityScopedURL());
    const char* pictures = g_get_user_special_dir(G_USER_DIRECTORY_PICTURES);
    sidebar->setPlaces(BrowsePlacesSidebar::placesFrom(pictures ? fs::path(pictures) : fs::path(), remembered,
                                                       mountedVolumeURLs(), &BrowsePlacesSidebar::volumeHasPhotos));
    sidebar->setCurrentFolder(folder);
    std::string titles;
    for (const auto& place : sidebar->places()) titles += " | " + place.section + ": " + place.folder.string();
    report("places" + titles);
  }
  sidebar->setNeedsDisplay(true);
  if (window->host())
    for (std::size_t i = 0; i < sidebar->places().size(); ++i) {
      // Where each place's row lies (window coordinates, y down), for a test to aim at.
      const MCRect row = sidebar->rectOfPlace(i);
      const MCPoint centre = sidebar->convertPointToView({MCMidX(row), MCMidY(row)}, nullptr);
      report("place " + std::to_string(i) + " " + std::to_string(std::lround(centre.x)) + " " +
             std::to_string(std::lround(window->contentSize().height - centre.y)));
    }
}

void Browser::toggleSidebar() {
  const bool show = sidebar->isHidden();
  if (show && !placesWatcher) {
    // Watched from the first time the sidebar shows: GIO's volume monitor costs a moment to start.
    std::weak_ptr<Browser> self = weak_from_this();
    placesWatcher = std::make_unique<BrowsePlacesWatcher>([self] {
      if (auto b = self.lock()) b->refreshPlaces();
    });
  }
  sidebar->setHidden(!show);
  grid->resizeSubviewsWithOldSize(grid->bounds().size);
  grid->setNeedsDisplay(true);
  refreshPlaces();
  report(std::string("sidebar ") + (show ? "shown" : "hidden"));
}

void Browser::clearFilter() {
  report("filter cleared");
  if (clearFilterRows) {
    clearFilterRows();  // the bar's ticks follow, and each row it turns off applies
    return;
  }
  filter.clear();
  applyFilter();
}

std::shared_ptr<Browser> makeBrowser(const BrowseSettings& settings, const fs::path& folder) {
  auto b = std::make_shared<Browser>();
  b->settings = settings;
  b->order = b->preferences.sortOrder();
  if (settings.sort) b->order = {*settings.sort, settings.reverse};
  else if (settings.reverse) b->order.reversed = true;
  if (settings.sort || settings.reverse) b->preferences.setSortOrder(b->order);
  const MCSize size = settings.size;
  // Only a catalogue the user made with `vesperon index` is used; browse never makes one.
  std::error_code ec;
  if (const fs::path file = MCCatalogue::defaultLocation(); fs::is_regular_file(file, ec))
    b->catalogue = MCCatalogue::open(file);
  b->window = MCWindow::create(size);
  b->status = std::make_shared<BrowseStatusBar>(MCMakeRect(0, 0, size.width, BrowseStatusBar::kHeight));
  b->notice = std::make_shared<BrowseNotice>(MCMakeRect(0, 0, BrowseNotice::kWidth, BrowseNotice::kHeight));
  b->notice->setHidden(true);
  b->sidebar = std::make_shared<BrowsePlacesSidebar>(MCMakeRect(0, 0, BrowsePlacesSidebar::kWidth, size.height));
  b->sidebar->setHidden(true);
  {
    std::weak_ptr<Browser> weak = b;
    b->sidebar->placeChosen = [weak](const fs::path& place) {
      auto browser = weak.lock();
      if (!browser || place == browser->folder) return;
      rememberFolder(place);
      browser->load(place);
      browser->sidebar->setCurrentFolder(place);
      browser->report("opened " + place.string());
    };
  }
  auto scrollView = std::make_shared<MCScrollView>(
      MCMakeRect(0, BrowseStatusBar::kHeight, size.width, size.height - BrowseStatusBar::kHeight));
  b->view = std::make_shared<BrowseView>(MCMakeRect(0, 0, size.width, size.height - BrowseStatusBar::kHeight));
  scrollView->setDocumentView(b->view);
  // The thumbnail size kept from the last run; the slider and the view follow each other.
  b->view->setScale(b->preferences.scale(b->view->minScale(), b->view->maxScale()).value_or(BrowseView::kDefaultScale));
  b->status->setScaleRange(b->view->minScale(), b->view->maxScale());
  b->status->setScale(b->view->scale());
  {
    std::weak_ptr<Browser> weak = b;
    b->view->scaleChanged = [weak](double scale) {
      auto browser = weak.lock();
      if (!browser) return;
      browser->status->setScale(scale);
      browser->preferences.setScale(scale);
      char line[32];
      std::snprintf(line, sizeof line, "scale %.3f", scale);
      browser->report(line);
    };
    b->status->scaleChanged = [weak](double scale) {
      if (auto browser = weak.lock()) browser->view->zoomTo(scale);
    };
    b->status->clearFilter = [weak] {
      if (auto browser = weak.lock()) browser->clearFilter();
    };
  }
  // The status line along the bottom, the grid above it. Laid out from the size each time rather
  // than by autoresizing, which loses the status line's height when the page passes through a
  // smaller size on its way into the window.
  class Grid : public MCView {
   public:
    Grid(MCRect frame, MCViewRef scroll, MCViewRef status, MCViewRef notice, MCViewRef sidebar)
        : MCView(frame), scroll_(std::move(scroll)), status_(std::move(status)), notice_(std::move(notice)),
          sidebar_(std::move(sidebar)) {
      addSubview(sidebar_);
      addSubview(scroll_);
      addSubview(status_);
      addSubview(notice_);  // last: over the grid
    }
    void resizeSubviewsWithOldSize(MCSize) override {
      const MCSize size = bounds().size;
      status_->setFrame(MCMakeRect(0, 0, size.width, BrowseStatusBar::kHeight));
      // The sidebar, when it shows, takes its width from the grid's left.
      const double side = sidebar_->isHidden() ? 0 : std::min(BrowsePlacesSidebar::kWidth, size.width / 2);
      const double height = std::max(0.0, size.height - BrowseStatusBar::kHeight);
      sidebar_->setFrame(MCMakeRect(0, BrowseStatusBar::kHeight, side, height));
      scroll_->setFrame(MCMakeRect(side, BrowseStatusBar::kHeight, size.width - side, height));
      // The notice floats above the status line, in the middle.
      const double width = std::min(BrowseNotice::kWidth, std::max(0.0, size.width - 24));
      notice_->setFrame(MCMakeRect((size.width - width) / 2, BrowseStatusBar::kHeight + 14, width, BrowseNotice::kHeight));
    }

   private:
    MCViewRef scroll_, status_, notice_, sidebar_;
  };
  auto grid = std::make_shared<Grid>(MCMakeRect(0, 0, size.width, size.height), scrollView, b->status, b->notice,
                                     b->sidebar);
  b->grid = grid;
  b->navigation = MCNavigationController::create(std::make_shared<GridPage>(grid, b->view));
  // Light or dark: as asked, else as the desktop prefers.
  const BrowsePalette palette = settings.palette ? *settings.palette
                                : BrowsePalette::desktopPrefersDark().value_or(false) ? BrowsePalette::darkPalette()
                                                                                      : BrowsePalette::light();
  b->view->palette = palette;
  b->status->setPalette(palette);
  b->sidebar->setPalette(palette);
  b->notice->setPalette(palette);
  b->window->setContentView(b->navigation->view());
  b->window->makeFirstResponder(b->view.get());
  b->load(folder);
  return b;
}

int renderOffscreen(const BrowseSettings& settings, const fs::path& folder) {
  auto b = makeBrowser(settings, folder);
  MCOffscreenHost host(b->window, 1.0);
  b->controller->attach(b->view);
  // The first screen, once its groups are final (every capture day read) and what it shows has
  // arrived (or failed).
  MCMainQueue::runUntil([&] { return !b->readingDays && b->controller->pendingCount() == 0; },
                        std::chrono::seconds(60));
  std::string said = b->controller->statusLine();
  if (settings.report) {
    // When the first screen was complete, for a benchmark to take from its own start.
    timespec now {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    std::printf("first-screen %lld.%09ld\n", static_cast<long long>(now.tv_sec), now.tv_nsec);
  }
  if (!settings.open.empty()) {
    // The viewer, once the sharpest image for it arrived (or could not be had).
    if (!b->openFile(settings.open)) {
      std::fprintf(stderr, "vesperon browse: %s is not among the photos of %s\n", settings.open.c_str(), folder.c_str());
      return 1;
    }
    auto page = b->viewer.lock();
    // The photo's size is known once its decode at fit arrived; the zoom is worked out from it on
    // the page laid out at the window's size, and then the pixels for that zoom are awaited.
    MCMainQueue::runUntil([&] { return !page || page->isLoaded(); }, std::chrono::seconds(60));
    host.render();
    b->zoomViewer(settings.zoom);
    MCMainQueue::runUntil([&] { return !page || (page->isSettled() && page->hasProperties()); },
                          std::chrono::seconds(60));
    if (!page || page->hasFailed()) {
      std::fprintf(stderr, "vesperon browse: %s cannot be decoded; the viewer shows its thumbnail\n",
                   settings.open.c_str());
    } else if (!page->isSharp()) {
      std::fprintf(stderr, "vesperon browse: %s cannot be decoded at this zoom; the viewer shows it at fit\n",
                   settings.open.c_str());
    }
    if (page) {
      said = page->file().filename().string() + ", " + page->info();
      for (const auto& [label, value] : page->infoPanel()->rows()) said += "\n  " + label + ": " + value;
      if (!page->infoPanel()->mapURI().empty()) said += "\n  Map: " + page->infoPanel()->mapURI();
    }
  }
  if (!host.writePNG(settings.render)) {
    std::fprintf(stderr, "vesperon browse: cannot write %s\n", settings.render.c_str());
    return 1;
  }
  std::printf("%s: %s\n", settings.render.c_str(), said.c_str());
  // Said as soon as it is drawn: what remains is writing the shared cache's new entries.
  std::fflush(stdout);
  if (settings.report && b->catalogueChecker.joinable()) {
    // After the screen: what the check of the catalogue's rows against the folder found.
    MCMainQueue::runUntil([&] { return b->catalogueChecked; }, std::chrono::seconds(60));
  }
  return 0;
}

int runBrowse(const BrowseSettings& settings) {
  // The folders opened before come back first; with no folder named, the last one opens again.
  auto helper = MCSandboxHelper::sharedInstance();
  helper->restore();
  fs::path folder = settings.folder;
  // A settings file that could not be read was set aside, and the folders it remembered with it.
  std::string setAside;
  if (const auto& aside = helper->restoredStoreSetAside())
    setAside = "the settings file " + helper->storeURL().string() + " that remembers the folders opened before " +
               aside->reason + "; " +
               (aside->movedTo.empty() ? "it could not be moved aside" : "it was moved to " + aside->movedTo.string());
  if (folder.empty()) {
    // The folder opened last is the store's last entry; when it is gone, say so rather than
    // pretend nothing was ever opened, and fall back to the one opened before it.
    std::string lost;
    if (const auto& entries = helper->restoredEntries(); !entries.empty() && !entries.back().failure.empty())
      lost = "the folder opened last, " + entries.back().path.string() + ", cannot be opened: " + entries.back().failure;
    if (helper->sandboxURLs().empty()) {
      const std::string why = !setAside.empty() ? setAside : !lost.empty() ? lost : "none opened before";
      std::fprintf(stderr, "vesperon browse: no folder given, and %s\n", why.c_str());
      return 1;
    }
    folder = helper->sandboxURLs().back()->securityScopedURL();
    if (!lost.empty()) std::fprintf(stderr, "vesperon browse: %s; opening %s, opened before it\n", lost.c_str(), folder.c_str());
  } else if (!setAside.empty()) {
    std::fprintf(stderr, "vesperon browse: %s\n", setAside.c_str());
  }
  std::error_code ec;
  if (!fs::is_directory(folder, ec)) {
    std::fprintf(stderr, "vesperon browse: %s is not a folder\n", folder.c_str());
    return 1;
  }
  if (!settings.render.empty()) return renderOffscreen(settings, folder);

  rememberFolder(folder);
  auto b = makeBrowser(settings, folder);
  std::shared_ptr<MCGtkWindowHost> host;
  std::shared_ptr<MCTimer> announcer;
  std::unique_ptr<BrowseFilterBar> filterBar;
  const int status = MCGtkRunApplication("org.vesperon.Browse", "vesperon", [&](GtkApplication* application) {
    host = MCGtkWindowHost::create(b->window);
    // GTK's own widgets (the title bar, the filter bar) in the grid's scheme.
    if (b->view->palette.dark) MCGtkSetPrefersDarkTheme(true);
    else if (!settings.palette && MCGtkPrefersDarkTheme()) b->setPalette(BrowsePalette::darkPalette());
    std::weak_ptr<Browser> weak = b;
    host->addTitleBarButton("document-open-symbolic", "Open Folder… (Ctrl+O)", [weak] {
      if (auto browser = weak.lock()) browser->openFolder();
    });
    host->addTitleBarButton("view-sort-descending-symbolic", "Sort", [weak] {
      auto browser = weak.lock();
      if (!browser) return;
      const MCRect visible = browser->view->visibleRect();
      browser->showSortMenu({MCMaxX(visible) - 40, MCMinY(visible) + 4});
    });
    host->addTitleBarButton("edit-find-symbolic", "Filter (Ctrl+F)", [weak, &filterBar] {
      if (filterBar) filterBar->toggle();
    });
    filterBar = std::make_unique<BrowseFilterBar>(
        b->filter,
        [weak] {
          if (auto browser = weak.lock()) browser->applyFilter();
        },
        host->widget(), [weak](const std::string& line) {
          if (auto browser = weak.lock()) browser->report(line);
        });
    b->clearFilterRows = [&filterBar] {
      if (filterBar) filterBar->clearRows();
    };
    b->view->toggleFilter = [&filterBar] {
      if (filterBar) filterBar->toggle();
    };
    host->setTopAccessoryWidget(filterBar->widget());
    b->filterMarked = [weak, &host](bool marked) {
      auto browser = weak.lock();
      if (!browser || !host) return;
      host->setTitleBarButtonMarked("edit-find-symbolic", marked);
      browser->report(std::string("filter-button ") + (marked ? "marked" : "plain"));
    };
    host->presentInNewWindow(application);
    helper->setDialogPresenter(std::make_shared<MCGtkDialogPresenter>(host->toplevel()));
    MCPreviewPanel::sharedPreviewPanel()->setPresenter(std::make_shared<MCGtkPreviewPresenter>());
    b->controller->attach(b->view);
    if (!settings.open.empty() && !b->openFile(settings.open))
      std::fprintf(stderr, "vesperon browse: %s is not among the photos of %s\n", settings.open.c_str(), folder.c_str());
    // Tell a watching test where the grid's top left is, once the window shows.
    announcer = MCTimer::scheduledTimer(0.05, true, [&](MCTimer& timer) {
      if (!host->isShown()) return;
      timer.invalidate();
      if (!settings.report) return;
      double x = 0, y = 0;
      host->widgetOriginInSurface(x, y);
      std::printf("ready %ld %ld\n", std::lround(x), std::lround(y));
      // The thumbnail size and the slider's track (its ends and height, window coordinates, y down).
      const MCRect track = b->status->sliderTrackRect();
      const MCPoint start = b->status->convertPointToView({MCMinX(track), MCMidY(track)}, nullptr);
      const MCPoint end = b->status->convertPointToView({MCMaxX(track), MCMidY(track)}, nullptr);
      std::printf("scale %.3f\nslider %ld %ld %ld\n", b->view->scale(), std::lround(start.x), std::lround(end.x),
                  std::lround(b->window->contentSize().height - start.y));
      // Where the first cells' images are, in the window's own coordinates (y down), to aim at.
      const MCSize content = b->window->contentSize();
      for (uint64_t i = 0; i < std::min<uint64_t>(6, b->view->numberOfItems()); ++i) {
        MCBrowserViewItemCardCell card;
        const MCRect square = card.imageRectForBounds(b->view->contentLayout()->cellFrameAtItemIndex(i));
        const MCPoint centre = b->view->convertPointToView({MCMidX(square), MCMidY(square)}, nullptr);
        const auto path = b->view->contentLayout()->indexPathFromItemIndex(i);
        const std::string file = path ? b->controller->collection().file(path->group, path->item).filename().string() : "";
        std::printf("cell %llu %ld %ld %s\n", static_cast<unsigned long long>(i), std::lround(centre.x),
                    std::lround(content.height - centre.y), file.c_str());
      }
      std::fflush(stdout);
    });
  });
  announcer.reset();
  b->filterMarked = nullptr;
  b->clearFilterRows = nullptr;
  b->view->toggleFilter = nullptr;
  filterBar.reset();
  helper->setDialogPresenter(nullptr);
  MCPreviewPanel::sharedPreviewPanel()->setPresenter(nullptr);
  host.reset();
  return status;
}

std::function<int()> defineBrowse(CLI::App& command) {
  auto settings = std::make_shared<BrowseSettings>();
  command.add_option("DIR", settings->folder,
                     "the folder whose images, at any depth, are shown (default: the folder opened last)");
  command.add_option("--render", settings->render,
                     "draw the first screen offscreen into this PNG, once its thumbnails arrived, instead of a window");
  command.add_option_function<std::string>(
      "--size",
      [settings](const std::string& text) {
        unsigned width = 0, height = 0;
        char x = 0, extra = 0;
        if (std::sscanf(text.c_str(), "%u%c%u%c", &width, &x, &height, &extra) != 3 || (x != 'x' && x != 'X') ||
            width < 64 || height < 64 || width > 8192 || height > 8192)
          throw CLI::ValidationError("--size", "'" + text + "' is not WIDTHxHEIGHT, each 64 to 8192");
        settings->size = MCMakeSize(width, height);
      },
      "the window's size in points, as WIDTHxHEIGHT (default 1024x720)");
  command.add_option("--open", settings->open, "show this photo (one under DIR) in the viewer at start");
  command.add_option_function<std::string>(
      "--zoom",
      [settings](const std::string& text) {
        settings->zoomGiven = true;
        if (text == "fit") {
          settings->zoom.reset();
          return;
        }
        if (text == "1:1") {
          settings->zoom = 100;
          return;
        }
        double percent = 0;
        char extra = 0, more = 0;
        const int read = std::sscanf(text.c_str(), "%lf%c%c", &percent, &extra, &more);
        if (!(read == 1 || (read == 2 && extra == '%')) || !(percent >= 1 && percent <= 6400))
          throw CLI::ValidationError("--zoom", "'" + text + "' is not fit, 1:1 or a percentage from 1 to 6400");
        settings->zoom = percent;
      },
      "the viewer's zoom with --open: fit (default), 1:1, or a percentage of the photo's pixels");
  command.add_option("--slideshow-interval", settings->slideshowInterval,
                     "seconds each photo shows in the viewer's slideshow (F5)")
      ->check(CLI::Range(0.2, 3600.0));
  command.add_option_function<std::string>(
      "--sort",
      [settings](const std::string& text) {
        settings->sort = BrowseSortOrder::keyNamed(text);
        if (!settings->sort) throw CLI::ValidationError("--sort", "'" + text + "' is not date, name, modified or size");
      },
      "the order of the photos: date (capture date, by day; the default), name, modified or size; remembered");
  command.add_option_function<std::string>(
      "--color-scheme",
      [settings](const std::string& text) {
        settings->palette = BrowsePalette::named(text);
        if (!settings->palette) throw CLI::ValidationError("--color-scheme", "'" + text + "' is not light or dark");
      },
      "light or dark colours (default: as the desktop prefers)");
  command.add_flag("--reverse", settings->reverse, "the order reversed (oldest, Z to A, smallest first); remembered");
  command.add_flag("--report", settings->report,
                   "print each thing that happens (selections, the viewer, copies, drags), a line each");
  return [settings] {
    if (settings->zoomGiven && settings->open.empty()) {
      std::fprintf(stderr, "vesperon browse: --zoom needs --open\n");
      return 2;
    }
    return runBrowse(*settings);
  };
}

}  // namespace

VESPERON_COMMAND("browse", "show every image under DIR as thumbnails grouped by day, in a window", defineBrowse)
