#include <vesperon/files/MCWorkspaceExtensions.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/files/MCFileManagerExtensions.h>

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <algorithm>
#include <map>
#include <set>
#include <unistd.h>

namespace {

std::optional<std::string> contentTypeOf(const std::filesystem::path& url) {
  GFile* file = g_file_new_for_path(url.c_str());
  GFileInfo* info = g_file_query_info(file, G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE, G_FILE_QUERY_INFO_NONE,
                                      nullptr, nullptr);
  g_object_unref(file);
  if (!info) return std::nullopt;
  std::optional<std::string> type;
  if (const char* content = g_file_info_get_content_type(info)) type = content;
  g_object_unref(info);
  return type;
}

std::optional<std::string> idOf(GAppInfo* app) {
  if (!app) return std::nullopt;
  const char* id = g_app_info_get_id(app);
  return id ? std::optional<std::string>(id) : std::nullopt;
}

GAppInfo* appWithId(const std::string& id) {
  return G_APP_INFO(g_desktop_app_info_new(id.c_str()));  // null when there is none
}

// The first file of each content type, in the order given.
std::vector<std::string> typesOf(const std::vector<std::filesystem::path>& urls) {
  std::vector<std::string> types;
  for (const auto& url : urls) {
    auto type = contentTypeOf(url);
    if (type && std::find(types.begin(), types.end(), *type) == types.end()) types.push_back(*type);
  }
  return types;
}

}  // namespace

std::optional<std::string> applicationBundleIDForURLs(const std::vector<std::filesystem::path>& urls,
                                                      std::vector<std::string>* otherApplicationBundleIDs) {
  const std::vector<std::string> types = typesOf(urls);
  std::optional<std::string> main;
  bool disagreed = false;
  for (std::size_t i = 0; i < types.size(); ++i) {
    GAppInfo* app = g_app_info_get_default_for_type(types[i].c_str(), FALSE);
    auto id = idOf(app);
    if (app) g_object_unref(app);
    if (!id) {
      main.reset();
      disagreed = true;
      break;
    }
    if (i == 0) main = id;
    else if (main != id) disagreed = true;
  }
  if (disagreed) main.reset();
  if (otherApplicationBundleIDs) {
    otherApplicationBundleIDs->clear();
    std::set<std::string> common;
    for (std::size_t i = 0; i < types.size(); ++i) {
      std::set<std::string> these;
      GList* apps = g_app_info_get_all_for_type(types[i].c_str());
      for (GList* it = apps; it; it = it->next) {
        if (auto id = idOf(G_APP_INFO(it->data))) these.insert(*id);
        g_object_unref(it->data);
      }
      g_list_free(apps);
      if (i == 0) common = std::move(these);
      else {
        std::set<std::string> both;
        std::set_intersection(common.begin(), common.end(), these.begin(), these.end(),
                              std::inserter(both, both.begin()));
        common = std::move(both);
      }
    }
    if (main) common.erase(*main);
    otherApplicationBundleIDs->assign(common.begin(), common.end());
  }
  return main;
}

std::optional<std::filesystem::path> URLForApplicationWithBundleIdentifier(const std::string& bundleIdentifier) {
  GAppInfo* app = appWithId(bundleIdentifier);
  if (!app) return std::nullopt;
  std::optional<std::filesystem::path> url;
  if (const char* file = g_desktop_app_info_get_filename(G_DESKTOP_APP_INFO(app))) url = file;
  g_object_unref(app);
  return url;
}

std::optional<std::string> displayNameOfApplication(const std::string& bundleIdentifier) {
  GAppInfo* app = appWithId(bundleIdentifier);
  if (!app) return std::nullopt;
  std::optional<std::string> name;
  if (const char* text = g_app_info_get_display_name(app)) name = text;
  g_object_unref(app);
  return name;
}

std::optional<std::string> iconNameOfApplication(const std::string& bundleIdentifier) {
  GAppInfo* app = appWithId(bundleIdentifier);
  if (!app) return std::nullopt;
  std::optional<std::string> name;
  if (GIcon* icon = g_app_info_get_icon(app)) {
    if (G_IS_THEMED_ICON(icon)) {
      const gchar* const* names = g_themed_icon_get_names(G_THEMED_ICON(icon));
      if (names && names[0]) name = names[0];
    } else if (G_IS_FILE_ICON(icon)) {
      if (char* path = g_file_get_path(g_file_icon_get_file(G_FILE_ICON(icon)))) {
        name = path;
        g_free(path);
      }
    }
  }
  g_object_unref(app);
  return name;
}

std::optional<std::filesystem::path> applicationURLForURLs(const std::vector<std::filesystem::path>& urls,
                                                           std::vector<std::filesystem::path>* otherApplicationURLs) {
  std::vector<std::string> others;
  auto main = applicationBundleIDForURLs(urls, otherApplicationURLs ? &others : nullptr);
  if (otherApplicationURLs) {
    otherApplicationURLs->clear();
    for (const auto& id : others)
      if (auto url = URLForApplicationWithBundleIdentifier(id)) otherApplicationURLs->push_back(*url);
  }
  return main ? URLForApplicationWithBundleIdentifier(*main) : std::nullopt;
}

std::optional<std::filesystem::path> applicationURLForPaths(const std::vector<std::string>& paths,
                                                            std::vector<std::filesystem::path>* otherApplicationURLs) {
  return applicationURLForURLs(std::vector<std::filesystem::path>(paths.begin(), paths.end()), otherApplicationURLs);
}

std::optional<std::string> applicationBundleIDForPaths(const std::vector<std::string>& paths,
                                                       std::vector<std::string>* otherApplicationBundleIDs) {
  return applicationBundleIDForURLs(std::vector<std::filesystem::path>(paths.begin(), paths.end()),
                                    otherApplicationBundleIDs);
}

