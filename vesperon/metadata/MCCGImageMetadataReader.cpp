#include <vesperon/metadata/MCCGImageMetadataReader.h>

#include <vesperon/core/MCDictionaryExtensions.h>
#include <vesperon/metadata/GPSStringParser.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cmath>
#include <stdexcept>

namespace {

using Rule = MCCGImageMetadataPropertyReader;
constexpr int64_t kString = Rule::kElementTypeString;
constexpr int64_t kInteger = Rule::kElementTypeInteger;
constexpr int64_t kReal = Rule::kElementTypeReal;
constexpr int64_t kDate = Rule::kElementTypeDate;

std::vector<Rule> rules(Rule (*make)(std::string, int64_t),
                        std::initializer_list<std::pair<int64_t, std::initializer_list<const char*>>> groups) {
  std::vector<Rule> out;
  for (const auto& [type, names] : groups) {
    for (const char* name : names) out.push_back(make(name, type));
  }
  return out;
}

MCDictionary xmpWins(const MCDictionary& image, const MCDictionary& xmp) {
  return merge(image, xmp, false, [](const std::string&, const MCValue&, const MCValue& xmpValue) { return xmpValue; });
}

}  // namespace

MCCGImageMetadataReader::MCCGImageMetadataReader(std::shared_ptr<MCImageMetadata> metadata)
    : metadata_(std::move(metadata)) {
  if (!metadata_) throw std::invalid_argument("*** MCCGImageMetadataReader::MCCGImageMetadataReader: metadata must not be nil");
}

std::vector<MCCGImageMetadataPropertyReader> MCCGImageMetadataReader::imagePropertyExifKeys() {
  return rules(&Rule::exifWithName,
               {{kString,
                 {kCGImagePropertyExifSpectralSensitivity, kCGImagePropertyExifVersion, kCGImagePropertyExifUserComment,
                  kCGImagePropertyExifRelatedSoundFile, kCGImagePropertyExifImageUniqueID,
                  kCGImagePropertyExifCameraOwnerName, kCGImagePropertyExifBodySerialNumber,
                  kCGImagePropertyExifLensMake, kCGImagePropertyExifLensModel, kCGImagePropertyExifLensSerialNumber}},
                {kInteger,
                 {kCGImagePropertyExifExposureProgram, kCGImagePropertyExifISOSpeedRatings,
                  kCGImagePropertyExifSensitivityType, kCGImagePropertyExifStandardOutputSensitivity,
                  kCGImagePropertyExifRecommendedExposureIndex, kCGImagePropertyExifISOSpeed,
                  kCGImagePropertyExifISOSpeedLatitudeyyy, kCGImagePropertyExifISOSpeedLatitudezzz,
                  kCGImagePropertyExifMeteringMode, kCGImagePropertyExifLightSource, kCGImagePropertyExifFlash,
                  kCGImagePropertyExifFocalLength, kCGImagePropertyExifSubjectArea, kCGImagePropertyExifColorSpace,
                  kCGImagePropertyExifPixelXDimension, kCGImagePropertyExifPixelYDimension,
                  kCGImagePropertyExifFocalPlaneResolutionUnit, kCGImagePropertyExifSubjectLocation,
                  kCGImagePropertyExifSensingMethod, kCGImagePropertyExifFileSource, kCGImagePropertyExifSceneType,
                  kCGImagePropertyExifCustomRendered, kCGImagePropertyExifExposureMode,
                  kCGImagePropertyExifWhiteBalance, kCGImagePropertyExifFocalLenIn35mmFilm,
                  kCGImagePropertyExifSceneCaptureType, kCGImagePropertyExifGainControl, kCGImagePropertyExifContrast,
                  kCGImagePropertyExifSaturation, kCGImagePropertyExifSharpness,
                  kCGImagePropertyExifSubjectDistRange, kCGImagePropertyExifCompositeImage,
                  kCGImagePropertyExifSourceImageNumberOfCompositeImage}},
                {kReal,
                 {kCGImagePropertyExifExposureTime, kCGImagePropertyExifFNumber,
                  kCGImagePropertyExifCompressedBitsPerPixel, kCGImagePropertyExifShutterSpeedValue,
                  kCGImagePropertyExifApertureValue, kCGImagePropertyExifBrightnessValue,
                  kCGImagePropertyExifExposureBiasValue, kCGImagePropertyExifMaxApertureValue,
                  kCGImagePropertyExifSubjectDistance, kCGImagePropertyExifFlashEnergy,
                  kCGImagePropertyExifFocalPlaneXResolution, kCGImagePropertyExifFocalPlaneYResolution,
                  kCGImagePropertyExifExposureIndex, kCGImagePropertyExifDigitalZoomRatio,
                  kCGImagePropertyExifLensSpecification, kCGImagePropertyExifGamma,
                  kCGImagePropertyExifSourceExposureTimesOfCompositeImage}},
                {kDate, {kCGImagePropertyExifDateTimeOriginal, kCGImagePropertyExifDateTimeDigitized}}});
}

