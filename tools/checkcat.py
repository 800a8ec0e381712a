#!/usr/bin/env python3
"""Holds the texts of the catalogues against each other and against the sources that ask for them.

    checkcat.py [--unused] [ROOT]

ROOT is the source tree (the one this file lies in). Each fault is a line "FILE:LINE: KEY: what is wrong"; the status is 1
if there was one. With --unused a text that no source asks for is a fault as well, unless a rule keeps it.

The rules that a text must meet stand in the English catalogue, in comments of the form "$ rule NUMBERS: WORDS"; its head
explains the words. The sources are read for calls of the fetching functions. A number may be written there as a literal,
an enumerator, a choice between such (?:), a sum with the counter of a for loop, a field of a table's row, or a parameter:
then the function counts as a fetching function itself and its callers are read in the same way. Rows of menus name their
numbers beside the English text, which is held against the catalogue.
"""
import re
import sys
from collections import namedtuple
from pathlib import Path

REFERENCE = "en_US"
CORE, HELP, STRINGS = "CoreString", "PrtHelp", "PrtString"
MENU_TEXT, FETCH, TOPIC, TTY_SET, SAY_SET = 127, 2047, 63, 25, 40
FOLDERS = ("common", "menu", "help", "print", "SnmpPkg", "xmt", "prndeck", "siblings")
# Tables of windows, whose texts stand in *Desc.cpp beside them, and where the names of their sets are told.
WINDOWS = (("prndeck/gui/PrdGuiWindows.cpp", "prndeck/core/PrdSets.h"),
           ("siblings/prnpnxxtty/window/Window.cpp", "siblings/prnpnxxtty/window/WindowDesc.h"))
FETCHERS = "NlsUtils"  # its own sources hand numbers through

Fault = namedtuple("Fault", "file line key what")
Text = namedtuple("Text", "value line")


# ---- Catalogue sources

class Catalogue:
    """One message source: texts by key, rules by key, and what was wrong with its form."""

    ESCAPES = {"n": "\n", "t": "\t"}

    def __init__(self, path):
        self.path = path
        self.texts, self.rules, self.faults = {}, {}, []
        self.set = self.quote = None
        self.spans = []  # numbers that rules name: line, set, first, last
        self.lines = path.read_bytes().decode("utf-8", "replace").split("\n")
        self.at = 0
        while self.at < len(self.lines):
            self.read_line(self.next_line())

    def next_line(self):
        self.at += 1
        return self.lines[self.at - 1]

    def fault(self, key, what):
        self.faults.append(Fault(self.path, self.at, key, what))

    def put(self, key, value, line):
        if key in self.texts:
            self.fault(key, "is there twice, first in line %d" % self.texts[key].line)
        self.texts[key] = Text(value, line)

    def read_line(self, line):
        if line == "":
            return
        if line == "$" or line[:2] in ("$ ", "$\t"):
            return self.read_rule(line)
        if line[0] == "$":
            return self.read_directive(*(line[1:].split(None, 1) + [""])[:2])
        number = re.match(r"(\d+) ?", line)
        if not number or self.set is None:
            return self.fault("-", "this is neither a text nor a directive: %s" % line)
        start = self.at
        self.put("%d_%d" % (self.set, int(number[1])), self.read_text(line[number.end():]), start)

    def read_directive(self, word, argument):
        if word == "set" and argument.strip().isdigit():
            self.set = int(argument)
        elif word == "quote" and len(argument) < 2:
            self.quote = argument or None
        elif word == "record" and argument:
            start, value = self.at, []
            while self.at < len(self.lines) and self.lines[self.at] != "$end":
                value.append(self.next_line())
            if self.at == len(self.lines):
                return self.fault(argument, "the record has no $end")
            self.next_line()
            self.put(argument, "\n".join(value), start)
        else:
            self.fault("-", "unknown directive $%s" % word)

    def read_text(self, raw):
        while re.search(r"(^|[^\\])(\\\\)*\\$", raw) and self.at < len(self.lines):
            raw = raw[:-1] + self.next_line()
        if self.quote and raw[:1] == self.quote and raw[-1:] == self.quote and len(raw) > 1:
            raw = raw[1:-1]
        return re.sub(r"\\([0-7]{1,3}|.)", lambda m: chr(int(m[1], 8)) if m[1][0] in "01234567"
                      else self.ESCAPES.get(m[1], m[1]), raw)

    def read_rule(self, line):
        rule = re.match(r"\$ rule ([\d,-]+): (.*)", line)
        if not rule:
            return
        for span in rule[1].split(","):
            first, _, last = span.partition("-")
            self.spans.append((self.at, self.set, int(first), int(last or first)))
            for number in range(int(first), int(last or first) + 1):
                self.rules.setdefault("%d_%d" % (self.set, number), {}).update(self.rule_words(rule[2]))

    def rule_words(self, text):
        words = {}
        while text:
            if text.startswith("kept "):
                words["kept"], text = text[5:], ""
                continue
            phrase, _, text = text.partition(", ")
            word, _, argument = phrase.partition(" ")
            if word not in ("args", "menu", "list", "line", "question", "key", "tilde", "width", "window", "ascii"):
                self.fault("-", "unknown word in a rule: %s" % word)
            words[word] = argument or True
        return words


