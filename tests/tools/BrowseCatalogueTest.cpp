// `vesperon browse` on a folder of `vesperon index`'s catalogue: a folder too large for its capture
// days to be read before it shows is grouped by day at once, from the catalogue's rows, which a
// walk behind the screen checks against the folder; without a catalogue browse makes none.

#include "../support/ProgramOutcome.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

TEST(BrowseCatalogue, ALargeCataloguedFolderIsGroupedByDayAtOnce) {
  const fs::path home = fs::path(VESPERON_TEST_BINARY_DIR) / ("browse-catalogue-" + std::to_string(::getpid()));
  fs::remove_all(home);
  fs::create_directories(home / "photos");
  // Two days, 2,600 photos each: past the 5,000 files whose days the scan reads itself.
  for (const auto& [name, date] : {std::pair{"a", "2021:03:04 10:00:00"}, {"b", "2022:07:08 11:00:00"}}) {
    const fs::path original = home / (std::string(name) + ".jpg");
    fs::copy_file(fs::path(VESPERON_SAMPLES_DIR) / "beach.jpg", original);
    ASSERT_EQ(std::system(("exiftool -q -overwrite_original -DateTimeOriginal='" + std::string(date) + "' '" +
                           original.string() + "'").c_str()),
              0);
    for (int i = 0; i < 2600; ++i) fs::create_hard_link(original, home / "photos" / (name + std::to_string(i) + ".jpg"));
  }
  const std::string environment = "XDG_DATA_HOME='" + (home / "data").string() + "' XDG_CONFIG_HOME='" +
                                  (home / "config").string() + "' XDG_CACHE_HOME='" + (home / "cache").string() + "' ";
  const std::string browse = environment + "timeout -k 5 120 '" VESPERON_TOOL "' browse '" + (home / "photos").string() +
                             "' --render '" + (home / "grid.png").string() + "' --size 900x600 --report";

  const ProgramOutcome uncatalogued = ProgramOutcome::run(browse);
  ASSERT_EQ(uncatalogued.status, 0) << uncatalogued.output;
  EXPECT_EQ(uncatalogued.output.find("catalogue days"), std::string::npos) << uncatalogued.output;
  EXPECT_FALSE(fs::exists(home / "data" / "vesperon")) << "browse made a catalogue of its own";

  const ProgramOutcome index =
      ProgramOutcome::run(environment + "'" VESPERON_TOOL "' index '" + (home / "photos").string() + "'");
  ASSERT_EQ(index.status, 0) << index.output;
  const ProgramOutcome catalogued = ProgramOutcome::run(browse);
  ASSERT_EQ(catalogued.status, 0) << catalogued.output;
  EXPECT_NE(catalogued.output.find("catalogue days 5200\n"), std::string::npos) << catalogued.output;
  // The first status line already counts the two days: nothing waited for a reader.
  const std::size_t status = catalogued.output.find("status ");
  ASSERT_NE(status, std::string::npos) << catalogued.output;
  EXPECT_EQ(catalogued.output.substr(status, catalogued.output.find('\n', status) - status),
            "status 5,200 photos in 2 days");
  // The screen came from the catalogue's rows; the walk behind it found the folder as they say.
  EXPECT_NE(catalogued.output.find("catalogue checked: the folder is as catalogued\n"), std::string::npos) << catalogued.output;
  EXPECT_EQ(catalogued.output.find("folder-changed"), std::string::npos) << catalogued.output;

  // A photo added since the index: the first screen is the catalogue's, then the folder is read again.
  fs::create_hard_link(home / "a.jpg", home / "photos" / "added.jpg");
  const ProgramOutcome changed = ProgramOutcome::run(browse);
  ASSERT_EQ(changed.status, 0) << changed.output;
  EXPECT_NE(changed.output.find("catalogue days 5200\n"), std::string::npos) << changed.output;
  EXPECT_NE(changed.output.find("catalogue checked: the folder changed since\n"), std::string::npos) << changed.output;
  EXPECT_NE(changed.output.find("folder-changed 5201 photos\n"), std::string::npos) << changed.output;
  fs::remove_all(home);
}
