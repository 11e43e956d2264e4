#include <vesperon/codecs/MCImageCodecManager.h>

#include <vesperon/codecs/MCDeferredImageCodec.h>
#include <vesperon/codecs/MCImageCodecManifest.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <strings.h>

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> pluginFiles(const fs::path& url) {
  std::vector<fs::path> files;
  std::error_code ec;
  fs::directory_iterator it(url, ec), end;
  for (; !ec && it != end; it.increment(ec)) {
    const fs::path& path = it->path();
    std::string name = path.filename().string();
    if (name.empty() || name[0] == '.') continue;
    std::error_code typeError;
    if (it->is_directory(typeError)) continue;
    std::string extension = path.extension().string();
    if (strcasecmp(extension.c_str(), VESPERON_PLUGIN_SUFFIX) != 0) continue;
    files.push_back(path);
  }
  // A listing has no order of its own; discovery order is the name order.
  std::sort(files.begin(), files.end());
  return files;
}

// The plug-in as its manifest describes it, when there is a manifest for this version of the
// library that was written after the module was built.
std::shared_ptr<MCImageCodec> deferredCodec(const fs::path& file) {
  fs::path manifestURL = MCImageCodecManifest::urlForPlugInAtURL(file);
  std::error_code ec;
  auto moduleTime = fs::last_write_time(file, ec);
  if (ec) return nullptr;
  auto manifestTime = fs::last_write_time(manifestURL, ec);
  if (ec || manifestTime < moduleTime) return nullptr;
  auto manifest = MCImageCodecManifest::read(manifestURL);
  if (!manifest || manifest->abiVersion != MC_IMAGE_CODEC_ABI_VERSION) return nullptr;
  return std::make_shared<MCDeferredImageCodec>(file, std::move(*manifest));
}

}  // namespace

MCImageCodecManager::Extension MCImageCodecManager::loadPlugInAtURL(const fs::path& url, std::string* reason) {
  auto fail = [&](std::string why) -> Extension {
    if (reason) *reason = std::move(why);
    return nullptr;
  };
  // RTLD_LOCAL keeps one plug-in's symbols from answering another's look-ups.
  void* handle = dlopen(url.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* error = dlerror();
    return fail(error ? error : "it cannot be opened");
  }
  auto entry = reinterpret_cast<MCImageCodecPlugInEntryFunction>(dlsym(handle, MCImageCodecPlugInEntryName));
  const MCImageCodecPlugInInfo* info = entry ? entry() : nullptr;
  if (!info || !info->createCodec) {
    dlclose(handle);
    return fail("it has no entry point " + std::string(MCImageCodecPlugInEntryName));
  }
  if (info->abiVersion != MC_IMAGE_CODEC_ABI_VERSION) {
    // Read before closing: the record lives in the module.
    const std::string version = std::to_string(info->abiVersion);
    dlclose(handle);
    return fail("it was built for version " + version + " of the codec interface, not " +
                std::to_string(MC_IMAGE_CODEC_ABI_VERSION));
  }
  // The module stays loaded for the life of the process: the codec's code lives in it.
  MCImageCodec* codec = nullptr;
  try {
    codec = info->createCodec();
  } catch (...) {
    codec = nullptr;
  }
  if (!codec) return fail("it made no codec");
  return Extension(codec);
}

MCImageCodecManager& MCImageCodecManager::sharedInstance() {
  static MCImageCodecManager* manager = [] {
    auto* m = new MCImageCodecManager();
    m->registerPlugInsAtURL(builtInPlugInsURL());
    if (const char* extra = std::getenv("VESPERON_PLUGIN_PATH")) {
      std::stringstream folders(extra);
      std::string folder;
      while (std::getline(folders, folder, ':'))
        if (!folder.empty()) m->registerPlugInsAtURL(folder);
    }
    return m;
  }();
  return *manager;
}

fs::path MCImageCodecManager::builtInPlugInsURL() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&MCImageCodecManager::builtInPlugInsURL), &info) == 0 || !info.dli_fname)
    return {};
  std::error_code ec;
  fs::path library = fs::canonical(info.dli_fname, ec);
  if (ec) library = info.dli_fname;
  return library.parent_path() / VESPERON_PLUGIN_SUBDIR;
}

