#include <vesperon/files/MCMenuExtensions.h>

#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/files/MCWorkspaceExtensions.h>

#include <algorithm>

namespace {

struct Application {
  std::string bundleID;
  std::string appName;
  std::string appIcon;
};

std::optional<Application> findApplication(const std::string& bundleID) {
  if (!URLForApplicationWithBundleIdentifier(bundleID)) return std::nullopt;
  return Application{bundleID, displayNameOfApplication(bundleID).value_or(bundleID),
                     iconNameOfApplication(bundleID).value_or("")};
}

MCMenuItem itemFor(const Application& application, const std::shared_ptr<MCResponder>& target,
                   const std::string& action) {
  MCMenuItem item;
  item.title = application.appName;
  item.action = action;
  item.target = target;
  item.representedObject = application.bundleID;
  item.iconName = application.appIcon;
  item.iconSize = 16;
  return item;
}

}  // namespace

void buildOpenWithMenuForURLs(MCMenu& menu, const std::vector<std::filesystem::path>& urls,
                              const std::shared_ptr<MCResponder>& target, const std::string& action) {
  menu.removeAllItems();
  std::vector<std::string> others;
  const auto main = applicationBundleIDForURLs(urls, &others);
  if (main) {
    if (auto application = findApplication(*main)) {
      menu.addItem(itemFor(*application, target, action));
      if (!others.empty()) menu.addSeparator();
    }
  }
  std::vector<Application> records;
  for (const auto& id : others)
    if (auto application = findApplication(id)) records.push_back(std::move(*application));
  std::sort(records.begin(), records.end(),
            [](const Application& a, const Application& b) { return a.appName < b.appName; });
  for (const auto& application : records) menu.addItem(itemFor(application, target, action));
  if (menu.numberOfItems() == 0) {
    MCMenuItem none;
    none.title = MCLocalizedString("menu_none_in_brackets", "<None>");
    none.enabled = false;
    menu.addItem(std::move(none));
  }
}

void buildOpenWithMenuForPaths(MCMenu& menu, const std::vector<std::string>& paths,
                               const std::shared_ptr<MCResponder>& target, const std::string& action) {
  buildOpenWithMenuForURLs(menu, std::vector<std::filesystem::path>(paths.begin(), paths.end()), target, action);
}
