"""checkwin: the program's own windows hold no fault, and each kind of fault in a description is found at its place."""
import os
import re
import subprocess
import tempfile
import unittest

BUILD = os.environ["PRN_BUILD"]
STAGE = os.path.join(BUILD, "stage")

# Description, and the lines that are wanted behind its name.
CASES = (
    ("sound", "*80(400,w,prndeck,Title,box,x)\n t f l(Name) s(9,1) <3 CB(c,a) f(A0,14+-+_)>;\n bl o l(x) .22 L(a,b) "
     "f(H1[f_B1] C*[o]) <1 h> <4 .21>;\n bt b l(x) <1 .22>;\n}}\n}*72(r,box,4)\n id(9)\n *71(ok,OK,C[ok] H[w])\n}\n", ()),
    ("words", "zz a ; more words\nl b ; )\n l c ; (l d ;)\nbp", (
        '1:1: unknown keyword "zz"', '1:8: unknown keyword "more"', "2:7: ')' means nothing here", "3:8: '(' means nothing here",
        "3:14: ')' means nothing here", '4:1: "bp": a keyword wants white space behind it')),
    ("a block left open", "B a {\n B b { l c ; }", ("1:5: this block is not closed",)),
    ("a block closed twice", "B a { } } zz ", ("1:9: this '}' closes nothing: the description ends here",)),
    ("macros", ".5 l * ;\n*5(a,b) *5(c) *97(zz) *5 .100 x\n l d .98 ;", (
        "2:1: macro 5 takes 1 arguments, not 2", "2:15: macro 97 is not defined", '2:19: unknown keyword "zz"',
        "2:21: ')' means nothing here", "2:23: macro 5 is called without arguments", '2:23: in macro 5: unknown argument "*"',
        "2:26: a macro's number is 0 to 99, not 100", "3:6: macro 98 is not defined")),
    ("a fault in a macro", ".5 l * Q(*) ;\n *5(a,b) ", ('2:2: in macro 5: unknown argument "Q"',)),
    ("a macro within itself", ".5 *5 \n*5 ", ("2:1: in macro 5: macro 5: more than 20 calls",)),
    ("arguments", "B box .0 {\n l a S(T,T) Se(x) Ss(T) M(q) s(4) bo() h(1) Sp(m,n) F_() no(x) ts(zz);\n l b P(zz) <1 h>;\n}", (
        '2:6: unknown argument "S"', '2:13: Se wants T or F, not "x"', "2:19: Ss wants two values", '2:25: M wants a letter of "safn", not "q"',
        "2:30: s wants two numbers", "2:35: bo wants a number", "2:45: Sp(...): too many values",
        '2:50: unknown argument "n)"', "2:53: F_ wants a value", '2:61: "x" is none of ",ok,cancel,help,"',
        '2:67: "zz" is no object so far', '3:8: "zz" is no object so far', "3:12: a group, but the object has one widget")),
    ("ends of objects", "F f {l s ;l }", (
        "1:5: '{' wants white space in front of 'l'", "1:8: s wants a value in parentheses",
        "1:10: ';' wants white space in front of 'l'", "1:13: this '}' closes nothing: the description ends here")),
    ("groups", "t a <3 h> <1h> <x v> <2 h;", (
        "1:3: \"a\": neither ';' nor '{' ends it", "1:5: group 3 of \"a\" is read by no part of it",
        "1:13: the character behind a group's number is lost", "1:16: '<' wants the number of a group",
        "1:22: no '>' behind the group", "1:22: group 2 of \"a\" is read by no part of it")),
    ("labels, colours, pictures", "l a l(@icon/TLogo.xpm,fg red,zz x,bg) c(bg #12,bo #102030) CB(a,q);\nl b l(@no.xpm) l(~x);", (
        '1:30: no colour key "zz"', '1:33: "x" is no colour', "1:35: a key without a colour", '1:44: "#12" is no colour', '1:65: no callback "q"',
        '2:7: there is no picture "no.xpm"', "2:18: no character in front of '~'")),
    ("colours and fonts by name", "l a F_(7x13) F_(7x99) c(bg light gray,fg lightYELLOW,bo rgb:1/22/333,st lightish,hi #FFF,sb rgb:1/2);\n"
     "B b Fd(-*-fixed-medium-*-*-*-13-*-*-*-*-*-iso8859-1) { l c ; }\nl d Fl(-*-nofont-*-*-*-*-*-*-*-*-*-*-*-*);", (
        '1:17: there is no font "7x99"', '1:73: "lightish" is no colour', '1:85: "#FFF" is no colour', '1:93: "rgb:1/2" is no colour',
        '3:8: there is no font "-*-nofont-*-*-*-*-*-*-*-*-*-*-*-*"')),
    ("attachments", "F f {\n B b {l x ; }\n l a A(lw zz 3,tw x 2,zf,t,,rwo b);\n}", (
        '3:8: "zz" is no object so far', '3:16: "x" is not in the same box', '3:23: "zf": no side', '3:26: "t": nothing to attach to')),
    ("names", "l a ;\nbl b l(x) L(c,d);\nl b_2 ;\nWF a { }", (
        '3:3: "b_2" is the name of an object of FILE', '4:4: "a" is the name of an object of FILE')),
    ("a button's format", "bp a f(C[a] X[a] Hq[a] me[a] H[zz,a] V[a] c_bg_red[a] Ca);", (
        "1:13: \"X\": no action 'X' here", '1:18: "Hq": no event "q", so it runs on each', "1:24: \"me\": no action 'm' here",
        '1:32: the target "zz" is no object', '1:40: V wants "name.value", not "a"', '1:55: "Ca": no targets in brackets',
        "1:55: \"Ca\": no ']' behind its targets")),
    ("widths and colours of a button's format", "bp a f(b[a] b_x[a] b_2[a] c[a] c_zz_red[a] c_bg_reddish[a] c_bg_LightGray[a] bq_2[a]);", (
        '1:8: "b": b wants a width, as in b_2', '1:13: "b_x": b wants a width, as in b_2', '1:27: "c": c wants key and colour',
        '1:32: "c_zz_red": no colour key "zz"', '1:44: "c_bg_reddish": "reddish" is no colour',
        '1:78: "bq_2": no event "q_2", so it runs on each')),
    ("items and states", "bl o l(x) L(a,b) f(H2[o] S0,1[o] V*[o.3] V*[o.2] P1[o.2] V0[o.0]);\nbt b l(x) f(D1[o] D2[o]);\n"
     "Bl l l(x) L(a) <3 f(H7[o])>;", (
        '1:20: "H2": the last state is 1', '1:37: the target "o" has 2 items', '1:53: the target "o" has 2 items',
        '1:61: "o.0": items count from 1', '2:19: "D2": the last state is 1')),
    ("a number used twice", "id(5) bp a ; bp b id(5) ; bp c id(5) f(H[a]) ; bl d l(x) L(m,n) id(7) ; t e id(7) l(x) ;\n"
     "t g id(7) l(x) <3 CB(a)>; l h id(9) ; bp i id(9) ; bp j f(C[h]) ; M m { id(5) b(A~) b( ) } ;", (
        '1:17: "b" has the number 5 of "a"', '2:3: "g" has the number 7 of "d"', '2:42: "i" has the number 9 of "h"',
        '2:79: "m_1" has the number 5 of "a"')),
    ("a state's format", "br a L(x,y) f(H1,2[a] Sx[a] b[a] P0[zz.1] A[zz] C[.] V*[a.2]);\nF b f(C[a]) ;", (
        '1:15: "H1,2": the last state is 1', '1:23: "Sx": not a list of states', "1:29: \"b\": no action 'b' here", '1:37: the target "zz" is no object',
        '1:45: the target "zz" is no object', '1:49: "C": not a list of states', '2:7: the format "C[a]" never runs')),
    ("entry checks", "t a CB(c) f(A0 d9,1+);\nt b f(x0,ff);\ntp c f(S l4tzz | v.ta_b);", (
        "1:14: 'A' wants a minimum and a maximum", "1:17: 'd': the minimum is above the maximum", "1:20: no character behind the sign",
        "2:7: an entry check runs only with CB(c)", '3:13: the target "zz" is no object', "3:22: a name behind 't' holds no '_'")),
    ("a menu", "M bar .0 { b(A~,B) m(C~) b(D~) m(E~) { bf(C[bar_4_c_1],F) bf(Q[bar],Go~) b(O~r) b( ) } q { } };\nl bar_4_c_2 ;", (
        "1:12: ',' in the label \"A~,B\"", "1:26: the menu in front of this has no body", "1:32: the menu in front of this has no body",
        '1:40: no letter in the entry "F"', "1:62: \"Q\": no action 'Q' here", '1:74: the letter of "O~r" is another entry\'s as well',
        "1:88: 'q' means nothing in a menu", "1:90: a body, but no menu in front of it",
        '2:3: "bar_4_c_2" is the name of an object of FILE')),
    ("tabs and lists", "T t { TB 1 l(a) <4 h> { l x ; } TB 2 { } }\nBl s <1 v> l(c);\nBl u <1 v>;\nl t_1 ;\nl s_Form ;\nl t_BB2 ;", (
        '1:17: group 4 of "1" is read by no part of it', '1:36: "2": a tab wants a label', '3:6: group 1 of "u" is read by no part of it',
        '4:3: "t_1" is the name of an object of FILE', '5:3: "s_Form" is the name of an object of FILE')),
    ("objects that are there", "l a ;\nO a { l b ; } OS b h t(l c ; ) l(x);\nO zz { } OS zz bo(2) ; P(zz) l d ;", (
        '3:3: "zz" is no object so far', '3:13: "zz" is no object so far', '3:26: "zz" is no object so far')),
    ("files", "#include FILE\n#include /no/file\n", (
        "1:1: more than 200 blocks or files within each other", "2:1: the file \"/no/file\" can't be read")),
    ("calls without end", ".5 *5*5 \n*5 ", (
        "2:1: in macro 5: macro 5: more than 20 calls", "2:1: in macro 5: macro 5: the calls never end")),
    ("holes", "l a l(%s) ;\nl b l(%d) ;", ("2:7: '%' that is no hole",)),
)


