#!/bin/sh
# Installs a sample package: all that a sample can do is to read it to its end, and to take a moment.
set -eu
package=${1:?no package was named}
bytes=$(wc -c < "$package")
sleep 0.5
echo "installed $package ($bytes bytes)"
