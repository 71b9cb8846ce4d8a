#!/bin/sh
# notarise.sh BUNDLE IDENTITY PROFILE, on a Mac with Xcode's command line tools: signs the bundle with a "Developer ID
# Application" identity, has Apple notarise it and staples the ticket to it. PROFILE names credentials that were stored once
# with `xcrun notarytool store-credentials PROFILE`.
set -eu

[ $# -eq 3 ] || { echo "usage: notarise.sh BUNDLE IDENTITY PROFILE" >&2; exit 2; }
bundle=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

codesign --force --options runtime --timestamp --sign "$2" "$bundle"
codesign --verify --strict --verbose "$bundle"
ditto -c -k --keepParent "$bundle" "$folder/bundle.zip"
xcrun notarytool submit "$folder/bundle.zip" --keychain-profile "$3" --wait
xcrun stapler staple "$bundle"
