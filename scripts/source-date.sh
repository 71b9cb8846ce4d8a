#!/bin/sh
# Prints the date of the sources in seconds since 1970: SOURCE_DATE_EPOCH where it is set, else the commit's.
set -eu
cd "$(dirname "$0")/.."

if [ -n "${SOURCE_DATE_EPOCH:-}" ]; then
    echo "$SOURCE_DATE_EPOCH"
elif git rev-parse --git-dir >/dev/null 2>&1; then
    git log -1 --format=%ct
else
    cat cmake/source-date.txt  # git wrote it when it made the archive
fi
