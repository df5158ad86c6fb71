"""Judges the tables of user-visible texts. Each finding is one sentence."""

import json
import plistlib
import re
import unicodedata

BASE = "Base"
NARROW_BLANK = "\u202f"
PLACEHOLDER = re.compile(r"\{\{ (\w+) \}\}")
PRODUCTS = ("Karno", "macFUSE", "macOS")
IDEOGRAPHIC = ("ja", "zh-Hans", "zh-Hant")

# Opening and closing quotation mark of each language, and whether ’ is its apostrophe.
QUOTATION_MARKS = {
    BASE: ("“”", True),
    "de": ("„“", False),
    "es": ("“”", False),
    "fr": ("«»", True),
    "it": ("“”", True),
    "ja": ("“”", False),
    "ko": ("‘’", False),
    "nl": ("‘’", False),
    "pt-BR": ("“”", False),
    "zh-Hans": ("“”", False),
    "zh-Hant": ("「」", False),
}
# How a language would address the user in another way than all of its tables do.
OTHER_FORM_OF_ADDRESS = {
    "de": r"\b[Dd](u|ich|ir|ein(e[mnrs]?)?)\b",
    "es": r"\b[Uu]sted\b",
    "fr": r"\b([Tt]u|[Tt]oi|[Tt]on|[Tt]a|[Tt]es)\b",
    "it": r"\b(Lei|Suo|Sua)\b",
    "ko": "시겠습니까",
    "nl": r"\b[Uu]w?\b",
    "pt-BR": r"\b([Tt]u|[Tt]eu|[Tt]ua)\b",
    "zh-Hans": "您",
    "zh-Hant": "你",
}
ALL_QUOTATION_MARKS = set("“”„‟‘’‚‛«»‹›「」『』\"'`´")


class Unreadable(ValueError):
    pass


def read(file):
    """Token to text, or Unreadable."""
    def unique(members):
        names = [name for name, _ in members]
        if names != sorted(set(names)):
            raise Unreadable("its tokens are not in order, each once")
        return dict(members)

    try:
        table = json.loads(file.read_bytes().decode("utf-8"), object_pairs_hook=unique)
    except (UnicodeDecodeError, json.JSONDecodeError) as problem:
        raise Unreadable(str(problem)) from problem
    if not isinstance(table, dict) or not all(isinstance(text, str) for text in table.values()):
        raise Unreadable("it is not an object of texts")
    return table


def tables(resources, name="Strings.json"):
    return {folder.stem: read(folder / name) for folder in sorted(resources.glob("*.lproj"))}


def read_strings(file):
    """Text to text of a strings table in XML, or Unreadable."""
    try:
        table = plistlib.loads(file.read_bytes(), fmt=plistlib.FMT_XML)
    except Exception as problem:  # plistlib raises whatever its parsers raise
        raise Unreadable(str(problem)) from problem
    if not isinstance(table, dict) or not all(isinstance(text, str) for text in table.values()):
        raise Unreadable("it is not a dictionary of texts")
    return table


def strings_tables(resources, name):
    return {folder.stem: read_strings(folder / name) for folder in sorted(resources.glob("*.lproj"))}


def move_texts_asked_for(sources):
    """The English texts that stand as literals in the calls that look up a text of the move."""
    call = re.compile(r'\bmoveText\(\s*"([^"]*)"')
    return {text for file in sources.rglob("*.cpp") for text in call.findall(file.read_text(encoding="utf-8"))}


def tokens_asked_for(sources, calls=r"(?:\blocalise|\btextLookedUpOnce|\blocalisedStringForToken)"):
    """The tokens that stand as literals in the calls that look texts up."""
    call = re.compile(calls + r'\([^;"]*"([A-Z][A-Z0-9_]*)"')
    return {token for file in sources.rglob("*.cpp") for token in call.findall(file.read_text(encoding="utf-8"))}


def token_findings(table, base):
    for token in sorted(base.keys() - table.keys()):
        yield f"{token} is missing."
    for token in sorted(table.keys() - base.keys()):
        yield f"{token} is not in the base."


