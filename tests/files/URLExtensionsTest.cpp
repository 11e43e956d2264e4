#include "FilesTestSupport.h"

#include <vesperon/files/MCFileManagerExtensions.h>
#include <vesperon/files/MCURLExtensions.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace fs = std::filesystem;

TEST(URLExtensions, CommonFoldersOfMixedSetsAndVolumes) {
  EXPECT_EQ(commonURLForURLs({}), std::nullopt);
  EXPECT_EQ(commonURLForURLs({"/a/b/c.jpg", "/a/b/d.jpg"}), fs::path("/a/b"));
  EXPECT_EQ(commonURLForURLs({"/a/B/c", "/a/b/d"}), fs::path("/a/B"));  // the smallest path spells it
  EXPECT_EQ(commonURLForURLs({"/a/b/c.jpg"}), fs::path("/a/b/c.jpg"));  // one file is its own common URL
  EXPECT_EQ(commonURLForURLs({"/x/y", "/a/b", "/a/c/d"}), fs::path("/"));
  EXPECT_EQ(commonURLForURLs({"a/b", "c/d"}), std::nullopt);  // nothing in common, not even the root

  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path root = freshFolder("volumes");
  fs::create_directories(root / "2024" / "june");
  fs::create_directories(root / "2024" / "july");
  fs::create_directories(root / "2025");
  // One volume: one folder, the nearest common parent.
  EXPECT_EQ(commonForVolumeURLs({root / "2024" / "june", root / "2024" / "july"}),
            (std::set<fs::path>{root / "2024"}));
  EXPECT_EQ(commonForVolumeURLs({root / "2024" / "june", root / "2025", root / "2024" / "july"}),
            (std::set<fs::path>{root}));
  // Another device (the kernel's /proc) gives a folder of its own; a path that is not there is
  // logged and passed over.
  struct stat here {}, proc {};
  ASSERT_EQ(::stat(root.c_str(), &here), 0);
  ASSERT_EQ(::stat("/proc/self", &proc), 0);
  ASSERT_NE(here.st_dev, proc.st_dev);
  EXPECT_EQ(commonForVolumeURLs({root / "2025", "/proc/self", root / "missing", root / "2024"}),
            (std::set<fs::path>{root, "/proc/self"}));
  EXPECT_TRUE(log.contains("Couldn't read the volume of " + (root / "missing").string())) << log.text();
}

