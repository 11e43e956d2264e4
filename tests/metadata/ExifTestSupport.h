#pragma once
// Helpers of the Exif tests: files, and the peer programs (cjpeg to make a JPEG, exiftool to write
// and read Exif).

#include <vesperon/core/MCValue.h>

#include "../support/LogCapture.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace exif_test {

namespace fs = std::filesystem;

// A folder of this test process's own, removed when the process ends.
struct ScratchDirectory {
  fs::path path = fs::temp_directory_path() / ("vesperon-exif-test-" + std::to_string(::getpid()));
  ScratchDirectory() { fs::create_directories(path); }
  ~ScratchDirectory() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
};

inline fs::path scratchDirectory() {
  static const ScratchDirectory dir;
  return dir.path;
}

inline std::string readText(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

inline MCData readBytes(const fs::path& file) {
  std::string text = readText(file);
  return MCData(text.begin(), text.end());
}

inline void writeBytes(const fs::path& file, const MCData& bytes) {
  std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

/// Runs a shell command; its standard output, and whether it exited 0.
inline std::pair<bool, std::string> run(const std::string& command) {
  std::string out;
  FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
  if (!pipe) return {false, out};
  char buffer[4096];
  std::size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) out.append(buffer, n);
  int status = ::pclose(pipe);
  return {status == 0, out};
}

/// A small grey baseline JPEG without metadata, made by cjpeg.
inline fs::path plainJPEG(const std::string& name) {
  fs::path ppm = scratchDirectory() / (name + ".ppm");
  fs::path jpg = scratchDirectory() / (name + ".jpg");
  {
    std::ofstream out(ppm, std::ios::binary);
    out << "P6\n8 8\n255\n" << std::string(8 * 8 * 3, '\x80');
  }
  run("cjpeg -quality 80 '" + ppm.string() + "' > '" + jpg.string() + "'");
  return jpg;
}

/// A copy of `plainJPEG` with `block` (which opens with "Exif\0\0") as the APP1 segment right after
/// the start-of-image marker.
inline fs::path jpegWithExif(const std::string& name, const MCData& block) {
  MCData jpeg = readBytes(plainJPEG(name + "-base"));
  if (jpeg.size() < 2) return {};
  MCData file{0xFF, 0xD8, 0xFF, 0xE1, uint8_t((block.size() + 2) >> 8), uint8_t(block.size() + 2)};
  file.insert(file.end(), block.begin(), block.end());
  file.insert(file.end(), jpeg.begin() + 2, jpeg.end());
  fs::path out = scratchDirectory() / (name + ".jpg");
  writeBytes(out, file);
  return out;
}

using ::LogCapture;

}  // namespace exif_test
