// MCCatalogue against real files: JPEGs whose Exif exiftool wrote, scanned, changed, scanned again;
// every operator of the predicate grammar answered from the catalogue and from the files; damaged,
// future and interrupted databases.

#include "../support/LogCapture.h"

#include <vesperon/catalogue/MCCatalogue.h>
#include <vesperon/catalogue/MCSearchableProperties.h>
#include <vesperon/platform/MCMainQueue.h>
#include <vesperon/platform/MCPlatformOperationQueue.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <set>
#include <thread>

namespace fs = std::filesystem;

namespace {

const fs::path kSamples = VESPERON_SAMPLES_DIR;

struct TempFolder {
  fs::path path;
  TempFolder() {
    char name[] = "/tmp/vesperon-catalogue-XXXXXX";
    path = ::mkdtemp(name);
  }
  ~TempFolder() {
    std::error_code ignored;
    fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(path, ignored);
  }
};

std::string quote(const std::string& text) {
  std::string out = "'";
  for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

// Writes the tags into a copy of a sample JPEG; an empty list leaves no Exif at all.
void makePhoto(const fs::path& file, const std::vector<std::string>& tags) {
  fs::create_directories(file.parent_path());
  fs::copy_file(kSamples / "fern.jpg", file, fs::copy_options::overwrite_existing);
  std::string command = "exiftool -q -overwrite_original -all=";
  for (const auto& tag : tags) command += " " + quote("-" + tag);
  command += " " + quote(file.string()) + " >/dev/null 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

// Bumps a file's modification time, so that a change within the same second is seen as one.
void touchLater(const fs::path& file, int seconds = 5) {
  fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(seconds));
}

// A folder of photos that tell apart every operator: makes, models (with case and accents),
// apertures, ISO, dates either side of midnight, a lens, GPS, a rating in a sidecar, a file
// without Exif, a name that is not UTF-8, and a subfolder.
void makeFixture(const fs::path& folder) {
  makePhoto(folder / "a.jpg", {"Make=NIKON CORPORATION", "Model=NIKON Z 6", "FNumber=1.8", "ISO=200",
                               "DateTimeOriginal=2022:10:02 08:40:13", "LensModel=NIKKOR Z 50mm f/1.8 S",
                               "FocalLength=50", "ExposureTime=0.004", "GPSLatitude=45.76", "GPSLatitudeRef=N",
                               "GPSLongitude=4.83", "GPSLongitudeRef=E", "ExposureProgram=2"});
  makePhoto(folder / "b.jpg", {"Make=Canon", "Model=Canon EOS R5", "FNumber=4", "ISO=800",
                               "DateTimeOriginal=2023:01:15 19:05:00", "LensModel=RF24-105mm F4 L IS USM",
                               "FocalLength=24", "ExposureTime=0.01", "ExposureProgram=3"});
  makePhoto(folder / "c.JPG", {"Make=nikon", "Model=Nikon D850", "FNumber=2.8", "ISO=100",
                               "DateTimeOriginal=2022:10:03 00:10:00", "FocalLength=85"});
  makePhoto(folder / "d.jpg", {});
  makePhoto(folder / "e.jpg", {"Make=Été", "Model=Été Caméra", "FNumber=11", "ISO=6400",
                               "DateTimeOriginal=2021:12:31 23:59:59"});
  makePhoto(folder / "caf\xe9.jpg", {"Make=Latin", "Model=Latin One", "FNumber=5.6", "ISO=400",
                                     "DateTimeOriginal=2022:10:02 12:00:00"});
  makePhoto(folder / "sub" / "g.jpg", {"Make=Apple", "Model=iPhone 15", "FNumber=1.6", "ISO=50",
                                       "DateTimeOriginal=2024:02:29 10:00:00", "GPSLatitude=51.5",
                                       "GPSLatitudeRef=N"});
  makePhoto(folder / "f.jpg", {"Make=Fujifilm", "Model=X-T5", "FNumber=2", "ISO=320",
                               "DateTimeOriginal=2022:10:02 18:00:00"});
  const std::string sidecar = "exiftool -q -XMP-xmp:Rating=4 -XMP-xmp:Label=Red -o " +
                              quote((folder / "f.xmp").string()) + " " + quote((folder / "f.jpg").string()) + " >/dev/null 2>&1";
  ASSERT_EQ(std::system(sidecar.c_str()), 0);
  std::ofstream(folder / "notes.txt") << "not a photo";
}

class Counter : public MCCatalogueScanDelegate {
 public:
  void scanWillReadFile(const fs::path& file) override {
    std::lock_guard lock(mutex);
    reads.insert(file);
  }
  void scanProgress(const MCCatalogueScanProgress& progress) override { last = progress; }
  std::mutex mutex;
  std::multiset<fs::path> reads;
  MCCatalogueScanProgress last;
};

MCPredicateRef parse(const std::string& text) {
  auto parsed = MCPredicateParser::parse(text);
  EXPECT_TRUE(parsed) << text << ": " << parsed.error;
  return parsed.predicate;
}

std::vector<fs::path> fromFiles(const MCPredicateNode& predicate, const fs::path& folder) {
  std::vector<fs::path> out;
  for (const auto& file : MCFindMediaFiles(folder))
    if (predicate.evaluateWithObject(MCSearchablePropertiesOfFile(file))) out.push_back(file);
  return out;
}

std::vector<char> bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::vector<char>(std::istreambuf_iterator<char>(in), {});
}

}  // namespace

