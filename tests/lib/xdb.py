"""Record databases, read and written without the program's code: the other side of the tests.

    xdb.py list FILE                            a line "KEY DATA" in hexadecimal for each record, keys without the NUL
    xdb.py make FILE plain|header KEY DATA ...  writes a file of the records given in hexadecimal ("-" for nothing)
"""
import os
import struct
import sys

MAGIC = b"TXDBAA"


def scramble(run):
    return bytes(a ^ b for a, b in zip(run, run[1:] + b"\0"))


def unscramble(run):
    plain = bytearray(run)
    for i in range(len(plain) - 2, -1, -1):
        plain[i] ^= plain[i + 1]
    return bytes(plain)


def pack_plain(key, data):
    body = struct.pack("=H", len(key) + 1) + key + b"\0" + data
    return struct.pack("=H", len(body)) + scramble(body)


def pack_header(key, data):
    key += b"\0"
    return struct.pack(">HH", len(key) + len(data) + 2, len(key)) + scramble(key) + scramble(data)


def build(records, header=False, junk=b"7" * 9):
    """The bytes of a database; junk stands behind the count's NUL."""
    if not header:
        return b"".join(pack_plain(*record) for record in records)
    head = MAGIC + b"%d\0" % len(records)
    return head + junk[: 16 - len(head)] + b"".join(pack_header(*record) for record in records)


def parse(image):
    """The records of a sound database as (key, data); ValueError for anything else."""
    header = image[:6] == MAGIC
    place = 16 if header else 0
    records = []
    while place < len(image):
        (length,) = struct.unpack_from(">H" if header else "=H", image, place)
        body = image[place + 2 : place + 2 + length]
        if len(body) != length:
            raise ValueError("a record runs past the end")
        place += 2 + length
        if header:
            (size,) = struct.unpack(">H", body[:2])
            key, data = unscramble(body[2 : 2 + size]), unscramble(body[2 + size :])
        else:
            body = unscramble(body)
            (size,) = struct.unpack("=H", body[:2])
            key, data = body[2 : 2 + size], body[2 + size :]
        if len(key) != size or key[-1:] != b"\0":
            raise ValueError("a key does not end in its record")
        records.append((key[:-1], data))
    if header and int(image[6:16].split(b"\0")[0]) != len(records):
        raise ValueError("the count is wrong")
    return records


def read(path):
    with open(path, "rb") as file:
        return parse(file.read())


def write(path, records, header=False):
    """In one step, as the programs do: one that reads meanwhile has the old database or the new one."""
    with open(str(path) + ".test", "wb") as file:
        file.write(build(records, header))
    os.replace(str(path) + ".test", path)


def main(verb, path, *words):
    if verb == "list":
        for key, data in read(path):
            print(key.hex() or "-", data.hex() or "-")
        return
    plain = [b"" if word == "-" else bytes.fromhex(word) for word in words[1:]]
    write(path, list(zip(plain[::2], plain[1::2])), words[0] == "header")


if __name__ == "__main__":
    main(*sys.argv[1:])
