#include "BrowsePhotoLoader.h"

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCDispatchQueue.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>

namespace fs = std::filesystem;

struct BrowsePhotoLoader::State {
  Arrival arrived;
  std::mutex mutex;
  bool alive = true;
  std::set<fs::path> wanted;
  uint64_t regions = 0;  // region loads asked for; only the latest may start
  bool isWanted(const fs::path& file) {
    std::lock_guard lock(mutex);
    return alive && wanted.count(file) != 0;
  }
};

namespace {

int orientationOf(const std::optional<MCDictionary>& metadata) {
  if (!metadata) return 1;
  auto it = metadata->find(kCGImagePropertyOrientation);
  if (it == metadata->end()) return 1;
  const auto value = it->second.integerValue();
  return value && *value >= 1 && *value <= 8 ? int(*value) : 1;
}

/// The stored size the file's properties give, turned upright; 0 × 0 when they do not say.
MCSize uprightSizeOf(const std::optional<MCDictionary>& metadata, int orientation) {
  if (!metadata) return {0, 0};
  const auto width = metadata->find(kCGImagePropertyPixelWidth), height = metadata->find(kCGImagePropertyPixelHeight);
  if (width == metadata->end() || height == metadata->end()) return {0, 0};
  const double w = double(width->second.integerValue().value_or(0)), h = double(height->second.integerValue().value_or(0));
  if (!(w > 0 && h > 0)) return {0, 0};
  return orientation >= 5 ? MCSize{h, w} : MCSize{w, h};
}

/// A decode of the whole photo, turned upright, with the photo's full size: the properties' size,
/// or the pixels' own when the properties do not say.
BrowsePhotoPixels wholePhoto(BrowsePhotoPixels::Kind kind, const MCRasterImageRef& decoded,
                             const std::optional<MCDictionary>& metadata) {
  BrowsePhotoPixels pixels;
  pixels.kind = kind;
  pixels.orientation = orientationOf(metadata);
  pixels.image = BrowseDrawableImage(decoded, pixels.orientation);
  pixels.photoSize = uprightSizeOf(metadata, pixels.orientation);
  if (pixels.image && (kind == BrowsePhotoPixels::Kind::Whole || !(pixels.photoSize.width > 0)))
    pixels.photoSize = {double(pixels.image->width()), double(pixels.image->height())};
  pixels.rect = MCMakeRect(0, 0, pixels.photoSize.width, pixels.photoSize.height);
  return pixels;
}

/// Through a Cairo context, for layouts the one-pass conversion does not know.
MCRasterImageRef drawnImage(const MCRasterImageRef& image) {
  auto context = MCGraphicsContext::create(image->width(), image->height(), 8, 0, MCColorSpace::sRGB(),
                                           MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little);
  if (!context) return image;
  context->drawImage(MCMakeRect(0, 0, double(image->width()), double(image->height())), image);
  return context->createImage();
}

}  // namespace

