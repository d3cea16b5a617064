# Sourced by ./run and ./test, with `root` set to the top of the work tree. Everything it prints
# goes to stderr, and a machine that is set up is left untouched.

log=$root/build/setup.log

say() { printf '%s\n' "$*" >&2; }

die() {
  say "$*"
  exit 1
}

# quietly WHAT COMMAND...: the command's output goes to the log; a failure shows the end of it.
quietly() {
  local what=$1 status=0 before
  shift
  before=$(wc -l <"$log")
  "$@" >>"$log" 2>&1 </dev/null || status=$?
  [ "$status" = 0 ] && return
  tail -n "+$((before + 1))" "$log" | tail -n 100 >&2
  say
  say "$what failed (exit code $status); the whole output is in $log"
  exit 1
}

# Packages of the groups named that neither dpkg nor a command of another origin provides.
missing_packages() {
  local -A wanted=()
  local package group command state
  while read -r package group command; do
    [[ -z $package || $package == '#'* || " $* " != *" $group "* ]] && continue
    [ -n "$command" ] && type -P "$command" >/dev/null && continue
    wanted[$package]=1
  done <"$root/scripts/debian-packages.txt"
  [ ${#wanted[@]} = 0 ] && return
  while read -r package state; do
    [ "$state" = installed ] && unset "wanted[$package]"
  done < <(dpkg-query -W -f '${Package} ${db:Status-Status}\n' "${!wanted[@]}" 2>/dev/null)
  [ ${#wanted[@]} = 0 ] || printf '%s\n' "${!wanted[@]}" | LC_ALL=C sort
}

apt_install() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "$@"
}

# The package lists may be absent or too old for the mirror: they are fetched when that shows.
apt_install_fresh() {
  apt_install "$@" && return
  "${as_root[@]}" apt-get update && apt_install "$@"
}

# setup_packages GROUP...
setup_packages() {
  if ! type -P dpkg-query >/dev/null; then
    say "This is no Debian system; scripts/debian-packages.txt lists what has to be there."
    return
  fi
  local missing as_root=()
  missing=$(missing_packages "$@")
  [ -z "$missing" ] && return
  missing=${missing//$'\n'/ }
  if [ "$(id -u)" != 0 ]; then
    type -P sudo >/dev/null && sudo -n true 2>/dev/null ||
      die "These Debian packages are missing; install them as root and start again:
  apt-get install --no-install-recommends $missing"
    as_root=(sudo -n)
  fi
  say "Installing Debian packages: $missing"
  # shellcheck disable=SC2086
  quietly "Installing Debian packages" apt_install_fresh $missing
}

# The grammars, as grammars/package-lock.json pins them.
setup_grammars() {
  local lock=$root/grammars/package-lock.json stamp=$root/grammars/node_modules/.installed-lock
  cmp -s "$lock" "$stamp" && return
  say "Installing the tree-sitter grammars"
  quietly "npm ci" npm --prefix "$root/grammars" ci --ignore-scripts
  cp "$lock" "$stamp"
}

# setup GROUP...: what ./run and ./test do first. One of them at a time works on the build folder;
# the lock is held until unlock_build, or until the caller ends.
setup() {
  mkdir -p "$root/build"
  exec 9>"$root/build/.lock"
  flock 9
  : >"$log"
  setup_packages "$@"
  setup_grammars
}

unlock_build() { exec 9>&-; }

# configure PRESET: only the first time, and afresh when the presets changed or the work tree moved;
# CMake itself watches the rest.
configure() {
  local stamp=$root/build/$1/.configured
  [ "$stamp" -nt "$root/CMakePresets.json" ] && [ "$(<"$stamp")" = "$root" ] && return
  say "Configuring build/$1"
  (cd "$root" && quietly "Configuring" cmake --fresh --preset "$1")
  printf '%s' "$root" >"$stamp"
}

# build PRESET [TARGET...]
build() {
  local preset=$1
  shift
  (cd "$root" && quietly "The build" \
    cmake --build "build/$preset" --parallel "$(nproc)" ${1:+--target "$@"})
}
