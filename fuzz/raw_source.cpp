// Any bytes as a DNG file, through MCImageReader and the camera raw plug-in: image, thumbnail and
// metadata are none or a result, never a crash, a read outside a buffer or a hang.

#include "ImageReaderInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static fuzz_support::InputFile file("dng");
  fuzz_support::readThroughImageReader(file.write(data, size), "com.adobe.raw-image", size);
  return 0;
}
