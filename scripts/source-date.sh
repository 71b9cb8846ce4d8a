#!/bin/sh
# Prints the date of the sources in seconds since 1970: SOURCE_DATE_EPOCH where it is set, else the commit's, else that of the
# change log.
set -eu
cd "$(dirname "$0")/.."

if [ -n "${SOURCE_DATE_EPOCH:-}" ]; then
    case $SOURCE_DATE_EPOCH in
        *[!0-9]*) echo "SOURCE_DATE_EPOCH is $SOURCE_DATE_EPOCH: it must be a number of seconds since 1970" >&2; exit 1 ;;
    esac
    echo "$SOURCE_DATE_EPOCH"
elif [ -e .git ] && git log -1 --format=%ct 2>/dev/null; then
    :
elif grep -qx '[0-9][0-9]*' cmake/source-date.txt; then
    cat cmake/source-date.txt  # git wrote it when it made the archive
else
    date -r CHANGELOG.md +%s
fi
