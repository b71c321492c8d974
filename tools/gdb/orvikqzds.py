"""Pretty-printers for gdb: strings, containers, lists, values, channels, objects, events.

    (gdb) source tools/gdb/orvikqzds.py

Installed packages bring them to where gdb loads them by itself, with the library.

They go by the documented fields, and by what an object is rather than by what it
was declared as. The compiler describes classes with virtual operations where these
are defined, in the library: print them in a library built with debug information,
or compile the program with -femit-class-debug-always.
"""
import gdb
import gdb.printing


def text_of(string):
    """The text of a qzStr as Python has it: slength counts the terminator."""
    return string["data"].string("latin-1", "replace", int(string["slength"]) - 1)


def base_of(value_type, wanted):
    """The type itself or the nearest base class for which wanted(name) is true."""
    value_type = value_type.strip_typedefs().unqualified()
    if value_type.name and wanted(value_type.name):
        return value_type
    for field in value_type.fields():
        if field.is_base_class:
            found = base_of(field.type, wanted)
            if found is not None:
                return found
    return None


def instance_of(value_type, template):
    return base_of(value_type, lambda name: name.startswith(template + "<"))


def derived_from(value_type, base):
    return base_of(value_type, lambda name: name == base)


def whole(value):
    """The object that the value is part of, with the type that it was made as."""
    try:
        return value.cast(value.dynamic_type)
    except gdb.error:  # not constructed yet
        return value


def target(pointer, class_name):
    """What the pointer leads to; the pointer when that is nothing, or not described."""
    try:
        described = gdb.lookup_type(class_name)
    except gdb.error:
        return pointer
    if int(pointer) == 0 or not described.fields():
        return pointer
    return pointer.cast(described.pointer()).dereference()


def name_of(value):
    return value.type.strip_typedefs().unqualified().name


def number_in(array):
    return int(array["used"]) // max(1, int(array["elemSize"]))


def elements(array, element_type):
    first = array["data"].cast(element_type.pointer())
    return (first[i] for i in range(number_in(array)))


def targets(array, class_name):
    """What an array of untyped pointers leads to."""
    pointers = elements(array, gdb.lookup_type("void").pointer())
    return (target(pointer, class_name) for pointer in pointers)


def nodes(heads):
    """The nodes of a table of chain heads, in iteration order."""
    for node in elements(heads, instance_of(heads.type, "qzTypedArray").template_argument(1)):
        while int(node) != 0:
            yield node
            node = node["next"]


def linked(first, link):
    while int(first) != 0:
        yield first
        first = first[link]


def own_fields(value, base):
    """What classes derived from the base add to it: names and values."""
    for field in value.type.strip_typedefs().fields():
        if field.artificial or not hasattr(field, "bitpos"):  # or static
            continue
        if not field.is_base_class:
            yield field.name, value[field]
        elif field.name != base:
            yield from own_fields(value[field], base)


TYPES = ("void", "qzBool", "int", "long", "float", "double", "CharPtr", "qzStr", "VoidPtr",
         "ObjPtr", "DataPtr", "qzStrArray")


def type_name(code):
    """The name of a type code: start-up draws them, so the process is asked."""
    for name in TYPES:
        try:
            if int(gdb.parse_and_eval("(unsigned short)qzDT_" + name)) == int(code):
                return name
        except gdb.error:
            break
    return "type %d" % int(code)


class Printer:
    """Shows a summary, and children when there are any to show."""

    hint = None

    def __init__(self, value, pattern):
        self.value = value
        self.pattern = pattern

    def display_hint(self):
        return self.hint

    def numbered(self, values):
        for i, value in enumerate(values):
            yield "[%d]" % i, value


class StrPrinter:
    """Has no children: gdb would show braces."""

    def __init__(self, value, _):
        self.value = value

    def to_string(self):
        return self.value["data"].lazy_string(length=int(self.value["slength"]) - 1)

    def display_hint(self):
        return "string"


class ArrayPrinter(Printer):
    hint = "array"

    def to_string(self):
        return "%s of %d" % (name_of(self.value), number_in(self.value))

    def children(self):
        return self.numbered(elements(self.value, self.pattern.template_argument(1)))


class TablePrinter(Printer):
    def __init__(self, value, pattern):
        super().__init__(value, pattern)
        self.key = gdb.lookup_type(pattern.template_argument(1).name + "::Key").pointer()

    def to_string(self):
        return "%s of %d" % (name_of(self.value), int(self.value["numItems"]))

    def keys(self):
        for node in nodes(self.value["buckets"]):
            yield node["kvmem"].cast(self.key).dereference()


class SetPrinter(TablePrinter):
    hint = "array"

    def children(self):
        return self.numbered(self.keys())


class DictionaryPrinter(TablePrinter):
    hint = "map"

    def entries(self):
        value_type = self.pattern.template_argument(2).pointer()
        for node in nodes(self.value["buckets"]):
            block = node["kvmem"]
            value = (block + int(self.value["keySize"])).cast(value_type)
            yield block.cast(self.key).dereference(), value.dereference()

    def children(self):
        return self.numbered(part for entry in self.entries() for part in entry)


class ListPrinter(Printer):
    hint = "array"

    def to_string(self):
        return "%s of %d" % (name_of(self.value), int(self.value["count"]))


class GenericListPrinter(ListPrinter):
    def children(self):
        return self.numbered(node["item"] for node in linked(self.value["head"], "next"))


class IndexableListPrinter(ListPrinter):
    def children(self):
        return self.numbered(linked(self.value["head"], "next"))


class EventQueuePrinter(ListPrinter):
    def children(self):
        events = linked(self.value["head"], "next")
        return self.numbered(event.dereference() for event in events)


