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

inline const std::string MCDraggingImageComponentIconKey = "icon";
inline const std::string MCDraggingImageComponentLabelKey = "label";

struct MCDraggingImageComponent {
  std::string key;
  MCRect frame{};  // relative to the item's dragging frame
  MCRasterImageRef contents;
  static MCDraggingImageComponent draggingImageComponentWithKey(std::string key) { return {std::move(key), {}, {}}; }
};

struct MCDraggingItem {
  explicit MCDraggingItem(std::shared_ptr<MCPasteboardWriting> writer) : item(std::move(writer)) {}

  std::shared_ptr<MCPasteboardWriting> item;
  /// In the coordinates of the view that begins the drag; the window's once the session holds it.
  MCRect draggingFrame{};
  /// Makes the item's image when the drag needs it (run later, on the main thread).
  std::function<std::vector<MCDraggingImageComponent>()> imageComponentsProvider;

  std::vector<MCDraggingImageComponent> imageComponents() const {
    return imageComponentsProvider ? imageComponentsProvider() : std::vector<MCDraggingImageComponent>{};
  }
};

class MCDraggingSession;

/// The object a drag comes from.
class MCDraggingSource {
 public:
  virtual ~MCDraggingSource() = default;
  virtual uint64_t sourceOperationMaskForDraggingContext(MCDraggingSession& session, MCDraggingContext context) = 0;
  virtual void willBeginAtPoint(MCDraggingSession& session, MCPoint screenPoint);
  virtual void endedAtPoint(MCDraggingSession& session, MCPoint screenPoint, uint64_t operation);
};

class MCDraggingSession {
 public:
  MCDraggingSession(std::vector<MCDraggingItem> items, MCDraggingSource* source, MCPoint locationInWindow);

  const std::vector<MCDraggingItem>& draggingItems() const { return items_; }
  MCDraggingSource* source() const { return source_; }
  /// The pasteboard the items were written to when the session began.
  const std::shared_ptr<MCPasteboard>& draggingPasteboard() const { return pasteboard_; }
  MCPoint draggingLocation() const { return location_; }
  int draggingFormation() const { return formation_; }
  void setDraggingFormation(int formation) { formation_ = formation; }
  bool animatesToStartingPositionsOnCancelOrFail() const { return animatesBack_; }
  void setAnimatesToStartingPositionsOnCancelOrFail(bool flag) { animatesBack_ = flag; }

  // For hosts.
  /// Tells the source the drag began.
  void beginAtPoint(MCPoint screenPoint);
  /// Tells the source the drag ended with `operation` (none when cancelled); only the first call counts.
  void endAtPoint(MCPoint screenPoint, uint64_t operation);
  bool hasEnded() const { return ended_; }
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
  std::shared_ptr<MCPasteboard> draggingPasteboard;
  MCPoint draggingLocation{};  // window base coordinates
  uint64_t draggingSourceOperationMask = MCDragOperationNone;
  MCDraggingSource* draggingSource = nullptr;  // none for a drag from another program
};
