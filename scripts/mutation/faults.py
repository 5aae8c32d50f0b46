"""Faults that one C++ source can have: each is a small edit of its text.

The text is read as tokens, with just as much grammar as clang-format's spacing leaves open: an operator with blanks on
both sides has two operands, a `<` without them opens a template's arguments.
"""
import bisect
import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Fault:
    """An edit of a file, alone or in a build of many.

    `before` and `after` are its lines without and with the edit, joined and stripped. `wraps` are pieces to put around
    parts of the text, (start, end, before, after), and `marks` operators to replace, (start, end, mark), which have the
    same effect while vrk_at(number of the fault) is true; "@" stands for the number. Without wraps there is no such
    form.
    """
    file: str
    line: int
    start: int
    end: int
    replacement: str
    before: str
    after: str
    wraps: tuple
    marks: tuple

    is_swap: bool


@dataclass(frozen=True)
class Token:
    kind: str  # name, number, text, letter or mark
    text: str
    start: int
    end: int


TOKEN = re.compile(r"""
    (?P<skip>\s+|//[^\n]*|/\*.*?\*/)
  | (?P<text>R"(?P<raw>[^(\s]*)\(.*?\)(?P=raw)"|(?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
  | (?P<letter>(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
  | (?P<number>\.?\d(?:'?[\w.]|(?<=[eEpP])[+-])*)
  | (?P<name>[A-Za-z_]\w*)
  | (?P<mark><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|&&|\|\||[-+*/%&|^=!<>]=|.)
""", re.VERBOSE | re.DOTALL)

# A type, and a name behind it.
DECLARATION = re.compile(r"(?:\w+::)*\w+(?:<[^;]*?>)?(?:::\w+)*\s*[*&\s]\s*(?:const\b|[*&\s])*\w+\s*(?:\[[^\]]*\]\s*)?[=;({,]")

OPENING = {"(": ")", "[": "]", "{": "}"}
TURNED = {"<": (">=", "<="), ">": ("<=", ">="), "<=": (">", "<"), ">=": ("<", ">"), "==": ("!=",), "!=": ("==",),
          "&&": ("||",), "||": ("&&",)}
COMPARISONS = {"<", ">", "<=", ">=", "==", "!="}
CONTROLS = {"if", "for", "while", "switch", "do", "else", "try", "catch", "case", "default"}
STATEMENT_NAMES = {"return", "break", "continue", "delete", "throw", "goto"}
DECLARING = {"const", "constexpr", "static", "auto", "using", "typedef", "struct", "class", "enum", "union", "unsigned",
             "signed", "volatile", "extern", "template", "thread_local", "static_assert", "public", "private",
             "protected", "friend", "namespace"}
NOT_CALLED = {"if", "for", "while", "switch", "return", "catch", "sizeof", "alignof", "decltype", "noexcept",
              "static_assert", "max", "min", "swap"}
BOUND = {"<": "vrk_lt", ">": "vrk_gt", "<=": "vrk_le", ">=": "vrk_ge"}
ENDERS = {",", ";", "=", "+=", "-=", "|=", "&=", "?", ":", "return", ""}
BINDS_LESS = {"&&", "||", "&", "|", "^", "<", ">", "<=", ">=", "==", "!="}
SPACED = {"&&", "&", "<", ">"}  # are operators of two operands when there are blanks on both sides
ZEROS = {"0", "0.0", "nullptr", "false", "{}", '""', "true"}
OTHER_SYSTEMS = {"_WIN32", "__APPLE__"}
UNTESTED = "GCOVR_EXCL_LINE"  # what no test can run through


def blank(text, start, end):
    """The text with blanks in a part of it, in which lines stay lines."""
    return text[:start] + re.sub(r"[^\n]", " ", text[start:end]) + text[end:]


def without_directives(text):
    """The text without preprocessor lines and what stands in it for other systems only."""
    active = [True]
    offset = 0
    for line in text.splitlines(keepends=True):
        directive = re.match(r"\s*#\s*(\w+)\s*(\w*)", line)
        if directive:
            word, name = directive.groups()
            if word in ("if", "ifdef", "ifndef"):
                foreign = name in OTHER_SYSTEMS and word != "if"
                active.append(word == "ifndef" if foreign else True)
                if not foreign:
                    active[-1] = None  # both branches may be compiled here
            elif word == "else" and active[-1] is not None:
                active[-1] = not active[-1]
            elif word == "endif":
                active.pop()
        if directive or False in active or UNTESTED in line:
            text = blank(text, offset, offset + len(line))
        offset += len(line)
    return text


def tokens_of(text):
    tokens = []
    for match in TOKEN.finditer(text):
        if match.lastgroup == "skip":
            continue
        kind = "text" if match.lastgroup == "raw" else match.lastgroup
        tokens.append(Token(kind, match.group(), match.start(), match.end()))
    return tokens


