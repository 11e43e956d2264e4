#pragma once
// MCImageLoadOptions: load options that run an MCImageLoadStrategy, made with the options.

#include <vesperon/pipeline/MCImageLoadStrategy.h>

class MCImageLoadOptions : public MCResourceLoadOptions {
 public:
  MCImageLoadOptions() : strategy_(std::make_shared<MCImageLoadStrategy>()) {}
  /// The image strategy.
  std::shared_ptr<MCResourceLoadStrategy> strategy() const override { return strategy_; }

 private:
  std::shared_ptr<MCImageLoadStrategy> strategy_;
};
