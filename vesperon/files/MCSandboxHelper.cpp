#include <vesperon/files/MCSandboxHelper.h>

#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/core/MCLog.h>
#include <vesperon/files/MCSandboxAccessoryView.h>
#include <vesperon/files/MCURLExtensions.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/platform/MCUserDefaults.h>
#include <vesperon/toolkit/MCDialogPresenter.h>

#include <glib.h>

#include <algorithm>

const std::shared_ptr<MCSandboxHelper>& MCSandboxHelper::sharedInstance() {
  static const std::shared_ptr<MCSandboxHelper> shared =
      std::make_shared<MCSandboxHelper>(MCUserDefaults::defaultFileURL());
  return shared;
}

MCSandboxHelper::MCSandboxHelper(std::filesystem::path storeURL) : storeURL_(std::move(storeURL)) {}

void MCSandboxHelper::save() {
  MCArray entries;
  for (const auto& url : sandboxURLs_)
    if (auto dictionary = url->dictionaryRepresentation()) entries.emplace_back(std::move(*dictionary));
  MCUserDefaults(storeURL_).setObject(MCValue(std::move(entries)), kStoreKey);
}

void MCSandboxHelper::restore() {
  restoredEntries_.clear();
  MCUserDefaults defaults(storeURL_);
  auto stored = defaults.objectForKey(kStoreKey);
  restoredStoreSetAside_ = defaults.setAside();
  if (!stored || !stored->array()) return;
  for (const MCValue& entry : *stored->array()) {
    const MCDictionary* dictionary = entry.dictionary();
    RestoredEntry report;
    // The path the entry was saved with is for people; the bookmark is what is resolved.
    const MCValue* path = dictionary ? MCDictionaryGet(*dictionary, "path") : nullptr;
    if (path && path->string()) report.path = *path->string();
    auto url = dictionary ? MCSandboxURL::createWithDictionary(*dictionary, &report.failure) : nullptr;
    if (url && url->retainSecurityScopedResource()) {
      report.path = url->securityScopedURL();
      sandboxURLs_.push_back(std::move(url));
    } else if (url) {
      report.failure = "\"" + url->securityScopedURL().string() + "\" cannot be reached";
      MCLog::sdkFileSystem()->logError("Couldn't access " + url->securityScopedURL().string());
    } else if (report.failure.empty()) {
      report.failure = "the entry holds no bookmark";
    }
    restoredEntries_.push_back(std::move(report));
  }
}

std::shared_ptr<MCSandboxURL> MCSandboxHelper::grantAccessToFolderAtURL(const std::filesystem::path& folder) {
  std::shared_ptr<MCSandboxURL> granted;
  auto ask = [&] { granted = askForFolder(folder); };
  if (MCMainQueue::isMainThread()) ask();
  else MCMainQueue::sync(ask);
  return granted;
}

std::shared_ptr<MCSandboxURL> MCSandboxHelper::askForFolder(const std::filesystem::path& folder) {
  std::error_code ec;
  if (!std::filesystem::exists(folder, ec) || !presenter_) return nullptr;  // no name to read, no one to ask
  gchar* display = g_filename_display_basename(folder.c_str());
  const std::string name = display;
  g_free(display);
  const std::string title = MCLocalizedStringWithFormat("alert_title_grant_access", "Allow access to “%@”", {name});
  auto accessory = MCSandboxAccessoryView::accessoryViewWithTitle(title);
  const MCLog& log = *MCLog::sdkFileSystem();
  while (true) {
    MCFilePanel panel;
    panel.kind = MCFilePanel::Open;
    panel.directoryURL = folder;
    panel.accessoryView = accessory;
    panel.accessoryViewDisclosed = true;
    panel.canChooseDirectories = true;
    panel.canChooseFiles = false;
    panel.message = MCLocalizedString("open_prompt_click_allow", "Click Allow to give access to this folder.");
    panel.prompt = MCLocalizedString("action_allow", "Allow");
    panel.title = title;
    if (presenter_->runFilePanel(panel, nullptr) != MCFilePanel::OKButton || panel.URLs.empty()) return nullptr;
    const std::filesystem::path chosen = panel.URL();
    if (MCLog::writesToFile())
      log.logToFileMessage("Grant Access: Checking...\nGranted URL: " + chosen.string() + "\nExpected: " +
                           folder.string());
    if (isEqualFileURL(chosen, folder) || isDescendantOfURL(folder, chosen)) {
      log.log("Grant Access: Success");
      return MCSandboxURL::create(chosen);
    }
    log.log("Grant Access: Failure");
    MCAlert alert;
    alert.alertStyle = MCAlert::Critical;
    alert.messageText = MCLocalizedString("alert_title_wrong_folder_chosen", "Wrong folder chosen");
    const char* application = g_get_application_name();
    alert.informativeText = MCLocalizedStringWithFormat("alert_subtitle_wrong_folder_chosen_format", "Please choose the folder “%@” to let %@ read it.",
                                                        {name, application ? application : ""});
    alert.addButtonWithTitle(MCLocalizedString("action_choose_again", "Choose Again"));
    alert.addButtonWithTitle(MCLocalizedString("action_cancel", "Cancel"));
    if (presenter_->runAlert(alert, nullptr) != MCAlert::FirstButtonReturn) return nullptr;
  }
}

