# Programs of this machine and a private tree of i386 libraries, on which the other commands stand.
# Sourced by dev.
# shellcheck shell=bash

# A changed list, or a changed version, makes a new tree.
kTreeVersion=4
kTreePackages=(libgtk2.0-dev libcairo2-dev libgtest-dev libbenchmark-dev libffi-dev libpng-dev
  libgraphicsmagick1-dev libsndfile1-dev libcli11-dev nlohmann-json3-dev libkainjow-mustache-dev libcmark-gfm-dev
  libcmark-gfm-extensions-dev libopencolorio-dev)
# Left out of the tree: the C library and the compiler's run time, which must be those of this machine's
# own `g++ -m32` because the tree lies on our programs' run path; and packages that only these packages' tools
# and unused parts need.
kTreeWithout=(libc6 libc6-dev libc-dev linux-libc-dev libgcc-s1 libstdc++6 libgomp1 libatomic1 gcc-12-base
  python3 python3-distutils debconf adwaita-icon-theme hicolor-icon-theme
  libbz2-dev libheif-dev libicu-dev libjxl-dev liblcms2-dev libltdl-dev libwmf-dev libxml2-dev)
kLibraryAlone='The library by itself needs none of them:
  cmake --preset release -DZVR_BUILD_HOST=OFF && cmake --build build/release'

cacheFolder=${XDG_CACHE_HOME:-${HOME:?needed to find the cache folder}/.cache}/picturezvr

