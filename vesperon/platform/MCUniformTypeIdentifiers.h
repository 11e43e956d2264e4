#pragma once
// Uniform type identifiers: the platform's vocabulary of file types, as free functions.
//
// A built-in table knows every type the library meets — the still-image formats, the common camera
// raw formats (all conforming to "public.camera-raw-image"), the common movie formats and the
// abstract types above them ("public.image", "public.movie", "public.data" …), each with its
// description, filename extensions and the types it conforms to. An extension the table lacks is
// asked of shared-mime-info through GIO; a type found that way gets a dynamic identifier
// "dyn.mime.<media type>", conforming to "public.data" and, for image/ and video/ media types, to
// "public.image" or "public.movie".
//
// Identifiers compare without regard to case, as on the platform. All functions are thread-safe.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// @name Type identifiers
//@{
/// The identifiers of the types the library names, abstract ("public.item", "public.image" …)
/// and concrete ("public.jpeg" …).
inline constexpr const char* kUTTypeItem = "public.item";
inline constexpr const char* kUTTypeContent = "public.content";
inline constexpr const char* kUTTypeData = "public.data";
inline constexpr const char* kUTTypeFolder = "public.folder";
inline constexpr const char* kUTTypeImage = "public.image";
inline constexpr const char* kUTTypeRawImage = "public.camera-raw-image";
inline constexpr const char* kUTTypeJPEG = "public.jpeg";
inline constexpr const char* kUTTypeJPEG2000 = "public.jpeg-2000";
inline constexpr const char* kUTTypePNG = "public.png";
inline constexpr const char* kUTTypeTIFF = "public.tiff";
inline constexpr const char* kUTTypeGIF = "com.compuserve.gif";
inline constexpr const char* kUTTypeBMP = "com.microsoft.bmp";
inline constexpr const char* kUTTypeAudiovisualContent = "public.audiovisual-content";
inline constexpr const char* kUTTypeMovie = "public.movie";
inline constexpr const char* kUTTypeQuickTimeMovie = "com.apple.quicktime-movie";
inline constexpr const char* kUTTypeMPEG4 = "public.mpeg-4";
//@}

/// True when the identifiers name the same type (case-insensitive).
bool MCTypeEqual(const std::string& a, const std::string& b);
/// True when `type` is `conformsTo` or conforms to it through the table's parents, transitively.
bool MCTypeConformsTo(const std::string& type, const std::string& conformsTo);
/// The type's description, or none for a type nobody knows.
std::optional<std::string> MCTypeCopyDescription(const std::string& type);
/// All filename extensions of the type, lower case, the preferred one first.
std::vector<std::string> MCTypeCopyAllFilenameExtensions(const std::string& type);
/// The preferred filename extension, or none.
std::optional<std::string> MCTypeCopyPreferredFilenameExtension(const std::string& type);
/// The preferred identifier of a type with this filename extension (without the dot, any case)
/// that conforms to `conformingTo`; none when no such type is known.
std::optional<std::string> MCTypeCreatePreferredIdentifierForFilenameExtension(const std::string& extension,
                                                                               const std::string& conformingTo = kUTTypeData);
/// The type of the file at `url`, as the file system gives it: "public.folder" for a folder, the
/// type of the extension for a file, "public.data" for a file without a known extension. None,
/// with the reason in `error`, when nothing exists at `url`.
std::optional<std::string> MCTypeIdentifierForURL(const std::filesystem::path& url, std::string* error = nullptr);
/// The image or movie type that first bytes show by their signature: JPEG, PNG, TIFF, GIF, BMP,
/// WebP, HEIC/HEIF/AVIF, the ISO movie brands (MP4, QuickTime, M4V), and the raw formats with a
/// signature of their own (CR2, CR3, RAF, ORF, RW2; NEF, ARW and DNG start as plain TIFF). None
/// for anything else. Needs at most the first 16 bytes.
std::optional<std::string> MCTypeIdentifierForBytes(const uint8_t* bytes, std::size_t length);
/// The type the file's first bytes show, whatever its name: the signatures above first, then
/// shared-mime-info's magic through GIO, landing on the table's entry for that media type (a PNG
/// named ".jpg" gives "public.png"). None for what is not a readable regular file, and for content
/// that shows no particular type.
std::optional<std::string> MCTypeIdentifierForContentsOfURL(const std::filesystem::path& url);
