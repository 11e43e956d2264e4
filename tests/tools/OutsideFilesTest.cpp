// Files the commands read from outside the process, as another program or an attacker may leave
// them: the settings that remember the folders `browse` opened, and the desktop's shared thumbnail
// cache that `thumbs` looks in first. Each run of the program is stopped after a minute, so a
// command that blocks fails the test instead of hanging it.

#include <vesperon/files/MCSandboxHelper.h>
#include <vesperon/pipeline/MCFreedesktopThumbnailCache.h>

#include "../support/ProgramOutcome.h"

#include <gtest/gtest.h>

#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Outcome = ProgramOutcome;

// A private world for the program: its own settings, cache, state and data folders.
class World {
 public:
  explicit World(const std::string& name)
      : root_(fs::path(VESPERON_TEST_BINARY_DIR) / (name + "-" + std::to_string(::getpid()))) {
    fs::remove_all(root_);
    fs::create_directories(root_);
  }
  ~World() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }
  const fs::path& root() const { return root_; }
  fs::path settings() const { return root_ / "config" / "vesperon" / "settings.json"; }

  Outcome vesperon(const std::string& arguments) const {
    const std::string environment = "XDG_CONFIG_HOME='" + (root_ / "config").string() + "' XDG_CACHE_HOME='" +
                                    (root_ / "cache").string() + "' XDG_STATE_HOME='" + (root_ / "state").string() +
                                    "' XDG_DATA_HOME='" + (root_ / "data").string() + "' ";
    return ProgramOutcome::run(environment + "timeout -k 5 60 '" VESPERON_TOOL "' " + arguments);
  }

  /// Remembers the folders as opened in this order, the way `browse` does.
  void rememberFolders(const std::vector<fs::path>& folders) const {
    fs::remove(settings());
    MCSandboxHelper helper(settings());
    for (const fs::path& folder : folders) helper.addSandboxURLs({MCSandboxURL::create(folder)});
  }

 private:
  fs::path root_;
};

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string quoted(const fs::path& path) { return "'" + path.string() + "'"; }

}  // namespace

TEST(OutsideFiles, BrowseSaysWhyTheRememberedFolderCannotBeOpened) {
  World world("browse-remembered");
  const fs::path older = world.root() / "older";
  const fs::path last = world.root() / "last";
  fs::create_directories(older);
  fs::create_directories(last);
  fs::copy_file(fs::path(VESPERON_SAMPLES_DIR) / "boat.jpg", older / "boat.jpg");
  const fs::path render = world.root() / "render.png";

  // The folder opened last was deleted: said, with why, and the one opened before it shows.
  world.rememberFolders({older, last});
  fs::remove_all(last);
  Outcome fallback = world.vesperon("browse --render " + quoted(render));
  EXPECT_EQ(fallback.status, 0) << fallback.output;
  EXPECT_TRUE(contains(fallback.output, "vesperon browse: the folder opened last, " + last.string() +
                                            ", cannot be opened: \"" + last.string() +
                                            "\" no longer exists (moved or deleted); opening " + older.string() +
                                            ", opened before it"))
      << fallback.output;
  EXPECT_TRUE(fs::exists(render));

  // The only folder remembered was replaced by a file of the same name: nothing to fall back to.
  world.rememberFolders({older});
  fs::remove_all(older);
  std::ofstream(older) << "not a folder";
  Outcome replaced = world.vesperon("browse --render " + quoted(render));
  EXPECT_EQ(replaced.status, 1) << replaced.output;
  EXPECT_TRUE(contains(replaced.output, "vesperon browse: no folder given, and the folder opened last, " +
                                            older.string() + ", cannot be opened: \"" + older.string() +
                                            "\" is another item than the one bookmarked (replaced)"))
      << replaced.output;

  // Settings that cannot be read: a FIFO (which blocked the program for good), 20,000 levels of
  // nesting (which overflowed its stack), a folder. Each is set aside, and the message names the
  // file and where it went.
  const fs::path aside = world.settings().string() + ".bak";
  struct Case {
    std::function<void()> make;
    const char* says;
  };
  for (const Case& c : {
           Case{[&] { ASSERT_EQ(::mkfifo(world.settings().c_str(), 0600), 0); }, "is a FIFO, not a file"},
           Case{[&] {
                  std::ofstream(world.settings()) << "{\"QXSecurityScopedURLs\": " << std::string(20000, '[')
                                                  << std::string(20000, ']') << "}";
                },
                "nests deeper than 256 levels"},
           Case{[&] { fs::create_directories(world.settings()); }, "is a folder, not a file"},
       }) {
    fs::remove_all(world.settings());
    fs::remove_all(aside);
    c.make();
    const Outcome outcome = world.vesperon("browse --render " + quoted(render));
    EXPECT_EQ(outcome.status, 1) << outcome.output;
    EXPECT_TRUE(contains(outcome.output, "vesperon browse: no folder given, and the settings file " +
                                             world.settings().string() + " that remembers the folders opened before " +
                                             c.says + "; it was moved to " + aside.string()))
        << outcome.output;
    EXPECT_TRUE(fs::exists(fs::symlink_status(aside))) << c.says;
    EXPECT_FALSE(fs::exists(fs::symlink_status(world.settings()))) << c.says;
  }

  // A folder named on the command line opens all the same, with a word about the settings.
  fs::remove_all(aside);
  std::ofstream(world.settings()) << "{\"QXSecurityScopedURLs\": [";
  fs::create_directories(last);
  const Outcome named = world.vesperon("browse " + quoted(last) + " --render " + quoted(render));
  EXPECT_EQ(named.status, 0) << named.output;
  EXPECT_TRUE(contains(named.output, "the settings file " + world.settings().string() +
                                         " that remembers the folders opened before is not valid JSON; it was moved to " +
                                         aside.string()))
      << named.output;
}

TEST(OutsideFiles, ThumbsIsNotBlockedByAFIFOInTheSharedThumbnailCache) {
  World world("thumbs-fifo");
  const fs::path photos = world.root() / "photos";
  fs::create_directories(photos);
  const fs::path photo = photos / "boat.jpg";
  fs::copy_file(fs::path(VESPERON_SAMPLES_DIR) / "boat.jpg", photo);
  // Every entry the command may look at for this photo is a FIFO, failure record included.
  gchar* md5 = g_compute_checksum_for_string(G_CHECKSUM_MD5, MCFreedesktopThumbnailCache::uriOfFile(photo).c_str(), -1);
  const std::string name = std::string(md5) + ".png";
  g_free(md5);
  const fs::path thumbnails = world.root() / "cache" / "thumbnails";
  for (const fs::path& folder : {fs::path("normal"), fs::path("large"), fs::path("x-large"), fs::path("xx-large"),
                                fs::path("fail") / MCFreedesktopThumbnailCache::kProgramName}) {
    fs::create_directories(thumbnails / folder);
    ASSERT_EQ(::mkfifo((thumbnails / folder / name).c_str(), 0600), 0);
  }
  const fs::path out = world.root() / "out";
  const Outcome outcome = world.vesperon("thumbs " + quoted(photos) + " --out " + quoted(out) + " --size 256");
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_TRUE(contains(outcome.output, "1 files, 0 failures")) << outcome.output;
  EXPECT_TRUE(fs::is_regular_file(out / "boat.jpg")) << outcome.output;
}
