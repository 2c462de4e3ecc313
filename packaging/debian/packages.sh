#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# packages.sh BUILD_DIR
#
# Builds the Debian packages in BUILD_DIR and shows what lintian says about them. Run it in the project's folder.
set -euo pipefail
build=$1
cmake --preset release -B "$build" -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_INSTALL_RPATH=ON -DSTOWRA_BUILD_TESTS=OFF \
  -DSTOWRA_DEBIAN_PACKAGES=ON -DSTOWRA_ZSH_FUNCTIONS=zsh/vendor-completions \
  ${STOWRA_PACKAGE_CONTACT:+"-DSTOWRA_PACKAGE_CONTACT=$STOWRA_PACKAGE_CONTACT"} >"$build.log" || { cat "$build.log" >&2; exit 1; }
cmake --build "$build"
rm -f "$build"/*.deb
(cd "$build" && cpack -G DEB >cpack.log) || { cat "$build/cpack.log" >&2; exit 1; }
for package in "$build"/*.deb; do
  echo "== $(basename "$package"): $(dpkg-deb -f "$package" Depends)"
done
echo "== lintian"
# The default contact has no mail host. Who publishes the packages sets STOWRA_PACKAGE_CONTACT
# in the environment.
lintian --allow-root --fail-on error --suppress-tags bogus-mail-host,bogus-mail-host-in-debian-changelog "$build"/*.deb