class Source:
    """One source and the faults that it can have."""

    def __init__(self, file, text):
        self.file = file
        self.text = text
        self.tokens = tokens_of(without_directives(text))
        self.line_starts = [0] + [match.end() for match in re.finditer("\n", text)]
        self.partner = self.match_brackets()
        self.blocks = self.find_blocks()
        self.asserted = self.find_asserted()
        self.constant = self.find_constant()
        self.faults = []

    def all_faults(self):
        self.operators()
        self.constants()
        self.conditions()
        self.statements()
        self.arguments()
        known = set()
        faults = sorted(self.faults, key=lambda fault: (fault.start, fault.end, fault.replacement))
        return [fault for fault in faults if fault.after != fault.before and
                not (fault.line, fault.after) in known and not known.add((fault.line, fault.after))]

    # ---- the shape of the text

    def word(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def match_brackets(self):
        partner, open_brackets = {}, []
        for index, token in enumerate(self.tokens):
            if token.kind != "mark":
                continue
            if token.text in OPENING:
                open_brackets.append(index)
            elif token.text in OPENING.values():
                opening = open_brackets.pop()
                partner[opening], partner[index] = index, opening
        return partner

    def find_blocks(self):
        """The braces that hold statements, by the index of the opening one."""
        blocks = set()
        kinds = {}  # of every brace: block, scope or value
        stack = []
        for index, token in enumerate(self.tokens):
            if token.kind != "mark" or token.text not in "{}":
                continue
            if token.text == "}":
                stack.pop()
                continue
            kinds[index] = self.kind_of_brace(index, stack[-1] if stack else "scope")
            stack.append(kinds[index])
            if kinds[index] == "block":
                blocks.add(index)
        return blocks

    def kind_of_brace(self, index, around):
        before = self.word(index - 1)
        if around == "block":
            if before in (")", "else", "do", "try", "{", "}", ";", ":", "]", "mutable", "noexcept"):
                return "block"
            header = self.header(index)
            return "scope" if header and header[0] in ("struct", "class", "enum", "union") else "value"
        if around == "value":
            return "block" if before in (")", "]") else "value"
        header = self.header(index)
        if {"namespace", "struct", "class", "enum", "union", "extern"} & set(header) and "(" not in header:
            return "scope"
        if "=" in header:
            return "value"
        return "block" if "(" in header else "value"

    def header(self, index):
        """The words from the end of the statement before to a brace."""
        first = index
        while first > 0 and self.word(first - 1) not in (";", "{", "}"):
            first = self.partner[first - 1] if self.word(first - 1) in (")", "]") else first - 1
        return [token.text for token in self.tokens[first:index]]

    def find_asserted(self):
        """The tokens of static assertions and linkage, which are no behaviour."""
        asserted = set()
        for index, token in enumerate(self.tokens):
            if token.text == "static_assert":
                asserted.update(range(index, self.partner[index + 1] + 1))
            elif token.text == "extern":
                asserted.add(index + 1)
        return asserted

    def find_constant(self):
        """Where what is known to the compiler stands: the whole text of a header, and what is constexpr in a source."""
        if self.file.endswith(".h"):
            return [(0, len(self.text))]
        constant = []
        for index, token in enumerate(self.tokens):
            if token.text == "[" and self.word(index - 1) not in ("]", ")") and self.is_type(index - 2):
                constant.append((token.start, self.tokens[self.partner[index]].end))
            if token.text == "constexpr" and self.word(index + 1) != "(":
                last = index
                while self.word(last) != ";":
                    last = self.ending(last) + 1
                constant.append((token.start, self.tokens[last].end))
        return constant

    def is_type(self, index):
        """Whether a name behind this token is declared: "char name[24]"."""
        kind = self.tokens[index].kind
        return kind == "name" and self.word(index) not in STATEMENT_NAMES

    def spaced(self, token):
        return self.text[token.start - 1].isspace() and self.text[token.end].isspace()

    def inside_block(self, index):
        return any(opening < index < self.partner[opening] for opening in self.blocks)

    # ---- edits

    def line_of(self, offset):
        return bisect.bisect_right(self.line_starts, offset)

    def edit(self, start, end, replacement, wraps=(), marks=(), is_swap=False):
        first = self.line_starts[self.line_of(start) - 1]
        last = self.text.find("\n", end)
        joined = lambda text: " ".join(text.split())
        before = joined(self.text[first:last])
        if any(begin <= start < stop for begin, stop in self.constant):
            wraps, marks = (), ()
        after = joined(self.text[first:start] + replacement + self.text[end:last])
        self.faults.append(Fault(self.file, self.line_of(start), start, end, replacement, before, after,
                                 tuple(wraps), tuple(marks), is_swap))

    def part(self, first, last):
        """The text of the tokens from one to another, that one included."""
        return self.text[self.tokens[first].start:self.tokens[last].end]

    def negate(self, first, last):
        start, end = self.tokens[first].start, self.tokens[last].end
        self.edit(start, end, "!(" + self.part(first, last) + ")", [(start, end, "(bool(", ") != vrk_at(@))")])

    # ---- the kinds of faults

    def operators(self):
        for index, token in enumerate(self.tokens):
            if token.kind == "mark" and token.text in TURNED and index not in self.asserted and self.spaced(token):
                self.turn(index)

    def turn(self, index):
        token, left, right = self.tokens[index], *self.operands(index)
        whole = (left[0], right[1])
        turned, *bound = TURNED[token.text]
        if token.text in COMPARISONS:
            self.edit(token.start, token.end, turned, [(*whole, "((", ") != vrk_at(@))")])
        else:  # "a || b" is "not (not a and not b)"
            operand = "(bool(", ") != vrk_at(@))"
            self.edit(token.start, token.end, turned,
                      [(*whole, "((", ") != vrk_at(@))"), (*left, *operand), (*right, *operand)])
        if bound:
            self.edit(token.start, token.end, bound[0], [(*whole, BOUND[token.text] + "(@, (", "))")],
                      [(token.start, token.end, "), (")])

    def operands(self, index):
        """Where the text of both operands begins and ends."""
        enders = ENDERS | ({"||"} if self.word(index) == "&&" else set())
        left_enders = enders if self.word(index) in ("&&", "||") else enders | BINDS_LESS
        right_enders = left_enders | {self.word(index)}
        first, last = self.beginning(index - 1), self.ending(index + 1)
        while not self.ends_operand(first - 1, left_enders, closing=False):
            first = self.beginning(first - 1)
        while not self.ends_operand(last + 1, right_enders, closing=True):
            last = self.ending(last + 1)
        return ((self.tokens[first].start, self.tokens[index - 1].end),
                (self.tokens[index + 1].start, self.tokens[last].end))

    def beginning(self, index):
        """The token itself, or the bracket that it closes."""
        return self.partner[index] if self.word(index) in OPENING.values() else index

    def ending(self, index):
        """The token itself, or the bracket that closes it."""
        return self.partner[index] if self.word(index) in OPENING else index

    def ends_operand(self, index, enders, closing):
        word = self.word(index)
        if word in (OPENING.values() if closing else OPENING):
            return True
        return word in enders and (word not in SPACED or self.spaced(self.tokens[index]))

    def constants(self):
        for index, token in enumerate(self.tokens):
            if index in self.asserted:
                continue
            if token.kind == "number":
                self.number(token)
            elif token.kind == "letter":
                self.edit(token.start, token.end, f"char({token.text} + 1)", self.more(token, 1))
            elif token.kind == "text" and not token.text.startswith("R"):
                chosen = [(token.start, token.end, f'(vrk_at(@) ? {token.text[:-1]}~" : ', ")")]
                self.edit(token.end - 1, token.end, '~"', chosen if self.word(index - 1) != "sizeof" else ())
            elif token.text in ("true", "false"):
                self.edit(token.start, token.end, "false" if token.text == "true" else "true",
                          [(token.start, token.end, "(", " != vrk_at(@))")])

    @staticmethod
    def more(token, difference):
        return [(token.start, token.end, f"vrk_plus(@, {difference}, ", ")")]

    def number(self, token):
        value = token.text.rstrip("uUlL")
        if value in ("0", "1"):
            self.edit(token.start, token.end, str(1 - int(value)), self.more(token, 1 - 2 * int(value)))
        if value == "1":
            self.edit(token.start, token.end, "2", self.more(token, 1))
        elif value != "0":
            self.edit(token.start, token.end, f"({token.text} + 1)", self.more(token, 1))
            self.edit(token.start, token.end, f"({token.text} - 1)", self.more(token, -1))

    def conditions(self):
        for index, token in enumerate(self.tokens):
            if token.text in ("if", "while") and token.kind == "name":
                opening = index + 2 if self.word(index + 1) == "constexpr" else index + 1
                self.condition(opening + 1, self.partner[opening] - 1)
            elif token.text == "?" and token.kind == "mark":
                self.condition(self.start_of_condition(index), index - 1)

    def condition(self, first, last):
        marks = self.marks_between(first, last)
        if ";" in marks:  # declarations come first
            first = max(i for i in range(first, last) if self.word(i) == ";") + 1
            marks = self.marks_between(first, last)
        declares = "=" in marks and not self.word(first) == "("
        one_comparison = not {"&&", "||"} & set(marks) and COMPARISONS & set(marks)
        if not declares and not one_comparison:
            self.negate(first, last)

    def start_of_condition(self, index):
        first = index
        while first > 0:
            before = self.word(first - 1)
            if before in (")", "]", "}"):
                first = self.partner[first - 1]
            elif before in ("(", "[", "{", ",", ";", "=", "+=", "?", ":", "return", "<<"):
                break
            else:
                first -= 1
        return first

    def marks_between(self, first, last):
        """The marks between two tokens that stand in no brackets there."""
        marks, index = [], first
        while index <= last:
            token = self.tokens[index]
            if token.kind == "mark" and token.text in OPENING:
                index = self.partner[index]
            elif token.kind == "mark" and (token.text not in ("<", ">", "&&") or self.spaced(token)):
                marks.append(token.text)
            index += 1
        return marks

    def statements(self):
        for index in range(len(self.tokens)):
            if self.begins_statement(index):
                self.statement(index)

    def begins_statement(self, index):
        token, before = self.tokens[index], self.word(index - 1)
        if token.kind == "mark" and token.text not in ("(", "*", "++", "--") or token.text in CONTROLS:
            return False
        if not self.inside_block(index):
            return False
        if before == "{":
            return index - 1 in self.blocks
        if before == ")":
            return self.word(self.partner[index - 1] - 1) in ("if", "for", "while", "switch", "constexpr")
        if before == ";":
            return not self.in_parentheses(index)
        return before in ("}", "else", "do") or before == ":" and self.ends_label(index - 1)

    def in_parentheses(self, index):
        while index > 0:
            index -= 1
            if self.word(index) in (")", "]", "}"):
                index = self.partner[index]
            elif self.word(index) in OPENING:
                return self.word(index) != "{"
        return False

    def ends_label(self, colon):
        return self.word(colon - 1) == "default" or self.word(colon - 2) == "case"

    def statement(self, first):
        last = first
        while self.word(last) != ";":
            if last not in self.partner and last + 1 >= len(self.tokens) or self.word(last) == "}":
                return
            last = self.partner[last] + 1 if self.word(last) in OPENING else last + 1
        if self.word(first) == "return":
            self.returned(first, last)
        elif not self.declares(first, last):
            self.leave_out(first, last)

    def leave_out(self, first, last):
        start, end = self.tokens[first].start, self.tokens[last].end
        self.edit(start, end, ";", [(start, end, "{ if (!vrk_at(@)) { ", " } }")])

    def returned(self, first, last):
        if last == first + 1:
            self.leave_out(first, last)
        elif self.part(first + 1, last - 1) not in ZEROS:
            self.edit(self.tokens[first + 1].start, self.tokens[last - 1].end, "{}",
                      [(self.tokens[first].start, self.tokens[last].end, "{ if (vrk_at(@)) return {}; ", " }")])

    def declares(self, first, last):
        word = self.word(first)
        if word in STATEMENT_NAMES:
            return False
        if word in DECLARING or self.tokens[first].kind != "name":
            return word in DECLARING
        return bool(DECLARATION.match(self.part(first, last)))

    def arguments(self):
        for index, token in enumerate(self.tokens):
            called = token.kind == "name" and token.text not in NOT_CALLED and self.word(index + 1) == "("
            if called and index not in self.asserted and self.inside_block(index):
                self.call(index + 1)

    def call(self, opening):
        arguments, first, index = [], opening + 1, opening + 1
        while index <= self.partner[opening]:
            if index == self.partner[opening] or self.word(index) == ",":
                arguments.append((first, index - 1))
                first = index + 1
            elif self.word(index) in OPENING:
                index = self.partner[index]
            index += 1
        for left, right in zip(arguments, arguments[1:]):
            self.swap(opening, left, right)

    def swap(self, opening, left, right):
        one, other = self.part(*left), self.part(*right)
        pointers = ("nullptr", '"')
        if one == other or "{" in one + other or one.startswith(pointers) != other.startswith(pointers):
            return
        between = self.text[self.tokens[left[1]].end:self.tokens[right[0]].start]
        first, last = self.start_of_call(opening), self.partner[opening]
        words = lambda begin, end: " ".join(self.word(index) for index in range(begin, end))
        swapped = " ".join([words(first, left[0]), words(right[0], right[1] + 1), ",", words(left[0], left[1] + 1),
                            words(right[1] + 1, last + 1)])
        self.edit(self.tokens[left[0]].start, self.tokens[right[1]].end, other + between + one,
                  [(self.tokens[first].start, self.tokens[last].end, f"(vrk_at(@) ? {swapped} : ", ")")], is_swap=True)

    def start_of_call(self, opening):
        """The first token of what is called: "a->b(c).d::e" as a whole."""
        first = opening - 1
        while self.word(first - 1) in ("::", ".", "->"):
            first -= 2
            while self.word(first) in (")", "]"):
                first = self.partner[first] - 1
        return first
