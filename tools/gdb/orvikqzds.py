"""Pretty-printers for gdb: strings, typed arrays, typed dictionaries and sets.

    (gdb) source tools/gdb/orvikqzds.py

They go by the documented fields. The compiler describes classes with virtual
operations where these are defined, in the library: print them in a library
built with debug information, or compile the program with
-femit-class-debug-always.
"""
import gdb
import gdb.printing


def text_of(string):
    """The text of a qzStr: slength counts the terminator."""
    return string["data"].string("latin-1", "replace", int(string["slength"]) - 1)


def pattern_of(value_type, name):
    """The base class of the type that is an instance of the named template."""
    value_type = value_type.strip_typedefs()
    for field in value_type.fields():
        if not field.is_base_class:
            continue
        if field.type.name.startswith(name + "<"):
            return field.type
        found = pattern_of(field.type, name)
        if found is not None:
            return found
    return None


def addresses(heads):
    """The nodes of a table of chain heads, in iteration order."""
    count = int(heads["used"]) // int(heads["elemSize"])
    node_type = pattern_of(heads.type, "qzTypedArray").template_argument(1)
    table = heads["data"].cast(node_type.pointer())
    for chain in range(count):
        node = table[chain]
        while int(node) != 0:
            yield node
            node = node["next"]


class StrPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return text_of(self.value)

    def display_hint(self):
        return "string"


class ArrayPrinter:
    def __init__(self, value, pattern):
        self.value = value
        self.element = pattern.template_argument(1)
        self.length = int(value["used"]) // max(1, int(value["elemSize"]))

    def to_string(self):
        return "%s of %d" % (self.value.type.strip_typedefs().name, self.length)

    def children(self):
        elements = self.value["data"].cast(self.element.pointer())
        for i in range(self.length):
            yield "[%d]" % i, elements[i]

    def display_hint(self):
        return "array"


class DictionaryPrinter:
    def __init__(self, value, pattern):
        self.value = value
        self.key = gdb.lookup_type(pattern.template_argument(1).name + "::Key")
        self.element = pattern.template_argument(2)

    def to_string(self):
        return "%s of %d" % (self.value.type.strip_typedefs().name, int(self.value["numItems"]))

    def children(self):
        for i, node in enumerate(addresses(self.value["buckets"])):
            block = node["kvmem"]
            yield "[%d]" % (2 * i), block.cast(self.key.pointer()).dereference()
            value = (block + int(self.value["keySize"])).cast(self.element.pointer())
            yield "[%d]" % (2 * i + 1), value.dereference()

    def display_hint(self):
        return "map"


class SetPrinter:
    def __init__(self, value, pattern):
        self.value = value
        self.key = gdb.lookup_type(pattern.template_argument(1).name + "::Key")

    def to_string(self):
        return "%s of %d" % (self.value.type.strip_typedefs().name, int(self.value["numItems"]))

    def children(self):
        for i, node in enumerate(addresses(self.value["buckets"])):
            yield "[%d]" % i, node["kvmem"].cast(self.key.pointer()).dereference()

    def display_hint(self):
        return "array"


PATTERNS = (
    ("qzTypedArray", ArrayPrinter),
    ("qzTypedDictionary", DictionaryPrinter),
    ("qzTypedSet", SetPrinter),
)


class Lookup(gdb.printing.PrettyPrinter):
    def __init__(self):
        super().__init__("orvikqzds")

    def __call__(self, value):
        value_type = value.type.strip_typedefs().unqualified()
        if value_type.code != gdb.TYPE_CODE_STRUCT:
            return None
        if value_type.name == "qzStr":
            return StrPrinter(value)
        for name, printer in PATTERNS:
            pattern = pattern_of(value_type, name)
            if pattern is not None:
                return printer(value, pattern)
        return None


gdb.printing.register_pretty_printer(None, Lookup(), replace=True)
