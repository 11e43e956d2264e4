#pragma once
// What `vesperon browse` puts behind its browser view: the data source over the collection, the
// delegate (selection, zoom, double-click), the prefetch source that drives MCThumbnailCache, and
// the thumbnail cache's delegate that redraws an item when its thumbnail arrives.

#include "BrowseCells.h"
#include "BrowseCollection.h"
#include "BrowseItemCell.h"
#include "BrowsePalette.h"

#include <vesperon/browser/MCBrowserView.h>
#include <vesperon/browser/MCBrowserViewItemCardCell.h>
#include <vesperon/pipeline/MCThumbnailCache.h>
#include <vesperon/toolkit/MCTimer.h>

#include <functional>
#include <optional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>

/// What a card says about one file, read once when the file first shows: from its Exif block
/// and the XMP sidecar beside it.
struct BrowseItemInfo {
  std::string captureDate;  // "2024-05-01 10:00", or "" when unknown
  MCSize pixelSize{0, 0};
  long rating = 0;           // XMP rating, 0 to 5
  long label = 0;            // colour label, 1 to 7, or 0
  bool hasLocation = false;  // GPS coordinates in the Exif block
  bool isVideo = false;
  static BrowseItemInfo read(const std::filesystem::path& file);
  /// The date line, pixel size and location out of such a dictionary.
  void applyProperties(const MCDictionary& properties);
};

/// The browser view of the program: Ctrl with the wheel zooms, as a pinch and Ctrl+plus, Ctrl+minus
/// and Ctrl+0 (back to the default size) do; a wheel notch scrolls as far as in GTK's own scrolled
/// windows; Return opens the first selected photo; Delete moves the selected files to the trash;
/// Ctrl+O opens a folder; Ctrl+F shows or hides the filter bar; F9 the places sidebar.
class BrowseView : public MCBrowserView {
 public:
  using MCBrowserView::MCBrowserView;
  static constexpr double kDefaultScale = 0.5;
  /// How far one Ctrl+plus or Ctrl+minus changes the scale: a factor.
  static constexpr double kZoomStep = 1.2;
  /// The distance of one wheel notch over a visible length, as GTK's scrolled windows take it.
  static double wheelStep(double visibleLength);
  /// Sets the scale, kept between the smallest and the largest.
  void zoomTo(double scale);
  /// Told of every change of the scale, by whatever means.
  std::function<void(double)> scaleChanged;
  /// Told when the selection drawn changed in count: a rubber band shows its selection as it is
  /// dragged, and tells the delegate only when it is let go.
  std::function<void()> selectionDrawn;
  void drawRect(const MCRect& dirty) override;
  /// The colours of the grid and its cards (light by default); the controller attached next
  /// takes them for its cells.
  BrowsePalette palette = BrowsePalette::light();
  std::function<void(const MCIndexPath&)> openItem;
  std::function<void()> trashSelection;
  std::function<void()> openFolder;
  std::function<void()> toggleFilter;
  std::function<void()> toggleSidebar;
  void scrollWheel(const MCEvent& event) override;
  void keyDown(const MCEvent& event) override;

 private:
  uint64_t drawnSelectionCount_ = 0;
};

/// Where the grid is scrolled to, told by a file rather than by a position, so that it can be
/// found again after the groups change.
struct BrowseScrollAnchor {
  std::filesystem::path file;  ///< the first file on screen; empty at the top
  double offset = 0;           ///< how far its cell's top lies below the visible top
};

