#pragma once
// MCDeferredImageCodec: a codec plug-in registered from its manifest, whose module is opened on
// the first source or destination asked of it.
//
// Until then it answers the registry's questions (identifier, names, priority, types) from the
// manifest, so a program that reads no file of the plug-in's types never loads the plug-in nor the
// libraries it links. The first `imageSourceWithURL`, `imageSourceWithData` or
// `imageDestinationAtURL` loads the module, once, from whichever thread asks first; the others wait
// for it. A module that then fails to load, or that is not the codec its manifest named, gives no
// sources or destinations, and one line in the Graphics log says why.

#include <vesperon/codecs/MCImageCodec.h>
#include <vesperon/codecs/MCImageCodecManifest.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>

class MCDeferredImageCodec final : public MCImageCodec {
 public:
  /// A stand-in for the plug-in at `plugInURL`, known from `manifest` until first used.
  MCDeferredImageCodec(std::filesystem::path plugInURL, MCImageCodecManifest manifest);

  /// The plug-in module.
  const std::filesystem::path& plugInURL() const { return plugInURL_; }
  /// What the manifest says.
  const MCImageCodecManifest& manifest() const { return manifest_; }
  /// Whether the module has been opened (successfully or not).
  bool isLoaded() const { return loaded_.load(std::memory_order_acquire); }
  /// The plug-in's own codec, opening the module on the first call; none when it cannot be loaded.
  std::shared_ptr<MCImageCodec> loadedCodec();

  std::shared_ptr<MCImageSource> imageSourceWithURL(const std::filesystem::path& url,
                                                    const MCImageSourceOptions& options) override;
  std::shared_ptr<MCImageSource> imageSourceWithData(std::shared_ptr<const MCData> data,
                                                     const MCImageSourceOptions& options) override;
  std::shared_ptr<MCImageDestination> imageDestinationAtURL(const std::filesystem::path& url,
                                                            const MCImageDestinationOptions& options) override;

  std::string extensionIdentifier() const override { return manifest_.identifier; }
  std::string extensionDisplayName() const override { return manifest_.displayName; }
  std::string extensionDescription() const override { return manifest_.description; }
  double defaultPriority() const override { return manifest_.priority; }
  std::vector<std::string> sourceImageTypes() const override { return manifest_.sourceImageTypes; }
  std::vector<std::string> sourceVideoTypes() const override { return manifest_.sourceVideoTypes; }
  std::vector<std::string> destinationImageTypes() const override { return manifest_.destinationImageTypes; }
  std::vector<std::string> destinationVideoTypes() const override { return manifest_.destinationVideoTypes; }
  bool isAlwaysAvailableAsSource() const override { return manifest_.alwaysAvailableAsSource; }

 private:
  std::filesystem::path plugInURL_;
  MCImageCodecManifest manifest_;
  std::once_flag once_;
  std::shared_ptr<MCImageCodec> codec_;
  std::atomic<bool> loaded_{false};
};