TEST(Catalogue, ScanAndRescanReadOnlyWhatChanged) {
  TempFolder temp;
  const fs::path photos = temp.path / "photos";
  makeFixture(photos);
  auto catalogue = MCCatalogue::open(temp.path / "db" / "catalogue.db");
  ASSERT_TRUE(catalogue);

  Counter first;
  auto progress = catalogue->scan({photos}, &first);
  EXPECT_EQ(progress.seen, 8u);
  EXPECT_EQ(progress.read, 8u);
  EXPECT_EQ(first.reads.size(), 8u);
  EXPECT_EQ(first.last.read, 8u);
  EXPECT_EQ(catalogue->fileCount(), 8u);
  EXPECT_EQ(catalogue->roots(), std::vector<fs::path>{photos});
  EXPECT_EQ(catalogue->rootContaining(photos / "sub"), photos);
  EXPECT_FALSE(catalogue->rootContaining(temp.path));

  // The stored dictionary is the one the files give.
  for (const auto& file : MCFindMediaFiles(photos)) EXPECT_EQ(catalogue->propertiesOfFile(file), MCSearchablePropertiesOfFile(file)) << file;

  Counter unchanged;
  progress = catalogue->scan({photos}, &unchanged);
  EXPECT_EQ(progress.seen, 8u);
  EXPECT_EQ(progress.read, 0u);
  EXPECT_TRUE(unchanged.reads.empty());

  // An edit, a rename, a deletion, a new file and a changed sidecar: each read once, or removed.
  makePhoto(photos / "b.jpg", {"Make=Canon", "Model=Canon EOS R6", "FNumber=4"});
  touchLater(photos / "b.jpg");
  fs::rename(photos / "c.JPG", photos / "sub" / "c-renamed.JPG");
  fs::remove(photos / "d.jpg");
  makePhoto(photos / "h.jpg", {"Model=New One", "FNumber=3.5"});
  {
    std::string command = "exiftool -q -overwrite_original -XMP-xmp:Rating=1 " + quote((photos / "f.xmp").string()) + " >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    touchLater(photos / "f.xmp");
  }
  Counter changed;
  progress = catalogue->scan({photos}, &changed);
  EXPECT_EQ(changed.reads, (std::multiset<fs::path>{photos / "b.jpg", photos / "sub" / "c-renamed.JPG", photos / "h.jpg",
                                                   photos / "f.jpg"}));
  EXPECT_EQ(progress.removed, 2u);  // the old name of c, and d
  EXPECT_EQ(catalogue->fileCount(), 8u);
  EXPECT_EQ(catalogue->filesMatching(parse("{TIFF}.Model == \"Canon EOS R6\"").get()), std::vector<fs::path>{photos / "b.jpg"});
  EXPECT_TRUE(catalogue->filesMatching(parse("{TIFF}.Model == \"Canon EOS R5\"").get()).empty());
  EXPECT_EQ(catalogue->filesMatching(parse("{IPTC}.StarRating == \"1\"").get()), std::vector<fs::path>{photos / "f.jpg"});
  EXPECT_FALSE(catalogue->propertiesOfFile(photos / "d.jpg"));

  // A subfolder refreshes only itself and does not become a root.
  fs::remove(photos / "sub" / "g.jpg");
  progress = catalogue->scan({photos / "sub"});
  EXPECT_EQ(progress.seen, 1u);
  EXPECT_EQ(progress.removed, 1u);
  EXPECT_EQ(catalogue->roots(), std::vector<fs::path>{photos});
}

