#pragma once
// MCTaggedTextParser: a small XML document — a help or release-notes text — turned into styled
// text. Each element's name is looked up in a style map, and nested elements inherit their
// parents' attributes; "b" and "i" make the inherited font bold or italic. "h1", "h2", "li",
// "lli" and "br" end in a line break in their own style; text pieces lose the newlines at their
// ends. A document that is not well formed (or nests deeper than the XML parser allows) gives
// empty text, never a part of it. Parsed with libxml2's event-driven (SAX) parser.

#include <vesperon/toolkit/MCAttributedString.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

class MCTaggedTextParser {
 public:
  /// The attributes of each tag.
  using StyleMap = std::map<std::string, MCTextAttributes>;

  /// h1: 17-point system font, paragraph spacing 16; h2: 13 points, spacing 16; li: 13 points,
  /// spacing 8; lli: as li with indents of 24 and the secondary label colour; em: a light blue.
  static StyleMap defaultStyleMap();

  MCTaggedTextParser() : styleMap_(defaultStyleMap()) {}
  /// A parser with these styles.
  explicit MCTaggedTextParser(StyleMap styleMap) : styleMap_(std::move(styleMap)) {}

  /// The styles by tag.
  const StyleMap& styleMap() const { return styleMap_; }
  /// The styled text of the file at `url`; empty when it cannot be read or parsed.
  MCAttributedString attributedStringFromURL(const std::filesystem::path& url);
  /// The styled text of `document`; empty when it cannot be parsed.
  MCAttributedString attributedStringFromData(const std::string& document);

  // The parser's steps, as the XML parser calls them.
  /// @name Parser steps
  //@{
  /// The parser's steps, called by the XML parser for each start tag, text and end tag.
  void didStartElement(const std::string& name);
  void foundCharacters(const std::string& text);
  void didEndElement(const std::string& name);
  //@}

 private:
  MCAttributedString parse(const std::function<int(void* handler, void* self)>& run);
  StyleMap styleMap_;
  MCAttributedString attributedString_;
  std::vector<MCTextAttributes> attributesStack_;
};
