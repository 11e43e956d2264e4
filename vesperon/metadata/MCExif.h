#pragma once
// MCExif: the flat metadata record of one image — one optional property for each field of TIFF,
// Exif and GPS that the library knows, plus the raw XMP packet and the maker note.
//
// MCExifParser fills it from Exif tags. It presents itself as the nested image property dictionary
// ("{TIFF}", "{Exif}", "{GPS}" and the top-level scalars) with the platform's key strings.
//
// Every property is absent by default, readable and writable; a setter copies. Kinds:
//   Number  an integer or a double, as the tag gave it (rationals arrive as doubles)
//   String  text
//   Array   numbers in order
//   Data    bytes
// What some fields hold:
//   tiffDateTime, dateTimeOriginal, dateTimeDigitized   the Exif date text as stored ("2024:05:01 10:00:00")
//   exifVersion        major, minor, micro ("0230" gives 2, 3, 0)
//   exifFlashPixVersion  major, minor ("0100" gives 1, 0)
//   exifUserComment, gpsProcessingMethod, gpsAreaInformation   the text without its 8-byte code
//   gpsLatitude, gpsLongitude, gpsDestLatitude, gpsDestLongitude   decimal degrees, the magnitude;
//                      the sign is in the matching …Ref string
//   gpsTimeStamp       "hh:mm:ss"
//   gpsAltitudeRef     0 above sea level, 1 below
// tiffDocumentName is presented but never parsed; tiffTransferFunction, the TIFF geometry fields,
// xmp, makerNote and a few Exif fields are parsed (or set) but not presented.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>

#include <optional>
#include <string>