TEST(Catalogue, EveryOperatorAnswersAsTheFilesDo) {
  TempFolder temp;
  const fs::path photos = temp.path / "photos";
  makeFixture(photos);
  // A model on which a backtracking pattern runs past its bounds.
  makePhoto(photos / "long.jpg", {"Model=" + std::string(40, 'a') + "!"});
  auto catalogue = MCCatalogue::open(temp.path / "catalogue.db");
  ASSERT_TRUE(catalogue);
  catalogue->scan({photos});

  // Those marked true must become SQL over the columns alone.
  const std::vector<std::pair<std::string, bool>> predicates = {
      {"{Exif}.FNumber < 2.8", true},
      {"{Exif}.FNumber <= 2.8", true},
      {"{Exif}.FNumber > 2.8", true},
      {"{Exif}.FNumber >= 4", true},
      {"{Exif}.FNumber == 1.8", true},
      {"{Exif}.FNumber != 1.8", true},
      {"{Exif}.FNumber == \"1.8\"", true},
      {"{Exif}.FNumber IN {1.8, 4}", true},
      {"{Exif}.FNumber BETWEEN {2, 5.6}", true},
      {"{TIFF}.Model == \"NIKON Z 6\"", true},
      {"{TIFF}.Model != \"NIKON Z 6\"", true},
      {"{TIFF}.Model == 5", true},
      {"{TIFF}.Make ==[c] \"NIKON\"", true},
      {"{TIFF}.Make ==[cd] \"ete\"", true},
      {"{TIFF}.Model < \"M\"", true},
      {"{TIFF}.Model BEGINSWITH \"NIKON\"", true},
      {"{TIFF}.Model BEGINSWITH[c] \"nikon\"", true},
      {"{TIFF}.Model ENDSWITH[cd] \"camera\"", true},
      {"{TIFF}.Model ENDSWITH \"5\"", true},
      {"{TIFF}.Model CONTAINS[c] \"z\"", true},
      {"{TIFF}.Model CONTAINS \"Z\"", true},
      {"{TIFF}.Model LIKE[c] \"nikon*\"", true},
      {"{TIFF}.Model LIKE \"?anon*\"", true},
      {"{TIFF}.Model MATCHES \"N.*[0-9]\"", true},
      {"{TIFF}.Model MATCHES[c] \"n.*\"", true},
      {"{TIFF}.Model IN {\"NIKON Z 6\", \"Canon EOS R5\"}", true},
      {"{TIFF}.Model IN[c] {\"nikon d850\"}", true},
      {"{TIFF}.Model == NIL", true},
      {"{Exif}.LensModel CONTAINS[c] \"nikkor\"", true},
      {"{Exif}.DateTimeOriginal BETWEEN {\"2022-10-01\", \"2022-10-31\"}", true},
      {"{Exif}.DateTimeOriginal > \"2022-10-02T12:00:00\"", true},
      {"{Exif}.DateTimeOriginal >= \"2022:10:02 12:00:00\"", true},
      {"{Exif}.DateTimeOriginal < \"2022:01:01 00:00:00\"", true},
      {"{Exif}.DateTimeOriginal == \"2022-10-02T08:40:13\"", true},
      {"{Exif}.DateTimeOriginal != \"2022-10-02T08:40:13\"", true},
      {"{Exif}.DateTimeOriginal BEGINSWITH \"2022:10\"", true},
      {"{Exif}.DateTimeOriginal < \"2022-10-02T08:40:13Z\"", true},
      {"ANY {Exif}.ISOSpeedRatings >= 800", true},
      {"ALL {Exif}.ISOSpeedRatings < 800", true},
      {"ANY {Exif}.ISOSpeedRatings IN {100, 200}", true},
      {"ANY {Exif}.ISOSpeedRatings BETWEEN {100, 400}", true},
      {"{Exif}.FocalLength > 30 AND {TIFF}.Make BEGINSWITH[c] \"nikon\"", true},
      {"NOT {Exif}.FNumber < 4", true},
      {"NOT ({TIFF}.Model CONTAINS \"Z\" OR {Exif}.FNumber > 5)", true},
      {"{GPS}.Latitude > 40", true},
      {"{GPS}.Longitude < 10", true},
      {"{IPTC}.StarRating >= 4", true},
      {"{IPTC}.StarRating == \"4\"", true},
      {"PixelWidth > 10", true},
      {"ANY {TIFF}.Model == \"NIKON Z 6\"", true},
      {"name LIKE[c] \"*.jpg\"", true},
      {"name ENDSWITH \".JPG\"", true},
      {"name BEGINSWITH \"caf\"", true},
      {"path CONTAINS \"/sub/\"", true},
      {"size > 1000", true},
      {"type == \"public.jpeg\"", true},
      {"modificationDate > \"2000-01-01\"", true},
      {"TRUEPREDICATE", true},
      {"FALSEPREDICATE", true},
      {"{Exif}.ISOSpeedRatings CONTAINS 200", false},
      {"{Exif}.ExposureProgram == 2", false},
      {"{Exif}.ColorSpace != 1", false},
      {"{Exif}.FNumber > {Exif}.FocalLength", false},
      {"\"Z\" IN {TIFF}.Model", false},
      {"{Exif}.ExposureProgram == 3 OR {Exif}.FNumber < 2", false},
      {"{Exif}.ExposureProgram >= \"2\"", false},
      {"{TIFF}.XResolution > 50", false},
      {"{GPS}.LatitudeRef ==[c] \"n\"", false},
      {"{Exif}.DateTimeDigitized > \"2022-10-02\"", false},
      {"{Exif}.ComponentsConfiguration CONTAINS 1", false},
      {"{Exif}.ExifVersion == 2", false},
      {"{Exif}.ExposureTime.x == 2", false},
      {"NOT {Exif}.Missing == 2", false},
  };
  for (const auto& [text, inColumns] : predicates) {
    auto predicate = parse(text);
    ASSERT_TRUE(predicate);
    bool translated = false;
    MCCatalogue::sqlForPredicate(*predicate, &translated);
    EXPECT_EQ(translated, inColumns) << text;
    const auto files = fromFiles(*predicate, photos);
    EXPECT_EQ(catalogue->filesMatching(predicate.get(), photos), files) << text;
  }
  // The fixture tells the operators apart: not everything, not nothing.
  EXPECT_EQ(catalogue->filesMatching(parse("{TIFF}.Model BEGINSWITH[c] \"nikon\"").get()),
            (std::vector<fs::path>{photos / "a.jpg", photos / "c.JPG"}));
  EXPECT_EQ(catalogue->filesMatching(parse("{TIFF}.Make ==[cd] \"ete\"").get()), std::vector<fs::path>{photos / "e.jpg"});
  EXPECT_EQ(catalogue->filesMatching(parse("name BEGINSWITH \"caf\"").get()), std::vector<fs::path>{photos / "caf\xe9.jpg"});

  // A folder named as the caller names it: the paths, and "path" itself, are shown under it.
  const fs::path relative = fs::relative(photos, fs::current_path());
  EXPECT_EQ(catalogue->filesMatching(parse("path BEGINSWITH \"" + relative.string() + "/sub\"").get(), relative),
            std::vector<fs::path>{relative / "sub" / "g.jpg"});

  // A pattern that runs past its bounds ends the query with the evaluator's reason.
  EXPECT_THROW(catalogue->filesMatching(parse("{TIFF}.Model MATCHES \"(a+)+$\"").get()), MCCatalogueError);
}

