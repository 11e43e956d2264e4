#pragma once
// MCTextBadge: a badge of text (with any inline images the text carries).

#include <vesperon/drawing/MCBadge.h>
#include <vesperon/toolkit/MCAttributedString.h>

#include <string>

class MCTextBadge : public MCBadge {
 public:
  /// A badge of `text` in `attributes`.
  MCTextBadge(const std::string& text, const MCTextAttributes& attributes) : text_(text, attributes) {}
  /// A badge of styled text.
  explicit MCTextBadge(MCAttributedString text) : text_(std::move(text)) {}

  /// The text.
  const MCAttributedString& attributedString() const { return text_; }
  MCSize contentSize() const override { return text_.size(); }
  /// The text at the rectangle's origin less the insets.
  void drawInRect(const MCRect& rect) override;

 private:
  MCAttributedString text_;
};
