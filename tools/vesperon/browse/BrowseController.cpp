#include <malloc.h>
#include "BrowseController.h"

#include <vesperon/catalogue/MCSearchableProperties.h>

#include "BrowseSharedThumbnailStrategy.h"

#include <utility>

#include <vesperon/controls/MCColorLabelMapper.h>
#include <vesperon/drawing/MCBadgeFactory.h>
#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/metadata/MCCGImageMetadataReader.h>
#include <vesperon/metadata/MCExif.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCScrollView.h>
#include <vesperon/toolkit/MCWindow.h>


#include <vesperon/toolkit/MCPasteboard.h>
#include <vesperon/toolkit/MCPreviewPanel.h>

#include <algorithm>
#include <cmath>

namespace fs = std::filesystem;

namespace {

class Item : public MCThumbnailDescriptorProvider {
 public:
  /// `version` tells a rewritten file from what it was, so that its old thumbnail is not shown.
  Item(const fs::path& file, uint64_t size, std::string version = {})
      : descriptor_(std::make_shared<MCImageDescriptor>(file)), version_(std::move(version)) {
    // A folder scan knows no image sizes: saying the image is at least the size wanted makes the
    // reader take an embedded thumbnail only when it is that large.
    descriptor_->estimatedPixelSize = size;
  }
  MCAnyHashable resourceID() const override { return descriptor_->fileURL.string() + version_; }
  std::shared_ptr<const MCImageDescriptor> resourceDescriptor() const override { return descriptor_; }

 private:
  std::shared_ptr<MCImageDescriptor> descriptor_;
  std::string version_;
};

}  // namespace

BrowseItemInfo BrowseItemInfo::read(const fs::path& file) {
  BrowseItemInfo info;
  const std::string extension = file.extension().string();
  if (extension.size() > 1)
    if (auto type = MCTypeCreatePreferredIdentifierForFilenameExtension(extension.substr(1)))
      info.isVideo = MCIsMovieType(*type);
  // The dictionary `vesperon info` prints and `find` filters.
  info.applyProperties(MCMediaPropertiesOfFile(file).value_or(MCDictionary{}));
  // An Exif block without the image's dimensions (many editors drop them): the plug-in knows.
  if (info.pixelSize.width <= 0)
    if (auto read = MCImageReader::metadataFromImageAtURL(file, std::nullopt)) info.applyProperties(*read);
  info.label = MCColorLabelMapper::labelOfFile(file);
  if (auto sidecar = MCCGImageMetadataReader::extractMetadataFromXMPSidecarForImageAtURL(file)) {
    if (auto iptc = sidecar->find(kCGImagePropertyIPTCDictionary); iptc != sidecar->end())
      if (const MCDictionary* group = iptc->second.dictionary()) {
        if (auto rating = group->find(kCGImagePropertyIPTCStarRating); rating != group->end())
          info.rating = std::clamp<long>(long(rating->second.doubleValue().value_or(0)), 0, 5);
      }
  }
  return info;
}

void BrowseItemInfo::applyProperties(const MCDictionary& properties) {
  if (const MCDictionary* exif = MCDictionaryGetDictionary(properties, kCGImagePropertyExifDictionary)) {
    const MCValue* date = MCDictionaryGet(*exif, kCGImagePropertyExifDateTimeOriginal);
    if (date && date->string() && date->string()->size() >= 16 && (*date->string())[4] == ':' &&
        (*date->string())[7] == ':' && date->string()->compare(0, 10, "0000:00:00") != 0) {
      std::string text = date->string()->substr(0, 16);
      text[4] = text[7] = '-';
      captureDate = text;
    }
    const MCValue* width = MCDictionaryGet(*exif, kCGImagePropertyExifPixelXDimension);
    const MCValue* height = MCDictionaryGet(*exif, kCGImagePropertyExifPixelYDimension);
    if (width && height && width->doubleValue().value_or(0) > 0 && height->doubleValue().value_or(0) > 0)
      pixelSize = {*width->doubleValue(), *height->doubleValue()};
  }
  if (pixelSize.width <= 0) {
    const MCValue* width = MCDictionaryGet(properties, kCGImagePropertyPixelWidth);
    const MCValue* height = MCDictionaryGet(properties, kCGImagePropertyPixelHeight);
    if (width && height && width->doubleValue().value_or(0) > 0 && height->doubleValue().value_or(0) > 0)
      pixelSize = {*width->doubleValue(), *height->doubleValue()};
  }
  if (const MCDictionary* gps = MCDictionaryGetDictionary(properties, kCGImagePropertyGPSDictionary)) {
    const MCValue* latitude = MCDictionaryGet(*gps, kCGImagePropertyGPSLatitude);
    const MCValue* longitude = MCDictionaryGet(*gps, kCGImagePropertyGPSLongitude);
    hasLocation = latitude && longitude && latitude->doubleValue() && longitude->doubleValue();
  }
}

