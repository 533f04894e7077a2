#!/bin/sh
# What a built onvifCtrl costs on flash: the stripped file, its sections and
# its ten largest symbols.
#
#   tools/size-report.sh [BINARY]        (default: build-arm/onvifCtrl)
#
# An ARM binary is read with the arm-linux-gnueabihf- binutils; another
# cross toolchain's with CROSS_PREFIX=<prefix> (CROSS_PREFIX= for the host's).
set -eu
bin="${1:-build-arm/onvifCtrl}"
if [ -z "${CROSS_PREFIX+set}" ]; then
  case "$(readelf -h "$bin" | sed -n 's/^ *Machine: *//p')" in
    ARM) CROSS_PREFIX=arm-linux-gnueabihf- ;;
    *) CROSS_PREFIX= ;;
  esac
fi
stripped="$(mktemp)"
trap 'rm -f "$stripped"' EXIT
"${CROSS_PREFIX}strip" -o "$stripped" "$bin"
echo "$bin: $(wc -c < "$stripped") bytes stripped"
"${CROSS_PREFIX}size" "$bin"
echo "largest symbols (bytes):"
"${CROSS_PREFIX}nm" -C --size-sort -t d "$bin" | tail -n 10 | sort -rn | sed 's/^0*//; s/^/  /'
