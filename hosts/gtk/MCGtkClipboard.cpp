#include "MCGtkClipboard.h"

#include <gtk/gtk.h>

#include <chrono>
#include <sstream>

namespace {

constexpr const char* kURIList = "text/uri-list";
constexpr const char* kText = "text/plain;charset=utf-8";

std::string mimeTypeFor(const std::string& type) {
  if (type == MCPasteboardTypeFileURL) return kURIList;
  if (type == MCPasteboardTypeString) return kText;
  return "application/x-vesperon-" + type;
}

GBytes* bytesOf(const std::string& text) { return g_bytes_new(text.data(), text.size()); }

/// Reads one MIME type of the clipboard, iterating the main context until it comes.
std::optional<std::string> readType(GdkClipboard* clipboard, const char* mimeType) {
  struct Pending {
    bool done = false;
    std::optional<std::string> text;
  } pending;
  const char* types[] = {mimeType, nullptr};
  gdk_clipboard_read_async(
      clipboard, types, G_PRIORITY_DEFAULT, nullptr,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        auto* p = static_cast<Pending*>(data);
        GInputStream* stream = gdk_clipboard_read_finish(GDK_CLIPBOARD(source), result, nullptr, nullptr);
        if (stream) {
          std::string text;
          char buffer[4096];
          gssize n;
          while ((n = g_input_stream_read(stream, buffer, sizeof buffer, nullptr, nullptr)) > 0) text.append(buffer, std::size_t(n));
          g_object_unref(stream);
          p->text = std::move(text);
        }
        p->done = true;
      },
      &pending);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (!pending.done && std::chrono::steady_clock::now() < end) g_main_context_iteration(nullptr, TRUE);
  // A read that did not finish still points at `pending`: wait it out rather than leave it dangling.
  while (!pending.done) g_main_context_iteration(nullptr, TRUE);
  return pending.text;
}

}  // namespace

MCGtkClipboard::MCGtkClipboard(GdkClipboard* clipboard) : clipboard_(clipboard) {
  g_object_ref(clipboard_);
  handler_ = g_signal_connect(clipboard_, "changed", G_CALLBACK(&MCGtkClipboard::onChanged), this);
}

MCGtkClipboard::~MCGtkClipboard() {
  if (publishSource_) g_source_remove(publishSource_);
  g_signal_handler_disconnect(clipboard_, handler_);
  g_object_unref(clipboard_);
}

void MCGtkClipboard::onChanged(GdkClipboard* clipboard, void* data) {
  auto* self = static_cast<MCGtkClipboard*>(data);
  if (!gdk_clipboard_is_local(clipboard)) {
    self->ownsContents_ = false;
    ++self->externalChanges_;
  }
}

void* MCGtkClipboard::createContentProvider(const std::vector<MCPasteboardItem>& items) {
  std::string uris, paths, text;
  std::vector<GdkContentProvider*> providers;
  std::map<std::string, std::string> others;
  for (const MCPasteboardItem& item : items) {
    for (const std::string& type : item.types()) {
      const std::string value = item.stringForType(type).value_or("");
      if (type == MCPasteboardTypeFileURL) {
        uris += value + "\r\n";
        if (auto path = item.fileURL()) paths += (paths.empty() ? "" : "\n") + path->string();
      } else if (type == MCPasteboardTypeString) {
        text += (text.empty() ? "" : "\n") + value;
      } else if (!others.count(type)) {
        others[type] = value;
      }
    }
  }
  if (!uris.empty()) providers.push_back(gdk_content_provider_new_for_bytes(kURIList, bytesOf(uris)));
  if (!text.empty() || !paths.empty())
    providers.push_back(gdk_content_provider_new_for_bytes(kText, bytesOf(text.empty() ? paths : text)));
  for (const auto& [type, value] : others)
    providers.push_back(gdk_content_provider_new_for_bytes(mimeTypeFor(type).c_str(), bytesOf(value)));
  return gdk_content_provider_new_union(providers.data(), providers.size());
}

void MCGtkClipboard::writeItems(std::vector<MCPasteboardItem> items) {
  written_ = std::move(items);
  ownsContents_ = true;
  // A copy clears the pasteboard and then writes to it: the desktop is told once, with what it
  // holds when the main loop next turns, not twice in a row.
  if (!publishSource_) publishSource_ = g_idle_add(+[](gpointer data) -> gboolean {
    static_cast<MCGtkClipboard*>(data)->publish();
    return G_SOURCE_REMOVE;
  }, this);
}

void MCGtkClipboard::publish() {
  publishSource_ = 0;
  if (written_.empty()) {
    gdk_clipboard_set_content(clipboard_, nullptr);
    return;
  }
  auto* provider = static_cast<GdkContentProvider*>(createContentProvider(written_));
  gdk_clipboard_set_content(clipboard_, provider);
  g_object_unref(provider);
}

std::vector<MCPasteboardItem> MCGtkClipboard::readItems() {
  if (ownsContents_ || gdk_clipboard_is_local(clipboard_)) return written_;
  std::vector<MCPasteboardItem> items;
  GdkContentFormats* formats = gdk_clipboard_get_formats(clipboard_);
  if (gdk_content_formats_contain_mime_type(formats, kURIList)) {
    if (auto uris = readType(clipboard_, kURIList)) {
      std::istringstream lines(*uris);
      std::string line;
      while (std::getline(lines, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        MCPasteboardItem item;
        item.setString(MCPasteboardTypeFileURL, line);
        items.push_back(std::move(item));
      }
    }
  }
  if (items.empty() && (gdk_content_formats_contain_mime_type(formats, kText) ||
                        gdk_content_formats_contain_mime_type(formats, "text/plain"))) {
    if (auto text = readType(clipboard_, gdk_content_formats_contain_mime_type(formats, kText) ? kText : "text/plain")) {
      MCPasteboardItem item;
      item.setString(MCPasteboardTypeString, *text);
      items.push_back(std::move(item));
    }
  }
  return items;
}
