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

/// An item the preview panel shows: a file.
class MCPreviewItem {
 public:
  virtual ~MCPreviewItem() = default;
  /// The file shown.
  virtual std::filesystem::path previewItemURL() const = 0;
  /// The title shown; the file's name by default.
  virtual std::string previewItemTitle() const { return previewItemURL().filename().string(); }
  /// What the controller needs to find the item again.
  virtual std::any previewItemDisplayState() const { return {}; }
};

/// What the panel shows: a list of items.
class MCPreviewPanelDataSource {
 public:
  virtual ~MCPreviewPanelDataSource() = default;
  /// How many items there are.
  virtual long numberOfPreviewItemsInPreviewPanel(MCPreviewPanel& panel) = 0;
  /// The item at `index`; none when there is none.
  virtual std::shared_ptr<MCPreviewItem> previewItemAtIndex(MCPreviewPanel& panel, long index) = 0;
};

/// Optional help for the panel: events, and where an item shows for the zoom.
class MCPreviewPanelDelegate {
 public:
  virtual ~MCPreviewPanelDelegate() = default;
  /// An event the panel got; true when the delegate took it.
  virtual bool handleEvent(MCPreviewPanel& panel, const MCEvent& event);
  /// Where the item shows on screen, for the panel's zoom; zero for none.
  virtual MCRect sourceFrameOnScreenForPreviewItem(MCPreviewPanel& panel, const MCPreviewItem& item);
  /// The picture the zoom starts from, and in `contentRect` the part of it that is the item; none
  /// for none.
  virtual MCRasterImageRef transitionImageForPreviewItem(MCPreviewPanel& panel, const MCPreviewItem& item,
                                                         MCRect* contentRect);
};

/// How a host shows the panel.
class MCPreviewPanelPresenter {
 public:
  virtual ~MCPreviewPanelPresenter() = default;
  /// Shows the panel (over the whole screen when asked).
  virtual void show(MCPreviewPanel& panel, bool fullScreen) = 0;
  /// Hides the panel.
  virtual void hide(MCPreviewPanel& panel) = 0;
  /// The items or the current one changed.
  virtual void reload(MCPreviewPanel& panel) = 0;
};

/// The one panel that previews the files of the focused view at full size; the host shows it.
class MCPreviewPanel {
 public:
  /// The shared panel, made on first use.
  static std::shared_ptr<MCPreviewPanel> sharedPreviewPanel();
  /// Whether the shared panel was made.
  static bool sharedPreviewPanelExists();

  /// Whether the panel shows.
  bool isVisible() const { return visible_; }
  /// Hides the panel; its controller gives up control.
  void orderOut();
  /// Shows the panel; control goes to the chain of `window` (the key window when none is given).
  void makeKeyAndOrderFront(MCWindow* window = nullptr);
  /// Shows the panel over the whole screen.
  void enterFullScreenMode(MCWindow* window = nullptr);
  /// Leaves full screen, still showing.
  void exitFullScreenMode();
  /// Whether the panel shows over the whole screen.
  bool isInFullScreenMode() const { return fullScreen_; }

  /// Gives control to the first responder along the window's chain that accepts it.
  void updateController(MCWindow* window);
  /// The responder in control; none when none is.
  MCResponder* currentController() const { return controller_; }

  /// The data source (set by the controller).
  MCPreviewPanelDataSource* dataSource() const { return dataSource_; }
  /// Sets the data source, not held.
  void setDataSource(MCPreviewPanelDataSource* dataSource) { dataSource_ = dataSource; }
  /// The delegate (set by the controller).
  MCPreviewPanelDelegate* delegate() const { return delegate_; }
  /// Sets the delegate, not held.
  void setDelegate(MCPreviewPanelDelegate* delegate) { delegate_ = delegate; }

  /// How many items the data source has; 0 without one.
  long numberOfPreviewItems();
  /// The index of the item shown.
  long currentPreviewItemIndex() const { return currentIndex_; }
  /// Shows another item (kept within the items) and tells the presenter.
  void setCurrentPreviewItemIndex(long index);
  /// The item shown; none without items.
  std::shared_ptr<MCPreviewItem> currentPreviewItem();
  /// Asks the data source again and tells the presenter.
  void reloadData();

  /// An event while the panel has the focus: the delegate first, then the panel's own arrows.
  bool handleEvent(const MCEvent& event);

  /// The host's presenter, which shows and hides the panel.
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
