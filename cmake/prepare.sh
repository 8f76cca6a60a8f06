# Shared by run, test and bench: what has to be there before anything can be built, and building it.
# Sourced; needs `root`, the top of the tree.

say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

die() {
    say "$*"
    exit 1
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        die "packages have to be installed, but this is not root and there is no sudo; as root: apt-get install ${missing[*]}"
    fi
}

# Installs what packages.txt names and the machine lacks. A stamp keeps the second call from asking
# the package manager at all.
install_packages() {
    local stamp list name
    missing=()
    stamp="$root/build/.packages-$(cksum <"$root/packages.txt" | cut -d' ' -f1)"
    [ -e "$stamp" ] && return 0
    command -v dpkg-query >/dev/null || die "this is no Debian system; install what packages.txt names by hand, then: mkdir -p build && touch $stamp"
    list=$(sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$root/packages.txt")
    for name in $list; do
        if [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" != installed ]; then
            missing+=("$name")
        fi
    done
    if [ ${#missing[@]} -gt 0 ]; then
        say "installing ${#missing[@]} packages: ${missing[*]}"
        as_root env DEBIAN_FRONTEND=noninteractive apt-get update -q >&2 || die "apt-get update failed; is the network there?"
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" >&2 ||
            die "apt-get install failed; what it said stands above"
    fi
    mkdir -p "$root/build"
    rm -f "$root"/build/.packages-*
    touch "$stamp"
}

# build PRESET [TARGET...]: configures once, builds what changed.
build() {
    local preset=$1 folder
    shift
    folder="$root/build/$preset"
    export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1
    if [ ! -e "$folder/build.ninja" ]; then
        say "configuring $preset"
        (cd "$root" && cmake --preset "$preset" >"$root/build/$preset.log" 2>&1) || {
            cat "$root/build/$preset.log" >&2
            die "configuring $preset failed; what cmake said stands above"
        }
    fi
    say "building $preset (the first time takes some minutes)"
    if [ -t 2 ]; then
        cmake --build "$folder" --parallel "$(nproc)" ${1+--target "$@"} >&2 || die "the build failed; what the compiler said stands above"
    else
        # Where nobody looks at a terminal, only what went wrong is worth reading.
        cmake --build "$folder" --parallel "$(nproc)" ${1+--target "$@"} >"$root/build/$preset.log" 2>&1 || {
            grep -v '^\[[0-9]*/[0-9]*\] \(Building\|Linking\|Automatic\)' "$root/build/$preset.log" >&2
            die "the build failed; what the compiler said stands above"
        }
    fi
}
