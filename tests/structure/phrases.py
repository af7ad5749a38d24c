#!/usr/bin/env python3
"""Looks for phrases that plain English does without: tests/structure/phrases.py

Prints each place in code, comments, documents and scripts that has one, with what to write instead,
and ends with 1 if there are any.
"""

import re
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
LEFT_OUT = {"build", "out", ".git", "golden", "corpus"}
KINDS = {".h", ".cpp", ".md", ".txt", ".py", ".cmake", ".in", ".1", ".sh", ".bash", ".yml", ""}
# Below a minimum the check would have read next to nothing.
FEWEST = 300

# A phrase, as a regular expression whose blanks may be line breaks, and what to write.
PHRASES = {
    r"[.;:(] who(?! else)": "a noun before 'who': 'callers that'",
    r"(?:by|of|for|from|to|than) who(?! else)": "a noun before 'who': 'callers that'",
    r"com(?:es?|ing) to lie": "'is at', 'maps to'",
    r"let(?:s|ting)? go": "'release', 'unlock', 'drop'",
    r"of (?:ours|theirs|yours|mine|our own)": "'our', 'their', 'your', 'my'",
    r"(?:is|are|was|were) said": "a verb with its subject: 'the README says'",
    r"said so": "what is logged or returned",
    r"without a word": "'silently', 'without a log line'",
    r"for good": "'permanently', 'until the process ends'",
    r"(?:has|have|had|having) (?:\S+ ){0,3}be told": "'needs to know', or a command",
    r"in the books": "'in the memory budget', 'on record'",
    r"as far as": "'if', 'the part that'",
    r"for want of": "'because there is no'",
    r"(?:those who|whoever)": "the noun: 'users of', 'the caller'",
}
# What starts a line of a comment or a list.
GAP = r"(?:\s|(?<=\n)\s*(?:///?<?|#|\*|-)\s)+"


def files():
    for path in sorted(PROJECT.rglob("*")):
        parts = path.relative_to(PROJECT).parts
        if LEFT_OUT.isdisjoint(parts) and path.suffix in KINDS and path.is_file():
            if path != Path(__file__).resolve() and not path.is_symlink():
                yield path


def find(text, patterns):
    """(line, words, advice) of each phrase in `text`."""
    for pattern, advice in patterns:
        for match in pattern.finditer(text):
            line = text.count("\n", 0, match.start()) + 1
            yield line, " ".join(match[0].split()), advice


def main():
    patterns = [(re.compile(rf"(?<!\w)(?:{phrase.replace(' ', GAP)})\b" if phrase[0] != "["
                            else rf"{phrase.replace(' ', GAP)}\b", re.IGNORECASE), advice)
                for phrase, advice in PHRASES.items()]
    found, count = [], 0
    for path in files():
        try:
            text = path.read_text(encoding="utf-8")
        except UnicodeDecodeError:
            continue
        count += 1
        found += [f"{path.relative_to(PROJECT)}:{line}: '{words}': rather {advice}"
                  for line, words, advice in find(text, patterns)]
    print("\n".join(found))
    print(f"{len(found)} phrases to replace in {count} files")
    return 1 if found or count < FEWEST else 0


if __name__ == "__main__":
    sys.exit(main())
