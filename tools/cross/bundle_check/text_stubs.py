"""Reads .tbd text stubs: which symbols a library of macOS declares for which processor."""

import re


def declared_symbols(path, processor):
    """(install name of the library, the set of its symbols), those of re-exported libraries included."""
    text = path.read_text()
    install_name = re.search(r"^install-name:\s*'?([^'\s]+)'?", text, re.MULTILINE)[1]
    symbols = set()
    for entry in re.findall(r"^  - targets:.*?(?=^  - targets:|^\S|\Z)", text, re.MULTILINE | re.DOTALL):
        if f"{processor}-macos" in flow_lists(entry, "targets"):
            symbols |= flow_lists(entry, r"(?:symbols|weak-symbols|thread-local-symbols)")
    return install_name, symbols


def flow_lists(entry, key):
    """All words of the bracketed lists under a key."""
    lists = re.findall(rf"^[ -]+{key}:\s*\[(.*?)\]", entry, re.MULTILINE | re.DOTALL)
    return {word.strip(" '\n") for words in lists for word in words.split(",")}
