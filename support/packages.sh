# The Debian packages that the commands need, and their installation. Sourced by ./dev.

build_packages=(
    g++ cmake ninja-build ccache mold pkg-config ca-certificates
    qt6-base-dev qt6-declarative-dev qt6-declarative-private-dev qt6-declarative-dev-tools qt6-positioning-dev qt6-svg-dev
    qcoro-qt6-dev libsecret-1-dev libicu-dev libsimdjson-dev nlohmann-json3-dev libboost1.81-dev
    libsoci-dev libsodium-dev libgeographiclib-dev libcurl4-openssl-dev libcli11-dev libspdlog-dev libsqlite3-dev
    libssl-dev libpq-dev prometheus-cpp-dev libsystemd-dev
)
run_packages=(
    qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript qml6-module-qtquick qml6-module-qtquick-templates
    libqt6positioning6-plugins fonts-inter fonts-firacode
    dbus dbus-daemon libglib2.0-bin gnome-keyring tzdata
)
test_packages=(
    libgtest-dev libgmock-dev qt6-base-private-dev zlib1g-dev openssl nghttp2-proxy fonts-noto-ui-core
    xvfb at-spi2-core python3 python3-aiosmtpd python3-gi gir1.2-atspi-2.0
)
postgres_packages=(postgresql-15)
lint_packages=(clang-format clang-tidy-16)
fuzz_packages=(clang-16 libclang-rt-16-dev)
bench_packages=(qml6-module-qtquick-controls)

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "Root or sudo is needed to run: ${*}" >&2
        return 1
    fi
}

# ensure_packages NAME...: installs the missing ones of these packages; prints nothing if there are none.
ensure_packages() {
    local missing=() name
    local present
    present=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' 2>/dev/null | sed -n 's/^installed //p')
    for name in "$@"; do
        grep -qxF "$name" <<<"$present" || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return
    if ! command -v apt-get >/dev/null; then
        echo "These packages are missing (names as in Debian 12): ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${#missing[@]} packages"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Installs the icon set in the version of the lock file.
ensure_icons() {
    if ! command -v npm >/dev/null; then
        ensure_packages nodejs npm
    fi
    if [ ! -d node_modules ] || [ package-lock.json -nt node_modules/.package-lock.json ]; then
        npm ci --no-audit --no-fund --ignore-scripts --loglevel=error
    fi
}
