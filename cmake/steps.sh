# shellcheck shell=bash
# Steps that the scripts share. To be sourced in the project's root folder.

: "${sceneDir:=/opt/VexadorControl}" # where the library looks for its scene files

# buildPreset PRESET: configures and builds into build/PRESET.
buildPreset()
{
  local preset=$1
  echo "Building build/$preset"
  # Ninja knows by itself when any other of CMake's files has changed.
  [[ build/$preset/build.ninja -nt CMakePresets.json ]] || cmake --preset "$preset" >/dev/null \
    || { echo "$0: configuring build/$preset failed" >&2; return 1; }
  NINJA_STATUS='[%f of %t, %e s] ' cmake --build --preset "$preset" \
    || { echo "$0: building build/$preset failed" >&2; return 1; }
}

# installScene: the scene files have a fixed path, so they are installed for a run out of the build
# folder too; under DESTDIR, where there is one. Touches nothing that is up to date.
installScene()
{
  local file target=${DESTDIR-}$sceneDir
  for file in qml/*.qml; do
    cmp -s "$file" "$target/${file##*/}" && continue
    echo "Installing $target/${file##*/}"
    install -D -m 644 -t "$target" "$file" && continue
    echo "The scene files cannot be written, and without them every picture is black. As root:" >&2
    echo "  install -D -m 644 -t $target $PWD/qml/*.qml" >&2
    return 1
  done
}

# headless COMMAND...: runs it on a display of its own and without sound devices, whose probing
# takes seconds and prints noise where there are none.
headless()
{
  QT_QPA_PLATFORM=xcb \
    GST_PLUGIN_FEATURE_RANK=pulsesink:NONE,alsasink:NONE,openalsink:NONE,osssink:NONE,oss4sink:NONE,jackaudiosink:NONE,pipewiresink:NONE \
    xvfb-run -a -s "-screen 0 1280x720x24" "$@"
}

# privateFolder: makes one with a short name that goes when the script ends, and puts its name into
# `folder`. It is also the runtime folder that Qt asks for.
privateFolder()
{
  folder=$(mktemp -d)
  trap 'rm -rf "$folder"' EXIT
}
