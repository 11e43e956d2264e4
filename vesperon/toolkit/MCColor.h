#pragma once
// MCColor: a colour as views use it — sRGB components and alpha, each 0 to 1 — with the named
// colours of the desktop that the library's views draw with.
//
// The named colours follow the Adwaita palette of GNOME (light style), the look most Linux photo
// programs share: the accent is Adwaita's blue, labels are near-black with the platform's
// secondary and tertiary alphas.

class MCGraphicsContext;

class MCColor {
 public:
  constexpr MCColor() = default;
  /// An sRGB colour of components from 0 to 1.
  constexpr MCColor(double red, double green, double blue, double alpha = 1.0)
      : red_(red), green_(green), blue_(blue), alpha_(alpha) {}

  /// A gray of `white` (0 black, 1 white).
  static constexpr MCColor colorWithWhite(double white, double alpha) { return {white, white, white, alpha}; }
  /// From 0xRRGGBB.
  static constexpr MCColor colorWithHex(unsigned rgb, double alpha = 1.0) {
    return {((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0, alpha};
  }

  /// @name Components
  //@{
  /// The sRGB components and the alpha, 0 to 1.
  constexpr double redComponent() const { return red_; }
  constexpr double greenComponent() const { return green_; }
  constexpr double blueComponent() const { return blue_; }
  constexpr double alphaComponent() const { return alpha_; }
  //@}
  /// The same colour with another alpha.
  constexpr MCColor colorWithAlphaComponent(double alpha) const { return {red_, green_, blue_, alpha}; }
  /// The colour mixed with `other` by `fraction` (0 keeps this colour, 1 gives the other).
  constexpr MCColor blendedColorWithFraction(double fraction, const MCColor& other) const {
    return {red_ + (other.red_ - red_) * fraction, green_ + (other.green_ - green_) * fraction,
            blue_ + (other.blue_ - blue_) * fraction, alpha_ + (other.alpha_ - alpha_) * fraction};
  }

  /// Makes this the fill or the stroke colour of the context.
  void setFill(MCGraphicsContext& context) const;
  /// Makes the colour the context's stroke colour.
  void setStroke(MCGraphicsContext& context) const;
  /// Makes the colour the context's fill and stroke colour.
  void set(MCGraphicsContext& context) const { setFill(context); setStroke(context); }

  /// Whether all four components are equal.
  constexpr bool operator==(const MCColor&) const = default;

  // Plain colours.
  /// @name Plain colours
  //@{
  /// Fixed colours: transparent, black, white, 50 % gray, and the primaries and secondaries.
  static constexpr MCColor clearColor() { return {0, 0, 0, 0}; }
  static constexpr MCColor blackColor() { return {0, 0, 0, 1}; }
  static constexpr MCColor whiteColor() { return {1, 1, 1, 1}; }
  static constexpr MCColor grayColor() { return {0.5, 0.5, 0.5, 1}; }
  static constexpr MCColor redColor() { return {1, 0, 0, 1}; }
  static constexpr MCColor greenColor() { return {0, 1, 0, 1}; }
  static constexpr MCColor blueColor() { return {0, 0, 1, 1}; }
  static constexpr MCColor yellowColor() { return {1, 1, 0, 1}; }
  static constexpr MCColor orangeColor() { return {1, 0.5, 0, 1}; }
  //@}

  // The desktop's named colours.
  /// @name System colours
  //@{
  /// The named system colours the views draw with, as the desktop's light theme has them: the
  /// accent and selection backgrounds, window and control backgrounds, four levels of label text,
  /// text, separators, the grid and the scroller knob.
  static constexpr MCColor controlAccentColor() { return colorWithHex(0x3584E4); }
  static constexpr MCColor selectedContentBackgroundColor() { return colorWithHex(0x3584E4); }
  static constexpr MCColor unemphasizedSelectedContentBackgroundColor() { return colorWithHex(0xDEDDDA); }
  static constexpr MCColor windowBackgroundColor() { return colorWithHex(0xFAFAFA); }
  static constexpr MCColor controlBackgroundColor() { return colorWithHex(0xFFFFFF); }
  static constexpr MCColor underPageBackgroundColor() { return colorWithHex(0xEBEBEB); }
  static constexpr MCColor labelColor() { return {0, 0, 0, 0.85}; }
  static constexpr MCColor secondaryLabelColor() { return {0, 0, 0, 0.5}; }
  static constexpr MCColor tertiaryLabelColor() { return {0, 0, 0, 0.26}; }
  static constexpr MCColor quaternaryLabelColor() { return {0, 0, 0, 0.1}; }
  static constexpr MCColor textColor() { return blackColor(); }
  static constexpr MCColor selectedTextColor() { return whiteColor(); }
  static constexpr MCColor separatorColor() { return {0, 0, 0, 0.1}; }
  static constexpr MCColor gridColor() { return colorWithHex(0xE6E6E6); }
  static constexpr MCColor scrollerKnobColor() { return {0, 0, 0, 0.45}; }
  //@}

 private:
  double red_ = 0, green_ = 0, blue_ = 0, alpha_ = 0;
};