class DataPrinter(Printer):
    def to_string(self):
        return "%s held by %d" % (name_of(self.value), int(self.value["refCount"]))

    def children(self):
        return own_fields(self.value, "qzData")


class InputChannelPrinter(Printer):
    def __init__(self, value, pattern):
        super().__init__(value, pattern)
        if value["chained"] and value.address is not None:
            converter = target(value.address, "qzConverter")
            if converter.type.code == gdb.TYPE_CODE_STRUCT:
                self.value = converter

    def to_string(self):
        code = type_name(self.value["type"])
        if name_of(self.value) == "qzConverter":
            return "qzConverter %s to %s" % (code, type_name(self.value["targetType"]))
        return "%s %s" % (name_of(self.value), code)

    def children(self):
        receiver = self.value["object"]
        if self.value["chained"]:
            yield "downstream", target(receiver, self.pattern.name)
            return
        yield "object", receiver
        yield "function", self.value["function"]
        if self.value["coalesce"]:
            yield "pendingEvent", self.value["pendingEvent"]


class OutputChannelPrinter(Printer):
    hint = "array"

    def to_string(self):
        return "qzOutputChannel " + type_name(self.value["type"])

    def children(self):
        connections = self.value["connections"]
        if int(connections) == 0:
            return iter(())
        return self.numbered(targets(connections.dereference(), "qzInputChannel"))


class PropertyPrinter(Printer):
    MEMBERS = {"qzBool": "boolean", "long": "integer", "double": "real", "CharPtr": "text",
               "qzStr": "string", "ObjPtr": "object", "DataPtr": "data"}
    SHOWN_BY_CONTENT = {"string": "qzStr", "data": "qzData"}
    CHANNELS = {"inputs": "qzInputChannel", "outputs": "qzOutputChannel"}

    def name(self):
        tag = int(self.value["tag"])
        try:
            names = gdb.parse_and_eval("*(qzStrArray**)&'qzProperty::qz_propertyNames'")
            if tag < number_in(names.dereference()):
                return text_of(names["data"].cast(gdb.lookup_type("qzStr").pointer())[tag])
        except gdb.error:  # before start-up, or not described
            pass
        return "tag %d" % tag

    def content(self):
        member = self.MEMBERS.get(type_name(self.value["type"]), "pointer")
        value = self.value["value"][member]
        if member in self.SHOWN_BY_CONTENT:
            return target(value, self.SHOWN_BY_CONTENT[member])
        return value

    def parts(self):
        """The value, or the channels by name where the value is a dictionary of them."""
        name = self.name()
        channels = target(self.content(), "qzVoidPtrDict") if name in self.CHANNELS else None
        if channels is None or channels.type.code != gdb.TYPE_CODE_STRUCT:
            yield name, self.content()
            return
        dictionary = DictionaryPrinter(channels, instance_of(channels.type, "qzTypedDictionary"))
        for key, channel in dictionary.entries():
            yield "%s.%s" % (name, text_of(key)), target(channel, self.CHANNELS[name])

    def to_string(self):
        return "qzProperty"

    def children(self):
        return self.parts()


class ObjPrinter(Printer):
    """What is attached at run time stands before the fields, in angle brackets."""

    def to_string(self):
        return name_of(self.value)

    def children(self):
        properties = self.value["properties"]
        if int(properties) != 0:
            for value in targets(properties.dereference(), "qzProperty"):
                for name, content in PropertyPrinter(value, None).parts():
                    yield "<%s>" % name, content
        yield from own_fields(self.value, self.pattern.name)


class EventPrinter(ObjPrinter):
    FOLLOWED = {"channel": "qzInputChannel", "data": "qzData"}

    def to_string(self):
        return "%s %d" % (name_of(self.value), int(self.value["sequenceNumber"]))

    def children(self):
        follow = self.FOLLOWED if name_of(self.value) == "qzMessageEvent" else {}
        for name, value in super().children():
            yield name, target(value, follow[name]) if name in follow else value


# The first that fits shows the value. An event is an object as well.
TEMPLATES = (
    ("qzTypedArray", ArrayPrinter),
    ("qzTypedDictionary", DictionaryPrinter),
    ("qzTypedSet", SetPrinter),
)
CLASSES = (
    ("qzStr", StrPrinter),
    ("qzTempStr", StrPrinter),
    ("GenericList", GenericListPrinter),
    ("qzIndexableList", IndexableListPrinter),
    ("qzEventQueue", EventQueuePrinter),
    ("qzData", DataPrinter),
    ("qzInputChannel", InputChannelPrinter),
    ("qzOutputChannel", OutputChannelPrinter),
    ("qzProperty", PropertyPrinter),
    ("qzEvent", EventPrinter),
    ("qzObj", ObjPrinter),
)


def printer_for(value_type):
    """The printer's class, and the type or base class of the value that it is for."""
    for find, table in ((instance_of, TEMPLATES), (derived_from, CLASSES)):
        for name, printer in table:
            pattern = find(value_type, name)
            if pattern is not None and pattern.fields():  # described at all
                return printer, pattern
    return None, None


class Lookup(gdb.printing.PrettyPrinter):
    def __init__(self):
        super().__init__("orvikqzds")

    def __call__(self, value):
        if value.type.strip_typedefs().code != gdb.TYPE_CODE_STRUCT:
            return None
        if base_of(value.type, lambda name: name in ("qzRCObj", "qzData")) is not None:
            value = whole(value)
        printer, pattern = printer_for(value.type)
        return printer(value, pattern) if printer else None


gdb.printing.register_pretty_printer(None, Lookup(), replace=True)
