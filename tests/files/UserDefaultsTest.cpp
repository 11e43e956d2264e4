#include "FilesTestSupport.h"

#include <vesperon/platform/MCUserDefaults.h>

#include <gtest/gtest.h>

#include <sys/wait.h>

namespace fs = std::filesystem;

namespace {

std::string readAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace

TEST(UserDefaults, ValuesRoundTripAndBrokenFilesAreKeptAside) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path root = freshFolder("defaults");
  MCUserDefaults defaults(root / "app" / "settings.json");
  EXPECT_TRUE(defaults.dictionaryRepresentation().empty());  // missing file: empty store
  const MCValue entry = MCArray{MCDictionary{{"path", std::string("/a")}, {"bookmark", MCData{0, 1, 2, 255}}}};
  ASSERT_TRUE(defaults.setObject(entry, "QXSecurityScopedURLs"));
  ASSERT_TRUE(defaults.setObject(MCValue(int64_t{7}), "count"));
  EXPECT_EQ(MCUserDefaults(defaults.fileURL()).objectForKey("QXSecurityScopedURLs"), entry);
  EXPECT_EQ(defaults.objectForKey("count"), MCValue(int64_t{7}));
  ASSERT_TRUE(defaults.removeObjectForKey("count"));
  EXPECT_EQ(defaults.objectForKey("count"), std::nullopt);

  // Cut short by a writer that died, empty, or not JSON at all: an empty store, the file kept as
  // .bak with what it held, a log line — and the next write starts clean.
  const std::string whole = readAll(defaults.fileURL());
  for (const std::string& broken : {whole.substr(0, whole.size() / 2), std::string(), std::string("[1, 2]"),
                                    std::string("\x89PNG\r\n")}) {
    writeText(defaults.fileURL(), broken);
    EXPECT_TRUE(defaults.dictionaryRepresentation().empty());
    EXPECT_EQ(readAll(root / "app" / "settings.json.bak"), broken);
    EXPECT_FALSE(fs::exists(defaults.fileURL()));
  }
  EXPECT_TRUE(log.contains("is not readable settings; kept as " + (root / "app" / "settings.json.bak").string()))
      << log.text();
  ASSERT_TRUE(defaults.setObject(MCValue(std::string("fresh")), "k"));
  EXPECT_EQ(defaults.objectForKey("k"), MCValue(std::string("fresh")));

  // A folder that cannot be written to: false, logged, nothing half-written.
  MCUserDefaults nowhere("/proc/vesperon-settings/settings.json");
  EXPECT_FALSE(nowhere.setObject(MCValue(true), "k"));
  EXPECT_TRUE(log.contains("Couldn't write the settings file /proc/vesperon-settings/settings.json")) << log.text();
}

TEST(UserDefaults, TwoProcessesWritingAtOnceNeverLeaveATornFile) {
  const fs::path root = freshFolder("defaults-race");
  const fs::path file = root / "settings.json";
  std::vector<pid_t> writers;
  for (int writer = 0; writer < 2; ++writer) {
    pid_t pid = ::fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      MCUserDefaults defaults(file);
      // Long values, so a torn write would show; each process writes only its own whole value.
      const std::string value(4000, writer == 0 ? 'a' : 'b');
      for (int i = 0; i < 150; ++i) defaults.setObject(MCValue(value + std::to_string(i)), "value");
      ::_exit(0);
    }
    writers.push_back(pid);
  }
  for (pid_t pid : writers) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_FALSE(fs::exists(root / "settings.json.bak")) << "a reader saw a torn file";
  auto value = MCUserDefaults(file).objectForKey("value");
  ASSERT_TRUE(value && value->string());
  const std::string& text = *value->string();
  EXPECT_TRUE(text == std::string(4000, 'a') + "149" || text == std::string(4000, 'b') + "149") << text.substr(0, 8);
  for (const auto& entry : fs::directory_iterator(root))
    EXPECT_NE(entry.path().extension(), ".tmp") << "a temporary was left: " << entry.path();
}