void BrowseView::keyDown(const MCEvent& event) {
  const std::u32string& keys = event.charactersIgnoringModifiers();
  if (!keys.empty() && keys.front() == MCCarriageReturnCharacter && openItem) {
    if (auto path = firstSelectedIndexPath()) openItem(*path);
    return;
  }
  if (!keys.empty() && (keys.front() == MCDeleteCharacter || keys.front() == MCDeleteFunctionKey) && trashSelection) {
    trashSelection();
    return;
  }
  if (!keys.empty() && (keys.front() == U'o' || keys.front() == U'O') &&
      (event.modifierFlags() & MCEventModifierFlagCommand) && openFolder) {
    openFolder();
    return;
  }
  if (!keys.empty() && keys.front() == char32_t(MCF1FunctionKey + 8) && toggleSidebar) {  // F9
    toggleSidebar();
    return;
  }
  if (!keys.empty() && (event.modifierFlags() & MCEventModifierFlagCommand)) {
    switch (keys.front()) {
      case U'+':
      case U'=':
        zoomTo(scale() * kZoomStep);
        return;
      case U'-':
      case U'_':
        zoomTo(scale() / kZoomStep);
        return;
      case U'0':
        zoomTo(kDefaultScale);
        return;
      default:
        break;
    }
  }
  if (!keys.empty() && (keys.front() == U'f' || keys.front() == U'F') &&
      (event.modifierFlags() & MCEventModifierFlagCommand) && toggleFilter) {
    toggleFilter();
    return;
  }
  MCBrowserView::keyDown(event);
}

void BrowseView::drawRect(const MCRect& dirty) {
  if (MCGraphicsContext* context = MCGraphicsContext::currentContext()) {
    palette.background.setFill(*context);
    context->fillRect(dirty);
  }
  MCBrowserView::drawRect(dirty);
  if (selectionCount() == drawnSelectionCount_) return;
  drawnSelectionCount_ = selectionCount();
  if (selectionDrawn) selectionDrawn();
}

double BrowseView::wheelStep(double visibleLength) { return std::pow(std::max(1.0, visibleLength), 2.0 / 3.0); }

void BrowseView::zoomTo(double scale) { setScale(std::clamp(scale, minScale(), maxScale())); }

void BrowseView::scrollWheel(const MCEvent& event) {
  if (event.modifierFlags() & MCEventModifierFlagCommand) {
    // A wheel notch zooms by a tenth; a touchpad by its distance.
    const double step = event.hasPreciseScrollingDeltas() ? event.scrollingDeltaY() / 200 : event.scrollingDeltaY() / 10;
    zoomTo(scale() * (1 + step));
    return;
  }
  if (event.hasPreciseScrollingDeltas() || !enclosingScrollView()) {
    MCBrowserView::scrollWheel(event);  // a touchpad's pixels, as they come
    return;
  }
  // A notch moves the visible length to the power two thirds (about a third of a screen), as GTK's
  // scrolled windows do, rather than a few lines.
  const MCSize visible = enclosingScrollView()->contentSize();
  MCBrowserView::scrollWheel(MCEvent::scrollWheelEvent(event.locationInWindow(),
                                                       event.scrollingDeltaX() * wheelStep(visible.width),
                                                       event.scrollingDeltaY() * wheelStep(visible.height), true,
                                                       event.modifierFlags(), event.timestamp()));
}

