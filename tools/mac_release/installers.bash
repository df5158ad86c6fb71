# Shared by scripts/sign-macos alone: the package and the disk image of a bundle that is signed and stapled. Sourced,
# never run; for bash 3.2. `run`, `notarise` and the variables that are not made here are that script's.
# shellcheck disable=SC2154

readonly package_resources="$project/resources/macos/package"

# The bundle is put where the package says, wherever the Mac may know another copy of it; a newer one stays.
make_package() {
  local made="$work/package"
  run mkdir -p "$made/root"
  run ditto "$app" "$made/root/Karno.app"
  run pkgbuild --root "$made/root" --component-plist "$package_resources/components.plist" \
    --scripts "$package_resources/scripts" --identifier it.vantul.KarnoWrapper.package --version "$version" \
    --install-location /Applications --ownership recommended "$made/Karno.pkg"
  run productbuild --distribution "$package_resources/distribution.xml" --package-path "$made" \
    --sign "$installer_identity" --timestamp "$work/Karno.pkg"
  run pkgutil --check-signature "$work/Karno.pkg"
  [[ -z $profile ]] || notarise "$work/Karno.pkg" "$work/Karno.pkg" --type install
}

# A file system that every macOS from 10.14 on can mount, compressed.
make_disk_image() {
  local made="$work/image"
  run mkdir -p "$made"
  run ditto "$app" "$made/Karno.app"
  run ln -s /Applications "$made/Applications"
  run hdiutil create -volname Karno -srcfolder "$made" -fs HFS+ -format UDZO "$work/Karno.dmg"
  run codesign --force --timestamp --sign "$identity" "$work/Karno.dmg"
  run codesign --verify --strict "$work/Karno.dmg"
  [[ -z $profile ]] || notarise "$work/Karno.dmg" "$work/Karno.dmg" --type open --context context:primary-signature
}
