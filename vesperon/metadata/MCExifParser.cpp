#include <vesperon/metadata/MCExifParser.h>

#include <algorithm>
#include <limits>

MCExifParser::MCExifParser() : exif_(std::make_shared<MCExif>()) {}

void MCExifParser::parse(uint8_t ifd, uint16_t tag, uint16_t type, uint16_t order, uint32_t count,
                         const void* value) {
  if (count == 0 || !value) return;
  reader_.setTag(tag);
  reader_.setType(type);
  reader_.setOrder(order);
  // Counts beyond the reader's signed range are clipped: the reads then cover a prefix.
  reader_.setCount(static_cast<int32_t>(std::min<uint32_t>(count, std::numeric_limits<int32_t>::max())));
  reader_.setPtr(value);
  if (ifd <= 2) {
    parseExifWithValueReader(reader_);
  } else if (ifd == 3) {
    parseGPSWithValueReader(reader_);
  }
}

void MCExifParser::parse(int32_t combinedTag, int32_t type, uint32_t order, int32_t count, const void* value) {
  if (type < 1 || type > 12 || count < 1 || !value || (order != 0x4D4D && order != 0x4949)) return;
  auto tag = static_cast<uint32_t>(combinedTag);
  if (tag & 0xFFF00000u) return;
  if (tag > 0xFFFF && (tag >> 16) != 5) return;
  uint8_t ifd = tag > 0xFFFF ? 3 : 0;
  parse(ifd, static_cast<uint16_t>(tag & 0xFFFF), static_cast<uint16_t>(type), static_cast<uint16_t>(order),
        static_cast<uint32_t>(count), value);
}

