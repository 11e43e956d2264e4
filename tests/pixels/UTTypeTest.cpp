#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/pixels/MCUTType.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace fs = std::filesystem;

TEST(UTType, InternsOneObjectPerIdentifier) {
  auto a = MCUTType::typeWithIdentifier("public.jpeg");
  auto b = MCUTType::typeWithIdentifier(std::string("public.") + "jpeg");
  EXPECT_EQ(a.get(), b.get());
  EXPECT_EQ(MCUTType::typesContainer().at("public.jpeg").get(), a.get());

  // Many threads asking for one new identifier at once still make one object.
  std::vector<const MCUTType*> seen(8);
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i)
    threads.emplace_back([&, i] { seen[i] = MCUTType::typeWithIdentifier("org.example.race").get(); });
  for (auto& t : threads) t.join();
  for (auto* p : seen) EXPECT_EQ(p, seen[0]);

  // Identifiers name types without regard to case, though the container keys them as given.
  auto upper = MCUTType::typeWithIdentifier("PUBLIC.JPEG");
  EXPECT_NE(upper.get(), a.get());
  EXPECT_TRUE(*upper == *a);
  EXPECT_FALSE(*a == *MCUTType::typeWithIdentifier("public.png"));
}

TEST(UTType, DescribesItselfWithItsExtensions) {
  auto jpeg = MCUTType::typeWithIdentifier("public.jpeg");
  EXPECT_EQ(jpeg->description(), "JPEG image (jpeg, jpg, jpe)");
  EXPECT_EQ(jpeg->preferredFilenameExtension(), "jpeg");
  EXPECT_EQ(MCUTType::typeWithIdentifier("public.image")->description(), "image");
  EXPECT_EQ(MCUTType::typeWithIdentifier("org.example.unknown")->description(), "org.example.unknown");
  EXPECT_EQ(MCUTType::preferredExtensionForIdentifier(std::string("public.tiff")), "tiff");
  EXPECT_EQ(MCUTType::preferredExtensionForIdentifier(std::nullopt), std::nullopt);
  EXPECT_EQ(MCUTType::preferredExtensionForIdentifier(std::string("public.image")), std::nullopt);
}

TEST(UTType, ConformsThroughTheTable) {
  auto cr2 = MCUTType::typeWithIdentifier("com.canon.cr2-raw-image");
  EXPECT_TRUE(cr2->comformsToIdentifier(kUTTypeRawImage));
  EXPECT_TRUE(cr2->comformsToIdentifier("public.data"));
  EXPECT_TRUE(cr2->comformsToIdentifier("PUBLIC.ITEM"));
  EXPECT_FALSE(cr2->comformsToIdentifier("public.movie"));
  EXPECT_TRUE(MCUTType::typeWithIdentifier("com.apple.m4v-video")->comformsToType(*MCUTType::typeWithIdentifier("public.movie")));
  EXPECT_TRUE(MCTypeConformsTo("com.apple.rjpeg", "public.jpeg"));
  EXPECT_FALSE(MCTypeConformsTo("public.jpeg", "com.apple.rjpeg"));
  EXPECT_FALSE(MCTypeConformsTo("public.heic", "public.heif"));
  EXPECT_FALSE(MCTypeConformsTo("org.example.unknown", "public.data"));
}

TEST(UTType, FindsTypesByExtensionAndFile) {
  EXPECT_EQ(MCUTType::typeForExtension("JPG")->typeIdentifier(), "public.jpeg");
  EXPECT_EQ(MCUTType::typeForExtension("mov")->typeIdentifier(), "com.apple.quicktime-movie");
  EXPECT_EQ(MCUTType::typeForExtension(""), nullptr);
  EXPECT_EQ(MCUTType::typeForExtension("no-such-extension-at-all"), nullptr);

  // Beyond the table, shared-mime-info names the type.
  auto svg = MCUTType::typeForExtension("svg");
  ASSERT_TRUE(svg);
  EXPECT_TRUE(svg->comformsToIdentifier("public.image"));
  EXPECT_EQ(svg->filenameExtensions(), std::vector<std::string>{"svg"});

  fs::path dir = fs::temp_directory_path() / ("uttype-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  std::ofstream(dir / "photo.JPG") << "x";
  std::ofstream(dir / "notes") << "x";
  EXPECT_EQ(MCUTType::typeForURL(dir / "photo.JPG")->typeIdentifier(), "public.jpeg");
  EXPECT_EQ(MCUTType::typeForURL(dir / "notes")->typeIdentifier(), "public.data");
  EXPECT_EQ(MCUTType::typeForURL(dir)->typeIdentifier(), "public.folder");
  EXPECT_EQ(MCUTType::typeForURL(dir / "gone.jpg"), nullptr);
  fs::remove_all(dir);
}

TEST(UTType, AllowedIdentifiersAreTheAvailableTypes) {
  EXPECT_EQ(MCUTType::allowedTypeIdentifiers().count("public.png"), 0u);
  MCUTType::typeWithIdentifier("public.png")->setIsAvailable(true);
  EXPECT_EQ(MCUTType::allowedTypeIdentifiers().count("public.png"), 1u);
  MCUTType::typeWithIdentifier("public.png")->setIsAvailable(false);
  EXPECT_EQ(MCUTType::allowedTypeIdentifiers().count("public.png"), 0u);
}

TEST(ImageTypes, SetsAreExactMembership) {
  EXPECT_TRUE(MCIsJPEGImageType(std::string("public.jpeg")));
  EXPECT_TRUE(MCIsJPEGImageType(std::string("com.apple.rjpeg")));
  EXPECT_TRUE(MCIsJPEGImageType(std::string("public.jpeg-2000")));
  EXPECT_FALSE(MCIsJPEGImageType(std::string("PUBLIC.JPEG")));
  EXPECT_FALSE(MCIsJPEGImageType(std::nullopt));
  EXPECT_TRUE(MCIsHEICImageType(std::string("public.heif")));
  EXPECT_FALSE(MCIsHEICImageType(std::string("public.heif-standard")));
  EXPECT_FALSE(MCIsImageType(std::nullopt));
  EXPECT_FALSE(MCIsImageType(std::string("org.example.never-registered")));
}
