#include "FilesTestSupport.h"

#include <vesperon/files/MCMenuExtensions.h>
#include <vesperon/files/MCWorkspaceExtensions.h>
#include <vesperon/toolkit/MCResponder.h>

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace fs = std::filesystem;

namespace {

// Three viewers of our own: Alpha and Beta open JPEG and PNG, Gamma only JPEG; Alpha is the
// default for JPEG and Beta for PNG.
void installApplications() {
  const fs::path applications = filesTestHome() / "data" / "applications";
  auto entry = [&](const std::string& id, const std::string& name, const std::string& types) {
    writeText(applications / (id + ".desktop"), "[Desktop Entry]\nType=Application\nName=" + name +
                                                    "\nExec=true %F\nIcon=" + id + "\nMimeType=" + types + "\n");
  };
  entry("alpha-viewer", "Alpha Viewer", "image/jpeg;image/png;");
  entry("beta-viewer", "Beta Viewer", "image/jpeg;image/png;");
  entry("gamma-viewer", "Gamma Viewer", "image/jpeg;");
  // As a package's installation does: the folder's MIME index, which GIO reads.
  const std::string index = "update-desktop-database " + applications.string();
  ASSERT_EQ(std::system(index.c_str()), 0) << index;
  writeText(filesTestHome() / "config" / "mimeapps.list",
            "[Default Applications]\nimage/jpeg=alpha-viewer.desktop\nimage/png=beta-viewer.desktop\n");
}

const fs::path kJPEG = fs::path(VESPERON_SAMPLES_DIR) / "alley.jpg";
const fs::path kJPEG2 = fs::path(VESPERON_SAMPLES_DIR) / "beach.jpg";
const fs::path kPNG = fs::path(VESPERON_SAMPLES_DIR) / "badge.png";

std::vector<std::string> sorted(std::vector<std::string> ids) {
  std::sort(ids.begin(), ids.end());
  return ids;
}

}  // namespace

TEST(Workspace, OneApplicationOnlyWhenEveryTypeAgreesAndOthersOpenThemAll) {
  ASSERT_NO_FATAL_FAILURE(installApplications());
  std::vector<std::string> others;
  EXPECT_EQ(applicationBundleIDForURLs({kJPEG, kJPEG2}, &others), "alpha-viewer.desktop");
  EXPECT_EQ(sorted(others), (std::vector<std::string>{"beta-viewer.desktop", "gamma-viewer.desktop"}));

  // Two types with different defaults: no main application; the others are those that open both.
  EXPECT_EQ(applicationBundleIDForURLs({kJPEG, kPNG, kJPEG2}, &others), std::nullopt);
  EXPECT_EQ(sorted(others), (std::vector<std::string>{"alpha-viewer.desktop", "beta-viewer.desktop"}));

  // The URL form gives the desktop entries' paths.
  std::vector<fs::path> otherURLs;
  EXPECT_EQ(applicationURLForURLs({kPNG}, &otherURLs),
            filesTestHome() / "data" / "applications" / "beta-viewer.desktop");
  EXPECT_EQ(otherURLs, (std::vector<fs::path>{filesTestHome() / "data" / "applications" / "alpha-viewer.desktop"}));
  EXPECT_EQ(applicationBundleIDForPaths({kJPEG.string()}, nullptr), "alpha-viewer.desktop");

  // A type nobody opens stops the search; missing files are passed over.
  const fs::path odd = freshFolder("odd") / "notes.vesperon-nothing";
  writeText(odd, std::string("\x01\x02\x03\x04 not a known format"));
  EXPECT_EQ(applicationBundleIDForURLs({kJPEG, odd}, &others), std::nullopt);
  EXPECT_TRUE(others.empty());
  EXPECT_EQ(applicationBundleIDForURLs({odd.parent_path() / "missing.jpg", kJPEG}, nullptr), "alpha-viewer.desktop");
  EXPECT_EQ(applicationBundleIDForURLs({}, &others), std::nullopt);
}

