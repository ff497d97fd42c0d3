# tests/packages/debian.sh FOLDER C-SOURCE: within a system of its own, installs the Debian packages of the folder, tries them
# and purges them; whatever they left is named.
set -eu
packages=$1
source=$2
# What the package system itself writes down about its work.
listing() {
  find / -xdev -not -path '/var/lib/dpkg/*' -not -path '/var/log/*' -not -path '/var/cache/ldconfig/*' \
    -not -path /etc/ld.so.cache -not -path '/tmp/*' | sort
}
export DEBIAN_FRONTEND=noninteractive
listing >/tmp/before

# The program needs no development files.
dpkg -i "$packages"/libkivtoolsrepack0_*.deb "$packages"/kivtools_*.deb
test "$(kivtools --version)" = "kivtools $(dpkg-query -W -f '${Version}' kivtools)"
test "$(kivtools words 12)" = "DOUASPREZECE LEI"
dpkg -i "$packages"/libkivtoolsrepack-dev_*.deb
# shellcheck disable=SC2046  # flags are words of their own
gcc -std=c11 -Wall -Werror "$source" -o /tmp/host $(pkg-config --cflags --libs kivtoolsrepack)
/tmp/host | grep -q '^UNAMIEDOUASUTETREIZECISIPATRU LEI'
# A program that is linked with the library cannot do without the package.
if dpkg --remove libkivtoolsrepack0; then
  echo "the library is removed from under the program" >&2
  exit 1
fi

dpkg --purge kivtools libkivtoolsrepack-dev libkivtoolsrepack0
listing >/tmp/after
diff /tmp/before /tmp/after
