#include "BrowsePalette.h"

#include <gio/gio.h>

#include <algorithm>
#include <cmath>

BrowsePalette BrowsePalette::light() {
  BrowsePalette p;
  p.dark = false;
  p.background = MCColor::colorWithHex(0xFFFFFF);
  p.card = MCColor::colorWithHex(0xEDEDEC);
  p.text = MCColor::colorWithHex(0x1E1E1E);
  p.secondaryText = MCColor::colorWithHex(0x5E5C64);
  p.separator = MCColor(0, 0, 0, 0.1);
  p.bar = MCColor::colorWithHex(0xFAFAFA);
  p.barText = MCColor::colorWithHex(0x5E5C64);
  p.placeholder = MCColor::colorWithHex(0xDEDDDA);
  p.placeholderText = MCColor::colorWithHex(0x5E5C64);
  p.link = MCColor::colorWithHex(0x1A5FB4);
  p.noticeBackground = MCColor::colorWithHex(0x303030, 0.95);
  p.noticeText = MCColor::colorWithHex(0xFFFFFF);
  p.noticeAction = MCColor::colorWithHex(0x99C1F1);
  return p;
}

BrowsePalette BrowsePalette::darkPalette() {
  BrowsePalette p;
  p.dark = true;
  p.background = MCColor::colorWithHex(0x1E1E1E);
  p.card = MCColor::colorWithHex(0x303030);
  p.text = MCColor::colorWithHex(0xF6F5F4);
  p.secondaryText = MCColor::colorWithHex(0xC0BFBC);
  p.separator = MCColor(1, 1, 1, 0.12);
  p.bar = MCColor::colorWithHex(0x242424);
  p.barText = MCColor::colorWithHex(0xC0BFBC);
  p.placeholder = MCColor::colorWithHex(0x3D3846);
  p.placeholderText = MCColor::colorWithHex(0xDEDDDA);
  p.link = MCColor::colorWithHex(0x99C1F1);
  // Lighter than the cards it floats over, as a raised surface is in a dark scheme.
  p.noticeBackground = MCColor::colorWithHex(0x505050, 0.97);
  p.noticeText = MCColor::colorWithHex(0xFFFFFF);
  p.noticeAction = MCColor::colorWithHex(0xC4DDF7);
  return p;
}

std::optional<BrowsePalette> BrowsePalette::named(const std::string& name) {
  if (name == "light") return light();
  if (name == "dark") return darkPalette();
  return std::nullopt;
}

namespace {
double channel(double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); }
double luminance(const MCColor& c) {
  return 0.2126 * channel(c.redComponent()) + 0.7152 * channel(c.greenComponent()) + 0.0722 * channel(c.blueComponent());
}
}  // namespace

double BrowsePalette::contrast(const MCColor& a, const MCColor& b) {
  const double la = luminance(a), lb = luminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

MCColor BrowsePalette::over(const MCColor& color, const MCColor& background) {
  const double a = color.alphaComponent();
  return MCColor(color.redComponent() * a + background.redComponent() * (1 - a),
                 color.greenComponent() * a + background.greenComponent() * (1 - a),
                 color.blueComponent() * a + background.blueComponent() * (1 - a), 1);
}

std::optional<bool> BrowsePalette::desktopPrefersDark() {
  GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  if (!bus) return std::nullopt;
  GError* error = nullptr;
  GVariant* reply = g_dbus_connection_call_sync(
      bus, "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "Read",
      g_variant_new("(ss)", "org.freedesktop.appearance", "color-scheme"), G_VARIANT_TYPE("(v)"),
      G_DBUS_CALL_FLAGS_NO_AUTO_START, 300, nullptr, &error);
  g_object_unref(bus);
  if (!reply) {
    if (error) g_error_free(error);
    return std::nullopt;
  }
  // The value comes wrapped once or twice in variants, as portals of different ages send it.
  GVariant* value = nullptr;
  g_variant_get(reply, "(v)", &value);
  while (value && g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) {
    GVariant* inner = g_variant_get_variant(value);
    g_variant_unref(value);
    value = inner;
  }
  std::optional<bool> dark;
  if (value && g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32)) {
    const uint32_t scheme = g_variant_get_uint32(value);  // 0 no preference, 1 dark, 2 light
    if (scheme == 1) dark = true;
    else if (scheme == 2) dark = false;
  }
  if (value) g_variant_unref(value);
  g_variant_unref(reply);
  return dark;
}
