// The macros of all windows.
#include "prndeck/gui/PrdGuiMacros.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiDesc.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNew.h"

#include <iterator>
#include <string>

// clang-format off
const char MainMacroDesc[] =
    ".0 c(bg white, fg black)\n"
    ".1 c(bg #BFEFFF,fg black)\n"
    ".2 c(bg grey,fg navyblue)\n"
    ".3 c(bg light gray,fg black)\n"
    ".4 c(bg white,bo blue)\n"
    ".5 c(bg light gray) bo(0)\n"
    ".6 c(bg light gray,fg light gray) bo(0)\n"
    ".7 c(bg white,fg black)\n"
    ".8 c(bg light gray, fg black)\n"
    ".9  c(bg light gray, fg red)\n"
    ".10 c(bg #BFEFFF,fg black, hi navyblue) bo(1)\n"
    ".11 c(bg white,bo blue)\n"
    ".12 c(bg lightyellow,fg navyblue)\n"
    ".13 c(bg lightyellow,fg black)\n"
    ".14 c(bg grey,fg black)\n"
    ".15 c(bg light gray,fg brown)\n"
    ".20 Fd(%s)\n"
    ".21 F_(%s)\n"
    ".22 F_(%s)\n"
    ".23 Fd(%s) Fl(%s)\n"
    ".30 c(bg white,bo darkred)\n"
    ".31 F * .7 h m(0,0) bo(0) St(F) { l info .12 l(@icon/unixhint.xbm) A(lf10,tf10); t * .7 .22 t(*) s(90,4) Ss(F,F) Se(F) Sc(F) bo(0) h A(lf,tf,rf) m(60,0);}\n"
    ".32 F_(%s)\n"
    ".33 c(bg grey90, fg black)\n"
    ".34 c(bg white,bo black)\n"
    ".49 B * h bo(0) .0 {DR *_B .0  bo(2); l * .22 l(*) .0;}; \n"
    ".50 t * .22 s(*,1) bo(0) Se(F) Sc(F) t(*);\n"
    ".51 l * .0 s(*,1) bo(0) a(c) .22 l(*);\n"
    ".52 &* &* &* \\*50(&01 .0,&2,&1) \\*50(&02 .33,&2,&1) \\*50(&03 .0,&2,&1) \\*50(&04 .33,&2,&1) \\*50(&05 .0,&2,&1) \\*50(&06 .33,&2,&1) \\*50(&07 .0,&2,&1) \\*50(&08 .33,&2,&1)\n"
    ".53 &* &* &* \\*50(&01 .0,&2,&1) \\*50(&02 .33,&2,&1) \\*50(&03 .0,&2,&1) \\*50(&04 .33,&2,&1) \\*50(&05 .0,&2,&1) \\*50(&06 .33,&2,&1) \\*50(&07 .0,&2,&1) \\*50(&08 .33,&2,&1) \\*50(&09 .0,&2,&1)\n"
    ".54 &* &* &* \\*50(&010 .33,&2,&1) \\*50(&011 .0,&2,&1) \\*50(&012 .33,&2,&1) \\*50(&013 .0,&2,&1) \\*50(&014 .33,&2,&1) \\*50(&015 .0,&2,&1) \\*50(&016 .33,&2,&1) \\*50(&017 .0,&2,&1) \\*50(&018 .33,&2,&1)\n"
    ".55 t * h bo(0) s(70,1) Se(T) Ssp(a) Sc(T) <3 CB(c,a)> f(t0,255) .22 l(*) .0 A(lf,*, rf);\n"
    ".56 bl * .0 <1 h> A(*,rf) .22 l(*) <2 a(r)> L(%s);\n"
    ".57  t * .0 .22 s(30,1) bo(0) Se(F) Sc(F) l(*) t(Dummy language);\n"
    ".58 l * h .22 bo(0) s(20,1) Se(F) Ssp(a) Sc(F) l(*) .0 A(lf,*, rf);\n"
    ".59 bl * .0 <1 h> A(*,rf) .22 l(*) <2 a(r)> L(%s);\n"
    ".60 t * .22 l(*) .0 <1 .0> <3 s(*,1) t(*) c(bg *,fg *) Ss(F,F) Sc(F) Se(F)>;\n"
    ".61 t * .22 l(*) .0 <1 h .0> <3 s(*,1) t(*) * Ss(F,F) Se(F) Sc(F)>;\n"
    ".62 t * .22 l(*) .0 s(*,1) <3 CB(a)> <1 h> Se(F) Sc(F);\n"
    ".68 bp * .22 l(*) .10 A(*,*);\n"
    ".69 B * .0 h bo(0){ bp * .22 l(*) .10 id(*); l * l(  ) .0); } id(*)\n"
    ".70 bp * .22 l(*) .10;\n"
    ".71 bp * .22 l(*) .10 f(*);\n"
    ".72 B * h P(*) sp(*) bo(0) .3 m(4,4) id(0){l Logo .9 l(@icon/TLogo.xpm) m(10,10) id(0);\n"
    ".73 B * h P(*) sp(*) bo(0) .3 m(50,0) {\n"
    ".74 l * .22 l(*) .0;\n"
    ".75 t * .0 s(3,1) CB(a) ml(4)  CB(c,a) f(*d0,255);\n"
    ".76 l dot l(.) .0 m(0,0);\n"
    ".77 Bl * .0 .22 l(*) V(10) L(dummy1,dummy2) <1 v>;\n"
    ".78 B * .22 l(*) sp(0) bo(0) .0 <1 v> <3 h sp(0) m(0,0)> {\\*75(*,v.t* | ) \\*76 \\*75(*,v.t* | ) \\*76 \\*75(*,v.t* | ) \\*76 \\*75(*) }\n"
    ".79 F * .7 h m(0,0) bo(0) St(F) { l info .12 l(@icon/unixhint.xbm) A(lf10,tf10); t * .7 .22 t(*) s(70,3) Ss(F,F) Se(F) Sc(F) bo(0) h A(lf,tf,rf) m(60,0);}\n"
    ".80 id(*) DB * P(*) t(*) m(0,0) .3 v .23 .22 M(f) {\\*90(*)\n"
    ".81 id(*) DB * P(*) t(*) m(0,0) .3 v .23 .22 M(f) {\n"
    ".82 t * .22 l(*) .0 s(*,1) <3 CB(a)> <1 h>;\n"
    ".83 bl * .22 l(*) .0 L(*) <1 bo(0) h>;\n"
    ".84 t * .22 l(*) .0 s(*,1) H <3 CB(a)> <1 h>;\n"
    ".85 bt * .0 .22 l(*);\n"
    ".86 B * bo(0) .0 h {l * .22 l(*) .0; l * .22 l(*) .0; }\n"
    ".87 B * bo(0) .0 * {t * .22 l(*) .0 <3 CB(a)> <1 h>;}\n"
    ".88 l * l( ) bo(0) .0 m(1,*);\n"
    ".90 B * m(10,1 0) .3 bo(0) id(0){l sp1 l( ) .3 m(0,0) bo(0) id(0); B * .0 m(0,0) bo(1) id(0){\n"
    ".91 id(*) DB * P(*) t(*) margin(0,0) sp(0) .3 .22 M(f) {B AddQue_B .3 margin(0,0) sp(0) bo(0) id(0){\\*94(wqmb) \n"
    ".93 } l sp2 l( ) .3 m(0,0)  bo(0);\n"
    ".94 B * m(10,1 0) .3 bo(0) id(0){ B wa .0 m(10,0) bo(1) id(0){\n"
    ".95 id(*) DB * P(*) t(*) m(0,0) .3 v .23 {\\*90(*)\n"
    ".96 B * .22 l(*) sp(0) bo(0) .0 <1 v A(*,*)> <3 h sp(0) m(0,0)> {\\*75(*,v.t* | ) \\*76 \\*75(*,v.t* | ) \\*76 \\*75(*,v.t* | ) \\*76 \\*75(*) }\n";
