#include <vesperon/core/MCLocalizedString.h>

#include <libintl.h>

std::string MCLocalizedString(const std::string& key) { return dgettext("vesperon", key.c_str()); }

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
