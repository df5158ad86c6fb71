"""What scripts/package-macos does: puts the bundle together, keeps its symbols, packs both, and replaces the last
package."""