// clang-format on

void GenMacros() {
    static constexpr const char *FontKeys[] = {"PrdGuiFontDef1", "PrdGuiFontDef2", "PrdGuiFontDef3",
                                               "PrdGuiFontDef4", "PrdGuiFontDef5", "PrndeckMainFontDef"};
    std::string texts[std::size(FontKeys) + 2];
    const char *values[std::size(texts)];
    for (size_t i = 0; i < std::size(FontKeys); i++) {
        const char *font = FetchEngPrtStrDBValue(FontKeys[i], nullptr, 0);
        texts[i] = font ? font : "fixed";
    }
    texts[std::size(FontKeys)] = NlsText(pDrvCoreDB, SET_MACROS, 1);
    texts[std::size(FontKeys) + 1] = NlsText(pDrvCoreDB, SET_MACROS, 2);
    for (size_t i = 0; i < std::size(texts); i++) values[i] = texts[i].c_str();
    XmtNewObject(nullptr, nullptr, 0, FillGuiDesc(MainMacroDesc, values, std::size(texts)).c_str());
}

void SetDialogWords() {
    // In the order of their texts.
    enum { FIRST_WORD = 1, WORD_COUNT = 8 };
    static XmtDialogWords words;
    const char *texts[WORD_COUNT];
    for (int i = 0; i < WORD_COUNT; i++)
        texts[i] = SaveStr_(NlsText(pDrvCoreDB, SET_WORDS, FIRST_WORD + i).c_str());
    words = {texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6], texts[7]};
    pXmtDialogWords = &words;
}
