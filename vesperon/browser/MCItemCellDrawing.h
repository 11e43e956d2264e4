#pragma once
// The drawing steps the card and the plain cell share: the image clipped to rounded corners with
// its optional white veil, the placeholder, one line of text cut with an ellipsis, and the height
// of a text line for a font.

#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/toolkit/MCAttributedString.h>

#include <string>

namespace mc_detail {

/// ceil(ascender + descender + leading + 1) of the font, the height of one line of its text.
double itemCellLineHeight(const MCFont& font);
void drawItemCellImage(const MCImageRef& image, const MCRect& rect, double radius, bool dimmed);
void drawItemCellPlaceholder(const MCRect& rect, double radius);
void drawItemCellText(const std::string& text, const MCTextAttributes& attributes, const MCRect& rect);

}  // namespace mc_detail
