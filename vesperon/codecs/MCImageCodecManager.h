#pragma once
// MCImageCodecManager: the registry of codec plug-ins.
//
// It keeps two ordered lists, source and destination extensions, and from them maps from uniform
// type identifier to the extensions for that type, in order of trial, and the sets of types that
// can be read and written. The shared instance registers the built-in plug-in folder (beside the
// library: `<libdir>/vesperon/plugins`) and then each folder of $VESPERON_PLUGIN_PATH (colon-separated)
// on first use.
//
// A plug-in whose manifest lies beside it (MCImageCodecManifest), no older than the module, is
// registered from the manifest as an MCDeferredImageCodec and loaded when it is first asked for a
// source or destination; the others are loaded as they are registered. Either way the lists, maps
// and sets are the same.
//
// No lock: the tables are read from worker threads, so registering and reordering must not run at
// the same time as loads.

#include <vesperon/codecs/MCImageCodec.h>
#include <vesperon/core/MCIndexSet.h>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class MCImageCodecManager {
 public:
  /// A registered codec.
  using Extension = std::shared_ptr<MCImageCodec>;
  /// Codecs in order of preference.
  using ExtensionList = std::vector<Extension>;

  MCImageCodecManager() = default;
  MCImageCodecManager(const MCImageCodecManager&) = delete;
  MCImageCodecManager& operator=(const MCImageCodecManager&) = delete;

  /// The shared manager; it registers the installed plug-ins on first use.
  static MCImageCodecManager& sharedInstance();
  /// The folder where the project installs its plug-ins, relative to the library.
  static std::filesystem::path builtInPlugInsURL();
  /// Opens one plug-in module and makes its codec; none when it cannot be opened, lacks the entry
  /// point or was built for another ABI version, with the reason in `reason` when given.
  static Extension loadPlugInAtURL(const std::filesystem::path& url, std::string* reason = nullptr);

  /// Loads every plug-in module directly in `url` (no hidden files, no sub-folders, only the plug-in
  /// suffix), adds the sources sorted by priority, descending, and reloads the maps. Modules that
  /// cannot be loaded, lack the entry point or have another ABI version are passed over.
  void registerPlugInsAtURL(const std::filesystem::path& url);
  /// Rebuilds the maps and type sets from the lists in their present order.
  void reload();
  /// Empties every list, map and set.
  void unregisterPlugIns();

  /// Orders the sources by the place of their identifier in `identifiers`; unknown ones go last.
  void setPlugInsOrder(const std::vector<std::string>& identifiers);
  /// Moves the sources at `indexes` to `index` (counted before the move) and answers their new places.
  MCIndexSet movePlugInsOrderAtIndexes(const MCIndexSet& indexes, uint64_t index);

  /// Every codec that reads, in order.
  const ExtensionList& allSourceExtensions() const { return sourceExtensions_; }
  /// Every codec that writes, in order.
  const ExtensionList& allDestinationExtensions() const { return destinationExtensions_; }
  /// A copy of the type's list, or none.
  std::optional<ExtensionList> sourceExtensionsForUTI(const std::string& uti) const;
  /// A copy of the type's list of writers, or none.
  std::optional<ExtensionList> destinationExtensionsForUTI(const std::string& uti) const;
  /// Appends, even when the extension is already there.
  void registerSourceExtension(const Extension& extension, const std::string& uti);
  /// Appends a writer for the type.
  void registerDestinationExtension(const Extension& extension, const std::string& uti);

  /// @name Types
  //@{
  /// The image and video types some codec reads or writes.
  const std::set<std::string>& sourceImageTypes() const { return sourceImageTypes_; }
  const std::set<std::string>& sourceVideoTypes() const { return sourceVideoTypes_; }
  const std::set<std::string>& destinationImageTypes() const { return destinationImageTypes_; }
  const std::set<std::string>& destinationVideoTypes() const { return destinationVideoTypes_; }
  //@}

 private:
  std::set<std::string> sourceImageTypes_;
  std::set<std::string> sourceVideoTypes_;
  std::set<std::string> destinationImageTypes_;
  std::set<std::string> destinationVideoTypes_;
  ExtensionList sourceExtensions_;
  ExtensionList destinationExtensions_;
  std::map<std::string, ExtensionList> sourceExtensionsMap_;
  std::map<std::string, ExtensionList> destinationExtensionsMap_;
};
