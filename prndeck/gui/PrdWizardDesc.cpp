// The windows of the setup wizard as texts.
#include "prndeck/gui/PrdWizardDesc.h"

// Lists are bound to the right edge of their form, and the form has the width of what stands below: an empty
// list would be a strip otherwise.

const char ModifyQueDesc[] = R"(
*80(300,mqw,prndeck,%s,mqmb,mqwa)
 id(301)
 *77(mql <3 A(rf\)>,%s)
 l mqwi l( ) bo(0) .0 m(150,0);
}}
}*72(mqbp,mqmb,4)
 id(302)
 *71(mq,%s,C[mq] H[mqw] S[wmqw])
 *71(mqe,%s,H[mqw])
 *71(mqhe,%s,Ca[tb6])
}
)";

// The labels stand in a box of their own: the spacer at the end would shift them.
const char ModifyQueWinDesc[] = R"(
*80(450,wmqw,prndeck,%s,wmqmb,wmqwa)
 B wmqb1 .0 m(0,0) bo(0) v id(0){
 B wmqlb .0 m(0,0) bo(0) v id(0){
 *74(wmqn,%s)
 *74(wmqpm,%s)
 *74(wmqcm,%s)
 *74(wmqc,%s)
 *74(wmqhn,%s)
 *74(wmqdn,%s)
 *74(wmqtn,%s)
 *74(wmqd,%s)
 }
 id(451)
 bl wmqf l(%s) .22 L(%s) .0 f(S1[wmqfs,wmqgt_B1,wmqbp_B1,wmqcbp] C*[wmqf]) <1 h> <2 .21> <3 .22>;
 bl wmqgt l(%s) .22 L(%s) .0 <1 h> <2 .21> <3 .22>;
 bl wmqbp l(%s) .22 L(%s) .0 <1 h> <2 .21> <3 .22>;
 bl wmqdp l(%s) .22 L(%s) .0 <1 h> <2 .21> <3 .22>;
 *69(wmqfsb,wmqfs,%s,455,wmqfsl,456)
 B wmqb2 .0 m(0,0) bo(0) h id(0){
  id(456)
  *71(wmqcbp,%s,C[wmqcbp] S[cbpw] t[cbpw])
  l wmqb2l .0 l( );
 }
 l wmqwi l( ) bo(0) .0 m(250,0);
 }
}}
}*72(wmqbpx,wmqmb,4)
 id(457)
 *71(wmqap,%s,C[wmqap] H[wmqw])
 *71(wmqca,%s,H[wmqw])
 *71(wmqhe,%s,Ca[tb6])
}
)";

const char DeleteQueDesc[] = R"(
*80(350,dqw,prndeck,%s,dqmb,dqwa)
 id(351)
 Blm dql .0 .22 l(%s) V(10) L(one,two) <1 v> <3 A(rf)>;
 l dqwi l( ) bo(0) .0 m(150,0);
}}
}*72(dqbp,dqmb,4)
 id(352)
 *71(dqo,%s,C[dqo] H[dqw])
 *70(dqd,%s)
 *70(dqa,%s)
 *71(dqe,%s,H[dqw])
 *71(dqhe,%s,Ca[tb6])
}
)";

const char CopyQueSelectionDesc[] = R"(
*80(370,cqw,prndeck,%s,cqmb,cqwa)
 id(371)
 Bl cql .0 .22 l(%s) V(10) L(one,two) f(E*[cq] C*[cql]) <1 v> <3 A(rf)>;
 l cqwi l( ) bo(0) .0 m(150,0);
}}
}*72(cqbp,cqmb,4)
 id(372)
 *71(cq,%s,C[cq] H[cqw] S[clqw] t[clqw])
 *71(cqe,%s,H[cqw])
 *71(cqhe,%s,Ca[tb6])
}
)";

// Ids: 436 name, 437 model, 438 printing model, 439 connection, 440 host, 441 printer on the server, 442
// device.
const char CopyQueDesc[] = R"(
*80(435,clqw,prndeck,%s,clmb,clwa)
 B clb1 .0 m(0,0) bo(0) v id(0){
 id(436)
 t clqn l(%s) s(12,1) h .0 <2 .21> <3 .22 CB(c,a) f(A0,14+-+_)>;
 B clpmb .0 m(0,0) bo(0) v id(0){ *74(clpm,%s) }
 id(438)
 bl clcm l(%s) .22 L(%s) .0 <1 h> <2 .21> <3 .22> f(S1[clrpn_B1] C*[clcm]);
 bl clc l(%s) .22 L(%s) .0 <1 h> f(H1[clhn_B1,clrpn_B1] S1[cldn_B1] C*[clc] P0[clcm.clcm_pd]) <2 .21> <3 .22>;
 t clhn l(%s) s(40,1) h .0 <2 .21> <3 .22 CB(c,a) f(A0,255+-+.)>;
 t clrpn l(%s) s(40,1) h .0 <2 .21> <3 .22 CB(c,a) f(A0,14+-+_)>;
 t cldn l(%s) s(40,1) ml(255) h .0 <2 .21> <3 .22 CB(c,a) f(/A0,255+-+_+/+.)>;
 l clwi l( ) bo(0) .0 m(250,0);
 }
}}
}*72(clbp,clmb,4)
 id(443)
 *71(clqap,%s,C[clqap])
 *71(clqca,%s,H[clqw])
 *71(clqhe,%s,Ca[tb6])
}
)";

