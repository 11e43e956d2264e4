#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/core/MCMessageCatalogue.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

fs::path englishCatalogueFile() {
  return MCMessageCatalogue::localeDirectory() / "en" / "LC_MESSAGES" / "vesperon.mo";
}

std::string bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Compiles a catalogue with the real msgfmt, as a translator's build would.
void compile(const fs::path& po, const fs::path& mo, const std::string& extra = "") {
  fs::create_directories(mo.parent_path());
  const std::string command = "msgfmt " + extra + " -o '" + mo.string() + "' '" + po.string() + "'";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace

// The English catalogue made by the build holds each key with the English wording of its call
// site, the key with a blank included; it is read in both byte orders, and cut or broken bytes
// give no catalogue rather than a crash or a half-read one.
TEST(MessageCatalogue, TheBuiltEnglishCatalogueAndBrokenCatalogues) {
  auto english = MCMessageCatalogue::catalogueWithContentsOfFile(englishCatalogueFile());
  ASSERT_TRUE(english) << englishCatalogueFile();
  EXPECT_GE(english->count(), 30u);
  EXPECT_EQ(english->translationForKey("predicate_operator_is greater_than").value_or(""), "is greater than");
  EXPECT_EQ(english->translationForKey("color_label_purple").value_or(""), "Purple");
  EXPECT_EQ(english->translationForKey("action_cancel").value_or(""), "Cancel");
  EXPECT_FALSE(english->translationForKey("predicate_operator_is_greater_than"));
  EXPECT_FALSE(english->translationForKey(""));  // the header is not a message

  const fs::path folder = fs::temp_directory_path() / ("vesperon-mo-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  {
    std::ofstream po(folder / "x.po");
    po << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n"
          "msgid \"a\"\nmsgstr \"Ä\"\n\nmsgid \"b\"\nmsgstr \"bee\"\n";
  }
  compile(folder / "x.po", folder / "big.mo", "--endianness=big");
  auto big = MCMessageCatalogue::catalogueWithContentsOfFile(folder / "big.mo");
  ASSERT_TRUE(big);
  EXPECT_EQ(big->count(), 2u);
  EXPECT_EQ(big->translationForKey("a").value_or(""), "Ä");

  const std::string bytes = bytesOf(folder / "big.mo");
  std::size_t refused = 0;
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    auto cut = MCMessageCatalogue::catalogueWithData(std::string_view(bytes).substr(0, length));
    if (!cut) ++refused;
    else EXPECT_LE(cut->count(), 2u);
  }
  EXPECT_GT(refused, bytes.size() / 2);
  // A count that claims more entries than the file could hold, and strings pointing past the end.
  std::string lying = bytes;
  lying[8] = '\x7f';
  EXPECT_FALSE(MCMessageCatalogue::catalogueWithData(lying));
  std::string pastTheEnd = bytes;
  const std::size_t originals = (std::uint8_t(bytes[12]) << 24) | (std::uint8_t(bytes[13]) << 16) |
                                (std::uint8_t(bytes[14]) << 8) | std::uint8_t(bytes[15]);
  pastTheEnd[originals + 8 + 4] = '\x7f';  // the offset of the second original string
  EXPECT_FALSE(MCMessageCatalogue::catalogueWithData(pastTheEnd));
  EXPECT_FALSE(MCMessageCatalogue::catalogueWithData("not a catalogue at all"));
  EXPECT_FALSE(MCMessageCatalogue::catalogueWithContentsOfFile(folder / "missing.mo"));
  fs::remove_all(folder);
}

// A user whose language has a translation reads it through gettext; a key that language lacks
// comes in English; a key no catalogue has shows itself. Its own process: the domain is bound
// once, to the folder named by VESPERON_LOCALEDIR.
TEST(LocalizedString, TheUsersLanguageThenEnglishThenTheKey) {
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "no de_DE.UTF-8 locale (scripts/setup.sh makes it)";
  const fs::path folder = fs::temp_directory_path() / ("vesperon-locale-" + std::to_string(::getpid()));
  fs::create_directories(folder / "en" / "LC_MESSAGES");
  fs::copy_file(englishCatalogueFile(), folder / "en" / "LC_MESSAGES" / "vesperon.mo");
  {
    std::ofstream po(folder / "de.po");
    po << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n\n"
          "msgid \"predicate_operator_contains\"\nmsgstr \"enthält\"\n\n"
          "msgid \"color_label_set_to_format\"\nmsgstr \"Farbmarkierung %@ setzen\"\n";
  }
  compile(folder / "de.po", folder / "de" / "LC_MESSAGES" / "vesperon.mo");
  ::setenv("VESPERON_LOCALEDIR", folder.c_str(), 1);
  ::unsetenv("LANGUAGE");

  EXPECT_EQ(MCLocalizedString("predicate_operator_contains", "contains"), "enthält");
  EXPECT_EQ(MCLocalizedStringWithFormat("color_label_set_to_format", "Set color label to %@", {"Blau"}),
            "Farbmarkierung Blau setzen");
  EXPECT_EQ(MCLocalizedString("predicate_operator_begins_with"), "begins with");
  EXPECT_EQ(MCLocalizedString("predicate_no_such_key"), "predicate_no_such_key");
  ::unsetenv("VESPERON_LOCALEDIR");
  std::setlocale(LC_ALL, "C");
  fs::remove_all(folder);
}
