// `vesperon info`: a file's own Exif merged with the XMP sidecar beside it, under --merge-mask.

#include "ExifTestSupport.h"

#include <vesperon/metadata/MCCGImageMetadataWriter.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

using namespace exif_test;

TEST(VesperonInfo, MergesTheSidecarUnderTheMask) {
  const MCDictionary image{
      {kCGImagePropertyTIFFDictionary, MCDictionary{{kCGImagePropertyTIFFMake, "Acme"}}},
      {kCGImagePropertyExifDictionary,
       MCDictionary{{kCGImagePropertyExifFNumber, 2.8}, {kCGImagePropertyExifExposureTime, 0.004}}},
      {kCGImagePropertyGPSDictionary, MCDictionary{{kCGImagePropertyGPSLatitude, 10}, {kCGImagePropertyGPSLatitudeRef, "N"}}},
  };
  const fs::path jpeg = jpegWithExif("info", *MCCGImageMetadataWriter().exifDataFromCGImageProperties(image));
  if (jpeg.empty()) GTEST_SKIP() << "cjpeg is not installed";
  std::ofstream(fs::path(jpeg).replace_extension("xmp"))
      << R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
         R"(<rdf:Description rdf:about="" xmlns:exif="http://ns.adobe.com/exif/1.0/" xmlns:tiff="http://ns.adobe.com/tiff/1.0/")"
         R"( xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/" exif:FNumber="4/1" exif:GPSLatitude="51,30S")"
         R"( tiff:Make="Sidecar" photoshop:City="Oslo"/></rdf:RDF></x:xmpmeta>)";
  auto info = [&](const std::string& options) {
    auto [ok, text] = run("'" VESPERON_TOOL "' info '" + jpeg.string() + "' " + options);
    nlohmann::json read = nlohmann::json::parse(text, nullptr, false);
    return ok && read.is_object() ? read[jpeg.string()] : nlohmann::json();
  };

  const nlohmann::json plain = info("");
  ASSERT_TRUE(plain.is_object()) << "the program failed";
  EXPECT_EQ(plain["{Exif}"]["FNumber"], 2.8) << "without bit 1 the file's Exif wins";
  EXPECT_EQ(plain["{GPS}"]["Latitude"], 10);
  EXPECT_EQ(plain["{TIFF}"]["Make"], "Acme");
  EXPECT_EQ(plain["{IPTC}"]["City"], "Oslo") << "a sub-dictionary only the sidecar has is taken";

  const nlohmann::json exif = info("--merge-mask 1");
  EXPECT_EQ(exif["{Exif}"]["FNumber"], 4);
  EXPECT_EQ(exif["{Exif}"]["ExposureTime"], 0.004) << "keys only the file has stay";
  EXPECT_EQ(exif["{GPS}"]["Latitude"], 10);

  const nlohmann::json gps = info("--merge-mask 0x6");
  EXPECT_EQ(gps["{GPS}"]["Latitude"], 51.5);
  EXPECT_EQ(gps["{TIFF}"]["Make"], "Acme") << "no bit lets the sidecar's TIFF win";

  EXPECT_FALSE(run("'" VESPERON_TOOL "' info '" + jpeg.string() + "' --merge-mask seven").first);
}

// One argument that cannot be read, or whose name is not UTF-8, once lost the whole output: each
// unreadable one is null, a name that is not UTF-8 is printed with its stray bytes and backslashes
// as \xHH, and every other file prints.
TEST(VesperonInfo, EveryArgumentPrintsWhateverTheOthersAre) {
  const MCDictionary image{{kCGImagePropertyTIFFDictionary, MCDictionary{{kCGImagePropertyTIFFMake, "Acme"}}}};
  const fs::path good = jpegWithExif("info-good", *MCCGImageMetadataWriter().exifDataFromCGImageProperties(image));
  if (good.empty()) GTEST_SKIP() << "cjpeg is not installed";
  const MCDictionary latin1{{kCGImagePropertyTIFFDictionary, MCDictionary{{kCGImagePropertyTIFFMake, "Caf\xe9"}}}};
  const fs::path badText = jpegWithExif("info-latin1-make", *MCCGImageMetadataWriter().exifDataFromCGImageProperties(latin1));
  const fs::path folder = scratchDirectory() / "info-folder.jpg";
  fs::create_directories(folder);
  const fs::path strangeName = scratchDirectory() / "caf\xe9\\1.jpg";
  fs::copy_file(good, strangeName, fs::copy_options::overwrite_existing);
  const fs::path missing = scratchDirectory() / "info-missing.jpg";

  std::string command = "'" VESPERON_TOOL "' info";
  for (const fs::path& p : {folder, good, strangeName, missing, badText}) command += " '" + p.string() + "'";
  const auto [ok, text] = run(command);
  EXPECT_FALSE(ok) << "unreadable arguments make the status 1";
  nlohmann::json out = nlohmann::json::parse(text, nullptr, false);
  ASSERT_TRUE(out.is_object()) << text;
  EXPECT_EQ(out.size(), 5u) << text;
  EXPECT_TRUE(out[folder.string()].is_null()) << "a folder is not a file";
  EXPECT_TRUE(out[missing.string()].is_null());
  EXPECT_EQ(out[good.string()]["{TIFF}"]["Make"], "Acme");
  const std::string escaped = (scratchDirectory() / "caf\\xe9\\x5c1.jpg").string();
  ASSERT_TRUE(out.contains(escaped)) << text;
  EXPECT_EQ(out[escaped]["{TIFF}"]["Make"], "Acme");
  EXPECT_TRUE(out[badText.string()]["{TIFF}"].is_object()) << "a text that is not UTF-8 does not stop the output";

  // Names that are UTF-8 print as they are, backslashes included.
  const fs::path utf8Name = scratchDirectory() / "caf\xc3\xa9\\2.jpg";
  fs::copy_file(good, utf8Name, fs::copy_options::overwrite_existing);
  const auto [utf8Ok, utf8Text] = run("'" VESPERON_TOOL "' info '" + utf8Name.string() + "'");
  EXPECT_TRUE(utf8Ok);
  EXPECT_TRUE(nlohmann::json::parse(utf8Text, nullptr, false).contains(utf8Name.string())) << utf8Text;
}

// A file without an Exif block of its own tells what its codec plug-in reads: a clip its date,
// place, size and length.
TEST(VesperonInfo, AClipTellsWhatTheVideoPlugInReads) {
  const fs::path clip = fs::path(VESPERON_SAMPLES_DIR) / "beach-clip.mp4";
  auto [ok, text] = run("'" VESPERON_TOOL "' info '" + clip.string() + "'");
  ASSERT_TRUE(ok) << text;
  const nlohmann::json read = nlohmann::json::parse(text, nullptr, false)[clip.string()];
  ASSERT_TRUE(read.is_object()) << text;
  EXPECT_EQ(read["PixelWidth"], 320);
  EXPECT_EQ(read["{Exif}"]["DateTimeOriginal"], "2022:10:02 09:15:00");
  EXPECT_NEAR(read["{GPS}"]["Latitude"].get<double>(), 46.5552, 1e-6);
  EXPECT_EQ(read["{GPS}"]["LongitudeRef"], "E");
  EXPECT_NEAR(read["{GPS}"]["Altitude"].get<double>(), 1850, 1e-6);
  EXPECT_EQ(read["{Movie}"]["Codec"], "h264");
  EXPECT_NEAR(read["{Movie}"]["Duration"].get<double>(), 3.0, 0.15);
}
