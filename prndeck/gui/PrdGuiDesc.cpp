// The windows as texts.
#include "prndeck/gui/PrdGuiDesc.h"

#include "common/NlsUtils.h"

#include <cstring>
#include <vector>

// Ids that the program knows: 102 add queue, 103 to 105 the other queue entries, 107 discovery, 108 to 115
// the printer's entries, 117 help, 120 Exit, 124 web page, 130 the list, 131 refresh. The entries of the menu
// take theirs from the counter: an entry in between moves all behind it.
const char MainWinDesc[] = R"(
id(100)
WM prndeck t(%s) .5 .23 CB(fg,fl,t,D,A) St(T)
{
F mwa id(2000) .5 {
 l LogoBanner id(101) l(@icon/P36W50/Brand_Banner_Hrz.xpm) A(tf,lf);
 M printer_menu .8 .22 St(T) A(tw LogoBanner,lf,rf) { b() m(%s) {
  m(%s) { bf(C[wqw] S[wqw] H[wqrpn_B1],%s) bf(Da[cq] Ca[cqw] Sa[cqw],%s) bf(C[mqw] S[mqw],%s) bf(C[dqw] S[dqw],%s) }
  bf(Ca[jmw] Sa[jmw],%s) bf(C[ipDisc] S[ipDisc],%s) }
  m(%s) {b(%s) b(%s) b(%s)
    bf(S[brw],%s) bf(S[resetconf],%s)
    bf(C[snmp],%s) bf(C[tb3i],%s) b(%s)}
  bf(C[dsw] S[dsw],%s)
  m(%s) {b(%s) bf(S[aw],%s)}
  b(                                        ) b(%s); };
 F w2 h s(580,-1) .5 A(tw printer_menu,lf,rf) {
)"
                           "\t"
                           R"(   Bl scrolList id(130) .3 A(lf,tf,bf,rf)
    l(%s)
    .22 L(one,two) .22 <1 sp(0) m(0,30)>  <3 .7 Ssp(a) Ss(T,T) Ssp(d)> V(10);
  }
 F DeviceInfoForm h s(580,200) c(bg white, fg gray) A(tw w2,lf,rf) bo(1) Srp(n) {
   l PrinterPicture s(250,200) .0 l(@icon/tv_generic/static.xbm) A(tf,lf 10,bf);
   F w3 .7 A(lf 260,tf 10,bf,rf) f(l[PrinterPicture]) {
   l mname l(%s) .22 .7 a(l) A(tf 10,lf) ;
   l msta l(%s) .22 .7 a(l) A(tw mname 10,lf);
   l mloc l(%s) .22 .7 a(l) A(tw msta 10,lf);
   }
  }
  s line1 .8 h A(tw DeviceInfoForm 10,lf,rf);
  bp tb6 id(117) s(27,27) .14 l(@icon/P36W50/ButtonIcon_Help.xpm) A(tw line1,lf 10);
  bp RefreshButton P(mwap) id(131) s(27,27) .14 l(@icon/P36W50/ButtonIcon_Refresh.xpm) A(tw line1,lw tb6 10);
  bp tb1 .14 l(@icon/P36W50/ButtonIcon_AddQueue.xpm) s(27,27) id(102) A(tw line1,lw RefreshButton 10) CB(me,ml) f(lml[tb1L] rme[tb1L] Ca[wqw] Sa[wqw]);
  bp tb3i .14 l(@icon/P36W50/ButtonIcon_QBWS.xpm) s(27,27) id(124) A(tw line1,lw tb1 10) CB(me,ml) f(lml[tb3iL] rme[tb3iL] Ca[tb3i] );
  bp tb3 .14 l(@icon/P36W50/ButtonIcon_SNMPServices.xpm) s(27,27) id(113) A(tw line1,lw tb3i 10) CB(me,ml) f(lml[tb3L] rme[tb3L] Ca[snmp]);
}}}
)";

const char AboutDesc[] = R"(
*80(150,aw,prndeck,%s,awmb,awwa)
 B awb1 .0 m(20,10) bo(0) v id(0){
 l awl .0 l(@icon/TLogo.xpm) id(0);
 *74(awn,%s)
 *74(awv,%s)
 }
}}
}*72(awbp,awmb,4)
 *71(awo,%s,H[aw])
}
)";

// Ids: 201 the first column, 202 to 204 the others, 205 OK, 206 Cancel, 207 Apply.
const char DisplaySetupDesc[] = R"(
*80(200,dsw,prndeck,%s,dsmb,dswa)
 B dsb1 .0 m(0,0) bo(0) v id(0){
 id(201)
 bl d_dn l(%s) .22 .0 L(%s) <1 bo(0) h>;
 *85(d_ip,%s)
 *85(d_ea,%s)
 *85(d_dt,%s)
 }
}}
}*72(dsbp,dsmb,4)
 id(205)
 *70(do,%s)
 *71(dc,%s,H[dsw])
 *70(da,%s)
}
)";

std::string GenGuiDesc(const char *text, int set) {
    size_t holes = 0;
    for (const char *hole = text; (hole = strstr(hole, "%s")); hole += 2) holes++;
    std::vector<char> out(strlen(text) + holes * NLS_GUI_TEXT + 1);
    return NlsGuiStrCvt(text, set, out.data(), out.size());
}

std::string FillGuiDesc(const std::string &text, const char *const *values, int count) {
    std::string out;
    size_t from = 0;
    for (int i = 0; i < count; i++) {
        size_t hole = text.find("%s", from);
        if (hole == text.npos) break;
        out.append(text, from, hole - from).append(values[i] ? values[i] : "");
        from = hole + 2;
    }
    return out.append(text, from);
}