BrowseController::BrowseController(BrowseCollection collection, std::function<void(const std::string&)> report,
                                   std::function<void(const std::string&)> status,
                                   std::shared_ptr<MCThumbnailCache> thumbnails)
    : collection_(std::move(collection)), report_(std::move(report)), status_(std::move(status)),
      cache_(std::move(thumbnails)) {}

std::shared_ptr<MCThumbnailCache> BrowseController::handOverThumbnailCache() {
  if (!cache_) return nullptr;
  // Answers for this controller's index paths would land on another collection's items.
  cache_->cancelFetchingForThumbnailsAtIndexPaths({pending_.begin(), pending_.end()});
  pending_.clear();
  return std::exchange(cache_, nullptr);
}

void BrowseController::attach(const std::shared_ptr<BrowseView>& view) {
  view_ = view;
  if (cache_) {
    cache_->setThumbnailSize(int64_t(thumbnailPixelSize()));
    cache_->setCapacity(thumbnailsToKeep(thumbnailPixelSize(), 0));
  } else {
    // Thumbnails kept between runs, in the desktop's shared cache.
    auto options = std::make_shared<MCThumbnailLoadOptions>(std::make_shared<BrowseSharedThumbnailStrategy>());
    options->setThumbnailMaxPixelSize(thumbnailPixelSize());
    cache_ = MCThumbnailCache::create(std::move(options), thumbnailsToKeep(thumbnailPixelSize(), 0));
  }
  cache_->setDelegate(shared_from_this());
  itemCell_->setControlView(view);
  const BrowsePalette& colours = view->palette;
  itemCell_->backgroundColor = colours.card;
  itemCell_->selectionColor = MCColor::controlAccentColor();
  itemCell_->titleAttributes = {MCFont::systemFontOfSize(12), colours.text, {}, {}, {}};
  itemCell_->subtitleAttributes = {MCFont::systemFontOfSize(10), colours.secondaryText, {}, {}, {}};
  itemCell_->placeholderColor = colours.placeholder;
  itemCell_->placeholderTextColor = colours.placeholderText;
  headerCell_->textColor = colours.text;
  headerCell_->secondaryColor = colours.secondaryText;
  headerCell_->separatorColor = colours.separator;
  headerCell_->setControlView(view);
  view->setItemCell(itemCell_);
  view->setHeaderCell(headerCell_);
  view->setShowsGroupHeaders(true);
  view->setDataSource(shared_from_this());
  view->setDelegate(shared_from_this());
  view->setPrefetchDataSource(shared_from_this());
  std::weak_ptr<BrowseController> weak = shared_from_this();
  view->selectionDrawn = [weak] {
    if (auto controller = weak.lock(); controller && controller->status_) controller->status_(controller->statusLine());
  };
  view->reloadData();
  if (status_) status_(statusLine());
}

uint64_t BrowseController::thumbnailPixelSize() const {
  auto view = view_.lock();
  const double scale = view ? view->scale() : 0.5;
  const double backing = view && view->window() ? view->window()->backingScaleFactor() : 1.0;
  return uint64_t(std::ceil(MCBrowserViewItemCardCell::defaultImageWidth() * scale * backing));
}

