// Any bytes as a compiled message catalogue: none, or a catalogue whose every key can be looked up,
// never a read outside the bytes.

#include <vesperon/core/MCMessageCatalogue.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto catalogue = MCMessageCatalogue::catalogueWithData(std::string_view(reinterpret_cast<const char*>(data), size));
  if (catalogue) catalogue->translationForKey("predicate_operator_contains");
  return 0;
}
