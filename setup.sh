#!/bin/sh
# Installs what is missing on a Debian machine:
#   setup.sh build   to build the tool
#   setup.sh test    to build it and run all tests
#   setup.sh check   to run the slower checks as well
# As root or through sudo; otherwise it says what to install and ends with 1.
set -eu

# Each word is a file or command that tells whether its package is there.
build='g++:g++ cmake:cmake make:make'
tests='/usr/include/gtest/gtest.h:libgtest-dev setpriv:util-linux mandoc:mandoc
    lintian:lintian dpkg-deb:dpkg dpkg-shlibdeps:dpkg-dev fakeroot:fakeroot
    /usr/share/bash-completion/bash_completion:bash-completion valgrind:valgrind
    ansible-playbook:ansible-core python3:python3'
checks='clang++:clang clang-format:clang-format clang-tidy:clang-tidy cppcheck:cppcheck
    shellcheck:shellcheck git:git'

case ${1-} in
    build) wanted=$build ;;
    test) wanted="$build $tests" ;;
    check) wanted="$build $tests $checks" ;;
    *)
        echo "usage: $0 build | test | check" >&2
        exit 2
        ;;
esac

is_there() {
    case $1 in
        /*) [ -e "$1" ] ;;
        *) command -v "$1" > /dev/null 2>&1 || [ -x "/usr/sbin/$1" ] ;;
    esac
}

missing=
for entry in $wanted; do
    is_there "${entry%%:*}" || missing="$missing ${entry#*:}"
done
# The sanitizers' and the fuzzer's library goes with the version of the compiler.
if [ "$1" = check ] && command -v clang++ > /dev/null 2>&1; then
    runtime=$(clang++ -print-runtime-dir 2> /dev/null || true)
    ls "$runtime"/libclang_rt.fuzzer* > /dev/null 2>&1 || missing="$missing libclang-rt-dev"
elif [ "$1" = check ]; then
    missing="$missing libclang-rt-dev"
fi
[ -n "$missing" ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
    as_root=
elif command -v sudo > /dev/null 2>&1 && sudo -n true 2> /dev/null; then
    as_root=sudo
else
    echo "Not installed here:$missing" >&2
    echo "As root: apt-get install$missing" >&2
    exit 1
fi
echo "Installing:$missing"
# shellcheck disable=SC2086  # one package a word
{
    $as_root apt-get -qq update &&
        DEBIAN_FRONTEND=noninteractive $as_root apt-get -qq -y install --no-install-recommends $missing > /dev/null
} < /dev/null
