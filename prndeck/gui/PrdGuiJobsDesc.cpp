// The windows of waiting jobs as a text.
#include "prndeck/gui/PrdGuiJobsDesc.h"

// Ids of the queues' window: 501 its list, 502 Close, which speaks through a label, 503 Refresh. Of one
// queue's jobs: 521 the interval, 522 the list, 523 Close, 524 Delete, 525 Delete All. The lists keep the
// width of what stands beside them: empty ones would be strips.
const char JobWinDesc[] = R"(
*80(500,jmw,prndeck,%s,jmmb,jmwa)
 id(501)
 Bl jmql .0 .22 l(%s) V(10) L(one,two) f(C*[jmql] S*[jmsw]) <1 v> <3 A(rf)>;
 l jme id(502) l( ) bo(0) .0 m(150,0);
}}
}*72(jmbp,jmmb,4)
 id(502)
 *71(jmc,%s,H[jmw] C[jme])
 *70(jmr,%s)
}
*80(520,jmsw,prndeck,%s,jmsmb,jmswa)
 B jmsb1 .0 m(0,0) bo(0) v id(0){
 id(521)
 t jmt l(%s) s(3,1) ml(3) h .0 t(2) <2 .21> <3 .22 CB(c,a) f(d1,60)>;
 *74(jmxq,%s)
 t jmss .0 .22 s(80,6) Se(F) Sc(F) Ss(T,F) bo(0);
 id(522)
 Blm jmsjl .0 .32 l(%s) V(10) L(one,two) <1 v> <3 A(rf)>;
 }
}}
}*72(jmsbp,jmsmb,4)
 id(523)
 *71(jmse,%s,H[jmsw] C[jmse])
 *70(jmsd,%s)
 *70(jmsda,%s)
}
)";
