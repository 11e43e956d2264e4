#pragma once
// The four contracts that tie the resource pipeline together.
//
//   MCResourceDescriptor   what to load (a marker; MCImageDescriptor)
//   MCResource             what comes back (MCImageResource, MCThumbnailResource)
//   MCResourceLoadStrategy how to load it, run on a worker thread (MCImageLoadStrategy, …)
//   MCResourceLoadOptions  carries the strategy to run (MCImageLoadOptions, …)
//
// Any object that fulfils MCResourceLoadStrategy can run through MCResourceLoader.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// What to load (a file, a thumbnail of one).
class MCResourceDescriptor {
 public:
  virtual ~MCResourceDescriptor() = default;
};

/// What a load gives back.
class MCResource {
 public:
  virtual ~MCResource() = default;
  /// 0 for an image resource, 1 for a thumbnail resource.
  virtual int64_t resourceType() const = 0;
  /// The pipeline makes no errors of its own: a failed load shows as an absent image.
  virtual const std::optional<std::string>& error() const = 0;
};

class MCResourceLoadOptions;

/// How a load is done, on a worker thread.
class MCResourceLoadStrategy {
 public:
  virtual ~MCResourceLoadStrategy() = default;
  /// Runs on a worker thread, possibly on several at once for one strategy object.
  virtual std::shared_ptr<MCResource> loadResourceForDescriptor(const std::shared_ptr<const MCResourceDescriptor>& descriptor,
                                                                const std::shared_ptr<const MCResourceLoadOptions>& options) = 0;
};

/// The options of a load, which name its strategy.
class MCResourceLoadOptions {
 public:
  virtual ~MCResourceLoadOptions() = default;
  /// The strategy that does the load.
  virtual std::shared_ptr<MCResourceLoadStrategy> strategy() const = 0;
};
