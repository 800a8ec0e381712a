"""The feature front end keeps a model's or a queue's settings in the tool directory, alone or as the user chooses."""
import os
import re
import shutil
import subprocess
import unittest

import xdb
from term import Term
from tooldir import PPD, ToolDir

STAGE = os.path.join(os.environ["PRN_BUILD"], "stage")
OPTIONS = PPD.format(model="Tarvo 99%s, \\n~") + """*OpenGroup: More/Finishing, and <6D6F7265>
*OpenUI *Staple/Staple: Boolean
*DefaultStaple: False
*Staple True/Yes: ""
*Staple False/No: ""
*CloseUI: *Staple
*OpenUI *Tray/Trays: PickMany
*DefaultTray: T1
*Tray T1/One: ""
*Tray T2/Two: ""
*CloseUI: *Tray
*OpenUI *Odd/Choice that is not offered: PickOne
*DefaultOdd: Unknown
*Odd A/A: ""
*OpenUI *BannerTray/Banner Tray: PickOne
*DefaultBannerTray: Same
*BannerTray Same/Same: ""
*BannerTray T2/Two: ""
*CloseGroup: More
*JCLOpenUI *JCLHold/Hold: PickOne
*DefaultJCLHold: Off
*JCLHold Off/Off: ""
*JCLCloseUI: *JCLHold
*UIConstraints: *Duplex DuplexNoTumble *Staple True
*UIConstraints: *Staple True *Duplex DuplexNoTumble
*UIConstraints: *Duplex *PageSize Letter
*UIConstraints: *Duplex *NoSuchOption
"""
# What a run says that finds nobody to ask; the others never ask.
ALONE = ("prnpnxxtty: WARNING: can't open display\n"
         "prnpnxxtty: warning: nobody could be asked: the features are kept as they are\n")
DEFAULTS = "PageSize=A4\nDuplex=None\nStaple=False\nBannerTray=Same\nJCLHold=Off\n"
LONG_EDGE = DEFAULTS.replace("Duplex=None", "Duplex=DuplexNoTumble")
PROMPT = "Enter a selection or h for help: "
# Numbers of the dialogue's items without the banner tray.
SIZE, DUPLEX, STAPLE, ODD, HOLD, APPLY, CANCEL = range(1, 8)


