#pragma once
// The platform's image property keys, with their string values. The nested image property
// dictionary uses these values as keys: sub-dictionaries under "{TIFF}", "{Exif}", "{ExifAux}",
// "{GPS}" and "{IPTC}", and top-level scalars such as "Orientation". Defined once, here.

/// @name Top-level
//@{
/// Top-level keys of the image property dictionary, and the values of `ColorModel`.
inline constexpr const char* kCGImagePropertyColorModel = "ColorModel";
inline constexpr const char* kCGImagePropertyColorModelRGB = "RGB";
inline constexpr const char* kCGImagePropertyColorModelGray = "Gray";
inline constexpr const char* kCGImagePropertyColorModelCMYK = "CMYK";
inline constexpr const char* kCGImagePropertyColorModelLab = "Lab";
inline constexpr const char* kCGImagePropertyDPIHeight = "DPIHeight";
inline constexpr const char* kCGImagePropertyDPIWidth = "DPIWidth";
inline constexpr const char* kCGImagePropertyDepth = "Depth";
inline constexpr const char* kCGImagePropertyFileSize = "FileSize";
inline constexpr const char* kCGImagePropertyHasAlpha = "HasAlpha";
inline constexpr const char* kCGImagePropertyOrientation = "Orientation";
inline constexpr const char* kCGImagePropertyPixelHeight = "PixelHeight";
inline constexpr const char* kCGImagePropertyPixelWidth = "PixelWidth";
inline constexpr const char* kCGImagePropertyProfileName = "ProfileName";
//@}

/// @name TIFF
//@{
/// Keys of the "{TIFF}" sub-dictionary (and the key of the sub-dictionary itself).
inline constexpr const char* kCGImagePropertyTIFFArtist = "Artist";
inline constexpr const char* kCGImagePropertyTIFFCompression = "Compression";
inline constexpr const char* kCGImagePropertyTIFFCopyright = "Copyright";
inline constexpr const char* kCGImagePropertyTIFFDateTime = "DateTime";
inline constexpr const char* kCGImagePropertyTIFFDictionary = "{TIFF}";
inline constexpr const char* kCGImagePropertyTIFFDocumentName = "DocumentName";
inline constexpr const char* kCGImagePropertyTIFFHostComputer = "HostComputer";
inline constexpr const char* kCGImagePropertyTIFFImageDescription = "ImageDescription";
inline constexpr const char* kCGImagePropertyTIFFMake = "Make";
inline constexpr const char* kCGImagePropertyTIFFModel = "Model";
inline constexpr const char* kCGImagePropertyTIFFOrientation = "Orientation";
inline constexpr const char* kCGImagePropertyTIFFPhotometricInterpretation = "PhotometricInterpretation";
inline constexpr const char* kCGImagePropertyTIFFPrimaryChromaticities = "PrimaryChromaticities";
inline constexpr const char* kCGImagePropertyTIFFResolutionUnit = "ResolutionUnit";
inline constexpr const char* kCGImagePropertyTIFFSoftware = "Software";
inline constexpr const char* kCGImagePropertyTIFFTileLength = "TileLength";
inline constexpr const char* kCGImagePropertyTIFFTileWidth = "TileWidth";
inline constexpr const char* kCGImagePropertyTIFFTransferFunction = "TransferFunction";
inline constexpr const char* kCGImagePropertyTIFFWhitePoint = "WhitePoint";
inline constexpr const char* kCGImagePropertyTIFFXPosition = "XPosition";
inline constexpr const char* kCGImagePropertyTIFFXResolution = "XResolution";
inline constexpr const char* kCGImagePropertyTIFFYPosition = "YPosition";
inline constexpr const char* kCGImagePropertyTIFFYResolution = "YResolution";
//@}

