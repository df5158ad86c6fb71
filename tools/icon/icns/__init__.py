"""The icon file of macOS: the pictures of an application in all sizes, in one container."""
