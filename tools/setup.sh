# Shared by ./run and ./test: packages, stages with their times, failures with their cause.
# Read into bash with the project's folder as the working directory.

set -euo pipefail
export LC_ALL=C

logs=build/logs

die() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

as_root() {
  if [[ $EUID -eq 0 ]]; then
    "$@"
  else
    command -v sudo >/dev/null || die "not root and no sudo; as root, run: $*"
    sudo "$@"
  fi
}

is_installed() { [[ $(dpkg-query -W -f='${db:Status-Abbrev}' "$1" 2>/dev/null) == ii* ]]; }

# A mirror in the middle of an update gives some lists only: tried again, and then what is there
# must do; a package that is really missing fails at its installation.
read_package_lists() {
  for wait in 5 15 0; do
    as_root apt-get update -o Acquire::Retries=3 && return
    sleep "$wait"
  done
}

# install_packages WHY PACKAGE...: installs those that are missing, and says so.
install_packages() {
  local why=$1 package
  shift
  command -v dpkg-query >/dev/null || die "this is not Debian or Ubuntu; $why, install: $*"
  local missing=()
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  [[ ${#missing[@]} -gt 0 ]] || return 0
  echo "installing with apt-get, $why: ${missing[*]}"
  if [[ ${missing[*]} == *:i386* ]] && ! dpkg --print-foreign-architectures | grep -qx i386; then
    as_root dpkg --add-architecture i386
    lists_read=
  fi
  [[ -n ${lists_read-} ]] || stage "package lists" read_package_lists
  lists_read=yes
  stage "packages" as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends -o Acquire::Retries=3 "${missing[@]}"
}

# need_version NAME FOUND LEAST
need_version() {
  [[ $(printf '%s\n' "$3" "$2" | sort -V | head -n 1) == "$3" ]] ||
    die "$1 is $2; $3 or newer is needed (Debian 12, Ubuntu 24.04 or newer have it)"
}

check_versions() {
  need_version cmake "$(cmake --version | awk 'NR == 1 {print $3}')" 3.25
  need_version g++ "$(g++ -dumpfullversion)" 12
}

# stage NAME COMMAND...: runs it with its output in a log; one line with the time it took, or the
# log's end and the end of all.
stage() {
  local name=$1 start=$SECONDS
  shift
  mkdir -p "$logs"
  local log=$logs/${name//[^a-z0-9]/-}.log
  printf '%-34s' "$name"
  if ! "$@" >"$log" 2>&1 </dev/null; then
    echo "FAILED after $((SECONDS - start)) s"
    tail -n 60 "$log" >&2
    die "$name failed; the whole output is in $log"
  fi
  echo "$((SECONDS - start)) s"
}

# configure PRESET [OPTION...]: configures build/PRESET when these options have not done so yet.
# Later changes of CMake's own files are ninja's affair.
configure() {
  local preset=$1 stamp=build/$1/configured
  [[ -f build/$preset/build.ninja && $(cat "$stamp" 2>/dev/null) == "$*" ]] && return
  stage "$preset: configure" cmake --preset "$@"
  echo "$*" >"$stamp"
}