TEST(Catalogue, SortedByCaptureDateAndGroupedByDay) {
  TempFolder temp;
  const fs::path photos = temp.path / "photos";
  makeFixture(photos);
  auto catalogue = MCCatalogue::open(temp.path / "catalogue.db");
  ASSERT_TRUE(catalogue);
  fs::last_write_time(photos / "d.jpg", fs::file_time_type::clock::now() - std::chrono::hours(24 * 3650 * 2));
  catalogue->scan({photos});

  const auto entries = catalogue->entriesByCaptureDate(nullptr, photos);
  std::vector<std::string> names;
  for (const auto& entry : entries) names.push_back(entry.path.filename().string());
  // d.jpg has no capture date and a modification date about twenty years back: first.
  EXPECT_EQ(names, (std::vector<std::string>{"d.jpg", "e.jpg", "a.jpg", "caf\xe9.jpg", "f.jpg", "c.JPG", "b.jpg", "g.jpg"}));
  const auto groups = MCCatalogue::groupsByDay(entries);
  ASSERT_EQ(groups.size(), 6u);
  EXPECT_EQ(groups[1].day, "2021-12-31");
  EXPECT_EQ(groups[2].day, "2022-10-02");
  EXPECT_EQ(groups[2].first, 2u);
  EXPECT_EQ(groups[2].count, 3u);
  EXPECT_EQ(groups[3].day, "2022-10-03");
  EXPECT_EQ(groups[5].day, "2024-02-29");

  const auto nikons = catalogue->entriesByCaptureDate(parse("{TIFF}.Make BEGINSWITH[c] \"nikon\"").get());
  ASSERT_EQ(nikons.size(), 2u);
  EXPECT_EQ(nikons[1].captureDate, "2022:10:03 00:10:00");
}

