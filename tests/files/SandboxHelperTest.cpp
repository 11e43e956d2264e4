#include "FilesTestSupport.h"

#include <vesperon/files/MCSandboxAccessoryView.h>
#include <vesperon/files/MCSandboxHelper.h>
#include <vesperon/files/MCURLExtensions.h>
#include <vesperon/platform/MCUserDefaults.h>
#include <vesperon/toolkit/MCDialogPresenter.h>

#include <gtest/gtest.h>

#include <deque>

namespace fs = std::filesystem;

namespace {

// Answers panels and alerts from a script, and keeps what it was shown.
class ScriptedPresenter : public MCDialogPresenter {
 public:
  std::deque<std::optional<fs::path>> folderChoices;  // none: the user cancels
  std::deque<long> alertAnswers;
  std::vector<MCFilePanel> panelsShown;
  std::vector<MCAlert> alertsShown;

  long runAlert(const MCAlert& alert, MCWindow*) override {
    alertsShown.push_back(alert);
    if (alertAnswers.empty()) return MCAlert::FirstButtonReturn + 1;
    long answer = alertAnswers.front();
    alertAnswers.pop_front();
    return answer;
  }
  long runFilePanel(MCFilePanel& panel, MCWindow*) override {
    panelsShown.push_back(panel);
    if (folderChoices.empty() || !folderChoices.front()) {
      if (!folderChoices.empty()) folderChoices.pop_front();
      return MCFilePanel::CancelButton;
    }
    panel.URLs = {*folderChoices.front()};
    folderChoices.pop_front();
    return MCFilePanel::OKButton;
  }
};

std::vector<fs::path> grantedPaths(const MCSandboxHelper& helper) {
  std::vector<fs::path> paths;
  for (const auto& url : helper.sandboxURLs()) paths.push_back(url->securityScopedURL());
  return paths;
}

}  // namespace

TEST(SandboxURL, ClaimCountsGoUpAndDownAndNeverBelowZero) {
  EXPECT_EQ(MCSandboxURL::create(std::nullopt), nullptr);
  EXPECT_EQ(MCSandboxURL::createWithBookmark(nullptr), nullptr);
  EXPECT_EQ(MCSandboxURL::createWithDictionary({{"bookmark", std::string("not data")}}), nullptr);
  const fs::path folder = freshFolder("claims");
  auto url = MCSandboxURL::create(folder);
  ASSERT_TRUE(url);
  url->releaseSecurityScopedResource();  // nothing to release
  EXPECT_EQ(url->securityScopedResourceRetainCount(), 0);
  EXPECT_TRUE(url->retainSecurityScopedResource());
  EXPECT_TRUE(url->retainSecurityScopedResource());
  url->releaseSecurityScopedResource();
  EXPECT_EQ(url->securityScopedResourceRetainCount(), 1);
  url->releaseSecurityScopedResource();
  url->releaseSecurityScopedResource();
  EXPECT_EQ(url->securityScopedResourceRetainCount(), 0);
  // A folder that is gone cannot be claimed, and the count stays 0.
  auto gone = MCSandboxURL::create(folder / "gone");
  EXPECT_FALSE(gone->retainSecurityScopedResource());
  EXPECT_EQ(gone->securityScopedResourceRetainCount(), 0);
  EXPECT_EQ(gone->dictionaryRepresentation(), std::nullopt);  // no bookmark of nothing

  auto dictionary = url->dictionaryRepresentation();
  ASSERT_TRUE(dictionary);
  EXPECT_EQ(*MCDictionaryGet(*dictionary, "path"), MCValue(folder.string()));
  auto again = MCSandboxURL::createWithDictionary(*dictionary);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->securityScopedURL(), folder);
}

