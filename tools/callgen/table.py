"""Reads the tables of calls, calls/<family>/<family>.calls.

A row is a head line and one indented line for each parameter:

    identifier entry-point vRECORD FIRST-LAST "category" play [exactly=PLAY] [returns CLASS] [on APIS] [state]
        name class [keywords]

RECORD is the file version that brought this layout of the record; FIRST and LAST are the file
versions that select the row (no LAST: every later one). APIS, for extension calls, are the APIs whose
tables have the entry. state: the class has an UpdateState of its own, written in the room state/;
state=FUNCTION: that only hands the parameters on to a function there. Where parameters say `sets`, it
is made from them.
A CLASS is a value class of calls/model; a type of the published headers stands for its class, which
has a T before the name.

How a call is played:
    plain    the host entry is called with the parameters, translated where they say so
    bind     plain; a name that was never generated is generated first
    gen      the host generates names, which are stored under the recorded ones
    genonce  the same, left out when the first recorded name is known already
    delete   live names are collected, their translations erased, one host call
    skip     never reaches the host, not even for its error
    check    never reaches the host, but its error is read
    test     the host entry is looked for, but not called
    fail     counts as failed
    hand     a function of the executor's room, Play<Entry-point>
    none     no executor has it

exactly=PLAY, behind one of skip, check and fail: how the call is played all the same where a frame is to
be what it was (SPlayerState::playsAll).

Keywords of a parameter:
    hidden      stands behind the visible ones, for the player alone
    noparam     on the stream, but in no parameter list
    notread     in the parameter list, but not on the stream
    arrays      filled from the rest of the record: captured client arrays and their indices
    sets=F      what a seek brings back: the field, or fields, of the record that it goes to
    copies=P    takes the value of parameter P after the read
    joins=P     the strings of parameter P, joined
    =TABLE      translated by a table of names; uniform, attribute: by the current program's
                locations; program, shader: the live name of the record
    out         what stands behind the pointer is what the entry point gives back
    needs=E     how many bytes (data) or items (arrays) stand behind the pointer: a number, a
                parameter, or a product of these. An enumerant counts as what it says, such as the
                values of a pname or the bytes of a type; a pointer as what it points at once the
                call is done. A call that is played plainly fails when its record holds fewer
    room=P      the most that an output takes, where the pointer that its needs name is null
    image       the bytes follow from width, height, depth, format, type and the unpack state; those
                of an output from the pack state
    by-hand     how far the pointer reaches follows from more than the call's own parameters
    unpack      an offset while a pixel unpack buffer is bound; so is every image
    elements    an offset while an element buffer is bound
    null        a null pointer is a value that the entry point knows

Data and arrays say how far they reach. Texts end with their NUL, attribute lists with EGL_NONE, an
SPtr is one item, and nothing is read behind a TPointer.
"""

import re
from dataclasses import dataclass, field


@dataclass
class Parameter:
    name: str
    cls: str
    hidden: bool = False
    noparam: bool = False
    notread: bool = False
    arrays: bool = False
    image: bool = False
    by_hand: bool = False
    unpack: bool = False
    elements: bool = False
    null: bool = False
    out: bool = False
    sets: list = field(default_factory=list)
    copies: str = ""
    joins: str = ""
    table: str = ""
    needs: str = ""
    room: str = ""


@dataclass
class Row:
    family: str
    id: int
    entry: str
    version: int
    first: int
    last: int  # 0: no upper bound
    category: str
    play: str
    exactly: str
    returns: str = ""
    apis: tuple = ()
    state: str = ""
    parameters: list = field(default_factory=list)

    @property
    def class_name(self):
        return f"C{self.family.capitalize()}_{self.entry}_v{self.version}"

    @property
    def sets(self):
        return any(p.sets for p in self.parameters)

    @property
    def listed(self):
        """The parameters of the call's parameter list, in its order."""
        return [p for p in self.parameters if not p.noparam]


STATES = {"egl": "CEglState", "es1": "CEs1State", "es2": "CEs2State", "es3": "CEs2State",
          "ext": "CEs1State"}
PLAYS = {"plain", "bind", "gen", "genonce", "delete", "skip", "check", "test", "fail", "hand", "none"}
HEAD = re.compile(
    r'^(\d+) (\w+) v(\d+) (\d+)-(\d*) "([^"]*)" (\w+)(?: exactly=(\w+))?(?: returns (\S+))?(?: on (\S+))?'
    r'(?: (state(?:=\w+)?))?$')


def cpp_class(word):
    return re.sub(r"\bE?GL", r"T\g<0>", word).replace(",", ", ")


def parse_parameter(line, where):
    name, cls, *keywords = line.split()
    parameter = Parameter(name, cpp_class(cls))
    for word in keywords:
        key, equals, value = word.partition("=")
        if not key:
            parameter.table = value
        elif equals and key == "sets":
            parameter.sets = value.split(",")
        elif equals and key in ("copies", "joins", "needs", "room"):
            setattr(parameter, key, value)
        elif not equals and isinstance(getattr(parameter, key.replace("-", "_"), None), bool):
            setattr(parameter, key.replace("-", "_"), True)
        else:
            raise SystemExit(f"{where}: unknown keyword '{word}'")
    return parameter


def check_reach(row, where):
    """Refuses a pointer whose reach isn't said, or is said by what isn't there."""
    names = {p.name for p in row.parameters}
    for p in row.parameters:
        told = [bool(p.needs), p.image, p.by_hand]
        open_ended = p.cls.startswith(("SDataPtr", "SImage", "SArrayPtr"))
        if open_ended and sum(told) != 1:
            raise SystemExit(f"{where}: {row.entry}: how far does {p.name} reach?")
        words = p.needs.split("*") + [p.room]
        unknown = [w for w in words if w and not w.isdigit() and w not in names]
        if unknown:
            raise SystemExit(f"{where}: {row.entry}: no parameter {', '.join(unknown)}")


def load(path):
    """The rows of one table, in file order."""
    family = path.replace("\\", "/").rsplit("/", 1)[-1].split(".")[0]
    rows = []
    with open(path, encoding="ascii") as table:
        for number, line in enumerate(table, 1):
            where = f"{path}:{number}"
            if not line.strip() or line.startswith("#"):
                continue
            if line[0] == " ":
                rows[-1].parameters.append(parse_parameter(line, where))
                continue
            match = HEAD.match(line.rstrip())
            if not match or match.group(7) not in PLAYS:
                raise SystemExit(f"{where}: not a row: {line.rstrip()}")
            rows.append(Row(family, int(match.group(1)), match.group(2), int(match.group(3)),
                            int(match.group(4)), int(match.group(5) or 0), match.group(6),
                            match.group(7), match.group(8) or "", cpp_class(match.group(9) or ""),
                            tuple((match.group(10) or "").split(",")) if match.group(10) else (),
                            match.group(11) or ""))
    for row in rows:
        check_reach(row, path)
    return rows