std::vector<MCCGImageMetadataPropertyReader> MCCGImageMetadataReader::imagePropertyIPTCKeys() {
  return rules(
      &Rule::iptcWithName,
      {{kString,
        {kCGImagePropertyIPTCObjectTypeReference, kCGImagePropertyIPTCObjectAttributeReference,
         kCGImagePropertyIPTCObjectName, kCGImagePropertyIPTCEditStatus, kCGImagePropertyIPTCEditorialUpdate,
         kCGImagePropertyIPTCUrgency, kCGImagePropertyIPTCSubjectReference, kCGImagePropertyIPTCCategory,
         kCGImagePropertyIPTCSupplementalCategory, kCGImagePropertyIPTCFixtureIdentifier,
         kCGImagePropertyIPTCKeywords, kCGImagePropertyIPTCContentLocationCode,
         kCGImagePropertyIPTCContentLocationName, kCGImagePropertyIPTCReleaseDate, kCGImagePropertyIPTCReleaseTime,
         kCGImagePropertyIPTCExpirationDate, kCGImagePropertyIPTCExpirationTime,
         kCGImagePropertyIPTCSpecialInstructions, kCGImagePropertyIPTCActionAdvised,
         kCGImagePropertyIPTCReferenceService, kCGImagePropertyIPTCReferenceDate, kCGImagePropertyIPTCReferenceNumber,
         kCGImagePropertyIPTCDateCreated, kCGImagePropertyIPTCTimeCreated, kCGImagePropertyIPTCDigitalCreationDate,
         kCGImagePropertyIPTCDigitalCreationTime, kCGImagePropertyIPTCOriginatingProgram,
         kCGImagePropertyIPTCProgramVersion, kCGImagePropertyIPTCObjectCycle, kCGImagePropertyIPTCByline,
         kCGImagePropertyIPTCBylineTitle, kCGImagePropertyIPTCCity, kCGImagePropertyIPTCSubLocation,
         kCGImagePropertyIPTCProvinceState, kCGImagePropertyIPTCCountryPrimaryLocationCode,
         kCGImagePropertyIPTCCountryPrimaryLocationName, kCGImagePropertyIPTCOriginalTransmissionReference,
         kCGImagePropertyIPTCHeadline, kCGImagePropertyIPTCCredit, kCGImagePropertyIPTCSource,
         kCGImagePropertyIPTCCopyrightNotice, kCGImagePropertyIPTCContact, kCGImagePropertyIPTCCaptionAbstract,
         kCGImagePropertyIPTCWriterEditor, kCGImagePropertyIPTCImageType, kCGImagePropertyIPTCImageOrientation,
         kCGImagePropertyIPTCLanguageIdentifier, kCGImagePropertyIPTCStarRating,
         kCGImagePropertyIPTCCreatorContactInfo, kCGImagePropertyIPTCRightsUsageTerms, kCGImagePropertyIPTCScene}}});
}