TEST(Catalogue, UnreachableRootKeepsItsRowsOffline) {
  TempFolder temp;
  const fs::path photos = temp.path / "photos";
  makePhoto(photos / "a.jpg", {"Model=One"});
  auto catalogue = MCCatalogue::open(temp.path / "catalogue.db");
  ASSERT_TRUE(catalogue);
  catalogue->scan({photos});
  fs::rename(photos, temp.path / "elsewhere");
  auto progress = catalogue->scan({photos});
  EXPECT_EQ(progress.offlineRoots, 1u);
  EXPECT_EQ(progress.removed, 0u);
  EXPECT_TRUE(catalogue->isRootOffline(photos));
  EXPECT_EQ(catalogue->fileCount(photos), 1u);
  fs::rename(temp.path / "elsewhere", photos);
  catalogue->scan({photos});
  EXPECT_FALSE(catalogue->isRootOffline(photos));
}

TEST(Catalogue, BackgroundScanReportsOnTheMainQueue) {
  TempFolder temp;
  makePhoto(temp.path / "photos" / "a.jpg", {"Model=One"});
  makePhoto(temp.path / "photos" / "b.jpg", {"Model=Two"});
  auto catalogue = MCCatalogue::open(temp.path / "catalogue.db");
  ASSERT_TRUE(catalogue);
  MCPlatformOperationQueue queue;
  auto counter = std::make_shared<Counter>();
  std::optional<MCCatalogueScanProgress> done;
  bool onMain = false;
  catalogue->scanInBackground(queue, {temp.path / "photos"}, counter, [&](MCCatalogueScanProgress progress) {
    onMain = MCMainQueue::isMainThread();
    done = progress;
  });
  ASSERT_TRUE(MCMainQueue::runUntil([&] { return done.has_value(); }));
  EXPECT_TRUE(onMain);
  EXPECT_EQ(done->read, 2u);
  EXPECT_FALSE(done->cancelled);
  EXPECT_EQ(counter->reads.size(), 2u);
}

