#include "FilesTestSupport.h"

#include <vesperon/files/MCBookmarkData.h>
#include <vesperon/files/MCURLExtensions.h>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

TEST(BookmarkData, FollowsARenameInPlaceAndRefusesAReplacedOrDeletedFolder) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path root = freshFolder("bookmarks");
  fs::create_directories(root / "Trips");
  auto bookmark = securityScopedBookmark(root / "Trips");
  ASSERT_TRUE(bookmark);
  EXPECT_EQ(URLPathFromSecurityScopedBookmark(&*bookmark), (root / "Trips").string());
  EXPECT_EQ(URLWithSecurityScopedBookmark(&*bookmark), root / "Trips");

  // Renamed in its folder: still the same folder, found under its new name.
  fs::rename(root / "Trips", root / "Trips 2025");
  EXPECT_EQ(URLWithSecurityScopedBookmark(&*bookmark), root / "Trips 2025");
  // The path recorded is what it was; reading it resolves nothing.
  EXPECT_EQ(URLPathFromSecurityScopedBookmark(&*bookmark), (root / "Trips").string());

  // Replaced: another folder under the old name is not the bookmarked one, even if the file
  // system hands the old inode number out again.
  auto again = securityScopedBookmark(root / "Trips 2025");
  ASSERT_TRUE(again);
  fs::remove(root / "Trips 2025");
  fs::create_directories(root / "Trips 2025");
  EXPECT_EQ(URLWithSecurityScopedBookmark(&*again), std::nullopt);
  EXPECT_TRUE(log.contains("Couldn't resolve bookmark: ")) << log.text();

  // Deleted (and its parent too): none, and no crash walking a folder that is gone.
  auto gone = securityScopedBookmark(root / "Trips 2025");
  ASSERT_TRUE(gone);
  fs::remove_all(root);
  EXPECT_EQ(URLWithSecurityScopedBookmark(&*gone), std::nullopt);
  EXPECT_TRUE(log.contains("no longer exists")) << log.text();

  // A bookmark of nothing is refused where it is made.
  EXPECT_EQ(securityScopedBookmark(root / "never there"), std::nullopt);
  EXPECT_TRUE(log.contains("Couldn't create security scoped bookmark: ")) << log.text();
}

TEST(BookmarkData, GarbageAndCutBytesGiveNoneWithTheLogLines) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  EXPECT_EQ(URLWithSecurityScopedBookmark(nullptr), std::nullopt);
  const fs::path folder = freshFolder("cut");
  auto bookmark = securityScopedBookmark(folder);
  ASSERT_TRUE(bookmark);
  // Every shorter prefix, and one byte more, is not a bookmark.
  for (std::size_t size = 0; size < bookmark->size(); ++size) {
    MCData cut(bookmark->begin(), bookmark->begin() + static_cast<long>(size));
    EXPECT_EQ(URLWithSecurityScopedBookmark(&cut), std::nullopt) << size;
    EXPECT_EQ(URLPathFromSecurityScopedBookmark(&cut), std::nullopt) << size;
  }
  MCData longer = *bookmark;
  longer.push_back(0);
  EXPECT_EQ(MCBookmarkData::decode(longer), std::nullopt);
  // A length field that claims more than there is must not be believed.
  MCData lying = *bookmark;
  lying[8 + 32 + 3] = 0x7f;
  EXPECT_EQ(MCBookmarkData::decode(lying), std::nullopt);
  MCData garbage(200, 0xA5);
  EXPECT_EQ(URLWithSecurityScopedBookmark(&garbage), std::nullopt);
  EXPECT_TRUE(log.contains("Couldn't get URL path from bookmark data")) << log.text();
  EXPECT_TRUE(log.contains("Couldn't resolve bookmark: the data is not a bookmark")) << log.text();
  // The untouched bytes still resolve.
  EXPECT_EQ(URLWithSecurityScopedBookmark(&*bookmark), folder);
}