TEST(SandboxHelper, GrantsMergeAreStoredAndComeBackInAnotherInstance) {
  const fs::path root = freshFolder("store");
  const fs::path store = root / "settings" / "settings.json";
  for (const char* name : {"photos/2024", "photos/2025", "photos/2025/june", "scans", "old"})
    fs::create_directories(root / name);

  MCSandboxHelper helper(store);
  helper.addSandboxURLs({});
  EXPECT_FALSE(fs::exists(store)) << "nothing added and nothing removed writes nothing";

  helper.addSandboxURLs({MCSandboxURL::create(root / "photos/2024"), MCSandboxURL::create(root / "photos/2025/june"),
                         MCSandboxURL::create(root / "scans"), MCSandboxURL::create(root / "old")});
  auto june = helper.sandboxURLs()[1];
  EXPECT_EQ(june->securityScopedResourceRetainCount(), 1);
  // A parent replaces the grants beneath it and releases them.
  helper.addSandboxURLs({MCSandboxURL::create(root / "photos")});
  EXPECT_EQ(grantedPaths(helper), (std::vector<fs::path>{root / "scans", root / "old", root / "photos"}));
  EXPECT_EQ(june->securityScopedResourceRetainCount(), 0);
  // Files already covered settle without a question.
  helper.addSecurityScopedURLs({root / "photos/2025", root / "scans"});
  EXPECT_EQ(helper.sandboxURLs().size(), 3u);

  // Another helper over the same file finds them all; a folder deleted since is dropped at restore
  // and left out of the next save.
  fs::remove_all(root / "old");
  MCSandboxHelper later(store);
  later.restore();
  EXPECT_EQ(grantedPaths(later), (std::vector<fs::path>{root / "scans", root / "photos"}));
  for (const auto& url : later.sandboxURLs()) EXPECT_EQ(url->securityScopedResourceRetainCount(), 1);
  later.save();
  auto stored = MCUserDefaults(store).objectForKey(MCSandboxHelper::kStoreKey);
  ASSERT_TRUE(stored && stored->array());
  ASSERT_EQ(stored->array()->size(), 2u);
  const MCDictionary& first = *(*stored->array())[0].dictionary();
  EXPECT_EQ(*MCDictionaryGet(first, "path"), MCValue((root / "scans").string()));
  EXPECT_TRUE(MCDictionaryGet(first, "bookmark")->isData());
}

TEST(SandboxHelper, RestoreTellsWhichGrantsWereLostAndWhy) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path root = freshFolder("restore-report");
  const fs::path store = root / "settings.json";
  for (const char* name : {"kept", "deleted", "replaced"}) fs::create_directories(root / name);
  MCSandboxHelper helper(store);
  helper.addSandboxURLs({MCSandboxURL::create(root / "kept"), MCSandboxURL::create(root / "deleted"),
                         MCSandboxURL::create(root / "replaced")});
  fs::remove_all(root / "deleted");
  fs::remove_all(root / "replaced");
  writeText(root / "replaced", "a file now");

  MCSandboxHelper later(store);
  later.restore();
  EXPECT_EQ(grantedPaths(later), (std::vector<fs::path>{root / "kept"}));
  EXPECT_FALSE(later.restoredStoreSetAside());
  const auto& entries = later.restoredEntries();
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].path, root / "kept");
  EXPECT_EQ(entries[0].failure, "");
  EXPECT_EQ(entries[1].path, root / "deleted");
  EXPECT_EQ(entries[1].failure, "\"" + (root / "deleted").string() + "\" no longer exists (moved or deleted)");
  EXPECT_EQ(entries[2].path, root / "replaced");
  EXPECT_EQ(entries[2].failure,
            "\"" + (root / "replaced").string() + "\" is another item than the one bookmarked (replaced)");
  EXPECT_TRUE(log.contains("Couldn't resolve bookmark: " + entries[1].failure)) << log.text();
  EXPECT_TRUE(log.contains("Couldn't resolve bookmark: " + entries[2].failure)) << log.text();

  // A settings file that cannot be read is set aside, and the helper says so.
  writeText(store, "{\"QXSecurityScopedURLs\": [");
  MCSandboxHelper broken(store);
  broken.restore();
  EXPECT_TRUE(broken.sandboxURLs().empty());
  EXPECT_TRUE(broken.restoredEntries().empty());
  ASSERT_TRUE(broken.restoredStoreSetAside());
  EXPECT_EQ(broken.restoredStoreSetAside()->reason, "is not valid JSON");
  EXPECT_EQ(broken.restoredStoreSetAside()->movedTo, root / "settings.json.bak");
}

