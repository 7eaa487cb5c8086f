# shellcheck shell=bash
# Steps that the scripts share. To be sourced in the project's root folder.

# buildPreset PRESET [CMAKE ARGUMENT...]: configures and builds into build/PRESET.
buildPreset()
{
  local preset=$1
  shift
  echo "Building build/$preset"
  cmake --preset "$preset" -DMEDIAPLAYER_HOSTS=ON -DMEDIAPLAYER_TESTS=ON \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON "$@" >/dev/null \
    || { echo "$0: configuring build/$preset failed" >&2; return 1; }
  cmake --build --preset "$preset" -- --quiet \
    || { echo "$0: building build/$preset failed" >&2; return 1; }
}

# installScene: the scene files have a fixed path, so they are installed for a run out of the build
# folder too. Touches nothing that is up to date.
installScene()
{
  local file target=/opt/VexadorControl
  for file in qml/*.qml; do
    cmp -s "$file" "$target/${file##*/}" && continue
    echo "Installing $target/${file##*/}"
    install -D -m 644 -t "$target" "$file" && continue
    echo "$0: $target cannot be written, run as root" >&2
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
