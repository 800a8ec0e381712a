// The windows of the property sheet and the reset as texts.
#include "prndeck/gui/PrdGuiSnmpDesc.h"

const char SystemPropertyDesc[] = R"(
*80(700,snmp,prndeck,%s,snmpmb,snmpwa2)
 id(702)
 T sdbt .4 m(10,10) CB(tab){
  TB 1 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
   id(706)
   T sdbt2 .4 m(10,10) CB(tab){
  TB 1 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
    *49(sl1,sl1,slt1,%s)
    *49(sl2,sl2,slt2,%s)
    *49(sl3,sl3,slt3,%s)
    *49(sl4,sl4,slt4,%s)
    *49(sl5,sl5,slt5,%s)
    *49(sl6,sl6,slt6,%s)
    id(732)
    t snmpri l(%s) s(4,1) ml(4) h .0 t(30) <2 .21> <3 .22 CB(c,a) f(d1,1000)>;
    B snmpb0 h .0 bo(0) id(0){
     id(733)
     *70(snmpris,%s)
     *70(snmpsai,%s)
     *70(snmprn,%s)
    }
    *74(smsgb1,%s)
    t smsgb .0 .22 s(60,4) Se(F) Sc(F) Ss(T,F) bo(0);
   }
  TB 2 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
    B sica h .0 bo(0) id(0){
     B sica1 v .0 bo(0) sp(0) id(0){ l sicha1 .22 l(%s) .0 id(0); *52(sic1t,,14) }
     B sica2 v .0 bo(0) sp(0) id(0){ l sicha2 .22 l(%s) .0 id(0); *52(sic2t,,11) }
     B sica3 v .0 bo(0) sp(0) id(0){ l sicha3 .22 l(%s) .0 id(0); *52(sic3t,,7) }
     B sica4 v .0 bo(0) sp(0) id(0){ l sicha4 .22 l(%s) .0 id(0); *52(sic4t,,9) }
     B sica5 v .0 bo(0) sp(0) id(0){ l sicha5 .22 l(%s) .0 id(0); *52(sic5t,,12) }
     B sica6 v .0 bo(0) sp(0) id(0){ l sicha6 .22 l(%s) .0 id(0); *52(sic6t,,8) }
     B sica7 v .0 bo(0) sp(0) id(0){ l sicha7 .22 l(%s) .0 id(0); *52(sic7t,,8) }
     B sica8 v .0 bo(0) sp(0) id(0){ l sicha8 .22 l(%s) .0 id(0); *52(sic8t,,11) }
     B sica9 v .0 bo(0) sp(0) id(0){ l sicha9 .22 l(%s) .0 id(0); *52(sic9t,,12) }
    }
   }
  TB 3 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
    B scc h .0 m(0,0) sp(10) bo(0) id(0){
     B scca h .0 m(0,0) bo(0) id(0){
      B scca1 v .0 m(0,0) bo(0) sp(0) id(0){ l sccha1 .22 l(%s) .0 id(0); *53(scc1t,,24) }
      B scca2 v .0 m(0,0) bo(0) sp(0) id(0){ l sccha2 .22 l(%s) .0 id(0); *53(scc2t,,11) }
      B scca3 v .0 m(0,0) bo(0) sp(0) id(0){ l sccha3 .22 l(%s) .0 id(0); *53(scc3t,,7) }
      B scca4 v .0 m(0,0) bo(0) sp(0) id(0){ l sccha4 .22 l(%s) .0 id(0); *53(scc4t,,9) }
     }
     B sccb h .0 m(0,0) bo(0) id(0){
      B sccb1 v .0 m(0,0) bo(0) sp(0) id(0){ l scchb1 .22 l(%s) .0 id(0); *54(scc1t,,24) }
      B sccb2 v .0 m(0,0) bo(0) sp(0) id(0){ l scchb2 .22 l(%s) .0 id(0); *54(scc2t,,11) }
      B sccb3 v .0 m(0,0) bo(0) sp(0) id(0){ l scchb3 .22 l(%s) .0 id(0); *54(scc3t,,7) }
      B sccb4 v .0 m(0,0) bo(0) sp(0) id(0){ l scchb4 .22 l(%s) .0 id(0); *54(scc4t,,9) }
     }
    }
   }
  TB 4 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
    B soc h .0 m(0,0) sp(10) bo(0) id(0){
     B soca h .0 m(0,0) bo(0) id(0){
      B soca1 v .0 m(0,0) bo(0) sp(0) id(0){ l socha1 .22 l(%s) .0 id(0); *53(soc1t,,24) }
      B soca2 v .0 m(0,0) bo(0) sp(0) id(0){ l socha2 .22 l(%s) .0 id(0); *53(soc2t,,11) }
      B soca3 v .0 m(0,0) bo(0) sp(0) id(0){ l socha3 .22 l(%s) .0 id(0); *53(soc3t,,7) }
      B soca4 v .0 m(0,0) bo(0) sp(0) id(0){ l socha4 .22 l(%s) .0 id(0); *53(soc4t,,9) }
     }
     B socb h .0 m(0,0) bo(0) id(0){
      B socb1 v .0 m(0,0) bo(0) sp(0) id(0){ l sochb1 .22 l(%s) .0 id(0); *54(soc1t,,24) }
      B socb2 v .0 m(0,0) bo(0) sp(0) id(0){ l sochb2 .22 l(%s) .0 id(0); *54(soc2t,,11) }
      B socb3 v .0 m(0,0) bo(0) sp(0) id(0){ l sochb3 .22 l(%s) .0 id(0); *54(soc3t,,7) }
      B socb4 v .0 m(0,0) bo(0) sp(0) id(0){ l sochb4 .22 l(%s) .0 id(0); *54(soc4t,,9) }
     }
    }
   }
  TB 5 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
    B sgca h .0 bo(0) id(0){
     B sgca1 v .0 bo(0) sp(0) id(0){ l sgcha1 .22 l(%s) .0 id(0); *52(sgc1t,,30) }
     B sgca2 v .0 bo(0) sp(0) id(0){ l sgcha2 .22 l(%s) .0 id(0); *52(sgc2t,,12) }
     B sgca3 v .0 bo(0) sp(0) id(0){ l sgcha3 .22 l(%s) .0 id(0); *52(sgc3t,,20) }
    }
    t sgc6t1 l(%s) .22 .0 s(30,1) bo(0) Se(F) Sc(F) <1 h bo(0)>;
    t sgc6t2 l(%s) .22 .0 s(30,1) bo(0) Se(F) Sc(F) <1 h bo(0)>;
    t sgc6t3 l(%s) .22 .0 s(30,1) bo(0) Se(F) Sc(F) <1 h bo(0)>;
    t sgc7t1 l(%s) .22 .0 s(30,1) bo(0) Se(F) Sc(F) <1 h bo(0)>;
   }
  TB 6 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
    id(1089)
    T ssntab .4 m(10,10) CB(tab){
  TB 1 id(0) .4 <2 .10 .22 bo(0) be(0)> <3 a(l)> l(%s){
      *74(ssnc1t1,%s)
      *74(ssnc1t2,%s)
      *74(ssnc1t3,%s)
      *74(ssnc1t4,%s)
      *74(ssnc1t5,%s)
      *74(ssnc1t6,%s)
      *74(ssnc1t7,%s)
      *74(ssnc1t8,%s)
      *74(ssnc1t9,%s)
      *74(ssnc1t10,%s)
      *74(ssnc1t11,%s)
      *74(ssnc1t12,%s)
      *74(ssnc1t13,%s)
     }
  TB 2 id(0) .4 <2 .10 .22 bo(0) be(0)> <3 a(l)> l(%s){
      *74(ssnc2t1,%s)
      *74(ssnc2t2,%s)
      *74(ssnc2t3,%s)
      *74(ssnc2t4,%s)
      *74(ssnc2t5,%s)
      *74(ssnc2t6,%s)
      *74(ssnc2t7,%s)
      *74(ssnc2t8,%s)
     }
  TB 3 id(0) .4 <2 .10 .22 bo(0) be(0)> <3 a(l)> l(%s){
      *74(ssnc3t1,%s)
      *74(ssnc3t2,%s)
     }
  TB 4 id(0) .4 <2 .10 .22 bo(0) be(0)> <3 a(l)> l(%s){
      *74(ssnc4t1,%s)
      *74(ssnc4t2,%s)
      *74(ssnc4t3,%s)
      *74(ssnc4t4,%s)
      *74(ssnc4t5,%s)
      *74(ssnc4t6,%s)
      *74(ssnc4t7,%s)
      *74(ssnc4t8,%s)
      *74(ssnc4t9,%s)
      *74(ssnc4t10,%s)
      *74(ssnc4t11,%s)
      *74(ssnc4t12,%s)
      *74(ssnc4t13,%s)
      *74(ssnc4t14,%s)
      *74(ssnc4t15,%s)
      *74(ssnc4t16,%s)
     }
  TB 5 id(0) .4 <2 .10 .22 bo(0) be(0)> <3 a(l)> l(%s){
      *74(ssnc5t1,%s)
      *74(ssnc5t2,%s)
      *74(ssnc5t3,%s)
      *74(ssnc5t4,%s)
      *74(ssnc5t5,%s)
     }
    }
   }
   }
  }
  TB 2 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
   id(1150)
   T sdbt3 .4 m(10,10) CB(tab){
  T 1 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
    *55(spcrt1,%s,tf)
    *55(spcrt2,%s,tw spcrt1_B1)
    *55(spcrt3,%s,tw spcrt2_B1)
    *55(spcrt4,%s,tw spcrt3_B1)
    *55(spcrt5,%s,tw spcrt4_B1)
   }
  T 2 id(0) .4 <2 .10 .22 bo(0) be(0)> l(%s){
    F spnf1 .0 A(tf,lf) id(0) {
     *59(spn1b1,tf,%s)
     *59(spn1b2,tw spn1b1_B1,%s)
     *59(spn1b3,tw spn1b2_B1,%s)
     *59(spn1b4,tw spn1b3_B1,%s)
     *59(spn1b5,tw spn1b4_B1,%s)
     *59(spn1b6,tw spn1b5_B1,%s)
     *59(spn1b7,tw spn1b6_B1,%s)
     *59(spn1b8,tw spn1b7_B1,%s)
     *59(spn1b9,tw spn1b8_B1,%s)
    }
    F spnf2 .0 A(tf,lw spnf1 20) id(0) {
     *59(spn1b10,tf,%s)
     *59(spn1b11,tw spn1b10_B1,%s)
     *59(spn1b12,tw spn1b11_B1,%s)
     *59(spn1b13,tw spn1b12_B1,%s)
     *59(spn1b14,tw spn1b13_B1,%s)
     *59(spn1b15,tw spn1b14_B1,%s)
     *59(spn1b16,tw spn1b15_B1,%s)
     *59(spn1b17,tw spn1b16_B1,%s)
     *59(spn1b18,tw spn1b17_B1,%s)
    }
   }
   }
  }
 }
}}
}*72(snmpbp,snmpmb,4)
 id(1184)
 *70(snmpb1,%s)
 *70(snmpb2,%s)
 *70(snmpb3,%s)
 *71(snmpb4,%s,Ca[tb6])
}
*80(1190,snmpwait,prndeck,%s,snmpwmb,snmpwwa)
 *74(snmpwa,%s)
}}}
)";

const char SNMPResetWaitDialog[] = R"(
*80(450,resetwait,prndeck,%s,rwmb,rwwa)
 *79(rwh,rwht,%s)
 *74(rwmsg,%s)
 *74(rwstat,..........)
}}
}*72(rwbp,rwmb,4)
 id(458)
 *70(rwb1,%s)
}
)";
