#!/usr/bin/env bash
# Installs the build into a folder of its own and uses it from outside, as others do. ctest sets:
# QOR_SOURCES, QOR_BUILD; QOR_BUILT and QOR_RUNNABLE (levels, as "v1 v3"); CC, CXX, CMAKE, PKG_CONFIG.
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
lib=$prefix/lib

fail() {
  echo "failed: $*" >&2
  exit 1
}

expect() { # expect WANTED GOT WHAT
  [[ $1 == "$2" ]] || fail "$3: wanted '$1', got '$2'"
}

# The library file that the loader starts PROGRAM with, by its own debug output.
loaded_file() { # loaded_file LOADER_MASK_OR_EMPTY PROGRAM ...
  local mask=$1
  shift
  local loader=/lib64/ld-linux-x86-64.so.2
  LD_DEBUG=libs LD_LIBRARY_PATH=$lib "$loader" ${mask:+--glibc-hwcaps-mask "$mask"} "$@" 2>&1 \
    >/dev/null | sed -n 's/.*calling init: \(.*libqor_ark_base.*\)/\1/p'
}

folder_of_level() {
  if [[ $1 == v1 || $1 == "$QOR_BUILT" ]]; then echo "$lib"; else
    echo "$lib/glibc-hwcaps/x86-64-$1"
  fi
}

check_files() {
  "$CMAKE" --install "$QOR_BUILD" --prefix "$prefix" >"$work/install.log"
  local level
  for level in $QOR_BUILT; do
    [[ -e $(folder_of_level "$level")/libqor_ark_base.so.1 ]] || fail "no library of level $level"
  done
}

check_cmake_project() {
  "$CMAKE" -G Ninja -S "$QOR_SOURCES/tests/install/consumer" -B "$work/consumer" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
    >"$work/cmake.log" || fail "find_package: $(cat "$work/cmake.log")"
  "$CMAKE" --build "$work/consumer" >"$work/build.log" 2>&1 || fail "$(cat "$work/build.log")"
  "$work/consumer/rows"
  expect "2.718, refused: y: 1 elements; 2 are accepted, as many as a has" \
    "$("$work/consumer/header")" "the C++ header"
  if [[ -e $lib/libqor_team.so.1 ]]; then
    expect "11111" "$("$work/consumer/team")" "the team of threads"
    expect "qor_team_openmp" "$(nm -D --defined-only "$lib/libqor_team.so.1" | awk '{print $3}')" \
      "names exported by the team"
  fi
}

# The example of the README, built by the line that stands there, prints what stands there.
check_readme_example() {
  block() { awk -v want="$1" '$0 == "```" {on = 0} on {print} $0 == "```" want {on = 1}' \
    "$QOR_SOURCES/README.md"; }
  cd "$work"
  block c >example.c
  local line
  line=$(block sh | grep 'pkg-config') || fail "no pkg-config line in the README"
  line=${line/#cc /"$CC" }
  line=${line//pkg-config/"$PKG_CONFIG"}
  PKG_CONFIG_PATH=$lib/pkgconfig bash -c "$line"
  expect "$(block text)" "$(LD_LIBRARY_PATH=$lib ./example)" "output of the README's example"
}

# LD_LIBRARY_PATH on the install is enough for the loader to pick the level of the machine.
check_levels() {
  local level best masks
  best=${QOR_RUNNABLE##* }
  expect "$(folder_of_level "$best")/libqor_ark_base.so.1" "$(loaded_file "" "$work/example")" \
    "the level of this machine"
  for level in $QOR_RUNNABLE; do
    masks=x86-64-$level
    expect "$(folder_of_level "$level")/libqor_ark_base.so.1" \
      "$(loaded_file "$masks" "$work/example")" "a machine of level $level"
    echo "level $level: $(loaded_file "$masks" "$work/example")"
  done
}

# The rows, in table order, are one array; their names and those of the entries are all there.
check_names() {
  local file=$1 address size kind name type function offset=0 base="" la ep
  declare -A at bytes
  while read -r address size kind name; do
    at[$name]=$((16#$address)) bytes[$name]=$((16#$size))
    : "$kind"
  done < <(nm -D -S --defined-only "$file" | awk 'NF == 4 {sub(/@.*/, "", $4); print}')
  while read -r type function; do
    [[ -n $function ]] || continue
    local ttab=qor_ark_kernel_${function}_ttab ctab=qor_ark_kernel_${function}_ctab
    base=${base:-${at[$ttab]}}
    expect "$((base + offset)) 24" "${at[$ttab]-} ${bytes[$ttab]-}" "place and size of $ttab"
    expect "$((base + offset + 24)) 12" "${at[$ctab]-} ${bytes[$ctab]-}" "place and size of $ctab"
    offset=$((offset + 40))
    case $type in s | c) la=_21 ep=_11 ;; *) la=_50 ep=_26 ;; esac
    expect "${at[_ark$function]-none}" "${at[_ark${function}_HA]-}" "_ark$function and its HA form"
    for name in "_ark$function$la" "_ark$function$ep"; do
      [[ -n ${at[$name]-} ]] || fail "no entry $name in $file"
    done
  done < <("$CC" -E -P -x c -I"$prefix/include" "$QOR_SOURCES/tests/install/names.in" | tr -d '\n' |
    tr '@' '\n' && echo)
  echo "$((offset / 40)) rows in their places in $file"
}

# What the headers declare is there, of this version, and nothing else.
check_exports() {
  expect "$(sed -n 's/^    \([A-Za-z0-9_]*\);$/\1@@QOR_1/p' "$QOR_BUILD/qor_ark_base.map" | sort)" \
    "$(nm -D --defined-only "$1" | awk '$3 != "QOR_1" {print $3}' | sort)" "names exported by $1"
}

# Estimates of reciprocals and roots have other bits on the processors of another maker.
check_instructions() {
  local found
  found=$(objdump -d --no-show-raw-insn "$1" | grep -E '\sv?(rcp|rsqrt)(14|28)?[ps][sd]\s' || true)
  expect "" "$found" "instructions whose results depend on the processor in $1"
}

check_command() {
  local command=$prefix/bin/qor
  (cd "$work" && "$command" tour) | grep "data .*$prefix/share/qor_ark_base/data" >/dev/null ||
    fail "the installed command does not find its installed data"
  expect "Exp(x)" "$(printf 'x\n1\n' | "$command" map exp /dev/stdin | head -n 1)" "qor map"
}

check_files
check_cmake_project
check_readme_example
check_levels
for level in $QOR_BUILT; do
  check_names "$(folder_of_level "$level")/libqor_ark_base.so.1"
  check_exports "$(folder_of_level "$level")/libqor_ark_base.so.1"
  check_instructions "$(folder_of_level "$level")/libqor_ark_base.so.1"
done
check_command
echo "the installed copy works"
