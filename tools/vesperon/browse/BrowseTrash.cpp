#include "BrowseTrash.h"

#include <vesperon/core/MCLog.h>
#include <vesperon/files/MCWorkspaceExtensions.h>

#include <gio/gio.h>

namespace fs = std::filesystem;

std::optional<BrowseTrash::Item> BrowseTrash::trash(const fs::path& file, std::string* error) {
  std::optional<fs::path> inTrash;
  if (!trashItemAtURL(file, &inTrash, error)) return std::nullopt;
  if (!inTrash) {
    // Trashed, but where to is unknown (a trash this process cannot read): no way back.
    if (error) *error = "the trash does not say where it put the file";
    return Item{file, {}};
  }
  return Item{file, *inTrash};
}

bool BrowseTrash::restore(const Item& item, std::string* error) {
  const auto fail = [&](const std::string& why) {
    if (error) *error = why;
    MCLog::sdkFileSystem()->logError("cannot restore " + item.original.string() + " from the trash: " + why);
    return false;
  };
  if (item.inTrash.empty()) return fail("the trash did not say where it put the file");
  std::error_code ec;
  if (fs::exists(fs::symlink_status(item.original, ec))) return fail("a file of that name is there now");
  GFile* from = g_file_new_for_path(item.inTrash.c_str());
  GFile* to = g_file_new_for_path(item.original.c_str());
  GError* gerror = nullptr;
  const bool moved = g_file_move(from, to, G_FILE_COPY_NOFOLLOW_SYMLINKS, nullptr, nullptr, nullptr, &gerror);
  g_object_unref(from);
  g_object_unref(to);
  if (!moved) {
    const std::string why = gerror ? gerror->message : "it cannot be moved";
    if (gerror) g_error_free(gerror);
    return fail(why);
  }
  // Its note in info/ goes with it, or the trash would list a file it no longer holds.
  const fs::path note = item.inTrash.parent_path().parent_path() / "info" / (item.inTrash.filename().string() + ".trashinfo");
  fs::remove(note, ec);
  return true;
}
