"""The catalogue compiler against an independent reader and writer of the files: what it makes of sources, what it
refuses, and that what it prints of any database makes that database again."""
import os
import random
import resource
import signal
import subprocess
import tempfile
import unittest

import xdb

MKCAT = os.path.join(os.environ["PRN_BUILD"], "tools", "mkcat")

ACCEPTED = [
    ("one text", b"$set 25\n1 text\n", {"25_1": b"text"}),
    ("no line end", b"$set 25 terminal\n1 text", {"25_1": b"text"}),
    ("blanks at the ends", b"$set 1\n1  a \n2 \n", {"1_1": b" a ", "1_2": b""}),
    ("CR LF", b"$set 1\r\n1 a\r\n", {"1_1": b"a"}),
    ("comments and blank lines", b"$\n$ $set 2\n\n$set 1\n \t\n$\tx\n1 $ no comment\n", {"1_1": b"$ no comment"}),
    ("sets in turn", b"$set 1\n2 a\n$set 20\n2 b\n$set 1\n1 c\n", {"1_2": b"a", "20_2": b"b", "1_1": b"c"}),
    ("escapes", rb"""$set 1
1 \n\t\r\b\f\v\\\101\7x\0608""", {"1_1": b"\n\t\r\b\f\v\\A\7x08"}),
    ("two lines", b"$set 1\n1 a\\\n  b\\\\\n2 c\\n\\\n$d\n", {"1_1": b"a  b\\", "1_2": b"c\n$d"}),
    ("quotes", b'$set 1\n1 "a"\n$quote "\n2 " a\\" "  \n3 b "c"\n4 "d\\\ne"\n5 ""\n6 \\"\n$quote\n7 "f"\n',
     {"1_1": b'"a"', "1_2": b' a" ', "1_3": b'b "c"', "1_4": b"de", "1_5": b"", "1_6": b'"', "1_7": b'"f"'}),
    ("bytes above 127 and directives of printf", b"$set 1\n1 \xe4 %s%n\n", {"1_1": b"\xe4 %s%n"}),
    ("records", b"$record a key\n\n$set 9\n \\n \n\n$end\n$record b\n$end\n",
     {"a key": b"\n$set 9\n \\n \n", "b": b""}),
]

REFUSED = [
    ("no set", b"1 a\n", 1, "no $set stands before this text"),
    ("set without a number", b"$set x\n", 1, "$set wants a number from 1 up"),
    ("set 0", b"$set 0\n", 1, "$set wants a number from 1 up"),
    ("number 0", b"$set 1\n0 a\n", 2, "a text wants a number from 1 up"),
    ("number too large", b"$set 1\n2147483648 a\n", 2, "a text wants a number from 1 up"),
    ("no text", b"$set 1\n5\n", 2, "a blank and a text belong behind the number"),
    ("tab behind the number", b"$set 1\n5\ta\n", 2, "a blank and a text belong behind the number"),
    ("words", b"$set 1\nhello\n", 2, "neither a text nor a directive nor a comment"),
    ("unknown directive", b"$delset 1\n", 1, "unknown directive $delset"),
    ("unknown escape", b"$set 1\n1 \\(\n", 2, "unknown escape"),
    ("octal above a byte", b"$set 1\n1 \\777\n", 2, "unknown escape"),
    ("NUL by escape", b"$set 1\n1 a\\0b\n", 2, "a text can't hold a NUL"),
    ("NUL", b"$set 1\n1 a\0b\n", 2, "a source can't hold a NUL"),
    ("open quote", b'$quote "\n$set 1\n1 "a\n', 3, "no quote closes this text"),
    ("text behind the quote", b'$quote "\n$set 1\n1 "a" b\n', 3, "text behind the closing quote"),
    ("two quote characters", b"$quote ab\n", 1, "$quote wants one character"),
    ("last line goes on", b"$set 1\n1 a\\\n", 2, "the last line of the file can't go on"),
    ("open record", b"\n$record a\nb\n", 2, "no $end closes this record"),
    ("record without a key", b"$record\n$end\n", 1, "$record wants a key"),
    ("number twice", b"$set 1\n1 a\n1 b\n", 3, "the key 1_1 stands in line 2"),
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
                records = xdb.read(self.compile(source))
                self.assertEqual(records, [(key.encode(), text + b"\0") for key, text in wanted.items()])

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

    def test_all_faults_are_told(self):
        self.write("in.msg", b"x\n$set 1\n1 \\q\n1\n")
        done = self.run_mkcat("in.msg", "out.xdb")
        self.assertEqual([line.split(b":")[1] for line in done.stderr.splitlines()], [b"1", b"3", b"4"])

    def test_same_source_same_file(self):
        with open(self.compile(b"$set 1\n1 a\n"), "rb") as file:
            image = file.read()
        self.assertEqual(image, b"TXDBAA1" + bytes(9) + xdb.pack_header(b"1_1", b"a\0"))

    def test_files_that_do_not_open_or_fill_up(self):
        source = self.write("in.msg", b"$set 1\n1 " + b"a" * 9000 + b"\n")
        for words in (("none.msg", "out.xdb"), (".", "out.xdb"), (source, "no/out.xdb"), ("-d", "none.xdb"), ("a",)):
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
        """Prints a database that Python wrote, compiles the print and reads that with Python."""
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
        dice = random.Random(5)
        for _ in range(30):
            keys = {bytes(dice.choices(b"1_$ \n\\ak\xff", k=dice.randrange(6))) for _ in range(12)}
            records = [(key, bytes(dice.choices(b'\0\0\n\r $"\\7end\xff', k=dice.randrange(200)))) for key in sorted(keys)]
            self.round_trip(records, dice.random() < 0.5)

    def test_dump_of_a_damaged_file(self):
        image = xdb.build([(b"1_1", b"a\0"), (b"1_2", b"b\0")], header=True)
        self.write("cut.xdb", image[:-1])
        done = self.run_mkcat("-d", self.path("cut.xdb"))
        self.assertEqual(done.stdout, b'$quote "\n\n$set 1\n1 a\n')
        self.assertEqual((done.returncode, done.stderr.decode()), (1, f"{self.path('cut.xdb')}: damaged from byte 26 on\n"))


if __name__ == "__main__":
    unittest.main()