void MCSandboxHelper::addSandboxURLs(const std::vector<std::shared_ptr<MCSandboxURL>>& urls) {
  std::vector<std::shared_ptr<MCSandboxURL>> going;
  for (const auto& existing : sandboxURLs_)
    for (const auto& added : urls)
      if (isDescendantOfURL(existing->securityScopedURL(), added->securityScopedURL())) {
        going.push_back(existing);
        break;
      }
  if (going.empty() && urls.empty()) return;
  for (const auto& url : going) {
    url->releaseSecurityScopedResource();
    std::erase(sandboxURLs_, url);
  }
  for (const auto& url : urls) {
    url->retainSecurityScopedResource();
    sandboxURLs_.push_back(url);
  }
  save();
}

void MCSandboxHelper::enumerateURLs(
    const URLGenerator& generator,
    const std::function<void(const std::optional<std::set<std::filesystem::path>>&)>& completion) {
  std::optional<std::set<std::filesystem::path>> covered;
  std::optional<std::set<std::filesystem::path>> notCovered;
  while (auto url = generator()) {
    if (!covered) {
      covered.emplace();
      for (const auto& grant : sandboxURLs_) covered->insert(grant->securityScopedURL());
    }
    if (covered->count(*url) || (notCovered && notCovered->count(*url))) continue;
    const bool under = std::any_of(covered->begin(), covered->end(),
                                   [&](const std::filesystem::path& grant) { return isDescendantOfURL(*url, grant); });
    if (under) covered->insert(*url);
    else {
      if (!notCovered) notCovered.emplace();
      notCovered->insert(*url);
    }
  }
  if (completion) completion(notCovered);
}

void MCSandboxHelper::addSecurityScopedURLs(const std::vector<std::filesystem::path>& urls) {
  std::size_t next = 0;
  enumerateURLs([&]() -> std::optional<std::filesystem::path> {
    if (next == urls.size()) return std::nullopt;
    return urls[next++];
  },
                [&](const std::optional<std::set<std::filesystem::path>>& notCovered) {
                  std::vector<std::shared_ptr<MCSandboxURL>> grants;
                  if (notCovered)
                    for (const auto& url : *notCovered)
                      if (auto grant = MCSandboxURL::create(url)) grants.push_back(std::move(grant));
                  addSandboxURLs(grants);
                });
}

void MCSandboxHelper::prepareForAccessingURLs(const URLGenerator& generator) {
  enumerateURLs(generator, [&](const std::optional<std::set<std::filesystem::path>>& notCovered) {
    if (!notCovered) return;
    const auto folders = commonForVolumeURLs(std::vector<std::filesystem::path>(notCovered->begin(), notCovered->end()));
    if (folders.empty()) return;
    std::vector<std::shared_ptr<MCSandboxURL>> grants;
    for (const auto& folder : folders)
      if (auto grant = grantAccessToFolderAtURL(folder)) grants.push_back(std::move(grant));
    addSandboxURLs(grants);
  });
}

void MCSandboxHelper::prepareForAccessingFileURLs(const std::vector<std::filesystem::path>& fileURLs) {
  std::size_t next = 0;
  prepareForAccessingURLs([&]() -> std::optional<std::filesystem::path> {
    if (next == fileURLs.size()) return std::nullopt;
    return fileURLs[next++].parent_path();
  });
}

void MCSandboxHelper::runPanel(int kind, MCWindow* window, const PanelConfiguration& configure,
                               const PanelCompletion& completion) {
  MCFilePanel panel;
  panel.kind = static_cast<MCFilePanel::Kind>(kind);
  if (kind == MCFilePanel::Open) panel.canChooseFiles = true;
  if (configure) configure(panel);
  const long result = presenter_ ? presenter_->runFilePanel(panel, window) : MCFilePanel::CancelButton;
  if (!completion) return;
  const std::vector<std::filesystem::path> keep = completion(panel, result);
  if (!keep.empty()) addSecurityScopedURLs(keep);
}

void MCSandboxHelper::beginOpenPanelModalForWindow(MCWindow* window, const PanelConfiguration& configure,
                                                   const PanelCompletion& completion) {
  runPanel(MCFilePanel::Open, window, configure, completion);
}

void MCSandboxHelper::beginSavePanelModalForWindow(MCWindow* window, const PanelConfiguration& configure,
                                                   const PanelCompletion& completion) {
  runPanel(MCFilePanel::Save, window, configure, completion);
}

void MCSandboxHelper::runModalOpenPanel(const PanelConfiguration& configure, const PanelCompletion& completion) {
  runPanel(MCFilePanel::Open, nullptr, configure, completion);
}

void MCSandboxHelper::runModalSavePanel(const PanelConfiguration& configure, const PanelCompletion& completion) {
  runPanel(MCFilePanel::Save, nullptr, configure, completion);
}
