#pragma once
// Reading images from files and data, and saving them as JPEG, through the codec registry
// (MCImageCodecManager) — the library's image sources and destinations.
//
// A file's type is the one its name gives through the type vocabulary (MCTypeIdentifierForURL), as
// the platform's image source takes it: "x.CR2" is a Canon raw file even though it starts as a
// TIFF, and reaches the source extension registered for Canon raw. When the first bytes show
// another type (a PNG saved as ".jpg"), that type's extensions are tried after the name's. Bytes
// in memory have no name: their type is what their first bytes show (MCTypeIdentifierForBytes), and they
// are read where they are, through the extensions' sources over memory — nothing is written.
//
// Reports, on the log sdkGraphics at error level (or to the log file while writesToFile is on),
// follow the platform's image source statuses:
//   absent URL or data      "CGImageSource: URL cannot be nil" / "CGImageSource: data cannot be nil"
//   no bytes at all         "CGImageSource: zero count at URL: <path>" / "CGImageSource: zero count."
//   unknown type (−3): no source extension for the type; invalid data (−4): there are extensions
//   but none opens the bytes
//                           "CGImageSource: bad status <n> at URL: <path>" / "CGImageSource: bad status <n>."
// The other statuses of the platform (−2 reading the header, −5 unexpected end of file) belong to
// incremental reading, which this library does not do: a cut file gives what its codec can make
// of it (see the plug-ins) or −4. A file that cannot be opened gives none without a report, and so
// does a source that opens but cannot decode its image.

#include <vesperon/core/MCValue.h>
#include <vesperon/platform/MCRasterImage.h>

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

/// The first image of the file; `url` empty means absent. Options: kCGImageSourceSubsampleFactor
/// (a number 1, 2, 4 or 8) is passed to the codec; the others are the platform's caching hints,
/// which have no meaning here.
MCRasterImageRef MCCreateImageWithURL(const std::filesystem::path& url, const MCDictionary& options = {});

/// As MCCreateImageWithURL, from bytes in memory; `data` null means absent.
MCRasterImageRef MCCreateImageWithData(const MCData* data, const MCDictionary& options = {});

/// Writes the image as a JPEG through the first destination extension for "public.jpeg", with
/// the codec's default quality, creating the parent folders. False when the image or URL is
/// absent, the folders cannot be made (`error` then tells why), no JPEG destination is
/// registered, or the codec fails. An image the codec cannot take as it is (not 8 bits) is sent
/// as sRGB RGBA.
bool MCSaveImageToURL(const MCRasterImageRef& image, const std::filesystem::path& url,
                      std::error_code* error = nullptr);
