// The photos browse shows: a collection shared by its copies until one changes, and the check
// that lets a catalogue's rows stand in for a walk of the folder.

#include "../../tools/vesperon/browse/BrowseCollection.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

namespace fs = std::filesystem;

namespace {

struct TempFolder {
  fs::path path;
  TempFolder() {
    char name[] = "/tmp/vesperon-browse-collection-XXXXXX";
    path = ::mkdtemp(name);
  }
  ~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
};

void write(const fs::path& file, const std::string& bytes) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

std::vector<BrowseCollection::FileIdentity> identitiesOf(const std::vector<fs::path>& files) {
  std::vector<BrowseCollection::FileIdentity> out;
  for (const fs::path& file : files) {
    struct stat st {};
    EXPECT_EQ(::stat(file.c_str(), &st), 0) << file;
    out.push_back({file.string(), uint64_t(st.st_size), std::time_t(st.st_mtim.tv_sec)});
  }
  return out;
}

}  // namespace

TEST(BrowseCollection, CopiesShareUntilOneChanges) {
  const BrowseCollection original = BrowseCollection::withFacts(
      {{"/p/a.jpg", "", 0, 10, true}, {"/p/b.jpg", "2024-05-01", 0, 20, false}, {"/p/c.jpg", "", 0, 30, true}}, {});
  BrowseCollection copy = original;
  EXPECT_TRUE(copy.setCaptureDays({{"/p/a.jpg", "2023-01-02"}, {"/p/elsewhere.jpg", "2020-01-01"}}));
  // The copy took the day and regrouped; the original still waits for it.
  EXPECT_EQ(original.filesWithPendingDays(), (std::vector<fs::path>{"/p/a.jpg", "/p/c.jpg"}));
  EXPECT_EQ(copy.filesWithPendingDays(), std::vector<fs::path>{"/p/c.jpg"});
  EXPECT_EQ(copy.factsOfFile("/p/a.jpg")->captureDay, "2023-01-02");
  EXPECT_TRUE(original.factsOfFile("/p/a.jpg")->captureDay.empty());
  EXPECT_NE(original.groups().size(), copy.groups().size());
  EXPECT_EQ(copy.sizeOfFile("/p/b.jpg"), 20u);
  EXPECT_EQ(copy.sizeOfFile("/p/elsewhere.jpg"), 0u);
  // Nothing to change: no copy is made, and the answer says so.
  BrowseCollection again = copy;
  EXPECT_FALSE(again.setCaptureDays({{"/p/a.jpg", "2023-01-02"}}));
  EXPECT_EQ(&again.groups(), &copy.groups());
}

TEST(BrowseCollection, FolderHoldsExactlyTheFilesItWasTold) {
  TempFolder temp;
  const fs::path a = temp.path / "a.jpg", b = temp.path / "sub" / "b.jpg";
  write(a, "one");
  write(b, "two two");
  write(temp.path / "notes.txt", "not a photo");
  write(temp.path / ".hidden.jpg", "hidden");
  const auto identities = identitiesOf({a, b});
  std::stop_source running;
  EXPECT_EQ(BrowseCollection::folderHolds(identities, temp.path, running.get_token()), std::optional(true));

  // A photo that is not among them, one rewritten to another size, one gone.
  write(temp.path / "new.jpg", "new");
  EXPECT_EQ(BrowseCollection::folderHolds(identities, temp.path, running.get_token()), std::optional(false));
  fs::remove(temp.path / "new.jpg");
  write(b, "two");
  EXPECT_EQ(BrowseCollection::folderHolds(identities, temp.path, running.get_token()), std::optional(false));
  EXPECT_EQ(BrowseCollection::folderHolds(identitiesOf({a, b}), temp.path, running.get_token()), std::optional(true));
  fs::remove(b);
  EXPECT_EQ(BrowseCollection::folderHolds(identitiesOf({a}), temp.path, running.get_token()), std::optional(true));
  EXPECT_EQ(BrowseCollection::folderHolds(identities, temp.path, running.get_token()), std::optional(false));
  // The same size, another modification time.
  const auto before = identitiesOf({a});
  fs::last_write_time(a, fs::last_write_time(a) - std::chrono::hours(1));
  EXPECT_EQ(BrowseCollection::folderHolds(before, temp.path, running.get_token()), std::optional(false));

  std::stop_source stopped;
  stopped.request_stop();
  EXPECT_EQ(BrowseCollection::folderHolds(identitiesOf({a}), temp.path, stopped.get_token()), std::nullopt);
  // A folder that cannot be walked holds nothing.
  EXPECT_EQ(BrowseCollection::folderHolds(identitiesOf({a}), temp.path / "missing", running.get_token()), std::optional(false));
  EXPECT_EQ(BrowseCollection::folderHolds({}, temp.path / "missing", running.get_token()), std::optional(true));
}
