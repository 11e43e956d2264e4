// Tagged text: styles by element, inherited through nesting, line breaks, and failures.
#include <vesperon/drawing/MCTaggedTextParser.h>

#include <gtest/gtest.h>

TEST(TaggedText, NestedStylesBreaksAndFailures) {
  MCTaggedTextParser parser;
  const MCAttributedString text = parser.attributedStringFromData(
      "<doc><h1>Title</h1>\n<li>One <b>bold</b> <em>and</em><br/>two</li><x>plain</x></doc>");
  EXPECT_EQ(text.string(), "Title\nOne bold and\ntwo\nplain");
  // h1: 17 points; the break after it is in its style too.
  EXPECT_EQ(text.attributesAtIndex(0).font->pointSize, 17);
  EXPECT_EQ(text.attributesAtIndex(5).paragraphSpacing, 16);
  // b inside li: bold at the li size, with the list's paragraph spacing.
  const std::size_t bold = text.string().find("bold");
  EXPECT_EQ(text.attributesAtIndex(bold).font->weight, 700);
  EXPECT_EQ(text.attributesAtIndex(bold).font->pointSize, 13);
  EXPECT_EQ(text.attributesAtIndex(bold).paragraphSpacing, 8);
  // em changes the colour and keeps the li font; br breaks in the li style.
  const std::size_t em = text.string().find("and");
  EXPECT_EQ(text.attributesAtIndex(em).font->weight, 400);
  EXPECT_NE(text.attributesAtIndex(em).foregroundColor, MCColor::labelColor());
  EXPECT_EQ(text.attributesAtIndex(em + 3).paragraphSpacing, 8);
  // An element without a style only nests.
  EXPECT_FALSE(text.attributesAtIndex(text.string().find("plain")).font.has_value());

  // Not well formed: empty, not a part of it. Deep nesting fails the same way, without a crash.
  EXPECT_TRUE(parser.attributedStringFromData("<doc><h1>Title</h1><li>open").empty());
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<b>";
  deep += "x";
  for (int i = 0; i < 100000; ++i) deep += "</b>";
  EXPECT_TRUE(parser.attributedStringFromData(deep).empty());
  EXPECT_TRUE(parser.attributedStringFromURL("/no/such/file.xml").empty());
  // The parser can be used again after a failure.
  EXPECT_EQ(parser.attributedStringFromData("<i>again</i>").string(), "again");
}
