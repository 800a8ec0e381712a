// The display window.
#include "prndeck/gui/PrdGuiDisplay.h"

#include "prndeck/core/PrdDisc.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiList.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

int DisStyle;

void PrepareDisplaySetup() {
    XmtSetValuePF("d_ip", 2, 0);
    XmtSetValuePF("d_dt", 2, 0);
    XmtSetDialogButtons("dsw", "do", "dc");
}

void OpenDisplaySetup() {
    DisStyle = DisplayStyle;
    XmtSetValuePF("d_dn", DisStyle & DISPLAY_NAME ? 1 : 2, 0);
    XmtSetValuePF("d_ip", DisStyle & DISPLAY_ADDRESS ? 2 : 1, 0);
    XmtSetValuePF("d_ea", DisStyle & DISPLAY_HWADR ? 2 : 1, 0);
    XmtSetValuePF("d_dt", DisStyle & DISPLAY_DESCRIPTION ? 2 : 1, 0);
}

void SetDisStyle(int bits, int flOn) {
    DisStyle = flOn ? DisStyle | bits : DisStyle & ~bits;
}

void SetDisName(int item) {
    SetDisStyle(DISPLAY_NAME | DISPLAY_HOST, 0);
    SetDisStyle(item == 0 ? DISPLAY_NAME : DISPLAY_HOST, 1);
}

void ApplyDisplaySetup() {
    if (DevCount == 0) return;
    BusyCursor busy("prndeck,dsw"); // a column may have to be asked for
    DisplayStyle = DisStyle;
    UpdatePrListDisplay();
}

void CloseDisplaySetup() {
    ApplyDisplaySetup();
    XmtHide("dsw");
}