MCRasterImageRef BrowseDrawableImage(const MCRasterImageRef& image, int orientation) {
  if (!image) return nullptr;
  const MCImageAlphaInfo alpha = image->alphaInfo();
  const uint32_t order = image->bitmapInfo() & MCBitmapByteOrderMask;
  const bool rgbaBytes = image->bitsPerPixel() == 32 && image->bitsPerComponent() == 8 &&
                         (order == 0 || order == MCBitmapByteOrder32Big) &&
                         (alpha == MCImageAlphaPremultipliedLast || alpha == MCImageAlphaLast ||
                          alpha == MCImageAlphaNoneSkipLast) &&
                         (!image->colorSpace() || image->colorSpace()->isEquivalent(*MCColorSpace::sRGB()));
  if (!rgbaBytes) return BrowseOrientedImage(drawnImage(image), orientation);
  if (orientation < 1 || orientation > 8) orientation = 1;
  // R G B A bytes become B G R A (Cairo's ARGB32 on a little-endian machine), premultiplied,
  // written straight to where the pixel lies once the photo is upright: one pass, one copy.
  const std::size_t w = image->width(), h = image->height();
  const bool swaps = orientation >= 5;
  const std::size_t outW = swaps ? h : w, outH = swaps ? w : h;
  std::vector<uint8_t> pixels(outW * outH * 4);
  const bool premultiply = alpha == MCImageAlphaLast;
  const bool opaque = alpha == MCImageAlphaNoneSkipLast;
  for (std::size_t y = 0; y < h; ++y) {
    const uint8_t* in = image->row(y);
    // Where pixel (0, y) goes, and how far apart the next ones land.
    std::ptrdiff_t start = 0, step = 0;
    const auto at = [&](std::size_t ox, std::size_t oy) { return std::ptrdiff_t((oy * outW + ox) * 4); };
    switch (orientation) {
      case 1: start = at(0, y); step = 4; break;
      case 2: start = at(w - 1, y); step = -4; break;
      case 3: start = at(w - 1, h - 1 - y); step = -4; break;
      case 4: start = at(0, h - 1 - y); step = 4; break;
      case 5: start = at(y, 0); step = std::ptrdiff_t(outW * 4); break;
      case 6: start = at(h - 1 - y, 0); step = std::ptrdiff_t(outW * 4); break;
      case 7: start = at(h - 1 - y, w - 1); step = -std::ptrdiff_t(outW * 4); break;
      case 8: start = at(y, w - 1); step = -std::ptrdiff_t(outW * 4); break;
    }
    uint8_t* out = pixels.data() + start;
    for (std::size_t x = 0; x < w; ++x, in += 4, out += step) {
      const unsigned a = opaque ? 255 : in[3];
      if (premultiply && a != 255) {
        out[0] = uint8_t((in[2] * a + 127) / 255);
        out[1] = uint8_t((in[1] * a + 127) / 255);
        out[2] = uint8_t((in[0] * a + 127) / 255);
      } else {
        out[0] = in[2];
        out[1] = in[1];
        out[2] = in[0];
      }
      out[3] = uint8_t(a);
    }
  }
  return MCRasterImage::create(outW, outH, 8, 32, outW * 4, MCColorSpace::sRGB(),
                               MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little, std::move(pixels));
}

MCRasterImageRef BrowseOrientedImage(const MCRasterImageRef& image, int orientation) {
  if (!image || orientation < 2 || orientation > 8 || image->bitsPerPixel() != 32) return image;
  const std::size_t w = image->width(), h = image->height();
  const bool swaps = orientation >= 5;
  const std::size_t outW = swaps ? h : w, outH = swaps ? w : h;
  std::vector<uint8_t> pixels(outW * outH * 4);
  for (std::size_t y = 0; y < h; ++y) {
    const uint32_t* in = reinterpret_cast<const uint32_t*>(image->row(y));
    for (std::size_t x = 0; x < w; ++x) {
      // Where the stored pixel (x, y) goes when the photo is turned upright.
      std::size_t ox = x, oy = y;
      switch (orientation) {
        case 2: ox = w - 1 - x; break;                      // mirrored
        case 3: ox = w - 1 - x; oy = h - 1 - y; break;      // upside down
        case 4: oy = h - 1 - y; break;                      // mirrored, upside down
        case 5: ox = y; oy = x; break;                      // transposed
        case 6: ox = h - 1 - y; oy = x; break;              // turned a quarter clockwise
        case 7: ox = h - 1 - y; oy = w - 1 - x; break;      // transversed
        case 8: ox = y; oy = w - 1 - x; break;              // turned a quarter counter-clockwise
      }
      std::memcpy(pixels.data() + (oy * outW + ox) * 4, &in[x], 4);
    }
  }
  auto turned = MCRasterImage::create(outW, outH, image->bitsPerComponent(), 32, outW * 4, image->colorSpace(),
                                      image->bitmapInfo(), std::move(pixels));
  return turned ? turned : image;
}

MCRect BrowseStoredRect(MCRect upright, MCSize uprightSize, int orientation) {
  // The stored photo's size, and where the upright corner (u, v) was stored.
  const bool swaps = orientation >= 5 && orientation <= 8;
  const double W = swaps ? uprightSize.height : uprightSize.width, H = swaps ? uprightSize.width : uprightSize.height;
  const auto stored = [&](double u, double v) -> MCPoint {
    switch (orientation) {
      case 2: return {W - u, v};
      case 3: return {W - u, H - v};
      case 4: return {u, H - v};
      case 5: return {v, u};
      case 6: return {v, H - u};
      case 7: return {W - v, H - u};
      case 8: return {W - v, u};
      default: return {u, v};
    }
  };
  const MCPoint a = stored(MCMinX(upright), MCMinY(upright)), b = stored(MCMaxX(upright), MCMaxY(upright));
  return MCMakeRect(std::min(a.x, b.x), std::min(a.y, b.y), std::abs(b.x - a.x), std::abs(b.y - a.y));
}