// The sizes are those of PrdBanner.h. Ids: 421, 423, 425 titles, 422, 424, 426 their sizes, 427 the toggle.
const char ConfigureBannerDesc[] = R"(
*80(420,cbpw,prndeck,%s,cbpmb,cbpwa)
 B cbpb1 .0 m(0,0) bo(0) v id(0){
 id(421)
 t cbph1 l(%s) s(80,1) ml(80) h .0 <2 .21> <3 .22 CB(a)>;
 bl cbps1 l(%s) .22 L(8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40) .0 <1 h> <2 .21> <3 .22>;
 t cbph2 l(%s) s(80,1) ml(80) h .0 <2 .21> <3 .22 CB(a)>;
 bl cbps2 l(%s) .22 L(8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40) .0 <1 h> <2 .21> <3 .22>;
 t cbph3 l(%s) s(80,1) ml(80) h .0 <2 .21> <3 .22 CB(a)>;
 bl cbps3 l(%s) .22 L(8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40) .0 <1 h> <2 .21> <3 .22>;
 bt cbpd l(%s) .21 . ;
 }
}}
}*72(cbpbp,cbpmb,4)
 id(428)
 *71(cbpap,%s,H[cbpw] A[cbph1 cbps1 cbph2 cbps2 cbph3 cbps3 cbpd] C[cbpap])
 *71(cbpca,%s,H[cbpw] R[cbph1 cbps1 cbph2 cbps2 cbph3 cbps3] C[cbpca])
 *70(cbpda,%s)
 *71(cbphe,%s,Ca[tb6])
}
)";

// Ids: 401 name to 412 daemon, in the order of the rows; 413 and 414 the two set-up buttons.
const char AddQueDesc[] =
    "*80(400,wqw,prndeck,%s,wqmb,wqwa) \n B wqb0 .0 m(0,0) bo(0) h{\n *88(wqhei,220)\n"
    " B wqb1 .0 m(0,0) bo(0) v{\n id(401)\n"
    "  t wqn l(%s) s(12,1) h .0 <2 .21> <3 .22 CB(c,a) f(A0,14+-+_)>;  \n"
    "  bl wqpm l(%s) .22 L(%s) .0  <1 h> <2 .21> <3 .22>;  \n"
    "  bl wqcm l(%s) .22 L(%s) .0  <1 h> <2 .21> <3 .22> f(S1[wqrpn_B1] C*[wqcm]);\n"
    "  bl wqc l(%s) .22 L(%s) .0  <1 h> f(H1[wqhn_B1,wqrpn_B1] S1[wqdn_B1] C*[wqc] P0[wqcm.wqcm_pd])"
    " <2 .21> <3 .22>;  \n"
    "  t wqhn l(%s) s(40,1) h .0 <2 .21> <3 .22 CB(c,a) f(A0,256+-+.+:)>;  \n"
    "  t wqrpn l(%s) s(40,1) h .0 <2 .21> <3 .22 CB(c,a) f(A0,14+-+_)>;  \n"
    "  t wqdn l(%s) s(40,1) ml(255) h .0 <2 .21> <3 CB(c,a) f(/A0,255+-+_+/+.)>;  \n"
    "  bl wqdp l(%s) .22 L(%s) .0  <1 h> <2 .21> <3 .22>;  \n"
    "  bl wqf l(%s) .22 L(%s) .0  f(S1[wqfs,wqgt_B1,wqbp_B1,wqcbp] C*[wqf]) <1 h> <2 .21> <3 .22>;  \n"
    "  bl wqgt l(%s) .22 L(%s) .0 <1 h> <2 .21> <3 .22>;  \n"
    "  bl wqbp l(%s) .22 L(%s) .0 <1 h> <2 .21> <3 .22>;  \n"
    "  bl wqd H l(%s) .22 L(%s) .0 <1 h> <2 .21> <3 .22> H;  \n"
    "  *69(wqfsb,wqfs,%s,413,wqfsl,414)\n  B wqb2 .0 m(0,0) bo(0) h { \n   id(414)\n"
    "   *71(wqcbp,%s,C[wqcbp] S[cbpw] t[cbpw]) \n   l wqb2 .0 l( );\n  }\n"
    "  l wqwi l( ) bo(0) .0 m(250,0);\n\n  }\n}}}\n}*72(aqbp,wqmb,4)\n id(415)\n"
    "  *71(wqap,%s,C[wqap])\n  *71(wqca,%s,H[wqw])\n  *71(wqhe,%s,Ca[tb6])\n}";
