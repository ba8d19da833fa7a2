#!/usr/bin/env python3
"""Writes the golden rule files, and the seeds of the fuzz target that reads rule files.

Made from the description of the format alone (docs/rule-file.md) and sharing nothing with the C++
sources, so that the two can check each other. The routers are those of make_golden.py. Without an
argument the files are written; with --check they are compared, and a difference gives exit status 1.

rules-default.vrr  a router that nobody has set up
rules-rich.vrr     every field in use, as richmodel.h builds it
"""

import pathlib
import struct
import sys

sys.dont_write_bytecode = True  # no cache folder among the sources

import make_golden

FOLDER = pathlib.Path(__file__).resolve().parent
CORPUS = FOLDER.parent.parent / "fuzz" / "corpus" / "rulefile"

CHANNEL_SIZE = 9
PORT_SIZE = 12 * CHANNEL_SIZE + 4  # without its name


def channel_record(c):
    flags = 16 * c["smart"]
    flags += 1 if c["filter"] else 0
    flags += 2 if c["black"] else 0
    flags += 4 if c["hdr_on"] else 0
    flags += 8 if c["crs"] else 0
    header = c["hdr"] if c["hdr_on"] else "  "
    return struct.pack("<BBBI2s", flags, c["main"], c["reserve"], c["mask"],
                       header.encode("latin-1"))


def name(text):
    return text.encode("latin-1") + b"\0"


def rule_file(router):
    parts = [b"VRR"]
    for p in range(12):
        parts += [channel_record(c) for c in router["channels"][p]]
        parts.append(struct.pack("<I", router["speeds"][p]))
        parts.append(name(router["outputs"][p]))
    parts.append(struct.pack("<I", router["slot_mask"]))
    parts += [text.encode("latin-1") for slot, text in enumerate(router["slots"])
              if router["slot_mask"] >> slot & 1]
    parts += [name(text) for text in router["inputs"]]
    return b"".join(parts)


def patched(data, offset, replacement):
    return data[:offset] + replacement + data[offset + len(replacement):]


def hostile_inputs():
    router = make_golden.default()
    for c, number in enumerate((12, 13, 14, 16, 200, 255)):
        router["channels"][0][c].update(main=number, hdr_on=True, hdr="GP")
        router["channels"][0][c + 6].update(reserve=number, filter=True, mask=0xFFFFFFFF)
    return rule_file(router)


def seeds():
    default = rule_file(make_golden.default())
    rich = rule_file(make_golden.rich())
    port_name = 3 + PORT_SIZE
    mask = 3 + 12 * (PORT_SIZE + 1)  # of a file without names of output ports
    slots_full = make_golden.default()
    slots_full.update(slots=["ABC"] * 32, slot_mask=0xFFFFFFFF)
    return {
        "default": default,
        "rich": rich,
        "empty": b"",
        "magic_alone": b"VRR",
        "wrong_magic": patched(default, 0, b"VRS"),
        "torn_in_a_channel": rich[:3 + CHANNEL_SIZE + 5],
        "torn_in_a_speed": rich[:3 + PORT_SIZE - 2],
        "torn_in_the_mask": default[:mask + 2],
        "torn_in_a_sentence_name": default[:mask + 5],
        "torn_before_the_input_names": default[:mask + 4 + 36],
        "inputs_that_no_port_has": hostile_inputs(),
        "name_without_end": patched(default, port_name, b"ABCDEFGHI"),
        "line_feed_in_a_name": patched(rich, len(rich) - 4, b"\n"),
        "line_feed_in_a_sentence_name": patched(default, mask + 5, b"\n"),
        "not_ascii_names": patched(default, port_name, b"\xc3\xa9\xe2\x82\xac\xff\xf0\0"),
        "all_slots": rule_file(slots_full),
        "slots_missing": patched(default, mask, b"\xff\xff\xff\xff"),
        "odd_speed": patched(default, 3 + PORT_SIZE - 4, b"\xb0\x04\0\0"),
        "blank_in_a_header": patched(rich, 3 + 7, b"A "),
        "header_without_its_flag": patched(default, 3 + 7, b"GP"),
    }


def main():
    files = {FOLDER / "rules-default.vrr": rule_file(make_golden.default()),
             FOLDER / "rules-rich.vrr": rule_file(make_golden.rich())}
    files.update({CORPUS / seed: data for seed, data in seeds().items()})
    status = 0
    for path, data in files.items():
        if "--check" not in sys.argv[1:]:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(data)
        elif not path.is_file() or path.read_bytes() != data:
            print("%s differs from what this script makes" % path.name)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
