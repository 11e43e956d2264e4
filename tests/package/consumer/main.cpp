// Lists the codec plug-ins an installed Vesperon loads from its own plug-in folder, and reads a
// date through the metadata helpers: proof that headers, library and plug-ins were all found.

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/metadata/MCDateExtensions.h>

#include <cstdio>

int main() {
  auto& codecs = MCImageCodecManager::sharedInstance();
  std::printf("plug-in folder: %s\n", MCImageCodecManager::builtInPlugInsURL().c_str());
  for (const auto& extension : codecs.allSourceExtensions())
    std::printf("source: %s\n", extension->extensionIdentifier().c_str());
  const auto date = dateFromExifString(std::string("2021:06:01 12:00:00"));
  std::printf("date: %s\n", date ? exifString(*date).c_str() : "none");
  return codecs.allSourceExtensions().empty() ? 1 : 0;
}
