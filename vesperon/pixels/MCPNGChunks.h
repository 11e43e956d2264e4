#pragma once
// The chunk layer of PNG files, for the places that edit or read a PNG's chunks without decoding
// its image: a walk over the chunks with their bounds checked, a new chunk with its CRC.

#include <vesperon/core/MCValue.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mc_detail {

struct MCPNGChunk {
  std::size_t offset = 0;  ///< where the chunk starts: its length field
  std::size_t length = 0;  ///< of its data
  std::string type;        ///< four letters
  const uint8_t* data = nullptr;
  std::size_t wholeSize() const { return 12 + length; }
};

/// Whether the bytes start with the PNG signature.
bool MCIsPNG(const uint8_t* bytes, std::size_t size);

/// The chunks from the signature to IEND, in order; none when the signature is missing, a chunk
/// runs past the end, or IEND never comes. `stopAt` ends the walk early (at that type, included),
/// so a reader of the header chunks need not have the whole file.
std::optional<std::vector<MCPNGChunk>> MCPNGChunks(const uint8_t* bytes, std::size_t size,
                                                    std::string_view stopAt = "IEND");

/// Appends a chunk of this type and data, with its CRC.
void MCAppendPNGChunk(MCData& out, std::string_view type, const uint8_t* data, std::size_t length);

/// The tEXt chunks' keyword and text pairs.
std::vector<std::pair<std::string, std::string>> MCPNGTextEntries(const std::vector<MCPNGChunk>& chunks);

}  // namespace mc_detail