class FrontEnd(unittest.TestCase):
    def setUp(self):
        self.tool = self.enterContext(ToolDir("prnpnxxtty", "v5driver", "driver"))
        self.tool.env.pop("DISPLAY", None)
        shutil.copytree(STAGE + "/db", self.tool.path + "/db", dirs_exist_ok=True)
        shutil.copytree(STAGE + "/help", self.tool.path + "/help")
        shutil.copy(STAGE + "/trans.conf", self.tool.path)
        self.ppd = self.tool.path + "/ppd/full.ppd"
        self.tool.write("ppd/full.ppd", OPTIONS)
        self.tool.write("ppd/crlf.ppd", OPTIONS.replace("\n", "\r\n"))
        record = "%s h lp %s 0 1 1 1 0 1 \0"
        xdb.write(self.tool.path + "/db/que.xdb", [(key.encode(), value.encode()) for key, value in {
            "q": record % ("q", "full.ppd"), "q **": "Duplex=DuplexNoTumble\nTray=T2\nPageSize=Nowhere\n$(touch hit)\n",
            "bare": record % ("bare", "full.ppd"), "other": record % ("other", "tv_b.ppd"),
            "other **": "Duplex=DuplexNoTumble\n", "evil": record % ("evil", "../ppd/full.ppd"), "short": "short\0",
            "gone": record % ("gone", "gone.ppd")}.items()])

    def settings(self):
        try:
            with open(self.tool.path + "/.settings") as settings:
                return settings.read()
        except FileNotFoundError:
            return None

    def talk(self, *words, shown=PROMPT, **env):
        term = self.enterContext(Term(self.tool.command("prnpnxxtty", "-tty", *words), cwd="/",
                                      env={"LANG": "C", **env}))
        term.wait(shown)
        return term

    def end(self, term, status=0):
        self.assertEqual(term.end(), status, term.output[-2000:])

    def test_alone(self):
        for program, words, wanted in (
                ("prnpnxxtty", ["-SBP", "-GS" + self.ppd], DEFAULTS), ("prnpnxxtty", ["-GS", "crlf.ppd"], DEFAULTS),
                ("prnpnxxtty", ["-dnew", "-SBP", "-GS" + self.ppd], DEFAULTS), ("v5driver", ["-GS", "full.ppd"], DEFAULTS),
                ("prnpnxxtty", ["-d", "-GS" + self.ppd], DEFAULTS), ("driver", ["-GS", self.ppd], DEFAULTS),
                ("prnpnxxtty", ["-dq", "", "-GS" + self.ppd], LONG_EDGE + "Tray=T2\n"),
                ("prnpnxxtty", ["-dother", "-GS" + self.ppd], DEFAULTS), ("prnpnxxtty", ["-MSbare"], DEFAULTS),
                ("prnpnxxtty", ["-MS", "q"], LONG_EDGE + "Tray=T2\n"), ("driver", ["-MS", "bare"], DEFAULTS),
                ("v5driver", ["-MS", "q"], LONG_EDGE + "Tray=T2\n")):
            with self.subTest(program=program, words=words):
                self.tool.write(".settings", "Staple=True\nPageRegion=A4\nof another flow\n")
                done = self.tool.run(program, *words)
                self.assertEqual((done.returncode, done.stderr), (0, ALONE if program == "prnpnxxtty" else ""))
                self.assertRegex(done.stdout, r"^%s: \d settings of \w+\.ppd kept in .*/\.settings\n$" % program)
                self.assertEqual(self.settings(), wanted)

    def test_a_display_that_does_not_answer_is_none(self):
        done = self.tool.run("prnpnxxtty", "-GSfull.ppd", DISPLAY="127.0.0.1:4242")
        self.assertEqual((done.returncode, done.stderr, self.settings()), (0, ALONE, DEFAULTS))

    def test_refusals_keep_the_settings(self):
        self.tool.write(".settings", "old")
        ppd = self.tool.path + "/ppd/"
        os.mkfifo(ppd + "pipe")
        self.tool.write("ppd/large.ppd", OPTIONS + "*%" + "x" * (4 << 20) + "\n")
        self.tool.write("ppd/many.ppd", "*PPD-Adobe: \"4.3\"\n" + "".join(
            "*OpenUI *Option%d: PickOne\n*DefaultOption%d: A\n*Option%d A: \"\"\n" % (n, n, n) for n in range(9999)))
        for words, answer in (([], "no PPD file told"), (["-GS"], "needs a PPD file"), (["-GS", "-tty"], "needs a PPD"),
                              (["-FP"], "can't open display\n"), (["-GS" + ppd + "nosuch"], "No such file"), (["-MS"], "needs a queue"),
                              (["-GS" + ppd], "no regular file"), (["-GS" + ppd + "pipe"], "no regular file"),
                              (["-GSbroken.ppd"], "is no PPD file"), (["-GSlarge.ppd"], "too large"), (["-x"], "-x is unknown"),
                              (["-MSnosuch"], 'no queue "nosuch"'), (["-MSevil"], "names no PPD"), (["-MSgone"], "No such file"),
                              (["-MSshort"], "names no PPD"), (["-MS", "q **"], "no queue"), (["-GSmany.ppd"], "more settings than")):
            with self.subTest(words):
                done = self.tool.run("prnpnxxtty", *words)
                self.assertEqual((done.returncode, done.stdout), (1, ""))
                self.assertIn(answer, done.stderr)
                self.assertEqual(self.settings(), "old")
        self.assertEqual(self.tool.run("prnpnxxtty", "-FP").stderr, ALONE.splitlines(True)[0])
        done = self.tool.run("v5driver", "-tty", "-GS" + self.ppd)
        self.assertIn("-tty is unknown", done.stderr)

    def test_apply(self):
        term = self.talk("-GS" + self.ppd)
        for line in ("Features of Tarvo 99%s; /n~\n", "Finishing; and more", "Two-Sided .*[1. Off]", "[1. (not set)]"):
            self.assertRegex(term.output, line.replace("[", r"\[").replace("(", r"\(").replace(")", r"\)"))
        self.assertNotIn("Trays", term.output)
        self.assertNotIn("Banner Tray", term.output)
        term.line("%d 2" % DUPLEX, PROMPT)
        term.line(str(SIZE), PROMPT)
        term.line("l %d" % DUPLEX, "   1. Off\n   2. Long Edge\n")
        term.line("", PROMPT)
        term.line("l", "option: ")
        term.line(str(ODD), "   1. (not set)\n   2. A\n")
        term.line("", PROMPT)
        term.line("%d 99" % SIZE, PROMPT)  # no such choice: the next one
        term.line("h", "Feature settings")
        term.line("e", PROMPT)
        self.assertIsNone(self.settings())
        term.line(str(APPLY))
        self.end(term)
        self.assertEqual(self.settings(), LONG_EDGE)
        again = self.talk("-GS" + self.ppd)
        self.assertRegex(again.output, r"Two-Sided \.+ \[2\. Long Edge\]")
        again.line("%d 2" % ODD, PROMPT)
        again.line(str(APPLY))
        self.end(again)
        self.assertEqual(self.settings(), LONG_EDGE.replace("Banner", "Odd=A\nBanner"))

    def test_leaving_without_apply(self):
        for settings in (None, "Staple=True\nof this flow\n"):
            if settings:
                self.tool.write(".settings", settings)
            term = self.talk("-GS" + self.ppd)
            term.line("%d 2" % DUPLEX, PROMPT)
            term.line(str(CANCEL))
            self.end(term)
            self.assertEqual(self.settings(), settings)
            term = self.talk("-GS" + self.ppd)
            term.line("%d 2" % DUPLEX, PROMPT)
            term.eof()
            self.end(term, 1)
            self.assertEqual(self.settings(), settings)

    def test_settings_of_a_queue(self):
        self.tool.write(".settings", "Staple=True\n")
        term = self.talk("-SBP", "-MS", "q")
        self.assertRegex(term.output, r"Two-Sided \.+ \[2\. Long Edge\]")
        self.assertRegex(term.output, r"Staple \.+ \[2\. No\]")
        term.line("5 2", PROMPT)
        self.assertRegex(term.output, r" 5\) Banner Tray \.+ \[2\. Two\]")
        term.line(str(APPLY + 1))
        self.end(term)
        self.assertEqual(self.settings(), LONG_EDGE.replace("Same", "T2") + "Tray=T2\n")
        os.unlink(self.tool.path + "/.settings")
        self.assertRegex(self.talk("q", "-GS" + self.ppd).output, r"Two-Sided \.+ \[2\. Long Edge\]")

    def test_what_does_not_go_together(self):
        term = self.talk("-GS" + self.ppd)
        term.line("%d 2" % DUPLEX, PROMPT)
        self.assertNotIn("Not together", term.output)
        term.line("%d 1" % STAPLE, PROMPT)
        told = "\nNot together: Two-Sided [Long Edge] with Staple [Yes]\n"
        self.assertEqual(term.output.count(told), 1)
        shown = term.line("%d 2" % SIZE, PROMPT)
        self.assertIn("Two-Sided [Long Edge] with Page Size [Letter]\n", shown)
        term.line(str(APPLY), "all the same? [y/n] ")
        term.line("n", PROMPT)
        self.assertIsNone(self.settings())
        term.line(str(APPLY), "all the same? [y/n] ")
        term.line("y")
        self.end(term)
        self.assertEqual(self.settings(), LONG_EDGE.replace("A4", "Letter").replace("Staple=False", "Staple=True"))

    def test_a_file_and_answers_of_any_kind(self):
        ppd = ['*PPD-Adobe: "4.3"', "*OpenUI *Many/%n%s,\\,~\x1b[2J\0\x9b\xff\xfe\xc3\xa9'\"`$(touch hit) " + "long " * 99 + ": PickOne",
               "*DefaultMany: C1", *('*Many C%d/~\x1b]0;x\x07%%n,%s: ""' % (n, "\\" * (n % 9)) for n in range(700)),
               "*OpenUI *Many/Again: PickMany", "*OpenUI *OpenUI: PickOne", "*OpenUI OpenUI *A", "*OpenUI *: PickOne",
               "*OpenUI", "*", "*:", "*OpenUI *None/<zz><4>/None: PickOne", "*OpenUI *Bad: PickOne", '*Bad a=b/x: ""', "*Bad",
               '*Bad ../a: ""', "*UIConstraints: *Many *Many", "*UIConstraints: * *", "*UIConstraints:", "*OpenGroup",
               "*OpenGroup: ~\x1b/\x1b", *("*OpenUI *O%d/~x: PickOne\n*O%d A/: \"\"" % (n, n) for n in range(300)),
               "*OpenUI *Cut/Cut: PickOne", "*Cut A"]
        self.tool.write("ppd/hostile.ppd", "\n".join(ppd).encode("latin-1"))
        answers = [b"", b"-1", b"1 700", b"l", b"l", b"l x", b"l 1", b"~", b"2 2", b"9" * 20, b"%n", b"\xfe\0", b"9" * 9000]
        done = subprocess.run(self.tool.command("prnpnxxtty", "-tty", "-GShostile.ppd"), input=b"\n".join(answers) + b"\n",
                              capture_output=True, timeout=60, env=dict(os.environ, TERM="vt100", LANG="C"))
        self.assertEqual((done.returncode, done.stderr.strip()), (1, b"prnpnxxtty: reading from standard input : Success"))
        shown = done.stdout.replace(b"\x1b[H\x1b[J", b"")  # how this terminal is cleared
        self.assertNotRegex(shown, rb"[^\n\f -~]")
        self.assertLess(max(map(len, shown.split(b"\n"))), 82)
        self.assertIn(b"[700. -", shown)
        self.assertIsNone(self.settings())
        self.assertEqual(self.tool.run("prnpnxxtty", "-GShostile.ppd").returncode, 0)
        self.assertEqual(self.settings(), "Many=C1\n")

    def test_letters_beyond_ascii(self):
        for text, shown in ((b"Gr\xf6\xdfe", "Groesse"), ("Gr\u00f6\u00dfe".encode(), "Groesse"), (b"Gr<F6DF>e", "Groesse"),
                            (b"\xc4\xe9<E9>", "Aeee"), ("\u20ac \u0416a".encode(), "? ?a"), (b"\xc3", "A"), (b"\x9b2J", "?2J")):
            with self.subTest(text):
                ppd = b'*PPD-Adobe: "4.3"\n*OpenUI *A/' + text + b': PickOne\n*A B/' + text + b': ""\n*DefaultA: B\n'
                self.tool.write("ppd/letters.ppd", ppd)
                term = self.talk("-GSletters.ppd")
                self.assertRegex(term.output, r" 1\) %s \.+ \[1\. %s\]" % (re.escape(shown), re.escape(shown)))
                self.assertIn(" Features of letters.ppd\n", term.output)

    def test_a_model_without_options(self):
        self.tool.write("ppd/none.ppd", '*PPD-Adobe: "4.3"\n*ModelName: "%s"\n')
        term = self.talk("-GSnone.ppd", shown="%s has no features to choose.\n")
        term.line("")
        self.end(term)
        self.assertIsNone(self.settings())

    def test_the_caller_reads_on_where_the_dialogue_ended(self):
        script = "%s -tty -GS%s >/dev/null; read line; echo got $line" % (self.tool.path + "/prnpnxxtty", self.ppd)
        done = subprocess.run(["sh", "-c", script], input="%d 2\n%d\nnext\n" % (DUPLEX, APPLY), capture_output=True, text=True,
                              timeout=60, env=dict(os.environ, TERM="vt100"))
        self.assertEqual((done.stdout, self.settings()), ("got next\n", LONG_EDGE))

    def test_what_the_user_is_told_waits_to_be_read(self):
        for words, told in ((["-GSnosuch.ppd"], "No such file or directory\n"), (["-GSbroken.ppd"], "is no PPD file\n")):
            term = self.talk(*words, shown="Press <Return>")
            self.assertIn(told, term.output)
            term.line("")
            self.end(term, 1)
        os.mkdir(self.tool.path + "/.settings")
        term = self.talk("-GS" + self.ppd, LANG="de_DE", shown="Einstellungen f\u00fcr Tarvo")
        term.line(str(APPLY), "Weiter mit <Return>")
        self.assertIn("laesst sich nicht ersetzen", term.output)
        term.line("", "Einstellungen f\u00fcr Tarvo")
        term.line(str(CANCEL))
        self.end(term)


if __name__ == "__main__":
    unittest.main()
