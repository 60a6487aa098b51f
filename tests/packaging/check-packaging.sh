#!/usr/bin/env bash
# Checks of the desktop integration, the manual pages and the Debian
# package, one per CTest test:
#   WRPD6T_VERSION=1.03 check-packaging.sh CHECK SOURCE_DIR BUILD_DIR
# CHECK is desktop-entry, metainfo, mime, versions, manual-pages, install,
# deb or lintian. Each works in a temporary folder of its own and leaves the
# build folder as it was.
set -euo pipefail
check=$1 source=$2 build=$3
version=${WRPD6T_VERSION:?the project version}
programs=(wrpd6t wrpd6t-tool wrpd6t-radio-sim)
id=io.github.wrpd6t.wrpd6t
mime_type=application/x-wrpd6t-data
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

# What an installation holds, relative to its prefix.
installed_files() {
    cat <<LIST
bin/wrpd6t
bin/wrpd6t-radio-sim
bin/wrpd6t-tool
lib/udev/rules.d/70-wrpd6t-cable.rules
share/applications/$id.desktop
share/doc/wrpd6t/changelog.gz
share/doc/wrpd6t/copyright
share/icons/hicolor/256x256/apps/$id.png
share/icons/hicolor/48x48/apps/$id.png
share/icons/hicolor/scalable/apps/$id.svg
share/man/man1/wrpd6t-radio-sim.1.gz
share/man/man1/wrpd6t-tool.1.gz
share/man/man1/wrpd6t.1.gz
share/metainfo/$id.metainfo.xml
share/mime/packages/$id.xml
LIST
}

# Width and height of a PNG from its header.
png_size() { od -An -tu1 -j16 -N8 "$1" | awk '{print $3*256+$4 "x" $7*256+$8}'; }

# The options of a command's help (or the program's), one a line, the help
# option every command has left out.
options_in_help() {
    sed -n '/^Options:$/,/^$/ s/^  \(-[^ ].*\)/\1/p' <<<"$1" | sed 's/  .*//' \
        | grep -oE -- '--?[A-Za-z0-9][A-Za-z0-9-]*' | grep -vxE -- '-h|--help|--help-all' || true
}

