#include <vesperon/core/MCLog.h>
#include <vesperon/core/MCLogWriter.h>

#include <gtest/gtest.h>

#include "../support/LogCapture.h"

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace {

fs::path freshDirectory(const std::string& name) {
  fs::path dir = fs::temp_directory_path() / ("vesperon-log-test-" + name + "-" + std::to_string(::getpid()));
  fs::remove_all(dir);
  return dir;
}

std::set<std::string> namesIn(const fs::path& dir) {
  std::set<std::string> names;
  for (const auto& e : fs::directory_iterator(dir)) names.insert(e.path().filename().string());
  return names;
}

std::string contents(const fs::path& file) {
  std::ifstream in(file);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

}  // namespace

TEST(MCLogWriter, KeepsThreeNewestLogsAndMakesOneNew) {
  fs::path dir = freshDirectory("retention");
  fs::create_directories(dir);
  // Numeric order, not plain text order, decides which are newest: as text "2024_9_…" sorts after
  // "2024_12_…", by number month 9 is older than months 10, 11 and 12.
  for (const char* name : {"2024_8_1_0_0_0.log", "2024_9_1_0_0_0.log", "2024_10_1_0_0_0.log", "2024_11_1_0_0_0.log",
                           "2024_12_1_0_0_0.log", "notes.txt", "2018.LOG"})
    std::ofstream(dir / name) << "x";

  auto url = MCLogWriter::preparedLogsURLAtDirectoryURL(dir);
  ASSERT_TRUE(url);
  auto names = namesIn(dir);
  EXPECT_EQ(names.count("2024_8_1_0_0_0.log"), 0u);
  EXPECT_EQ(names.count("2024_9_1_0_0_0.log"), 0u);
  EXPECT_EQ(names.count("2024_10_1_0_0_0.log"), 1u);
  EXPECT_EQ(names.count("2024_11_1_0_0_0.log"), 1u);
  EXPECT_EQ(names.count("2024_12_1_0_0_0.log"), 1u);
  EXPECT_EQ(names.count("notes.txt"), 1u) << "other extensions are neither counted nor deleted";
  EXPECT_EQ(names.count("2018.LOG"), 1u) << "the extension must be exactly \"log\"";
  EXPECT_TRUE(fs::exists(*url));
  EXPECT_TRUE(std::regex_match(url->filename().string(), std::regex(R"(\d{4}_\d{2}_\d{2}_\d{2}_\d{2}_\d{2}\.log)")));
  EXPECT_EQ(names.size(), 6u);  // three kept, the new one, and the two others
  fs::remove_all(dir);
}

TEST(MCLogWriter, MissingDirectoryIsCreatedAndUncreatableGivesNone) {
  fs::path dir = freshDirectory("create") / "deeper" / "Logs";
  auto url = MCLogWriter::preparedLogsURLAtDirectoryURL(dir);
  ASSERT_TRUE(url);
  EXPECT_EQ(url->parent_path(), dir);
  fs::remove_all(dir.parent_path().parent_path());

  fs::path blocked = freshDirectory("blocked");
  std::ofstream(blocked) << "a file where the folder should go";
  EXPECT_FALSE(MCLogWriter::preparedLogsURLAtDirectoryURL(blocked / "Logs"));
  fs::remove(blocked);
}

TEST(MCLogWriter, WritesLinesInOrderWithTheLineFormat) {
  fs::path dir = freshDirectory("lines");
  auto url = MCLogWriter::preparedLogsURLAtDirectoryURL(dir);
  ASSERT_TRUE(url);
  {
    MCLogWriter writer(*url);
    writer.log("com.example", "Generic", "first");
    writer.log("com.example", "File System", "two\nlines");
    writer.log("com.example", "Generic", std::string("bad \xff utf8"));
    writer.logFormat("com.example", "Graphics", "{} of {}", 3, "four");
    writer.logFormat("com.example", "Graphics", "{} {}", 1);  // too few arguments
    writer.flush();
  }
  std::string text = contents(*url);
  std::regex line(R"((\d{4}:\d{2}:\d{2} \d{2}:\d{2}:\d{2}\.\d{3}) \[com\.example, Generic\] : first\n)");
  std::smatch m;
  ASSERT_TRUE(std::regex_search(text, m, line)) << text;
  EXPECT_EQ(m.position(0), 0);
  EXPECT_NE(text.find("[com.example, File System] : two\nlines\n"), std::string::npos) << "line feeds kept";
  EXPECT_EQ(text.find("bad"), std::string::npos) << "invalid UTF-8 is dropped";
  auto third = text.find("[com.example, Graphics] : 3 of four\n");
  auto fourth = text.find("[com.example, Graphics] : [Logger] ");
  EXPECT_NE(third, std::string::npos);
  EXPECT_NE(fourth, std::string::npos);
  EXPECT_LT(text.find("first"), third);
  EXPECT_LT(third, fourth);
  fs::remove_all(dir);
}

TEST(MCLog, SharedLogsHaveTheirCategories) {
  EXPECT_EQ(MCLog::sdkGeneric()->category(), "Generic");
  EXPECT_EQ(MCLog::sdkFileSystem()->category(), "File System");
  EXPECT_EQ(MCLog::sdkGraphics()->category(), "Graphics");
  EXPECT_EQ(MCLog::sdkImageCache()->category(), "Image Cache");
  EXPECT_EQ(MCLog::sdkGeneric()->subsystem(), MCLog::sdkImageCache()->subsystem());
  EXPECT_EQ(MCLog::sdkGeneric(), MCLog::sdkGeneric());
}

TEST(MCLog, FileRoutingFollowsTheSwitchAndLogToFileIgnoresIt) {
  // The process's writer lives under $XDG_STATE_HOME, which the test support points at this
  // program's own folder before main.
  const fs::path& state = testStateHome();
  ASSERT_EQ(MCApplicationDirectories::stateDirectory(), state);
  MCLog::setWritesToFile(false);
  MCLog::sdkGeneric()->logToFile("to file {}", 1);  // with the switch off, still to the file
  MCLog::sdkGraphics()->logError("system log only");
  MCLog::setWritesToFile(true);
  MCLog::sdkGraphics()->logDebug("debug to file");
  MCLog::setWritesToFile(false);
  MCLogWriter* writer = MCLogWriter::fileWriter();
  ASSERT_NE(writer, nullptr);
  ASSERT_EQ(writer->fileURL().string().rfind(state.string(), 0), 0u) << writer->fileURL();
  writer->flush();
  std::string text = contents(writer->fileURL());
  EXPECT_NE(text.find("[com.quillary.vesperon, Generic] : to file 1\n"), std::string::npos) << text;
  EXPECT_NE(text.find("[com.quillary.vesperon, Graphics] : debug to file\n"), std::string::npos);
  EXPECT_EQ(text.find("system log only"), std::string::npos);
}
