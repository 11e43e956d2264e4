#pragma once
// MCThumbnailLoadOptions: load options that run an MCThumbnailLoadStrategy.
//
// One options object may be shared by many requests (MCThumbnailCache shares its own) and read by
// strategies on worker threads while the main thread changes it, so its settings are atomic:
// a request that has not started yet loads with the values of the moment it runs.

#include <vesperon/pipeline/MCThumbnailLoadStrategy.h>

#include <atomic>

class MCThumbnailLoadOptions : public MCResourceLoadOptions {
 public:
  /// With the strategy to run; by default a new MCThumbnailLoadStrategy.
  explicit MCThumbnailLoadOptions(std::shared_ptr<MCThumbnailLoadStrategy> strategy = std::make_shared<MCThumbnailLoadStrategy>())
      : strategy_(std::move(strategy)) {}

  /// The thumbnail strategy.
  std::shared_ptr<MCResourceLoadStrategy> strategy() const override { return strategy_; }

  /// Make the thumbnail of the image file from its full image even if it holds one. Default false.
  bool createThumbnailFromImageAlways() const { return createThumbnailFromImageAlways_.load(); }
  /// Sets whether thumbnails are always made from the full image (any thread).
  void setCreateThumbnailFromImageAlways(bool value) { createThumbnailFromImageAlways_.store(value); }
  /// The wanted larger side; 0 leaves it to the descriptor's estimate. Default 0.
  uint64_t thumbnailMaxPixelSize() const { return thumbnailMaxPixelSize_.load(); }
  /// Sets the largest side of the thumbnails (any thread).
  void setThumbnailMaxPixelSize(uint64_t value) { thumbnailMaxPixelSize_.store(value); }
  /// The decode budget of every read the strategy makes (MCThumbnailReadingOptions'
  /// `maxDecodePixelCount`); 0, the default, leaves the sources' default of 128 million pixels.
  uint64_t maxDecodePixelCount() const { return maxDecodePixelCount_.load(); }
  /// Sets the most pixels a decode may allocate (any thread).
  void setMaxDecodePixelCount(uint64_t value) { maxDecodePixelCount_.store(value); }
  /// Take a valid entry of the desktop's shared thumbnail cache (MCFreedesktopThumbnailCache)
  /// before reading the file, and make nothing for a file this library failed on before. Default
  /// true; the entries are never used when thumbnails are to be made from the image always.
  bool readsSharedThumbnails() const { return readsSharedThumbnails_.load(); }
  /// Sets whether the desktop's shared thumbnail cache is read (any thread).
  void setReadsSharedThumbnails(bool value) { readsSharedThumbnails_.store(value); }

 private:
  std::shared_ptr<MCThumbnailLoadStrategy> strategy_;
  std::atomic<bool> createThumbnailFromImageAlways_{false};
  std::atomic<uint64_t> thumbnailMaxPixelSize_{0};
  std::atomic<uint64_t> maxDecodePixelCount_{0};
  std::atomic<bool> readsSharedThumbnails_{true};
};
