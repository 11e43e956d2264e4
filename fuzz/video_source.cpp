// Any bytes as an MP4 clip, through MCImageReader and the video plug-in: image, thumbnail and
// metadata are none or a result, never a crash, a read outside a buffer or a hang.

#include "ImageReaderInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static fuzz_support::InputFile file("mp4");
  fuzz_support::readThroughImageReader(file.write(data, size), "public.mpeg-4", size);
  return 0;
}
