#include <vesperon/metadata/MCXMPPropertyMap.h>

#include <vesperon/metadata/MCImagePropertyKeys.h>

namespace {

constexpr const char* kDC = "http://purl.org/dc/elements/1.1/";
constexpr const char* kExif = "http://ns.adobe.com/exif/1.0/";
constexpr const char* kAux = "http://ns.adobe.com/exif/1.0/aux/";
constexpr const char* kExifEX = "http://cipa.jp/exif/1.0/";
constexpr const char* kIptcCore = "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/";
constexpr const char* kIptcExt = "http://iptc.org/std/Iptc4xmpExt/2008-02-29/";
constexpr const char* kPhotoshop = "http://ns.adobe.com/photoshop/1.0/";
constexpr const char* kTIFF = "http://ns.adobe.com/tiff/1.0/";
constexpr const char* kXMP = "http://ns.adobe.com/xap/1.0/";
constexpr const char* kXMPRights = "http://ns.adobe.com/xap/1.0/rights/";

using F = MCXMPForm;

MCXMPProperty exif(const char* key, const char* name, F form = F::Text) {
  return {kCGImagePropertyExifDictionary, key, kExif, "exif", name, form};
}
MCXMPProperty exifEX(const char* key, const char* name, F form = F::Text) {
  return {kCGImagePropertyExifDictionary, key, kExifEX, "exifEX", name, form};
}
MCXMPProperty gps(const char* key, const char* name, F form = F::Text) {
  return {kCGImagePropertyGPSDictionary, key, kExif, "exif", name, form};
}
MCXMPProperty tiff(const char* key, const char* uri, const char* prefix, const char* name, F form = F::Text) {
  return {kCGImagePropertyTIFFDictionary, key, uri, prefix, name, form};
}
MCXMPProperty aux(const char* key, const char* name, F form = F::Text) {
  return {kCGImagePropertyExifAuxDictionary, key, kAux, "aux", name, form};
}
MCXMPProperty iptc(const char* key, const char* uri, const char* prefix, const char* name, F form = F::Text) {
  return {kCGImagePropertyIPTCDictionary, key, uri, prefix, name, form};
}

std::vector<MCXMPProperty> makeTable() {
  return {
      // TIFF: the image structure in tiff, the descriptive fields where XMP keeps them.
      tiff(kCGImagePropertyTIFFMake, kTIFF, "tiff", "Make"),
      tiff(kCGImagePropertyTIFFModel, kTIFF, "tiff", "Model"),
      tiff(kCGImagePropertyTIFFOrientation, kTIFF, "tiff", "Orientation"),
      tiff(kCGImagePropertyTIFFCompression, kTIFF, "tiff", "Compression"),
      tiff(kCGImagePropertyTIFFXResolution, kTIFF, "tiff", "XResolution"),
      tiff(kCGImagePropertyTIFFYResolution, kTIFF, "tiff", "YResolution"),
      tiff(kCGImagePropertyTIFFResolutionUnit, kTIFF, "tiff", "ResolutionUnit"),
      tiff(kCGImagePropertyTIFFWhitePoint, kTIFF, "tiff", "WhitePoint", F::OrderedArray),
      tiff(kCGImagePropertyTIFFPrimaryChromaticities, kTIFF, "tiff", "PrimaryChromaticities", F::OrderedArray),
      tiff(kCGImagePropertyTIFFDateTime, kXMP, "xmp", "ModifyDate", F::Date),
      tiff(kCGImagePropertyTIFFImageDescription, kDC, "dc", "description", F::AlternateText),
      tiff(kCGImagePropertyTIFFSoftware, kXMP, "xmp", "CreatorTool"),
      tiff(kCGImagePropertyTIFFArtist, kDC, "dc", "creator", F::OrderedArray),
      tiff(kCGImagePropertyTIFFCopyright, kDC, "dc", "rights", F::AlternateText),

      // Exif
      exif(kCGImagePropertyExifVersion, "ExifVersion", F::Version),
      exif(kCGImagePropertyExifFlashPixVersion, "FlashpixVersion", F::Version),
      exif(kCGImagePropertyExifColorSpace, "ColorSpace"),
      exif(kCGImagePropertyExifComponentsConfiguration, "ComponentsConfiguration", F::OrderedArray),
      exif(kCGImagePropertyExifCompressedBitsPerPixel, "CompressedBitsPerPixel"),
      exif(kCGImagePropertyExifPixelXDimension, "PixelXDimension"),
      exif(kCGImagePropertyExifPixelYDimension, "PixelYDimension"),
      exif(kCGImagePropertyExifUserComment, "UserComment", F::AlternateText),
      exif(kCGImagePropertyExifRelatedSoundFile, "RelatedSoundFile"),
      exif(kCGImagePropertyExifDateTimeOriginal, "DateTimeOriginal", F::Date),
      exif(kCGImagePropertyExifDateTimeDigitized, "DateTimeDigitized", F::Date),
      exif(kCGImagePropertyExifExposureTime, "ExposureTime"),
      exif(kCGImagePropertyExifFNumber, "FNumber"),
      exif(kCGImagePropertyExifExposureProgram, "ExposureProgram"),
      exif(kCGImagePropertyExifSpectralSensitivity, "SpectralSensitivity"),
      exif(kCGImagePropertyExifISOSpeedRatings, "ISOSpeedRatings", F::OrderedArray),
      exif(kCGImagePropertyExifShutterSpeedValue, "ShutterSpeedValue"),
      exif(kCGImagePropertyExifApertureValue, "ApertureValue"),
      exif(kCGImagePropertyExifBrightnessValue, "BrightnessValue"),
      exif(kCGImagePropertyExifExposureBiasValue, "ExposureBiasValue"),
      exif(kCGImagePropertyExifMaxApertureValue, "MaxApertureValue"),
      exif(kCGImagePropertyExifSubjectDistance, "SubjectDistance"),
      exif(kCGImagePropertyExifMeteringMode, "MeteringMode"),
      exif(kCGImagePropertyExifLightSource, "LightSource"),
      exif(kCGImagePropertyExifFlash, "Flash", F::FlashStructure),
      exif(kCGImagePropertyExifFocalLength, "FocalLength"),
      exif(kCGImagePropertyExifSubjectArea, "SubjectArea", F::OrderedArray),
      exif(kCGImagePropertyExifFlashEnergy, "FlashEnergy"),
      exif(kCGImagePropertyExifFocalPlaneXResolution, "FocalPlaneXResolution"),
      exif(kCGImagePropertyExifFocalPlaneYResolution, "FocalPlaneYResolution"),
      exif(kCGImagePropertyExifFocalPlaneResolutionUnit, "FocalPlaneResolutionUnit"),
      exif(kCGImagePropertyExifSubjectLocation, "SubjectLocation", F::OrderedArray),
      exif(kCGImagePropertyExifExposureIndex, "ExposureIndex"),
      exif(kCGImagePropertyExifSensingMethod, "SensingMethod"),
      exif(kCGImagePropertyExifFileSource, "FileSource"),
      exif(kCGImagePropertyExifSceneType, "SceneType"),
      exif(kCGImagePropertyExifCustomRendered, "CustomRendered"),
      exif(kCGImagePropertyExifExposureMode, "ExposureMode"),
      exif(kCGImagePropertyExifWhiteBalance, "WhiteBalance"),
      exif(kCGImagePropertyExifDigitalZoomRatio, "DigitalZoomRatio"),
      exif(kCGImagePropertyExifFocalLenIn35mmFilm, "FocalLengthIn35mmFilm"),
      exif(kCGImagePropertyExifSceneCaptureType, "SceneCaptureType"),
      exif(kCGImagePropertyExifGainControl, "GainControl"),
      exif(kCGImagePropertyExifContrast, "Contrast"),
      exif(kCGImagePropertyExifSaturation, "Saturation"),
      exif(kCGImagePropertyExifSharpness, "Sharpness"),
      exif(kCGImagePropertyExifSubjectDistRange, "SubjectDistanceRange"),
      exif(kCGImagePropertyExifImageUniqueID, "ImageUniqueID"),
      // Exif 2.3 additions, in CIPA's namespace.
      exifEX(kCGImagePropertyExifCameraOwnerName, "CameraOwnerName"),
      exifEX(kCGImagePropertyExifBodySerialNumber, "BodySerialNumber"),
      exifEX(kCGImagePropertyExifLensSpecification, "LensSpecification", F::OrderedArray),
      exifEX(kCGImagePropertyExifLensMake, "LensMake"),
      exifEX(kCGImagePropertyExifLensModel, "LensModel"),
      exifEX(kCGImagePropertyExifLensSerialNumber, "LensSerialNumber"),
      exifEX(kCGImagePropertyExifSensitivityType, "SensitivityType"),
      exifEX(kCGImagePropertyExifStandardOutputSensitivity, "StandardOutputSensitivity"),
      exifEX(kCGImagePropertyExifRecommendedExposureIndex, "RecommendedExposureIndex"),
      exifEX(kCGImagePropertyExifISOSpeed, "ISOSpeed"),
      exifEX(kCGImagePropertyExifISOSpeedLatitudeyyy, "ISOSpeedLatitudeyyy"),
      exifEX(kCGImagePropertyExifISOSpeedLatitudezzz, "ISOSpeedLatitudezzz"),
      exifEX(kCGImagePropertyExifGamma, "Gamma"),
      exifEX(kCGImagePropertyExifCompositeImage, "CompositeImage"),
      exifEX(kCGImagePropertyExifSourceImageNumberOfCompositeImage, "SourceImageNumberOfCompositeImage",
             F::OrderedArray),
      exifEX(kCGImagePropertyExifSourceExposureTimesOfCompositeImage, "SourceExposureTimesOfCompositeImage"),

      // GPS, in the exif namespace; the references of latitude and longitude live in the text.
      gps(kCGImagePropertyGPSVersion, "GPSVersionID"),
      gps(kCGImagePropertyGPSLatitude, "GPSLatitude", F::GPSCoordinate),
      gps(kCGImagePropertyGPSLongitude, "GPSLongitude", F::GPSCoordinate),
      gps(kCGImagePropertyGPSAltitudeRef, "GPSAltitudeRef"),
      gps(kCGImagePropertyGPSAltitude, "GPSAltitude"),
      gps(kCGImagePropertyGPSTimeStamp, "GPSTimeStamp", F::Date),
      gps(kCGImagePropertyGPSSatellites, "GPSSatellites"),
      gps(kCGImagePropertyGPSStatus, "GPSStatus"),
      gps(kCGImagePropertyGPSMeasureMode, "GPSMeasureMode"),
      gps(kCGImagePropertyGPSDOP, "GPSDOP"),
      gps(kCGImagePropertyGPSSpeedRef, "GPSSpeedRef"),
      gps(kCGImagePropertyGPSSpeed, "GPSSpeed"),
      gps(kCGImagePropertyGPSTrackRef, "GPSTrackRef"),
      gps(kCGImagePropertyGPSTrack, "GPSTrack"),
      gps(kCGImagePropertyGPSImgDirectionRef, "GPSImgDirectionRef"),
      gps(kCGImagePropertyGPSImgDirection, "GPSImgDirection"),
      gps(kCGImagePropertyGPSMapDatum, "GPSMapDatum"),
      gps(kCGImagePropertyGPSDestLatitude, "GPSDestLatitude", F::GPSCoordinate),
      gps(kCGImagePropertyGPSDestLongitude, "GPSDestLongitude", F::GPSCoordinate),
      gps(kCGImagePropertyGPSDestBearingRef, "GPSDestBearingRef"),
      gps(kCGImagePropertyGPSDestBearing, "GPSDestBearing"),
      gps(kCGImagePropertyGPSDestDistanceRef, "GPSDestDistanceRef"),
      gps(kCGImagePropertyGPSDestDistance, "GPSDestDistance"),
      gps(kCGImagePropertyGPSProcessingMethod, "GPSProcessingMethod"),
      gps(kCGImagePropertyGPSAreaInformation, "GPSAreaInformation"),
      gps(kCGImagePropertyGPSDifferental, "GPSDifferential"),
      {kCGImagePropertyGPSDictionary, kCGImagePropertyGPSHPositioningError, kExifEX, "exifEX", "GPSHPositioningError",
       F::Text},

      // Exif auxiliary
      aux(kCGImagePropertyExifAuxLensInfo, "LensInfo"),
      aux(kCGImagePropertyExifAuxLensModel, "Lens"),
      aux(kCGImagePropertyExifAuxLensID, "LensID"),
      aux(kCGImagePropertyExifAuxLensSerialNumber, "LensSerialNumber"),
      aux(kCGImagePropertyExifAuxSerialNumber, "SerialNumber"),
      aux(kCGImagePropertyExifAuxImageNumber, "ImageNumber"),
      aux(kCGImagePropertyExifAuxFlashCompensation, "FlashCompensation"),
      aux(kCGImagePropertyExifAuxOwnerName, "OwnerName"),
      aux(kCGImagePropertyExifAuxFirmware, "Firmware"),

      // IPTC: IIM fields by the IPTC Photo Metadata Standard's mapping.
      iptc(kCGImagePropertyIPTCObjectAttributeReference, kIptcCore, "Iptc4xmpCore", "IntellectualGenre"),
      iptc(kCGImagePropertyIPTCObjectName, kDC, "dc", "title", F::AlternateText),
      iptc(kCGImagePropertyIPTCUrgency, kPhotoshop, "photoshop", "Urgency"),
      iptc(kCGImagePropertyIPTCSubjectReference, kIptcCore, "Iptc4xmpCore", "SubjectCode", F::UnorderedArray),
      iptc(kCGImagePropertyIPTCCategory, kPhotoshop, "photoshop", "Category"),
      iptc(kCGImagePropertyIPTCSupplementalCategory, kPhotoshop, "photoshop", "SupplementalCategories",
           F::UnorderedArray),
      iptc(kCGImagePropertyIPTCKeywords, kDC, "dc", "subject", F::UnorderedArray),
      iptc(kCGImagePropertyIPTCSpecialInstructions, kPhotoshop, "photoshop", "Instructions"),
      iptc(kCGImagePropertyIPTCDateCreated, kPhotoshop, "photoshop", "DateCreated", F::Date),
      iptc(kCGImagePropertyIPTCDigitalCreationDate, kXMP, "xmp", "CreateDate", F::Date),
      iptc(kCGImagePropertyIPTCByline, kDC, "dc", "creator", F::OrderedArray),
      iptc(kCGImagePropertyIPTCBylineTitle, kPhotoshop, "photoshop", "AuthorsPosition"),
      iptc(kCGImagePropertyIPTCCity, kPhotoshop, "photoshop", "City"),
      iptc(kCGImagePropertyIPTCSubLocation, kIptcCore, "Iptc4xmpCore", "Location"),
      iptc(kCGImagePropertyIPTCProvinceState, kPhotoshop, "photoshop", "State"),
      iptc(kCGImagePropertyIPTCCountryPrimaryLocationCode, kIptcCore, "Iptc4xmpCore", "CountryCode"),
      iptc(kCGImagePropertyIPTCCountryPrimaryLocationName, kPhotoshop, "photoshop", "Country"),
      iptc(kCGImagePropertyIPTCOriginalTransmissionReference, kPhotoshop, "photoshop", "TransmissionReference"),
      iptc(kCGImagePropertyIPTCHeadline, kPhotoshop, "photoshop", "Headline"),
      iptc(kCGImagePropertyIPTCCredit, kPhotoshop, "photoshop", "Credit"),
      iptc(kCGImagePropertyIPTCSource, kPhotoshop, "photoshop", "Source"),
      iptc(kCGImagePropertyIPTCCopyrightNotice, kDC, "dc", "rights", F::AlternateText),
      iptc(kCGImagePropertyIPTCCaptionAbstract, kDC, "dc", "description", F::AlternateText),
      iptc(kCGImagePropertyIPTCWriterEditor, kPhotoshop, "photoshop", "CaptionWriter"),
      iptc(kCGImagePropertyIPTCLanguageIdentifier, kDC, "dc", "language", F::UnorderedArray),
      iptc(kCGImagePropertyIPTCStarRating, kXMP, "xmp", "Rating"),
      iptc(kCGImagePropertyIPTCCreatorContactInfo, kIptcCore, "Iptc4xmpCore", "CreatorContactInfo", F::Structure),
      iptc(kCGImagePropertyIPTCRightsUsageTerms, kXMPRights, "xmpRights", "UsageTerms", F::AlternateText),
      iptc(kCGImagePropertyIPTCScene, kIptcCore, "Iptc4xmpCore", "Scene", F::UnorderedArray),
      // After the date keys, so that a path finds the date first.
      iptc(kCGImagePropertyIPTCTimeCreated, kPhotoshop, "photoshop", "DateCreated", F::TimeOfDate),
      iptc(kCGImagePropertyIPTCDigitalCreationTime, kXMP, "xmp", "CreateDate", F::TimeOfDate),
  };
}

}  // namespace

