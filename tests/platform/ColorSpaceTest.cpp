#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCPixelConversion.h>
#include <vesperon/platform/MCRasterImage.h>

#include <gtest/gtest.h>
#include <lcms2.h>

#include <cstdlib>

TEST(ColorSpace, NamedSpacesAreSharedAndIccSpacesAreNew) {
  EXPECT_EQ(MCColorSpace::sRGB(), MCColorSpace::sRGB());
  EXPECT_NE(MCColorSpace::sRGB(), MCColorSpace::linearSRGB());
  EXPECT_EQ(MCColorSpace::linearGray()->model(), MCColorSpace::Model::Gray);
  EXPECT_EQ(MCColorSpace::genericGrayGamma2_2()->numberOfComponents(), 1);
  EXPECT_EQ(MCColorSpace::linearSRGB()->numberOfComponents(), 3);

  const auto& icc = MCColorSpace::linearSRGB()->iccData();
  ASSERT_GT(icc.size(), 128u);
  auto a = MCColorSpace::createWithICCData(icc);
  auto b = MCColorSpace::createWithICCData(icc);
  ASSERT_TRUE(a && b);
  EXPECT_NE(a, b) << "every ICC space is an object of its own";
  EXPECT_EQ(a->model(), MCColorSpace::Model::RGB);
  EXPECT_TRUE(a->isEquivalent(*b));
  EXPECT_TRUE(a->isEquivalent(*MCColorSpace::linearSRGB()));
  EXPECT_FALSE(a->isEquivalent(*MCColorSpace::sRGB()));

  EXPECT_EQ(MCColorSpace::createWithICCData({}), nullptr);
  EXPECT_EQ(MCColorSpace::createWithICCData(std::vector<uint8_t>(200, 0x5A)), nullptr);
  EXPECT_EQ(MCColorSpace::createWithICCData(icc, MCColorSpace::Model::Gray), nullptr);
  EXPECT_NE(MCColorSpace::createWithICCData(MCColorSpace::linearGray()->iccData(), MCColorSpace::Model::Gray), nullptr);
}

// The named spaces convert as Little CMS does with profiles built here from their definitions.
TEST(ColorSpace, ConversionsMatchLittleCMS) {
  std::vector<uint8_t> rgb(64 * 3);
  for (std::size_t i = 0; i < rgb.size(); ++i) rgb[i] = uint8_t((i * 37 + 11) % 256);
  const MCPixelLayout rgb8{MCColorSpace::Model::RGB, 8, 24, MCImageAlphaNone};
  const MCPixelLayout gray8{MCColorSpace::Model::Gray, 8, 8, MCImageAlphaNone};

  cmsHPROFILE srgb = cmsCreate_sRGBProfile();
  cmsCIExyY white;
  cmsWhitePointFromTemp(&white, 6504);
  cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
  cmsToneCurve* one = cmsBuildGamma(nullptr, 1.0);
  cmsToneCurve* curves[3] = {one, one, one};
  cmsHPROFILE linear = cmsCreateRGBProfile(&white, &primaries, curves);
  cmsHPROFILE linearGray = cmsCreateGrayProfile(cmsD50_xyY(), one);

  std::vector<uint8_t> expected(rgb.size()), ours(rgb.size());
  cmsHTRANSFORM t = cmsCreateTransform(srgb, TYPE_RGB_8, linear, TYPE_RGB_8, INTENT_PERCEPTUAL, 0);
  cmsDoTransform(t, rgb.data(), expected.data(), 64);
  cmsDeleteTransform(t);
  ASSERT_TRUE(MCConvertPixels(*MCColorSpace::sRGB(), rgb8, rgb.data(), 64 * 3, *MCColorSpace::linearSRGB(), rgb8,
                              ours.data(), 64 * 3, 64, 1));
  EXPECT_EQ(ours, expected);

  std::vector<uint8_t> expectedGray(64), ourGray(64);
  t = cmsCreateTransform(srgb, TYPE_RGB_8, linearGray, TYPE_GRAY_8, INTENT_PERCEPTUAL, 0);
  cmsDoTransform(t, rgb.data(), expectedGray.data(), 64);
  cmsDeleteTransform(t);
  ASSERT_TRUE(MCConvertPixels(*MCColorSpace::sRGB(), rgb8, rgb.data(), 64 * 3, *MCColorSpace::linearGray(), gray8,
                              ourGray.data(), 64, 64, 1));
  EXPECT_EQ(ourGray, expectedGray);
  // Linear values of mid-tones are darker than their sRGB codes.
  const uint8_t mid[3] = {128, 128, 128};
  uint8_t out = 0;
  MCConvertPixels(*MCColorSpace::sRGB(), rgb8, mid, 3, *MCColorSpace::linearGray(), gray8, &out, 1, 1, 1);
  EXPECT_NEAR(out, 55, 2);

  cmsFreeToneCurve(one);
  cmsCloseProfile(srgb);
  cmsCloseProfile(linear);
  cmsCloseProfile(linearGray);
}