void MCExifParser::parseExifWithValueReader(const MCExifValueReader& reader) {
  switch (reader.tag()) {
    case 0x00FE: exif_->setTiffSubfileType(reader.numberValue()); break;
    case 0x00FF: exif_->setTiffSubfileType(reader.numberValue()); break;
    case 0x0100: exif_->setTiffImageWidth(reader.numberValue()); break;
    case 0x0101: exif_->setTiffImageHeight(reader.numberValue()); break;
    case 0x0102: exif_->setTiffBitsPerSample(reader.numberValue()); break;
    case 0x0103: exif_->setTiffCompression(reader.numberValue()); break;
    case 0x010E: exif_->setTiffImageDescription(reader.stringValue()); break;
    case 0x010F: exif_->setTiffMake(reader.stringValue()); break;
    case 0x0110: exif_->setTiffModel(reader.stringValue()); break;
    case 0x0112: exif_->setTiffOrientation(reader.numberValue()); break;
    case 0x0115: exif_->setTiffSamplesPerPixel(reader.numberValue()); break;
    case 0x011A: exif_->setTiffXResolution(reader.numberValue()); break;
    case 0x011B: exif_->setTiffYResolution(reader.numberValue()); break;
    case 0x011E: exif_->setTiffXPosition(reader.numberValue()); break;
    case 0x011F: exif_->setTiffYPosition(reader.numberValue()); break;
    case 0x0128: exif_->setTiffResolutionUnit(reader.numberValue()); break;
    case 0x012D: exif_->setTiffTransferFunction(reader.arrayValue()); break;
    case 0x0131: exif_->setTiffSoftware(reader.stringValue()); break;
    case 0x0132: exif_->setTiffDateTime(reader.stringValue()); break;
    case 0x013B: exif_->setTiffArtist(reader.stringValue()); break;
    case 0x013C: exif_->setTiffHostComputer(reader.stringValue()); break;
    case 0x013E: exif_->setTiffWhitePoint(reader.arrayValue()); break;
    case 0x013F: exif_->setTiffPrimaryChromaticities(reader.arrayValue()); break;
    case 0x0142: exif_->setTiffTileWidth(reader.numberValue()); break;
    case 0x0143: exif_->setTiffTileLength(reader.numberValue()); break;
    case 0x02BC: exif_->setXmp(reader.stringValue()); break;
    case 0x8298: exif_->setTiffCopyright(reader.stringValue()); break;
    case 0x829A: exif_->setExifExposureTime(reader.numberValue()); break;
    case 0x829D: exif_->setExifFNumber(reader.numberValue()); break;
    case 0x8822: exif_->setExifExposureProgram(reader.numberValue()); break;
    case 0x8824: exif_->setExifSpectralSensitivity(reader.stringValue()); break;
    case 0x8827: exif_->setExifISOSpeedRatings(reader.arrayValue()); break;
    case 0x882A: exif_->setExifTimeZoneOffset(reader.arrayValue()); break;
    case 0x8830: exif_->setExifSensitivityType(reader.numberValue()); break;
    case 0x8831: exif_->setExifStandardOutputSensitivity(reader.numberValue()); break;
    case 0x8832: exif_->setExifRecommendedExposureIndex(reader.numberValue()); break;
    case 0x8833: exif_->setExifISOSpeed(reader.numberValue()); break;
    case 0x8834: exif_->setExifISOSpeedLatitudeYYY(reader.numberValue()); break;
    case 0x8835: exif_->setExifISOSpeedLatitudeZZZ(reader.numberValue()); break;
    case 0x9000: exif_->setExifVersion(reader.exifVersionValue()); break;
    case 0x9003: exif_->setDateTimeOriginal(reader.stringValue()); break;
    case 0x9004: exif_->setDateTimeDigitized(reader.stringValue()); break;
    case 0x9010: exif_->setExifOffsetTime(reader.stringValue()); break;
    case 0x9011: exif_->setExifOffsetTimeOriginal(reader.stringValue()); break;
    case 0x9012: exif_->setExifOffsetTimeDigitized(reader.stringValue()); break;
    case 0x9101: exif_->setExifComponentsConfiguration(reader.arrayValue()); break;
    case 0x9102: exif_->setExifCompressedBitsPerPixel(reader.numberValue()); break;
    case 0x9201: exif_->setExifShutterSpeedValue(reader.numberValue()); break;
    case 0x9202: exif_->setExifApertureValue(reader.numberValue()); break;
    case 0x9203: exif_->setExifBrightnessValue(reader.numberValue()); break;
    case 0x9204: exif_->setExifExposureBiasValue(reader.numberValue()); break;
    case 0x9205: exif_->setExifMaxApertureValue(reader.numberValue()); break;
    case 0x9206: exif_->setExifSubjectDistance(reader.numberValue()); break;
    case 0x9207: exif_->setExifMeteringMode(reader.numberValue()); break;
    case 0x9208: exif_->setExifLightSource(reader.numberValue()); break;
    case 0x9209: exif_->setExifFlash(reader.numberValue()); break;
    case 0x920A: exif_->setExifFocalLength(reader.numberValue()); break;
    case 0x9214: exif_->setExifSubjectArea(reader.arrayValue()); break;
    case 0x9286: exif_->setExifUserComment(reader.userCommentValue()); break;
    case 0x9290: exif_->setExifSubsecTime(reader.stringValue()); break;
    case 0x9291: exif_->setExifSubsecTimeOriginal(reader.stringValue()); break;
    case 0x9292: exif_->setExifSubsecTimeDigitized(reader.stringValue()); break;
    case 0xA000: exif_->setExifFlashPixVersion(reader.flashPixVersionValue()); break;
    case 0xA001: exif_->setExifColorSpace(reader.numberValue()); break;
    case 0xA002: exif_->setExifPixelXDimension(reader.numberValue()); break;
    case 0xA003: exif_->setExifPixelYDimension(reader.numberValue()); break;
    case 0xA004: exif_->setExifRelatedSoundFile(reader.stringValue()); break;
    case 0xA20B: exif_->setExifFlashEnergy(reader.numberValue()); break;
    case 0xA20E: exif_->setExifFocalPlaneXResolution(reader.numberValue()); break;
    case 0xA20F: exif_->setExifFocalPlaneYResolution(reader.numberValue()); break;
    case 0xA210: exif_->setExifFocalPlaneResolutionUnit(reader.numberValue()); break;
    case 0xA214: exif_->setExifSubjectLocation(reader.arrayValue()); break;
    case 0xA215: exif_->setExifExposureIndex(reader.numberValue()); break;
    case 0xA217: exif_->setExifSensingMethod(reader.numberValue()); break;
    case 0xA300: exif_->setExifFileSource(reader.numberValue()); break;
    case 0xA301: exif_->setExifSceneType(reader.numberValue()); break;
    case 0xA401: exif_->setExifCustomRendered(reader.numberValue()); break;
    case 0xA402: exif_->setExifExposureMode(reader.numberValue()); break;
    case 0xA403: exif_->setExifWhiteBalance(reader.numberValue()); break;
    case 0xA404: exif_->setExifDigitalZoomRatio(reader.numberValue()); break;
    case 0xA405: exif_->setExifFocalLenIn35mmFilm(reader.numberValue()); break;
    case 0xA406: exif_->setExifSceneCaptureType(reader.numberValue()); break;
    case 0xA407: exif_->setExifGainControl(reader.numberValue()); break;
    case 0xA408: exif_->setExifContrast(reader.numberValue()); break;
    case 0xA409: exif_->setExifSaturation(reader.numberValue()); break;
    case 0xA40A: exif_->setExifSharpness(reader.numberValue()); break;
    case 0xA40C: exif_->setExifSubjectDistanceRange(reader.numberValue()); break;
    case 0xA420: exif_->setExifImageUniqueId(reader.stringValue()); break;
    case 0xA430: exif_->setExifCameraOwnerName(reader.stringValue()); break;
    case 0xA431: exif_->setExifBodySerialNumber(reader.stringValue()); break;
    case 0xA432: exif_->setExifLensSpecification(reader.arrayValue()); break;
    case 0xA433: exif_->setExifLensMake(reader.stringValue()); break;
    case 0xA434: exif_->setExifLensModel(reader.stringValue()); break;
    case 0xA435: exif_->setExifLensSerialNumber(reader.stringValue()); break;
    case 0xA439: exif_->setExifCameraFirmware(reader.stringValue()); break;
    case 0xA500: exif_->setExifGamma(reader.numberValue()); break;
    case 0xC6F8: exif_->setExifProfileName(reader.stringValue()); break;
    case 0xC6FE: exif_->setExifProfileCopyright(reader.stringValue()); break;
    default: break;
  }
}

