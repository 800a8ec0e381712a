// What tests of the terminal menus need: a menu as text, the engine's English texts, and a run with its
// transcript.
#pragma once

#include "menu/TextMenu.h"

#include <string>

// One line an item, as InitMenu and the languages leave it:
//   INDEX: NUMBER TYPE [disabled|hidden] VALUE, the letter for a number, the choice behind a pick's value
std::string DumpMenu(const TextMenu *menu);

// Opens a catalogue in memory with the English texts of the sets that the engine fetches, as pDrvCoreDB.
void OpenMenuTexts();

// What clearing the terminal prints once CatchClear has taken the place of system.
inline constexpr char ClearMark[] = "<clear>";
void CatchClear();

// A transcript without its screens: each one, from the clear mark to the footer's end, becomes "#".
std::string FoldScreens(const std::string &transcript);
