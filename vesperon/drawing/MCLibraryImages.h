#pragma once
// The library's own image resources: the files it installs for itself, as a bundle keeps its
// images, found beside the library wherever it lies — `<prefix>/share/vesperon/images` for
// `<prefix>/lib/libvesperon.so`, in a build tree as once installed.
//
// A resource is known by its plain name ("badge-plate"): an SVG of that name is drawn with
// librsvg at its own size; otherwise a PNG of that name is read through the codec plug-ins.

#include <vesperon/drawing/MCImageExtensions.h>

#include <filesystem>
#include <optional>
#include <string>

/// The folder of the library's image resources: $VESPERON_DATADIR/images when that is set, else
/// the images folder of the library's data folder beside it.
std::filesystem::path MCLibraryImagesDirectory();

/// The file of the named resource, or none: when there is no such file, or the name is not a
/// plain file name (empty, ".", "..", or holding a "/"), which could reach outside the folder.
std::optional<std::filesystem::path> MCLibraryImagePath(const std::string& name);

/// The named resource at scale 1, or none as above, or when the file cannot be read.
MCImageRef MCLibraryImageNamed(const std::string& name);