def placeholder_findings(token, text, base_text):
    if "{" in PLACEHOLDER.sub("", text) or "}" in PLACEHOLDER.sub("", text):
        yield f"{token} has a brace that belongs to no placeholder."
    if sorted(PLACEHOLDER.findall(text)) != sorted(PLACEHOLDER.findall(base_text)):
        yield f"{token} has other placeholders than the base."


# A product that speaks of itself in the base is called by its name where a language does without a subject.
def product_findings(token, text, base_text):
    for product in PRODUCTS:
        if product == "Karno" and "myself" in base_text:
            continue
        if (product in text) != (product in base_text):
            yield f"{token} and the base do not both name {product}."


def typesetting_findings(token, text):
    if not text or text != text.strip():
        yield f"{token} is empty, or begins or ends with white space."
    if unicodedata.normalize("NFC", text) != text:
        yield f"{token} is not composed (NFC)."
    if any(unicodedata.category(character) in ("Cc", "Cf", "Co", "Cn") for character in text):
        yield f"{token} has a character that cannot be seen."
    if re.search(r"\\(?!n)", text):
        yield f"{token} has a backslash that is no line break."
    if re.search(r"\s\s| \\n|\\n ", text):
        yield f"{token} has a blank too many."
    if re.search(r"<|%[@\d]|&\w+;|\.\.", text):
        yield f"{token} has markup or points in a row."


def quotation_findings(token, text, language):
    (opening, closing), has_apostrophe = QUOTATION_MARKS[language]
    if has_apostrophe and closing != "’":
        text = re.sub(r"(?<=\w)’(?=\w)", "", text)
    marks = [mark for mark in text if mark in ALL_QUOTATION_MARKS]
    if marks != [opening, closing] * (len(marks) // 2):
        yield f"{token} has quotation marks that are not its language's."


def quoted(language, text):
    """What stands between quotation marks of the language."""
    opening, closing = QUOTATION_MARKS[language][0]
    return [part.strip(NARROW_BLANK) for part in re.findall(f"{opening}(.*?){closing}", text)]


def punctuation_findings(token, text, language):
    if language == "fr":
        yield from french_findings(token, text)
    elif re.search(r"\s[?!:;,.]", text):
        yield f"{token} has a blank before a mark."
    if language == "es" and (text.count("¿"), text.count("¡")) != (text.count("?"), text.count("!")):
        yield f"{token} does not open a question or an exclamation."
    if language in IDEOGRAPHIC and re.search(r"[?!,;:.]", text):
        yield f"{token} has a narrow mark between wide characters."


def french_findings(token, text):
    without = re.sub(f"{NARROW_BLANK}(?=[?!:;»])|(?<=«){NARROW_BLANK}", "", text)
    marks = len(re.findall("[?!:;«»]", text))
    if len(text) - len(without) != marks or NARROW_BLANK in without or "\u00a0" in without:
        yield f"{token} lacks a narrow blank at a mark."


def address_findings(token, text, language):
    if language in OTHER_FORM_OF_ADDRESS and re.search(OTHER_FORM_OF_ADDRESS[language], text):
        yield f"{token} addresses the user in another form than the other texts."


def sentence_findings(token, text, base_text):
    if sentence_end(text) != sentence_end(base_text):
        yield f"{token} and the base do not end alike."


def sentence_end(text):
    """"?" of a question in any script, "." of a statement, nothing without a mark. An exclamation is a matter of taste."""
    return unicodedata.normalize("NFKC", text[-1:]).replace("。", ".").rstrip("!") if text[-1:] in ".。?？!！" else ""


def findings(language, table, base):
    yield from token_findings(table, base)
    for token in sorted(table.keys() & base.keys()):
        text = table[token]
        yield from placeholder_findings(token, text, base[token])
        yield from product_findings(token, text, base[token])
        yield from typesetting_findings(token, text)
        yield from quotation_findings(token, text, language)
        yield from punctuation_findings(token, text, language)
        yield from address_findings(token, text, language)
        yield from sentence_findings(token, text, base[token])
        if language != BASE and len(text.split()) > 2 and text == base[token]:
            yield f"{token} is not translated."
