#pragma once
// Drag sessions: what a view hands the window to drag (items with their frames and images), the
// source that answers for the drag, and what a view under a drag is told.
//
// A view starts a drag with MCView::beginDraggingSession; the window's host carries it out (the
// GTK host starts a real drag that offers the items' file URLs as text/uri-list, so files drop
// into the file manager; the offscreen host records it and ends it when told). The source hears
// `willBeginAtPoint` when it starts and `endedAtPoint` with the operation when it ends.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCRasterImage.h>
#include <vesperon/toolkit/MCPasteboard.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Drag operations, with the platform's bits.
enum MCDragOperation : uint64_t {
  MCDragOperationNone = 0,
  MCDragOperationCopy = 1,
  MCDragOperationLink = 2,
  MCDragOperationGeneric = 4,
  MCDragOperationPrivate = 8,
  MCDragOperationMove = 16,
  MCDragOperationDelete = 32,
  MCDragOperationEvery = ~uint64_t(0),
};

/// Where a drag may end, as the source is asked about it.
enum class MCDraggingContext : int { OutsideApplication = 0, WithinApplication = 1 };

/// The key of the picture of a dragged item.
inline const std::string MCDraggingImageComponentIconKey = "icon";
/// The key of the label of a dragged item.
inline const std::string MCDraggingImageComponentLabelKey = "label";

/// One part of what a dragged item looks like.
struct MCDraggingImageComponent {
  /// Which part (MCDraggingImageComponentIconKey, …).
  std::string key;
  /// Where the part lies, relative to the item's dragging frame.
  MCRect frame{};  // relative to the item's dragging frame
  /// The part's picture.
  MCRasterImageRef contents;
  /// A part of `key` with no frame and no picture yet.
  static MCDraggingImageComponent draggingImageComponentWithKey(std::string key) { return {std::move(key), {}, {}}; }
};

/// One item of a drag: what it writes to the pasteboard, and its picture.
struct MCDraggingItem {
  /// An item that writes itself through `writer`.
  explicit MCDraggingItem(std::shared_ptr<MCPasteboardWriting> writer) : item(std::move(writer)) {}

  /// What the item writes to the drag's pasteboard.
  std::shared_ptr<MCPasteboardWriting> item;
  /// In the coordinates of the view that begins the drag; the window's once the session holds it.
  MCRect draggingFrame{};
  /// Makes the item's image when the drag needs it (run later, on the main thread).
  std::function<std::vector<MCDraggingImageComponent>()> imageComponentsProvider;

  /// The parts of the item's picture.
  std::vector<MCDraggingImageComponent> imageComponents() const {
    return imageComponentsProvider ? imageComponentsProvider() : std::vector<MCDraggingImageComponent>{};
  }
};

class MCDraggingSession;

/// The object a drag comes from.
class MCDraggingSource {
 public:
  virtual ~MCDraggingSource() = default;
  /// The operations (MCDragOperation bits) the source allows inside or outside the application.
  virtual uint64_t sourceOperationMaskForDraggingContext(MCDraggingSession& session, MCDraggingContext context) = 0;
  /// The drag begins at `screenPoint`; nothing by default.
  virtual void willBeginAtPoint(MCDraggingSession& session, MCPoint screenPoint);
  /// The drag ended at `screenPoint` with `operation` (none when cancelled); nothing by default.
  virtual void endedAtPoint(MCDraggingSession& session, MCPoint screenPoint, uint64_t operation);
};

/// A drag under way: its items, its source and pasteboard, where it is and how it ended.
class MCDraggingSession {
 public:
  /// A session of `items` from `source`, starting at a point of the window.
  MCDraggingSession(std::vector<MCDraggingItem> items, MCDraggingSource* source, MCPoint locationInWindow);

  /// The items dragged.
  const std::vector<MCDraggingItem>& draggingItems() const { return items_; }
  /// The source; it is told of the beginning and the end.
  MCDraggingSource* source() const { return source_; }
  /// The pasteboard the items were written to when the session began.
  const std::shared_ptr<MCPasteboard>& draggingPasteboard() const { return pasteboard_; }
  /// Where the drag began, in window coordinates.
  MCPoint draggingLocation() const { return location_; }
  /// How the items' pictures gather under the pointer (stored for the host).
  int draggingFormation() const { return formation_; }
  /// Sets the formation.
  void setDraggingFormation(int formation) { formation_ = formation; }
  /// Whether a cancelled drag slides back; true by default (stored for the host).
  bool animatesToStartingPositionsOnCancelOrFail() const { return animatesBack_; }
  /// Sets whether a cancelled drag slides back.
  void setAnimatesToStartingPositionsOnCancelOrFail(bool flag) { animatesBack_ = flag; }

  // For hosts.
  /// Tells the source the drag began.
  void beginAtPoint(MCPoint screenPoint);
  /// Tells the source the drag ended with `operation` (none when cancelled); only the first call counts.
  void endAtPoint(MCPoint screenPoint, uint64_t operation);
  /// Whether the drag ended.
  bool hasEnded() const { return ended_; }
  /// The operation the drag ended with; none until it ended, and for a cancelled one.
  uint64_t operation() const { return operation_; }
  /// The operations the source allows for `context`.
  uint64_t sourceOperationMask(MCDraggingContext context);
  /// The items' file URLs, for hosts that offer text/uri-list.
  std::vector<std::string> fileURLStrings() const;

 private:
  std::vector<MCDraggingItem> items_;
  MCDraggingSource* source_;
  std::shared_ptr<MCPasteboard> pasteboard_;
  MCPoint location_;
  int formation_ = 0;
  bool animatesBack_ = true;
  bool began_ = false, ended_ = false;
  uint64_t operation_ = MCDragOperationNone;
};

/// What a view under a drag learns of it.
struct MCDraggingInfo {
  /// The pasteboard holding what is dragged.
  std::shared_ptr<MCPasteboard> draggingPasteboard;
  /// Where the pointer is, in window base coordinates.
  MCPoint draggingLocation{};  // window base coordinates
  /// The operations the source allows.
  uint64_t draggingSourceOperationMask = MCDragOperationNone;
  /// The source; none for a drag from another program.
  MCDraggingSource* draggingSource = nullptr;  // none for a drag from another program
};