std::string BrowseController::formatCount(std::size_t count) {
  const std::string digits = std::to_string(count);
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

std::string BrowseController::formatByteCount(uint64_t bytes) {
  if (bytes < 1000) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  static const char* const units[] = {"kB", "MB", "GB", "TB"};
  double value = double(bytes) / 1000;
  std::size_t unit = 0;
  while (value >= 999.95 && unit + 1 < std::size(units)) {
    value /= 1000;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %s", value, units[unit]);
  return text;
}

std::string BrowseController::statusLine() const {
  auto view = view_.lock();
  const std::size_t photos = collection_.numberOfFiles(), groups = collection_.groups().size();
  const auto noun = [](std::size_t n) { return n == 1 ? " photo" : " photos"; };
  std::string line;
  if (totalCount_ > photos) {
    line = formatCount(photos) + " of " + formatCount(totalCount_) + noun(totalCount_);
  } else {
    line = formatCount(photos) + noun(photos);
    if (collection_.sortOrder().key == BrowseSortKey::Date)
      line += " in " + formatCount(groups) + (groups == 1 ? " day" : " days");
  }
  if (!failed_.empty()) line += ", " + formatCount(failed_.size()) + " cannot be read";
  if (view && view->hasSelection()) {
    uint64_t bytes = 0;
    for (const MCIndexPath& path : view->selectionIndexPaths())
      bytes += collection_.sizeOfFile(collection_.file(path.group, path.item));
    const std::size_t selected = view->selectionCount();
    line += ", " + formatCount(selected) + noun(selected) + " selected (" + formatByteCount(bytes) + ")";
  }
  return line;
}

std::shared_ptr<MCThumbnailDescriptorProvider> BrowseController::provider(const MCIndexPath& indexPath) const {
  const auto& groups = collection_.groups();
  if (indexPath.group >= groups.size() || indexPath.item >= groups[indexPath.group].files.size()) return nullptr;
  const fs::path& file = groups[indexPath.group].files[indexPath.item];
  std::string version;
  if (const BrowseFileFacts* about = collection_.factsOfFile(file))
    version = "|" + std::to_string(about->modified) + "|" + std::to_string(about->size);
  return std::make_shared<Item>(file, thumbnailPixelSize(), std::move(version));
}

// MARK: Data source

uint64_t BrowseController::numberOfGroupsInBrowserView(MCBrowserView&) { return collection_.groups().size(); }

uint64_t BrowseController::numberOfItemsInGroup(MCBrowserView&, uint64_t group) {
  return collection_.groups().at(group).files.size();
}

const BrowseItemInfo& BrowseController::info(const MCIndexPath& indexPath) {
  auto it = infos_.find(indexPath);
  if (it == infos_.end()) it = infos_.emplace(indexPath, BrowseItemInfo::read(collection_.file(indexPath.group, indexPath.item))).first;
  return it->second;
}

std::string BrowseController::accessibilityNameForItem(MCBrowserView&, const MCIndexPath& indexPath) {
  return collection_.file(indexPath.group, indexPath.item).filename().string();
}

void BrowseController::updateItemCell(MCBrowserView& view, MCBrowserViewCell& cell, const MCIndexPath& indexPath) {
  auto& card = static_cast<BrowseItemCell&>(cell);
  MCRasterImageRef image;
  if (auto item = provider(indexPath))
    if (auto thumbnail = cache_->thumbnailForDescriptorProvider(*item)) image = thumbnail->image();
  const bool failed = !image && failed_.count(indexPath);
  const BrowseItemInfo& about = info(indexPath);
  card.image = MCImage::create(image);
  card.shouldDrawImagePlaceholder = !image;
  card.imageSize = about.pixelSize.width > 0 ? about.pixelSize
                   : image ? MCSize{double(image->width()), double(image->height())}
                           : MCSize{0, 0};
  card.title = collection_.file(indexPath.group, indexPath.item).filename().string();
  std::string subtitle = about.captureDate;
  if (about.pixelSize.width > 0) {
    if (!subtitle.empty()) subtitle += "  ";
    subtitle += std::to_string(long(about.pixelSize.width)) + "×" + std::to_string(long(about.pixelSize.height));
  }
  card.subtitle = subtitle;
  // Badges from what the file says; they are made once per kind and shared by all cards.
  static const auto location = MCBadgeFactory::defaultIconBadgeNamed("location.fill", 14);
  static const auto video = MCBadgeFactory::badgeVideo();
  static const auto warning = MCBadgeFactory::warningIconBadgeNamed("exclamationmark.triangle.fill", 16);
  static std::unordered_map<long, MCBadgeRef> stars, labels;
  MCBadgeRef flags;
  if (about.rating > 0) {
    auto& badge = stars[about.rating];
    if (!badge) badge = MCBadgeFactory::badgeStarsWithCount(about.rating, true);
    flags = badge;
  }
  // Badges lie over the photo: with no photo yet they would float over the placeholder.
  card.flagsBadge = image ? flags : nullptr;
  card.stateBadge = failed  ? MCBadgeRef(warning)
                    : !image ? nullptr
                    : about.isVideo ? MCBadgeRef(video)
                    : about.hasLocation ? MCBadgeRef(location)
                                        : nullptr;
  card.state = image ? BrowseItemCell::State::Shown : failed ? BrowseItemCell::State::Failed : BrowseItemCell::State::Loading;
  MCBadgeRef label;
  if (about.label > 0) {
    auto& badge = labels[about.label];
    if (!badge) badge = MCBadgeFactory::badgeCircleWithLabelColor(about.label);
    label = badge;
  }
  card.markedBadge = label;
  card.shouldShowBadgeMarked = label != nullptr;
  bool alternate = false;
  card.setSelected(view.isSelectedItemAtIndexPath(indexPath, &alternate));
}

void BrowseController::updateHeaderCell(MCBrowserView&, MCBrowserViewCell& cell, uint64_t group) {
  const auto& g = collection_.groups().at(group);
  static_cast<BrowseHeaderCell&>(cell).configure(g.day, g.files.size());
}

// MARK: Delegate

bool BrowseController::respondsTo(MCBrowserViewDelegateOperation operation) const {
  switch (operation) {
    case MCBrowserViewDelegateOperation::ScaleDidChange:
    case MCBrowserViewDelegateOperation::SelectionDidChange:
    case MCBrowserViewDelegateOperation::CellWasDoubleClicked:
    case MCBrowserViewDelegateOperation::CellWasRightClicked:
    case MCBrowserViewDelegateOperation::PasteboardWriterForItem:
    case MCBrowserViewDelegateOperation::DraggingSessionEnded:
    case MCBrowserViewDelegateOperation::WriteItemsToPasteboard:
      return true;
    default:
      return false;
  }
}

void BrowseController::browserViewScaleDidChange(MCBrowserView& view) {
  // Thumbnails of the old size keep showing until those of the new size replace them: ask again
  // for everything, at the new size, once the view has its new layout.
  cache_->setThumbnailSize(int64_t(thumbnailPixelSize()));
  view.invalidatePrefetching();
  if (auto* browse = dynamic_cast<BrowseView*>(&view); browse && browse->scaleChanged) browse->scaleChanged(view.scale());
}

void BrowseController::browserViewSelectionDidChange(MCBrowserView& view) {
  if (status_) status_(statusLine());
  if (!report_) return;
  std::string line = "selection " + std::to_string(view.selectionCount());
  const MCIndexSet selection = view.selectionIndexes();
  std::size_t shown = 0;
  for (uint64_t index : selection) {
    line += (shown ? "," : " ") + std::to_string(index);
    if (++shown == 20) {
      line += ",…";
      break;
    }
  }
  report_(line);
}

void BrowseController::cellWasDoubleClickedAtIndexPath(MCBrowserView&, const MCIndexPath& indexPath, const MCEvent&) {
  const fs::path& file = collection_.file(indexPath.group, indexPath.item);
  std::printf("double-click %s\n", file.c_str());
  std::fflush(stdout);
  if (openItem) openItem(indexPath);
}

std::optional<MCIndexPath> BrowseController::indexPathOfFile(const fs::path& file) const {
  const auto& groups = collection_.groups();
  for (std::size_t g = 0; g < groups.size(); ++g)
    for (std::size_t i = 0; i < groups[g].files.size(); ++i)
      if (groups[g].files[i] == file) return MCIndexPath::indexPathForItem(i, g);
  return std::nullopt;
}

BrowseScrollAnchor BrowseController::scrollAnchor() const {
  auto view = view_.lock();
  MCScrollView* scroll = view ? view->enclosingScrollView() : nullptr;
  if (!scroll) return {};
  const MCRect visible = scroll->documentVisibleRect();
  if (visible.origin.y <= 0) return {};
  const MCIndexSet items = view->contentLayout()->itemIndexesInRect(visible);
  if (items.count() == 0) return {};
  // The first item whose cell begins on screen, else the first one cut by its top.
  uint64_t chosen = items.firstIndex();
  for (uint64_t item : items)
    if (MCMinY(view->contentLayout()->cellFrameAtItemIndex(item)) >= MCMinY(visible)) {
      chosen = item;
      break;
    }
  const auto path = view->contentLayout()->indexPathFromItemIndex(chosen);
  if (!path) return {};
  return {collection_.file(path->group, path->item),
          MCMinY(view->contentLayout()->cellFrameAtItemIndex(chosen)) - MCMinY(visible)};
}

void BrowseController::restoreScrollAnchor(const BrowseScrollAnchor& anchor) {
  auto view = view_.lock();
  MCScrollView* scroll = view ? view->enclosingScrollView() : nullptr;
  if (!scroll) return;
  double y = 0;
  if (!anchor.file.empty())
    if (const auto path = indexPathOfFile(anchor.file)) {
      const uint64_t item = view->contentLayout()->itemIndexFromIndexPath(*path);
      y = MCMinY(view->contentLayout()->cellFrameAtItemIndex(item)) - anchor.offset;
    }
  const double limit = std::max(0.0, view->frame().size.height - scroll->contentSize().height);
  scroll->contentView()->scrollToPoint({0, std::clamp(y, 0.0, limit)});
  scroll->reflectScrolledClipView(scroll->contentView().get());
}

void BrowseController::selectFiles(const std::vector<fs::path>& files) {
  auto view = view_.lock();
  if (!view || files.empty()) return;
  std::unordered_map<std::string, MCIndexPath> where;
  const auto& groups = collection_.groups();
  for (std::size_t g = 0; g < groups.size(); ++g)
    for (std::size_t i = 0; i < groups[g].files.size(); ++i)
      where.emplace(groups[g].files[i].native(), MCIndexPath::indexPathForItem(i, g));
  bool first = true;
  for (const auto& file : files)
    if (const auto it = where.find(file.native()); it != where.end()) {
      view->selectItemAtIndexPath(it->second, !first, false);
      first = false;
    }
}

MCRasterImageRef BrowseController::thumbnailAt(const MCIndexPath& indexPath) {
  auto item = provider(indexPath);
  if (!item) return nullptr;
  auto thumbnail = cache_->thumbnailForDescriptorProvider(*item);
  return thumbnail ? thumbnail->image() : nullptr;
}

void BrowseController::itemChanged(const MCIndexPath& indexPath) {
  infos_.erase(indexPath);
  if (auto view = view_.lock()) view->reloadItemAtIndexPath(indexPath);
}

namespace {
class FilePreviewItem : public MCPreviewItem {
 public:
  explicit FilePreviewItem(fs::path file) : file_(std::move(file)) {}
  fs::path previewItemURL() const override { return file_; }

 private:
  fs::path file_;
};
}  // namespace

std::shared_ptr<MCPasteboardWriting> BrowseController::pasteboardWriterForItemAtIndexPath(MCBrowserView&,
                                                                                         const MCIndexPath& indexPath) {
  return MCPasteboardItem::itemWithFileURL(fs::absolute(collection_.file(indexPath.group, indexPath.item)));
}

void BrowseController::draggingSessionEndedAtPoint(MCBrowserView&, MCDraggingSession&, MCPoint, uint64_t operation) {
  if (report_) report_("drag-ended " + std::to_string(operation));
}

void BrowseController::writeItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& indexPaths,
                                              MCPasteboard& pasteboard) {
  std::vector<fs::path> files;
  for (const MCIndexPath& path : indexPaths) files.push_back(fs::absolute(collection_.file(path.group, path.item)));
  pasteboard.clearContents();
  pasteboard.writeFileURLs(files);
  if (report_) report_("copied " + std::to_string(files.size()));
}

std::shared_ptr<MCPreviewItem> BrowseController::previewItemAtIndexPath(MCBrowserView&, const MCIndexPath& indexPath) {
  return std::make_shared<FilePreviewItem>(collection_.file(indexPath.group, indexPath.item));
}

// MARK: Prefetching and arrivals

void BrowseController::scheduleTrim() {
  // Decoding leaves the allocator's arenas holding the freed pixels of every photo read at full
  // size; once a screen's thumbnails are in and nothing more came for a moment, they go back to
  // the system, so that resident memory stays flat as a large folder is scrolled through.
  if (trimTimer_) trimTimer_->invalidate();
  std::weak_ptr<BrowseController> weak = weak_from_this();
  trimTimer_ = MCTimer::scheduledTimer(0.5, false, [weak](MCTimer&) {
    auto self = weak.lock();
    if (!self || !self->pending_.empty()) return;
    malloc_trim(0);
  });
}

uint64_t BrowseController::thumbnailsToKeep(uint64_t pixelSize, uint64_t prefetched) {
  // A thumbnail is about as wide as its larger side and three quarters as high, four bytes a pixel.
  const double bytes = std::max(1.0, double(pixelSize) * double(pixelSize) * 3);
  return std::max(uint64_t(kThumbnailBytesInMemory / bytes), 2 * prefetched);
}

void BrowseController::prefetchItemsAtIndexPaths(MCBrowserView& view, const std::vector<MCIndexPath>& indexPaths) {
  cache_->setCapacity(thumbnailsToKeep(thumbnailPixelSize(), view.prefetchedIndexes().count() + indexPaths.size()));
  std::vector<MCIndexPath> wanted;
  for (const MCIndexPath& path : indexPaths)
    if (!failed_.count(path) && pending_.insert(path).second) wanted.push_back(path);
  cache_->fetchThumbnailsAtIndexPaths(wanted);
}

void BrowseController::cancelPrefetchingForItemsAtIndexPaths(MCBrowserView&, const std::vector<MCIndexPath>& indexPaths) {
  for (const MCIndexPath& path : indexPaths) pending_.erase(path);
  cache_->cancelFetchingForThumbnailsAtIndexPaths(indexPaths);
}

std::shared_ptr<MCThumbnailDescriptorProvider> BrowseController::descriptorProviderAtIndexPath(MCThumbnailCache&,
                                                                                             const MCIndexPath& indexPath) {
  return provider(indexPath);
}

void BrowseController::didFetchThumbnail(MCThumbnailCache&, const std::shared_ptr<const MCThumbnail>& thumbnail,
                                         const MCIndexPath& indexPath) {
  pending_.erase(indexPath);
  if (pending_.empty()) scheduleTrim();
  if ((!thumbnail || !thumbnail->image()) && failed_.insert(indexPath).second && status_) status_(statusLine());
  auto view = view_.lock();
  if (!view || indexPath.group >= view->contentLayout()->numberOfGroups()) return;
  view->reloadItemAtIndexPath(indexPath);
}

void BrowseController::cellWasRightClickedAtIndexPath(MCBrowserView& view, const MCIndexPath&, const MCEvent& event) {
  if (showContextMenu) showContextMenu(view.convertPoint(event.locationInWindow(), nullptr));
}

std::vector<std::filesystem::path> BrowseController::selectedFiles() const {
  std::vector<std::filesystem::path> files;
  auto view = view_.lock();
  if (!view) return files;
  for (const MCIndexPath& path : view->selectionIndexPaths()) files.push_back(collection_.file(path.group, path.item));
  return files;
}
