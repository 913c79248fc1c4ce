# shellcheck shell=bash disable=SC2034
# What ./play, ./check and the scripts beside this one share: packages, the build, a display. To be
# sourced from the root of the repository. All that it prints goes to standard error, so that the
# player's own text stays alone on standard output.

build=build/release

build_packages=(g++ cmake ninja-build pkg-config python3 libxcb1-dev libegl-dev libgles-dev
                libcli11-dev nlohmann-json3-dev libpng-dev)
run_packages=(libegl1 libgles1 libgles2 libegl-mesa0 libgl1-mesa-dri)
display_packages=(xvfb)
test_packages=(libgtest-dev libgmock-dev libbenchmark-dev scdoc)
lint_packages=(clang-format clang-tidy shellcheck)
fuzz_packages=(clang-14)

say() { printf '%s\n' "$*" >&2; }

# Installs those of the named packages that are missing. Without any missing, no network is touched.
install_missing() {
    if ! command -v dpkg-query >/dev/null; then
        say "This isn't a Debian system; taking it that these are there: $*"
        return
    fi
    local missing=() package
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
            missing+=("$package")
    done
    ((${#missing[@]})) || return 0
    local as_root=()
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            say "These packages are missing, and only root can install them: ${missing[*]}"
            return 1
        fi
        as_root=(sudo)
    fi
    say "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -q >&2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
}

display_pid=
display_folder=

# Starts a private X server on a free number; stop_display ends it.
start_display() {
    display_folder=$(mktemp -d)
    Xvfb -displayfd 3 -noreset -screen 0 1280x1024x24 -nolisten tcp \
        3>"$display_folder/number" >"$display_folder/log" 2>&1 &
    display_pid=$!
    trap stop_display EXIT
    local i
    for ((i = 0; i < 200; ++i)); do
        if [[ -s $display_folder/number ]]; then
            DISPLAY=:$(<"$display_folder/number")
            export DISPLAY
            return
        fi
        kill -0 "$display_pid" 2>/dev/null || break
        sleep 0.05
    done
    say "Xvfb didn't start:"
    cat "$display_folder/log" >&2
    return 1
}

stop_display() {
    if [[ -n $display_pid ]]; then
        kill "$display_pid" 2>/dev/null || true
        wait "$display_pid" 2>/dev/null || true
        display_pid=
    fi
    if [[ -n $display_folder ]]; then
        rm -rf "$display_folder"
        display_folder=
    fi
}
