// The `vesperon` command line: generated help for the program and each command, usage errors that
// say what is wrong and end with status 2 before any work, and values that are checked.

#include "../support/ProgramOutcome.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

using Outcome = ProgramOutcome;

Outcome vesperon(const std::string& arguments) { return ProgramOutcome::run("'" VESPERON_TOOL "' " + arguments); }

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST(VesperonCommandLine, HelpForTheProgramAndEachCommand) {
  const Outcome program = vesperon("--help");
  EXPECT_EQ(program.status, 0);
  for (const char* command : {"info", "plugins", "thumbs", "write-exif", "write-xmp", "help"})
    EXPECT_TRUE(contains(program.output, std::string("\n  ") + command + " ")) << command << "\n" << program.output;

  const Outcome thumbs = vesperon("thumbs --help");
  EXPECT_EQ(thumbs.status, 0);
  EXPECT_TRUE(contains(thumbs.output, "Usage: vesperon thumbs")) << thumbs.output;
  for (const char* option : {"DIR", "--size", "--out", "--jobs", "--cache", "--cache-dir"})
    EXPECT_TRUE(contains(thumbs.output, option)) << option;
  EXPECT_TRUE(contains(thumbs.output, "=256")) << "the default size is shown";
  EXPECT_EQ(vesperon("help thumbs").output, thumbs.output) << "help COMMAND is COMMAND --help";

  const Outcome info = vesperon("info --help");
  EXPECT_EQ(info.status, 0);
  EXPECT_TRUE(contains(info.output, "--merge-mask")) << info.output;
  EXPECT_TRUE(contains(info.output, "\\xHH")) << "the escaped form of names is stated";
  EXPECT_TRUE(contains(vesperon("write-exif --help").output, "DICT.json"));
  EXPECT_EQ(vesperon("--version").status, 0);
}

TEST(VesperonCommandLine, UsageErrorsSayWhatIsWrongAndExitTwo) {
  struct Case {
    const char* arguments;
    const char* says;
  };
  for (const Case& c : {
           Case{"", "subcommand is required"},
           Case{"frob", "unknown command 'frob'"},
           Case{"help frob", "unknown command 'frob'"},
           Case{"plugins extra", "not expected: extra"},
           Case{"thumbs", "DIR is required"},
           Case{"thumbs /tmp /tmp", "not expected"},
           Case{"thumbs /tmp --size 0", "'0' is not a whole number above 0"},
           Case{"thumbs /tmp --size -3", "--size"},
           Case{"thumbs /tmp --size 12px", "'12px' is not a whole number above 0"},
           Case{"thumbs /tmp --jobs none", "'none' is not a whole number above 0"},
           Case{"thumbs /tmp --size", "--size"},
           Case{"thumbs /tmp --colour red", "--colour"},
           Case{"info", "FILE is required"},
           Case{"info x.jpg --merge-mask seven", "'seven' is not an unsigned number"},
           Case{"info x.jpg --merge-mask -1", "'-1' is not an unsigned number"},
           Case{"info x.jpg --merge-mask 99999999999999999999999", "is not an unsigned number"},
           Case{"write-exif only-one.json", "OUT.bin is required"},
           Case{"write-xmp a.json b.xmp c", "not expected"},
       }) {
    const Outcome outcome = vesperon(c.arguments);
    EXPECT_EQ(outcome.status, 2) << "vesperon " << c.arguments << "\n" << outcome.output;
    EXPECT_TRUE(contains(outcome.output, c.says)) << "vesperon " << c.arguments << "\n" << outcome.output;
  }
  // A hexadecimal mask is a value, not an error; the missing file is the command's own failure (1).
  const Outcome hex = vesperon("info /nonexistent/x.jpg --merge-mask 0x6");
  EXPECT_EQ(hex.status, 1) << hex.output;
  EXPECT_TRUE(contains(hex.output, "\"/nonexistent/x.jpg\": null")) << hex.output;
}

