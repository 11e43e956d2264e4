#pragma once
// MCExifWriter: property values in, one tag at a time; an Exif block out.
//
// Each value is brought into the form its tag needs (version texts, byte arrays, user comments,
// GPS coordinates and time stamps), wrapped in an entry whose tag table fixes the wire type, and
// collected in an MCExifData. A value of the wrong kind for its tag, or one a conversion refuses,
// is ignored; a value the encoder refuses still makes an entry, without bytes. Neither call
// reports failure. GPS references are written as given: no sign is derived or checked.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCExifData.h>

#include <cstdint>
#include <optional>

class MCExifWriter {
 public:
  /// A tag of IFD 0 or the Exif IFD. ExifVersion and FlashPixVersion take arrays of numbers,
  /// ComponentsConfiguration an array of bytes, FileSource an array or a number, SceneType a
  /// number, UserComment and SourceExposureTimesOfCompositeImage strings; MakerNote is never
  /// written. Other tags take the value as it is.
  void writeEXIFValue(const MCValue& value, uint16_t tag);
  /// A tag of the GPS IFD, below 32. Latitudes and longitudes (2, 4, 20, 22) take a number of
  /// decimal degrees, the time stamp (7) "hh:mm:ss", processing method and area information (27,
  /// 28) strings.
  void writeGPSValue(const MCValue& value, uint16_t tag);

  /// The saved block, or none.
  std::optional<MCData> exifData() const { return data_.exifData(); }

 private:
  MCExifData data_;
};
