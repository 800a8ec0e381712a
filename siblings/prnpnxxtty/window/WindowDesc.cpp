// The windows of the front end as texts.
#include "siblings/prnpnxxtty/window/WindowDesc.h"

// ORDER FrontIds
const char FeaturesDesc[] = R"(
id(20)
WF few t( ) .5 .23 m(0,0) {
 S fes .0 Ssp(a) A(tf 10,lf 10,rf 10) id(0) {
  B feb v .0 m(10,10) sp(2) bo(0) id(0) { }
 }
 B febp h sp(4) m(4,4) bo(0) .3 A(tw fes,lf,rf) id(0) {
  l Logo .9 l(@icon/TLogo.xpm) m(10,10) id(0);
  id(21)
  *70(fea,%s)
  *70(fec,%s)
  *70(feh,%s)
 }
}
)";

// The buttons give the list its width.
const char QueuesDesc[] = R"(
id(30)
WF qfw t(%s) .5 .23 m(0,0) {
 B qfb v .0 m(10,10) bo(1) A(tf 10,lf 10,rf 10) id(0) {
  id(34)
  Bl qfl .0 .22 l(%s) V(10) L(-) <1 v> <3 A(rf)>;
 }
 B qfbp h sp(4) m(4,4) bo(0) .3 A(tw qfb,lf,rf) id(0) {
  l Logo .9 l(@icon/TLogo.xpm) m(10,10) id(0);
  id(31)
  *70(qfo,%s)
  *70(qfc,%s)
  *70(qfh,%s)
 }
}
)";
