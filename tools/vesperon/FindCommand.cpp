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

#include "MediaFiles.h"
#include "VesperonCommand.h"

#include <vesperon/predicates/MCPredicateParser.h>

#include <cstdio>
#include <ctime>

namespace fs = std::filesystem;

namespace {

struct FindSettings {
  fs::path folder;
  std::string where;
};

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
  for (const fs::path& file : findMediaFiles(settings.folder)) {
    try {
      if (parsed.predicate->evaluateWithObject(searchablePropertiesOfFile(file))) std::printf("%s\n", file.c_str());
    } catch (const MCPredicateEvaluationError& error) {
      std::fflush(stdout);
      std::fprintf(stderr, "vesperon find: the search stopped at %s: %s\n", file.c_str(), error.what());
      return 1;
    }
  }
  return 0;
}

std::function<int()> defineFind(CLI::App& command) {
  auto settings = std::make_shared<FindSettings>();
  command.add_option("DIR", settings->folder, "the folder whose photos and clips, at any depth, are searched")->required();
  command.add_option("--where", settings->where,
                     "the predicate, e.g. '{Exif}.FNumber < 2.8 AND {TIFF}.Model BEGINSWITH[c] \"nikon\"'")
      ->required();
  return [settings] { return runFind(*settings); };
}

}  // namespace

VESPERON_COMMAND("find", "print the photos and clips under DIR whose properties satisfy a predicate", defineFind)
