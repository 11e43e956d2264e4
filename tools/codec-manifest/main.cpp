// vesperon-codec-manifest MODULE OUT: loads one codec plug-in module and writes its manifest, so
// that programs register the plug-in without loading it (see MCImageCodecManifest). The build runs
// it after linking each plug-in.

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/codecs/MCImageCodecManifest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: vesperon-codec-manifest MODULE OUT\n");
    return 2;
  }
  auto codec = MCImageCodecManager::loadPlugInAtURL(argv[1]);
  if (!codec) {
    std::fprintf(stderr, "vesperon-codec-manifest: %s is not a codec plug-in of this library's version\n", argv[1]);
    return 1;
  }
  // Written aside and renamed, so a build stopped half-way never leaves a manifest cut short.
  std::filesystem::path out = argv[2], temporary = out;
  temporary += ".part";
  {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file << MCImageCodecManifest::describing(*codec).json();
    if (!file.flush()) {
      std::fprintf(stderr, "vesperon-codec-manifest: cannot write %s\n", temporary.c_str());
      return 1;
    }
  }
  std::error_code ec;
  std::filesystem::rename(temporary, out, ec);
  if (ec) {
    std::fprintf(stderr, "vesperon-codec-manifest: cannot write %s: %s\n", out.c_str(), ec.message().c_str());
    return 1;
  }
  return 0;
}