/// @name Exif
//@{
/// Keys of the "{Exif}" sub-dictionary (and the key of the sub-dictionary itself).
inline constexpr const char* kCGImagePropertyExifApertureValue = "ApertureValue";
inline constexpr const char* kCGImagePropertyExifBodySerialNumber = "BodySerialNumber";
inline constexpr const char* kCGImagePropertyExifBrightnessValue = "BrightnessValue";
inline constexpr const char* kCGImagePropertyExifCameraOwnerName = "CameraOwnerName";
inline constexpr const char* kCGImagePropertyExifColorSpace = "ColorSpace";
inline constexpr const char* kCGImagePropertyExifComponentsConfiguration = "ComponentsConfiguration";
inline constexpr const char* kCGImagePropertyExifCompositeImage = "CompositeImage";
inline constexpr const char* kCGImagePropertyExifCompressedBitsPerPixel = "CompressedBitsPerPixel";
inline constexpr const char* kCGImagePropertyExifContrast = "Contrast";
inline constexpr const char* kCGImagePropertyExifCustomRendered = "CustomRendered";
inline constexpr const char* kCGImagePropertyExifDateTimeDigitized = "DateTimeDigitized";
inline constexpr const char* kCGImagePropertyExifDateTimeOriginal = "DateTimeOriginal";
inline constexpr const char* kCGImagePropertyExifDeviceSettingDescription = "DeviceSettingDescription";
inline constexpr const char* kCGImagePropertyExifDictionary = "{Exif}";
inline constexpr const char* kCGImagePropertyExifDigitalZoomRatio = "DigitalZoomRatio";
inline constexpr const char* kCGImagePropertyExifExposureBiasValue = "ExposureBiasValue";
inline constexpr const char* kCGImagePropertyExifExposureIndex = "ExposureIndex";
inline constexpr const char* kCGImagePropertyExifExposureMode = "ExposureMode";
inline constexpr const char* kCGImagePropertyExifExposureProgram = "ExposureProgram";
inline constexpr const char* kCGImagePropertyExifExposureTime = "ExposureTime";
inline constexpr const char* kCGImagePropertyExifFNumber = "FNumber";
inline constexpr const char* kCGImagePropertyExifFileSource = "FileSource";
inline constexpr const char* kCGImagePropertyExifFlash = "Flash";
inline constexpr const char* kCGImagePropertyExifFlashEnergy = "FlashEnergy";
inline constexpr const char* kCGImagePropertyExifFlashPixVersion = "FlashPixVersion";
inline constexpr const char* kCGImagePropertyExifFocalLenIn35mmFilm = "FocalLenIn35mmFilm";
inline constexpr const char* kCGImagePropertyExifFocalLength = "FocalLength";
inline constexpr const char* kCGImagePropertyExifFocalPlaneResolutionUnit = "FocalPlaneResolutionUnit";
inline constexpr const char* kCGImagePropertyExifFocalPlaneXResolution = "FocalPlaneXResolution";
inline constexpr const char* kCGImagePropertyExifFocalPlaneYResolution = "FocalPlaneYResolution";
inline constexpr const char* kCGImagePropertyExifGainControl = "GainControl";
inline constexpr const char* kCGImagePropertyExifGamma = "Gamma";
inline constexpr const char* kCGImagePropertyExifISOSpeed = "ISOSpeed";
inline constexpr const char* kCGImagePropertyExifISOSpeedLatitudeyyy = "ISOSpeedLatitudeyyy";
inline constexpr const char* kCGImagePropertyExifISOSpeedLatitudezzz = "ISOSpeedLatitudezzz";
inline constexpr const char* kCGImagePropertyExifISOSpeedRatings = "ISOSpeedRatings";
inline constexpr const char* kCGImagePropertyExifImageUniqueID = "ImageUniqueID";
inline constexpr const char* kCGImagePropertyExifLensMake = "LensMake";
inline constexpr const char* kCGImagePropertyExifLensModel = "LensModel";
inline constexpr const char* kCGImagePropertyExifLensSerialNumber = "LensSerialNumber";
inline constexpr const char* kCGImagePropertyExifLensSpecification = "LensSpecification";
inline constexpr const char* kCGImagePropertyExifLightSource = "LightSource";
inline constexpr const char* kCGImagePropertyExifMakerNote = "MakerNote";
inline constexpr const char* kCGImagePropertyExifMaxApertureValue = "MaxApertureValue";
inline constexpr const char* kCGImagePropertyExifMeteringMode = "MeteringMode";
inline constexpr const char* kCGImagePropertyExifOECF = "OECF";
inline constexpr const char* kCGImagePropertyExifOffsetTime = "OffsetTime";
inline constexpr const char* kCGImagePropertyExifOffsetTimeDigitized = "OffsetTimeDigitized";
inline constexpr const char* kCGImagePropertyExifOffsetTimeOriginal = "OffsetTimeOriginal";
inline constexpr const char* kCGImagePropertyExifPixelXDimension = "PixelXDimension";
inline constexpr const char* kCGImagePropertyExifPixelYDimension = "PixelYDimension";
inline constexpr const char* kCGImagePropertyExifRecommendedExposureIndex = "RecommendedExposureIndex";
inline constexpr const char* kCGImagePropertyExifRelatedSoundFile = "RelatedSoundFile";
inline constexpr const char* kCGImagePropertyExifSaturation = "Saturation";
inline constexpr const char* kCGImagePropertyExifSceneCaptureType = "SceneCaptureType";
inline constexpr const char* kCGImagePropertyExifSceneType = "SceneType";
inline constexpr const char* kCGImagePropertyExifSensingMethod = "SensingMethod";
inline constexpr const char* kCGImagePropertyExifSensitivityType = "SensitivityType";
inline constexpr const char* kCGImagePropertyExifSharpness = "Sharpness";
inline constexpr const char* kCGImagePropertyExifShutterSpeedValue = "ShutterSpeedValue";
inline constexpr const char* kCGImagePropertyExifSourceExposureTimesOfCompositeImage = "SourceExposureTimesOfCompositeImage";
inline constexpr const char* kCGImagePropertyExifSourceImageNumberOfCompositeImage = "SourceImageNumberOfCompositeImage";
inline constexpr const char* kCGImagePropertyExifSpatialFrequencyResponse = "SpatialFrequencyResponse";
inline constexpr const char* kCGImagePropertyExifSpectralSensitivity = "SpectralSensitivity";
inline constexpr const char* kCGImagePropertyExifStandardOutputSensitivity = "StandardOutputSensitivity";
inline constexpr const char* kCGImagePropertyExifSubjectArea = "SubjectArea";
inline constexpr const char* kCGImagePropertyExifSubjectDistRange = "SubjectDistRange";
inline constexpr const char* kCGImagePropertyExifSubjectDistance = "SubjectDistance";
inline constexpr const char* kCGImagePropertyExifSubjectLocation = "SubjectLocation";
inline constexpr const char* kCGImagePropertyExifSubsecTime = "SubsecTime";
inline constexpr const char* kCGImagePropertyExifSubsecTimeDigitized = "SubsecTimeDigitized";
inline constexpr const char* kCGImagePropertyExifSubsecTimeOriginal = "SubsecTimeOriginal";
inline constexpr const char* kCGImagePropertyExifUserComment = "UserComment";
inline constexpr const char* kCGImagePropertyExifVersion = "ExifVersion";
inline constexpr const char* kCGImagePropertyExifWhiteBalance = "WhiteBalance";
//@}

