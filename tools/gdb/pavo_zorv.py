"""Records of pavo-zorv in gdb: the members that are present, lists with their elements, strings as text.

gdb loads this file by itself with an installed shared library, if it is installed where gdb looks for it; otherwise:

    (gdb) source pavo_zorv.py
    (gdb) print message
    $1 = api_msg = {field1 = 1, to_zorv = api_to_zorv = {intf = api_intf = {field1 = 7, field2 = "eth0"}}}
    (gdb) print/r message                       all members, as they are stored

A nested message that holds something although its presence bit is 0 would be encoded: it is shown as "(bit not set)".
Bytes and lists of integers of 8 bits are shown as numbers. Which fields there are follows from the order of a record's
members: presence bits are in that order, and an array or a block is followed by its count.
"""

import struct

import gdb
import gdb.printing

RECORDS = """
api_addr api_lbl_stack prefix_sid_type policy_binding_sid_t api_exp_hop api_exp_path api_msg_service api_msg_internal
api_msg_on_demand_color_notif api_msg_p2p_auto_policy api_msg_p2p_auto_policy_notif api_msg_p2p_auto_policy_request
api_msg_p2p_auto_policy_response api_msg_p2p_auto_policy_sweep api_nodeid api_prefix api_intf api_link_update api_policy
api_aa_list api_to_zorv api_to_igp api_msg_policy_reg srv6_prefix srv6_sid_struct srv6_usid out_sid_list_info
out_srv6_usid_list_info oam_req oam_res api_msg
""".split()


def is_text(member_type):
    """Whether a pointer leads to characters, not to bytes."""
    target = member_type.target().unqualified()
    return target.name == "char"


def is_record(member):
    """Whether a member is a nested message."""
    return member.type.strip_typedefs().code == gdb.TYPE_CODE_STRUCT


def fields_of(record_type):
    """The fields of a record: the presence bit, the member, and the member with its count, if it has one."""
    members = record_type.fields()[:-1]
    bit = at = 0
    while at < len(members):
        plain = members[at].type.strip_typedefs()
        counted = plain.code == gdb.TYPE_CODE_PTR and not is_text(plain)
        yield 1 << bit, members[at], members[at + 1] if counted else None
        bit += 1
        at += 2 if counted else 1


def holds_something(record):
    """Whether a nested message has a member that is present, at any depth. Presence bits of no field do not count."""
    presence = int(record["presence"])
    for bit, member, _ in fields_of(record.type.strip_typedefs()):
        if presence & bit != 0 or (is_record(member) and holds_something(record[member])):
            return True
    return False


def shown(count):
    """How many of so many elements to read: one more than gdb shows, so that gdb says that there are more."""
    limit = gdb.parameter("print elements")
    return min(count, int(limit) + 1) if limit else count


def numbers(pointer, count):
    """Bytes as numbers, because gdb would show characters."""
    content = gdb.selected_inferior().read_memory(int(pointer), shown(count)).tobytes()
    order = ">" if "big endian" in gdb.execute("show endian", to_string=True) else "<"
    integers = struct.pack(f"{order}{len(content)}i", *content)
    return gdb.Value(integers, gdb.lookup_type("int").array(len(content) - 1))


def elements(pointer, count):
    """What an array or a block and its count lead to."""
    target = pointer.type.strip_typedefs().target()
    if int(pointer) == 0 or count == 0:
        return "nothing" if count == 0 else f"null, but a count of {count}"
    try:
        if target.strip_typedefs().sizeof == 1:
            return numbers(pointer, count)
        value = pointer.cast(target.array(shown(count) - 1).pointer()).dereference()
        value.fetch_lazy()
        return value
    except gdb.error as error:
        return f"{count} elements, {error}"


def text(pointer):
    """The characters of a string."""
    if int(pointer) == 0:
        return "null"
    try:
        content = pointer.string(encoding="latin-1").encode("latin-1") + b"\0"
        return gdb.Value(content, gdb.lookup_type("char").array(len(content) - 1))
    except gdb.error as error:
        return str(error)


class RecordPrinter:
    """Shows a record as its type and the members that are present."""

    def __init__(self, record):
        self.record = record

    def to_string(self):
        return self.record.type.strip_typedefs().name

    def children(self):
        presence = int(self.record["presence"])
        for bit, member, count in fields_of(self.record.type.strip_typedefs()):
            value = self.record[member]
            plain = member.type.strip_typedefs()
            if presence & bit == 0:
                if is_record(member) and holds_something(value):
                    yield member.name + " (bit not set)", value
                continue
            if count is not None:
                value = elements(value, int(self.record[count]))
            elif plain.code == gdb.TYPE_CODE_PTR:
                value = text(value)
            elif not is_record(member):
                value = int(value)
            yield member.name, value


def printers():
    """All printers: one for each record."""
    collection = gdb.printing.RegexpCollectionPrettyPrinter("pavo-zorv")
    for record in RECORDS:
        collection.add_printer(record, f"^{record}$", RecordPrinter)
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
