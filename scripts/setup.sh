# shellcheck shell=bash
# Sourced by the scripts beside it: goes to the repository's root, and has the common steps.

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

# step TEXT: says what comes next.
step() { printf '\n== %s\n' "$*"; }

# run COMMAND...: shows the command, then runs it, so that everybody can repeat it by hand.
run() {
  printf '+ %s\n' "$*"
  "$@"
}

# packages KIND...: the names in packages.txt that are for one of the kinds.
packages() {
  local name kind _
  while read -r name kind _; do
    case " $* " in *" $kind "*) echo "$name" ;; esac
  done < <(grep -v '^#' scripts/packages.txt)
}

# ensure_packages KIND...: installs what is missing, or says what is and stops.
ensure_packages() {
  local wanted missing
  mapfile -t wanted < <(packages "$@")
  step "Debian packages: ${wanted[*]}"
  if [ -n "${TALVO_PACKAGES_READY:-}" ]; then
    echo "Not checked, since TALVO_PACKAGES_READY is set."
    return
  fi
  if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    echo "This system does not install software with apt, so please install what the packages above hold (these are"
    echo "Debian's names; scripts/packages.txt tells what each is for). Then run:"
    echo "  TALVO_PACKAGES_READY=1 $0"
    exit 1
  fi >&2
  # comm wants both lists sorted the same way.
  mapfile -t missing < <(LC_ALL=C comm -23 <(printf '%s\n' "${wanted[@]}" | LC_ALL=C sort) <(installed_packages))
  if [ ${#missing[@]} -eq 0 ]; then
    echo "All of them are installed."
    return
  fi
  echo "Missing: ${missing[*]}"
  local as_root
  if [ "$(id -u)" -eq 0 ]; then
    as_root=()
  elif command -v sudo >/dev/null; then
    as_root=(sudo)
  else
    echo "Installing them takes root, and there is no sudo here. Please have somebody run as root:" >&2
    echo "  apt-get install ${missing[*]}" >&2
    exit 1
  fi
  run "${as_root[@]}" apt-get update
  run "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
}

installed_packages() {
  # shellcheck disable=SC2016  # ${...} is dpkg's
  dpkg-query -W -f '${db:Status-Status} ${Package}\n' | sed -n 's/^installed //p' | LC_ALL=C sort -u
}

# build PRESET: into build/PRESET.
build() {
  step "Building with the preset '$1' in build/$1"
  run cmake --preset "$1"
  run cmake --build --preset "$1"
}
