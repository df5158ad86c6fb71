"""What scripts/package-macos does: puts the bundle together, packs it, and replaces the last package."""