# The rendered manual page of the tool (text $2) gives every command that the
# tool $1 lists in its help, under the command's usage line and with each of
# its options, and every exit status the help lists.
check_tool_page() {
    local tool=$1 page=$2 help commands command usage part option statuses status
    help=$("$tool" --help)
    commands=$(sed -n '/^Commands:$/,/^$/ s/^  \([^ ]*\) .*/\1/p' <<<"$help")
    [ -n "$commands" ] || fail "the tool's help lists no commands"
    for command in $commands; do
        usage=$("$tool" "$command" --help | sed -n '1s/^Usage: //p')
        # From the command's heading to the next heading or section.
        part=$(awk -v heading="   $usage" '$0 == heading {inside = 1; print; next}
                                            inside && /^ ? ? ?[^ ]/ {exit} inside' <<<"$page")
        [ -n "$part" ] || fail "the manual page has no heading '$usage'"
        for option in $(options_in_help "$("$tool" "$command" --help)"); do
            # As a term: the option, perhaps after its other names.
            grep -qE -- "^ {7}(-[^ ,]+, )*$option( |,|\$)" <<<"$part" || fail "the manual page lacks $command $option"
        done
    done
    part=$(sed -n '/^EXIT STATUS$/,/^[A-Z]/p' <<<"$page")
    statuses=$(sed -n '/^Exit status:$/,/^$/ s/^  \([0-9]*\) .*/\1/p' <<<"$help")
    [ -n "$statuses" ] || fail "the tool's help lists no exit status"
    for status in $statuses; do
        grep -qE "^ +$status +[^ ]" <<<"$part" || fail "the manual page does not tell exit status $status"
    done
}

# The pieces of an installed tree under $1$2 (root, prefix) fit together:
# the entry names the icon and MIME type that are installed and starts the
# installed program, the AppStream file launches the entry, the icons have
# their sizes, the tool runs, man finds the three pages and the tool's tells
# every command the tool knows, and a desktop that reads only this tree's
# databases takes .tw files for the MIME type and gives them to the entry.
check_tree() {
    local root=$1 prefix=$2 data=$1$2/share
    local entry=$data/applications/$id.desktop
    desktop-file-validate "$entry"
    grep -qx "Icon=$id" "$entry" || fail "the desktop entry does not name the icon $id"
    grep -qx "Exec=$prefix/bin/wrpd6t %f" "$entry" || fail "the desktop entry does not start $prefix/bin/wrpd6t"
    grep -qx "MimeType=$mime_type;" "$entry" || fail "the desktop entry does not take $mime_type"
    grep -q "<mime-type type=\"$mime_type\">" "$data/mime/packages/$id.xml" || fail "the MIME package does not declare $mime_type"
    grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$data/metainfo/$id.metainfo.xml" \
        || fail "the metainfo does not launch $id.desktop"
    [ "$(png_size "$data/icons/hicolor/48x48/apps/$id.png")" = 48x48 ] || fail "the 48x48 icon has another size"
    [ "$(png_size "$data/icons/hicolor/256x256/apps/$id.png")" = 256x256 ] || fail "the 256x256 icon has another size"
    local answer
    answer=$("$root$prefix/bin/wrpd6t-tool" --version)
    [ "$answer" = "wrpd6t-tool $version" ] || fail "the installed tool says '$answer'"
    # man finds the pages where they are installed, and the tool's tells
    # every command the installed tool knows.
    local program
    for program in "${programs[@]}"; do
        MANPATH=$data/man man -w "$program" >/dev/null || fail "man finds no page of $program in $data/man"
    done
    check_tool_page "$root$prefix/bin/wrpd6t-tool" "$(MANPATH=$data/man MANWIDTH=250 man --nh --nj wrpd6t-tool)"

    "$root$prefix/bin/wrpd6t-tool" new "$tmp/radio.tw"
    local desktop=(env PATH=/nonexistent XDG_DATA_HOME="$data" XDG_DATA_DIRS=/nonexistent "$(command -v gio)")
    # Whole answers first: grep -q stops reading early, and under pipefail
    # the writer's broken pipe would fail the check now and then.
    answer=$("${desktop[@]}" info -a standard::content-type "$tmp/radio.tw")
    grep -q "content-type: $mime_type$" <<<"$answer" || fail "a desktop does not take .tw files for $mime_type"
    grep -qx "$mime_type=$id.desktop;" "$data/applications/mimeinfo.cache" \
        || fail "the desktop index does not give $mime_type to $id.desktop"
    # Desktops hide an entry whose program is missing, so this needs the
    # program where the entry says, not in a scratch root.
    if [ -z "$root" ]; then
        answer=$("${desktop[@]}" mime "$mime_type")
        grep -q "^Default application .*: $id.desktop$" <<<"$answer" \
            || fail "a desktop does not open $mime_type with $id.desktop: $answer"
    fi
}

# Builds the Debian package into $tmp/out; its path in $deb.
build_deb() {
    (cd "$build" && "${CPACK:-cpack}" -G DEB -B "$tmp/out" >/dev/null) || fail "cpack failed"
    deb=$tmp/out/wrpd6t_${version}_$(dpkg --print-architecture).deb
    [ -f "$deb" ] || fail "no $(basename "$deb"): $(ls "$tmp/out")"
}

case $check in
desktop-entry)
    desktop-file-validate "$source/packaging/$id.desktop"
    ;;
metainfo)
    # As built, with its releases from NEWS.
    appstreamcli validate --no-net "$build/packaging/$id.metainfo.xml"
    ;;