# has32BitCompiler: whether `g++ -m32` comes with a C and a C++ library.
has32BitCompiler() {
  local part
  command -v g++ > /dev/null || return 1
  for part in crt1.o libstdc++.a; do
    [[ $(g++ -m32 -print-file-name=$part) == /* ]] || return 1
  done
}

# ensurePrograms [PACKAGE:PROGRAM ...]: the programs that every build needs, and those named here.
# An installed program is looked for rather than its package, so other systems are served too.
ensurePrograms() {
  local entry missing=()
  for entry in cmake:cmake ninja-build:ninja pkg-config:pkg-config xvfb:Xvfb "$@"; do
    command -v "${entry#*:}" > /dev/null || missing+=("${entry%%:*}")
  done
  has32BitCompiler || missing+=(g++-multilib)
  [[ ${#missing[@]} -eq 0 ]] || installPackages "${missing[@]}"
}

installPackages() {
  local command="apt-get update; apt-get install -y --no-install-recommends $*" asRoot=()
  if ! command -v apt-get > /dev/null; then
    fail "Missing here, by their Debian package names: $*. Please install them with this system's own tools."
  fi
  if [[ $EUID -ne 0 ]]; then
    asRoot=(sudo)
    [[ -t 0 ]] || asRoot+=(-n)
    command -v sudo > /dev/null || fail "Missing: $*. Please run as root: $command"
  fi
  say "Installing with apt: $*"
  quietly "${asRoot[@]}" sh -c "export DEBIAN_FRONTEND=noninteractive; $command" < /dev/null ||
    fail "Could not install: $*. Please run as root: $command"
}

# ensureTree: leaves the tree's path in ZVR_I386_TREE for CMake. A path that is set already is taken as
# it is; on a system other than Debian it stays empty and the system's own i386 libraries are used.
ensureTree() {
  if [[ -n ${ZVR_I386_TREE:-} ]]; then return; fi
  export ZVR_I386_TREE=''
  local suite hash
  suite=$(debianSuite)
  if [[ -z $suite ]]; then return; fi
  hash=$(sha256sum <<< "$kTreeVersion $suite ${kTreePackages[*]} - ${kTreeWithout[*]}")
  ZVR_I386_TREE=$cacheFolder/i386-${hash::12}
  if [[ -d $ZVR_I386_TREE ]]; then return; fi
  mkdir -p "$cacheFolder"
  (
    flock -n 9 || { say 'Waiting for another setup that is under way'; flock 9; }
    [[ -d $ZVR_I386_TREE ]] || makeTree "$ZVR_I386_TREE"
  ) 9> "$cacheFolder/lock"
}

# makeTree FOLDER: under the cache's lock and in a subshell. The folder appears whole or not at all.
makeTree() {
  local tree=$1 partial=$1.partial debs deb control link target
  removeOnExit "$partial"
  rm -rf "$partial"
  debs=$partial/.debs
  mkdir -p "$debs/partial"
  say "Fetching i386 libraries for our host and the tests into $tree"
  preparePrivateApt "$kLibraryAlone"
  quietly privateApt install -y --download-only -o Dir::Cache::archives="$debs" "${kTreePackages[@]}" ||
    fail "Could not fetch: ${kTreePackages[*]}. $kLibraryAlone"
  # Of the C library and the compiler's run time only that is wanted; by the suite's name, as they count as installed.
  (cd "$debs/partial" && quietly privateApt download {libc6,libgcc-s1,libstdc++6}/"$(debianSuite)") ||
    fail "Could not fetch the C and C++ libraries' packages. $kLibraryAlone"
  # dpkg-shlibdeps looks there, as where a package is built, for the package and version that a library's users need.
  for deb in "$debs"/{,partial/}*.deb; do
    control=$partial/debian/$(dpkg-deb -f "$deb" Package)
    mkdir -p "$control"
    dpkg-deb -e "$deb" "$control/DEBIAN"
  done
  find "$partial/debian" -type f ! -name shlibs ! -name symbols -delete
  touch "$partial/debian/control"
  for deb in "$debs"/*.deb; do
    dpkg-deb --fsys-tarfile "$deb" | tar -x -C "$partial" --no-same-owner \
      --exclude=./{bin,etc,sbin,var} --exclude=./usr/{bin,libexec,sbin,src} --exclude=./usr/lib/python3* \
      --exclude=./usr/share/{X11,fonts,gir-1.0,gtk-doc,icons,info,lintian,locale,man,mime} \
      --exclude='./usr/share/doc/*/[!c]*' --exclude='./usr/share/doc/*/changelog*' # licences stay, for our packages
  done
  rm -rf "$debs"
  # Links such as libz.so lead to /lib: let them stay inside the tree.
  find "$partial" -type l -lname '/*' -print | while read -r link; do
    target=$partial$(readlink "$link")
    if [[ -e $target ]]; then ln -srf "$target" "$link"; fi
  done
  mv -T "$partial" "$tree"
}

# preparePrivateApt INSTEAD [SUITE]: an apt of our own for i386 packages of this machine's suite, or of another. It writes
# only below the cache folder, so it needs no root and leaves the machine's packages be. The machine's own apt says where
# packages come from. INSTEAD says what is possible when they can't be had. Called under the cache's lock.
preparePrivateApt() {
  local instead=$1 apt=$cacheFolder/apt own suite source mirror entry key package
  own=$(debianSuite)
  suite=${2:-$own}
  source=$(debianSource "$own")
  if [[ -z $source && $EUID -eq 0 ]]; then
    quietly apt-get update -o APT::Update::Error-Mode=any || fail "Could not fetch the lists of packages. $instead"
    source=$(debianSource "$own")
  fi
  [[ -n $source ]] ||
    fail "This machine's apt knows no packages of Debian $own: please run apt-get update as root. $instead"
  IFS='|' read -r mirror entry <<< "$source"
  key=$(grep -oiE -m 1 'signed-by *[:=] */[^] ,]+' "${entry%:*}" | sed 's,^[^/]*,signed-by=,' || true)
  mkdir -p "$apt/lists/partial"
  echo "deb [arch=i386 target=Packages $key] $mirror $suite main" > "$apt/sources.list"
  for package in "${kTreeWithout[@]}"; do
    printf '%s\n' "Package: $package" 'Status: install ok installed' 'Architecture: i386' \
      'Multi-Arch: allowed' 'Version: 999' 'Maintainer: none' 'Description: left out' ''
  done > "$apt/status"
  cat > "$apt/apt.conf" << END
Dir::State "$apt";
Dir::State::lists "$apt/lists";
Dir::State::status "$apt/status";
Dir::Cache "$apt";
Dir::Etc::sourcelist "$apt/sources.list";
Dir::Etc::sourceparts "/dev/null";
Dir::Etc::preferences "/dev/null";
Dir::Etc::preferencesparts "/dev/null";
APT::Architecture "i386";
#clear APT::Architectures;
APT::Architectures { "i386"; };
APT::Default-Release "";
APT::Install-Recommends "false";
APT::Sandbox::User "root";
Acquire::GzipIndexes "true";
Acquire::Languages "none";
#clear APT::Update::Post-Invoke;
#clear APT::Update::Post-Invoke-Success;
END
  quietly privateApt update -o APT::Update::Error-Mode=any ||
    fail "Could not fetch the list of Debian's i386 packages. $instead"
}

privateApt() { apt-get -c "$cacheFolder/apt/apt.conf" "$@"; }

# debianSuite: prints the suite's name on Debian, nothing elsewhere.
# shellcheck disable=SC1091 # not of this tree
debianSuite() { (. /etc/os-release && [[ $ID != debian ]] || echo "${VERSION_CODENAME:-}"); }

# debianSource SUITE: prints "ADDRESS|FILE:LINE" of where this machine gets that suite from and where that is
# configured, or nothing.
# shellcheck disable=SC2016 # apt fills in the format
debianSource() {
  apt-get indextargets --format '$(REPO_URI)|$(SOURCESENTRY)' 'Created-By: Packages' 'Component: main' \
    'Label: Debian' "Codename: $1" | awk '!/^cdrom:/ && !found++'
}
