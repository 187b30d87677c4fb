# shellcheck shell=bash
# What the browser loads from other projects, and the pages that are definition files.

# The files of npm packages that pages load, as "package/path".
web_files=(jquery/dist/jquery.min.js jquery-ui/dist/jquery-ui.min.js chart.js/dist/chart.umd.min.js)

# install_web_libraries: copies the pinned libraries into web/lib. npm is asked only when they are
# missing or when the lock file has changed.
install_web_libraries() {
    local lib=$checkout/web/lib hash file
    hash=$(sha256sum "$checkout/web/package-lock.json" "$checkout/script/lib/web.sh" | sha256sum)
    [[ $(cat "$lib/.installed" 2>/dev/null) != "$hash" ]] || return 0
    command -v npm >/dev/null || die "npm is missing: as root, apt-get install --no-install-recommends npm"
    say "Fetching the browser's libraries"
    (cd "$checkout/web" && npm ci --ignore-scripts --no-audit --no-fund --silent) ||
        die "npm could not fetch the browser's libraries"
    rm -rf "$lib"
    mkdir -p "$lib"
    for file in "${web_files[@]}"; do
        cp "$checkout/web/node_modules/$file" "$lib/"
    done
    rm -rf "$checkout/web/node_modules"
    printf '%s\n' "$hash" >"$lib/.installed"
}

# install_report_pages FOLDER: the lists and forms that come with the portal; those of the site stay.
install_report_pages() {
    mkdir -p "$1"
    cp "$checkout"/config/reports/*.report "$1/"
}
