#pragma once
// MCBrowserViewPreviewItem: the preview panel's item for a browser item.

#include <vesperon/core/MCIndexPath.h>
#include <vesperon/toolkit/MCPreviewPanel.h>

#include <memory>

/// The preview panel's item for a browser item: forwards to the delegate's item and remembers the
/// index path, which the view reads back when the panel hands the item over.
class MCBrowserViewPreviewItem : public MCPreviewItem {
 public:
  /// `item`, shown for the item at `indexPath`.
  MCBrowserViewPreviewItem(std::shared_ptr<MCPreviewItem> item, MCIndexPath indexPath)
      : previewItem_(std::move(item)), previewItemIndexPath_(indexPath) {}
  std::filesystem::path previewItemURL() const override {
    return previewItem_ ? previewItem_->previewItemURL() : std::filesystem::path();
  }
  std::string previewItemTitle() const override { return previewItem_ ? previewItem_->previewItemTitle() : ""; }
  std::any previewItemDisplayState() const override { return previewItemIndexPath_; }
  /// The delegate's preview item.
  const std::shared_ptr<MCPreviewItem>& previewItem() const { return previewItem_; }
  /// The browser item it stands for.
  MCIndexPath previewItemIndexPath() const { return previewItemIndexPath_; }

 private:
  std::shared_ptr<MCPreviewItem> previewItem_;
  MCIndexPath previewItemIndexPath_;
};
