# Sourced by ./run and ./test: go to the root of the repository, install what is missing, configure and build.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The packages of cmake/packages.txt that are not installed yet. Asks only dpkg, so that it is quick and offline.
missing_packages() {
  local package
  while read -r package; do
    [[ -z $package || $package == \#* ]] && continue
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || echo "$package"
  done < cmake/packages.txt
}

install_packages() {
  local missing
  mapfile -t missing < <(missing_packages)
  [[ ${#missing[@]} == 0 ]] && return
  local apt=(env DEBIAN_FRONTEND=noninteractive apt-get -y -q)
  if [[ $EUID != 0 ]]; then
    command -v sudo >/dev/null || { echo "error: not root, and not installed: ${missing[*]}" >&2; exit 1; }
    apt=(sudo "${apt[@]}")
  fi
  echo "Installing: ${missing[*]}"
  "${apt[@]}" update
  "${apt[@]}" install --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET...]: configures once (the generator notices later changes by itself) and builds.
build() {
  local directory=build
  [[ $1 == debug ]] && directory=build-debug
  [[ $1 == sanitizers ]] && directory=build-asan
  [[ -f $directory/build.ninja ]] || cmake --preset "$1"
  local targets=("${@:2}")
  cmake --build --preset "$1" ${targets[@]+--target "${targets[@]}"}
}

install_packages
