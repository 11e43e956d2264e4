// The whole reading road — libexif's load, the walk into MCExif and its dictionary — over 10,000
// Exif blocks of a camera-sized JPEG (about 60 tags, GPS, a thumbnail in IFD 1), against
// libexif's bare load of the same blocks and Exiv2's parse of them, in one run. Ratios at the end.
//
// The blocks come from a JPEG that exiftool writes at start-up; without exiftool the benchmark
// says so and stops.

#include <vesperon/metadata/MCExifReader.h>

#include "../BenchTimes.h"

#include <benchmark/benchmark.h>
#include <exiv2/exiv2.hpp>
#include <libexif/exif-data.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
constexpr int kBlocks = 10000;
constexpr int kDistinct = 16;  // distinct buffers, so that one block does not sit in cache alone

std::vector<uint8_t> readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The APP1 Exif segment's payload ("Exif\0\0" and the TIFF block), or nothing.
std::vector<uint8_t> exifSegment(const std::vector<uint8_t>& jpeg) {
  std::size_t i = 2;
  while (i + 4 <= jpeg.size() && jpeg[i] == 0xFF) {
    std::size_t length = (std::size_t(jpeg[i + 2]) << 8) | jpeg[i + 3];
    if (jpeg[i + 1] == 0xE1 && i + 2 + length <= jpeg.size() && length > 8 &&
        std::equal(jpeg.begin() + long(i) + 4, jpeg.begin() + long(i) + 10, "Exif\0\0"))
      return std::vector<uint8_t>(jpeg.begin() + long(i) + 4, jpeg.begin() + long(i + 2 + length));
    i += 2 + length;
  }
  return {};
}