const std::vector<MCXMPProperty>& MCXMPPropertyMap::all() {
  static const std::vector<MCXMPProperty> table = makeTable();
  return table;
}

const MCXMPProperty* MCXMPPropertyMap::find(std::string_view dictionaryName, std::string_view propertyKey) {
  for (const MCXMPProperty& entry : all()) {
    if (entry.dictionaryName == dictionaryName && entry.propertyKey == propertyKey) return &entry;
  }
  return nullptr;
}

const MCXMPProperty* MCXMPPropertyMap::findPath(std::string_view path) {
  for (const MCXMPProperty& entry : all()) {
    const std::string_view prefix = entry.prefix;
    if (path.size() == prefix.size() + 1 + std::char_traits<char>::length(entry.name) && path.starts_with(prefix) &&
        path[prefix.size()] == ':' && path.substr(prefix.size() + 1) == entry.name) {
      return &entry;
    }
  }
  return nullptr;
}

const std::vector<std::pair<const char*, const char*>>& MCXMPPropertyMap::namespaces() {
  static const std::vector<std::pair<const char*, const char*>> list = {
      {"dc", kDC},           {"exif", kExif},     {"aux", kAux},   {"exifEX", kExifEX},
      {"Iptc4xmpCore", kIptcCore}, {"Iptc4xmpExt", kIptcExt}, {"photoshop", kPhotoshop},
      {"tiff", kTIFF},       {"xmp", kXMP},       {"xmpRights", kXMPRights}};
  return list;
}
