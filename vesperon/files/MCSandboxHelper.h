#pragma once
// MCSandboxHelper: the folders the user has granted this program, remembered between runs.
//
// Grants (MCSandboxURL) are kept in the settings store (MCUserDefaults) under
// "QXSecurityScopedURLs": an array of {"path": text, "bookmark": data}. The application calls
// `restore` at start; each remembered folder that still resolves holds one claim while the process
// lives. Before touching files, `prepareForAccessingFileURLs` asks the user (through the dialog
// presenter, one folder panel per volume) only for folders no grant covers yet. A grant of a
// folder replaces grants of folders beneath it.
//
// Outside a sandbox nothing needs a grant to be read; the helper still remembers the folders the
// user opened, which is what a program shows as its recent folders. Inside a Flatpak sandbox the
// grants come from the document portal (see MCBookmarkData).
//
// `sharedInstance` is safe from any thread; the grant list has no lock (as the application's own
// state, it is used from one thread at a time). Panels run on the main thread: a call from another
// thread waits for the user through a synchronous hop to the main queue.

#include <vesperon/files/MCSandboxURL.h>
#include <vesperon/platform/MCUserDefaults.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class MCDialogPresenter;
class MCWindow;
struct MCFilePanel;

class MCSandboxHelper {
 public:
  /// Gives the folder or file to prepare access for; none ends.
  using URLGenerator = std::function<std::optional<std::filesystem::path>()>;
  /// Sets up a panel before it runs.
  using PanelConfiguration = std::function<void(MCFilePanel& panel)>;
  /// Receives the panel and its result code; answers the URLs to keep as grants.
  using PanelCompletion = std::function<std::vector<std::filesystem::path>(MCFilePanel& panel, long result)>;

  /// The settings key under which the grants are remembered.
  static constexpr const char* kStoreKey = "QXSecurityScopedURLs";

  /// The single instance, over the default settings file. Does not restore.
  static const std::shared_ptr<MCSandboxHelper>& sharedInstance();

  /// A helper over the settings file at `storeURL`.
  explicit MCSandboxHelper(std::filesystem::path storeURL);

  /// The folders granted, oldest first.
  const std::vector<std::shared_ptr<MCSandboxURL>>& sandboxURLs() const { return sandboxURLs_; }
  /// The settings file that remembers the grants.
  const std::filesystem::path& storeURL() const { return storeURL_; }

  /// Who shows panels and alerts. Without one, no grant can be asked for and panels answer cancel.
  void setDialogPresenter(std::shared_ptr<MCDialogPresenter> presenter) { presenter_ = std::move(presenter); }
  /// What runs the panels; none runs none.
  const std::shared_ptr<MCDialogPresenter>& dialogPresenter() const { return presenter_; }

  /// Writes every grant's dictionary to the store; grants without one are left out.
  void save();
  /// Takes back the grants of the store that still resolve and can be claimed. Those that do not
  /// are logged ("Couldn't resolve bookmark: <reason>") and dropped; `restoredEntries` tells which.
  void restore();

  /// One entry of the store as the last `restore` found it: the folder it names, and why it could
  /// not be taken back (empty when it was).
  struct RestoredEntry {
    /// The folder the entry names.
    std::filesystem::path path;
    /// Why it could not be taken back; empty when it was.
    std::string failure;
  };
  /// The entries of the last `restore`, in the store's order: the last is the folder granted last.
  const std::vector<RestoredEntry>& restoredEntries() const { return restoredEntries_; }
  /// When the last `restore` found the settings file unusable and set it aside: why, and where it
  /// went. Its grants are then lost.
  const std::optional<MCUserDefaults::SetAside>& restoredStoreSetAside() const { return restoredStoreSetAside_; }

  /// Asks the user for the folder (or one above it) until the right one is chosen or the user
  /// gives up. A grant with no claim, or none.
  std::shared_ptr<MCSandboxURL> grantAccessToFolderAtURL(const std::filesystem::path& folder);
  /// Merges new grants: existing grants beneath a new one are released and dropped; the new ones
  /// are claimed and added; the store is written.
  void addSandboxURLs(const std::vector<std::shared_ptr<MCSandboxURL>>& urls);
  /// Sorts the generated URLs into covered and not covered by a grant; the completion receives
  /// those not covered, or none when every one is (or there were none). Synchronous.
  void enumerateURLs(const URLGenerator& generator,
                     const std::function<void(const std::optional<std::set<std::filesystem::path>>&)>& completion);
  /// Remembers URLs a panel has just given out, without asking again.
  void addSecurityScopedURLs(const std::vector<std::filesystem::path>& urls);
  /// Obtains grants for the folders, asking once per volume for their common folder.
  void prepareForAccessingURLs(const URLGenerator& generator);
  /// The same for files, through the folder of each.
  void prepareForAccessingFileURLs(const std::vector<std::filesystem::path>& fileURLs);

  /// Panels: configured, run (as a sheet on the window where the host has one), and completed;
  /// the URLs the completion answers are kept as grants. A missing completion keeps none.
  void beginOpenPanelModalForWindow(MCWindow* window, const PanelConfiguration& configure,
                                    const PanelCompletion& completion);
  /// The same for a save panel.
  void beginSavePanelModalForWindow(MCWindow* window, const PanelConfiguration& configure,
                                    const PanelCompletion& completion);
  /// An open panel, run modally without a window.
  void runModalOpenPanel(const PanelConfiguration& configure, const PanelCompletion& completion);
  /// A save panel, run modally without a window.
  void runModalSavePanel(const PanelConfiguration& configure, const PanelCompletion& completion);

 private:
  void runPanel(int kind, MCWindow* window, const PanelConfiguration& configure, const PanelCompletion& completion);
  std::shared_ptr<MCSandboxURL> askForFolder(const std::filesystem::path& folder);

  std::filesystem::path storeURL_;
  std::vector<std::shared_ptr<MCSandboxURL>> sandboxURLs_;
  std::shared_ptr<MCDialogPresenter> presenter_;
  std::vector<RestoredEntry> restoredEntries_;
  std::optional<MCUserDefaults::SetAside> restoredStoreSetAside_;
};
