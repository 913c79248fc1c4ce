"""Finds the places of C++ sources where a small fault can be planted, and plants it there.

The sources are read as tokens: enough to know functions, statements, conditions and fields as our
layout has them. What comes out may still not compile; the build says so.
"""

import bisect
import hashlib
import re
from collections import defaultdict
from dataclasses import dataclass

TOKEN = re.compile(
    r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*)
    |(?P<text>"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*')
    |(?P<word>[A-Za-z_]\w*)|(?P<number>\.?\d(?:[eE][+-]|[\w.'])*)
    |(?P<sign>::|->|\+\+|--|<=>|&&|\|\||<<=|[-+*/%&|^!<>=]=|<<|.)""",
    re.MULTILINE | re.DOTALL | re.VERBOSE)
OPEN, CLOSE = {"(": ")", "[": "]", "{": "}"}, {")", "]", "}"}
FLIPPED = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||",
           "||": "&&"}
OTHER_WORD = {"true": "false", "false": "true", "kPlayed": "kFailed", "kFailed": "kPlayed"}
# A name of the host's headers, or a generated class.
ENUMERANT = re.compile(r"E?GL_[A-Z]\w+$")
CALL_CLASS = re.compile(r"C(?:Egl|Es\d|Ext)_\w+$")
DECLARATION = re.compile(
    r"(?:const|auto|static)\b|[A-Za-z_][\w:]*(?:<.*?>)? [a-z]\w*[({]|"
    r"(?:static |const |constexpr |thread_local )*(?:auto|[A-Za-z_][\w:]*(?: ?<.*>)?)"
    r"(?: const)? ?[&* ]+[A-Za-z_]\w*(?:\[\w*\])? ?[=;]")
NOTHING = re.compile(
    r"return ?(false|0|-1|nullptr|EPlayed::kPlayed|[\w:]*\{\})? ?;|(break|continue) ?;")
FIELD = re.compile(r"^(?:mutable )?([\w: <>,*]+?[ *])(\w+) ?(?:= ?.*|\[.*)?;$", re.DOTALL)


@dataclass
class Candidate:
    file: str
    start: int  # what is replaced, in the file's text
    end: int
    line: int
    kind: str
    before: str
    after: str
    planted: str  # the replacement, with {on} where it asks for its number
    key: str = ""
    number: int = 0


class Source:
    """A file's tokens, with the matches of its brackets."""

    def __init__(self, name, text):
        self.name, self.text = name, text
        self.tokens = [(m.lastgroup, m.group(), m.start(), m.end())
                       for m in TOKEN.finditer(text) if m.lastgroup != "skip"]
        self.lines = [m.start() for m in re.finditer("\n", text)]
        self.match, stack = {}, []
        for i, (group, word, _, _) in enumerate(self.tokens):
            if group == "sign" and word in OPEN:
                stack.append(i)
            elif group == "sign" and word in CLOSE and stack:
                self.match[stack.pop()] = i

    def word(self, i):
        return self.tokens[i][1] if 0 <= i < len(self.tokens) else ""

    def line(self, position):
        return bisect.bisect_left(self.lines, position) + 1

    def span(self, first, last):
        """The text of the tokens from `first` up to but not `last`."""
        return self.text[self.tokens[first][2]:self.tokens[last - 1][3]] if first < last else ""

    def find(self, first, last, *words):
        """The first of the words outside of brackets, or `last`."""
        i = first
        while i < last:
            if self.word(i) in words:
                return i
            i = self.match.get(i, i) + 1
        return last


def one_line(text):
    return " ".join(text.split())


def look(argument):
    """What kind of argument it seems to be: only two of one kind can change places and compile."""
    if re.fullmatch(r".*Value<\w*(?:Pointer|Ptr)\w*>\(\d+\)", argument):
        return "pointer"
    if re.fullmatch(r"-?\d[\w.]*|E?GL_\w+|.*GetValue\(\)|.*Value<[^<>]*(<\d+>)?>\(\d+\)",
                    argument):
        return "number"
    return "name" if re.fullmatch(r"[A-Za-z_][\w.>:\[\]-]*", argument) else None


class Fields:
    """For each class, its fields with others of the same type beside them."""

    def __init__(self):
        self.siblings = defaultdict(dict)
        self.classes_of = defaultdict(list)

    def add(self, owner, fields):
        by_type = defaultdict(list)
        for kind, name in fields:
            by_type[kind].append(name)
        for names in by_type.values():
            for name, other in zip(names, names[1:] + names[:1]):
                if name != other:
                    self.siblings[owner][name] = other
                    self.classes_of[name].append(owner)

    def other(self, source, i, owner):
        """What stands beside the field that token `i` names; None if it names none."""
        name, before = source.word(i), source.word(i - 1)
        if source.word(i + 1) in ("(", "::"):
            return None
        if before in (".", "->") and source.word(i - 2) != "this":
            owners = self.classes_of.get(name, [])
            return self.siblings[owners[0]][name] if owners else None
        return None if before == "::" else self.siblings.get(owner, {}).get(name)


class Finder:
    """Collects the candidates of one source; with `fields` only, the fields of its classes."""

    def __init__(self, source, fields, collect_fields=False):
        self.source, self.fields, self.collect_fields = source, fields, collect_fields
        self.found = []
        self.enumerants = {}
        for pattern in (ENUMERANT, CALL_CLASS):
            names = sorted({t[1] for t in source.tokens if pattern.match(t[1])})
            self.enumerants.update(zip(names, names[1:] + names[:1]))
        self.scope(0, len(source.tokens), None)

    # Outside of functions.

    def scope(self, i, end, owner):
        s, members = self.source, []
        while i < end:
            first = i
            while i < end and s.word(i) not in (";", "{"):
                if s.word(i) == ":" and s.word(i - 1) in ("public", "private", "protected"):
                    first = i + 1
                i = s.match.get(i, i) + 1
            if i >= end:
                break
            if s.word(i) == ";":
                self.member(first, i, members)
                i += 1
                continue
            close = s.match.get(i, end)
            head = re.sub(r"^template ?<.*?> ", "", " ".join(s.word(j) for j in range(first, i)))
            if re.match(r"(inline )?namespace|extern \"", head):
                self.scope(i + 1, close, None)
            elif head.startswith("enum"):
                pass
            elif re.match(r"(class|struct|union)\b", head) and "(" not in head:
                name = re.match(r"\w+ (?:\[ \[ .*? \] \] )?(\w+)", head)
                self.scope(i + 1, close, name.group(1) if name else None)
            elif ")" in head and s.word(i - 1) not in ("=", "{") and (
                    "operator" in head or "=" not in head.split("(")[0]):
                while ") :" in head and s.word(close + 1) in (",", "{") and s.word(i - 1) not in (
                        ")", "}", "const", "override", "noexcept", "final"):
                    i = s.find(close + 1, end, "{")  # that was a member's initialiser
                    close = s.match.get(i, end)
                self.function(first, i, close, head, owner)
            else:  # an initialiser
                i = close + 1
                if s.word(i) == ";":
                    if i == close + 1 and members is not None and "=" not in head:
                        self.remember(re.sub(r" ?\{.*$", "", s.span(first, i)) + ";", members)
                    i += 1
                continue
            i = close + 1
        if self.collect_fields and owner:
            self.fields.add(owner, members)

    def member(self, first, end, members):
        text = one_line(self.source.span(first, end + 1))
        self.remember(text, members)
        equals = self.source.find(first, end, "=")
        if equals < end and not re.match(r".*\b(constexpr|using|operator|typedef|delete|default)\b",
                                         text):
            self.initialiser(equals, end, None)

    @staticmethod
    def remember(text, members):
        found = FIELD.match(one_line(text))
        if found and not re.match(r"(using|static|friend|constexpr|return|extern)\b", text):
            members.append((found.group(1).strip(), found.group(2)))

    def function(self, first, brace, close, head, owner):
        if self.collect_fields or re.search(r"\b(constexpr|consteval)\b", head):
            return
        name = re.search(r"(\w+) :: ~?\w+ \($|(\w+) :: ~?\w+ \(", head.split(")")[0] + "(")
        owner = name.group(1) or name.group(2) if name else owner
        result = re.sub(r"\b(static|inline|virtual|explicit|friend) ", "", head)
        nothing = result.startswith("void ") or re.match(r"(\w+ :: )?~?\w+ \(", result)
        if nothing and result.startswith("void *"):
            nothing = False
        self.block(brace + 1, close, owner, "return;" if nothing else "return {};")

    # Inside of functions.

    def block(self, i, end, owner, early):
        s = self.source
        while i < end:
            word = s.word(i)
            if word == "{":
                self.block(i + 1, s.match.get(i, end), owner, early)
                i = s.match.get(i, end) + 1
            elif word in ("if", "while", "switch", "for", "catch"):
                i = s.find(i, end, "(")
                close = s.match.get(i, end)
                if word in ("if", "while") and s.word(i - 1) != "constexpr":
                    start = s.find(i + 1, close, ";") + 1
                    self.condition(start if start <= close else i + 1, close, owner)
                elif word == "for":
                    start = s.find(i + 1, close, ";") + 1
                    if start <= close:
                        self.condition(start, s.find(start, close, ";"), owner)
                self.lambdas(i + 1, close, owner)
                i = close + 1
            elif word in ("else", "do", "try", ";"):
                i += 1
            elif word in ("case", "default"):
                i = s.find(i, end, ":") + 1
            else:
                last = s.find(i, end, ";")
                if early and s.word(i - 1) in ("{", "}", ";", ":") and not NOTHING.match(
                        s.span(i, last + 1)):
                    self.add(i, i, "early return", "", early, "if ({on}) " + early + " ")
                self.statement(i, last, owner)
                self.lambdas(i, last, owner)
                i = last + 1

    def lambdas(self, first, last, owner):
        """The bodies of functions that stand within an expression."""
        s = self.source
        for i in range(first, last):
            if s.word(i) == "{" and (s.word(i - 1) in (")", "]", "mutable") or
                                     "->" in [s.word(j) for j in range(i - 4, i)]):
                if s.find(i + 1, s.match.get(i, last), ";") < s.match.get(i, last):
                    self.block(i + 1, s.match[i], owner, None)

    def condition(self, first, end, owner):
        text = one_line(self.source.span(first, end))
        if not text or DECLARATION.match(text):
            return
        form = "{on} ? bool({after}) : bool({before})"
        self.changes(first, end, first, end, owner, form)
        plain = not any(f" {sign} " in text for sign in FLIPPED)
        if plain and not text.startswith("!"):
            self.add(first, end, "condition", text, f"!({text})",
                     "{on} ? !({before}) : bool({before})")

    def statement(self, first, semicolon, owner):
        s = self.source
        text = one_line(s.span(first, semicolon + 1))
        if s.word(first) == "return":
            form = "{{ if ({on}) {after} {before} }}"
        elif s.word(first) in ("break", "continue"):
            if s.word(first) == "continue":
                self.drop(first, semicolon, text)
            return
        elif re.match(r"(static_assert|using|static|constexpr|throw|goto|delete)\b", text):
            return
        elif DECLARATION.match(text):
            equals = s.find(first, semicolon, "=")
            if equals < semicolon:
                self.initialiser(equals, semicolon, owner)
            return
        else:
            form = "{{ if ({on}) {{ {after} }} else {{ {before} }} }}"
            self.drop(first, semicolon, text)
        self.changes(first, semicolon + 1, first, semicolon, owner, form)

    def initialiser(self, equals, semicolon, owner):
        if self.source.word(equals + 1) not in ("{", "["):
            self.changes(equals + 1, semicolon, equals + 1, semicolon, owner,
                         "{on} ? ({after}) : ({before})")

    def drop(self, first, semicolon, text):
        self.add(first, semicolon + 1, "dropped", text, "", "{{ if (!{on}) {{ {before} }} }}")

    # The changes of tokens within what a form wraps.

    def changes(self, first, end, inner, inner_end, owner, form):
        s, i = self.source, inner
        while i < inner_end:
            if s.word(i) == "{" and s.find(i + 1, s.match.get(i, i), ";") < s.match.get(i, i):
                i = s.match[i] + 1  # a function's body has its own
                continue
            for kind, stop, new in self.token_changes(i, owner):
                self.change(first, end, kind, i, stop, new, form)
            if s.word(i) == "(" and s.tokens[i - 1][0] == "word" and s.word(i - 1) not in (
                    "if", "while", "sizeof"):
                self.swaps(first, end, i, form)
            i += 1
        if s.word(inner) == "trace" and s.word(inner + 1) == ">":  # a chain of reads
            reads = [i for i in range(inner, inner_end) if s.tokens[i][0] == "word"][1:]
            for one, two in zip(reads, reads[1:]):
                self.change(first, end, "order", one, two + 1,
                            f"{s.word(two)} >> {s.word(one)}", form)

    def token_changes(self, i, owner):
        s = self.source
        group, word, start, end = s.tokens[i]
        spaced = s.text[start - 1].isspace() and s.text[end:end + 1].isspace()
        if word in FLIPPED and spaced:
            yield "condition", i + 1, FLIPPED[word]
        elif word == "!":
            yield "condition", i + 1, ""
        elif group == "number" and s.word(i - 1) != "<" and s.word(i + 1) != ">":
            number = re.match(r"(0[xX][\da-fA-F]+|\d+)([uU]?[lL]{0,2})$", word)
            if number:
                yield "constant", i + 1, str(int(number.group(1), 0) + 1) + number.group(2)
            elif re.match(r"\d+\.\d+F?$", word):
                yield "constant", i + 1, "1" + word
        elif group == "text" and len(word) > 3 and word[-2] not in "n\\":
            yield "constant", i + 1, word[:-2] + word[-1]
        elif word in OTHER_WORD:
            yield "constant", i + 1, OTHER_WORD[word]
        elif word in self.enumerants and self.enumerants[word] != word:
            yield "constant", i + 1, self.enumerants[word]
        elif group == "word":
            other = self.fields.other(s, i, owner)
            if other:
                yield "field", i + 1, other

    def swaps(self, first, end, i, form):
        """Two arguments beside each other change places."""
        s, arguments = self.source, []
        close = s.match.get(i, i)
        while i < close:
            stop = s.find(i + 1, close, ",")
            arguments.append((i + 1, stop))
            i = stop
        for (a, a_end), (b, b_end) in zip(arguments, arguments[1:]):
            one, two = s.span(a, a_end), s.span(b, b_end)
            if one != two and look(one) and look(one) == look(two):
                self.change(first, end, "order", a, b_end, f"{two}, {one}", form)

    def change(self, first, end, kind, i, stop, new, form):
        s = self.source
        begin, finish = s.tokens[first][2], s.tokens[end - 1][3]
        at, till = s.tokens[i][2], s.tokens[stop - 1][3]
        before, changed = s.text[begin:finish], s.text[begin:at] + new + s.text[till:finish]
        self.add(first, end, kind, one_line(before), one_line(changed), form)

    def add(self, first, end, kind, before, after, form):
        s = self.source
        start = s.tokens[first][2]
        finish = s.tokens[end - 1][3] if end > first else start
        original = s.text[start:finish]
        if "//" in original or self.collect_fields:
            return
        planted = form.replace("{after}", "\0").replace("{before}", "\1")
        if kind != "early return":
            planted = planted.replace("{{", "{").replace("}}", "}")
        planted = planted.replace("\0", after).replace("\1", original)
        if kind == "early return":
            before = one_line(s.span(first, s.find(first, len(s.tokens), ";") + 1))
            after = after + " " + before
        self.found.append(Candidate(s.name, start, finish, s.line(start), kind, before, after,
                                    planted))


def find(texts, room_of, seed):
    """All candidates in the texts, by room, in the order in which they are to be taken: the kinds
    by turns, and within a kind by a hash of what the place says, so that most of them are the same
    ones after a change somewhere else."""
    fields = Fields()
    sources = [Source(name, text) for name, text in sorted(texts.items())]
    for source in sources:
        Finder(source, fields, collect_fields=True)
    rooms, seen = defaultdict(lambda: defaultdict(list)), defaultdict(int)
    for source in sources:
        for candidate in Finder(source, fields).found:
            room = room_of(source.name)
            file = re.sub(r"_\d+\.cpp$", ".cpp", source.name)
            text = "\n".join([str(seed), room, file, candidate.kind, candidate.before,
                              candidate.after])
            seen[text] += 1
            candidate.key = hashlib.sha256(f"{text}\n{seen[text]}".encode()).hexdigest()[:10]
            rooms[room][candidate.kind].append(candidate)
    ordered = {}
    for room, kinds in rooms.items():
        turns = []
        for kind, found in sorted(kinds.items()):
            found.sort(key=lambda c: c.key)
            turns += [(turn, kind, candidate) for turn, candidate in enumerate(found)]
        turns.sort(key=lambda t: t[:2])
        ordered[room] = [candidate for _, _, candidate in turns]
    return ordered


def plant(text, candidates):
    """The text with the candidates in it, which don't overlap."""
    for c in sorted(candidates, key=lambda c: -c.start):
        on = f"kestrail_mutants::On({c.number})"
        text = text[:c.start] + c.planted.replace("{on}", on) + text[c.end:]
    return text
