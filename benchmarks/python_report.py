#!/usr/bin/env python3
"""Times the Python package against Protocol Buffers for Python; prints the ratios and writes them as a page's table.

Usage: python_report.py WIRE_FOLDER TABLE ROUNDS   with the folder that pavo_zorv_bench --wire writes
       python_report.py --store TABLE PAGE         puts the table into the page
"""

import gc
import pathlib
import statistics
import sys
import time

# The time of one measurement, in nanoseconds.
LEAST = 4_000_000

START = "<!-- Written by ./bench --store, for Python. -->\n"
END = "<!-- End of what it writes for Python. -->\n"

OPERATIONS = ["decode", "decode_only", "encode", "encode_only"]


def by_list_fields(message):
    """Every value of a message of Protocol Buffers, in the way that visits present fields only."""
    result = {}
    for field, value in message.ListFields():
        if field.message_type is None:
            result[field.name] = value[:] if field.label == field.LABEL_REPEATED else value
        elif field.label == field.LABEL_REPEATED:
            result[field.name] = [by_list_fields(each) for each in value]
        else:
            result[field.name] = by_list_fields(value)
    return result


def readers(descriptor, known):
    """Functions that read a message field by field, generated as one would write them by hand."""
    if descriptor.name in known:
        return
    known[descriptor.name] = None
    lines = [f"def read_{descriptor.name}(message):", "    result = {}"]
    for field in descriptor.fields:
        if field.message_type is not None:
            readers(field.message_type, known)
        name, repeated = field.name, field.label == field.LABEL_REPEATED
        read = f"known['{field.message_type.name}']" if field.message_type is not None else None
        lines.append(f"    value = message.{name}" if repeated else f"    if message.HasField('{name}'):")
        if repeated:
            value = f"[{read}(each) for each in value]" if read else "value[:]"
            lines += ["    if value:", f"        result['{name}'] = {value}"]
        else:
            lines.append(f"        result['{name}'] = " + (f"{read}(message.{name})" if read else f"message.{name}"))
    lines.append("    return result")
    names = {"known": known}
    exec("\n".join(lines), names)
    known[descriptor.name] = names[f"read_{descriptor.name}"]


def timed(work):
    """Nanoseconds for one call."""
    calls = 1
    while True:
        start = time.thread_time_ns()
        for _ in range(calls):
            work()
        taken = time.thread_time_ns() - start
        if taken >= LEAST:
            return taken / calls
        calls = max(2 * calls, int(1.2 * calls * LEAST / max(taken, 1)))


def contestants(ours, theirs, messages):
    """For each operation, what the package does and what the peer does, perhaps in several ways."""
    for data in messages:
        assert ours.from_bytes(data).to_bytes() == data
        assert theirs.FromString(data).SerializeToString() == data
    known = {}
    readers(theirs.DESCRIPTOR, known)
    by_name = known[theirs.DESCRIPTOR.name]
    contents = [ours.from_bytes(data).to_dict() for data in messages]
    for data, content in zip(messages, contents):
        assert by_name(theirs.FromString(data)) == by_list_fields(theirs.FromString(data)) == content
        assert ours(**content).to_bytes() == theirs(**content).SerializeToString() == data
    our_objects = [ours.from_bytes(data) for data in messages]
    their_objects = [theirs.FromString(data) for data in messages]
    return {
        "decode": (lambda: [ours.from_bytes(data).to_dict() for data in messages],
                   lambda: [by_list_fields(theirs.FromString(data)) for data in messages],
                   lambda: [by_name(theirs.FromString(data)) for data in messages]),
        "decode_only": (lambda: [ours.from_bytes(data) for data in messages],
                        lambda: [theirs.FromString(data) for data in messages]),
        "encode": (lambda: [ours(**content).to_bytes() for content in contents],
                   lambda: [theirs(**content).SerializeToString() for content in contents]),
        "encode_only": (lambda: [each.to_bytes() for each in our_objects],
                        lambda: [each.SerializeToString() for each in their_objects]),
    }


def split(data):
    """Messages after their lengths of 32 bits."""
    messages, at = [], 0
    while at < len(data):
        size = int.from_bytes(data[at : at + 4], "big")
        messages.append(data[at + 4 : at + 4 + size])
        at += 4 + size
    return messages


def measure(path, rounds):
    """The size of a workload, and for each operation the ratio of each round and the nanoseconds for one message."""
    import pavo_zorv
    import zorv_pb2

    name = path.suffix[1:]
    messages = split(path.read_bytes())
    results = {}
    cases = contestants(getattr(pavo_zorv, name), getattr(zorv_pb2, name), messages)
    # What both sides were given is not the garbage collector's work while they are timed; what they make is.
    gc.collect()
    gc.freeze()
    for operation, (mine, *others) in cases.items():
        ratios, times = [], []
        for _ in range(rounds):
            times.append(timed(mine) / len(messages))
            ratios.append(times[-1] * len(messages) / min(map(timed, others)))
        results[operation] = ratios, min(times)
    gc.unfreeze()
    return len(messages), sum(map(len, messages)), results


def report(folder, table, rounds):
    from google.protobuf import __version__ as version
    from google.protobuf.internal import api_implementation

    import pavo_zorv

    assert type(pavo_zorv.api_msg._codec).__module__ == "pavo_zorv._native", "the compiled part is not there"
    print(f"\n== Python {sys.version.split()[0]}, against Protocol Buffers for Python {version}, implemented in "
          f"{api_implementation.Type()}")
    lines = ["| workload | messages | bytes | " + " | ".join(OPERATIONS) + " |",
             "| --- | --: | --: |" + " :-: |" * len(OPERATIONS)]
    behind = []
    for path in sorted(pathlib.Path(folder).iterdir()):
        count, size, results = measure(path, rounds)
        medians = {operation: statistics.median(ratios) for operation, (ratios, _) in results.items()}
        behind += [f"{operation} {path.stem} ({ratio:.2f})" for operation, ratio in medians.items() if ratio > 1]
        cells = [f"{medians[operation]:.2f}" for operation in OPERATIONS]
        lines.append(f"| {path.stem} | {count:,} | {size:,} | {' | '.join(cells)} |")
        print(f"{path.stem:26}", "  ".join(
            f"{operation} {results[operation][1]:.0f} ns {medians[operation]:.2f} ({min(results[operation][0]):.2f}-"
            f"{max(results[operation][0]):.2f})" for operation in OPERATIONS), flush=True)
    lines += ["", f"Python {sys.version.split()[0]}, Protocol Buffers for Python {version}. The package is slower in "
                  f"{', '.join(behind) or 'none of these'}."]
    assert api_implementation.Type() == "cpp", "the page says so"
    pathlib.Path(table).write_text("\n".join(lines) + "\n", encoding="utf-8")


def store(table, page):
    """Replaces what the page shows between two comments."""
    path = pathlib.Path(page)
    before, rest = path.read_text(encoding="utf-8").split(START)
    _, after = rest.split(END)
    text = pathlib.Path(table).read_text(encoding="utf-8")
    path.write_text(f"{before}{START}\n{text}\n{END}{after}", encoding="utf-8")


def main():
    if sys.argv[1:2] == ["--store"] and len(sys.argv) == 4:
        store(*sys.argv[2:])
    elif len(sys.argv) == 4:
        report(sys.argv[1], sys.argv[2], int(sys.argv[3]))
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
