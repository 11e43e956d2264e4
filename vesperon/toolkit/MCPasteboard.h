#pragma once
// MCPasteboard: typed data handed between views and programs — the general pasteboard behind
// copy and paste, and the drag pasteboard of a drag.
//
// An item holds one or more representations, each under a type identifier ("public.file-url",
// "public.utf8-plain-text", "public.png" …). Writers (MCPasteboardWriting) say which types they
// can give and give the data for each; MCPasteboardItem is the plain writer that holds its data.
//
// Where the data lives is the backend's business: in memory by default (tests, the offscreen
// host), the desktop clipboard while the GTK host runs (it sets the general pasteboard's backend;
// the desktop sees file URLs as text/uri-list and text as text/plain;charset=utf-8).

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

inline const std::string MCPasteboardTypeFileURL = "public.file-url";
inline const std::string MCPasteboardTypeURL = "public.url";
inline const std::string MCPasteboardTypeString = "public.utf8-plain-text";
inline const std::string MCPasteboardTypePNG = "public.png";
inline const std::string MCPasteboardTypeTIFF = "public.tiff";

using MCPasteboardData = std::vector<uint8_t>;

/// What can write itself to a pasteboard, in one or more types.
class MCPasteboardWriting {
 public:
  virtual ~MCPasteboardWriting() = default;
  /// The types it writes, best first.
  virtual std::vector<std::string> writableTypes() const = 0;
  /// The data for one of the writable types; none if it cannot be given after all.
  virtual std::optional<MCPasteboardData> pasteboardDataForType(const std::string& type) const = 0;
};

/// One item: representations by type, in the order they were set.
class MCPasteboardItem : public MCPasteboardWriting {
 public:
  MCPasteboardItem() = default;

  /// Sets the representation of `type`.
  void setData(const std::string& type, MCPasteboardData data);
  /// Sets the representation of `type` to UTF-8 text.
  void setString(const std::string& type, const std::string& string);
  /// The representation of `type`; none when the item has none.
  std::optional<MCPasteboardData> dataForType(const std::string& type) const;
  /// The representation of `type` as text; none when the item has none.
  std::optional<std::string> stringForType(const std::string& type) const;
  /// The types the item holds, in the order set.
  const std::vector<std::string>& types() const { return types_; }
  /// The first of `types` the item holds a representation of, conformance counted
  /// ("public.file-url" is a "public.url"); none when it holds none.
  std::optional<std::string> availableTypeFromArray(const std::vector<std::string>& types) const;

  /// An item for a file: its URL ("file:///…", percent-encoded) as "public.file-url".
  static std::shared_ptr<MCPasteboardItem> itemWithFileURL(const std::filesystem::path& path);
  /// The file of a "public.file-url" representation; none for another kind of URL.
  std::optional<std::filesystem::path> fileURL() const;

  /// The types the item holds.
  std::vector<std::string> writableTypes() const override { return types_; }
  std::optional<MCPasteboardData> pasteboardDataForType(const std::string& type) const override;

 private:
  std::vector<std::string> types_;
  std::map<std::string, MCPasteboardData> data_;
};

/// Where a pasteboard keeps its items.
class MCPasteboardBackend {
 public:
  virtual ~MCPasteboardBackend() = default;
  /// Replaces the items.
  virtual void writeItems(std::vector<MCPasteboardItem> items) = 0;
  /// The items held now.
  virtual std::vector<MCPasteboardItem> readItems() = 0;
  /// Changes whenever another owner (another program) may have replaced the contents.
  virtual long externalChangeCount() { return 0; }
};

class MCPasteboard {
 public:
  /// The pasteboard of copy and paste.
  static std::shared_ptr<MCPasteboard> generalPasteboard();
  /// A pasteboard of its own name, made on first use ("drag" serves drag sessions).
  static std::shared_ptr<MCPasteboard> pasteboardWithName(const std::string& name);
  /// A pasteboard of no name, for one use.
  static std::shared_ptr<MCPasteboard> pasteboardWithUniqueName();

  /// The pasteboard's name ("general" for the general one).
  const std::string& name() const { return name_; }

  /// Empties the pasteboard and answers the new change count.
  long clearContents();
  /// A number that grows each time the contents change.
  long changeCount() const;
  /// Adds one item per writer with every representation it gives; false when a writer gave none.
  bool writeObjects(const std::vector<std::shared_ptr<MCPasteboardWriting>>& writers);
  /// The items, in order.
  std::vector<MCPasteboardItem> pasteboardItems() const;
  /// The types of all items, each once, in order.
  std::vector<std::string> types() const;
  /// Whether some item holds one of `types` (or a type conforming to one).
  bool canReadItemWithDataConformingToTypes(const std::vector<std::string>& types) const;

  /// The first item's representation of `type`.
  std::optional<MCPasteboardData> dataForType(const std::string& type) const;
  /// The first item's representation of `type` as text.
  std::optional<std::string> stringForType(const std::string& type) const;
  /// Puts `string` into a new first item (the pasteboard should have been cleared).
  bool setString(const std::string& string, const std::string& type);

  /// The files of the items that hold file URLs, in order.
  std::vector<std::filesystem::path> readFileURLs() const;
  /// Writes one item per file, with its file URL; false when there is none.
  bool writeFileURLs(const std::vector<std::filesystem::path>& paths);

  /// Where the items live; an in-memory store by default.
  void setBackend(std::shared_ptr<MCPasteboardBackend> backend);
  /// Where the items live now.
  const std::shared_ptr<MCPasteboardBackend>& backend() const { return backend_; }

  /// An in-memory pasteboard of `name`.
  explicit MCPasteboard(std::string name);

 private:
  std::string name_;
  std::shared_ptr<MCPasteboardBackend> backend_;
  long changeCount_ = 0;
};

/// Whether `type` is `wanted` or conforms to it (the file URL to the URL, any text to plain text).
bool MCPasteboardTypeConforms(const std::string& type, const std::string& wanted);
/// "file:///a%20b" for /a b, and back (none for what is not a local file URL).
std::string MCFileURLStringFromPath(const std::filesystem::path& path);
std::optional<std::filesystem::path> MCPathFromFileURLString(const std::string& url);
