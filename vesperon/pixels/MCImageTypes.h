#pragma once
// The sets of type identifiers the library treats as images, camera raw files, JPEG, HEIC and
// movies, and one membership test per set.
//
// MCImageTypes and MCMovieTypes follow the codec registry at each call. The other three are
// computed once, at first use: MCRAWImageTypes taken before any plug-in was registered stays empty
// for the life of the process. The tests are exact membership — a type that merely conforms to a
// member is not in the set — and false for an absent identifier.

#include <optional>
#include <set>
#include <string>

/// The source image types of the shared codec manager.
std::set<std::string> MCImageTypes();
/// The source video types of the shared codec manager.
std::set<std::string> MCMovieTypes();
/// The members of MCImageTypes at first use that conform to "public.camera-raw-image".
const std::set<std::string>& MCRAWImageTypes();
/// "public.jpeg", "public.jpeg-2000" and "com.apple.rjpeg".
const std::set<std::string>& MCJPEGImageTypes();
/// "public.heic" and "public.heif".
const std::set<std::string>& MCHEICImageTypes();

/// Whether the type is an image type (conforms to "public.image"); false for none.
bool MCIsImageType(const std::optional<std::string>& identifier);
/// Whether the type is a camera raw type.
bool MCIsRAWImageType(const std::optional<std::string>& identifier);
/// Whether the type is JPEG.
bool MCIsJPEGImageType(const std::optional<std::string>& identifier);
/// Whether the type is HEIC or HEIF.
bool MCIsHEICImageType(const std::optional<std::string>& identifier);
/// Whether the type is a movie type (conforms to "public.movie").
bool MCIsMovieType(const std::optional<std::string>& identifier);
