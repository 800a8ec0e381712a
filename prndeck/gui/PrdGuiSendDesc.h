// The window in which a queue is chosen for what is sent, in the language of xmt/XmtNew.h.
#pragma once

extern const char SetupSendFileDesc[];
