#include "FilesTestSupport.h"

#include <vesperon/platform/MCUserDefaults.h>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace fs = std::filesystem;

namespace {

std::string readAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

// Runs `body` in a child process that is killed after a few seconds, so a read that blocks or
// never ends fails the test instead of hanging it. True when the child ended by itself with 0.
bool finishesInTime(const std::function<bool()>& body) {
  const pid_t pid = ::fork();
  if (pid == 0) {
    ::alarm(3);
    MCLog::setWritesToFile(false);  // the log writer's thread stayed in the parent
    ::_exit(body() ? 0 : 1);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string nested(int depth, const std::string& open, const std::string& close) {
  std::string text;
  for (int i = 0; i < depth; ++i) text += open;
  text += "1";
  for (int i = 0; i < depth; ++i) text += close;
  return text;
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
  EXPECT_TRUE(log.contains("The settings file " + defaults.fileURL().string() +
                           " is not readable settings: it holds no JSON object; kept as " +
                           (root / "app" / "settings.json.bak").string()))
      << log.text();
  EXPECT_TRUE(log.contains("is not readable settings: it is not valid JSON; kept as")) << log.text();
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

TEST(UserDefaults, OnlySmallRegularFilesOfBoundedNestingAreRead) {
  LogCapture log;
  ASSERT_TRUE(log.available());
  const fs::path root = freshFolder("defaults-hostile");
  const fs::path file = root / "settings.json";
  const fs::path aside = root / "settings.json.bak";
  MCUserDefaults defaults(file);

  // Nesting a few levels deeper than any real setting is read; 20,000 levels of arrays or objects
  // are refused before anything is built from them (they used to overflow the stack).
  writeText(file, "{\"deep\": " + nested(200, "[", "]") + "}");
  EXPECT_TRUE(defaults.objectForKey("deep").has_value());
  EXPECT_FALSE(defaults.setAside());
  for (const std::string& deep : {nested(20000, "[", "]"), nested(20000, "{\"a\": ", "}")}) {
    const std::string text = "{\"QXSecurityScopedURLs\": " + deep + "}";
    writeText(file, text);
    EXPECT_TRUE(defaults.dictionaryRepresentation().empty());
    ASSERT_TRUE(defaults.setAside());
    EXPECT_EQ(defaults.setAside()->reason, "nests deeper than 256 levels");
    EXPECT_EQ(defaults.setAside()->movedTo, aside);
    EXPECT_EQ(readAll(aside), text);
  }
  EXPECT_TRUE(log.contains("The settings file " + file.string() +
                           " is not readable settings: it nests deeper than 256 levels; kept as " + aside.string()))
      << log.text();

  // Larger than the bound: set aside unread, however well-formed; a file within it is read.
  const std::string large = "{\"k\": \"" + std::string(2 * 1024 * 1024, 'x') + "\"}";
  writeText(file, large);
  EXPECT_EQ(defaults.objectForKey("k"), std::nullopt);
  ASSERT_TRUE(defaults.setAside());
  EXPECT_EQ(defaults.setAside()->reason, "is larger than 1 MiB");
  EXPECT_EQ(fs::file_size(aside), large.size());
  writeText(file, "{\"k\": \"" + std::string(1000 * 1024, 'x') + "\"}");
  EXPECT_TRUE(defaults.objectForKey("k").has_value());

  // A folder at the file's name is named in the log and set aside, not thrown as a stream error.
  fs::remove(file);
  fs::remove(aside);
  fs::create_directories(file / "inside");
  EXPECT_TRUE(defaults.dictionaryRepresentation().empty());
  ASSERT_TRUE(defaults.setAside());
  EXPECT_EQ(defaults.setAside()->reason, "is a folder, not a file");
  EXPECT_TRUE(fs::is_directory(aside / "inside"));
  EXPECT_TRUE(log.contains("The settings file " + file.string() + " is not readable settings: it is a folder, not a file"))
      << log.text();
  fs::remove_all(aside);

  // A FIFO would block the read until a writer came, and /dev/zero never ends: both are set aside
  // unread, each in a child that is stopped if it hangs.
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_TRUE(finishesInTime([&] {
    MCUserDefaults reader(file);
    return reader.dictionaryRepresentation().empty() && reader.setAside() &&
           reader.setAside()->reason == "is a FIFO, not a file";
  })) << "the read of a FIFO did not end by itself";
  struct stat st {};
  ASSERT_EQ(::lstat(aside.c_str(), &st), 0);
  EXPECT_TRUE(S_ISFIFO(st.st_mode));
  EXPECT_FALSE(fs::exists(fs::symlink_status(file)));
  fs::remove(aside);
  fs::create_symlink("/dev/zero", file);
  EXPECT_TRUE(finishesInTime([&] {
    MCUserDefaults reader(file);
    return reader.dictionaryRepresentation().empty() && reader.setAside() &&
           reader.setAside()->reason == "is a device, not a file";
  })) << "the read of /dev/zero did not end by itself";
  EXPECT_TRUE(fs::is_symlink(aside));
  // The next write starts a real file again.
  ASSERT_TRUE(defaults.setObject(MCValue(std::string("fresh")), "k"));
  EXPECT_EQ(defaults.objectForKey("k"), MCValue(std::string("fresh")));
  EXPECT_FALSE(defaults.setAside());
}
