// The window in which a queue is chosen for what is sent, as a text.
#include "prndeck/gui/PrdGuiSendDesc.h"

// Ids: 551 the queues, 552 Apply. The list keeps the width of the spacer below it: an empty one would be a
// strip.
const char SetupSendFileDesc[] = R"(
*80(550,sfw,prndeck,%s,sfmb,sfwa)
 id(551)
 *77(sfql <3 A(rf\)>,%s)
 l sfwi l( ) bo(0) .0 m(150,0);
}}
}*72(sfbp,sfmb,4)
 id(552)
 *71(sfap,%s,H[sfw] C[sfap])
 *71(sfca,%s,H[sfw])
 *71(sfhe,%s,Ca[tb6])
}
)";