std::vector<MCCGImageMetadataPropertyReader> MCCGImageMetadataReader::imagePropertyGPSKeys() {
  return rules(&Rule::gpsWithName,
               {{kString,
                 {kCGImagePropertyGPSLatitude, kCGImagePropertyGPSLatitudeRef, kCGImagePropertyGPSLongitude,
                  kCGImagePropertyGPSLongitudeRef, kCGImagePropertyGPSAltitude, kCGImagePropertyGPSAltitudeRef}}});
}

std::vector<MCCGImageMetadataPropertyReader> MCCGImageMetadataReader::imagePropertyTIFFKeys() {
  return rules(&Rule::tiffWithName,
               {{kString,
                 {kCGImagePropertyTIFFDocumentName, kCGImagePropertyTIFFMake, kCGImagePropertyTIFFModel,
                  kCGImagePropertyTIFFSoftware, kCGImagePropertyTIFFArtist, kCGImagePropertyTIFFCopyright}},
                {kInteger, {kCGImagePropertyTIFFResolutionUnit}},
                {kReal, {kCGImagePropertyTIFFXResolution, kCGImagePropertyTIFFYResolution}},
                {kDate, {kCGImagePropertyTIFFDateTime}}});
}

std::vector<MCCGImageMetadataPropertyReader> MCCGImageMetadataReader::imagePropertyExifAuxKeys() {
  return rules(&Rule::exifAuxWithName,
               {{kString,
                 {kCGImagePropertyExifAuxLensModel, kCGImagePropertyExifAuxSerialNumber, kCGImagePropertyExifAuxLensID,
                  kCGImagePropertyExifAuxLensSerialNumber, kCGImagePropertyExifAuxImageNumber,
                  kCGImagePropertyExifAuxOwnerName, kCGImagePropertyExifAuxFirmware}},
                {kReal, {kCGImagePropertyExifAuxFlashCompensation}}});
}

MCCGImageMetadataReader::Scheme MCCGImageMetadataReader::metadataScheme() {
  return {{kCGImagePropertyExifDictionary, imagePropertyExifKeys()},
          {kCGImagePropertyIPTCDictionary, imagePropertyIPTCKeys()},
          {kCGImagePropertyGPSDictionary, imagePropertyGPSKeys()},
          {kCGImagePropertyTIFFDictionary, imagePropertyTIFFKeys()},
          {kCGImagePropertyExifAuxDictionary, imagePropertyExifAuxKeys()}};
}

MCDictionary MCCGImageMetadataReader::extractMetadataFromXMPData(const MCData& data) {
  MCDictionary result;
  if (data.empty()) return result;
  auto metadata = MCImageMetadata::createFromXMPData(data);
  if (!metadata) return result;
  static const auto scheme = metadataScheme();  // about a hundred rules: built once, not per packet
  for (const auto& [dictionaryName, dictionaryRules] : scheme) {
    MCDictionary sub;
    for (const Rule& rule : dictionaryRules) {
      MCValue value = rule.readValueFromMetadata(*metadata);
      if (!value.isNone()) sub.insert_or_assign(rule.propertyName(), std::move(value));
    }
    if (dictionaryName == kCGImagePropertyGPSDictionary) normalizeGPSDictionary(sub);
    result.emplace(dictionaryName, std::move(sub));
  }
  return result;
}

