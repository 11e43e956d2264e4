#pragma once
// MCPreviewPanel: the one shared preview panel — a window that shows a large preview of the
// selected files — and the interfaces of whoever controls it.
//
// Control goes to the first responder along the key window's chain that accepts it
// (MCResponder::acceptsPreviewPanelControl); that responder is told `beginPreviewPanelControl`
// and sets itself as the panel's data source and delegate, and is told `endPreviewPanelControl`
// when control moves on. What the panel looks like is the host's: a presenter (the GTK host shows
// a window with the image) is told to show, hide and reload; without one the panel keeps its state
// only, which is all that tests and the offscreen host need.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCRasterImage.h>
#include <vesperon/toolkit/MCEvent.h>

#include <any>
#include <filesystem>
#include <memory>
#include <string>

class MCPreviewPanel;
class MCResponder;
class MCWindow;

class MCPreviewItem {
 public:
  virtual ~MCPreviewItem() = default;
  virtual std::filesystem::path previewItemURL() const = 0;
  virtual std::string previewItemTitle() const { return previewItemURL().filename().string(); }
  /// What the controller needs to find the item again.
  virtual std::any previewItemDisplayState() const { return {}; }
};

class MCPreviewPanelDataSource {
 public:
  virtual ~MCPreviewPanelDataSource() = default;
  virtual long numberOfPreviewItemsInPreviewPanel(MCPreviewPanel& panel) = 0;
  virtual std::shared_ptr<MCPreviewItem> previewItemAtIndex(MCPreviewPanel& panel, long index) = 0;
};

class MCPreviewPanelDelegate {
 public:
  virtual ~MCPreviewPanelDelegate() = default;
  /// An event the panel got; true when the delegate took it.
  virtual bool handleEvent(MCPreviewPanel& panel, const MCEvent& event);
  /// Where the item shows on screen, for the panel's zoom; zero for none.
  virtual MCRect sourceFrameOnScreenForPreviewItem(MCPreviewPanel& panel, const MCPreviewItem& item);
  virtual MCRasterImageRef transitionImageForPreviewItem(MCPreviewPanel& panel, const MCPreviewItem& item,
                                                         MCRect* contentRect);
};

/// How a host shows the panel.
class MCPreviewPanelPresenter {
 public:
  virtual ~MCPreviewPanelPresenter() = default;
  virtual void show(MCPreviewPanel& panel, bool fullScreen) = 0;
  virtual void hide(MCPreviewPanel& panel) = 0;
  /// The items or the current one changed.
  virtual void reload(MCPreviewPanel& panel) = 0;
};

class MCPreviewPanel {
 public:
  static std::shared_ptr<MCPreviewPanel> sharedPreviewPanel();
  static bool sharedPreviewPanelExists();

  bool isVisible() const { return visible_; }
  void orderOut();
  /// Shows the panel; control goes to the chain of `window` (the key window when none is given).
  void makeKeyAndOrderFront(MCWindow* window = nullptr);
  void enterFullScreenMode(MCWindow* window = nullptr);
  void exitFullScreenMode();
  bool isInFullScreenMode() const { return fullScreen_; }

  /// Gives control to the first responder along the window's chain that accepts it.
  void updateController(MCWindow* window);
  MCResponder* currentController() const { return controller_; }

  MCPreviewPanelDataSource* dataSource() const { return dataSource_; }
  void setDataSource(MCPreviewPanelDataSource* dataSource) { dataSource_ = dataSource; }
  MCPreviewPanelDelegate* delegate() const { return delegate_; }
  void setDelegate(MCPreviewPanelDelegate* delegate) { delegate_ = delegate; }

  long numberOfPreviewItems();
  long currentPreviewItemIndex() const { return currentIndex_; }
  void setCurrentPreviewItemIndex(long index);
  std::shared_ptr<MCPreviewItem> currentPreviewItem();
  void reloadData();

  /// An event while the panel has the focus: the delegate first, then the panel's own arrows.
  bool handleEvent(const MCEvent& event);

  void setPresenter(std::shared_ptr<MCPreviewPanelPresenter> presenter) { presenter_ = std::move(presenter); }

  /// A responder that goes away gives up control first.
  void controllerWillGoAway(MCResponder* responder);

 private:
  void show(MCWindow* window, bool fullScreen);
  bool visible_ = false, fullScreen_ = false;
  MCResponder* controller_ = nullptr;
  MCPreviewPanelDataSource* dataSource_ = nullptr;
  MCPreviewPanelDelegate* delegate_ = nullptr;
  long currentIndex_ = 0;
  std::shared_ptr<MCPreviewPanelPresenter> presenter_;
};
