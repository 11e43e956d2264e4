#pragma once
// Operations on file URLs (paths) that the sandbox helper and applications share: bookmark data
// made and resolved (MCBookmarkData), the common folder of a set of files, system and package
// paths, and equality by file identity rather than by path text.
//
// Failures are logged on the file-system log (MCLog::sdkFileSystem) and give none or false.

#include <vesperon/core/MCValue.h>

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// The path the bookmark resolves to now, or none. None data gives none; a bookmark that does not
/// resolve logs "Couldn't resolve bookmark: <reason>" and hands the reason to `error` when it is
/// given. Whether it is stale is not told.
std::optional<std::filesystem::path> URLWithSecurityScopedBookmark(const MCData* bookmark, std::string* error = nullptr);

/// The path recorded in the bookmark, without resolving it. Logs "Couldn't get URL path from
/// bookmark data" and gives none when there is none to read.
std::optional<std::string> URLPathFromSecurityScopedBookmark(const MCData* bookmark);

/// Bookmark data of the item at `url`, or none: logs "Couldn't create security scoped bookmark:
/// <reason>" and hands the reason to `error` when it is given.
std::optional<MCData> securityScopedBookmark(const std::filesystem::path& url, std::string* error = nullptr);

/// Claims access to the item for this process. Outside a sandbox there is nothing to claim: true
/// when the item can be reached. Inside one, true when the portal's path of it can be reached.
bool startAccessingSecurityScopedResource(const std::filesystem::path& url);
/// Gives the claim back. Claims are counted by MCSandboxURL; nothing is held per call here.
void stopAccessingSecurityScopedResource(const std::filesystem::path& url);

/// The deepest folder holding all the paths (compared without case, spelled as the smallest
/// path spells it); a single path gives itself. None for none or nothing in common.
std::optional<std::filesystem::path> commonURLForURLs(const std::vector<std::filesystem::path>& urls);

/// One common folder per volume (device) of the paths. A path whose device cannot be read is
/// logged and skipped.
std::set<std::filesystem::path> commonForVolumeURLs(const std::vector<std::filesystem::path>& urls);

/// Whether the path belongs to the system rather than to a user's own files. Judged on the path's
/// text made normal ("/home/../etc" is "/etc"), following no links; a relative or empty path is
/// not judged and gives false. A path is a system path when it is one of these folders, or lies
/// at any depth under one:
///  - the system tree of the Filesystem Hierarchy Standard: /bin, /boot, /dev, /etc, /lib, /lib32,
///    /lib64, /libx32, /opt, /proc, /run, /sbin, /snap, /sys, /usr, /var;
///  - a user's own settings, caches and program data, the counterpart of a user library: the
///    folders .cache, .config, .local and .var of a home folder (`/home/<user>`, `/var/home/<user>`,
///    /root, /var/roothome, and $HOME wherever it is).
/// Except where users' own files are kept inside that tree, which are not system paths:
/// /var/tmp; the home and mount folders of image-based systems (/var/home, /var/roothome, /var/mnt,
/// the home folders' other contents); removable media mounted under /run/media; network and cloud
/// shares under `/run/user/<uid>/gvfs`; files handed over by the document portal under
/// `/run/user/<uid>/doc` and /run/flatpak/doc.
/// Everything else is not a system path: /home and the files in it, /root, /tmp, /media, /mnt, /srv,
/// the root folder "/" itself, and top folders of the machine's own ("/data", "/usrx").
bool isSystemFileURL(const std::filesystem::path& url);

/// Whether the path or one of its parent folders is a package: a folder that file managers of the
/// photo world show as one document, known by its name extension ("x.app", "y.bundle",
/// "z.photoslibrary", "w.lrlibrary" …; Linux marks packages no other way). A failed read gives false.
bool isInPackageItemAtURL(const std::filesystem::path& url);

/// Whether a URL's text has a query that begins with "applesecurityscope". Paths have no query,
/// so this is true only for URL texts that carry one ("file:///a?applesecurityscope=…").
bool isSecurityScopedURL(const std::string& urlText);

/// True for equal paths, and for two paths to one file (same device and inode). A failed read
/// of either gives false.
bool isEqualFileURL(const std::optional<std::filesystem::path>& a, const std::optional<std::filesystem::path>& b);

/// Whether `url` lies under `ancestor` (both made absolute and normal first); a path is a
/// descendant of itself.
bool isDescendantOfURL(const std::filesystem::path& url, const std::filesystem::path& ancestor);
