# The packages of the distribution that the scripts need, and installing those that are missing.
# To be sourced.

build_packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev libgl1-mesa-dev qt6-svg-dev qcoro-qt6-dev nlohmann-json3-dev
  libpng-dev zlib1g-dev libsecret-1-dev libxcb1-dev x11proto-dev libxkbcommon-x11-dev
  libwayland-dev libwayland-bin
)
run_packages=(
  qt6-wayland libqt6svg6 qt6-image-formats-plugins curl openssh-client expect xdg-utils
)
desktop_packages=(
  dbus python3 python3-gi libglib2.0-bin gnome-keyring libsecret-tools
  xvfb xauth x11-utils x11-xserver-utils xdotool xclip imagemagick
  openbox lxqt-panel lxqt-themes dunst
  fonts-dejavu-core fonts-noto-color-emoji
  python3-asyncssh
)
sway_packages=(
  sway swaybg waybar mako-notifier grim wl-clipboard
)
style_packages=(
  clang-format-16 clang-tidy-16
)
test_packages=(
  dbus-x11 python3-dbus python3-dbusmock python3-pyftpdlib
  openssl trayer x11-xkb-utils strace libxcb-xtest0-dev xserver-xephyr
  gir1.2-gtk-3.0 python3-xlib pcmanfm-qt thunar xfce4-settings xfconf
  at-spi2-core dex
  xwayland kwin-wayland mutter wev
  desktop-file-utils appstream mandoc binutils
)
package_packages=(
  debhelper dpkg-dev git lintian
)
chroot_packages=(
  debootstrap util-linux
)

# GNOME with its own portal and dialogs, and what kwin had within before: its service of shortcuts,
# and the one that tells of windows.
debian13_packages=(
  gnome-shell gnome-control-center xdg-desktop-portal xdg-desktop-portal-gnome
  kwin-common
)

# Installs those of the packages that are missing; asks the package manager only if some are.
install_packages() {
  local installed missing=() package
  installed=$(dpkg-query -W -f '${Package}:${db:Status-Status}\n' "$@" 2>/dev/null || true)
  for package in "$@"; do
    grep -qx -- "$package:installed" <<<"$installed" || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  echo "Installing ${#missing[@]} packages: ${missing[*]}"
  as_root apt-get -q update
  as_root apt-get -q install -y --no-install-recommends "${missing[@]}"
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    env DEBIAN_FRONTEND=noninteractive "$@"
  else
    sudo env DEBIAN_FRONTEND=noninteractive "$@"
  fi
}