void MCImageCodecManager::registerPlugInsAtURL(const fs::path& url) {
  for (const fs::path& file : pluginFiles(url)) {
    auto codec = deferredCodec(file);
    if (!codec) codec = loadPlugInAtURL(file);
    if (!codec) continue;
    if (!codec->sourceImageTypes().empty() || !codec->sourceVideoTypes().empty()) {
      codec->setIsAvailableAsSource(true);
      sourceExtensions_.push_back(codec);
    }
    if (!codec->destinationImageTypes().empty()) destinationExtensions_.push_back(codec);
  }
  std::stable_sort(sourceExtensions_.begin(), sourceExtensions_.end(),
                   [](const Extension& a, const Extension& b) { return a->defaultPriority() > b->defaultPriority(); });
  reload();
}

void MCImageCodecManager::reload() {
  sourceExtensionsMap_.clear();
  sourceImageTypes_.clear();
  sourceVideoTypes_.clear();
  destinationExtensionsMap_.clear();
  destinationImageTypes_.clear();
  destinationVideoTypes_.clear();
  for (const auto& extension : sourceExtensions_) {
    for (const auto& type : extension->sourceImageTypes()) {
      registerSourceExtension(extension, type);
      sourceImageTypes_.insert(type);
    }
    for (const auto& type : extension->sourceVideoTypes()) {
      registerSourceExtension(extension, type);
      sourceVideoTypes_.insert(type);
    }
  }
  for (const auto& extension : destinationExtensions_) {
    for (const auto& type : extension->destinationImageTypes()) {
      registerDestinationExtension(extension, type);
      destinationImageTypes_.insert(type);
    }
    for (const auto& type : extension->destinationVideoTypes()) {
      registerDestinationExtension(extension, type);
      destinationVideoTypes_.insert(type);
    }
  }
}

void MCImageCodecManager::unregisterPlugIns() {
  sourceExtensions_.clear();
  destinationExtensions_.clear();
  reload();
}

void MCImageCodecManager::setPlugInsOrder(const std::vector<std::string>& identifiers) {
  auto place = [&](const Extension& e) -> uint64_t {
    auto it = std::find(identifiers.begin(), identifiers.end(), e->extensionIdentifier());
    return it == identifiers.end() ? NSNotFound : static_cast<uint64_t>(it - identifiers.begin());
  };
  std::stable_sort(sourceExtensions_.begin(), sourceExtensions_.end(),
                   [&](const Extension& a, const Extension& b) { return place(a) < place(b); });
  reload();
}

MCIndexSet MCImageCodecManager::movePlugInsOrderAtIndexes(const MCIndexSet& indexes, uint64_t index) {
  MCIndexSet valid = indexes;
  if (!sourceExtensions_.empty()) valid.removeIndexesInRange({sourceExtensions_.size(), NSNotFound});
  else valid.removeAllIndexes();
  uint64_t below = valid.countOfIndexesInRange({0, index});
  uint64_t start = index - below;
  ExtensionList moved, rest;
  for (uint64_t i = 0; i < sourceExtensions_.size(); ++i)
    (valid.containsIndex(i) ? moved : rest).push_back(sourceExtensions_[i]);
  start = std::min<uint64_t>(start, rest.size());
  rest.insert(rest.begin() + static_cast<std::ptrdiff_t>(start), moved.begin(), moved.end());
  sourceExtensions_ = std::move(rest);
  reload();
  return MCIndexSet(MCRange{start, moved.size()});
}

std::optional<MCImageCodecManager::ExtensionList> MCImageCodecManager::sourceExtensionsForUTI(
    const std::string& uti) const {
  auto it = sourceExtensionsMap_.find(uti);
  if (it == sourceExtensionsMap_.end()) return std::nullopt;
  return it->second;
}

std::optional<MCImageCodecManager::ExtensionList> MCImageCodecManager::destinationExtensionsForUTI(
    const std::string& uti) const {
  auto it = destinationExtensionsMap_.find(uti);
  if (it == destinationExtensionsMap_.end()) return std::nullopt;
  return it->second;
}

void MCImageCodecManager::registerSourceExtension(const Extension& extension, const std::string& uti) {
  sourceExtensionsMap_[uti].push_back(extension);
}

void MCImageCodecManager::registerDestinationExtension(const Extension& extension, const std::string& uti) {
  destinationExtensionsMap_[uti].push_back(extension);
}
