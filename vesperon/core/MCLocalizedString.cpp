#include <vesperon/core/MCLocalizedString.h>

#include <vesperon/core/MCMessageCatalogue.h>

#include <libintl.h>

#include <mutex>

namespace {

constexpr const char* kDomain = "vesperon";

void bindDomainOnce() {
  static std::once_flag once;
  std::call_once(once, [] {
    const std::string folder = MCMessageCatalogue::localeDirectory().string();
    if (!folder.empty()) bindtextdomain(kDomain, folder.c_str());
    bind_textdomain_codeset(kDomain, "UTF-8");
  });
}

}  // namespace

std::string MCLocalizedString(const std::string& key) {
  bindDomainOnce();
  const char* translated = dgettext(kDomain, key.c_str());
  // gettext hands back its argument itself when the user's language has no translation.
  if (translated != key.c_str()) return translated;
  if (auto english = MCMessageCatalogue::english().translationForKey(key)) return std::string(*english);
  return key;
}

std::string MCLocalizedString(const std::string& key, const char*) { return MCLocalizedString(key); }

std::string MCLocalizedString(const MCLocalizableKey& key) { return MCLocalizedString(std::string(key.key)); }

std::string MCLocalizedStringWithFormat(const std::string& key, const char*, const std::vector<std::string>& values) {
  return MCLocalizedStringWithFormat(key, values);
}

std::string MCLocalizedStringWithFormat(const std::string& key, const std::vector<std::string>& values) {
  const std::string format = MCLocalizedString(key);
  std::string out;
  std::size_t next = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 >= format.size()) {
      out.push_back(format[i]);
      continue;
    }
    if (format[i + 1] == '%') {
      out.push_back('%');
      ++i;
      continue;
    }
    // A place: %@, %s, %d, %ld, %lu, %u, %i.
    std::size_t end = i + 1;
    if (format[end] == 'l') ++end;
    if (end < format.size() && std::string("@sduix").find(format[end]) != std::string::npos && next < values.size()) {
      out += values[next++];
      i = end;
    } else {
      out.push_back('%');
    }
  }
  return out;
}
