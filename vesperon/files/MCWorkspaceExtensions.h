#pragma once
// Which application opens a set of files, and moving files to the trash.
//
// Applications are the desktop's: GIO's GAppInfo for the files' content types (the desktop
// entries and mimeapps.list of the XDG data folders). An application's URL is the path of its
// desktop entry; its bundle identifier is the desktop entry's id ("org.gnome.Loupe.desktop").

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// The one application that opens every type among the files by default, or none when the types
/// disagree or one has no application. When `otherApplicationURLs` is given it receives the other
/// applications that can open all the types (the main one left out), in no fixed order. Files
/// whose type cannot be read are passed over; only the first file of each type is asked.
std::optional<std::filesystem::path> applicationURLForURLs(const std::vector<std::filesystem::path>& urls,
                                                           std::vector<std::filesystem::path>* otherApplicationURLs);
/// The desktop file of the default application that opens all the paths; none when there is none.
std::optional<std::filesystem::path> applicationURLForPaths(const std::vector<std::string>& paths,
                                                            std::vector<std::filesystem::path>* otherApplicationURLs);

/// The same by identifiers; the other list holds distinct identifiers without the main one.
std::optional<std::string> applicationBundleIDForURLs(const std::vector<std::filesystem::path>& urls,
                                                      std::vector<std::string>* otherApplicationBundleIDs);
/// The identifier of that application; none when there is none.
std::optional<std::string> applicationBundleIDForPaths(const std::vector<std::string>& paths,
                                                       std::vector<std::string>* otherApplicationBundleIDs);

/// The desktop entry's path of the application with this identifier, or none.
std::optional<std::filesystem::path> URLForApplicationWithBundleIdentifier(const std::string& bundleIdentifier);
/// The application's name as menus show it, or none.
std::optional<std::string> displayNameOfApplication(const std::string& bundleIdentifier);
/// The application's icon as an icon-theme name (or a file path), or none.
std::optional<std::string> iconNameOfApplication(const std::string& bundleIdentifier);

/// Opens the files with the application of this identifier; false, with the reason logged and in
/// `error`, when there is no such application or it cannot be started.
bool openURLsWithApplication(const std::vector<std::filesystem::path>& urls, const std::string& bundleIdentifier,
                             std::string* error = nullptr);

/// Opens a URI with the desktop's handler for its scheme ("geo:" a map, "https:" the browser):
/// GIO's default application for "x-scheme-handler/SCHEME". False, with the reason logged and in
/// `error`, when the URI has no scheme, no application handles it, or it cannot be started.
bool openURI(const std::string& uri, std::string* error = nullptr);

/// Moves the item to the user's trash (GIO's g_file_trash; the call blocks until it is done). True on success, with where the item now lies in the trash's files/ folder in
/// `resultingItemURL` when it is given and found; false with the reason logged and in `error`.
bool trashItemAtURL(const std::filesystem::path& url, std::optional<std::filesystem::path>* resultingItemURL,
                    std::string* error);