// `vesperon find` on the samples: the five files of 2 and 3 October 2022 by their capture dates
// (four photos from the samples' table, and the clip whose creation time is that day), counted by
// hand, read from the files and then from a catalogue of them, with a line on stderr saying which;
// a predicate that does not parse prints where, nothing else, and ends with status 2.
TEST(VesperonCommandLine, FindPrintsTheFilesThatSatisfyThePredicate) {
  const std::string samples = "'" VESPERON_SAMPLES_DIR "'";
  const std::string none = " --catalogue /nonexistent/catalogue.db";
  const std::string readingFiles = "vesperon find: reading the files (no catalogue at /nonexistent/catalogue.db)\n";
  const std::string octoberDays = " --where '{Exif}.DateTimeOriginal BETWEEN {\"2022:10:02 00:00:00\", \"2022:10:03 23:59:59\"}'";
  const Outcome days = vesperon("find " + samples + none + octoberDays);
  EXPECT_EQ(days.status, 0) << days.output;
  const std::string dir = VESPERON_SAMPLES_DIR;
  const std::string october =
      dir + "/beach-clip.mp4\n" + dir + "/boat.jpg\n" + dir + "/lake.jpg\n" + dir + "/pano-valley.jpg\n" + dir + "/ridge.jpg\n";
  EXPECT_EQ(days.output, readingFiles + october);

  const std::string formatsWhere = " --where 'name LIKE[c] \"*.HEIC\" OR type == \"public.avif\"'";
  const Outcome formats = vesperon("find " + samples + none + formatsWhere);
  EXPECT_EQ(formats.output, readingFiles + dir + "/fern.avif\n" + dir + "/market-phone.heic\n");

  // The same answers from a catalogue of the samples, refreshed first (nothing changed).
  const std::filesystem::path catalogue =
      std::filesystem::path(VESPERON_TEST_BINARY_DIR) / ("find-catalogue-" + std::to_string(::getpid()) + ".sqlite3");
  const Outcome index = vesperon("index " + samples + " --catalogue '" + catalogue.string() + "'");
  EXPECT_EQ(index.status, 0) << index.output;
  EXPECT_TRUE(contains(index.output, " 0 failed, 0 removed")) << index.output;
  const std::string fromCatalogue = "vesperon find: answered from the catalogue " + catalogue.string() + " (refreshed first: 0 of ";
  const Outcome catalogued = vesperon("find " + samples + " --catalogue '" + catalogue.string() + "'" + octoberDays);
  EXPECT_EQ(catalogued.status, 0) << catalogued.output;
  EXPECT_EQ(catalogued.output.rfind(fromCatalogue, 0), 0u) << catalogued.output;
  EXPECT_EQ(catalogued.output.substr(catalogued.output.find('\n') + 1), october);
  const Outcome noCatalogue = vesperon("find " + samples + " --catalogue '" + catalogue.string() + "' --no-catalogue" + formatsWhere);
  EXPECT_EQ(noCatalogue.output,
            "vesperon find: reading the files (--no-catalogue)\n" + dir + "/fern.avif\n" + dir + "/market-phone.heic\n");
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(catalogue.string() + suffix);

  const Outcome bad = vesperon("find " + samples + " --where '{Exif}.FNumber < '");
  EXPECT_EQ(bad.status, 2);
  EXPECT_TRUE(contains(bad.output, "does not parse: expected a value or a key path at 17")) << bad.output;
  EXPECT_FALSE(contains(bad.output, dir + "/")) << "no file is printed";
}

// A predicate that could never be evaluated is refused as a text that does not parse is, before
// any file is read: a regular expression that does not compile, a BETWEEN without two bounds.
TEST(VesperonCommandLine, FindRefusesPredicatesThatCouldNeverBeEvaluated) {
  const std::string samples = "'" VESPERON_SAMPLES_DIR "'";
  struct Case {
    const char* where;
    const char* says;
  };
  for (const Case& c :
       {Case{"name MATCHES \"[\"", "the regular expression \"[\" does not compile: missing close bracket at 13"},
        Case{"name MATCHES[c] \"(\"", "the regular expression \"(\" does not compile: mismatched paren at 16"},
        Case{"size BETWEEN 5", "BETWEEN takes an array of two values, {low, high} at 13"},
        Case{"size > 1 AND size BETWEEN {1, 2, 3}", "BETWEEN takes an array of two values, {low, high} at 26"}}) {
    const Outcome outcome = vesperon("find " + samples + " --where '" + c.where + "'");
    EXPECT_EQ(outcome.status, 2) << c.where << "\n" << outcome.output;
    EXPECT_TRUE(contains(outcome.output, std::string("vesperon find: the predicate does not parse: ") + c.says))
        << c.where << "\n" << outcome.output;
    EXPECT_FALSE(contains(outcome.output, VESPERON_SAMPLES_DIR "/")) << "no file is printed";
  }
}

// A pattern that backtracks without end on one file's name stops the search with a message naming
// the file and the limit, and a failure status, instead of running for hours.
TEST(VesperonCommandLine, FindStopsAPatternThatRunsPastItsLimit) {
  const std::filesystem::path folder =
      std::filesystem::path(VESPERON_TEST_BINARY_DIR) / ("find-runaway-" + std::to_string(::getpid()));
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const std::filesystem::path runaway = folder / (std::string(40, 'a') + ".jpg");
  std::filesystem::copy_file(std::filesystem::path(VESPERON_SAMPLES_DIR) / "boat.jpg", runaway);
  const Outcome stopped = vesperon("find '" + folder.string() + "' --where 'name MATCHES \"(a+)+$\"'");
  EXPECT_EQ(stopped.status, 1) << stopped.output;
  EXPECT_TRUE(contains(stopped.output, "vesperon find: the search stopped at " + runaway.string() +
                                           ": the regular expression \"(a+)+$\" ran past its time limit on \"aaaa"))
      << stopped.output;
  std::filesystem::remove_all(folder);
}
