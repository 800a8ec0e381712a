// Web pages of printers: who has one, and the browser that shows it.
#pragma once

#include <cstdint>

enum { BROWSER_SECONDS = 5 };
extern int flConnectTimedOut; // the last test ran out of time; writer: TestBrowser

// True if something listens on the web port of the host. Blocks for BROWSER_SECONDS at most.
bool TestBrowser(const char *address);
// Starts the user's browser on the page "http://ADDRESSPATH" in the background. False if its command is not
// there, or the shell could not start it. The address is dotted.
bool InvokeWebBrowser(const char *address, const char *path);
// The page of the selected printer. A browser that can't be started is told, and asked for.
void OpenWebPage();
void GetProfile();        // the same, if the printer answers on its web port
void OpenBrowserChoice(); // shows the window with the command
void SetBrowser();        // takes the command over from there

extern uint16_t BrowserPort; // tests move it