bool openURLsWithApplication(const std::vector<std::filesystem::path>& urls, const std::string& bundleIdentifier,
                             std::string* error) {
  GAppInfo* app = appWithId(bundleIdentifier);
  std::string failure;
  if (!app) {
    failure = "no application " + bundleIdentifier;
  } else {
    GList* files = nullptr;
    for (auto it = urls.rbegin(); it != urls.rend(); ++it) files = g_list_prepend(files, g_file_new_for_path(it->c_str()));
    GError* problem = nullptr;
    if (!g_app_info_launch(app, files, nullptr, &problem)) {
      failure = problem ? problem->message : "the application did not start";
      if (problem) g_error_free(problem);
    }
    g_list_free_full(files, g_object_unref);
    g_object_unref(app);
  }
  if (failure.empty()) return true;
  MCLog::sdkFileSystem()->logError("Couldn't open files with " + bundleIdentifier + ": " + failure);
  if (error) *error = failure;
  return false;
}

namespace {

// The items in the trash that came from `original`: the trash folders of the freedesktop trash
// (the home trash, and the volume's own ".Trash/<uid>" or ".Trash-<uid>"), whose info/ entries
// name each item's original path and deletion date.
std::map<std::filesystem::path, std::string> trashedItemsFrom(const std::filesystem::path& original) {
  std::vector<std::pair<std::filesystem::path, std::filesystem::path>> trashes;  // folder, top of relative paths
  trashes.emplace_back(std::filesystem::path(g_get_user_data_dir()) / "Trash", std::filesystem::path());
  if (auto volume = volumeURLOfItemAtURL(original.parent_path())) {
    const std::string uid = std::to_string(::getuid());
    trashes.emplace_back(*volume / ".Trash" / uid, *volume);
    trashes.emplace_back(*volume / (".Trash-" + uid), *volume);
  }
  std::map<std::filesystem::path, std::string> items;
  for (const auto& [trash, top] : trashes) {
    std::error_code ec;
    for (std::filesystem::directory_iterator it(trash / "info", ec), end; !ec && it != end; it.increment(ec)) {
      if (it->path().extension() != ".trashinfo") continue;
      GKeyFile* info = g_key_file_new();
      if (g_key_file_load_from_file(info, it->path().c_str(), G_KEY_FILE_NONE, nullptr)) {
        char* path = g_key_file_get_string(info, "Trash Info", "Path", nullptr);
        char* date = g_key_file_get_string(info, "Trash Info", "DeletionDate", nullptr);
        char* unescaped = path ? g_uri_unescape_string(path, nullptr) : nullptr;
        if (unescaped && date) {
          std::filesystem::path was(unescaped);
          if (was.is_relative()) was = top / was;
          if (was == original) items[trash / "files" / it->path().stem()] = date;
        }
        g_free(unescaped);
        g_free(date);
        g_free(path);
      }
      g_key_file_free(info);
    }
  }
  return items;
}

// The item that is in the trash now and was not before: the newest of those if several.
std::optional<std::filesystem::path> newlyTrashed(const std::map<std::filesystem::path, std::string>& before,
                                                  const std::map<std::filesystem::path, std::string>& after) {
  std::optional<std::filesystem::path> found;
  std::string foundDate;
  for (const auto& [path, date] : after) {
    if (before.count(path)) continue;
    if (!found || foundDate <= date) {
      found = path;
      foundDate = date;
    }
  }
  return found;
}

}  // namespace

bool openURI(const std::string& uri, std::string* error) {
  const auto fail = [&](const std::string& reason) {
    MCLog::sdkFileSystem()->logError("Couldn't open " + uri + ": " + reason);
    if (error) *error = reason;
    return false;
  };
  gchar* scheme = g_uri_parse_scheme(uri.c_str());
  if (!scheme) return fail("it has no scheme");
  GAppInfo* handler = g_app_info_get_default_for_uri_scheme(scheme);
  g_free(scheme);
  if (!handler) return fail("no application handles it");
  GList* uris = g_list_append(nullptr, const_cast<char*>(uri.c_str()));
  GError* launchError = nullptr;
  const bool launched = g_app_info_launch_uris(handler, uris, nullptr, &launchError);
  g_list_free(uris);
  g_object_unref(handler);
  if (!launched) {
    const std::string reason = launchError ? launchError->message : "the application did not start";
    if (launchError) g_error_free(launchError);
    return fail(reason);
  }
  return true;
}

bool trashItemAtURL(const std::filesystem::path& url, std::optional<std::filesystem::path>* resultingItemURL,
                    std::string* error) {
  std::error_code ec;
  const std::filesystem::path absolute = std::filesystem::absolute(url, ec).lexically_normal();
  // GIO's trash is a blocking call that needs no main loop, so a caller on the main thread may
  // wait for it too.
  std::string failure;
  std::optional<std::filesystem::path> resulting;
  GFile* file = g_file_new_for_path(absolute.c_str());
  GError* problem = nullptr;
  const auto before = trashedItemsFrom(absolute);
  if (g_file_trash(file, nullptr, &problem)) {
    resulting = newlyTrashed(before, trashedItemsFrom(absolute));
  } else {
    failure = problem ? problem->message : "the item could not be moved to the trash";
    if (problem) g_error_free(problem);
  }
  g_object_unref(file);
  if (!failure.empty()) {
    MCLog::sdkFileSystem()->logError("Couldn't move " + url.string() + " to the trash: " + failure);
    if (error) *error = failure;
    return false;
  }
  if (resultingItemURL) *resultingItemURL = resulting;
  return true;
}