def directives(text):
    """The printf arguments of a text, one letter each; ? for a directive that no argument can fit."""
    letters = ""
    for found in re.finditer(r"%(%|[-+ #0]*(?:\d*|\*)(?:\.(?:\d*|\*))?(hh|h|ll|l|L|z|j|t)?(.?))", text, re.S):
        if found[1] == "%":
            continue
        simple = not found[2] and found[3] in ("s", "i", "d", "c", "x", "f") and "*" not in found[1]
        letters += "L" if found[2] == "L" and found[3] == "g" else found[3] if simple else "?"
    return letters


def normal_form(text):
    """A language table as the program keeps it: words, each followed by a blank or by a blank and a line feed."""
    out, ends = "", False
    for word, end in re.findall(r"([^\s=#]\S*|=)(\n)?", re.sub(r"#[^\r\n]*", "", text)):
        if word == "=":
            out += "= "
            continue
        out += word + (" \n" if ends or end else " ")
        ends = word == "Default"
    return out


def items(value):
    """The items of a model's record, and what is wrong with its form."""
    found, wrong, name, lines = {}, [], None, []
    for line in value.split("\n"):
        if line.startswith(".sppditem "):
            if name:
                wrong.append("item %s has no end mark" % name)
            name, lines = line[len(".sppditem "):], []
            if name in found:
                wrong.append("item %s is there twice" % name)
        elif line.startswith(".eppditem"):
            if name and not lines:
                wrong.append("item %s has no line between its marks" % name)
            if name:
                found[name] = "\n".join(lines)
            name = None
        elif name:
            lines.append(line)
        else:
            wrong.append("text outside the items: %s" % line)
    return found, wrong + (["item %s has no end mark" % name] if name else [])


# ---- Texts against each other

