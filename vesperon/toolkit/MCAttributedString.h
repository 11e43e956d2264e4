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
  /// The image set in the line.
  MCRasterImageRef image;
  /// Its size, and the offset of its bottom from the baseline.
  MCRect bounds{};
};

/// How lines align in the width they are drawn in.
enum class MCTextAlignment { Left, Center, Right };
/// What happens to text wider than its rectangle: wrapped at words, cut with an ellipsis at its
/// end or middle, or clipped.
enum class MCLineBreakMode { WordWrapping, TruncatingTail, TruncatingMiddle, Clipping };

/// How a run of text looks; an attribute left unset takes the default (the system font, black).
struct MCTextAttributes {
  /// The font.
  std::optional<MCFont> font;
  /// The text colour.
  std::optional<MCColor> foregroundColor;
  /// How far the run is raised above the baseline (points; negative lowers it).
  std::optional<double> baselineOffset;
  /// Whether the run is underlined.
  std::optional<bool> underline;
  /// An image set in the line in place of the run's text.
  std::shared_ptr<MCTextAttachment> attachment;
  // Paragraph values, kept with the text for whoever sets it in paragraphs.
  /// The space after a paragraph.
  std::optional<double> paragraphSpacing = std::nullopt;
  /// The indent of a paragraph's first line.
  std::optional<double> firstLineHeadIndent = std::nullopt;
  /// The indent of a paragraph's other lines.
  std::optional<double> headIndent = std::nullopt;
};

class MCAttributedString {
 public:
  MCAttributedString() = default;
  /// `text` (UTF-8) all in `attributes`.
  explicit MCAttributedString(std::string text, MCTextAttributes attributes = {});
  /// One object-replacement character carrying the attachment.
  static MCAttributedString attachmentString(std::shared_ptr<MCTextAttachment> attachment);

  /// The text, UTF-8.
  const std::string& string() const { return text_; }
  /// The text's length in bytes.
  std::size_t length() const { return text_.size(); }
  /// Whether there is no text.
  bool empty() const { return text_.empty(); }

  /// Appends `other` with its attributes.
  void append(const MCAttributedString& other);
  /// Appends `text` in `attributes`.
  void appendString(const std::string& text, const MCTextAttributes& attributes = {});
  /// Sets the given attributes over a byte range (attributes left empty stay as they are).
  void addAttributes(const MCTextAttributes& attributes, std::size_t location, std::size_t length);
  /// The attributes in force at a byte.
  MCTextAttributes attributesAtIndex(std::size_t index) const;

  /// How the lines align; left by default.
  MCTextAlignment alignment() const { return alignment_; }
  /// Sets how the lines align.
  void setAlignment(MCTextAlignment alignment) { alignment_ = alignment; }
  /// What happens to text too wide; word wrapping by default.
  MCLineBreakMode lineBreakMode() const { return lineBreakMode_; }
  /// Sets what happens to text too wide.
  void setLineBreakMode(MCLineBreakMode mode) { lineBreakMode_ = mode; }

  /// The size of the text on one line.
  MCSize size() const;
  /// The rectangle the text takes when set in `size` (lines wrap at its width when the break
  /// mode wraps); origin zero.
  MCRect boundingRectWithSize(MCSize size) const;
  /// The baseline of the first line, from the text's top.
  double baselineOffsetFromTop() const;

  /// Draws the text on one line with its top left at `point` (y down in a flipped context).
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