TEST(URLExtensions, SystemPathsPackagesDescendantsAndFileIdentity) {
  // The system tree, at any depth and the folders themselves; "/usrx" only shares a prefix.
  for (const char* system : {"/usr", "/usr/", "/usr/share/backgrounds/a.jpg", "/etc/passwd", "/proc/self/status",
                             "/sys", "/dev/sda1", "/boot/grub", "/run/lock", "/var/lib/x", "/var/log/syslog",
                             "/bin/sh", "/sbin", "/lib64/ld.so", "/lib/x86_64-linux-gnu", "/opt/app/icon.png",
                             "/snap/core", "/home/../etc/hosts", "//usr/lib", "/run/user/1000/bus"})
    EXPECT_TRUE(isSystemFileURL(system)) << system;
  // Users' own files: homes, temporary and mounted folders, and the places inside the system tree
  // where users' files appear (removable media, network shares, files the portal handed over).
  for (const char* own : {"/home", "/home/ann", "/home/ann/Pictures/a.jpg", "/home/ann/.hidden-album/a.jpg",
                          "/root/photo.jpg", "/tmp", "/tmp/a.jpg", "/var/tmp/a.jpg", "/media/ann/CARD/DCIM",
                          "/mnt/nas/a.jpg", "/srv/photos", "/run/media/ann/CARD/a.jpg", "/run/user/1000/gvfs/smb-share:server=nas/a.jpg",
                          "/run/user/1000/doc/3f2a/a.jpg", "/run/flatpak/doc/3f2a/a.jpg", "/var/home/ann/Pictures",
                          "/usrx", "/usrx/lib", "/homework/a.jpg", "/data/photos", "/", "/usr/../home/ann/a.jpg"})
    EXPECT_FALSE(isSystemFileURL(own)) << own;
  // The programs' own folders in a home are its library, the counterpart of a user library.
  for (const char* library : {"/home/ann/.config/app/settings.json", "/home/ann/.cache/thumbnails/normal/x.png",
                              "/home/ann/.local/share/Trash/files/a.jpg", "/home/ann/.var/app/org.x/data",
                              "/root/.cache", "/var/home/ann/.config"})
    EXPECT_TRUE(isSystemFileURL(library)) << library;
  // Not judged: relative and empty paths.
  for (const char* relative : {"usr/lib", "relative/usr/a.jpg", "./etc", ""}) EXPECT_FALSE(isSystemFileURL(relative)) << relative;

  EXPECT_TRUE(isSecurityScopedURL("file:///a/b?applesecurityscope=3f"));
  EXPECT_FALSE(isSecurityScopedURL("file:///a/applesecurityscope"));

  EXPECT_TRUE(isDescendantOfURL("/a/b", "/a/b"));
  EXPECT_TRUE(isDescendantOfURL("/a/b/../b/c", "/a/b/"));
  EXPECT_FALSE(isDescendantOfURL("/a/bc", "/a/b"));

  const fs::path root = freshFolder("identity");
  writeText(root / "Holiday.photoslibrary" / "originals" / "1.jpg", "x");
  writeText(root / "plain" / "1.jpg", "x");
  EXPECT_TRUE(isInPackageItemAtURL(root / "Holiday.photoslibrary" / "originals" / "1.jpg"));
  EXPECT_TRUE(isInPackageItemAtURL(root / "Holiday.photoslibrary"));
  EXPECT_FALSE(isInPackageItemAtURL(root / "plain" / "1.jpg"));
  EXPECT_FALSE(isInPackageItemAtURL(root / "plain" / "missing.jpg"));

  fs::create_hard_link(root / "plain" / "1.jpg", root / "plain" / "hard.jpg");
  fs::create_symlink(root / "plain", root / "link");
  EXPECT_TRUE(isEqualFileURL(root / "plain" / "1.jpg", root / "plain" / "hard.jpg"));
  EXPECT_TRUE(isEqualFileURL(root / "link" / "1.jpg", root / "plain" / "1.jpg"));
  EXPECT_FALSE(isEqualFileURL(root / "plain" / "1.jpg", root / "Holiday.photoslibrary" / "originals" / "1.jpg"));
  EXPECT_FALSE(isEqualFileURL(root / "plain" / "1.jpg", std::nullopt));
  EXPECT_FALSE(isEqualFileURL(root / "gone", root / "gone too"));
  EXPECT_TRUE(isEqualFileURL(fs::path("/no/such"), fs::path("/no/such")));  // equal paths need no read
}

TEST(FileManagerExtensions, UniqueFilePathsAndMountedVolumes) {
  const fs::path root = freshFolder("unique");
  EXPECT_EQ(uniqueFilePathForPath((root / "a.jpg").string()), (root / "a.jpg").string());
  writeText(root / "a.jpg", "1");
  EXPECT_EQ(uniqueFilePathForPath((root / "a.jpg").string()), (root / "a 2.jpg").string());
  writeText(root / "a 2.jpg", "2");
  writeText(root / "a 3.jpg", "3");
  EXPECT_EQ(uniqueFilePathForPath((root / "a.jpg").string()), (root / "a 4.jpg").string());
  writeText(root / "name", "1");
  EXPECT_EQ(uniqueFilePathForPath((root / "name").string()), (root / "name 2").string());
  writeText(root / "photo.tar.gz", "1");  // only the last extension is kept apart
  EXPECT_EQ(uniqueFilePathForPath((root / "photo.tar.gz").string()), (root / "photo.tar 2.gz").string());
  // A dangling link is something there too.
  fs::create_symlink(root / "nowhere", root / "b.jpg");
  EXPECT_EQ(uniqueFilePathForPath((root / "b.jpg").string()), (root / "b 2.jpg").string());

  EXPECT_TRUE(isMountedVolumeOfItemAtPath(root.string()));
  EXPECT_TRUE(isMountedVolumeOfItemAtURL(fs::path("/proc/self/status")));
  EXPECT_EQ(volumeURLOfItemAtURL("/proc/self/status"), fs::path("/proc"));
  EXPECT_FALSE(isMountedVolumeOfItemAtURL(std::nullopt));
  EXPECT_FALSE(isMountedVolumeOfItemAtPath((root / "missing").string()));
}