class Checker:
    def __init__(self, root):
        self.root, self.faults = Path(root), []
        self.data = self.root / "data"
        self.languages = {}  # language: catalogue name: Catalogue
        for path in sorted((self.data / "catalogue").glob("*/*.msg")):
            catalogue = Catalogue(path)
            self.languages.setdefault(path.parent.name, {})[path.stem] = catalogue
            self.faults += catalogue.faults

    def fault(self, path, line, key, what):
        self.faults.append(Fault(path, line, key, what))

    def reference(self, name):
        return self.languages[REFERENCE][name]

    def check_data(self):
        for language in sorted(set(self.languages) | {REFERENCE}):
            for name in (CORE, HELP, STRINGS):
                if name not in self.languages.get(language, {}):
                    self.fault(self.data / "catalogue" / language, 0, name, "there is no such catalogue")
        if self.faults:
            return False
        for language, catalogues in sorted(self.languages.items()):
            self.check_core(catalogues[CORE])
            self.check_help(catalogues[HELP])
        self.check_strings(self.reference(STRINGS))
        self.check_spans(self.reference(CORE))
        self.check_table()
        return True

    def check_core(self, catalogue):
        english = self.reference(CORE)
        for key in english.texts.keys() - catalogue.texts.keys():
            self.fault(catalogue.path, 0, key, "is missing in this language")
        for key, text in catalogue.texts.items():
            if key not in english.texts:
                self.fault(catalogue.path, text.line, key, "has no English text")
                continue
            rule = english.rules.get(key, {})
            for what in self.text_faults(text.value, english.texts[key].value, rule):
                self.fault(catalogue.path, text.line, key, what)
        for word in ("key", "tilde"):
            self.check_letters(catalogue, english, word)

    def text_faults(self, text, english, rule):
        latin = "ascii" not in rule
        if not re.fullmatch(r"[\n\t -~\xa0-\xff]*" if latin else r"[\n\t -~]*", text):
            yield "holds a character that is not in Latin-1" if latin else "holds a character that is not ASCII"
        yield from self.printf_faults(text, rule.get("args", ""))
        if len(text) > FETCH:
            yield "is longer than %d characters" % FETCH
        if "menu" in rule and len(text) > MENU_TEXT:
            yield "is longer than the %d characters of a menu text" % MENU_TEXT
        if "width" in rule and len(text) > int(rule["width"]):
            yield "is longer than %s characters" % rule["width"]
        if "list" in rule and self.list_form(text) != self.list_form(english):
            yield "as a list it has other entries than the English one"
        if "line" in rule and (text.count("\n") != 1 or text[-1] != "\n"):
            yield "must hold one line feed, at its end"
        if "question" in rule and "?" in text:
            yield "holds a question mark; the program adds it"
        if "window" in rule:
            yield from self.window_faults(text, rule)
        if self.edges(text) != self.edges(english):
            yield "begins or ends with other blanks or line feeds than the English text"

    @staticmethod
    def printf_faults(text, wanted):
        got = directives(text)
        if got != wanted:
            yield "takes the arguments \"%s\", not \"%s\"" % (got, wanted)
        elif not wanted and "%" in text:
            yield "holds a percent sign though it takes no arguments"

    @staticmethod
    def window_faults(text, rule):
        """The reader of descriptions takes these for its own; in a list a comma is meant."""
        for ch in sorted(set("(),;<>{}\\") - set("," if "list" in rule else "")):
            if ch in text:
                yield "holds \"%s\", which ends a text in a window's description" % ch
        if text.startswith("~"):
            yield "begins with a mnemonic's mark, which stands behind its letter"

    @staticmethod
    def list_form(text):
        return [re.match(r"[_ ]*", entry)[0] for entry in text.split(",")]

    @staticmethod
    def edges(text):
        return re.match(r"\s*", text)[0], re.search(r"\s*$", text)[0]

    def check_letters(self, catalogue, english, word):
        taken = {}
        for key, text in catalogue.texts.items():
            if word not in english.rules.get(key, {}):
                continue
            form = r"([a-z0-9]) " if word == "key" else r"~([a-z]) "
            letter = re.match(form, text.value)
            if not letter:
                self.fault(catalogue.path, text.line, key, "must begin with the letter that chooses it")
            elif letter[1] in taken:
                self.fault(catalogue.path, text.line, key, "has the letter of %s" % taken[letter[1]])
            else:
                taken[letter[1]] = key

    def check_spans(self, catalogue):
        for line, group, first, last in catalogue.spans:
            if not any("%d_%d" % (group, number) in catalogue.texts for number in range(first, last + 1)):
                self.fault(catalogue.path, line, "%d_%d" % (group, first), "has a rule but no text")

    def check_help(self, catalogue):
        english = self.reference(HELP)
        for key in english.texts.keys() ^ catalogue.texts.keys():
            self.fault(catalogue.path, 0, key, "this topic is not in all languages")
        for key, text in catalogue.texts.items():
            redirect = re.search(r"\$\$([^.]*)\.redirect", text.value, re.I)
            if redirect and (redirect[1] not in catalogue.texts or len(redirect[1]) > TOPIC):
                self.fault(catalogue.path, text.line, key, "sends the reader to %s, which is no topic" % redirect[1])

    def check_strings(self, catalogue):
        for key, text in catalogue.texts.items():
            if ".sppditem" in text.value:
                for what in items(text.value)[1]:
                    self.fault(catalogue.path, text.line, key, what)
            if re.search(r"[^\n\t -~]", text.value):
                self.fault(catalogue.path, text.line, key, "holds a character that is not ASCII")

    def check_table(self):
        path = self.data / "trans.conf"
        table = normal_form(path.read_text("latin-1"))
        named = set(re.findall(r"(\S+) =", table)) | set(re.findall(r"Default (\S+)", table))
        for language in named ^ set(self.languages):
            self.fault(path, 0, language, "this language is not both in the table and among the catalogues")
        if self.reference(CORE).texts.get("999_1", Text("", 0)).value != table:
            self.fault(self.reference(CORE).path, 0, "999_1", "is not the normal form of trans.conf: %r" % table)

    # ---- Texts against the sources

    def check_sources(self, flUnused):
        english = self.reference(CORE)
        asked = set()
        sources = Sources(self.root, self.fault)
        self.check_string_keys(sources)
        for table, sets in WINDOWS:
            asked |= self.check_windows(english, table, sets)
        self.check_menu_rows(sources, english)
        for use in list(sources.uses()) + [row.use for row in sources.menu_rows + sources.sentences]:
            asked.add(use.key)
            text = english.texts.get(use.key)
            if text is None:
                self.fault(use.file, use.line, use.key, "is asked for and stands in no catalogue")
            elif use.menu:
                self.check_menu(use)
            if text and use.signature is not None and not self.fits(directives(text.value), use.signature):
                self.fault(use.file, use.line, use.key, "gets the arguments \"%s\" for a text that takes \"%s\""
                           % (use.signature, directives(text.value)))
        for key, text in english.texts.items():
            kept = "kept" in english.rules.get(key, {}) or key == "999_1"
            if flUnused and key not in asked and not kept:
                self.fault(english.path, text.line, key, "no source asks for this text and no rule keeps it")

    def check_windows(self, english, table, sets_file):
        """A window's text asks for the texts 1, 2 ... of its set, one a hole; what stands there beyond is not used."""
        path, asked = self.root / table, set()
        if not path.exists():
            return asked
        texts = {}
        for source in sorted(path.parent.glob("*Desc.cpp")):
            found = re.findall(r"const char (\w+)\[\] =(.*?);\n(?:\n|\Z)", source.read_text("utf-8"), re.S)
            texts.update((name, body.count("%s")) for name, body in found)
        sets = dict(re.findall(r"(SET_\w+) = (\d+)", (self.root / sets_file).read_text("utf-8")))
        rows = re.findall(r'\{"\w+",\s*(\w+),\s*(\w+)', path.read_text("utf-8"))
        for name in sorted(texts.keys() ^ {name for name, _ in rows}):
            self.fault(path, 0, name, "has no row in the table of windows" if name in texts else "is no text of a file *Desc.cpp")
        for name, number in rows:
            if name not in texts or number not in sets:
                self.fault(path, 0, name, "its set %s is not in %s" % (number, sets_file)) if number not in sets else None
                continue
            keys = {"%s_%d" % (sets[number], i + 1) for i in range(texts[name])}
            there = {key for key in english.texts if key.startswith(sets[number] + "_")}
            for key in sorted(keys ^ there):
                self.fault(path, 0, key, "%s %s" % (name, "asks for it and it stands in no catalogue" if key in keys
                                                    else "has no hole for it"))
            asked |= keys
        return asked

    @staticmethod
    def fits(wanted, given):
        return len(wanted) <= len(given) and all(g in ("?", w) for w, g in zip(wanted, given))

    def check_string_keys(self, sources):
        """Keys and items of the models' records that the sources name."""
        texts = self.reference(STRINGS).texts
        held = {item for text in texts.values() if ".sppditem" in text.value for item in items(text.value)[0]}
        for name, place, known in (("GetPpdKeyValue", 1, held), ("FetchEngPrtStrDBValue", 0, texts)):
            for file in sources.files:
                for at, spans in file.calls(name):
                    token = file.tokens[spans[place][0]] if len(spans) > place else None
                    if token and token.kind == "text" and token.text.strip('"') not in known:
                        self.fault(file.path, token.line, token.text.strip('"'), "is asked for and stands in no record")

    def check_menu_rows(self, sources, english):
        """A number that was mistyped gets another text than the one that the row tells."""
        for row in sources.menu_rows + sources.sentences:
            there = english.texts.get(row.use.key)
            if there and row.text != there.value:
                self.fault(row.use.file, row.use.line, row.use.key, "is \"%s\", and the menu's row has %s beside the number"
                           % (there.value, "no text" if row.text is None else "\"%s\"" % row.text))

    def check_menu(self, use):
        for catalogues in self.languages.values():
            text = catalogues[CORE].texts.get(use.key, Text("", 0))
            if len(text.value) > MENU_TEXT:
                self.fault(catalogues[CORE].path, text.line, use.key, "is longer than the %d characters of a menu text"
                           % MENU_TEXT)