void MCCGImageMetadataReader::normalizeGPSDictionary(MCDictionary& gps) {
  GPSStringParser parser;
  using Parse = std::optional<double> (GPSStringParser::*)(const MCValue&, const std::optional<std::string>&) const;
  auto normalize = [&](const char* key, const char* referenceKey, Parse parse, MCValue negative, MCValue positive) {
    const MCValue* value = MCDictionaryGet(gps, key);
    // A reference may come as text ("1", "S") or, as MCExif's own dictionaries give AltitudeRef,
    // as a number: the number is read as its integer text, so 1 still means below sea level.
    std::optional<std::string> reference;
    if (const std::string* text = safeStringForKey(gps, referenceKey)) reference = *text;
    else if (const MCValue* number = MCDictionaryGet(gps, referenceKey); number && number->isNumber())
      if (auto integer = number->integerValue()) reference = std::to_string(*integer);
    std::optional<double> number = (parser.*parse)(value ? *value : MCValue(), reference);
    if (!number) {
      gps.erase(key);
      gps.erase(referenceKey);
      return;
    }
    gps.insert_or_assign(key, MCValue(std::fabs(*number)));
    gps.insert_or_assign(referenceKey, *number < 0 ? std::move(negative) : std::move(positive));
  };
  normalize(kCGImagePropertyGPSAltitude, kCGImagePropertyGPSAltitudeRef, &GPSStringParser::parseAltitude, MCValue(1),
            MCValue(0));
  normalize(kCGImagePropertyGPSLatitude, kCGImagePropertyGPSLatitudeRef, &GPSStringParser::parseLatitude, MCValue("S"),
            MCValue("N"));
  normalize(kCGImagePropertyGPSLongitude, kCGImagePropertyGPSLongitudeRef, &GPSStringParser::parseLongitude,
            MCValue("W"), MCValue("E"));
}

std::optional<MCDictionary> MCCGImageMetadataReader::extractMetadataFromXMPSidecarForImageAtURL(
    const std::filesystem::path& imageURL) {
  std::filesystem::path sidecar = imageURL;
  sidecar.replace_extension("xmp");
  // No network, no entity substitution, no DTD loading; libxml2's default depth limit stays on.
  xmlDocPtr document = xmlReadFile(sidecar.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  if (!document) return std::nullopt;
  std::optional<MCData> bytes;
  if (xmlNodePtr root = xmlDocGetRootElement(document)) {
    xmlBufferPtr buffer = xmlBufferCreate();
    if (buffer && xmlNodeDump(buffer, document, root, 0, 0) > 0) {
      const auto* content = xmlBufferContent(buffer);
      bytes = MCData(content, content + xmlBufferLength(buffer));
    }
    if (buffer) xmlBufferFree(buffer);
  }
  xmlFreeDoc(document);
  if (!bytes || bytes->empty()) return std::nullopt;
  return extractMetadataFromXMPData(*bytes);
}

MCDictionary MCCGImageMetadataReader::mergeImageMetadata(const MCDictionary& imageMetadata,
                                                         const MCDictionary& xmpMetadata, uint64_t options) {
  return merge(imageMetadata, xmpMetadata, false,
               [options](const std::string& key, const MCValue& image, const MCValue& xmp) -> MCValue {
                 const MCDictionary* imageSub = image.dictionary();
                 const MCDictionary* xmpSub = xmp.dictionary();
                 auto both = [&](uint64_t bit, MCDictionary (*mergeSub)(const MCDictionary&, const MCDictionary&)) {
                   if (!(options & bit) || !imageSub || !xmpSub) return image;
                   return MCValue(mergeSub(*imageSub, *xmpSub));
                 };
                 if (key == kCGImagePropertyExifDictionary) return both(kMergeExif, &mergeImageEXIF);
                 if (key == kCGImagePropertyGPSDictionary) return both(kMergeGPS, &mergeImageGPS);
                 if (key == kCGImagePropertyIPTCDictionary) return both(kMergeIPTC, &mergeImageIPTC);
                 return image;
               });
}

MCDictionary MCCGImageMetadataReader::mergeImageEXIF(const MCDictionary& imageEXIF, const MCDictionary& xmpEXIF) {
  return xmpWins(imageEXIF, xmpEXIF);
}

MCDictionary MCCGImageMetadataReader::mergeImageGPS(const MCDictionary& imageGPS, const MCDictionary& xmpGPS) {
  return xmpWins(imageGPS, xmpGPS);
}

MCDictionary MCCGImageMetadataReader::mergeImageIPTC(const MCDictionary& imageIPTC, const MCDictionary& xmpIPTC) {
  return xmpWins(imageIPTC, xmpIPTC);
}