mime)
    mkdir "$tmp/packages"
    cp "$source/packaging/$id.mime.xml" "$tmp/packages/$id.xml"
    update-mime-database "$tmp" 2>/dev/null
    grep -qx "50:$mime_type:\*\.tw" "$tmp/globs2" || fail "no *.tw glob in globs2: $(cat "$tmp/globs2")"
    # Packed files have no fixed first bytes, so nothing may be told by content.
    ! grep -q "$mime_type" "$tmp/magic" || fail "$mime_type has magic"
    for lang in zh_CN zh_TW; do
        grep -q "<comment xml:lang=\"$lang\">" "$tmp/$mime_type.xml" || fail "no $lang comment"
    done
    ;;
versions)
    for program in "${programs[@]}"; do
        answer=$(QT_QPA_PLATFORM=offscreen "$build/$program" --version 2>/dev/null) || fail "$program --version failed"
        [ "$answer" = "$program $version" ] || fail "$program --version says '$answer', not '$program $version'"
    done
    ;;
manual-pages)
    # Each page renders without a complaint from groff (what lintian asks
    # man for), and its NAME line is what whatis and apropos list.
    for program in "${programs[@]}"; do
        page=$build/packaging/man/$program.1.gz
        [ -f "$page" ] || fail "no manual page $page"
        complaints=$(MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null) \
            || fail "man -l $page failed: $complaints"
        [ -z "$complaints" ] || fail "man -l $page: $complaints"
        answer=$(lexgrog "$page") || fail "no NAME line in $page: $answer"
        [[ $answer == *": \"$program - "[a-z]* ]] || fail "the NAME line of $page: $answer"
    done
    ;;
install)
    "${CMAKE:-cmake}" --install "$build" --prefix "$tmp/prefix" >/dev/null 2>&1 || fail "cmake --install failed"
    (cd "$tmp/prefix" && find . -type f | sed 's|^\./||' | sort) > "$tmp/found"
    # The install refreshed the prefix's MIME database and desktop index,
    # which check_tree reads.
    grep -v -e '^share/mime/[^p]' -e '^share/applications/mimeinfo.cache$' "$tmp/found" > "$tmp/owned"
    installed_files | diff -u - "$tmp/owned" || fail "unexpected installed files"
    check_tree "" "$tmp/prefix"
    ;;
deb)
    build_deb
    [ "$(dpkg-deb -f "$deb" Section)" = hamradio ] || fail "section is not hamradio"
    depends=$(dpkg-deb -f "$deb" Depends)
    for library in libqt6widgets6 libqt6serialport6 libc6; do
        [[ $depends == *"$library "* ]] || fail "Depends lacks $library: $depends"
    done
    # The font the Chinese interface and sheets are drawn with.
    [[ $(dpkg-deb -f "$deb" Recommends) == *fonts-noto-cjk* ]] || fail "the package does not recommend fonts-noto-cjk"
    # Only the program's own files: the databases are the triggers' business.
    dpkg -c "$deb" | awk '$1 !~ /^d/ {print $6}' | sed 's|^\./usr/||' | sort > "$tmp/listed"
    installed_files | diff -u - "$tmp/listed" || fail "unexpected files in the package"
    # Unpacked into a scratch root, with the databases refreshed as dpkg's
    # triggers do on a real system.
    dpkg-deb -x "$deb" "$tmp/root"
    update-mime-database "$tmp/root/usr/share/mime" 2>/dev/null
    update-desktop-database "$tmp/root/usr/share/applications"
    check_tree "$tmp/root" /usr
    ;;
lintian)
    # Debian's own package checker: not one error or warning.
    build_deb
    status=0
    report=$(lintian "$deb" 2>&1) || status=$?
    ! grep -E '^[EW]: ' <<<"$report" || fail "lintian reports the lines above"
    [ "$status" -eq 0 ] || fail "lintian failed: $report"
    ;;
*)
    fail "unknown check $check"
    ;;
esac