BrowsePhotoLoader::BrowsePhotoLoader(Arrival arrived, std::size_t width)
    : state_(std::make_shared<State>()),
      queue_(std::make_unique<MCDispatchQueue>("org.vesperon.browse.viewer", MCDispatchQueue::Kind::Concurrent,
                                               std::max<std::size_t>(width, 1))) {
  state_->arrived = std::move(arrived);
}

BrowsePhotoLoader::~BrowsePhotoLoader() {
  std::lock_guard lock(state_->mutex);
  state_->alive = false;
}

void BrowsePhotoLoader::setWanted(std::set<fs::path> files) {
  std::lock_guard lock(state_->mutex);
  state_->wanted = std::move(files);
}

void BrowsePhotoLoader::run(const fs::path& file, std::function<BrowsePhotoPixels()> load, uint64_t region) {
  {
    std::lock_guard lock(state_->mutex);
    state_->wanted.insert(file);
  }
  queue_->async([state = state_, file, load = std::move(load), region] {
    if (!state->isWanted(file)) return;
    if (region != 0) {
      // A pan asks for region after region; one overtaken before it started is never decoded.
      std::lock_guard lock(state->mutex);
      if (region != state->regions) return;
    }
    BrowsePhotoPixels pixels = load();
    pixels.file = file;
    MCMainQueue::async([state, pixels = std::move(pixels)]() mutable {
      {
        std::lock_guard lock(state->mutex);
        if (!state->alive) return;
      }
      state->arrived(std::move(pixels));
    });
  });
}

void BrowsePhotoLoader::loadFit(const fs::path& file, std::size_t maxPixelSize) {
  run(file, [file, maxPixelSize] {
    MCThumbnailReadingOptions options;
    options.createThumbnailFromImageAlways = true;
    options.thumbnailMaxPixelSize = std::max<std::size_t>(maxPixelSize, 1);
    options.metadataReadingOptions = MCMetadataReadingOptions{};
    std::optional<MCDictionary> metadata;
    const MCRasterImageRef decoded = MCImageReader::newThumbnailWithURL(file, std::nullopt, options, &metadata);
    BrowsePhotoPixels pixels = wholePhoto(BrowsePhotoPixels::Kind::Fit, decoded, metadata);
    const auto type = MCTypeIdentifierForContentsOfURL(file);
    pixels.decodesRegionsAlone = type && (*type == "public.jpeg" || *type == "public.tiff");
    return pixels;
  });
}

void BrowsePhotoLoader::loadWhole(const fs::path& file) {
  run(file, [file] {
    MCImageReadingOptions options;
    options.metadataOptions = MCMetadataReadingOptions{};
    std::optional<MCDictionary> metadata;
    const MCRasterImageRef decoded = MCImageReader::newImageWithURL(file, std::nullopt, options, &metadata);
    return wholePhoto(BrowsePhotoPixels::Kind::Whole, decoded, metadata);
  });
}

void BrowsePhotoLoader::loadRegion(const fs::path& file, MCRect rect, MCSize photoSize, int orientation) {
  rect = MCIntegralRect(MCIntersectionRect(rect, MCMakeRect(0, 0, photoSize.width, photoSize.height)));
  uint64_t region = 0;
  {
    std::lock_guard lock(state_->mutex);
    region = ++state_->regions;
  }
  run(file, [file, rect, photoSize, orientation] {
    BrowsePhotoPixels pixels;
    pixels.kind = BrowsePhotoPixels::Kind::Region;
    pixels.orientation = orientation;
    pixels.photoSize = photoSize;
    pixels.rect = rect;
    const MCRect stored = MCIntegralRect(BrowseStoredRect(rect, photoSize, orientation));
    if (stored.size.width < 1 || stored.size.height < 1) return pixels;
    MCImageReadingOptions options;
    const MCRasterImageRef decoded = MCImageReader::newImageInRegionWithURL(
        file, std::nullopt, std::size_t(MCMinX(stored)), std::size_t(MCMinY(stored)), std::size_t(stored.size.width),
        std::size_t(stored.size.height), options, nullptr);
    pixels.image = BrowseDrawableImage(decoded, orientation);
    return pixels;
  }, region);
}
