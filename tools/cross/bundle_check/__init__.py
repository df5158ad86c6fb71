"""What scripts/check-macos-bundle looks at: programs, their imports and signatures, and the bundle around them."""