// Within one space only the layout changes, exactly.
TEST(ColorSpace, LayoutChangesWithinOneSpace) {
  const auto& space = *MCColorSpace::sRGB();
  const uint8_t rgba[8] = {10, 20, 30, 40, 200, 150, 100, 255};
  const MCPixelLayout rgbaPremul{MCColorSpace::Model::RGB, 8, 32, MCImageAlphaPremultipliedLast};
  const MCPixelLayout bgraLittle{MCColorSpace::Model::RGB, 8, 32, MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little};
  const MCPixelLayout argb{MCColorSpace::Model::RGB, 8, 32, MCImageAlphaPremultipliedFirst};
  const MCPixelLayout skipLast{MCColorSpace::Model::RGB, 8, 32, MCImageAlphaNoneSkipLast};
  const MCPixelLayout rgb16{MCColorSpace::Model::RGB, 16, 48, MCImageAlphaNone};
  const MCPixelLayout rgba16Little{MCColorSpace::Model::RGB, 16, 64, MCImageAlphaPremultipliedLast | MCBitmapByteOrder16Little};

  uint8_t out[16] = {};
  ASSERT_TRUE(MCConvertPixels(space, rgbaPremul, rgba, 8, space, bgraLittle, out, 8, 2, 1));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{30, 20, 10, 40, 100, 150, 200, 255}));
  ASSERT_TRUE(MCConvertPixels(space, rgbaPremul, rgba, 8, space, argb, out, 8, 2, 1));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{40, 10, 20, 30, 255, 200, 150, 100}));
  ASSERT_TRUE(MCConvertPixels(space, rgbaPremul, rgba, 8, space, skipLast, out, 8, 2, 1));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{10, 20, 30, 255, 200, 150, 100, 255}));

  // 16 bits: big-endian by default, the 8-bit value repeated in both bytes.
  uint8_t wide[12] = {};
  ASSERT_TRUE(MCConvertPixels(space, skipLast, rgba + 4, 4, space, rgb16, wide, 6, 1, 1));
  EXPECT_EQ(std::vector<uint8_t>(wide, wide + 6), (std::vector<uint8_t>{200, 200, 150, 150, 100, 100}));
  const uint8_t big[6] = {0x12, 0x34, 0x80, 0x00, 0xFF, 0xFF};
  ASSERT_TRUE(MCConvertPixels(space, rgb16, big, 6, space, skipLast, out, 4, 1, 1));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 4), (std::vector<uint8_t>{0x12, 0x80, 0xFF, 0xFF}));
  uint8_t little[8] = {};
  ASSERT_TRUE(MCConvertPixels(space, rgb16, big, 6, space, rgba16Little, little, 8, 1, 1));
  EXPECT_EQ(std::vector<uint8_t>(little, little + 8), (std::vector<uint8_t>{0x34, 0x12, 0x00, 0x80, 0xFF, 0xFF, 0xFF, 0xFF}));

  // Premultiplied 16-bit alpha, half covered: straight 8-bit colour doubles, premultiplied stays.
  const MCPixelLayout rgba16Premul{MCColorSpace::Model::RGB, 16, 64, MCImageAlphaPremultipliedLast};
  const MCPixelLayout rgbaStraight{MCColorSpace::Model::RGB, 8, 32, MCImageAlphaLast};
  const uint8_t half[8] = {0x20, 0x20, 0x40, 0x40, 0x00, 0x00, 0x80, 0x80};
  ASSERT_TRUE(MCConvertPixels(space, rgba16Premul, half, 8, space, rgbaStraight, out, 4, 1, 1));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 4), (std::vector<uint8_t>{64, 128, 0, 128}));
  ASSERT_TRUE(MCConvertPixels(space, rgba16Premul, half, 8, space, rgbaPremul, out, 4, 1, 1));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 4), (std::vector<uint8_t>{32, 64, 0, 128}));

  // Layouts without a format are refused and leave the destination alone.
  const MCPixelLayout alphaOnly{MCColorSpace::Model::RGB, 8, 8, MCImageAlphaOnly};
  const MCPixelLayout wrongBits{MCColorSpace::Model::RGB, 8, 24, MCImageAlphaPremultipliedLast};
  out[0] = 7;
  EXPECT_FALSE(MCConvertPixels(space, alphaOnly, rgba, 8, space, rgbaPremul, out, 8, 1, 1));
  EXPECT_FALSE(MCConvertPixels(space, wrongBits, rgba, 8, space, rgbaPremul, out, 8, 1, 1));
  EXPECT_EQ(out[0], 7);
}

TEST(RasterImage, CropsToIntegralRectInsideTheImage) {
  std::vector<uint8_t> pixels(4 * 3 * 4);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint8_t(i);
  auto image = MCRasterImage::createRGBA8(4, 3, pixels);
  ASSERT_TRUE(image);
  EXPECT_FALSE(MCRasterImage::createWithImageInRect(nullptr, MCMakeRect(0, 0, 1, 1)));
  EXPECT_FALSE(MCRasterImage::createWithImageInRect(image, MCMakeRect(5, 0, 2, 2)));
  EXPECT_FALSE(MCRasterImage::createWithImageInRect(image, MCMakeRect(1, 1, 0, 2)));
  auto crop = MCRasterImage::createWithImageInRect(image, MCMakeRect(1.5, 0.5, 1, 1));  // integral: 1,0 2×2
  ASSERT_TRUE(crop);
  EXPECT_EQ(crop->width(), 2u);
  EXPECT_EQ(crop->height(), 2u);
  EXPECT_EQ(crop->bytesPerRow(), 8u);
  EXPECT_EQ(crop->row(0)[0], 4);   // pixel (1, 0)
  EXPECT_EQ(crop->row(1)[4], 24);  // pixel (2, 1): 16 bytes a row, 4 a pixel
  auto clipped = MCRasterImage::createWithImageInRect(image, MCMakeRect(3, 2, 10, 10));
  ASSERT_TRUE(clipped);
  EXPECT_EQ(clipped->width(), 1u);
  EXPECT_EQ(clipped->height(), 1u);
  EXPECT_EQ(clipped->row(0)[0], 44);
  EXPECT_EQ(clipped->colorSpace(), image->colorSpace());
}
