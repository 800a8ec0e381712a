"""The feature front end leaves the settings of a PPD file in the tool directory, or says why it can't."""
import os
import unittest

from tooldir import PPD, ToolDir

OPTIONS = PPD.format(model="Tarvo") + """*OpenUI *Staple/Staple: Boolean
*DefaultStaple: False
*Staple True/Yes: ""
*Staple False/No: ""
*CloseUI: *Staple
*OpenUI *Tray/Trays: PickMany
*DefaultTray: T1
*Tray T1/One: ""
*CloseUI: *Tray
*OpenUI *Odd/Choice that is not offered: PickOne
*DefaultOdd: Unknown
*Odd A/A: ""
*CloseUI: *Odd
*JCLOpenUI *JCLHold/Hold: PickOne
*DefaultJCLHold: Off
*JCLHold Off/Off: ""
*JCLCloseUI: *JCLHold
"""
DEFAULTS = "PageSize=A4\nDuplex=None\nStaple=False\nJCLHold=Off\n"


class FrontEnd(unittest.TestCase):
    def setUp(self):
        self.tool = self.enterContext(ToolDir("prnpnxxtty"))
        self.tool.write("ppd/full.ppd", OPTIONS)
        self.tool.write("ppd/crlf.ppd", OPTIONS.replace("\n", "\r\n"))

    def settings(self):
        try:
            with open(self.tool.path + "/.settings") as settings:
                return settings.read()
        except FileNotFoundError:
            return None

    def test_defaults(self):
        ppd = self.tool.path + "/ppd/"
        for words in (["-tty", "-GS" + ppd + "full.ppd"], ["-tty", "-SBP", "-GS" + ppd + "full.ppd"],
                      ["-tty", "q", "-GS", ppd + "full.ppd"], ["-dq", "-SBP", "-GS" + ppd + "crlf.ppd"],
                      ["-d", "-GS" + ppd + "full.ppd"], ["-MS", ppd + "full.ppd"]):
            with self.subTest(words):
                done = self.tool.run("prnpnxxtty", *words)
                self.assertEqual((done.returncode, done.stderr), (0, ""))
                self.assertRegex(done.stdout, r"^prnpnxxtty: 4 settings of \w+\.ppd kept in .*/\.settings\n$")
                self.assertEqual(self.settings(), DEFAULTS)
                os.unlink(self.tool.path + "/.settings")

    def test_settings_of_a_queue_stand(self):
        self.tool.write(".settings", "Duplex=DuplexNoTumble\nPageSize=Nowhere\n$(touch hit)\n")
        self.assertEqual(self.tool.run("prnpnxxtty", "-MS" + self.tool.path + "/ppd/full.ppd").returncode, 0)
        self.assertEqual(self.settings(), DEFAULTS.replace("Duplex=None", "Duplex=DuplexNoTumble"))

    def test_refusals_keep_the_settings(self):
        self.tool.write(".settings", "old")
        ppd = self.tool.path + "/ppd/"
        os.mkfifo(ppd + "pipe")
        for words, answer in (([], "no PPD file told"), (["-GS"], "needs a PPD file"), (["-GS", "-tty"], "needs a PPD"),
                              (["-FP"], "-FP is unknown"), (["-GS" + ppd + "nosuch"], "No such file"),
                              (["-GS" + ppd], "no regular file"), (["-GS" + ppd + "pipe"], "no regular file"),
                              (["-GS" + ppd + "broken.ppd"], "is no PPD file")):
            with self.subTest(words):
                done = self.tool.run("prnpnxxtty", *words)
                self.assertEqual((done.returncode, done.stdout), (1, ""))
                self.assertIn(answer, done.stderr)
                self.assertEqual(self.settings(), "old")


if __name__ == "__main__":
    unittest.main()
