#!/usr/bin/env bash
# Installs every Debian package that Vesperon's build, tests, tools and benchmarks need.
# This is the one list: add a package here, nowhere else. Quiet and quick when all are present.
set -euo pipefail

PACKAGES=(
  # build
  build-essential cmake ninja-build pkg-config ccache gettext
  # the command line of the vesperon program
  libcli11-dev
  # libraries the code links
  libglib2.0-dev libcairo2-dev zlib1g-dev libpango1.0-dev liblcms2-dev
  libjpeg62-turbo-dev libpng-dev libexif-dev libexempi-dev libicu-dev libxml2-dev
  nlohmann-json3-dev libfmt-dev
  # the TIFF, WebP, HEIF and video plug-ins, and the encoders that made their samples and fixtures
  libtiff-dev libwebp-dev libheif-dev libraw-dev libavformat-dev libavcodec-dev libswscale-dev libavutil-dev
  libtiff-tools webp libheif-examples ffmpeg
  # the toolkit's GTK 4 host, and what its on-screen test drives it with
  libgtk-4-dev librsvg2-dev adwaita-icon-theme fonts-dejavu-core xvfb xauth xdotool xclip
  # and the window manager those tests run, as a desktop has one (x11-utils: xprop to wait for it)
  openbox x11-utils
  # the accessibility bus and the AT-SPI client the screen-reader test reads the views with
  at-spi2-core python3-pyatspi
  # file types and the desktop's applications (GIO), the session bus the tests start, and the
  # desktop portal a GNOME or KDE desktop has (with its FUSE document store), which GTK finds there
  shared-mime-info desktop-file-utils dbus-daemon xdg-desktop-portal-gtk
  # tests and benchmarks (a comma-decimal locale for the number-reading tests)
  locales googletest libgtest-dev libgmock-dev libbenchmark-dev
  # peers the tests and benchmarks compare against, and fuzzing
  libimage-exiftool-perl libexiv2-dev libsqlite3-dev libvips-tools imagemagick libjpeg-turbo-progs
  clang libclang-rt-14-dev hyperfine time
  # the API reference (make docs)
  doxygen
)

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'ok installed' || missing+=("$p")
done
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# A comma-decimal locale, for the tests that make sure numbers are read the same in every locale.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
  $SUDO sed -i 's/^# *de_DE.UTF-8 UTF-8/de_DE.UTF-8 UTF-8/' /etc/locale.gen
  grep -q '^de_DE.UTF-8 UTF-8' /etc/locale.gen || echo 'de_DE.UTF-8 UTF-8' | $SUDO tee -a /etc/locale.gen >/dev/null
  $SUDO locale-gen >/dev/null
fi
