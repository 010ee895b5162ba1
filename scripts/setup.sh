# Sourced by play, install, test and the scripts beside it: installs the packages that are missing and builds a preset.
# Quiet when there is nothing to do.

packages="g++ cmake ninja-build make pkg-config git libpoco-dev libboost-dev libfftw3-dev
 libsndfile1-dev libcli11-dev nlohmann-json3-dev libgtest-dev libbenchmark-dev alsa-utils dpkg-dev file
 python3 python3-jsonschema python3-websocket"

# install_clang: the second compiler, for lint and fuzzers.
install_clang() { packages="clang clang-format clang-tidy libclang-rt-14-dev" install_packages; }

# install_page: fetches what the display page is drawn with.
install_page() { install_node_packages web; }

# install_browser: what the page is tested in, and what drives it.
install_browser() {
  command -v chromium >/dev/null || packages="chromium" install_packages || return $?
  install_page && install_node_packages tests/web
}

# install_node_packages FOLDER: what its lock file names, once; needs node and npm, which it installs if missing.
install_node_packages() {
  local done="$1/node_modules/.package-lock.json"  # npm writes it last: what an interrupted run has left has none
  [ "$done" -nt "$1/package-lock.json" ] && return 0
  command -v npm >/dev/null || packages="nodejs npm" install_packages || return $?
  local log
  log=$(mktemp)
  if ! npm ci --prefix "$1" --no-audit --no-fund >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 2
  fi
  touch "$done"
  rm -f "$log"
}

# install_packages: installs what is missing of $packages, without a question; nothing to do takes a fraction of a second.
install_packages() {
  local missing=""
  local package
  for package in $packages; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -q '^installed' || missing="$missing $package"
  done
  [ -z "$missing" ] && return 0
  local as_root=""
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "packages are missing and there is no sudo to install them:$missing" >&2; return 2; }
    as_root="sudo"
  fi
  echo "installing:$missing" >&2
  local log
  log=$(mktemp)
  if ! { $as_root apt-get update -qq && $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
    --no-install-recommends $missing; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 2
  fi
  rm -f "$log"
}

# build PRESET [TARGET...]: configures the preset and builds it; prints only what goes wrong.
build() {
  local preset=$1
  shift
  local log="build/$preset.log"
  mkdir -p build
  [ -d "build/$preset" ] || echo "building ($preset), a few minutes the first time" >&2
  if ! { cmake --preset "$preset" && cmake --build "build/$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    return 2
  fi
}
