#pragma once
// MCGtkClipboard: the desktop clipboard behind MCPasteboard while a GTK host runs.
//
// Writing offers every item's representations under the desktop's types: file URLs as
// text/uri-list (and as text/plain, the paths, for programs that take text), plain text as
// text/plain;charset=utf-8, other types as application/x-vesperon-<type>. Reading asks the
// clipboard for those types and waits for the answer by iterating the main context (at most two
// seconds); a clipboard owned by this program answers from memory at once.

#include <vesperon/toolkit/MCPasteboard.h>

typedef struct _GdkClipboard GdkClipboard;

class MCGtkClipboard : public MCPasteboardBackend {
 public:
  explicit MCGtkClipboard(GdkClipboard* clipboard);
  ~MCGtkClipboard() override;

  void writeItems(std::vector<MCPasteboardItem> items) override;
  std::vector<MCPasteboardItem> readItems() override;
  long externalChangeCount() override { return externalChanges_; }

  /// The content provider that offers `items` to the desktop (for drags as well).
  static void* createContentProvider(const std::vector<MCPasteboardItem>& items);

 private:
  static void onChanged(GdkClipboard* clipboard, void* self);
  void publish();
  unsigned publishSource_ = 0;
  GdkClipboard* clipboard_;
  unsigned long handler_ = 0;
  std::vector<MCPasteboardItem> written_;
  bool ownsContents_ = false;
  long externalChanges_ = 0;
};