/// @name Exif auxiliary
//@{
/// Keys of the "{ExifAux}" sub-dictionary: lens and camera details outside the Exif standard.
inline constexpr const char* kCGImagePropertyExifAuxDictionary = "{ExifAux}";
inline constexpr const char* kCGImagePropertyExifAuxFirmware = "Firmware";
inline constexpr const char* kCGImagePropertyExifAuxFlashCompensation = "FlashCompensation";
inline constexpr const char* kCGImagePropertyExifAuxImageNumber = "ImageNumber";
inline constexpr const char* kCGImagePropertyExifAuxLensID = "LensID";
inline constexpr const char* kCGImagePropertyExifAuxLensInfo = "LensInfo";
inline constexpr const char* kCGImagePropertyExifAuxLensModel = "LensModel";
inline constexpr const char* kCGImagePropertyExifAuxLensSerialNumber = "LensSerialNumber";
inline constexpr const char* kCGImagePropertyExifAuxOwnerName = "OwnerName";
inline constexpr const char* kCGImagePropertyExifAuxSerialNumber = "SerialNumber";
//@}

/// @name GPS
//@{
/// Keys of the "{GPS}" sub-dictionary (and the key of the sub-dictionary itself).
inline constexpr const char* kCGImagePropertyGPSAltitude = "Altitude";
inline constexpr const char* kCGImagePropertyGPSAltitudeRef = "AltitudeRef";
inline constexpr const char* kCGImagePropertyGPSAreaInformation = "AreaInformation";
inline constexpr const char* kCGImagePropertyGPSDOP = "DOP";
inline constexpr const char* kCGImagePropertyGPSDateStamp = "DateStamp";
inline constexpr const char* kCGImagePropertyGPSDestBearing = "DestBearing";
inline constexpr const char* kCGImagePropertyGPSDestBearingRef = "DestBearingRef";
inline constexpr const char* kCGImagePropertyGPSDestDistance = "DestDistance";
inline constexpr const char* kCGImagePropertyGPSDestDistanceRef = "DestDistanceRef";
inline constexpr const char* kCGImagePropertyGPSDestLatitude = "DestLatitude";
inline constexpr const char* kCGImagePropertyGPSDestLatitudeRef = "DestLatitudeRef";
inline constexpr const char* kCGImagePropertyGPSDestLongitude = "DestLongitude";
inline constexpr const char* kCGImagePropertyGPSDestLongitudeRef = "DestLongitudeRef";
inline constexpr const char* kCGImagePropertyGPSDictionary = "{GPS}";
inline constexpr const char* kCGImagePropertyGPSDifferental = "Differential";
inline constexpr const char* kCGImagePropertyGPSHPositioningError = "HPositioningError";
inline constexpr const char* kCGImagePropertyGPSImgDirection = "ImgDirection";
inline constexpr const char* kCGImagePropertyGPSImgDirectionRef = "ImgDirectionRef";
inline constexpr const char* kCGImagePropertyGPSLatitude = "Latitude";
inline constexpr const char* kCGImagePropertyGPSLatitudeRef = "LatitudeRef";
inline constexpr const char* kCGImagePropertyGPSLongitude = "Longitude";
inline constexpr const char* kCGImagePropertyGPSLongitudeRef = "LongitudeRef";
inline constexpr const char* kCGImagePropertyGPSMapDatum = "MapDatum";
inline constexpr const char* kCGImagePropertyGPSMeasureMode = "MeasureMode";
inline constexpr const char* kCGImagePropertyGPSProcessingMethod = "ProcessingMethod";
inline constexpr const char* kCGImagePropertyGPSSatellites = "Satellites";
inline constexpr const char* kCGImagePropertyGPSSpeed = "Speed";
inline constexpr const char* kCGImagePropertyGPSSpeedRef = "SpeedRef";
inline constexpr const char* kCGImagePropertyGPSStatus = "Status";
inline constexpr const char* kCGImagePropertyGPSTimeStamp = "TimeStamp";
inline constexpr const char* kCGImagePropertyGPSTrack = "Track";
inline constexpr const char* kCGImagePropertyGPSTrackRef = "TrackRef";
inline constexpr const char* kCGImagePropertyGPSVersion = "GPSVersion";
//@}

