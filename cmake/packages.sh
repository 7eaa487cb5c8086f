# shellcheck shell=bash disable=SC2034
# What the project needs from Debian, for the scripts that source this file and for the package.
# The one list, with what differs between systems at its end.

packagesBuild=(
  cmake g++ libgstreamer-plugins-base1.0-dev libgstreamer1.0-dev ninja-build pkg-config
  qt6-base-dev qt6-declarative-dev
)
# To play common files, with sound where there is a device.
packagesRun=(
  fonts-dejavu-core gstreamer1.0-alsa gstreamer1.0-gl gstreamer1.0-libav gstreamer1.0-plugins-bad
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-qt6 libgl1-mesa-dri
  qml6-module-qtqml qml6-module-qtqml-workerscript qml6-module-qtquick qml6-module-qtquick-window
)
# What the Qt Quick host's own user interface is made of.
packagesHosts=(
  qml6-module-qt-labs-folderlistmodel qml6-module-qtqml-models qml6-module-qtquick-controls
  qml6-module-qtquick-dialogs qml6-module-qtquick-layouts qml6-module-qtquick-templates
)
# A display without a screen, and what makes sample media.
packagesHeadless=(gstreamer1.0-tools xauth xvfb)
packagesTest=(binutils dpkg-dev file gstreamer1.0-plugins-ugly mount util-linux)
packagesLint=(clang clang-format clang-tidy git qt6-declarative-dev-tools shellcheck)
packagesSystems=(debian-archive-keyring mmdebstrap util-linux) # for ./test --on

packagesCorpus=(
  ffmpeg gstreamer1.0-plugins-base-apps mpv python3 qml-qt6 qml6-module-qtmultimedia
) # for ./test --corpus
# Out of which ./test --corpus takes files; none of them is installed.
packagesWithMedia=(
  alsa-utils ardentryst asc-music asterisk-moh-opsound-wav boswars-data csound-doc devede
  drascula-music eiskaltdcpp-sounds extremetuxracer-data forensics-samples-files
  fretsonfire-songs-sectoid gajim gem-doc gnome-user-docs
  golang-github-gabriel-vasile-mimetype-dev jami-daemon kodi-data libpython3.11-testsuite
  libreoffice-common linphone-common lmms-common lomiri-sounds minetest-data opencv-doc
  openshot-qt oxygen-sounds performous pidgin-data pingus-data planetblupi-common
  pocketsphinx-testdata psi-plus-sounds python3-scipy qtmultimedia5-examples r-cran-av scratch
  sonic-pi-samples sound-theme-freedesktop speech-dispatcher supercollider-common tcl-snack-doc
  teeworlds-data tuxpaint-data tuxtype-data xmoto-data
)

# 12, 13 ...; testing and unstable have no number.
system=$(. /etc/os-release && echo "${VERSION_ID-testing}")
case $system in
  12) packagesRun+=(gstreamer1.0-pulseaudio) ;; # from 13 on, -good holds what it held
esac

# needPackages PACKAGE...: installs those that are missing; without root, says which they are. Where
# packages are not Debian's, they are taken to be there under other names.
needPackages()
{
  local package missing=()
  [[ -x /usr/bin/dpkg-query ]] || return 0
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
  # Each line of apt's takes the place of the one before where somebody looks on.
  if ! { apt-get -q update && DEBIAN_FRONTEND=noninteractive apt-get -qy \
    -o DPkg::Lock::Timeout=600 -o Dpkg::Use-Pty=0 install --no-install-recommends \
    "${missing[@]}"; } 2>&1 </dev/null | tee "$log" | onOneLine; then
    cat "$log" >&2
    rm "$log"
    echo "$0: the packages could not be installed" >&2
    return 1
  fi
  rm "$log"
}

# onOneLine: shows what it reads, each line in place of the one before, on a terminal; else nothing.
onOneLine()
{
  local line
  while IFS= read -r line; do
    [[ ! -t 1 ]] || printf '\r\e[K%.*s' "$(($(tput cols) - 1))" "$line"
  done
  [[ ! -t 1 ]] || printf '\r\e[K'
}
