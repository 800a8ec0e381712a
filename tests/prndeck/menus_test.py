"""The flows of the terminal through the real program: what is typed, what is shown, and what prnqtool is asked to do."""
import os
import sys
import unittest

from decktool import DeckTool

RETURN = "Press <Return> to continue"
ADD = "prnqtool <%s> <-log> <prndeck> <-fs> <.settings> <-ppd> <tv_c410.ppd> <-pm> "


class Flows(unittest.TestCase):
    def setUp(self):
        self.tool = DeckTool()
        self.addCleanup(self.tool.close)
        self.tool.queues("q1", "q2", "other")
        self.tool.que({
            "q1": "q1 host lp tv_w520.ppd 0 0 1 1 0 1 \0",
            "host count": "\1\0\0\0host lp\0",
            "q1 **": "Tray=2 100%\n",
            "q1 **banner": ".h1 30 Room 5\n\0",
            "q2": "q2 /dev/lp0 lp gone.ppd 2 1 0 0 0 0 \0",
            " default": "q1\0",
            " banner": ".h2 12 house\n\0",
        })

    def play(self, script):
        """A run whose last answer leaves it; what it showed."""
        status, out, err = self.tool.run("-tty", script=script)
        self.assertEqual((status, err), (0, ""), out[-800:])
        return out

    # ---- Add

    def test_add_each_kind(self):
        for answers, tail in (
                ("5 localhost\n15\n", "<wp> <-lpd> <-hn> <localhost> <-psqn> <lp> <-fe> <-bp> <-ui>"),
                ("4\n6 /dev/lp0\n14 2\n15\n", "<wp> <-d> <-lpd> <-dn> </dev/lp0> <-psqn> <lp> <-fe> <-bp> <-ui>"),
                ("3\n7 127.0.0.1\n8 ps-1_\n9 1\n11 1\n15\n", "<wps> <-lpd> <-hn> <127.0.0.1> <-psqn> <ps-1_> <-fe>"),
                # A port and an IPv6 address are looked up without what stands beside the host.
                ("5 localhost:9101\n11 1\n15\n", "<wp> <-lpd> <-hn> <localhost:9101> <-psqn> <lp> <-fe> <-ui>"),
                ("5 [::1]:515\n11 1\n15\n", "<wp> <-lpd> <-hn> <[::1]:515> <-psqn> <lp> <-fe> <-ui>"),
                # The values of hidden items still count.
                ("10\n5 localhost\n15\n", "<wp> <-lpd> <-hn> <localhost> <-psqn> <lp> <-bp> <-ui>"),
                # A local device stays one while the printing model goes there and back; the model has no banner of
                # its own on the way through a server.
                ("4\n3\n3\n5 h\n6 /dev/x\n15\n", "<wp> <-lpd> <-dn> </dev/x> <-psqn> <lp> <-fe> <-ui>")):
            self.tool.write("lines", "")
            self.play("1\n1 new\n" + answers + "6\n")
            self.assertEqual(self.tool.lines(), [ADD % "new" + tail], answers)

    def test_add_lists_the_models(self):
        out = self.play("1\nl\n\nl 3\n\n2 4\n16\n6\n")
        models = [line.split(". ") for line in out.split("Setup printer Type\n", 1)[1].split("\n\n", 1)[0].splitlines()]
        self.assertEqual([int(number) for number, _ in models], list(range(1, len(models) + 1)))
        self.assertIn("Setup printing model\n   1. workstation to printer\n   2. workstation to print server\n", out)
        self.assertIn("[4. %s]" % models[3][1], out)

    def test_add_refuses(self):
        for answers, said in (
                ("15\n\n", "All names must be set"),
                ("1 new\n5 no.such.host.invalid\n15\n\n", "Unknown hostname no.such.host.invalid" + RETURN),
                ("1 new\n5 $(touch$IFS./x)\n15\n\n", "Unknown hostname $(touch$IFS./x)" + RETURN),
                ("1 q1\n5 localhost\n15\nY\nn\n", 'destroy your current queue "q1"\nReplace q1? [y/n] '),
                ("1 fifteen_letters\n\n", "This entry must have 1 to 14 characters.")):
            out = self.play("1\n" + answers + "16\n6\n")
            self.assertIn(said, out)
            self.assertEqual(self.tool.lines(), [], answers)
        self.assertFalse((self.tool.path / "x").exists())

    def test_add_keeps_its_values_after_a_refusal_and_shows_the_new_queue(self):
        self.tool.write("prnqtool", self.tool.read("prnqtool") + '[ "$1" = new ] && echo new: >>queues\n', 0o755)
        for name in (".settings", ".bsettings"):
            self.tool.write(name, "of an earlier flow")
        out = self.play("1\n1 new\n5 no.such.host.invalid\n14\n15\n\n5 localhost\n15\n6\n").split("\f")
        for value in ("[new]", "[no.such.host.invalid]", "[2. Yes]"):
            self.assertIn(value, out[-3])
        self.assertIn(" new other q1 q2 ", out[-1])
        self.assertNotIn("-bps", self.tool.lines()[0])
        self.assertEqual(self.tool.read(".settings"), "")

    def test_hostile_devices(self):
        values = ["/dev/a b", "it's", '"', "$(touch x)", "`touch x`", "a;touch x", "|touch x", "a>x", "%s%n%d", "\\", "a\\b", "*",
                  "-x", "\xe9\xfe", "d" * 255]
        script = "".join("1\n1 new\n4\n6\n%s\n15\n" % value for value in values)
        self.play(script + "6\n")
        self.assertEqual(self.tool.lines(), [
            ADD % "new" + "<wp> <-lpd> <-dn> <%s> <-psqn> <lp> <-fe> <-bp> <-ui>" % value for value in values])
        self.assertFalse((self.tool.path / "x").exists())

    # ---- Modify

    def test_modify(self):
        out = self.play("2\nq1\n1\n3\n7\n6\n")
        menu = out.split("\f")[2]
        for text in (" Modify Queue\n", "Queue name: q1 ", "Printer model: Tarvo W520 ", "Connection: TCP/IP ",
                     "Host and queue: host using lp ", "Printer: host ", "[2. Yes]"):
            self.assertIn(text, menu)
        # The interface is switched off, the banner on; its text and the settings come from the queue's records.
        self.assertEqual(self.tool.lines(),
                         ["prnqtool <q1> <-mq> <-log> <prndeck> <-fe> <-bp> <-d> <-fs> <.settings> <-bps> <.bsettings>"])
        self.assertEqual(self.tool.read(".settings"), "Tray=2 100%\n")
        self.assertEqual(self.tool.read(".bsettings"), ".h1 30 Room 5\n")

    def test_modify_shows_the_queues_own_name_at_a_shared_printer(self):
        self.tool.que({"q1": "q1 host own tv_w520.ppd 0 0 1 1 0 1 \0", "host count": "\2\0\0\0host last\0"})
        self.assertIn("Host and queue: host using own ", self.play("2\nq1\n8\n6\n"))

    def test_modify_unknown_queues(self):
        self.tool.queues("q1", "other", "w" * 31, "w" * 32)
        self.tool.que({name: name + " host lp tv_w520.ppd 0 0 1 1 0 1 " for name in ("q1", "w" * 31, "w" * 32)})
        for name, said in (("q9", 'Queue "q9" does not exist\nRecreate q9 using Add queue.\n'),
                           ("q", "Modification is not supported for this queue!!!!!\nRecreate q using Add queue.\n"),
                           ("w" * 32, "Modification is not supported for this queue!!!!!"),  # not the queue of 31
                           ("%s%n" * 20, 'Queue "' + "%s%n" * 20 + '" does not exist'),
                           ("k" * 4000, 'Queue "' + "k" * 4000 + '" does not exist'),
                           ("q1\xff", "Modify Queue")):
            out = self.play("2\n" + name + "\n\n" + ("8\n" if "\xff" in name else "") + "6\n")
            self.assertIn(said, out)
        self.assertEqual(self.tool.lines(), [])

    def test_damaged_records(self):
        for record in ("", " ", "q1", "q1 " + "h" * 500 + " x y z", "q1 %n%n%n lp $(touch x).ppd 77 300 -1 x", "\xff" * 60000):
            self.tool.que({"q1": record, "q1 **": "%n" * 3000, "q1 **banner": ".h1 " * 5000, "%n%n%n count": "\1\2\3\4%s %n"})
            self.play("2\nq1\n" + ("8\n" if record else "\n") + "3\nq1\n" + ("8\n" if record else "\n") + "6\n")
            self.assertFalse((self.tool.path / "x").exists())

    def test_nothing_steers_the_terminal_or_the_log(self):
        """Records are everybody's, files and names others'."""
        evil = "\x1b]0;own\x07\x9b2J\x7f\x08\r"
        self.tool.que({"q1": "q1 pr l%sp p%s.ppd 1 1 1 1 0 1 \0" % (evil, evil), "q1 **banner": ".h1 30 Room%s\n\0" % evil,
                       "pr count": "\1\0\0\0ho%sst lp\0" % evil})
        self.tool.queues("q1", "ot%sher" % evil.replace("\r", ""))
        log = "/tmp/prndeck.log"
        out = self.tool.run("-tty", script="2\nq1\n5\n10\n8\n3\nq1\n8\n4\nzz%s\ny\n\n6\n" % evil[:-1], TERM="dumb")
        self.assertIn("ho?]0;own??2J???st using l?]0;own??2J??", out[1])
        self.assertIn("Room?]0;own??2J", out[1])
        self.assertRegex("".join(out[1:]), r"\A[^\x00-\x08\x0b\x0d-\x1f\x7f-\x9f]*\Z")
        if os.path.exists(log):
            with open(log, encoding="latin-1") as text:
                self.assertRegex(text.read(), r"\A[^\x00-\x08\x0b-\x1f\x7f-\x9f]*\Z")

    # ---- Copy

    def test_copy_of_each_type(self):
        for kind, tail in enumerate(("<wp> <-hn> <localhost> <-psqn> <print>", "<wps> <-hn> <localhost> <-psqn> <ps1>",
                                     "<wp> <-dn> </dev/x> <-psqn> <print>", "<psp> <-hn> <localhost> <-psqn> <print>",
                                     "<psp> <-dn> </dev/x> <-psqn> <print>")):
            self.tool.write("lines", "")
            place = "/dev/x" if "<-dn>" in tail else "localhost"
            own = "ps1" if "<wps>" in tail else "lp"  # the server's other queue, made later, is "ps2"
            self.tool.que({"q1": "q1 p %s tv_w520.ppd %d \0" % (own, kind), "p count": "\2\0\0\0%s ps2\0" % place})
            out = self.play("3\nq1\n1 new\n7\n6\n")
            self.assertIn("Printer model: Tarvo W520 ", out.split("\f")[2])
            self.assertEqual(self.tool.lines(), ["prnqtool <new> <-log> <prndeck> <-cl> <q1> <-pm> " + tail])

    def test_copy_over_a_queue(self):
        out = self.play("3\nq1\n1 q2\n4 localhost\n7\nn\n7\ny\n6\n")
        self.assertEqual(out.count('Using this queue name will destroy your current queue "q2"? [y/n] '), 2)
        self.assertEqual(len(self.tool.lines()), 1)

    # ---- Delete

    def test_delete(self):
        out = self.play("4\nq1, zz q2\ny\n\n6\n")
        self.assertIn("Do you want to delete q1, zz q2? [y/n] ", out)
        self.assertIn('"zz" is not an existing queue.' + RETURN, out)
        # The second answer is refused, the third part of a name, and of the last no word is one.
        self.play("4\nq1\nn\n4\nq\ny\n4\n$(touch x) `id` %n ;id\ny\n\n\n\n\n\n6\n")
        self.assertEqual(self.tool.lines(), ["prnqtool <%s> <-x> <-log> <prndeck>" % name for name in ("q1", "q2", "q")])

    # ---- Banner

    def test_banner_of_a_new_queue(self):
        out = self.play("1\n13\n1\nRoom  it's 100%\n2 17\n8\n1 new\n5 localhost\n13\n10\n15\n6\n")
        self.assertIn("[house]", out.split("\f")[3])  # the system's default
        self.assertEqual(self.tool.read(".bsettings"), ".h1 40 Room  it's 100%\n.h2 12 house\n")
        self.assertTrue(self.tool.lines()[0].endswith("<-ui> <-bps> <.bsettings>"))
        self.assertIn("[Room  it's 100%]", out.split("\f")[-3])  # the second visit shows the last apply

    def test_banner_as_default(self):
        self.play("2\nq1\n3\n5\n7\n8\n5\n1\n \n3\n \n7\n8\n8\n6\n")
        self.assertEqual(self.tool.lines(), ["prnqtool <-dbps> <.bsettings>", "prnqtool <-xdbps>"])
        self.assertFalse((self.tool.path / ".bsettings").exists())

    # ---- End of input

    def test_end_of_input_at_every_prompt(self):
        script = ("1\n1\nnew\n4\n6\n/dev/lp0\n13\n1\ntitle\n8\n15\n" "1\n1 q1\n5 no.such.host.invalid\n15\ny\n\n16\n"
                  "2\nzz\n\n2\nq1\n3\n5\n\nn\n10\n7\n" "3\nq1\n1 new\n4 localhost\n7\n" "4\nq1 zz\ny\n\n").splitlines(True)
        for count in range(len(script)):
            status, out, err = self.tool.run("-tty", script="".join(script[:count]))
            self.assertEqual((status, err), (1, "\nprndeck: reading from standard input : Success\n"), script[:count])
            self.assertLess(len(out), 100000)


if __name__ == "__main__":
    if os.geteuid() != 0:
        print("skipped: the terminal menus need root")
        sys.exit(77)
    unittest.main()
