#include <vesperon/codecs/MCDeferredImageCodec.h>

#include <vesperon/codecs/MCImageCodecManager.h>
#include <vesperon/core/MCLog.h>

MCDeferredImageCodec::MCDeferredImageCodec(std::filesystem::path plugInURL, MCImageCodecManifest manifest)
    : plugInURL_(std::move(plugInURL)), manifest_(std::move(manifest)) {}

std::shared_ptr<MCImageCodec> MCDeferredImageCodec::loadedCodec() {
  std::call_once(once_, [this] {
    std::string reason;
    auto codec = MCImageCodecManager::loadPlugInAtURL(plugInURL_, &reason);
    if (codec && codec->extensionIdentifier() != manifest_.identifier) {
      reason = "it is " + codec->extensionIdentifier() + ", not " + manifest_.identifier + " as its manifest says";
      codec.reset();
    }
    if (!codec)
      MCLog::sdkGraphics()->logError("Codec plug-in " + plugInURL_.string() + " could not be loaded: " + reason);
    codec_ = std::move(codec);
    loaded_.store(true, std::memory_order_release);
  });
  return codec_;
}

std::shared_ptr<MCImageSource> MCDeferredImageCodec::imageSourceWithURL(const std::filesystem::path& url,
                                                                        const MCImageSourceOptions& options) {
  auto codec = loadedCodec();
  return codec ? codec->imageSourceWithURL(url, options) : nullptr;
}

std::shared_ptr<MCImageSource> MCDeferredImageCodec::imageSourceWithData(std::shared_ptr<const MCData> data,
                                                                         const MCImageSourceOptions& options) {
  auto codec = loadedCodec();
  return codec ? codec->imageSourceWithData(std::move(data), options) : nullptr;
}

std::shared_ptr<MCImageDestination> MCDeferredImageCodec::imageDestinationAtURL(
    const std::filesystem::path& url, const MCImageDestinationOptions& options) {
  auto codec = loadedCodec();
  return codec ? codec->imageDestinationAtURL(url, options) : nullptr;
}
