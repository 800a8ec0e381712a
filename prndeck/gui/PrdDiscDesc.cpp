// The windows of discovery and browser as a text.
#include "prndeck/gui/PrdDiscDesc.h"

// Ids: 572 OK of the browser, 576 the question of a reset, 600 the dialog, 601 its tabs, 621 the subnets, 622
// to 625 their buttons, 637 the addresses, 638 and 639 theirs, 640 OK, 641 Apply. The lists hold texts in
// columns, so they have fonts of one pitch. They keep the width of the tab: an empty one would make it
// narrow.
const char IPDiscoveryDesc[] = R"(
*80(570,brw,prndeck,%s,brmb,brwa)
 t brp l(%s) s(80,1) h .0 <2 .21> <3 .22 CB(a)>;
}}
}*72(brbp,brmb,4)
 id(572)
 *71(bro,%s,C[bro] H[brw])
 *71(brca,%s,H[brw])
 *71(brhe,%s,Ca[tb6])
}
id(575)
DW warndialog P(prndeck) .3 M(f) S(T,T) r(T) s(520,100) T(%s) t(%s);
id(576)
DW resetconf P(prndeck) .3 M(f) S(T,T) r(T) s(400,100) T(%s) t(%s) L(%s,%s) Dt(?) no(help);
DI nobtnDialog P(prndeck) .3 M(f) S(T,T) r(T) s(300,100) T(%s) t(%s) no(ok,cancel,help);
*80(600,ipDisc,prndeck,%s,ipmb,ipwa)
 id(601)
 T ipdt .4 m(10,10) CB(tab){
  TB 1 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
   *79(ipdh1,ipdh1t,%s)
   *78(ipda1,%s,snt1,snt2,snt2,snt3,snt3,snt4,snt4)
   *78(ipda2,%s,smt1,smt2,smt2,smt3,smt3,smt4,smt4)
   id(621)
   Bl ipsl .0 .32 l(%s) V(10) L(one                                                         ,two) <1 v> <3 A(rf)>;
   B ipb1 h .0 bo(0) id(0){
    id(622)
    *70(ipsna,%s)
    *70(ipsnr,%s)
    *70(ipsned,%s)
    *70(ipsnin,%s)
   }
  }
  TB 2 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
   *79(ipdh2,ipdh2t,%s)
   *78(ipda3,%s,ipa1,ipa2,ipa2,ipa3,ipa3,ipa4,ipa4)
   id(637)
   *77(ipal <3 A(rf\)>,%s)
   B ipb2 h .0 bo(0) id(0){
    id(638)
    *70(ipaa,%s)
    *70(ipar,%s)
   }
  }
 }
}}
}*72(ipbp,ipmb,4)
 id(640)
 *70(idb1,%s)
 *70(idb2,%s)
 *71(idb4,%s,Ca[tb6])
}
)";
