# Shared by the scripts in tools/. Source it; it sets `root`, the absolute path of the source tree.
# shellcheck shell=bash

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)

# say TEXT...: a line for the person at the terminal. Standard output is kept for results.
say() {
  printf '%s\n' "$*" >&2
}

# die TEXT...: say why and leave with status 2.
die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 2
}

# build_preset PRESET [TARGET...]: configure and build, everything when no target is named.
build_preset() {
  local preset=$1
  shift
  local targets=()
  if (($# > 0)); then
    targets=(--target "$@")
  fi
  # CMake finds the presets in the working directory.
  (
    cd "$root" || exit
    cmake --preset "$preset" >&2
    cmake --build --preset "$preset" "${targets[@]}" >&2
  )
}

# list_sources FOLDER...: the C++ files in the folders, those that git does not know yet among them; each ends with a
# NUL character. Call it in the root of the source tree.
list_sources() {
  local file
  git ls-files -z --cached --others --exclude-standard -- "${@/%//*.cpp}" "${@/%//*.h}" |
    while IFS= read -r -d '' file; do
      # git still lists a file that was just removed.
      if [[ -e $file ]]; then
        printf '%s\0' "$file"
      fi
    done
}
