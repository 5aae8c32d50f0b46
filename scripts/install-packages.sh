# Sourced: installs the Debian packages named by their arguments that are missing, and nothing when all are there.
install_packages() {
  local missing=()
  for package in "$@"; do
    dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "installing: ${missing[*]}"
  apt-get update -qq
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# What every build needs. vrk-window draws with whatever fonts there are; this one has the widths that patchers want.
build_packages=(g++ cmake ninja-build pkg-config libxml2-dev libpng-dev libjpeg62-turbo-dev libcli11-dev
  nlohmann-json3-dev qt6-base-dev fonts-liberation2)

# What the fuzzers need besides.
fuzz_packages=(clang libclang-rt-14-dev)