# ---- Sources

Token = namedtuple("Token", "kind text line")
Function = namedtuple("Function", "file name params start end static")
Use = namedtuple("Use", "file line key menu signature")
Param = namedtuple("Param", "index offset")
MenuRow = namedtuple("MenuRow", "use text")


class Fetcher(namedtuple("Fetcher", "group number count menu signature values")):
    """A fetching function: where set, number, count and the first printf value stand among its arguments.

    A group that is no position is a tuple with the set itself; a wrapper has its signature written down."""


KNOWN = {
    "NlsText": Fetcher(1, 2, None, False, None, None),
    "Nlsfprintf": Fetcher(2, 3, None, False, None, 4),
    "Nlssprintf": Fetcher(3, 4, None, False, None, 5),
    "NlsFetchString": Fetcher(4, 5, None, False, None, None),
    "NlsTtyMenuCvt": Fetcher((TTY_SET,), 1, None, True, None, None),
    "NlsTtyMenuItemCvt": Fetcher((TTY_SET,), 1, 2, True, None, None),
    "NlsTtyMenuItemStateCvt": Fetcher((TTY_SET,), 1, 2, True, None, None),
    "NlsTtyMenuItemPromptCvt": Fetcher((TTY_SET,), 1, 2, True, None, None),
}

# Fields of a menu and its rows that hold numbers, and the fields with their English texts. FillMenuTexts walks them.
MENU_FIELDS = {"nlsTitle": "title", "nlsText": "text", "nlsPrompt": "prompt", "nlsChoices": "choices"}