void MCExifParser::parseGPSWithValueReader(const MCExifValueReader& reader) {
  switch (reader.tag()) {
    case 0: exif_->setGpsVersion(reader.arrayValue()); break;
    case 1: exif_->setGpsLatitudeRef(reader.stringValue()); break;
    case 2: exif_->setGpsLatitude(reader.GPSLatitudeValue()); break;
    case 3: exif_->setGpsLongitudeRef(reader.stringValue()); break;
    case 4: exif_->setGpsLongitude(reader.GPSLongitudeValue()); break;
    case 5: exif_->setGpsAltitudeRef(reader.numberValue()); break;
    case 6: exif_->setGpsAltitude(reader.numberValue()); break;
    case 7: exif_->setGpsTimeStamp(reader.GPSTimeStampValue()); break;
    case 8: exif_->setGpsSatellites(reader.stringValue()); break;
    case 9: exif_->setGpsStatus(reader.stringValue()); break;
    case 10: exif_->setGpsMeasureMode(reader.stringValue()); break;
    case 11: exif_->setGpsDOP(reader.numberValue()); break;
    case 12: exif_->setGpsSpeedRef(reader.stringValue()); break;
    case 13: exif_->setGpsSpeed(reader.numberValue()); break;
    case 14: exif_->setGpsTrackRef(reader.stringValue()); break;
    case 15: exif_->setGpsTrack(reader.numberValue()); break;
    case 16: exif_->setGpsImgDirectionRef(reader.stringValue()); break;
    case 17: exif_->setGpsImgDirection(reader.numberValue()); break;
    case 18: exif_->setGpsMapDatum(reader.stringValue()); break;
    case 19: exif_->setGpsDestLatitudeRef(reader.stringValue()); break;
    case 20: exif_->setGpsDestLatitude(reader.GPSLatitudeValue()); break;
    case 21: exif_->setGpsDestLongitudeRef(reader.stringValue()); break;
    case 22: exif_->setGpsDestLongitude(reader.GPSLongitudeValue()); break;
    case 23: exif_->setGpsDestBearingRef(reader.stringValue()); break;
    case 24: exif_->setGpsDestBearing(reader.numberValue()); break;
    case 25: exif_->setGpsDestDistanceRef(reader.stringValue()); break;
    case 26: exif_->setGpsDestDistance(reader.numberValue()); break;
    case 27: exif_->setGpsProcessingMethod(reader.userCommentValue()); break;
    case 28: exif_->setGpsAreaInformation(reader.userCommentValue()); break;
    case 29: exif_->setGpsDateStamp(reader.stringValue()); break;
    case 30: exif_->setGpsDifferental(reader.numberValue()); break;
    case 31: exif_->setGpsHPositioningError(reader.numberValue()); break;
    default: break;
  }
}