std::vector<std::vector<uint8_t>> makeBlocks() {
  fs::path dir = fs::temp_directory_path() / ("vesperon-bench-exif-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  fs::path ppm = dir / "image.ppm", thumb = dir / "thumb.jpg", jpg = dir / "camera.jpg";
  {
    std::ofstream out(ppm, std::ios::binary);
    out << "P6\n160 120\n255\n";
    for (int i = 0; i < 160 * 120 * 3; ++i) out.put(char(i * 31 % 251));
  }
  std::string q = "'";
  std::string make = "cjpeg -quality 70 " + q + ppm.string() + q + " > " + q + thumb.string() + q + " && cp " + q +
                     thumb.string() + q + " " + q + jpg.string() + q;
  std::string tags =
      " -Make=Canon -Model='Canon EOS R5' -Orientation#=1 -XResolution=72 -YResolution=72 -ResolutionUnit=2"
      " -Software='Firmware 1.8.1' -ModifyDate='2024:05:01 10:00:00' -Artist='Ann Example' -Copyright='(c) Ann'"
      " -ImageDescription='A harbour at dusk' -YCbCrPositioning=2"
      " -ExposureTime=0.004 -FNumber=2.8 -ExposureProgram=3 -ISO=400 -SensitivityType=2"
      " -RecommendedExposureIndex=400 -ExifVersion=0231 -DateTimeOriginal='2024:05:01 10:00:01'"
      " -CreateDate='2024:05:01 10:00:02' -OffsetTime=+02:00 -OffsetTimeOriginal=+02:00"
      " -OffsetTimeDigitized=+02:00 -ComponentsConfiguration='1 2 3 0' -ShutterSpeedValue=0.004"
      " -ApertureValue=2.8 -BrightnessValue=5.5 -ExposureCompensation=-0.3 -MaxApertureValue=2.8"
      " -SubjectDistance=3.5 -MeteringMode=5 -LightSource=0 -EXIF:Flash=16 -FocalLength=50"
      " -UserComment='Shot from the pier' -SubSecTime=12 -SubSecTimeOriginal=12 -SubSecTimeDigitized=12"
      " -FlashpixVersion=0100 -ColorSpace=1 -ExifImageWidth=8192 -ExifImageHeight=5464"
      " -FocalPlaneXResolution=2200 -FocalPlaneYResolution=2200 -FocalPlaneResolutionUnit=3"
      " -SensingMethod=2 -FileSource=3 -SceneType=1 -CustomRendered=0 -ExposureMode=0 -WhiteBalance=0"
      " -DigitalZoomRatio=1 -FocalLengthIn35mmFormat=50 -SceneCaptureType=0 -Contrast=0 -Saturation=0"
      " -Sharpness=0 -SubjectDistanceRange=0 -OwnerName='Ann Example' -SerialNumber=012345678901"
      " -LensInfo='24 105 4 4' -LensModel='RF24-105mm F4 L IS USM' -LensSerialNumber=0000c0ffee"
      " -GPSVersionID='2 3 0 0' -GPSLatitudeRef=N -GPSLatitude=51.5074 -GPSLongitudeRef=W"
      " -GPSLongitude=0.1278 -GPSAltitudeRef=0 -GPSAltitude=35.5 -GPSTimeStamp=09:00:01"
      " -GPSSpeedRef=K -GPSSpeed=0 -GPSImgDirectionRef=T -GPSImgDirection=270.5 -GPSMapDatum=WGS-84"
      " -GPSDateStamp=2024:05:01 -GPSHPositioningError=5";
  std::string write = "exiftool -q -n -overwrite_original" + tags + " '-ThumbnailImage<=" + thumb.string() + "' " + q +
                      jpg.string() + q;
  std::vector<std::vector<uint8_t>> blocks;
  if (std::system((make + " && " + write + " >/dev/null 2>&1").c_str()) == 0) {
    std::vector<uint8_t> block = exifSegment(readFile(jpg));
    if (!block.empty()) blocks.assign(kDistinct, block);
  }
  fs::remove_all(dir);
  return blocks;
}

const std::vector<std::vector<uint8_t>>& blocks() {
  static const std::vector<std::vector<uint8_t>> b = makeBlocks();
  return b;
}

void Ours_ReaderParseDictionary(benchmark::State& state) {
  for (auto _ : state) {
    for (int i = 0; i < kBlocks; ++i) {
      const auto& block = blocks()[i % kDistinct];
      auto reader = MCExifReader::create(block.data(), block.size());
      auto exif = reader->parseExif();
      MCDictionary dictionary = exif->dictionary();
      benchmark::DoNotOptimize(dictionary);
    }
  }
}

void Libexif_Load(benchmark::State& state) {
  for (auto _ : state) {
    for (int i = 0; i < kBlocks; ++i) {
      const auto& block = blocks()[i % kDistinct];
      ExifData* data = exif_data_new_from_data(block.data(), static_cast<unsigned int>(block.size()));
      benchmark::DoNotOptimize(data);
      exif_data_unref(data);
    }
  }
}

void Exiv2_Decode(benchmark::State& state) {
  for (auto _ : state) {
    for (int i = 0; i < kBlocks; ++i) {
      const auto& block = blocks()[i % kDistinct];
      Exiv2::ExifData data;
      // Exiv2 takes the TIFF block after the "Exif\0\0" header.
      Exiv2::ExifParser::decode(data, block.data() + 6, static_cast<uint32_t>(block.size() - 6));
      benchmark::DoNotOptimize(data.count());
    }
  }
}


}  // namespace

BENCHMARK(Ours_ReaderParseDictionary)->Unit(benchmark::kMillisecond);
BENCHMARK(Libexif_Load)->Unit(benchmark::kMillisecond);
BENCHMARK(Exiv2_Decode)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (blocks().empty()) {
    std::printf("bench_exif_road: no camera block (exiftool and cjpeg are needed); nothing measured\n");
    return 0;
  }
  std::printf("block: %zu bytes, %d blocks per iteration\n", blocks()[0].size(), kBlocks);
  Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
  BenchTimes times;
  benchmark::RunSpecifiedBenchmarks(&times);
  const double ours = times("Ours_ReaderParseDictionary"), bare = times("Libexif_Load"), exiv2 = times("Exiv2_Decode");
  if (ours > 0 && bare > 0 && exiv2 > 0) {
    std::printf("\nRatios:\n");
    std::printf("%-52s %.2fx  (goal <= 1.5)\n", "whole road / libexif's bare load (time)", ours / bare);
    std::printf("%-52s %.2fx  (goal > 1)\n", "Exiv2 / whole road (time; above 1 = faster than Exiv2)",
                exiv2 / ours);
  }
  benchmark::Shutdown();
  return 0;
}
