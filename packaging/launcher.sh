#!/bin/sh
# Becomes the program of its own name that was made for this system. It lies in a package that is looked for
# where npm looks: in every node_modules on the way up from here.
case $(uname -sm) in
  'Darwin arm64') system=darwin-arm64 ;;
  'Darwin x86_64') system=darwin-x64 ;;
  'Linux aarch64') system=linux-arm64 ;;
  'Linux x86_64') system=linux-x64 ;;
  *) system=$(uname -sm) ;;
esac
self=$(readlink -f "$0")
name=${self##*/} folder=${self%/*}
while [ -n "$folder" ]; do
  program=$folder/node_modules/corvane-mcp-$system/bin/$name
  [ ! -x "$program" ] || exec "$program" "$@"
  folder=${folder%/*}
done
echo "$name: the programs for $system are not installed. They come with corvane-mcp on macOS and on Linux with" \
  "glibc, for processors of 64 bits, unless optional dependencies are left out." >&2
exit 1
