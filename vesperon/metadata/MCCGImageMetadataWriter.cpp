#include <vesperon/metadata/MCCGImageMetadataWriter.h>

#include <vesperon/metadata/MCExifWriter.h>
#include <vesperon/metadata/MCImageMetadata.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

const MCCGImageMetadataWriter::TagMap& MCCGImageMetadataWriter::cgImagePropertyToExifTIFFTagMap() const {
  static const TagMap map = {
      {kCGImagePropertyTIFFCompression, 259},   {kCGImagePropertyTIFFPhotometricInterpretation, 262},
      {kCGImagePropertyTIFFDocumentName, 269},  {kCGImagePropertyTIFFImageDescription, 270},
      {kCGImagePropertyTIFFMake, 271},          {kCGImagePropertyTIFFModel, 272},
      {kCGImagePropertyTIFFOrientation, 274},   {kCGImagePropertyTIFFXResolution, 282},
      {kCGImagePropertyTIFFYResolution, 283},   {kCGImagePropertyTIFFXPosition, 286},
      {kCGImagePropertyTIFFYPosition, 287},     {kCGImagePropertyTIFFResolutionUnit, 296},
      {kCGImagePropertyTIFFTransferFunction, 301}, {kCGImagePropertyTIFFSoftware, 305},
      {kCGImagePropertyTIFFDateTime, 306},      {kCGImagePropertyTIFFArtist, 315},
      {kCGImagePropertyTIFFHostComputer, 316},  {kCGImagePropertyTIFFWhitePoint, 318},
      {kCGImagePropertyTIFFPrimaryChromaticities, 319}, {kCGImagePropertyTIFFTileWidth, 322},
      {kCGImagePropertyTIFFTileLength, 323},    {kCGImagePropertyTIFFCopyright, 33432},
  };
  return map;
}

const MCCGImageMetadataWriter::TagMap& MCCGImageMetadataWriter::cgImagePropertyToExifTagMap() const {
  static const TagMap map = {
      {kCGImagePropertyExifExposureTime, 33434},
      {kCGImagePropertyExifFNumber, 33437},
      {kCGImagePropertyExifExposureProgram, 34850},
      {kCGImagePropertyExifSpectralSensitivity, 34852},
      {kCGImagePropertyExifISOSpeedRatings, 34855},
      {kCGImagePropertyExifOECF, 34856},
      {kCGImagePropertyExifSensitivityType, 34864},
      {kCGImagePropertyExifStandardOutputSensitivity, 34865},
      {kCGImagePropertyExifRecommendedExposureIndex, 34866},
      {kCGImagePropertyExifISOSpeed, 34867},
      {kCGImagePropertyExifISOSpeedLatitudeyyy, 34868},
      {kCGImagePropertyExifISOSpeedLatitudezzz, 34869},
      {kCGImagePropertyExifVersion, 36864},
      {kCGImagePropertyExifDateTimeOriginal, 36867},
      {kCGImagePropertyExifDateTimeDigitized, 36868},
      {kCGImagePropertyExifOffsetTime, 36880},
      {kCGImagePropertyExifOffsetTimeOriginal, 36881},
      {kCGImagePropertyExifOffsetTimeDigitized, 36882},
      {kCGImagePropertyExifComponentsConfiguration, 37121},
      {kCGImagePropertyExifCompressedBitsPerPixel, 37122},
      {kCGImagePropertyExifShutterSpeedValue, 37377},
      {kCGImagePropertyExifApertureValue, 37378},
      {kCGImagePropertyExifBrightnessValue, 37379},
      {kCGImagePropertyExifExposureBiasValue, 37380},
      {kCGImagePropertyExifMaxApertureValue, 37381},
      {kCGImagePropertyExifSubjectDistance, 37382},
      {kCGImagePropertyExifMeteringMode, 37383},
      {kCGImagePropertyExifLightSource, 37384},
      {kCGImagePropertyExifFlash, 37385},
      {kCGImagePropertyExifFocalLength, 37386},
      {kCGImagePropertyExifSubjectArea, 37396},
      {kCGImagePropertyExifMakerNote, 37500},
      {kCGImagePropertyExifUserComment, 37510},
      {kCGImagePropertyExifSubsecTime, 37520},
      {kCGImagePropertyExifSubsecTimeOriginal, 37521},
      {kCGImagePropertyExifSubsecTimeDigitized, 37522},
      {kCGImagePropertyExifFlashPixVersion, 40960},
      {kCGImagePropertyExifColorSpace, 40961},
      {kCGImagePropertyExifPixelXDimension, 40962},
      {kCGImagePropertyExifPixelYDimension, 40963},
      {kCGImagePropertyExifRelatedSoundFile, 40964},
      {kCGImagePropertyExifFlashEnergy, 41483},
      {kCGImagePropertyExifSpatialFrequencyResponse, 41484},
      {kCGImagePropertyExifFocalPlaneXResolution, 41486},
      {kCGImagePropertyExifFocalPlaneYResolution, 41487},
      {kCGImagePropertyExifFocalPlaneResolutionUnit, 41488},
      {kCGImagePropertyExifSubjectLocation, 41492},
      {kCGImagePropertyExifExposureIndex, 41493},
      {kCGImagePropertyExifSensingMethod, 41495},
      {kCGImagePropertyExifFileSource, 41728},
      {kCGImagePropertyExifSceneType, 41729},
      {kCGImagePropertyExifCustomRendered, 41985},
      {kCGImagePropertyExifExposureMode, 41986},
      {kCGImagePropertyExifWhiteBalance, 41987},
      {kCGImagePropertyExifDigitalZoomRatio, 41988},
      {kCGImagePropertyExifFocalLenIn35mmFilm, 41989},
      {kCGImagePropertyExifSceneCaptureType, 41990},
      {kCGImagePropertyExifGainControl, 41991},
      {kCGImagePropertyExifContrast, 41992},
      {kCGImagePropertyExifSaturation, 41993},
      {kCGImagePropertyExifSharpness, 41994},
      {kCGImagePropertyExifDeviceSettingDescription, 41995},
      {kCGImagePropertyExifSubjectDistRange, 41996},
      {kCGImagePropertyExifImageUniqueID, 42016},
      {kCGImagePropertyExifCameraOwnerName, 42032},
      {kCGImagePropertyExifBodySerialNumber, 42033},
      {kCGImagePropertyExifLensSpecification, 42034},
      {kCGImagePropertyExifLensMake, 42035},
      {kCGImagePropertyExifLensModel, 42036},
      {kCGImagePropertyExifLensSerialNumber, 42037},
      {kCGImagePropertyExifCompositeImage, 42080},
      {kCGImagePropertyExifSourceImageNumberOfCompositeImage, 42081},
      {kCGImagePropertyExifSourceExposureTimesOfCompositeImage, 42082},
      {kCGImagePropertyExifGamma, 42240},
  };
  return map;
}

