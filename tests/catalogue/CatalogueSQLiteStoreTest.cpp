// The SQLite store under MCCatalogue, through the storage interface alone: records stored,
// replaced and removed, identities read back for a folder and only that folder; and a catalogue
// over it listing its answers in the order `find` lists files.

#include <vesperon/catalogue/MCCatalogue.h>
#include <vesperon/catalogue/MCCatalogueSQLiteStore.h>
#include <vesperon/catalogue/MCSearchableProperties.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace {

struct TempFolder {
  fs::path path;
  TempFolder() {
    char name[] = "/tmp/vesperon-store-XXXXXX";
    path = ::mkdtemp(name);
  }
  ~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
};

MCCatalogueRecord record(const std::string& path, const char* model, double fNumber, int64_t mtimeNs) {
  MCCatalogueRecord r;
  r.path = path;
  r.identity = {1, int64_t(std::hash<std::string>{}(path) & 0xffff), 1000, mtimeNs, -1, -1};
  r.type = "public.jpeg";
  r.readable = true;
  r.properties["{TIFF}"] = MCValue(MCDictionary{{"Model", MCValue(model)}});
  r.properties["{Exif}"] = MCValue(MCDictionary{{"FNumber", MCValue(fNumber)}});
  return r;
}

std::vector<std::string> names(const std::vector<std::string>& paths) {
  std::vector<std::string> out;
  for (const auto& p : paths) out.push_back(fs::path(p).filename().string());
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace

TEST(CatalogueSQLiteStore, StoresReplacesAndRemovesWithinAFolder) {
  TempFolder temp;
  auto store = MCCatalogueSQLiteStore::open(temp.path / "c.db");
  ASSERT_TRUE(store);
  EXPECT_EQ(store->location(), temp.path / "c.db");
  // "/p/a-b" sorts between "/p/a" and "/p/a/..." by bytes, and is not under "/p/a".
  std::vector<MCCatalogueRecord> records = {record("/p/a/1.jpg", "NIKON Z 6", 1.8, 1'700'000'000'123'456'789),
                                            record("/p/a/sub/2.jpg", "Canon EOS R5", 4.0, 5),
                                            record("/p/a-b/3.jpg", "NIKON D850", 2.0, -1'500'000'001)};
  store->store(records);
  EXPECT_EQ(store->fileCount(""), 3u);
  EXPECT_EQ(store->fileCount("/p/a"), 2u);

  auto under = store->filesUnder("/p/a");
  ASSERT_EQ(under.size(), 2u);
  ASSERT_TRUE(under.count("/p/a/1.jpg"));
  EXPECT_EQ(under["/p/a/1.jpg"].identity, records[0].identity);
  EXPECT_EQ(store->filesUnder("/p/a-b")["/p/a-b/3.jpg"].identity, records[2].identity);

  // A record of a stored path replaces its row, properties and all.
  records[0].properties["{TIFF}"] = MCValue(MCDictionary{{"Model", MCValue("X-T5")}});
  records[0].identity.size = 2000;
  store->store(std::span(records.data(), 1));
  EXPECT_EQ(store->fileCount(""), 3u);
  EXPECT_EQ(store->filesUnder("/p/a")["/p/a/1.jpg"].identity.size, 2000);
  const auto nikon = MCPredicateParser::parse("{TIFF}.Model BEGINSWITH[c] \"nikon\" AND {Exif}.FNumber < 2.8");
  MCCatalogueQuery everything{nikon.predicate.get(), "", ""};
  EXPECT_EQ(names(store->filesMatching(everything)), std::vector<std::string>{"3.jpg"});
  MCCatalogueQuery inA{nullptr, "/p/a", "rel/a"};
  const auto shown = store->filesMatching(inA);
  EXPECT_EQ(names(shown), (std::vector<std::string>{"1.jpg", "2.jpg"}));
  EXPECT_TRUE(std::all_of(shown.begin(), shown.end(), [](const std::string& p) { return p.starts_with("rel/a/"); }));
  const auto properties = store->propertiesOfFile("/p/a/1.jpg", "rel/a/1.jpg");
  ASSERT_TRUE(properties);
  EXPECT_EQ(*properties->at("{TIFF}").dictionary()->at("Model").string(), "X-T5");
  EXPECT_EQ(*properties->at("path").string(), "rel/a/1.jpg");

  // All of a folder's dictionaries at once are each one's, under the folder as named.
  const auto all = store->propertiesUnder({nullptr, "/p/a", "rel/a"});
  ASSERT_EQ(all.size(), 2u);
  for (const auto& [shown, dictionary] : all) {
    ASSERT_TRUE(shown.starts_with("rel/a/")) << shown;
    EXPECT_EQ(dictionary, *store->propertiesOfFile("/p/a/" + shown.substr(6), shown)) << shown;
  }
  const int64_t key = under["/p/a/sub/2.jpg"].key;
  store->remove(std::span(&key, 1));
  EXPECT_EQ(store->fileCount("/p/a"), 1u);
  EXPECT_FALSE(store->propertiesOfFile("/p/a/sub/2.jpg", "/p/a/sub/2.jpg"));

  store->recordRoot("/p/a", false);
  store->recordRoot("/p/a-b", true);
  EXPECT_EQ(store->roots(), (std::vector<std::string>{"/p/a", "/p/a-b"}));
  EXPECT_TRUE(store->isRootOffline("/p/a-b"));
  EXPECT_FALSE(store->isRootOffline("/p/a"));
  EXPECT_EQ(MCCatalogueSQLiteStore::schemaVersion(), MCCatalogue::kSchemaVersion);
}

TEST(CatalogueSQLiteStore, ReadOnlyFileRefusesWrites) {
  TempFolder temp;
  {
    auto store = MCCatalogueSQLiteStore::open(temp.path / "c.db");
    ASSERT_TRUE(store);
    store->store(std::vector<MCCatalogueRecord>{record("/q/1.jpg", "NIKON Z 6", 1.8, 0)});
  }
  fs::permissions(temp.path / "c.db", fs::perms::owner_read);
  if (::access((temp.path / "c.db").c_str(), W_OK) == 0) GTEST_SKIP() << "running as a user who writes anything";
  auto store = MCCatalogueSQLiteStore::open(temp.path / "c.db");
  ASSERT_TRUE(store);
  EXPECT_TRUE(store->isReadOnly());
  EXPECT_EQ(store->fileCount(""), 1u);
  EXPECT_THROW(store->store(std::vector<MCCatalogueRecord>{record("/q/2.jpg", "X", 1, 0)}), MCCatalogueError);
  EXPECT_EQ(store->fileCount(""), 1u);
}

TEST(CatalogueSQLiteStore, CatalogueListsAnswersInPathOrder) {
  TempFolder temp;
  auto store = MCCatalogueSQLiteStore::open(temp.path / "c.db");
  ASSERT_TRUE(store);
  // Names around the slash in byte order ('-' and '.' below it, 'A' and bytes above 0x7f above).
  const std::vector<std::string> files = {"/p/x/a-b.jpg", "/p/x/a/1.jpg", "/p/x/a.jpg", "/p/x/a/b/2.jpg", "/p/x/A.jpg",
                                          "/p/x/a b.jpg", "/p/x/\xc3\xa9.jpg", "/p/x/a/\xff.jpg", "/p/x/ab.jpg"};
  std::vector<MCCatalogueRecord> records;
  for (const auto& f : files) records.push_back(record(f, "NIKON Z 6", 1.8, 0));
  store->store(records);
  auto catalogue = MCCatalogue::withStore(store);
  ASSERT_TRUE(catalogue);
  std::vector<fs::path> expected(files.begin(), files.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(catalogue->filesMatching(nullptr), expected);
  const auto nikons = MCPredicateParser::parse("{TIFF}.Model BEGINSWITH[c] \"nikon\"");
  const auto strings = catalogue->pathsMatching(nikons.predicate.get(), "/p/x/a");
  EXPECT_EQ(strings, (std::vector<std::string>{"/p/x/a/1.jpg", "/p/x/a/b/2.jpg", "/p/x/a/\xff.jpg"}));
  // Entries in any order are the sorted ones, with the sizes the records gave.
  auto unordered = catalogue->entries(nullptr, "/p/x/a");
  auto sorted = catalogue->entriesByCaptureDate(nullptr, "/p/x/a");
  ASSERT_EQ(unordered.size(), 3u);
  auto byPath = [](const MCCatalogueEntry& x, const MCCatalogueEntry& y) { return x.path < y.path; };
  std::sort(unordered.begin(), unordered.end(), byPath);
  std::sort(sorted.begin(), sorted.end(), byPath);
  for (std::size_t i = 0; i < unordered.size(); ++i) {
    EXPECT_EQ(unordered[i].path, sorted[i].path);
    EXPECT_EQ(unordered[i].day, sorted[i].day);
    EXPECT_EQ(unordered[i].size, 1000);
  }
  EXPECT_FALSE(MCCatalogue::withStore(nullptr));
}

TEST(CatalogueSQLiteStore, TextComparisonsFoldAsTheEvaluatorDoes) {
  TempFolder temp;
  auto store = MCCatalogueSQLiteStore::open(temp.path / "c.db");
  ASSERT_TRUE(store);
  // Plain ASCII in several cases, a Kelvin sign (folds to "k"), an accented capital, a short one.
  const std::vector<std::string> models = {"NIKON Z 6", "Nikon D850", "nikon", "NI\xe2\x84\xaaON Zf", "\xc3\x89t\xc3\xa9 NIKON", "NIK",
                                           "Canon nikon-like", "D850 NIKON"};
  std::vector<MCCatalogueRecord> records;
  for (std::size_t i = 0; i < models.size(); ++i) records.push_back(record("/m/" + std::to_string(i) + ".jpg", models[i].c_str(), 2, 0));
  store->store(records);
  for (const char* text : {"{TIFF}.Model BEGINSWITH[c] \"nikon\"", "{TIFF}.Model BEGINSWITH \"NIKON\"", "{TIFF}.Model ENDSWITH[c] \"Nikon\"",
                           "{TIFF}.Model CONTAINS[c] \"KON\"", "{TIFF}.Model CONTAINS \"kon\"", "{TIFF}.Model BEGINSWITH[cd] \"ete\"",
                           "NOT {TIFF}.Model ENDSWITH[c] \"on\""}) {
    const auto parsed = MCPredicateParser::parse(text);
    ASSERT_TRUE(parsed) << text;
    std::vector<std::string> expected;
    for (const auto& r : records)
      if (parsed.predicate->evaluateWithObject(r.properties)) expected.push_back(fs::path(r.path).filename().string());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(names(store->filesMatching({parsed.predicate.get(), "", ""})), expected) << text;
  }
}

TEST(CatalogueSQLiteStore, NumbersCompareOnlyWithNumbers) {
  TempFolder temp;
  auto store = MCCatalogueSQLiteStore::open(temp.path / "c.db");
  ASSERT_TRUE(store);
  std::vector<MCCatalogueRecord> records;
  records.push_back(record("/n/number.jpg", "100", 2.8, 0));
  records.push_back(record("/n/integer.jpg", "5", 4.0, 0));
  (*records.back().properties["{Exif}"].dictionary())["FNumber"] = MCValue(int64_t(4));
  records.push_back(record("/n/text.jpg", "X", 1.0, 0));
  (*records.back().properties["{Exif}"].dictionary())["FNumber"] = MCValue("2.8");
  records.push_back(record("/n/missing.jpg", "Y", 1.0, 0));
  records.back().properties.erase("{Exif}");
  records.push_back(record("/n/bytes.jpg", "Z", 1.0, 0));
  (*records.back().properties["{Exif}"].dictionary())["FNumber"] = MCValue(MCData{1, 2});
  store->store(records);
  for (const char* text : {"{Exif}.FNumber < 3", "{Exif}.FNumber <= 2.8", "{Exif}.FNumber > 2", "{Exif}.FNumber >= 4",
                           "{Exif}.FNumber == 4", "{Exif}.FNumber == 4.0", "{Exif}.FNumber != 4", "NOT {Exif}.FNumber > 2",
                           "{Exif}.FNumber BETWEEN {2, 3}", "{TIFF}.Model > 5", "{TIFF}.Model < 500", "{TIFF}.Model == 5",
                           "{TIFF}.Model != 5", "name > 1", "size >= 1000", "size < 1000"}) {
    const auto parsed = MCPredicateParser::parse(text);
    ASSERT_TRUE(parsed) << text;
    std::vector<std::string> expected;
    for (const auto& r : records) {
      MCDictionary searchable = r.properties;
      MCAddSearchableFileAttributes(searchable, r.path, r.identity.size, 0, r.type);
      if (parsed.predicate->evaluateWithObject(searchable)) expected.push_back(fs::path(r.path).filename().string());
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(names(store->filesMatching({parsed.predicate.get(), "", ""})), expected) << text;
  }
}