TEST(Workspace, OpenWithMenusListTheDefaultThenTheOthersByName) {
  ASSERT_NO_FATAL_FAILURE(installApplications());
  auto target = std::make_shared<MCResponder>();
  MCMenu menu;
  menu.addItem(MCMenuItem("stale"));
  buildOpenWithMenuForURLs(menu, {kJPEG}, target, "openWith:");
  std::vector<std::string> titles;
  for (const auto& item : menu.items()) titles.push_back(item.separator ? "—" : item.title);
  EXPECT_EQ(titles, (std::vector<std::string>{"Alpha Viewer", "—", "Beta Viewer", "Gamma Viewer"}));
  EXPECT_EQ(menu.items()[0].representedObject, "alpha-viewer.desktop");
  EXPECT_EQ(menu.items()[0].action, "openWith:");
  EXPECT_EQ(menu.items()[0].iconName, "alpha-viewer");
  EXPECT_EQ(menu.items()[2].target.lock(), target);

  // No default for both: no separator, the two that open both.
  buildOpenWithMenuForPaths(menu, {kJPEG.string(), kPNG.string()}, target, "openWith:");
  ASSERT_EQ(menu.numberOfItems(), 2u);
  EXPECT_EQ(menu.items()[0].title, "Alpha Viewer");
  EXPECT_EQ(menu.items()[1].title, "Beta Viewer");

  const fs::path odd = freshFolder("odd-menu") / "notes.vesperon-nothing";
  writeText(odd, std::string("\x01\x02\x03\x04 not a known format"));
  buildOpenWithMenuForURLs(menu, {odd}, target, "openWith:");
  ASSERT_EQ(menu.numberOfItems(), 1u);
  EXPECT_EQ(menu.items()[0].title, "<None>");
  EXPECT_FALSE(menu.items()[0].enabled);

  // Tags: the first one, or all of them.
  menu.removeAllItems();
  for (long tag : {1, 2, 1, 3}) menu.addItem(MCMenuItem("x", "", tag));
  EXPECT_TRUE(menu.removeItemWithTag(1));
  EXPECT_EQ(menu.items()[0].tag, 2);
  EXPECT_TRUE(menu.removeAllItemsWithTag(1));
  EXPECT_FALSE(menu.removeAllItemsWithTag(1));
  EXPECT_FALSE(menu.removeItemWithTag(9));
  EXPECT_EQ(menu.numberOfItems(), 2u);
}

TEST(Workspace, TrashMovesARealFileAndSaysWhereAndAMissingOneFails) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path folder = freshFolder("trash");
  const fs::path photo = folder / "rejected.jpg";
  fs::copy_file(kJPEG, photo);
  std::optional<fs::path> where;
  std::string error;
  if (!trashItemAtURL(photo, &where, &error)) GTEST_SKIP() << "no trash can be made here: " << error;
  EXPECT_FALSE(fs::exists(photo));
  ASSERT_TRUE(where);
  EXPECT_TRUE(fs::exists(*where)) << *where;
  EXPECT_EQ(fs::file_size(*where), fs::file_size(kJPEG));
  EXPECT_EQ(where->parent_path(), filesTestHome() / "data" / "Trash" / "files");

  // The same name again is a second item in the trash, not the first one.
  fs::copy_file(kPNG, photo);
  std::optional<fs::path> second;
  ASSERT_TRUE(trashItemAtURL(photo, &second, nullptr));
  ASSERT_TRUE(second);
  EXPECT_NE(*second, *where);
  EXPECT_EQ(fs::file_size(*second), fs::file_size(kPNG));

  EXPECT_FALSE(trashItemAtURL(folder / "missing.jpg", &where, &error));
  EXPECT_FALSE(error.empty());
  EXPECT_TRUE(log.contains("Couldn't move " + (folder / "missing.jpg").string() + " to the trash: ")) << log.text();
}

// A URI goes to the desktop's handler of its scheme, which receives it whole; a URI with no scheme
// or no handler is refused.
TEST(Workspace, URIsOpenWithTheHandlerOfTheirScheme) {
  const fs::path applications = filesTestHome() / "data" / "applications";
  const fs::path received = freshFolder("map") / "received";
  writeText(applications / "map-viewer.desktop",
            "[Desktop Entry]\nType=Application\nName=Map Viewer\nExec=sh -c 'printf %s \"$1\" > " + received.string() +
                "' sh %u\nMimeType=x-scheme-handler/geo;\n");
  ASSERT_EQ(std::system(("update-desktop-database " + applications.string()).c_str()), 0);
  writeText(filesTestHome() / "config" / "mimeapps.list", "[Default Applications]\nx-scheme-handler/geo=map-viewer.desktop\n");
  std::string error;
  ASSERT_TRUE(openURI("geo:-33.89080,151.27430", &error)) << error;
  for (int i = 0; i < 200 && !fs::exists(received); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  std::string text;
  std::getline(std::ifstream(received), text);
  EXPECT_EQ(text, "geo:-33.89080,151.27430");
  EXPECT_FALSE(openURI("no scheme at all", &error));
  EXPECT_EQ(error, "it has no scheme");
  EXPECT_FALSE(openURI("vesperon-nothing:x", &error));
  EXPECT_EQ(error, "no application handles it");
}
