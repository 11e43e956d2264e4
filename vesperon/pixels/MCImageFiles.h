#pragma once
// Reading images from files and data, and saving them as JPEG, through the codec registry
// (MCImageCodecManager) — the library's image sources and destinations.
//
// The file type is found from the first bytes, as the platform's image source does, not from the
// name: JPEG, PNG, TIFF, GIF, BMP, WebP, HEIC/HEIF. The source extensions registered for that
// type are tried in order; the first that opens the file gives the image.
//
// Reports, on the log sdkGraphics at error level (or to the log file while writesToFile is on),
// follow the platform's image source statuses:
//   absent URL or data      "CGImageSource: URL cannot be nil" / "CGImageSource: data cannot be nil"
//   no bytes at all         "CGImageSource: zero count at URL: <path>" / "CGImageSource: zero count."
//   unknown type (−2), or no extension can open it (−4, invalid data)
//                           "CGImageSource: bad status <n> at URL: <path>" / "CGImageSource: bad status <n>."
// A file that cannot be read gives none without a report, and so does a source that opens but
// cannot decode its image.

#include <vesperon/core/MCValue.h>
#include <vesperon/platform/MCRasterImage.h>

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

/// The type identifier ("public.jpeg" …) that the first bytes of a file show, or an empty string.
std::string MCImageTypeOfBytes(const uint8_t* bytes, std::size_t length);

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
