// Filtering 100,000 photos' property dictionaries with a three-row predicate, as a filter bar
// does: camera model begins with "nikon" (any case), f-number below 2.8, size above 1 MB.
//
// Ours: the predicate, read from its text form, evaluated against each MCDictionary; and the same
// predicate compiled once (MCCompiledPredicate) and run over the collection as a whole
// (countOfObjectsPassing), as a filter over a collection runs it (goal: 3x SQLite, whose
// SELECT count(*) is the same question over the whole table).
// Peer, in the same run: SQLite with the same dictionaries as JSON text in an in-memory table,
// and the same test through json_extract in a WHERE clause (SELECT count(*)). Both must count the
// same photos. Goal: ahead of SQLite.
//
// The dictionaries are the samples' own metadata, varied in model, f-number, ISO, size and name.

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/core/MCValueJSON.h>
#include <vesperon/predicates/MCCompiledPredicate.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include "BenchTimes.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int kPhotos = 100000;
constexpr const char* kPredicate =
    "{TIFF}.Model BEGINSWITH[c] \"nikon\" AND {Exif}.FNumber < 2.8 AND size > 1000000";
constexpr const char* kQuery =
    "SELECT count(*) FROM photos WHERE json_extract(doc, '$.\"{TIFF}\".Model') LIKE 'nikon%' "
    "AND json_extract(doc, '$.\"{Exif}\".FNumber') < 2.8 AND json_extract(doc, '$.size') > 1000000";

std::vector<MCDictionary> makePhotos() {
  std::vector<MCDictionary> samples;
  for (const auto& entry : fs::directory_iterator(VESPERON_SAMPLES_DIR)) {
    if (entry.path().extension() != ".jpg" && entry.path().extension() != ".JPG") continue;
    if (auto properties = MCImageReader::metadataFromImageAtURL(entry.path(), std::nullopt)) samples.push_back(*properties);
  }
  if (samples.empty()) samples.push_back({});
  const char* models[] = {"NIKON D850", "Canon EOS R5", "nikon z 6", "ILCE-7M3", "X-T4", "Nikon Z fc"};
  const double apertures[] = {1.4, 1.8, 2.0, 2.8, 4.0, 5.6, 8.0, 11.0};
  std::mt19937 random(20261124);
  std::vector<MCDictionary> photos;
  photos.reserve(kPhotos);
  for (int i = 0; i < kPhotos; ++i) {
    MCDictionary photo = samples[std::size_t(i) % samples.size()];
    auto& tiff = photo["{TIFF}"];
    if (!tiff.dictionary()) tiff = MCValue(MCDictionary{});
    (*tiff.dictionary())["Model"] = MCValue(models[random() % 6]);
    auto& exif = photo["{Exif}"];
    if (!exif.dictionary()) exif = MCValue(MCDictionary{});
    (*exif.dictionary())["FNumber"] = MCValue(apertures[random() % 8]);
    (*exif.dictionary())["ISOSpeedRatings"] = MCValue(MCArray{MCValue(int64_t(100 << (random() % 6)))});
    char name[32];
    std::snprintf(name, sizeof name, "IMG_%05d.JPG", i);
    photo["name"] = MCValue(name);
    photo["size"] = MCValue(int64_t(200000 + random() % 4000000));
    photos.push_back(std::move(photo));
  }
  return photos;
}

const std::vector<MCDictionary>& photos() {
  static const std::vector<MCDictionary> all = makePhotos();
  return all;
}

sqlite3* database() {
  static sqlite3* db = [] {
    sqlite3* d = nullptr;
    sqlite3_open(":memory:", &d);
    sqlite3_exec(d, "CREATE TABLE photos(doc TEXT)", nullptr, nullptr, nullptr);
    sqlite3_exec(d, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(d, "INSERT INTO photos(doc) VALUES (?)", -1, &insert, nullptr);
    for (const auto& photo : photos()) {
      const std::string json = MCValueToJSON(MCValue(photo)).dump();
      sqlite3_bind_text(insert, 1, json.c_str(), int(json.size()), SQLITE_TRANSIENT);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_exec(d, "COMMIT", nullptr, nullptr, nullptr);
    return d;
  }();
  return db;
}

long oursCount() {
  static const auto parsed = MCPredicateParser::parse(kPredicate);
  long count = 0;
  for (const auto& photo : photos()) count += parsed.predicate->evaluateWithObject(photo);
  return count;
}

long compiledCount() {
  static const MCCompiledPredicate compiled(MCPredicateParser::parse(kPredicate).predicate);
  return long(compiled.countOfObjectsPassing(photos()));
}

long sqliteCount() {
  sqlite3_stmt* query = nullptr;
  sqlite3_prepare_v2(database(), kQuery, -1, &query, nullptr);
  long count = -1;
  if (sqlite3_step(query) == SQLITE_ROW) count = sqlite3_column_int64(query, 0);
  sqlite3_finalize(query);
  return count;
}

void Ours_PredicateFilter(benchmark::State& state) {
  photos();
  for (auto _ : state) benchmark::DoNotOptimize(oursCount());
  state.SetItemsProcessed(int64_t(state.iterations()) * kPhotos);
}
BENCHMARK(Ours_PredicateFilter)->Unit(benchmark::kMillisecond);

void Ours_CompiledPredicateFilter(benchmark::State& state) {
  photos();
  for (auto _ : state) benchmark::DoNotOptimize(compiledCount());
  state.SetItemsProcessed(int64_t(state.iterations()) * kPhotos);
}
BENCHMARK(Ours_CompiledPredicateFilter)->Unit(benchmark::kMillisecond);

void Peer_SQLiteJsonExtract(benchmark::State& state) {
  database();
  for (auto _ : state) benchmark::DoNotOptimize(sqliteCount());
  state.SetItemsProcessed(int64_t(state.iterations()) * kPhotos);
}
BENCHMARK(Peer_SQLiteJsonExtract)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long ours = oursCount(), compiled = compiledCount(), peer = sqliteCount();
  const bool same = ours == peer && compiled == peer;
  std::printf("matches: ours %ld, compiled %ld, SQLite %ld%s\n", ours, compiled, peer, same ? "" : "  (DIFFERENT)");
  BenchTimes times(BenchTimes::Clock::CPU);
  benchmark::RunSpecifiedBenchmarks(&times);
  const double a = times("Ours_PredicateFilter"), b = times("Peer_SQLiteJsonExtract");
  const double c = times("Ours_CompiledPredicateFilter");
  if (a > 0 && b > 0) std::printf("predicate filter: %.1f ms, SQLite json_extract: %.1f ms, %.2fx\n", a, b, b / a);
  if (c > 0 && b > 0) std::printf("compiled predicate filter: %.1f ms, %.2fx SQLite json_extract (goal: 3x)\n", c, b / c);
  return same ? 0 : 1;
}
