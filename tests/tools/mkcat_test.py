"""The catalogue compiler against an independent reader and writer of the files: what it makes of sources, what it
refuses, and that what it prints of any database makes that database again."""
import os
import resource
import signal
import subprocess
import tempfile
import unittest

import xdb

MKCAT = os.path.join(os.environ["PRN_BUILD"], "tools", "mkcat")

ACCEPTED = [
    ("sets and line ends", b"$set 25\r\n1 \xe4 %s%n\r\n$set 3\n1 a\n$set 25\n2 b", {"25_1": b"\xe4 %s%n", "3_1": b"a", "25_2": b"b"}),
    ("blanks at the ends", b"$set 1\n1  a \n2 \n", {"1_1": b" a ", "1_2": b""}),
    ("comments and blank lines", b"$\n$ $set 2\n\n$set 1\n \t\n$\tx\n1 $ no comment\n", {"1_1": b"$ no comment"}),
    ("escapes", rb"""$set 1
1 \n\t\r\b\f\v\\\101\7x\0608""", {"1_1": b"\n\t\r\b\f\v\\A\7x08"}),
    ("two lines", b"$set 1\n1 a\\\n  b\\\\\n2 c\\n\\\n$d\n", {"1_1": b"a  b\\", "1_2": b"c\n$d"}),
    ("quotes", b'$set 1\n1 "a"\n$quote "\n2 " a\\" "  \n3 b "c"\n4 "d\\\ne"\n5 ""\n6 \\"\n$quote\n7 "f"\n',
     {"1_1": b'"a"', "1_2": b' a" ', "1_3": b'b "c"', "1_4": b"de", "1_5": b"", "1_6": b'"', "1_7": b'"f"'}),
    ("records", b"$record a key\n\n$set 9\n \\n \n\n$end\n$record b\n$end\n",
     {"a key": b"\n$set 9\n \\n \n", "b": b""}),
]

REFUSED = [
    ("no set", b"1 a\n", 1, "no $set stands before this text"),
    ("set 0", b"$set 0\n", 1, "$set wants a number from 1 up"),
    ("unknown escape", b"$set 1\n1 \\(\n", 2, "unknown escape"),
    ("NUL by escape", b"$set 1\n1 a\\0b\n", 2, "a text can't hold a NUL"),
    ("last line goes on", b"$set 1\n1 a\\\n", 2, "the last line of the file can't go on"),
    ("open record", b"\n$record a\nb\n", 2, "no $end closes this record"),
    ("key twice, by two ways", b"$set 1\n1 a\n$record 1_1\n$end\n", 3, "the key 1_1 stands in line 2"),
    ("too long", b"$set 1\n1 " + b"a" * 65529 + b"\n", 2, "key and text are longer than 65533 bytes together"),
]


class Mkcat(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="prntest.")
        self.addCleanup(scratch.cleanup)
        self.dir = scratch.name

    def path(self, name):
        return os.path.join(self.dir, name)

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def run_mkcat(self, *words, **options):
        return subprocess.run([MKCAT, *words], capture_output=True, cwd=self.dir, **options)

    def compile(self, source):
        self.write("in.msg", source)
        done = self.run_mkcat("in.msg", "out.xdb")
        self.assertEqual((done.returncode, done.stderr), (0, b""), source[:100])
        return self.path("out.xdb")

    def test_accepted(self):
        for name, source, wanted in ACCEPTED:
            with self.subTest(name):
                records = [(key.encode(), text + b"\0") for key, text in wanted.items()]
                with open(self.compile(source), "rb") as file:
                    self.assertEqual(file.read(), xdb.build(records, header=True, junk=bytes(9)), xdb.read(file.name))

    def test_refused(self):
        self.write("old.xdb", b"stands")
        for name, source, line, text in REFUSED:
            with self.subTest(name):
                self.write("in.msg", source)
                done = self.run_mkcat("in.msg", "old.xdb")
                self.assertEqual((done.returncode, done.stderr.decode()), (1, f"in.msg:{line}: {text}\n"))
                self.assertEqual(sorted(os.listdir(self.dir)), ["in.msg", "old.xdb"])
        with open(self.path("old.xdb"), "rb") as file:
            self.assertEqual(file.read(), b"stands")

    def test_files_that_do_not_open_or_fill_up(self):
        source = self.write("in.msg", b"$set 1\n1 " + b"a" * 9000 + b"\n")
        for words in ((".", "out.xdb"), (source, "no/out.xdb"), ("-d", "none.xdb"), ("a",)):
            done = self.run_mkcat(*words)
            self.assertEqual(done.returncode, 1, words)
            self.assertNotEqual(done.stderr, b"", words)

        def small_disk():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))

        done = self.run_mkcat("in.msg", "out.xdb", preexec_fn=small_disk)
        self.assertEqual((done.returncode, done.stderr), (1, b"out.xdb: File too large\n"))
        self.assertEqual(os.listdir(self.dir), ["in.msg"])

    def round_trip(self, records, header):
        xdb.write(self.path("in.xdb"), records, header)
        dump = self.run_mkcat("-d", "in.xdb")
        self.assertEqual((dump.returncode, dump.stderr), (0, b""))
        self.assertEqual(xdb.read(self.compile(dump.stdout)), records, dump.stdout[:500])

    def test_dump_makes_the_same_records(self):
        odd = [(b"25_1", b" text\n \"x\" \0"), (b"25_2", b'"\0'), (b"25_1017", b"\0"), (b"25_9", b"no NUL"),
               (b"025_1", b"a\0"), (b"25_0", b"a\0"), (b"1_99999999999", b"a\0"), (b"1_2x", b"a\0"), (b"", b"empty key\0"),
               (b" banner", b"1 x\n2 y\0"), (b"blank at the end ", b"a\0"), (b"two\nlines", b"a\0"), (b"lf", b"\n\0"),
               (b"end", b"a\n$end\nb\0"), (b"cr", b"a\r\nb\0"), (b"count", b"\x02\0\0\0host lp"), (b"none", b""),
               (b"$set", b"$set 1\n1 a\n\0"), (b"blanks", b" " * 200), (b"octal", b"\0" + b"7" * 100), (b"\xff", b"\xfe\0")]
        for header in (False, True):
            self.round_trip(odd, header)
            self.round_trip([], header)

    def test_dump_of_a_damaged_file(self):
        image = xdb.build([(b"1_1", b"a\0"), (b"1_2", b"b\0")], header=True)
        self.write("cut.xdb", image[:-1])
        done = self.run_mkcat("-d", self.path("cut.xdb"))
        self.assertEqual(done.stdout, b'$quote "\n\n$set 1\n1 a\n')
        self.assertEqual((done.returncode, done.stderr.decode()), (1, f"{self.path('cut.xdb')}: damaged from byte 26 on\n"))


if __name__ == "__main__":
    unittest.main()