TEST(Catalogue, DamagedFileMovedAsideAndFutureVersionRefused) {
  TempFolder temp;
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path file = temp.path / "catalogue.db";
  std::ofstream(file) << std::string(5000, 'x');
  auto catalogue = MCCatalogue::open(file);
  ASSERT_TRUE(catalogue);
  EXPECT_EQ(catalogue->fileCount(), 0u);
  EXPECT_TRUE(log.contains("moved aside"));
  std::size_t aside = 0;
  for (const auto& entry : fs::directory_iterator(temp.path))
    if (entry.path().filename().string().rfind("catalogue.db.corrupt-", 0) == 0) {
      ++aside;
      EXPECT_EQ(bytesOf(entry.path()), std::vector<char>(5000, 'x'));
    }
  EXPECT_EQ(aside, 1u);
  makePhoto(temp.path / "photos" / "a.jpg", {"Model=One"});
  EXPECT_EQ(catalogue->scan({temp.path / "photos"}).read, 1u);
  catalogue.reset();

  // A newer version (the header's user version, at byte 60) is refused and left as it is.
  {
    std::fstream header(file, std::ios::in | std::ios::out | std::ios::binary);
    header.seekp(60);
    const char version[4] = {0, 0, 0, 99};
    header.write(version, 4);
  }
  const auto before = bytesOf(file);
  std::string error;
  EXPECT_FALSE(MCCatalogue::open(file, &error));
  EXPECT_NE(error.find("schema version 99"), std::string::npos) << error;
  EXPECT_NE(error.find("newer"), std::string::npos) << error;
  EXPECT_EQ(bytesOf(file), before);
  EXPECT_FALSE(fs::exists(file.string() + "-wal"));
}

TEST(Catalogue, KilledScanLeavesAConsistentDatabaseThatARescanCompletes) {
  TempFolder temp;
  const fs::path photos = temp.path / "photos";
  makePhoto(photos / "seed.jpg", {"Model=Seed", "FNumber=2"});
  const std::size_t kFiles = MCCatalogue::kBatchSize * 3 + 17;
  for (std::size_t i = 0; i < kFiles - 1; ++i) fs::copy_file(photos / "seed.jpg", photos / ("p" + std::to_string(i) + ".jpg"));
  const fs::path file = temp.path / "catalogue.db";
  ASSERT_TRUE(MCCatalogue::open(file));

  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Slow enough that the parent can kill it between its first and last batch.
    struct Slow : MCCatalogueScanDelegate {
      void scanWillReadFile(const fs::path&) override { std::this_thread::sleep_for(std::chrono::milliseconds(2)); }
    } slow;
    auto catalogue = MCCatalogue::open(file);
    if (catalogue) catalogue->scan({photos}, &slow);
    ::_exit(0);
  }
  auto reader = MCCatalogue::open(file);
  ASSERT_TRUE(reader);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (reader->fileCount() < MCCatalogue::kBatchSize && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status)) << "the scan ended before it was killed";
  const std::size_t stored = reader->fileCount();
  EXPECT_GE(stored, MCCatalogue::kBatchSize);
  EXPECT_LT(stored, kFiles);
  EXPECT_EQ(stored % MCCatalogue::kBatchSize, 0u) << "a batch was written in part";

  Counter counter;
  const auto progress = reader->scan({photos}, &counter);
  EXPECT_EQ(progress.read, kFiles - stored);
  EXPECT_EQ(reader->fileCount(), kFiles);
  EXPECT_EQ(reader->filesMatching(parse("{TIFF}.Model == \"Seed\" AND {Exif}.FNumber == 2").get()).size(), kFiles);
  EXPECT_EQ(reader->scan({photos}).read, 0u);
}

TEST(Catalogue, TwoScannersAtOnceLeaveOneConsistentCatalogue) {
  TempFolder temp;
  const fs::path photos = temp.path / "photos";
  makePhoto(photos / "seed.jpg", {"Model=Seed"});
  const std::size_t kFiles = MCCatalogue::kBatchSize * 2 + 3;
  for (std::size_t i = 1; i < kFiles; ++i) fs::copy_file(photos / "seed.jpg", photos / ("p" + std::to_string(i) + ".jpg"));
  const fs::path file = temp.path / "catalogue.db";
  // Two catalogues on one file are two connections, as two processes have.
  auto first = MCCatalogue::open(file), second = MCCatalogue::open(file);
  ASSERT_TRUE(first && second);
  std::thread other([&] { second->scan({photos}); });
  first->scan({photos});
  other.join();
  EXPECT_EQ(first->fileCount(), kFiles);
  EXPECT_EQ(second->scan({photos}).read, 0u);
  EXPECT_EQ(first->filesMatching(parse("{TIFF}.Model == \"Seed\"").get()).size(), kFiles);
}
