#!/bin/sh
# check_deb.sh PACKAGE: installs the Debian package below a folder of its own, tries what it brings and removes it. Fails where
# anything stays, or where it depends on other packages than those that its programs take libraries from.
set -eu

package=$1
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
fail() { echo "check_deb.sh: $package $1" >&2; exit 1; }

in_root() {
    dpkg --root="$root" --log=/dev/null --force-depends --force-not-root "$@" >"$root/var/output" 2>&1 ||
        { cat "$root/var/output" >&2; fail "is not taken by dpkg $1"; }
}

# owners FILE...: the packages of the libraries that the files themselves ask for. ldd names libraries by paths that may go
# through the link /lib, which the packages do not know.
owners() {
    libraries=$(ldd "$@" | sed -n 's/.* => \(.*\) (.*/\1/p; s/^[[:space:]]*\(\/.*\) (.*/\1/p' | sort -u)
    readelf --dynamic --wide "$@" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort -u | while read -r name; do
        path=$(echo "$libraries" | grep "/$name\$" | head -n 1)
        dpkg-query --search "$path" 2>/dev/null || dpkg-query --search "${path#/usr}" 2>/dev/null ||
            dpkg-query --search "$(realpath "$path")"
    done | sed 's/:.*//' | sort -u | tr '\n' ' '
}

mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
: >"$root/var/lib/dpkg/status"
in_root --install "$package"
"$root/usr/bin/perch" check >"$root/var/output" || { cat "$root/var/output" >&2; fail "brings a perch whose check fails"; }
set -- "$root/usr/bin/perch" "$root"/usr/lib/*/perch/pictures.so "$root"/usr/lib/*/perch/view.so "$root"/usr/lib/*/Kestrel.plugin/Contents/*/Kestrel.so
for file in "$@" "$root/usr/share/man/man1/perch.1" "$root/usr/share/bash-completion/completions/perch" \
    "$root/usr/share/zsh/vendor-completions/_perch" "$root/usr/share/fish/vendor_completions.d/perch.fish" \
    "$root/usr/share/doc/kestrel/libcli11-dev.copyright" "$root/usr/share/doc/kestrel/lit.copyright"; do
    [ -s "$file" ] || fail "lacks ${file#"$root"}"
done

stated=$(dpkg-deb --field "$package" Depends | tr ',' '\n' | sed 's/^ *\([^ ]*\).*/\1/' | sort -u | tr '\n' ' ')
taken=$(owners "$@")
[ "$stated" = "$taken" ] || fail "depends on ${stated}and its programs take libraries from $taken"

in_root --remove kestrel
left=$(cd "$root" && find . -not -path './var*' -not -path .)
[ -z "$left" ] || fail "leaves behind $left"
echo "$package installs, works and goes without a trace; it depends on $stated"
