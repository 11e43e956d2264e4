#include <vesperon/platform/MCRegularFile.h>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

TEST(MCRegularFile, ReadsOnlyRegularFilesWithinTheBoundToTheirRealEnd) {
  const fs::path root = fs::path(VESPERON_TEST_BINARY_DIR) / ("regular-file-" + std::to_string(::getpid()));
  fs::remove_all(root);
  fs::create_directories(root);
  using Status = MCRegularFile::Status;

  const std::string text(10000, 'v');
  std::ofstream(root / "file") << text;
  const auto whole = MCRegularFile::read(root / "file", 10000);
  ASSERT_TRUE(whole) << whole.reason;
  EXPECT_EQ(std::string(whole.bytes.begin(), whole.bytes.end()), text);
  const auto over = MCRegularFile::read(root / "file", 9999);
  EXPECT_EQ(over.status, Status::TooLarge);
  EXPECT_TRUE(over.bytes.empty());
  EXPECT_EQ(over.reason, "is larger than 9999 bytes");
  std::ofstream(root / "empty").flush();
  const auto empty = MCRegularFile::read(root / "empty", 16);
  EXPECT_TRUE(empty);
  EXPECT_TRUE(empty.bytes.empty());

  // Files under /proc say they are empty and are not: read to their end, and the bound still holds.
  const auto status = MCRegularFile::read("/proc/self/status", 1024 * 1024);
  ASSERT_TRUE(status) << status.reason;
  EXPECT_NE(std::string(status.bytes.begin(), status.bytes.end()).find("Pid:"), std::string::npos);
  EXPECT_EQ(MCRegularFile::read("/proc/self/status", 10).status, Status::TooLarge);

  // A link is followed to what it leads to; that is what must be a regular file.
  fs::create_symlink(root / "file", root / "link");
  EXPECT_TRUE(MCRegularFile::read(root / "link", 10000));
  fs::create_symlink("/dev/zero", root / "zero");
  ASSERT_EQ(::mkfifo((root / "fifo").c_str(), 0600), 0);
  struct Refused {
    fs::path path;
    Status status;
    const char* reason;
  };
  for (const Refused& refused : {Refused{root / "zero", Status::NotRegular, "is a device, not a file"},
                                 Refused{"/dev/null", Status::NotRegular, "is a device, not a file"},
                                 Refused{root / "fifo", Status::NotRegular, "is a FIFO, not a file"},
                                 Refused{root, Status::NotRegular, "is a folder, not a file"},
                                 Refused{root / "missing", Status::Missing, "does not exist"},
                                 Refused{root / "file" / "under", Status::Failed, "cannot be read (Not a directory)"}}) {
    for (const auto& result : {MCRegularFile::read(refused.path, 1024), MCRegularFile::readHead(refused.path, 1024)}) {
      EXPECT_EQ(result.status, refused.status) << refused.path;
      EXPECT_EQ(result.reason, refused.reason) << refused.path;
      EXPECT_TRUE(result.bytes.empty()) << refused.path;
    }
  }

  // The head of a file is its first bytes however large the file, and all of a shorter one.
  const std::string numbered = "0123456789";
  std::ofstream(root / "numbers") << numbered;
  const auto head = MCRegularFile::readHead(root / "numbers", 4);
  ASSERT_TRUE(head) << head.reason;
  EXPECT_EQ(std::string(head.bytes.begin(), head.bytes.end()), "0123");
  const auto all = MCRegularFile::readHead(root / "numbers", 64);
  EXPECT_EQ(std::string(all.bytes.begin(), all.bytes.end()), numbered);
  const auto proc = MCRegularFile::readHead("/proc/self/status", 4);
  EXPECT_EQ(std::string(proc.bytes.begin(), proc.bytes.end()), "Name");
  fs::remove_all(root);
}
