#include <vesperon/pipeline/MCFreedesktopThumbnailCache.h>

#include <vesperon/pixels/MCImageCreation.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/pixels/MCImageFiles.h>
#include <vesperon/pixels/MCPNGChunks.h>
#include <vesperon/platform/MCRegularFile.h>

#include <cairo.h>
#include <glib.h>
#include <zlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <fstream>

namespace {

struct Folder {
  const char* name;
  uint64_t size;
};
constexpr Folder kFolders[] = {{"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}};

std::optional<int64_t> modificationTime(const std::filesystem::path& file) {
  struct stat st {};
  if (::stat(file.c_str(), &st) != 0) return std::nullopt;
  return int64_t(st.st_mtime);
}

// Entries are at most 1024 pixels a side; even stored without compression they stay below this.
constexpr std::size_t kMaxEntrySize = 16 * 1024 * 1024;

// The image as a PNG, from the same premultiplied sRGB surface that drawing uses, whatever the
// image's own layout: RGB when every pixel is opaque, else RGBA with the alpha divided out. Each
// row is stored as its difference from the pixel on its left, compressed as runs (zlib's RLE
// strategy): an entry of 256 pixels is made several times faster than by the usual adaptive
// filters and full deflate, and comes out no larger for photographs.
std::optional<MCData> encodePNG(const MCRasterImageRef& image) {
  cairo_surface_t* surface = image ? MCGraphicsContext::createSurfaceForImage(*image) : nullptr;
  if (!surface) return std::nullopt;
  cairo_surface_flush(surface);
  const int width = cairo_image_surface_get_width(surface), height = cairo_image_surface_get_height(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  const cairo_format_t format = cairo_image_surface_get_format(surface);
  const unsigned char* pixels = cairo_image_surface_get_data(surface);
  if (!pixels || width <= 0 || height <= 0 || (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24)) {
    cairo_surface_destroy(surface);
    return std::nullopt;
  }
  bool opaque = true;
  if (format == CAIRO_FORMAT_ARGB32)
    for (int y = 0; y < height && opaque; ++y) {
      const auto* row = reinterpret_cast<const uint32_t*>(pixels + std::size_t(y) * std::size_t(stride));
      for (int x = 0; x < width; ++x)
        if ((row[x] >> 24) != 0xFF) {
          opaque = false;
          break;
        }
    }
  const std::size_t channels = opaque ? 3 : 4, rowBytes = std::size_t(width) * channels;
  std::vector<uint8_t> raw((rowBytes + 1) * std::size_t(height));
  std::vector<uint8_t> line(rowBytes);
  for (int y = 0; y < height; ++y) {
    const auto* row = reinterpret_cast<const uint32_t*>(pixels + std::size_t(y) * std::size_t(stride));
    for (int x = 0; x < width; ++x) {
      const uint32_t p = row[x];
      const uint32_t a = format == CAIRO_FORMAT_RGB24 ? 0xFF : p >> 24;
      uint32_t r = (p >> 16) & 0xFF, g = (p >> 8) & 0xFF, b = p & 0xFF;
      if (a != 0xFF && a != 0) {
        r = (r * 255 + a / 2) / a;
        g = (g * 255 + a / 2) / a;
        b = (b * 255 + a / 2) / a;
      }
      uint8_t* out = line.data() + std::size_t(x) * channels;
      out[0] = uint8_t(r);
      out[1] = uint8_t(g);
      out[2] = uint8_t(b);
      if (!opaque) out[3] = uint8_t(a);
    }
    uint8_t* filtered = raw.data() + std::size_t(y) * (rowBytes + 1);
    filtered[0] = 1;  // Sub
    for (std::size_t i = 0; i < rowBytes; ++i)
      filtered[1 + i] = uint8_t(line[i] - (i >= channels ? line[i - channels] : 0));
  }
  cairo_surface_destroy(surface);

  uLongf packedSize = compressBound(uLong(raw.size()));
  std::vector<uint8_t> packed(packedSize);
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15, 8, Z_RLE) != Z_OK) return std::nullopt;
  stream.next_in = raw.data();
  stream.avail_in = uInt(raw.size());
  stream.next_out = packed.data();
  stream.avail_out = uInt(packed.size());
  const int status = deflate(&stream, Z_FINISH);
  packedSize = stream.total_out;
  deflateEnd(&stream);
  if (status != Z_STREAM_END) return std::nullopt;

  static constexpr uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  MCData png(std::begin(kSignature), std::end(kSignature));
  uint8_t header[13];
  for (int i = 0; i < 4; ++i) {
    header[i] = uint8_t(uint32_t(width) >> (24 - 8 * i));
    header[4 + i] = uint8_t(uint32_t(height) >> (24 - 8 * i));
  }
  header[8] = 8;                  // bits a channel
  header[9] = opaque ? 2 : 6;     // RGB or RGBA
  header[10] = header[11] = header[12] = 0;  // deflate, adaptive filtering, no interlace
  mc_detail::MCAppendPNGChunk(png, "IHDR", header, sizeof header);
  mc_detail::MCAppendPNGChunk(png, "IDAT", packed.data(), packedSize);
  mc_detail::MCAppendPNGChunk(png, "IEND", nullptr, 0);
  return png;
}

}  // namespace

MCFreedesktopThumbnailCache::MCFreedesktopThumbnailCache(std::filesystem::path root) : root_(std::move(root)) {}

std::filesystem::path MCFreedesktopThumbnailCache::defaultRoot() {
  // Read once: strategies on several workers ask at the same moment, and GLib makes its own copy
  // on first use under a lock that ThreadSanitizer cannot see.
  static const std::filesystem::path root = std::filesystem::path(g_get_user_cache_dir()) / "thumbnails";
  return root;
}

std::string MCFreedesktopThumbnailCache::uriOfFile(const std::filesystem::path& file) {
  std::error_code ec;
  const std::filesystem::path absolute = std::filesystem::absolute(file, ec).lexically_normal();
  gchar* uri = g_filename_to_uri(absolute.c_str(), nullptr, nullptr);
  std::string text = uri ? uri : "";
  g_free(uri);
  return text;
}

const char* MCFreedesktopThumbnailCache::folderForPixelSize(uint64_t pixelSize) {
  for (const Folder& folder : kFolders)
    if (pixelSize <= folder.size) return folder.name;
  return kFolders[3].name;
}

std::filesystem::path MCFreedesktopThumbnailCache::entryPath(const std::string& folder, const std::string& uri) const {
  gchar* md5 = g_compute_checksum_for_string(G_CHECKSUM_MD5, uri.c_str(), -1);
  std::filesystem::path path = root_ / folder / (std::string(md5) + ".png");
  g_free(md5);
  return path;
}

std::optional<MCData> MCFreedesktopThumbnailCache::readValidEntry(const std::filesystem::path& entry,
                                                                 const std::string& uri, int64_t mtime) const {
  MCRegularFile::Result file = MCRegularFile::read(entry, kMaxEntrySize);
  if (!file) return std::nullopt;
  // Every chunk up to IEND: writers put the text chunks before or after the image data.
  auto chunks = mc_detail::MCPNGChunks(file.bytes.data(), file.bytes.size());
  if (!chunks) return std::nullopt;
  bool uriMatches = false, timeMatches = false;
  for (const auto& [key, value] : mc_detail::MCPNGTextEntries(*chunks)) {
    if (key == "Thumb::URI") uriMatches = value == uri;
    if (key == "Thumb::MTime") timeMatches = value == std::to_string(mtime);
  }
  if (!uriMatches || !timeMatches) return std::nullopt;
  return std::move(file.bytes);
}

MCRasterImageRef MCFreedesktopThumbnailCache::thumbnailForFile(const std::filesystem::path& file, uint64_t pixelSize) const {
  if (pixelSize == 0 || pixelSize > kFolders[3].size) return nullptr;
  const auto mtime = modificationTime(file);
  if (!mtime) return nullptr;
  const std::string uri = uriOfFile(file);
  for (const Folder& folder : kFolders) {
    if (folder.size < pixelSize) continue;
    auto bytes = readValidEntry(entryPath(folder.name, uri), uri, *mtime);
    if (!bytes) continue;
    auto image = MCCreateImageWithData(&*bytes);
    if (!image) continue;
    // An entry may be larger than asked for: fitted to the size wanted.
    if (std::max(image->width(), image->height()) > pixelSize) image = MCCreateImageWithMaxPixelSize_C4_8(image, pixelSize);
    return image;
  }
  return nullptr;
}

bool MCFreedesktopThumbnailCache::hasFailedForFile(const std::filesystem::path& file) const {
  const auto mtime = modificationTime(file);
  const std::string uri = uriOfFile(file);
  return mtime && readValidEntry(entryPath(std::string("fail/") + kProgramName, uri), uri, *mtime);
}

bool MCFreedesktopThumbnailCache::write(const std::filesystem::path& entry, const std::filesystem::path& file,
                                        const MCRasterImageRef& image) const {
  const auto mtime = modificationTime(file);
  if (!mtime) return false;
  auto png = encodePNG(image);
  if (!png) return false;
  auto chunks = mc_detail::MCPNGChunks(png->data(), png->size());
  if (!chunks) return false;
  std::vector<std::pair<std::string, std::string>> texts = {
      {"Thumb::URI", uriOfFile(file)}, {"Thumb::MTime", std::to_string(*mtime)}, {"Software", "Vesperon"}};
  std::error_code ec;
  if (const auto size = std::filesystem::file_size(file, ec); !ec) texts.emplace_back("Thumb::Size", std::to_string(size));
  // The text chunks go right after the header, where readers look for them first.
  MCData out(png->begin(), png->begin() + 8);
  for (const auto& chunk : *chunks) {
    out.insert(out.end(), png->begin() + std::ptrdiff_t(chunk.offset),
               png->begin() + std::ptrdiff_t(chunk.offset + chunk.wholeSize()));
    if (chunk.type != "IHDR") continue;
    for (const auto& [key, value] : texts) {
      std::string text = key;
      text.push_back('\0');
      text += value;
      mc_detail::MCAppendPNGChunk(out, "tEXt", reinterpret_cast<const uint8_t*>(text.data()), text.size());
    }
  }
  const std::filesystem::path folder = entry.parent_path();
  std::filesystem::create_directories(folder, ec);
  if (ec) return false;
  std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ec);
  static std::atomic<unsigned> serial{0};
  std::filesystem::path temporary = entry;
  temporary += "." + std::to_string(::getpid()) + "." + std::to_string(serial++) + ".tmp";
  {
    std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(out.data()), std::streamsize(out.size()));
    if (!stream.flush()) {
      stream.close();
      std::filesystem::remove(temporary, ec);
      return false;
    }
  }
  std::filesystem::permissions(temporary, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ec);
  std::filesystem::rename(temporary, entry, ec);
  if (ec) std::filesystem::remove(temporary, ec);
  return !ec;
}

bool MCFreedesktopThumbnailCache::writeThumbnailForFile(const std::filesystem::path& file,
                                                        const MCRasterImageRef& thumbnail) const {
  if (!thumbnail) return false;
  const uint64_t side = std::max(thumbnail->width(), thumbnail->height());
  return write(entryPath(folderForPixelSize(side), uriOfFile(file)), file, thumbnail);
}

bool MCFreedesktopThumbnailCache::writeFailureForFile(const std::filesystem::path& file) const {
  // A failure is an entry like any other, of one transparent pixel.
  auto pixel = MCRasterImage::createRGBA8(1, 1, std::vector<uint8_t>{0, 0, 0, 0});
  return write(entryPath(std::string("fail/") + kProgramName, uriOfFile(file)), file, pixel);
}
