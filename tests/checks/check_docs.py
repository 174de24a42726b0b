#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when a page names what does not exist: a file, a heading, a test, a make target, a build option, a name.

Looked at are all links, and what stands in code spans and code blocks.
"""
import fnmatch
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
NOT_OURS = {".git", "build", "demo-output", "__pycache__"}
FOLDERS = ("bench", "cmake", "docs", "scripts", "source", "tests", "tools", ".ci")
CODE = (".cpp", ".h", ".inc", ".py", ".sh", ".cmake", ".txt", ".json", ".lua")
ENDINGS = "cpp|h|inc|py|sh|cmake|md|json|txt|lua|png|svg|otf|wav|xml|bin|pov"

LINK = re.compile(r"\]\(([^)\s]+)\)")
BLOCK = re.compile(r"^```.*?^```", re.MULTILINE | re.DOTALL)
SPAN = re.compile(r"`([^`\n]+)`")
PATH = re.compile(r"(?<![\w/.~$-])((?:%s)/[\w./*{},-]*)" % "|".join(map(re.escape, FOLDERS)))
BARE_FILE = re.compile(r"(?<![\w/.~*-])([\w*-]+\.(?:%s))(?![\w/])" % ENDINGS)
MAKE = re.compile(r"(?<![\w-])make\s+([a-z][a-z-]*)")
OPTION = re.compile(r"\bCORVANE_[A-Z0-9_]+\b")
PROGRAM = re.compile(r"(?<![\w/])corvane_[a-z0-9_]+\b")
FILTER = re.compile(r"--gtest_filter='?([\w.*:/-]+)'?")
DEFINITION = re.compile(r"^TEST(?:_F|_P)? \((\w+),\s*(\w+)\)", re.MULTILINE)
TEST = re.compile(r"\b([A-Z]\w+)\.([A-Z]\w+)\b")
NAME = re.compile(r"\b(?:[a-z]+[A-Z]\w*|[A-Z]\w*[a-z]\w*[A-Z]\w*)\b")       # lowerCamel, UpperCamel
EMPHASIS = re.compile(r"(?<![*\w])\*([^*\s][^*]*)\*(?![*\w])")                # tests and suites stand in these
PART_OF_PATH = re.compile(r"[\w.*{},-]+(?:/[\w.*{},-]*)+")

# What pages name although the tree does not hold it: what a user or the build makes, and names of others.
OTHERS = {
    "in.wav", "out.wav", "padded.wav", "five.bin", "session.bin", "settings.txt", "macOS", "share/doc/CorvaneQ7",
    "MonoParameter", "MonoButton", "monoButton",  # of the worked examples
    "CorvaneQ7AUFactory", "CorvaneQ7AUEntry",  # made by the framework's wrapper, and not made
}


def all_files():
    for path in ROOT.rglob("*"):
        parts = path.relative_to(ROOT).parts
        if path.is_file() and not NOT_OURS & set(parts):
            yield path


def slug_of(heading):
    text = re.sub(r"[`*]|\[([^\]]*)\]\([^)]*\)", lambda m: m.group(1) or "", heading.strip().lower())
    return re.sub(r"[^\w\- ]", "", text).replace(" ", "-")


def braces(pattern):
    """a.{h,cpp} as a.h and a.cpp."""
    if not (found := re.search(r"\{([^{}]*)\}", pattern)):
        return [pattern]
    head, tail = pattern[:found.start()], pattern[found.end():]
    return [one for part in found.group(1).split(",") for one in braces(head + part + tail)]


class Tree:
    def __init__(self):
        self.files = [path.relative_to(ROOT).as_posix() for path in all_files()]
        self.names = {file.rsplit("/", 1)[-1] for file in self.files}
        self.words, self.tests, self.build = set(), set(), ""

        for file in self.files:
            if file.endswith(CODE) or file == "Makefile":
                text = (ROOT / file).read_text(errors="replace")
                self.words |= set(re.findall(r"\w+", text))
                self.tests |= {".".join(test) for test in DEFINITION.findall(text)}
                if file.endswith(("CMakeLists.txt", ".cmake")):
                    self.build += text
        self.stems = {file.rsplit("/", 1)[-1].rsplit(".", 1)[0] for file in self.files if file.startswith("tests/")}
        self.suites = {test.split(".")[0] for test in self.tests}
        self.suites |= set(re.findall(r"NAME (\w[\w.]*)", self.build))
        self.targets = set(re.findall(r"[a-z][a-z-]*", " ".join(
            re.findall(r"^([a-z][a-z -]*):", (ROOT / "Makefile").read_text(), re.MULTILINE))))

    def has_path(self, path):
        path = path.rstrip("/.,")
        if "*" in path:
            return any(fnmatch.fnmatchcase(file, path) for file in self.files)
        return path in FOLDERS or path in self.files or any(file.startswith(path + "/") for file in self.files)

    def has_bare_file(self, name):
        return bool(fnmatch.filter(self.names, name))

    def has_test(self, suite, name):
        return f"{suite}.{name}" in self.tests or f"NAME {suite}.{name}" in self.build


def faults_of(page, tree):
    text = page.read_text()

    for target in LINK.findall(text):
        if re.match(r"[a-z]+:", target):
            continue
        path, _, anchor = target.partition("#")
        file = (page.parent / path).resolve() if path else page
        if not file.exists():
            yield f"link to {target}: no such file"
        elif anchor and anchor not in map(slug_of, re.findall(r"^#+ (.*)$", file.read_text(), re.MULTILINE)):
            yield f"link to {target}: no such heading"

    blocks = BLOCK.findall(text)
    spans = SPAN.findall(BLOCK.sub("", text))

    for code in blocks + spans:
        for path in PATH.findall(code):
            for one in braces(path):
                if one not in OTHERS and not tree.has_path(one):
                    yield f"{one}: no such file"
        for target in MAKE.findall(code):
            if target not in tree.targets:
                yield f"make {target}: no such target"
        for option in OPTION.findall(code):
            if option not in tree.words:
                yield f"{option}: no such option"
        for program in PROGRAM.findall(code):
            if program not in tree.words:
                yield f"{program}: no such target"
        for patterns in FILTER.findall(code):
            for pattern in re.split("[:-]", patterns):
                if pattern and not fnmatch.filter(tree.tests, pattern.replace("*/", "*")):
                    yield f"--gtest_filter {pattern}: no such test"

    for code in spans:
        for name in BARE_FILE.findall(code):
            if name not in OTHERS and not tree.has_bare_file(name):
                yield f"{name}: no such file"
        if found := TEST.fullmatch(code):
            if not tree.has_test(*found.groups()) and not set(found.groups()) <= tree.words:
                yield f"{code}: no such test"
        for name in NAME.findall(code):
            if name not in tree.words | tree.names | OTHERS:
                yield f"{name}: no such name"
        if code not in OTHERS and PART_OF_PATH.fullmatch(code) and code.split("/")[0] not in FOLDERS + ("build",):
            if not any(fnmatch.fnmatchcase(file, f"*/{one}*") for one in braces(code) for file in tree.files):
                yield f"{code}: no such file"

    for words in EMPHASIS.findall(re.sub(SPAN, "", BLOCK.sub("", text))):
        for name in NAME.findall(words):
            if name not in tree.suites | tree.stems | {test.split(".")[1] for test in tree.tests}:
                yield f"*{name}*: no such test"


def main():
    tree = Tree()
    pages = [path for path in all_files() if path.suffix == ".md"]
    faults = [f"{page.relative_to(ROOT)}: {fault}"
              for page in sorted(pages) for fault in dict.fromkeys(faults_of(page, tree))]
    print("\n".join(faults) or f"{len(pages)} pages name nothing that does not exist")
    return 1 if faults or len(pages) < 10 else 0


if __name__ == "__main__":
    sys.exit(main())
