#pragma once
// MCBookmarkData: the library's own bookmark of a file or folder, as bytes to keep in settings.
//
// A bookmark records the path and the item's identity (MCFileIdentity: device, inode, birth time
// or generation). Resolving finds the item again: at its path when the identity still matches, or
// under another name in the same parent folder when it was renamed there. A folder that was
// deleted, moved elsewhere, or replaced by another folder of the same name does not resolve.
//
// Grants, and where they come from:
//  - Outside a sandbox every path the user can read is open to the program; a bookmark is only a
//    remembered path with its identity, and starting or stopping access only counts claims.
//  - Inside a Flatpak sandbox (the file "/.flatpak-info" exists) a folder the user chose is
//    reachable through the document portal. A bookmark made there records the portal's document
//    id too, and resolving asks the portal for the document's current path (MCDocumentPortal).
//
// The bytes: the 8-byte magic "VSPBMK01", then little-endian u64 device, u64 inode, i64 birth
// time, u64 generation, u32 path length and the path's bytes, u32 document-id length and its bytes.
// Nothing else follows.

#include <vesperon/core/MCValue.h>
#include <vesperon/files/MCDocumentPortal.h>
#include <vesperon/files/MCFileIdentity.h>

#include <filesystem>
#include <optional>
#include <string>

struct MCBookmarkData {
  /// The file or folder.
  std::filesystem::path path;
  /// Its identity when the bookmark was made.
  MCFileIdentity identity;
  /// The document portal's id of the item, empty outside a sandbox.
  std::string documentIdentifier;

  /// A bookmark of the item at `path`, or none with the reason in `error` when it cannot be read.
  /// With a portal (by default the sandbox's, none outside one) the item is added to it as a
  /// document and the bookmark records the document's id.
  static std::optional<MCBookmarkData> ofItemAtPath(const std::filesystem::path& path, std::string* error,
                                                    MCDocumentPortal* portal = MCDocumentPortal::sandboxPortal());

  /// The bookmark as bytes, for storing.
  MCData encoded() const;
  /// None for bytes that are not a whole bookmark.
  static std::optional<MCBookmarkData> decode(const MCData& data);

  /// The item's path now, or none with the reason in `error`. A bookmark with a document id needs
  /// a portal, which gives the document's path.
  std::optional<std::filesystem::path> resolve(std::string* error,
                                               MCDocumentPortal* portal = MCDocumentPortal::sandboxPortal()) const;
};
