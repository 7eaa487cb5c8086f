# shellcheck shell=bash disable=SC2034
# What the project needs from Debian 12, for the scripts that source this file. The one list.

packagesBuild=(
  cmake g++ libgstreamer-plugins-base1.0-dev libgstreamer1.0-dev ninja-build pkg-config
  qt6-base-dev qt6-declarative-dev qt6-declarative-dev-tools
)
packagesRun=(
  fonts-dejavu-core gstreamer1.0-gl gstreamer1.0-libav gstreamer1.0-plugins-base
  gstreamer1.0-plugins-good gstreamer1.0-qt6 libgl1-mesa-dri qml6-module-qtqml
  qml6-module-qtqml-workerscript qml6-module-qtquick qml6-module-qtquick-window
)
# What the Qt Quick host's own user interface is made of.
packagesHosts=(
  qml6-module-qt-labs-folderlistmodel qml6-module-qtqml-models qml6-module-qtquick-controls
  qml6-module-qtquick-dialogs qml6-module-qtquick-layouts qml6-module-qtquick-templates
)
# A display without a screen, and what makes sample media.
packagesHeadless=(gstreamer1.0-tools xauth xvfb)
packagesTest=(
  binutils dpkg-dev file gstreamer1.0-plugins-bad gstreamer1.0-plugins-ugly util-linux
)
packagesLint=(clang-format clang-tidy git shellcheck)

# needPackages PACKAGE...: installs those that are missing; without root, says which they are.
needPackages()
{
  local package missing=()
  for package in "$@"; do
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] \
      || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  if ((EUID)); then
    echo "$0: these packages are missing, and only root can install them: ${missing[*]}" >&2
    return 1
  fi
  echo "Installing ${missing[*]}"
  local log
  log=$(mktemp)
  if ! { apt-get -q update && DEBIAN_FRONTEND=noninteractive \
    apt-get -qy install --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    echo "$0: the packages could not be installed" >&2
    return 1
  fi
  rm "$log"
}
