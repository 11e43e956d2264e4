// vesperon find DIR --where TEXT: the photos and clips under DIR whose properties satisfy the
// predicate TEXT, one path a line, in name order. The properties are those `vesperon info` prints
// for the file, and beside them the file's own: "name", "path", "size" (bytes), "type" (its type
// identifier) and "modificationDate" (Exif text, local time), so that
//     {Exif}.FNumber < 2.8 AND {TIFF}.Model BEGINSWITH[c] "nikon"
//     name LIKE[c] "*.heic" OR size > 1000000
// both work. A text that does not parse, or that could never be evaluated (a MATCHES pattern that
// does not compile, a BETWEEN without two bounds), prints the reason with its position, and
// nothing else: status 2. A pattern that runs past its match limit on a file ends the search
// with a message naming the file: status 1.
//
// When DIR is catalogued (`vesperon index`), the files that changed since are read into the
// catalogue first and the catalogue answers (--no-refresh: as of the last scan); --no-catalogue
// reads every file instead. Which of
// the two it did goes to stderr, so that stdout stays the list.

#include "MediaFiles.h"
#include "VesperonCommand.h"

#include <vesperon/catalogue/MCCatalogue.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include <cstdio>
#include <ctime>

namespace fs = std::filesystem;

namespace {

struct FindSettings {
  fs::path folder;
  std::string where;
  fs::path catalogue;
  bool noCatalogue = false;
  bool noRefresh = false;
};

int findInFiles(const FindSettings& settings, const MCPredicateNode& predicate) {
  for (const fs::path& file : findMediaFiles(settings.folder)) {
    try {
      if (predicate.evaluateWithObject(searchablePropertiesOfFile(file))) std::printf("%s\n", file.c_str());
    } catch (const MCPredicateEvaluationError& error) {
      std::fflush(stdout);
      std::fprintf(stderr, "vesperon find: the search stopped at %s: %s\n", file.c_str(), error.what());
      return 1;
    }
  }
  return 0;
}

// The catalogue that holds the folder, refreshed; none (and a line saying why) when the files are
// to be read instead.
std::shared_ptr<MCCatalogue> catalogueFor(const FindSettings& settings) {
  const fs::path file = settings.catalogue.empty() ? MCCatalogue::defaultLocation() : settings.catalogue;
  std::error_code ec;
  if (!fs::exists(file, ec)) {
    std::fprintf(stderr, "vesperon find: reading the files (no catalogue at %s)\n", file.c_str());
    return nullptr;
  }
  std::string error;
  auto catalogue = MCCatalogue::open(file, &error);
  if (!catalogue) {
    std::fprintf(stderr, "vesperon find: reading the files (the catalogue cannot be used: %s)\n", error.c_str());
    return nullptr;
  }
  const auto root = catalogue->rootContaining(settings.folder);
  if (!root) {
    std::fprintf(stderr, "vesperon find: reading the files (%s is not catalogued in %s)\n", settings.folder.c_str(),
                 file.c_str());
    return nullptr;
  }
  if (catalogue->isReadOnly() || settings.noRefresh) {
    std::fprintf(stderr, "vesperon find: answered from the catalogue %s%s, as of its last scan\n", file.c_str(),
                 settings.noRefresh ? "" : " (read-only)");
    return catalogue;
  }
  try {
    const auto progress = catalogue->scan({settings.folder});
    std::fprintf(stderr, "vesperon find: answered from the catalogue %s (refreshed first: %llu of %llu files read, %llu removed)\n",
                 file.c_str(), (unsigned long long)progress.read, (unsigned long long)progress.seen,
                 (unsigned long long)progress.removed);
  } catch (const MCCatalogueError& e) {
    std::fprintf(stderr, "vesperon find: answered from the catalogue %s, not refreshed: %s\n", file.c_str(), e.what());
  }
  return catalogue;
}

int runFind(const FindSettings& settings) {
  const MCPredicateParseResult parsed = MCPredicateParser::parse(settings.where);
  if (!parsed) {
    std::fprintf(stderr, "vesperon find: the predicate does not parse: %s\n  %s\n  %s^\n", parsed.error.c_str(),
                 settings.where.c_str(), std::string(parsed.position, ' ').c_str());
    return 2;
  }
  std::error_code ec;
  if (!fs::is_directory(settings.folder, ec)) {
    std::fprintf(stderr, "vesperon find: %s is not a folder\n", settings.folder.c_str());
    return 1;
  }
  if (settings.noCatalogue) {
    std::fprintf(stderr, "vesperon find: reading the files (--no-catalogue)\n");
    return findInFiles(settings, *parsed.predicate);
  }
  auto catalogue = catalogueFor(settings);
  if (!catalogue) return findInFiles(settings, *parsed.predicate);
  try {
    for (std::string& file : catalogue->pathsMatching(parsed.predicate.get(), settings.folder)) {
      file += '\n';
      std::fwrite(file.data(), 1, file.size(), stdout);
    }
  } catch (const MCCatalogueError& error) {
    std::fflush(stdout);
    std::fprintf(stderr, "vesperon find: the search stopped: %s\n", error.what());
    return 1;
  }
  return 0;
}

std::function<int()> defineFind(CLI::App& command) {
  auto settings = std::make_shared<FindSettings>();
  command.add_option("DIR", settings->folder, "the folder whose photos and clips, at any depth, are searched")->required();
  command.add_option("--where", settings->where,
                     "the predicate, e.g. '{Exif}.FNumber < 2.8 AND {TIFF}.Model BEGINSWITH[c] \"nikon\"'")
      ->required();
  command.add_option("--catalogue", settings->catalogue,
                     "the catalogue file (default: $XDG_DATA_HOME/vesperon/catalogue.sqlite3)");
  command.add_flag("--no-catalogue", settings->noCatalogue, "read the files even where DIR is catalogued");
  command.add_flag("--no-refresh", settings->noRefresh,
                   "answer from the catalogue as of its last scan, without reading the files that changed since");
  return [settings] { return runFind(*settings); };
}

}  // namespace

VESPERON_COMMAND("find", "print the photos and clips under DIR whose properties satisfy a predicate", defineFind)