LEXEMES = re.compile(r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|\#(?:[^\n\\]|\\.)*)|(?P<text>"(?:[^"\\]|\\.)*")|(?P<char>'(?:[^'\\]|\\.)*')
    |(?P<number>\d[\w']*)|(?P<name>[A-Za-z_]\w*)|(?P<mark>->|::|<<|>>|&&|\|\||[<>=!+*/%&|^-]=|\+\+|--|.)""", re.S | re.X)


class Source:
    """One file: its tokens, constants, records, tables and functions."""

    def __init__(self, path):
        self.path, self.tokens, line = path, [], 1
        content = path.read_text("latin-1")
        for found in LEXEMES.finditer(content):
            if found.lastgroup != "skip":
                self.tokens.append(Token(found.lastgroup, found[0], line))
            line += found[0].count("\n")
        self.words = [token.text for token in self.tokens]
        self.enums = list(self.find_enums())
        self.records = dict(self.find_records())
        self.tables = dict(self.find_tables())
        self.functions = list(self.find_functions())

    def close(self, at):
        """The position of the bracket that closes the one at this position."""
        depth = 0
        for i in range(at, len(self.words)):
            depth += (self.words[i] in ("(", "{", "[")) - (self.words[i] in (")", "}", "]"))
            if depth == 0:
                return i
        return len(self.words) - 1

    def open(self, at):
        depth = 0
        for i in range(at, -1, -1):
            depth += (self.words[i] in (")", "}", "]")) - (self.words[i] in ("(", "{", "["))
            if depth == 0:
                return i
        return 0

    def split(self, start, end):
        """The spans between commas of one bracket level."""
        spans, first, at = [], start, start
        while at < end:
            if self.words[at] in ("(", "{", "["):
                at = self.close(at)
            elif self.words[at] == ",":
                spans.append((first, at))
                first = at + 1
            at += 1
        return spans + ([(first, end)] if first < end else [])

    def find_enums(self):
        """(name, span of its value or null, name in front)."""
        for at, word in enumerate(self.words):
            if word == "enum" and "{" in self.words[at:at + 6]:
                brace, before = self.words.index("{", at), None
                for first, end in self.split(brace + 1, self.close(brace)):
                    yield self.words[first], (first + 2, end) if end > first + 1 else None, before
                    before = self.words[first]
            if word == "constexpr" and self.words[at + 1:at + 2] in (["int"], ["size_t"]) and self.words[at + 3] == "=":
                yield self.words[at + 2], (at + 4, self.words.index(";", at)), None

    def find_records(self):
        """A record's fields in their order."""
        for at, word in enumerate(self.words):
            if word == "struct" and self.words[at + 2:at + 3] == ["{"]:
                fields, first, i, end = [], at + 3, at + 3, self.close(at + 2)
                while i < end:
                    if self.words[i] == "{":
                        i = self.close(i)
                    elif self.words[i] == ";":
                        names = self.words[first:i]
                        names = names[:names.index("=")] if "=" in names else names
                        pointer = [names[j + 2] for j in range(len(names) - 2) if names[j:j + 2] == ["(", "*"]]
                        names = [n for n in names[:names.index("[")] if n] if "[" in names else names
                        fields.append(pointer[0] if pointer else names[-1] if names else "")
                        first = i + 1
                    i += 1
                yield self.words[at + 1], fields

    def find_tables(self):
        """Tables of records: name to (record, spans of the rows)."""
        for at in range(1, len(self.words) - 4):
            if self.words[at + 1] == "[" and self.tokens[at].kind == self.tokens[at - 1].kind == "name":
                end = self.close(at + 1)
                if self.words[end + 1:end + 3] == ["=", "{"]:
                    yield self.words[at], (self.words[at - 1], self.split(end + 3, self.close(end + 2)))

    def find_functions(self):
        at = 0
        while at < len(self.words):
            if self.words[at] != "{":
                at += 1
                continue
            head = at - 1
            while head > 0 and self.words[head] in ("const", "noexcept", "override"):
                head -= 1
            if self.words[head] == ")":
                start, end = self.open(head), self.close(at)
                params = [self.param_name(span) for span in self.split(start + 1, head)]
                static = "static" in self.line_front(start)
                yield Function(self, self.words[start - 1], params, at, end, static)
                at = end
            elif "namespace" in self.words[max(0, at - 2):at] or self.tokens[at - 1].kind == "text":
                pass  # what stands in it is looked at
            else:
                at = self.close(at)
            at += 1

    def line_front(self, at):
        first = at
        while first > 0 and self.words[first - 1] not in (";", "}", "{"):
            first -= 1
        return self.words[first:at]

    def param_name(self, span):
        words = self.words[span[0]:span[1]]
        words = words[:words.index("=")] if "=" in words else words
        names = [w for w in words if re.match(r"[A-Za-z_]", w)]
        return names[-1] if names else ""

    def function_at(self, at):
        return next((f for f in self.functions if f.start < at < f.end), None)

    def calls(self, name):
        """The argument spans of each call; declarations and definitions are none."""
        for at, word in enumerate(self.words[:-1]):
            if word == name and self.words[at + 1] == "(" and self.function_at(at):
                yield at, self.split(at + 2, self.close(at + 1))


class Sources:
    def __init__(self, root, fault):
        self.report = fault
        paths = sorted(p for folder in FOLDERS for p in (root / folder).rglob("*") if p.suffix in (".cpp", ".h"))
        self.files = [Source(path) for path in paths]
        self.headers = [f for f in self.files if f.path.suffix == ".h"]
        self.constants = {}  # file: name: value
        self.menu_rows = [row for file in self.files for row in self.find_menu_rows(file)]
        self.sentences = [row for file in self.files for row in self.find_sentences(file)]

    def find_menu_rows(self, file):
        for at, word in enumerate(file.words):
            if word in MENU_FIELDS and file.words[at - 2] in ("{", ",") and file.words[at + 1] == "=":
                brace = self.brace_around(file, at)
                cells = {file.words[a + 1]: (a + 3, b) for a, b in file.split(brace + 1, file.close(brace))}
                number = self.values(file, cells[word], None, None)
                line = file.tokens[at].line
                if not number:
                    self.report(file.path, line, word, "which text this asks for can't be read from the source")
                for n in number:
                    text = self.literal(file, cells[MENU_FIELDS[word]]) if MENU_FIELDS[word] in cells else None
                    yield MenuRow(Use(file.path, line, "%d_%d" % (TTY_SET, n), True, None), text)

    def find_sentences(self, file):
        """Records of their own: Sentence NAME = {NUMBER, "English text"}."""
        for at, word in enumerate(file.words[:-5]):
            if word == "Sentence" and file.words[at + 2:at + 4] == ["=", "{"]:
                number, text = file.split(at + 4, file.close(at + 3))
                for n in self.values(file, number, None, None):
                    yield MenuRow(Use(file.path, file.tokens[at].line, "%d_%d" % (SAY_SET, n), False, None), self.literal(file, text))

    @staticmethod
    def brace_around(file, at):
        depth = 0
        while depth <= 0:
            at -= 1
            depth += (file.words[at] in ("(", "{", "[")) - (file.words[at] in (")", "}", "]"))
        return at

    @staticmethod
    def literal(file, span):
        """The text of a literal, or of the array of characters that is named."""
        first, end = span
        if file.tokens[first].kind == "name":
            heads = (i for i in range(len(file.words) - 4) if file.words[i:i + 5] == ["char", file.words[first], "[", "]", "="])
            first = next(heads, None)
            if first is None:
                return None
            first, end = first + 5, file.words.index(";", first)
        words = file.tokens[first:end]
        if not words or any(token.kind != "text" for token in words):
            return None
        return re.sub(r"\\(.)", lambda m: Catalogue.ESCAPES.get(m[1], m[1]), "".join(token.text[1:-1] for token in words))

    def uses(self):
        """Every text that is asked for. Wrappers are followed until no new one turns up."""
        todo = [(name, fetcher, None) for name, fetcher in KNOWN.items()]
        seen = set()
        while todo:
            name, fetcher, only = todo.pop()
            if (name, fetcher, only) in seen:
                continue
            seen.add((name, fetcher, only))
            for file in [only] if only else self.files:
                if file.path.stem == FETCHERS:
                    continue
                for at, spans in file.calls(name):
                    for found in self.call_uses(file, at, spans, fetcher):
                        if isinstance(found, Use):
                            yield found
                        else:
                            todo.append(found)

    def call_uses(self, file, at, spans, fetcher):
        if fetcher.number >= len(spans):  # by a key of its own
            yield from self.key_uses(file, at, spans)
            return
        first, end = spans[fetcher.number]
        if file.words[end - 1] in MENU_FIELDS and file.words[end - 2] in (".", "->"):
            return  # the rows themselves are read
        signature = self.signature(file, at, spans, fetcher)
        numbers = []
        for row in self.rows(file, at, spans):
            group = [fetcher.group[0]] if isinstance(fetcher.group, tuple) else self.values(file, spans[fetcher.group], at, row)
            number = self.values(file, spans[fetcher.number], at, row)
            count = [1] if fetcher.count is None else self.values(file, spans[fetcher.count], at, row)
            numbers += [(g, n, c) for g in group for n in number for c in count]
        if not numbers:
            self.report(file.path, file.tokens[at].line, file.words[at], "which text this asks for can't be read from the source")
        for group, number, count in numbers:
            if isinstance(number, Param) and isinstance(group, int):
                yield self.wrapper(file, at, fetcher, group, number, count, signature)
            elif isinstance(group, Param) or isinstance(number, Param) or isinstance(count, Param):
                self.report(file.path, file.tokens[at].line, file.words[at], "set or count is a parameter: write it here")
            else:
                for i in range(count):
                    yield Use(file.path, file.tokens[at].line, "%d_%d" % (group, number + i), fetcher.menu, signature)

    def key_uses(self, file, at, spans):
        first, end = spans[-1]
        key = file.words[first].strip('"')
        if end == first + 1 and re.fullmatch(r"\d+_\d+", key):
            yield Use(file.path, file.tokens[at].line, key, False, None)

    def wrapper(self, file, at, fetcher, group, number, count, signature):
        function = file.function_at(at)
        if number.offset or (fetcher.count is not None and count != 1):
            self.report(file.path, file.tokens[at].line, file.words[at], "a wrapper must hand its number on as it is")
        made = Fetcher((group,), number.index, None, fetcher.menu, signature, None)
        return function.name, made, file if function.static else None

    def signature(self, file, at, spans, fetcher):
        """The printf letters that go with the text, as far as the call shows them; null when it does not."""
        if fetcher.signature is not None:
            return fetcher.signature
        if fetcher.values is not None:
            return "?" * (len(spans) - fetcher.values)
        if file.words[at - 2:at] == ["NlsFmt", "("]:
            return self.format_letters(file, at - 1)
        if file.words[at - 1] == "=":  # kept in a variable: look for the format that takes it
            function = file.function_at(at)
            local = file.words[at - 3] == "*" or file.tokens[at - 3].kind == "name"
            first, last = (function.start, function.end) if local else (0, len(file.words))
            for i in range(first, last):
                if file.words[i:i + 3] == ["NlsFmt", "(", file.words[at - 2]]:
                    return self.format_letters(file, i + 1)
        return None

    @staticmethod
    def format_letters(file, bracket):
        spans = file.split(bracket + 1, file.close(bracket))
        shown = len(spans) > 1 and file.tokens[spans[1][0]].kind == "text"
        return file.words[spans[1][0]].strip('"') if shown else None

    # ---- Values

    def rows(self, file, at, spans):
        """One binding of a row's name for each row of the tables it may come from; one empty binding without a row."""
        for first, end in spans:
            for i in range(first, end - 2):
                if file.words[i + 1] in (".", "->") and file.tokens[i].kind == "name" and file.tokens[i + 2].kind == "name":
                    tables = self.row_tables(file, at, file.words[i], file.words[i + 2])
                    if tables:
                        return [(file.words[i], table, row) for table in tables for row in table[1]]
        return [None]

    def row_tables(self, file, at, name, field):
        function = file.function_at(at)
        for i in range(at, function.start, -1):  # for (const Row &name : Table)
            if file.words[i] == name and file.words[i + 1] == ":" and file.words[i + 2] in file.tables:
                return [file.tables[file.words[i + 2]]]
        return [table for table in file.tables.values() if field in self.fields(file, table[0])]

    def fields(self, file, record):
        return next((f.records[record] for f in [file] + self.headers if record in f.records), [])

    def values(self, file, span, at, row):
        """What an expression can be: numbers and parameters; nothing when it can't be told."""
        first, end = span
        words = file.words[first:end]
        while words and words[0] == "(" and file.close(first) == end - 1:
            first, end = first + 1, end - 1
            words = file.words[first:end]
        question = self.top(words, "?")
        if question:
            colon = self.colon(words, question)
            return (self.values(file, (first + question + 1, first + colon), at, row)
                    + self.values(file, (first + colon + 1, end), at, row))
        for mark in ("+", "-", "*"):
            split = self.top(words, mark)
            if split:
                return self.combine(mark, self.values(file, (first, first + split), at, row),
                                    self.values(file, (first + split + 1, end), at, row))
        if words[:2] == ["static_cast", "<"]:
            return self.values(file, (first + words.index("("), end), at, row)
        if len(words) == 1:
            return self.atom(file, words[0], at, row)
        if len(words) == 3 and words[1] in (".", "->") and row and words[0] == row[0]:
            return self.field(file, row, words[2], at)
        if words[:4] == ["std", "::", "size", "("]:
            return self.size(file, words[4])
        return []

    def size(self, file, name):
        if name in file.tables:
            rows = file.tables[name][1]
            return [len(rows) - (file.words[rows[-1][0]:rows[-1][1]] == ["{", "}"])]
        for i, word in enumerate(file.words[:-3]):
            if word == name and file.words[i + 1] == "[" and not file.function_at(i):
                return self.values(file, (i + 2, file.close(i + 1)), None, None)
        return []

    @staticmethod
    def top(words, mark):
        """The last place of a mark outside of brackets, but for the first word; of question marks the first one."""
        depth, found = 0, 0
        for i, word in enumerate(words):
            depth += (word in ("(", "{", "[")) - (word in (")", "}", "]"))
            if word == mark and depth == 0 and i > 0:
                if mark == "?":
                    return i
                found = i
        return found

    @staticmethod
    def colon(words, question):
        depth = 0
        for i in range(question + 1, len(words)):
            depth += (words[i] == "?") - (words[i] == ":")
            if depth < 0:
                return i
        return len(words)

    @staticmethod
    def combine(mark, left, right):
        results = []
        for a in left:
            for b in right:
                if isinstance(a, Param) and isinstance(b, int) and mark != "*":
                    results.append(Param(a.index, a.offset + (b if mark == "+" else -b)))
                elif isinstance(a, int) and isinstance(b, int):
                    results.append(a + b if mark == "+" else a - b if mark == "-" else a * b)
        return results

    def atom(self, file, word, at, row):
        if word[0].isdigit():
            digits = word.replace("'", "")
            return [int(digits, 8 if re.fullmatch("0[0-7]+", digits) else 0)]
        constant = self.constant(file, word)
        if constant is not None:
            return [constant]
        function = file.function_at(at) if at is not None else None
        if not function:
            return []
        if word in function.params:
            return [Param(function.params.index(word), 0)]
        return self.local(file, function, word, at, row)

    def local(self, file, function, word, at, row):
        """A counter of a for loop gives its whole range, another variable what it was made with."""
        for i in range(at, function.start, -1):
            if file.words[i] != word or file.words[i + 1] != "=":
                continue
            end = next(j for j in range(i, len(file.words)) if file.words[j] in (";", ","))
            values = self.values(file, (i + 2, end), i, row)
            if file.words[i - 3:i - 1] == ["for", "("] and file.words[end + 1:end + 3] == [word, "<"]:
                last = self.values(file, (end + 3, file.words.index(";", end + 1)), i, row)
                return [n for a in values for b in last if isinstance(a, int) and isinstance(b, int) for n in range(a, b)]
            return values
        return []

    def field(self, file, row, name, at):
        _, (record, _), (first, end) = row
        if file.words[first] != "{":
            return []
        cells = file.split(first + 1, end - 1)
        for a, b in cells:
            if file.words[a:a + 3] == [".", name, "="]:
                return self.values(file, (a + 3, b), None, None)
        fields = self.fields(file, record)
        if name in fields and fields.index(name) < len(cells) and file.words[cells[0][0]] != ".":
            return self.values(file, cells[fields.index(name)], None, None)
        return []

    def constant(self, file, name):
        for source in [file] + self.headers:
            if source.path not in self.constants:
                self.constants[source.path] = {}
                self.read_constants(source)
            if name in self.constants[source.path]:
                return self.constants[source.path][name]
        return None

    def read_constants(self, source):
        known = self.constants[source.path]
        for name, span, before in source.enums:
            value = self.values(source, span, None, None) if span else [known.get(before, -1) + 1]
            if value:
                known[name] = value[0]


def check(root, flUnused=False):
    """All faults of a source tree, in the order of files and lines."""
    checker = Checker(root)
    if checker.check_data():
        checker.check_sources(flUnused)
    return sorted(set(checker.faults), key=lambda f: (str(f.file), f.line, f.key, f.what))


def main(words):
    roots = [word for word in words if not word.startswith("-")]
    root = Path(roots[0] if roots else Path(__file__).resolve().parent.parent)
    faults = check(root, "--unused" in words)
    for fault in faults:
        path = Path(fault.file)
        shown = path.relative_to(root) if path.is_relative_to(root) else path
        print("%s:%d: %s: %s" % (shown, fault.line, fault.key, fault.what))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
