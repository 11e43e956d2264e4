#include <vesperon/controls/MCColorLabelMapper.h>

#include <exempi/xmp.h>
#include <exempi/xmpconsts.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <iterator>
#include <mutex>

namespace {

constexpr std::array<long, 8> kFromResource = {0, 7, 4, 6, 5, 3, 1, 2};
constexpr std::array<long, 8> kToResource = {0, 6, 7, 5, 2, 4, 3, 1};
const char* const kNames[] = {"Red", "Orange", "Yellow", "Green", "Blue", "Purple", "Gray"};

void initializeExempi() {
  static std::once_flag once;
  std::call_once(once, [] { xmp_init(); });
}

}  // namespace

long MCColorLabelMapper::colorLabelFromURLResource(long resourceLabel) {
  return resourceLabel >= 0 && resourceLabel < 8 ? kFromResource[std::size_t(resourceLabel)] : 0;
}

long MCColorLabelMapper::urlResourceLabelFromColorLabel(long colorLabel) {
  return colorLabel >= 0 && colorLabel < 8 ? kToResource[std::size_t(colorLabel)] : 0;
}

std::optional<std::string> MCColorLabelMapper::nameOfColorLabel(long label) {
  if (label < 1 || label > 7) return std::nullopt;
  return kNames[label - 1];
}

long MCColorLabelMapper::colorLabelOfName(const std::string& name) {
  auto lower = [](std::string s) {
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return s;
  };
  for (long i = 0; i < 7; ++i)
    if (lower(kNames[i]) == lower(name)) return i + 1;
  return 0;
}

std::filesystem::path MCColorLabelMapper::sidecarOfFile(const std::filesystem::path& file) {
  std::filesystem::path sidecar = file;
  return sidecar.replace_extension("xmp");
}

long MCColorLabelMapper::labelOfFile(const std::filesystem::path& file) {
  std::ifstream in(sidecarOfFile(file), std::ios::binary);
  if (!in) return 0;
  const std::string packet((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  initializeExempi();
  XmpPtr xmp = xmp_new(packet.data(), packet.size());
  if (!xmp) return 0;
  long label = 0;
  XmpStringPtr value = xmp_string_new();
  if (xmp_get_property(xmp, NS_XAP, "Label", value, nullptr)) label = colorLabelOfName(xmp_string_cstr(value));
  xmp_string_free(value);
  xmp_free(xmp);
  return label;
}

bool MCColorLabelMapper::setLabelOfFile(const std::filesystem::path& file, long label) {
  initializeExempi();
  const std::filesystem::path sidecar = sidecarOfFile(file);
  XmpPtr xmp = nullptr;
  if (std::ifstream in(sidecar, std::ios::binary); in) {
    const std::string packet((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    xmp = xmp_new(packet.data(), packet.size());
    if (!xmp) return false;  // a sidecar that cannot be read is not overwritten
  } else {
    xmp = xmp_new_empty();
  }
  if (auto name = nameOfColorLabel(label)) xmp_set_property(xmp, NS_XAP, "Label", name->c_str(), 0);
  else xmp_delete_property(xmp, NS_XAP, "Label");
  XmpStringPtr out = xmp_string_new();
  const bool serialized = xmp_serialize(xmp, out, XMP_SERIAL_OMITPACKETWRAPPER, 0);
  bool written = false;
  if (serialized) {
    // Whole or not at all: a temporary beside the sidecar, renamed over it.
    const std::filesystem::path temporary = sidecar.string() + ".tmp";
    std::ofstream os(temporary, std::ios::binary | std::ios::trunc);
    os << xmp_string_cstr(out);
    os.close();
    std::error_code ec;
    if (os) std::filesystem::rename(temporary, sidecar, ec);
    written = os && !ec;
    if (!written) std::filesystem::remove(temporary, ec);
  }
  xmp_string_free(out);
  xmp_free(xmp);
  return written;
}