const MCCGImageMetadataWriter::TagMap& MCCGImageMetadataWriter::cgImagePropertyToExifGPSTagMap() const {
  static const TagMap map = [] {
    const char* const keys[] = {
        kCGImagePropertyGPSVersion,          kCGImagePropertyGPSLatitudeRef,    kCGImagePropertyGPSLatitude,
        kCGImagePropertyGPSLongitudeRef,     kCGImagePropertyGPSLongitude,      kCGImagePropertyGPSAltitudeRef,
        kCGImagePropertyGPSAltitude,         kCGImagePropertyGPSTimeStamp,      kCGImagePropertyGPSSatellites,
        kCGImagePropertyGPSStatus,           kCGImagePropertyGPSMeasureMode,    kCGImagePropertyGPSDOP,
        kCGImagePropertyGPSSpeedRef,         kCGImagePropertyGPSSpeed,          kCGImagePropertyGPSTrackRef,
        kCGImagePropertyGPSTrack,            kCGImagePropertyGPSImgDirectionRef, kCGImagePropertyGPSImgDirection,
        kCGImagePropertyGPSMapDatum,         kCGImagePropertyGPSDestLatitudeRef, kCGImagePropertyGPSDestLatitude,
        kCGImagePropertyGPSDestLongitudeRef, kCGImagePropertyGPSDestLongitude,  kCGImagePropertyGPSDestBearingRef,
        kCGImagePropertyGPSDestBearing,      kCGImagePropertyGPSDestDistanceRef, kCGImagePropertyGPSDestDistance,
        kCGImagePropertyGPSProcessingMethod, kCGImagePropertyGPSAreaInformation, kCGImagePropertyGPSDateStamp,
        kCGImagePropertyGPSDifferental,      kCGImagePropertyGPSHPositioningError,
    };
    TagMap out;
    uint16_t tag = 0;
    for (const char* key : keys) out.emplace(key, tag++);
    return out;
  }();
  return map;
}

std::optional<MCData> MCCGImageMetadataWriter::exifDataFromCGImageProperties(const MCDictionary& properties) const {
  MCExifWriter writer;
  auto write = [&](const char* dictionaryName, const TagMap& tags, void (MCExifWriter::*writeValue)(const MCValue&, uint16_t)) {
    const MCDictionary* sub = MCDictionaryGetDictionary(properties, dictionaryName);
    if (!sub) return;
    for (const auto& [key, value] : *sub) {
      if (auto tag = tags.find(key); tag != tags.end()) (writer.*writeValue)(value, tag->second);
    }
  };
  write(kCGImagePropertyTIFFDictionary, cgImagePropertyToExifTIFFTagMap(), &MCExifWriter::writeEXIFValue);
  write(kCGImagePropertyExifDictionary, cgImagePropertyToExifTagMap(), &MCExifWriter::writeEXIFValue);
  write(kCGImagePropertyGPSDictionary, cgImagePropertyToExifGPSTagMap(), &MCExifWriter::writeGPSValue);
  return writer.exifData();
}

std::optional<MCData> MCCGImageMetadataWriter::xmpDataFromCGImageProperties(const MCDictionary& properties) const {
  auto metadata = MCImageMetadata::createMutable();
  if (!metadata) return std::nullopt;
  for (const char* dictionaryName : {kCGImagePropertyExifAuxDictionary, kCGImagePropertyIPTCDictionary}) {
    const MCDictionary* sub = MCDictionaryGetDictionary(properties, dictionaryName);
    if (!sub) continue;
    for (const auto& [key, value] : *sub) metadata->setValueMatchingImageProperty(dictionaryName, key, value);
  }
  return metadata->createXMPData();
}
