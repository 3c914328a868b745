"""Pretty-printers of libqvLog for GDB, which loads this file together with the library (see packaging/README.md).

qvCString is shown as its text, qvPtrList and qvDictionary as their items, a log record as its level, module and origin.
They are read from memory, nothing of the program is called, so they also work on a core file.
"""

import gdb
import gdb.printing

LEVELS = {0: "error", 1: "error", 2: "warning", 3: "info"}  # all others are debug


def text_at(pointer):
    """A terminated text, as Python text; None for a null pointer."""
    return None if int(pointer) == 0 else pointer.string("utf-8", "backslashreplace")


def module_name(number):
    """The name of a module from the public enumeration; its number where the program does not know that."""
    try:
        fields = gdb.lookup_type("__qvLogModules").strip_typedefs().fields()
    except gdb.error:
        fields = []
    for field in fields:
        if field.enumval == number:
            return field.name.removeprefix("QVLOG_M_")
    return str(number)


class StringPrinter:
    """qvCString: all characters up to the length, zero bytes too."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return self.value["mStringPtr"].lazy_string(length=int(self.value["mCStringData"]["mStringLength"]))

    def display_hint(self):
        return "string"


class ListPrinter:
    """qvPtrList: the items, which are pointers of no type."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"qvPtrList of {int(self.value['mCount'])}"

    def children(self):
        node = self.value["mFirstNode"]
        # Counted too, so that a damaged list comes to an end.
        for index in range(int(self.value["mCount"])):
            if int(node) == 0:
                break
            yield f"[{index}]", node["mData"]
            node = node["mNext"]

    def display_hint(self):
        return "array"


class DictionaryPrinter:
    """qvDictionary: keys and values in the order of their first writing."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"qvDictionary of {int(self.value['mEntryCount'])}"

    def children(self):
        for index in range(int(self.value["mEntryCount"])):
            entry = self.value["mEntries"][index]
            yield f"[{index}].key", entry["mKey"].lazy_string()
            yield f"[{index}].value", entry["mValue"].lazy_string()

    def display_hint(self):
        return "map"


class RecordPrinter:
    """qvLogData and qvLogDataEx: level, module and origin; of the latter, the thread and the text in the buffer."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        level, module = int(self.value["mLevel"]), int(self.value["mModule"])
        shown = f"{LEVELS.get(level, 'debug')} {module_name(module)}"
        file = text_at(self.value["mFile"])
        if file is not None:
            shown += f" at {file}:{int(self.value['mLine'])}"
        if self.value.type.strip_typedefs().tag == "qvLogDataEx":
            shown += f", thread {int(self.value['mThreadId']):08x}"
            length = int(self.value["mFormattedLen"])
            if length > 0 and int(self.value["mFormatted"]) != 0:
                shown += ": " + self.value["mFormatted"].lazy_string(length=length).value().format_string()
        return shown


def printers():
    collection = gdb.printing.RegexpCollectionPrettyPrinter("libqvLog")
    collection.add_printer("qvCString", "^qvCString$", StringPrinter)
    collection.add_printer("qvPtrList", "^qvPtrList$", ListPrinter)
    collection.add_printer("qvDictionary", "^qvDictionary_t$", DictionaryPrinter)
    collection.add_printer("qvLogData", "^qvLogData(Ex)?$", RecordPrinter)
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
