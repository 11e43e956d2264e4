#pragma once
// The colours of `vesperon browse`'s grid, in a light and a dark scheme, chosen by the desktop's
// colour-scheme preference (the settings portal's org.freedesktop.appearance color-scheme, else
// GTK's prefer-dark setting) or by --color-scheme. Every text colour keeps a contrast of at least
// 4.5:1 on the background it is drawn on (WCAG's ratio of relative luminances).

#include <vesperon/toolkit/MCColor.h>

#include <optional>
#include <string>

struct BrowsePalette {
  bool dark = false;
  MCColor background;      ///< behind the cards
  MCColor card;            ///< a card's face
  MCColor text;            ///< names, day titles
  MCColor secondaryText;   ///< date lines, counts
  MCColor separator;
  MCColor bar;             ///< the status bar and the sidebar
  MCColor barText;
  MCColor placeholder;     ///< a card's picture while it loads
  MCColor placeholderText;
  MCColor link;
  MCColor noticeBackground;  ///< the notice over the grid (Undo …), a shade apart from the cards
  MCColor noticeText;
  MCColor noticeAction;

  static BrowsePalette light();
  static BrowsePalette darkPalette();
  /// "light", "dark"; none for anything else.
  static std::optional<BrowsePalette> named(const std::string& name);

  /// What the desktop prefers, asked of the settings portal (a short wait at most): dark, light,
  /// or none when it says nothing.
  static std::optional<bool> desktopPrefersDark();

  /// WCAG's contrast ratio of two opaque colours, from 1 to 21.
  static double contrast(const MCColor& a, const MCColor& b);
  /// The colour as it shows over an opaque background.
  static MCColor over(const MCColor& color, const MCColor& background);
};
