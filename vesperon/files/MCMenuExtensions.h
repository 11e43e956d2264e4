#pragma once
// The "Open With" menu of a set of files: the application that opens them all by default first,
// then a separator, then the others that can open them all, by name. Each item carries the
// application's id as represented object, its icon, and the given target and action.

#include <vesperon/toolkit/MCMenu.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class MCResponder;

/// Fills `menu` with the applications that open the files, the default first.
void buildOpenWithMenuForURLs(MCMenu& menu, const std::vector<std::filesystem::path>& urls,
                              const std::shared_ptr<MCResponder>& target, const std::string& action);
/// The same for paths given as text.
void buildOpenWithMenuForPaths(MCMenu& menu, const std::vector<std::string>& paths,
                               const std::shared_ptr<MCResponder>& target, const std::string& action);