TEST(SandboxHelper, AsksOncePerVolumeAcceptsAHigherFolderAndAlertsOnAWrongOne) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path root = freshFolder("ask");
  for (const char* name : {"lib/a", "lib/b", "lib/c", "elsewhere"}) fs::create_directories(root / name);
  auto presenter = std::make_shared<ScriptedPresenter>();
  MCSandboxHelper helper(root / "settings.json");
  helper.setDialogPresenter(presenter);

  // Files in two folders of one volume: one panel, for their common folder. The user picks the
  // folder above it, which covers more than was asked; that one is kept.
  presenter->folderChoices = {root};
  helper.prepareForAccessingFileURLs({root / "lib/a/1.jpg", root / "lib/b/2.jpg", root / "lib/a/3.jpg"});
  ASSERT_EQ(presenter->panelsShown.size(), 1u);
  const MCFilePanel& panel = presenter->panelsShown[0];
  EXPECT_EQ(panel.directoryURL, root / "lib");
  EXPECT_TRUE(panel.canChooseDirectories);
  EXPECT_FALSE(panel.canChooseFiles);
  EXPECT_EQ(panel.prompt, "Allow");
  auto accessory = std::dynamic_pointer_cast<MCSandboxAccessoryView>(panel.accessoryView);
  ASSERT_TRUE(accessory);
  EXPECT_EQ(accessory->descriptionLabel(), "To read the photos in this folder, this application needs your permission. Choose the folder and click Allow.");
  EXPECT_EQ(grantedPaths(helper), (std::vector<fs::path>{root}));
  EXPECT_TRUE(log.contains("Grant Access: Checking...\nGranted URL: " + root.string() + "\nExpected: " +
                           (root / "lib").string()))
      << log.text();

  // Covered now: no panel at all.
  helper.prepareForAccessingFileURLs({root / "lib/c/4.jpg", root / "elsewhere/5.jpg"});
  EXPECT_EQ(presenter->panelsShown.size(), 1u);

  // A folder beneath the one asked for is wrong: alert; "choose again", then a sibling (wrong
  // again), then cancel in the alert: no grant.
  MCSandboxHelper fresh(root / "other-settings.json");
  fresh.setDialogPresenter(presenter);
  presenter->folderChoices = {root / "lib/a", root / "elsewhere"};
  presenter->alertAnswers = {MCAlert::FirstButtonReturn, MCAlert::FirstButtonReturn + 1};
  EXPECT_EQ(fresh.grantAccessToFolderAtURL(root / "lib"), nullptr);
  ASSERT_EQ(presenter->alertsShown.size(), 2u);
  EXPECT_EQ(presenter->alertsShown[0].alertStyle, MCAlert::Critical);
  EXPECT_EQ(presenter->alertsShown[0].buttons, (std::vector<std::string>{"Choose Again", "Cancel"}));
  EXPECT_TRUE(log.contains("Grant Access: Failure"));
  // The right folder on the next try is granted as chosen; a cancelled panel gives none.
  presenter->folderChoices = {root / "lib/b", root / "lib"};
  presenter->alertAnswers = {MCAlert::FirstButtonReturn};
  auto granted = fresh.grantAccessToFolderAtURL(root / "lib");
  ASSERT_TRUE(granted);
  EXPECT_EQ(granted->securityScopedURL(), root / "lib");
  EXPECT_EQ(granted->securityScopedResourceRetainCount(), 0);
  presenter->folderChoices = {std::nullopt};
  EXPECT_EQ(fresh.grantAccessToFolderAtURL(root / "lib"), nullptr);
  // Nothing there: nothing to ask about.
  const auto panelsBefore = presenter->panelsShown.size();
  EXPECT_EQ(fresh.grantAccessToFolderAtURL(root / "missing"), nullptr);
  EXPECT_EQ(presenter->panelsShown.size(), panelsBefore);
}

TEST(SandboxHelper, FilesOnTwoVolumesGiveTwoPanelsAndPanelsKeepWhatTheCompletionAnswers) {
  const fs::path root = freshFolder("volumes-ask");
  fs::create_directories(root / "a");
  auto presenter = std::make_shared<ScriptedPresenter>();
  MCSandboxHelper helper(root / "settings.json");
  helper.setDialogPresenter(presenter);
  presenter->folderChoices = {std::nullopt, std::nullopt};
  helper.prepareForAccessingFileURLs({root / "a/1.jpg", "/proc/self/status"});
  ASSERT_EQ(presenter->panelsShown.size(), 2u);
  std::set<fs::path> asked{presenter->panelsShown[0].directoryURL, presenter->panelsShown[1].directoryURL};
  EXPECT_EQ(asked, (std::set<fs::path>{root / "a", "/proc/self"}));
  EXPECT_TRUE(helper.sandboxURLs().empty());

  presenter->folderChoices = {root / "a"};
  long seen = -1;
  helper.runModalOpenPanel([](MCFilePanel& panel) { panel.canChooseDirectories = true; },
                           [&](MCFilePanel& panel, long result) {
                             seen = result;
                             return panel.URLs;
                           });
  EXPECT_EQ(seen, MCFilePanel::OKButton);
  EXPECT_EQ(grantedPaths(helper), (std::vector<fs::path>{root / "a"}));
  // No completion: nothing kept.
  presenter->folderChoices = {root};
  helper.runModalOpenPanel(nullptr, nullptr);
  EXPECT_EQ(grantedPaths(helper), (std::vector<fs::path>{root / "a"}));
}
