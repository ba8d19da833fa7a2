#!/usr/bin/env python3
"""Writes the golden transcripts of a configuration upload.

Made from the description of the wire alone and sharing nothing with the C++ sources, so that the two
can check each other. Without an argument the transcripts beside this script are written; with
--check they are compared, and a difference gives exit status 1.

upload-default.txt  a router that nobody has set up
upload-rich.txt     every field in use, by the formulas of rich(); tst_sentencebuilders.cpp builds
                    the same router by the same formulas
"""

import pathlib
import sys

NO_PORT = 15
SPEEDS = [2400, 4800, 9600, 19200, 38400, 57600, 115200]
NAMES = ["RMC", "GGA", "GLL", "ZDA", "VTG", "HDT", "HDM", "HDG", "TTM", "VDO", "VDM", "DBT"]


def empty_channel():
    return dict(main=NO_PORT, reserve=NO_PORT, filter=False, mask=0, black=False, crs=False,
                hdr_on=False, hdr="", smart=0)


def default():
    return dict(
        channels=[[empty_channel() for _ in range(12)] for _ in range(12)],
        speeds=[4800] * 12,
        outputs=[""] * 12,
        inputs=[""] * 12,
        slots=NAMES + [""] * 20,
        slot_mask=0xFFF,
    )


def rich():
    router = default()
    for p in range(12):
        for c in range(12):
            n = 12 * p + c
            main = (p + c) % 13
            reserve = (5 * p + 7 * c + 3) % 13
            router["channels"][p][c] = dict(
                main=NO_PORT if main == 12 else main,
                reserve=NO_PORT if reserve == 12 else reserve,
                filter=n % 2 == 1,
                mask=(n * 0x9E3779B1) % 2**32,
                black=n % 3 == 1,
                crs=n % 5 == 1,
                hdr_on=n % 7 < 3,
                # Some channels whose override is off still hold a header.
                hdr="" if n % 7 >= 5 else chr(65 + n % 26) + chr(65 + (3 * n + 1) % 26),
                smart=n % 8,
            )
        router["speeds"][p] = SPEEDS[(3 * p) % 7]
        router["outputs"][p] = "Out ab%Z"[: p % 9]
        router["inputs"][p] = "gPs #/19"[: (p + 5) % 9]
    # The mask, not the text, says which slots are taken.
    router["slots"] = [chr(65 + s % 26) + "Q" + chr(90 - s % 26) for s in range(32)]
    router["slot_mask"] = 0xA5F0_1CE7
    return router


def checked(body):
    total = 0
    for character in body[1:]:
        total ^= ord(character)
    return "%s*%02X\r\n" % (body, total)


def flags(c):
    bits = [c["crs"], c["filter"], c["black"], c["hdr_on"]]
    return sum(1 << i for i, bit in enumerate(bits) if bit) + 16 * c["smart"]


def upload(router):
    for p, channels in enumerate(router["channels"]):
        words = ["%X%X%02X" % (c["reserve"], c["main"], flags(c)) for c in channels]
        yield checked("$VRRUL,%d,B,%s" % (p, "".join(words)))
        for first in (0, 6):
            masks = ["%08X" % c["mask"] for c in channels[first:first + 6]]
            yield checked("$VRFLT,%d,B,%d,%s" % (p, first, "".join(masks)))
        headers = [c["hdr"] if c["hdr_on"] else "" for c in channels]
        yield checked("$VRHDC,%d,B,%s" % (p, ",".join(headers)))
        yield "$VRWBL\r\n"
        yield checked("$VRSPD,%d,%d" % (p, router["speeds"][p]))
    for first in (0, 8, 16, 24):
        names = [name if router["slot_mask"] >> slot & 1 else ""
                 for slot, name in enumerate(router["slots"])][first:first + 8]
        yield checked("$VRFLS,%d,%s" % (first, ",".join(names)))
    for letter, names in (("O", router["outputs"]), ("I", router["inputs"])):
        for first in (0, 6):
            yield checked("$VRPNM,%s,%d,%s" % (letter, first, ",".join(names[first:first + 6])))


def main():
    folder = pathlib.Path(__file__).resolve().parent
    transcripts = {"upload-default.txt": default(), "upload-rich.txt": rich()}
    status = 0
    for name, router in transcripts.items():
        text = "".join(upload(router)).encode("ascii")
        if "--check" not in sys.argv[1:]:
            (folder / name).write_bytes(text)
        elif (folder / name).read_bytes() != text:
            print("%s differs from what this script makes" % name)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
