#!/bin/sh
# needing.sh "NEEDED..." COMMAND...: runs the command if each of the programs and files is there.
# Otherwise it names what is missing and ends with 77, which ctest counts as a skip.
set -eu
PATH=$PATH:/usr/sbin:/sbin  # that of an ordinary user lacks what dpkg and others call
export PATH
missing=
for needed in $1; do
    case $needed in
        /*) [ -e "$needed" ] ;;
        *) command -v "$needed" > /dev/null ;;
    esac || missing="$missing $needed"
done
shift
if [ -n "$missing" ]; then
    echo "SKIPPED, not installed:$missing"
    exit 77
fi
exec "$@"