class BrowseController : public MCBrowserViewDataSource,
                         public MCBrowserViewDelegate,
                         public MCBrowserViewPrefetching,
                         public MCThumbnailCacheDelegate,
                         public std::enable_shared_from_this<BrowseController> {
 public:
  /// About how many bytes of thumbnails the memory cache holds: a few screens' worth, so that
  /// scrolling through a large folder keeps memory flat; what falls out comes back from the shared
  /// cache on disk without a decode.
  static constexpr double kThumbnailBytesInMemory = 6 << 20;
  /// How many thumbnails of this larger side the memory cache keeps: what the byte budget holds,
  /// and never fewer than twice what the view prefetches, so that a screen of small thumbnails
  /// does not push out its own.
  static uint64_t thumbnailsToKeep(uint64_t pixelSize, uint64_t prefetched);
  /// `report` hears one line for each thing a person did (double-clicks, selection changes);
  /// `status` the status line whenever it changes.
  /// `thumbnails`, when given, is the cache of the controller this one follows over the same
  /// folder (another filter, a reload), so that the thumbnails it holds show at once.
  BrowseController(BrowseCollection collection, std::function<void(const std::string&)> report,
                   std::function<void(const std::string&)> status,
                   std::shared_ptr<MCThumbnailCache> thumbnails = nullptr);

  /// Makes the view's cells, sets this as its data source, delegate and prefetch source, and loads.
  void attach(const std::shared_ptr<BrowseView>& view);
  const std::shared_ptr<MCThumbnailCache>& thumbnailCache() const { return cache_; }
  /// Cancels what this controller still waits for and gives its thumbnail cache to the next one.
  std::shared_ptr<MCThumbnailCache> handOverThumbnailCache();
  const BrowseCollection& collection() const { return collection_; }
  /// Items asked for and not yet answered.
  std::size_t pendingCount() const { return pending_.size(); }
  /// How many photos the folder holds, of which the collection shows those a filter let through.
  void setTotalCount(std::size_t count) { totalCount_ = count; }
  /// "2,000 photos in 49 days", "89 of 2,000 photos" while a filter narrows, then the selection:
  /// "9 photos selected (25.3 MB)".
  std::string statusLine() const;
  /// A count with thousands separated by commas: "20,000".
  static std::string formatCount(std::size_t count);
  /// A size in bytes as people read it: "980 bytes", "25.3 MB" (decimal units, as GNOME's).
  static std::string formatByteCount(uint64_t bytes);
  /// Opens a photo in the viewer (set by the program); a double-click calls it.
  std::function<void(const MCIndexPath&)> openItem;
  /// Shows the context menu of the selection (set by the program); a right-click on a cell calls
  /// it with the point in the view, once the cell is selected.
  std::function<void(MCPoint pointInView)> showContextMenu;
  /// The files of the selected items, in order.
  std::vector<std::filesystem::path> selectedFiles() const;
  /// The index path of a file, if the collection shows it.
  std::optional<MCIndexPath> indexPathOfFile(const std::filesystem::path& file) const;
  /// Where the view is scrolled to now.
  BrowseScrollAnchor scrollAnchor() const;
  /// Scrolls the view so that the anchor's file lies where it lay (or to the top).
  void restoreScrollAnchor(const BrowseScrollAnchor& anchor);
  /// Selects these files, those the collection shows.
  void selectFiles(const std::vector<std::filesystem::path>& files);
  /// The thumbnail shown for an item now, if any.
  MCRasterImageRef thumbnailAt(const MCIndexPath& indexPath);
  /// Forgets what was read of an item's file (its label changed) and redraws it.
  void itemChanged(const MCIndexPath& indexPath);

  // MCBrowserViewDataSource
  uint64_t numberOfGroupsInBrowserView(MCBrowserView& view) override;
  uint64_t numberOfItemsInGroup(MCBrowserView& view, uint64_t group) override;
  void updateItemCell(MCBrowserView& view, MCBrowserViewCell& cell, const MCIndexPath& indexPath) override;
  std::string accessibilityNameForItem(MCBrowserView& view, const MCIndexPath& indexPath) override;
  void updateHeaderCell(MCBrowserView& view, MCBrowserViewCell& cell, uint64_t group) override;
  // MCBrowserViewDelegate
  bool respondsTo(MCBrowserViewDelegateOperation operation) const override;
  void browserViewScaleDidChange(MCBrowserView& view) override;
  void browserViewSelectionDidChange(MCBrowserView& view) override;
  void cellWasDoubleClickedAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath, const MCEvent& event) override;
  void cellWasRightClickedAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath, const MCEvent& event) override;
  std::shared_ptr<MCPasteboardWriting> pasteboardWriterForItemAtIndexPath(MCBrowserView& view,
                                                                          const MCIndexPath& indexPath) override;
  void draggingSessionEndedAtPoint(MCBrowserView& view, MCDraggingSession& session, MCPoint screenPoint,
                                   uint64_t operation) override;
  void writeItemsAtIndexPaths(MCBrowserView& view, const std::vector<MCIndexPath>& indexPaths,
                              MCPasteboard& pasteboard) override;
  std::shared_ptr<MCPreviewItem> previewItemAtIndexPath(MCBrowserView& view, const MCIndexPath& indexPath) override;
  // MCBrowserViewPrefetching
  void prefetchItemsAtIndexPaths(MCBrowserView& view, const std::vector<MCIndexPath>& indexPaths) override;
  void cancelPrefetchingForItemsAtIndexPaths(MCBrowserView& view, const std::vector<MCIndexPath>& indexPaths) override;
  // MCThumbnailCacheDelegate
  std::shared_ptr<MCThumbnailDescriptorProvider> descriptorProviderAtIndexPath(MCThumbnailCache& cache,
                                                                               const MCIndexPath& indexPath) override;
  void didFetchThumbnail(MCThumbnailCache& cache, const std::shared_ptr<const MCThumbnail>& thumbnail,
                         const MCIndexPath& indexPath) override;

 private:
  uint64_t thumbnailPixelSize() const;
  std::shared_ptr<MCThumbnailDescriptorProvider> provider(const MCIndexPath& indexPath) const;

  BrowseCollection collection_;
  std::size_t totalCount_ = 0;
  std::function<void(const std::string&)> report_, status_;
  std::weak_ptr<BrowseView> view_;
  std::shared_ptr<MCThumbnailCache> cache_;
  const BrowseItemInfo& info(const MCIndexPath& indexPath);

  std::shared_ptr<BrowseItemCell> itemCell_ = std::make_shared<BrowseItemCell>();
  std::shared_ptr<BrowseHeaderCell> headerCell_ = std::make_shared<BrowseHeaderCell>();
  std::unordered_set<MCIndexPath> pending_, failed_;
  std::unordered_map<MCIndexPath, BrowseItemInfo> infos_;
  std::shared_ptr<MCTimer> trimTimer_;
  /// Gives the memory freed by decoding back to the system, a moment after the last thumbnail
  /// asked for arrived.
  void scheduleTrim();
};
