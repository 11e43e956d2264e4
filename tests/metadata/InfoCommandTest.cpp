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
