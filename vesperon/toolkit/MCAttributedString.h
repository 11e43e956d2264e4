#pragma once
// MCAttributedString: text with runs of attributes — font, colour, baseline offset, underline —
// and inline images (attachments), measured and drawn with Pango.
//
// Ranges are byte ranges of the UTF-8 text. Drawing respects the context's flip: in a flipped
// view `drawAtPoint` puts the text's top left at the point, in an unflipped one its bottom left,
// so the text stands upright either way. Sizes are in points.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCRasterImage.h>
#include <vesperon/toolkit/MCColor.h>
#include <vesperon/toolkit/MCFont.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class MCGraphicsContext;
typedef struct _PangoLayout PangoLayout;
typedef struct _PangoContext PangoContext;

/// An image set in a line of text. `bounds` is in points; its origin's y is the offset of the
/// image's bottom from the baseline (negative goes below).
struct MCTextAttachment {
  MCRasterImageRef image;
  MCRect bounds{};
};

enum class MCTextAlignment { Left, Center, Right };
enum class MCLineBreakMode { WordWrapping, TruncatingTail, TruncatingMiddle, Clipping };

struct MCTextAttributes {
  std::optional<MCFont> font;
  std::optional<MCColor> foregroundColor;
  std::optional<double> baselineOffset;
  std::optional<bool> underline;
  std::shared_ptr<MCTextAttachment> attachment;
  // Paragraph values, kept with the text for whoever sets it in paragraphs.
  std::optional<double> paragraphSpacing = std::nullopt;
  std::optional<double> firstLineHeadIndent = std::nullopt;
  std::optional<double> headIndent = std::nullopt;
};

class MCAttributedString {
 public:
  MCAttributedString() = default;
  explicit MCAttributedString(std::string text, MCTextAttributes attributes = {});
  /// One object-replacement character carrying the attachment.
  static MCAttributedString attachmentString(std::shared_ptr<MCTextAttachment> attachment);

  const std::string& string() const { return text_; }
  std::size_t length() const { return text_.size(); }
  bool empty() const { return text_.empty(); }

  void append(const MCAttributedString& other);
  void appendString(const std::string& text, const MCTextAttributes& attributes = {});
  /// Sets the given attributes over a byte range (attributes left empty stay as they are).
  void addAttributes(const MCTextAttributes& attributes, std::size_t location, std::size_t length);
  /// The attributes in force at a byte.
  MCTextAttributes attributesAtIndex(std::size_t index) const;

  MCTextAlignment alignment() const { return alignment_; }
  void setAlignment(MCTextAlignment alignment) { alignment_ = alignment; }
  MCLineBreakMode lineBreakMode() const { return lineBreakMode_; }
  void setLineBreakMode(MCLineBreakMode mode) { lineBreakMode_ = mode; }

  /// The size of the text on one line.
  MCSize size() const;
  /// The rectangle the text takes when set in `size` (lines wrap at its width when the break
  /// mode wraps); origin zero.
  MCRect boundingRectWithSize(MCSize size) const;
  /// The baseline of the first line, from the text's top.
  double baselineOffsetFromTop() const;

  void drawAtPoint(MCPoint point, MCGraphicsContext& context) const;
  /// Sets the text in `rect` (wrapped or truncated by the break mode, aligned), clipped to it.
  void drawInRect(const MCRect& rect, MCGraphicsContext& context) const;

 private:
  struct Run {
    std::size_t start, end;
    MCTextAttributes attributes;
  };
  PangoLayout* makeLayout(PangoContext* context, double width, double height) const;
  void draw(const MCRect& rect, bool constrained, MCGraphicsContext& context) const;

  std::string text_;
  std::vector<Run> runs_;
  MCTextAlignment alignment_ = MCTextAlignment::Left;
  MCLineBreakMode lineBreakMode_ = MCLineBreakMode::WordWrapping;
};