/// @name IPTC
//@{
/// Keys of the "{IPTC}" sub-dictionary (and the key of the sub-dictionary itself).
inline constexpr const char* kCGImagePropertyIPTCActionAdvised = "ActionAdvised";
inline constexpr const char* kCGImagePropertyIPTCByline = "Byline";
inline constexpr const char* kCGImagePropertyIPTCBylineTitle = "BylineTitle";
inline constexpr const char* kCGImagePropertyIPTCCaptionAbstract = "Caption/Abstract";
inline constexpr const char* kCGImagePropertyIPTCCategory = "Category";
inline constexpr const char* kCGImagePropertyIPTCCity = "City";
inline constexpr const char* kCGImagePropertyIPTCContact = "Contact";
inline constexpr const char* kCGImagePropertyIPTCContactInfoAddress = "CiAdrExtadr";
inline constexpr const char* kCGImagePropertyIPTCContactInfoCity = "CiAdrCity";
inline constexpr const char* kCGImagePropertyIPTCContactInfoCountry = "CiAdrCtry";
inline constexpr const char* kCGImagePropertyIPTCContactInfoEmails = "CiEmailWork";
inline constexpr const char* kCGImagePropertyIPTCContactInfoPhones = "CiTelWork";
inline constexpr const char* kCGImagePropertyIPTCContactInfoPostalCode = "CiAdrPcode";
inline constexpr const char* kCGImagePropertyIPTCContactInfoStateProvince = "CiAdrRegion";
inline constexpr const char* kCGImagePropertyIPTCContactInfoWebURLs = "CiUrlWork";
inline constexpr const char* kCGImagePropertyIPTCContentLocationCode = "ContentLocationCode";
inline constexpr const char* kCGImagePropertyIPTCContentLocationName = "ContentLocationName";
inline constexpr const char* kCGImagePropertyIPTCCopyrightNotice = "CopyrightNotice";
inline constexpr const char* kCGImagePropertyIPTCCountryPrimaryLocationCode = "Country/PrimaryLocationCode";
inline constexpr const char* kCGImagePropertyIPTCCountryPrimaryLocationName = "Country/PrimaryLocationName";
inline constexpr const char* kCGImagePropertyIPTCCreatorContactInfo = "CreatorContactInfo";
inline constexpr const char* kCGImagePropertyIPTCCredit = "Credit";
inline constexpr const char* kCGImagePropertyIPTCDateCreated = "DateCreated";
inline constexpr const char* kCGImagePropertyIPTCDictionary = "{IPTC}";
inline constexpr const char* kCGImagePropertyIPTCDigitalCreationDate = "DigitalCreationDate";
inline constexpr const char* kCGImagePropertyIPTCDigitalCreationTime = "DigitalCreationTime";
inline constexpr const char* kCGImagePropertyIPTCEditorialUpdate = "EditorialUpdate";
inline constexpr const char* kCGImagePropertyIPTCEditStatus = "EditStatus";
inline constexpr const char* kCGImagePropertyIPTCExpirationDate = "ExpirationDate";
inline constexpr const char* kCGImagePropertyIPTCExpirationTime = "ExpirationTime";
inline constexpr const char* kCGImagePropertyIPTCFixtureIdentifier = "FixtureIdentifier";
inline constexpr const char* kCGImagePropertyIPTCHeadline = "Headline";
inline constexpr const char* kCGImagePropertyIPTCImageOrientation = "ImageOrientation";
inline constexpr const char* kCGImagePropertyIPTCImageType = "ImageType";
inline constexpr const char* kCGImagePropertyIPTCKeywords = "Keywords";
inline constexpr const char* kCGImagePropertyIPTCLanguageIdentifier = "LanguageIdentifier";
inline constexpr const char* kCGImagePropertyIPTCObjectAttributeReference = "ObjectAttributeReference";
inline constexpr const char* kCGImagePropertyIPTCObjectCycle = "ObjectCycle";
inline constexpr const char* kCGImagePropertyIPTCObjectName = "ObjectName";
inline constexpr const char* kCGImagePropertyIPTCObjectTypeReference = "ObjectTypeReference";
inline constexpr const char* kCGImagePropertyIPTCOriginalTransmissionReference = "OriginalTransmissionReference";
inline constexpr const char* kCGImagePropertyIPTCOriginatingProgram = "OriginatingProgram";
inline constexpr const char* kCGImagePropertyIPTCProgramVersion = "ProgramVersion";
inline constexpr const char* kCGImagePropertyIPTCProvinceState = "Province/State";
inline constexpr const char* kCGImagePropertyIPTCReferenceDate = "ReferenceDate";
inline constexpr const char* kCGImagePropertyIPTCReferenceNumber = "ReferenceNumber";
inline constexpr const char* kCGImagePropertyIPTCReferenceService = "ReferenceService";
inline constexpr const char* kCGImagePropertyIPTCReleaseDate = "ReleaseDate";
inline constexpr const char* kCGImagePropertyIPTCReleaseTime = "ReleaseTime";
inline constexpr const char* kCGImagePropertyIPTCRightsUsageTerms = "UsageTerms";
inline constexpr const char* kCGImagePropertyIPTCScene = "Scene";
inline constexpr const char* kCGImagePropertyIPTCSource = "Source";
inline constexpr const char* kCGImagePropertyIPTCSpecialInstructions = "SpecialInstructions";
inline constexpr const char* kCGImagePropertyIPTCStarRating = "StarRating";
inline constexpr const char* kCGImagePropertyIPTCSubjectReference = "SubjectReference";
inline constexpr const char* kCGImagePropertyIPTCSubLocation = "SubLocation";
inline constexpr const char* kCGImagePropertyIPTCSupplementalCategory = "SupplementalCategory";
inline constexpr const char* kCGImagePropertyIPTCTimeCreated = "TimeCreated";
inline constexpr const char* kCGImagePropertyIPTCUrgency = "Urgency";
inline constexpr const char* kCGImagePropertyIPTCWriterEditor = "Writer/Editor";
//@}

/// @name Image source options
//@{
/// Keys of the options dictionary of an image source read (MCImageFiles.h).
inline constexpr const char* kCGImageSourceCreateThumbnailFromImageAlways = "kCGImageSourceCreateThumbnailFromImageAlways";
inline constexpr const char* kCGImageSourceCreateThumbnailFromImageIfAbsent = "kCGImageSourceCreateThumbnailFromImageIfAbsent";
inline constexpr const char* kCGImageSourceCreateThumbnailWithTransform = "kCGImageSourceCreateThumbnailWithTransform";
inline constexpr const char* kCGImageSourceSubsampleFactor = "kCGImageSourceSubsampleFactor";
inline constexpr const char* kCGImageSourceThumbnailMaxPixelSize = "kCGImageSourceThumbnailMaxPixelSize";
//@}

/// @name Image destination options
//@{
/// Options of an image destination write.
inline constexpr const char* kCGImageDestinationOrientation = "kCGImageDestinationOrientation";
//@}