/// The properties in order: X(kind, getter, setter, sub-dictionary, key in it or nullptr).
#define MC_EXIF_PROPERTIES(X) \
  X(Number, tiffSubfileType, setTiffSubfileType, TIFF, nullptr)                                                                   \
  X(Number, tiffImageWidth, setTiffImageWidth, TIFF, nullptr)                                                                     \
  X(Number, tiffImageHeight, setTiffImageHeight, TIFF, nullptr)                                                                   \
  X(Number, tiffBitsPerSample, setTiffBitsPerSample, TIFF, nullptr)                                                               \
  X(Number, tiffCompression, setTiffCompression, TIFF, kCGImagePropertyTIFFCompression)                                           \
  X(String, tiffDocumentName, setTiffDocumentName, TIFF, kCGImagePropertyTIFFDocumentName)                                        \
  X(String, tiffImageDescription, setTiffImageDescription, TIFF, kCGImagePropertyTIFFImageDescription)                            \
  X(String, tiffMake, setTiffMake, TIFF, kCGImagePropertyTIFFMake)                                                                \
  X(String, tiffModel, setTiffModel, TIFF, kCGImagePropertyTIFFModel)                                                             \
  X(Number, tiffOrientation, setTiffOrientation, TIFF, kCGImagePropertyTIFFOrientation)                                           \
  X(Number, tiffSamplesPerPixel, setTiffSamplesPerPixel, TIFF, nullptr)                                                           \
  X(Number, tiffXResolution, setTiffXResolution, TIFF, kCGImagePropertyTIFFXResolution)                                           \
  X(Number, tiffYResolution, setTiffYResolution, TIFF, kCGImagePropertyTIFFYResolution)                                           \
  X(Number, tiffXPosition, setTiffXPosition, TIFF, kCGImagePropertyTIFFXPosition)                                                 \
  X(Number, tiffYPosition, setTiffYPosition, TIFF, kCGImagePropertyTIFFYPosition)                                                 \
  X(Number, tiffResolutionUnit, setTiffResolutionUnit, TIFF, kCGImagePropertyTIFFResolutionUnit)                                  \
  X(String, tiffSoftware, setTiffSoftware, TIFF, kCGImagePropertyTIFFSoftware)                                                    \
  X(Array, tiffTransferFunction, setTiffTransferFunction, TIFF, nullptr)                                                          \
  X(String, tiffDateTime, setTiffDateTime, TIFF, kCGImagePropertyTIFFDateTime)                                                    \
  X(String, tiffArtist, setTiffArtist, TIFF, kCGImagePropertyTIFFArtist)                                                          \
  X(String, tiffHostComputer, setTiffHostComputer, TIFF, kCGImagePropertyTIFFHostComputer)                                        \
  X(String, tiffCopyright, setTiffCopyright, TIFF, kCGImagePropertyTIFFCopyright)                                                 \
  X(Array, tiffWhitePoint, setTiffWhitePoint, TIFF, kCGImagePropertyTIFFWhitePoint)                                               \
  X(Array, tiffPrimaryChromaticities, setTiffPrimaryChromaticities, TIFF, kCGImagePropertyTIFFPrimaryChromaticities)              \
  X(Number, tiffTileWidth, setTiffTileWidth, TIFF, kCGImagePropertyTIFFTileWidth)                                                 \
  X(Number, tiffTileLength, setTiffTileLength, TIFF, kCGImagePropertyTIFFTileLength)                                              \
  X(String, xmp, setXmp, TIFF, nullptr)                                                                                           \
  X(Number, exifExposureTime, setExifExposureTime, Exif, kCGImagePropertyExifExposureTime)                                        \
  X(Number, exifFNumber, setExifFNumber, Exif, kCGImagePropertyExifFNumber)                                                       \
  X(Number, exifExposureProgram, setExifExposureProgram, Exif, kCGImagePropertyExifExposureProgram)                               \
  X(String, exifSpectralSensitivity, setExifSpectralSensitivity, Exif, kCGImagePropertyExifSpectralSensitivity)                   \
  X(Array, exifISOSpeedRatings, setExifISOSpeedRatings, Exif, kCGImagePropertyExifISOSpeedRatings)                                \
  X(Array, exifTimeZoneOffset, setExifTimeZoneOffset, Exif, nullptr)                                                              \
  X(Number, exifSensitivityType, setExifSensitivityType, Exif, kCGImagePropertyExifSensitivityType)                               \
  X(Number, exifStandardOutputSensitivity, setExifStandardOutputSensitivity, Exif, kCGImagePropertyExifStandardOutputSensitivity) \
  X(Number, exifRecommendedExposureIndex, setExifRecommendedExposureIndex, Exif, kCGImagePropertyExifRecommendedExposureIndex)    \
  X(Number, exifISOSpeed, setExifISOSpeed, Exif, kCGImagePropertyExifISOSpeed)                                                    \
  X(Number, exifISOSpeedLatitudeYYY, setExifISOSpeedLatitudeYYY, Exif, kCGImagePropertyExifISOSpeedLatitudeyyy)                   \
  X(Number, exifISOSpeedLatitudeZZZ, setExifISOSpeedLatitudeZZZ, Exif, kCGImagePropertyExifISOSpeedLatitudezzz)                   \
  X(Array, exifVersion, setExifVersion, Exif, kCGImagePropertyExifVersion)                                                        \
  X(String, dateTimeOriginal, setDateTimeOriginal, Exif, kCGImagePropertyExifDateTimeOriginal)                                    \
  X(String, dateTimeDigitized, setDateTimeDigitized, Exif, kCGImagePropertyExifDateTimeDigitized)                                 \
  X(String, exifOffsetTime, setExifOffsetTime, Exif, kCGImagePropertyExifOffsetTime)                                              \
  X(String, exifOffsetTimeOriginal, setExifOffsetTimeOriginal, Exif, kCGImagePropertyExifOffsetTimeOriginal)                      \
  X(String, exifOffsetTimeDigitized, setExifOffsetTimeDigitized, Exif, kCGImagePropertyExifOffsetTimeDigitized)                   \
  X(Array, exifComponentsConfiguration, setExifComponentsConfiguration, Exif, kCGImagePropertyExifComponentsConfiguration)        \
  X(Number, exifCompressedBitsPerPixel, setExifCompressedBitsPerPixel, Exif, kCGImagePropertyExifCompressedBitsPerPixel)          \
  X(Number, exifShutterSpeedValue, setExifShutterSpeedValue, Exif, kCGImagePropertyExifShutterSpeedValue)                         \
  X(Number, exifApertureValue, setExifApertureValue, Exif, kCGImagePropertyExifApertureValue)                                     \
  X(Number, exifBrightnessValue, setExifBrightnessValue, Exif, kCGImagePropertyExifBrightnessValue)                               \
  X(Number, exifExposureBiasValue, setExifExposureBiasValue, Exif, kCGImagePropertyExifExposureBiasValue)                         \
  X(Number, exifMaxApertureValue, setExifMaxApertureValue, Exif, kCGImagePropertyExifMaxApertureValue)                            \
  X(Number, exifSubjectDistance, setExifSubjectDistance, Exif, kCGImagePropertyExifSubjectDistance)                               \
  X(Number, exifMeteringMode, setExifMeteringMode, Exif, kCGImagePropertyExifMeteringMode)                                        \
  X(Number, exifLightSource, setExifLightSource, Exif, kCGImagePropertyExifLightSource)                                           \
  X(Number, exifFlash, setExifFlash, Exif, kCGImagePropertyExifFlash)                                                             \
  X(Number, exifFocalLength, setExifFocalLength, Exif, kCGImagePropertyExifFocalLength)                                           \
  X(Array, exifSubjectArea, setExifSubjectArea, Exif, kCGImagePropertyExifSubjectArea)                                            \
  X(Data, makerNote, setMakerNote, Exif, nullptr)                                                                                 \
  X(String, exifUserComment, setExifUserComment, Exif, kCGImagePropertyExifUserComment)                                           \
  X(String, exifSubsecTime, setExifSubsecTime, Exif, kCGImagePropertyExifSubsecTime)                                              \
  X(String, exifSubsecTimeOriginal, setExifSubsecTimeOriginal, Exif, kCGImagePropertyExifSubsecTimeOriginal)                      \
  X(String, exifSubsecTimeDigitized, setExifSubsecTimeDigitized, Exif, kCGImagePropertyExifSubsecTimeDigitized)                   \
  X(Array, exifFlashPixVersion, setExifFlashPixVersion, Exif, kCGImagePropertyExifFlashPixVersion)                                \
  X(Number, exifColorSpace, setExifColorSpace, Exif, kCGImagePropertyExifColorSpace)                                              \
  X(Number, exifPixelXDimension, setExifPixelXDimension, Exif, kCGImagePropertyExifPixelXDimension)                               \
  X(Number, exifPixelYDimension, setExifPixelYDimension, Exif, kCGImagePropertyExifPixelYDimension)                               \
  X(String, exifRelatedSoundFile, setExifRelatedSoundFile, Exif, kCGImagePropertyExifRelatedSoundFile)                            \
  X(Number, exifFlashEnergy, setExifFlashEnergy, Exif, kCGImagePropertyExifFlashEnergy)                                           \
  X(Number, exifFocalPlaneXResolution, setExifFocalPlaneXResolution, Exif, kCGImagePropertyExifFocalPlaneXResolution)             \
  X(Number, exifFocalPlaneYResolution, setExifFocalPlaneYResolution, Exif, kCGImagePropertyExifFocalPlaneYResolution)             \
  X(Number, exifFocalPlaneResolutionUnit, setExifFocalPlaneResolutionUnit, Exif, kCGImagePropertyExifFocalPlaneResolutionUnit)    \
  X(Array, exifSubjectLocation, setExifSubjectLocation, Exif, kCGImagePropertyExifSubjectLocation)                                \
  X(Number, exifExposureIndex, setExifExposureIndex, Exif, kCGImagePropertyExifExposureIndex)                                     \
  X(Number, exifSensingMethod, setExifSensingMethod, Exif, kCGImagePropertyExifSensingMethod)                                     \
  X(Number, exifFileSource, setExifFileSource, Exif, kCGImagePropertyExifFileSource)                                              \
  X(Number, exifSceneType, setExifSceneType, Exif, kCGImagePropertyExifSceneType)                                                 \
  X(Number, exifCustomRendered, setExifCustomRendered, Exif, kCGImagePropertyExifCustomRendered)                                  \
  X(Number, exifExposureMode, setExifExposureMode, Exif, kCGImagePropertyExifExposureMode)                                        \
  X(Number, exifWhiteBalance, setExifWhiteBalance, Exif, kCGImagePropertyExifWhiteBalance)                                        \
  X(Number, exifDigitalZoomRatio, setExifDigitalZoomRatio, Exif, kCGImagePropertyExifDigitalZoomRatio)                            \
  X(Number, exifFocalLenIn35mmFilm, setExifFocalLenIn35mmFilm, Exif, kCGImagePropertyExifFocalLenIn35mmFilm)                      \
  X(Number, exifSceneCaptureType, setExifSceneCaptureType, Exif, kCGImagePropertyExifSceneCaptureType)                            \
  X(Number, exifGainControl, setExifGainControl, Exif, kCGImagePropertyExifGainControl)                                           \
  X(Number, exifContrast, setExifContrast, Exif, kCGImagePropertyExifContrast)                                                    \
  X(Number, exifSaturation, setExifSaturation, Exif, kCGImagePropertyExifSaturation)                                              \
  X(Number, exifSharpness, setExifSharpness, Exif, kCGImagePropertyExifSharpness)                                                 \
  X(Number, exifSubjectDistanceRange, setExifSubjectDistanceRange, Exif, kCGImagePropertyExifSubjectDistRange)                    \
  X(String, exifImageUniqueId, setExifImageUniqueId, Exif, kCGImagePropertyExifImageUniqueID)                                     \
  X(String, exifCameraOwnerName, setExifCameraOwnerName, Exif, kCGImagePropertyExifCameraOwnerName)                               \
  X(String, exifBodySerialNumber, setExifBodySerialNumber, Exif, kCGImagePropertyExifBodySerialNumber)                            \
  X(Array, exifLensSpecification, setExifLensSpecification, Exif, kCGImagePropertyExifLensSpecification)                          \
  X(String, exifLensMake, setExifLensMake, Exif, kCGImagePropertyExifLensMake)                                                    \
  X(String, exifLensModel, setExifLensModel, Exif, kCGImagePropertyExifLensModel)                                                 \
  X(String, exifLensSerialNumber, setExifLensSerialNumber, Exif, kCGImagePropertyExifLensSerialNumber)                            \
  X(String, exifCameraFirmware, setExifCameraFirmware, Exif, nullptr)                                                             \
  X(Number, exifGamma, setExifGamma, Exif, kCGImagePropertyExifGamma)                                                             \
  X(String, exifProfileName, setExifProfileName, Exif, nullptr)                                                                   \
  X(String, exifProfileCopyright, setExifProfileCopyright, Exif, nullptr)                                                         \
  X(Array, gpsVersion, setGpsVersion, GPS, kCGImagePropertyGPSVersion)                                                            \
  X(String, gpsLatitudeRef, setGpsLatitudeRef, GPS, kCGImagePropertyGPSLatitudeRef)                                               \
  X(Number, gpsLatitude, setGpsLatitude, GPS, kCGImagePropertyGPSLatitude)                                                        \
  X(String, gpsLongitudeRef, setGpsLongitudeRef, GPS, kCGImagePropertyGPSLongitudeRef)                                            \
  X(Number, gpsLongitude, setGpsLongitude, GPS, kCGImagePropertyGPSLongitude)                                                     \
  X(Number, gpsAltitudeRef, setGpsAltitudeRef, GPS, kCGImagePropertyGPSAltitudeRef)                                               \
  X(Number, gpsAltitude, setGpsAltitude, GPS, kCGImagePropertyGPSAltitude)                                                        \
  X(String, gpsTimeStamp, setGpsTimeStamp, GPS, kCGImagePropertyGPSTimeStamp)                                                     \
  X(String, gpsSatellites, setGpsSatellites, GPS, kCGImagePropertyGPSSatellites)                                                  \
  X(String, gpsStatus, setGpsStatus, GPS, kCGImagePropertyGPSStatus)                                                              \
  X(String, gpsMeasureMode, setGpsMeasureMode, GPS, kCGImagePropertyGPSMeasureMode)                                               \
  X(Number, gpsDOP, setGpsDOP, GPS, kCGImagePropertyGPSDOP)                                                                       \
  X(String, gpsSpeedRef, setGpsSpeedRef, GPS, kCGImagePropertyGPSSpeedRef)                                                        \
  X(Number, gpsSpeed, setGpsSpeed, GPS, kCGImagePropertyGPSSpeed)                                                                 \
  X(String, gpsTrackRef, setGpsTrackRef, GPS, kCGImagePropertyGPSTrackRef)                                                        \
  X(Number, gpsTrack, setGpsTrack, GPS, kCGImagePropertyGPSTrack)                                                                 \
  X(String, gpsImgDirectionRef, setGpsImgDirectionRef, GPS, kCGImagePropertyGPSImgDirectionRef)                                   \
  X(Number, gpsImgDirection, setGpsImgDirection, GPS, kCGImagePropertyGPSImgDirection)                                            \
  X(String, gpsMapDatum, setGpsMapDatum, GPS, kCGImagePropertyGPSMapDatum)                                                        \
  X(String, gpsDestLatitudeRef, setGpsDestLatitudeRef, GPS, kCGImagePropertyGPSDestLatitudeRef)                                   \
  X(Number, gpsDestLatitude, setGpsDestLatitude, GPS, kCGImagePropertyGPSDestLatitude)                                            \
  X(String, gpsDestLongitudeRef, setGpsDestLongitudeRef, GPS, kCGImagePropertyGPSDestLongitudeRef)                                \
  X(Number, gpsDestLongitude, setGpsDestLongitude, GPS, kCGImagePropertyGPSDestLongitude)                                         \
  X(String, gpsDestBearingRef, setGpsDestBearingRef, GPS, kCGImagePropertyGPSDestBearingRef)                                      \
  X(Number, gpsDestBearing, setGpsDestBearing, GPS, kCGImagePropertyGPSDestBearing)                                               \
  X(String, gpsDestDistanceRef, setGpsDestDistanceRef, GPS, kCGImagePropertyGPSDestDistanceRef)                                   \
  X(Number, gpsDestDistance, setGpsDestDistance, GPS, kCGImagePropertyGPSDestDistance)                                            \
  X(String, gpsProcessingMethod, setGpsProcessingMethod, GPS, kCGImagePropertyGPSProcessingMethod)                                \
  X(String, gpsAreaInformation, setGpsAreaInformation, GPS, kCGImagePropertyGPSAreaInformation)                                   \
  X(String, gpsDateStamp, setGpsDateStamp, GPS, kCGImagePropertyGPSDateStamp)                                                     \
  X(Number, gpsDifferental, setGpsDifferental, GPS, kCGImagePropertyGPSDifferental)                                               \
  X(Number, gpsHPositioningError, setGpsHPositioningError, GPS, kCGImagePropertyGPSHPositioningError)