class CheckWin(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="checkwin-")
        self.addCleanup(scratch.cleanup)
        self.file = os.path.join(scratch.name, "window")

    def check(self, *words):
        done = subprocess.run([os.path.join(BUILD, "tools", "checkwin"), *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              text=True, timeout=120)
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout.replace(self.file, "FILE").splitlines()

    def check_text(self, text, *words):
        with open(self.file, "w", encoding="latin-1") as file:
            file.write(text.replace("FILE", self.file))
        return self.check(STAGE, self.file, *words)

    def test_the_windows_of_the_program(self):
        self.assertEqual(self.check(STAGE), (0, []))

    def test_faults(self):
        for name, text, faults in CASES:
            with self.subTest(name):
                wanted = ["FILE:" + fault for fault in faults] + [f"{len(faults)} faults"] * bool(faults)
                self.assertEqual(self.check_text(text), (int(bool(faults)), wanted))

    def test_the_example_of_the_documentation(self):
        with open(os.path.join(os.path.dirname(__file__), "../../doc/windows.md"), encoding="utf-8") as file:
            text = file.read().split("## A window from nothing\n\n```\n")[1].split("```")[0]
        self.assertEqual(self.check_text(text), (0, []))

    def test_numbers_that_the_program_hears(self):
        """Objects take the next number, one of their own, or their control's; each name leads to the object made last."""
        cases = (
            ("l RefreshButton id(131);", ()),
            ("id(130) l scrolList ; l RefreshButton ;", ()),
            ("id(131) bl RefreshButton l(x) L(a,b);", ()),
            ("id(120) M printer_menu .0 { b() b() id(115) b(A~) b() b() b() id(120) b(B~) } ;", ()),
            ("id(1) B do { l dsw id(200); l d_dn ; }", (
                '1:9: "do" has the number 1, in PrdGuiIds it has 205', '1:31: "d_dn" has the number 2, in PrdGuiIds it has 201')),
            ("id(205) l do l(x); bl d_ip id(9) l(x) <3 id(202)>;\nid(6) T d_ea L(x,y) id(204); l da ;", (
                '2:32: "da" has the number 6, in PrdGuiIds it has 207',)),
        )
        for text, faults in cases:
            with self.subTest(text):
                lines = [line for line in self.check_text(text)[1] if "number" in line]
                self.assertEqual(lines, ["FILE:" + fault for fault in faults])

    def test_each_number_and_name_has_a_row(self):
        path = os.path.join(os.path.dirname(__file__), "../../prndeck/gui/PrdGuiIds.h")
        with open(path, encoding="utf-8") as file:
            head, rows = file.read().split("GuiIds[] = {")
        numbers = re.findall(r"^    ([A-Z]\w+)(?: = \d+)?,$", head, re.M)
        names = re.findall(r"^#define (\w+)", head, re.M)
        self.assertGreater(min(len(numbers), len(names)), 5)
        self.assertEqual([word for word in numbers if "{%s," % word not in rows], [], "without a row in GuiIds")
        self.assertEqual([word for word in names if "%s}" % word not in rows], [], "without a row in GuiIds")

    def test_holes_against_the_catalogue(self):
        """Set 3 has nine texts."""
        self.assertEqual(self.check_text("bl a L(" + "%s," * 8 + "%s);", "3"), (0, []))
        status, lines = self.check_text("l a l(%s);\nl b l(%s);", "3")
        self.assertEqual((status, lines[0]), (1, "FILE:2:10: 2 holes, but there is a text 3/3 in en_US"))
        status, lines = self.check_text("bl a L(" + "%s," * 9 + "%s);", "3")
        self.assertIn("FILE:1:35: text 3/10 of de_DE is missing", lines)
        status, lines = self.check_text("l a l(%s) l(%s) l(%s);", "3")
        self.assertIn("FILE:1:19: text 3/3 of en_US holds a ','", lines)


if __name__ == "__main__":
    unittest.main()
