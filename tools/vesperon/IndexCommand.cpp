// vesperon index DIR… [--catalogue PATH]: builds or refreshes the catalogue of the photos and clips
// under each folder, reading only the files that are new or changed since the last run, with a
// progress bar on a terminal and a summary line: files seen, read, failed, removed, the time.

#include "VesperonCommand.h"

#include <vesperon/catalogue/MCCatalogue.h>

#include <unistd.h>

#include <chrono>
#include <cstdio>

namespace fs = std::filesystem;

namespace {

struct IndexSettings {
  std::vector<fs::path> folders;
  fs::path catalogue;
};

class ProgressBar : public MCCatalogueScanDelegate {
 public:
  void scanProgress(const MCCatalogueScanProgress& progress) override {
    if (!tty_) return;
    const uint64_t total = progress.toRead, done = progress.read, width = 40;
    const uint64_t filled = total ? done * width / total : width;
    std::fprintf(stderr, "\r[%s%s] %llu/%llu read, %llu seen", std::string(filled, '#').c_str(),
                 std::string(width - filled, '.').c_str(), (unsigned long long)done, (unsigned long long)total,
                 (unsigned long long)progress.seen);
    std::fflush(stderr);
    shown_ = true;
  }
  void finish() {
    if (shown_) std::fprintf(stderr, "\n");
  }

 private:
  bool tty_ = isatty(STDERR_FILENO);
  bool shown_ = false;
};

int runIndex(const IndexSettings& settings) {
  for (const fs::path& folder : settings.folders) {
    std::error_code ec;
    if (!fs::is_directory(folder, ec)) {
      std::fprintf(stderr, "vesperon index: %s is not a folder\n", folder.c_str());
      return 1;
    }
  }
  const fs::path file = settings.catalogue.empty() ? MCCatalogue::defaultLocation() : settings.catalogue;
  std::string error;
  auto catalogue = MCCatalogue::open(file, &error);
  if (!catalogue) {
    std::fprintf(stderr, "vesperon index: %s\n", error.c_str());
    return 1;
  }
  ProgressBar bar;
  const auto start = std::chrono::steady_clock::now();
  MCCatalogueScanProgress progress;
  try {
    progress = catalogue->scan(settings.folders, &bar);
  } catch (const MCCatalogueError& e) {
    bar.finish();
    std::fprintf(stderr, "vesperon index: %s\n", e.what());
    return 1;
  }
  bar.finish();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("%llu files, %llu read, %llu failed, %llu removed in %.2f s (%.0f files/s read) into %s\n",
              (unsigned long long)progress.seen, (unsigned long long)progress.read, (unsigned long long)progress.failed,
              (unsigned long long)progress.removed, seconds, seconds > 0 ? double(progress.read) / seconds : 0.0,
              file.c_str());
  return 0;
}

std::function<int()> defineIndex(CLI::App& command) {
  auto settings = std::make_shared<IndexSettings>();
  command.add_option("DIR", settings->folders, "the folders whose photos and clips, at any depth, are catalogued")->required();
  command.add_option("--catalogue", settings->catalogue,
                     "the catalogue file (default: $XDG_DATA_HOME/vesperon/catalogue.sqlite3)");
  return [settings] { return runIndex(*settings); };
}

}  // namespace

VESPERON_COMMAND("index", "build or refresh the catalogue of the photos and clips under each DIR", defineIndex)