class MCExif {
 public:
  using Number = MCValue;  ///< always an integer or a double
  /// @name Value types
  //@{
  /// The types the record's fields hold.
  using String = std::string;
  using Array = MCArray;
  using Data = MCData;
  //@}

  MCExif() = default;
  MCExif(const MCExif&) = delete;
  MCExif& operator=(const MCExif&) = delete;

#define MC_EXIF_DECLARE_ACCESSORS(kind, name, setter, group, key)        \
  const std::optional<kind>& name() const { return name##_; }          \
  void setter(std::optional<kind> value) { name##_ = std::move(value); }
  MC_EXIF_PROPERTIES(MC_EXIF_DECLARE_ACCESSORS)
#undef MC_EXIF_DECLARE_ACCESSORS

  /// The whole record as a nested image property dictionary, absent fields left out:
  /// Depth (tiffBitsPerSample), Orientation (tiffOrientation), PixelWidth and PixelHeight (from the
  /// Exif pixel dimensions, not the TIFF ones), ProfileName (exifProfileName), DPIWidth and
  /// DPIHeight, and the three sub-dictionaries that are not empty.
  ///
  /// DPI: only when both resolutions are non-zero; unit 2 or none takes them as they are, unit 3
  /// (per centimetre) multiplies by 2.54, any other unit gives none; both are rounded half away
  /// from zero and set, as integers, only when neither rounds to 0.
  MCDictionary dictionary() const;
  /// One sub-dictionary each, holding the present properties that have a key.
  MCDictionary tiffDictionary() const;
  /// The record's Exif fields as a "{Exif}" property dictionary.
  MCDictionary exifDictionary() const;
  /// The record's GPS fields as a "{GPS}" property dictionary.
  MCDictionary gpsDictionary() const;

 private:
  enum class Group { TIFF, Exif, GPS };
  MCDictionary groupDictionary(Group group) const;

#define MC_EXIF_DECLARE_STORAGE(kind, name, setter, group, key) std::optional<kind> name##_;
  MC_EXIF_PROPERTIES(MC_EXIF_DECLARE_STORAGE)
#undef MC_EXIF_DECLARE_STORAGE
};
