#include <vesperon/pixels/MCImageTypes.h>

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

std::set<std::string> MCImageTypes() { return MCImageCodecManager::sharedInstance().sourceImageTypes(); }

std::set<std::string> MCMovieTypes() { return MCImageCodecManager::sharedInstance().sourceVideoTypes(); }

const std::set<std::string>& MCRAWImageTypes() {
  static const std::set<std::string> types = [] {
    std::set<std::string> raw;
    for (const auto& type : MCImageCodecManager::sharedInstance().sourceImageTypes())
      if (MCTypeConformsTo(type, kUTTypeRawImage)) raw.insert(type);
    return raw;
  }();
  return types;
}

const std::set<std::string>& MCJPEGImageTypes() {
  static const std::set<std::string> types = {kUTTypeJPEG, kUTTypeJPEG2000, "com.apple.rjpeg"};
  return types;
}

const std::set<std::string>& MCHEICImageTypes() {
  static const std::set<std::string> types = {"public.heic", "public.heif"};
  return types;
}

bool MCIsImageType(const std::optional<std::string>& identifier) {
  // The manager's own set, not a copy of it: this runs for every file a browser meets.
  return identifier && MCImageCodecManager::sharedInstance().sourceImageTypes().count(*identifier) > 0;
}

bool MCIsRAWImageType(const std::optional<std::string>& identifier) {
  return identifier && MCRAWImageTypes().count(*identifier) > 0;
}

bool MCIsJPEGImageType(const std::optional<std::string>& identifier) {
  return identifier && MCJPEGImageTypes().count(*identifier) > 0;
}

bool MCIsHEICImageType(const std::optional<std::string>& identifier) {
  return identifier && MCHEICImageTypes().count(*identifier) > 0;
}

bool MCIsMovieType(const std::optional<std::string>& identifier) {
  return identifier && MCImageCodecManager::sharedInstance().sourceVideoTypes().count(*identifier) > 0;
}
