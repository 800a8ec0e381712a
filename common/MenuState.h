// State formats of pick items, conditions of submenu items, and the choices they keep visible.
#pragma once

#include "common/TextMenu.h"

void ProcessStateFormat(TextMenu *menu, int index);
int TestFormatState(const char *states, intptr_t value);
void UpdateStateSelection(TextMenuItem *item);
void HideStateSelection(TextMenuItem *item, int choice);
void ShowStateSelection(TextMenuItem *item, int choice);
TextMenu *ValidateMenu(TextMenu *menu, int index);
enum { CONDITION_GROUP, CONDITION_OPERAND };
int TestStateCondition(TextMenu *menu, const char *condition, int index);
int TestStateCondition(TextMenu *menu, int mode, int index);
int TestState(TextMenu *menu, const char *operand, int index);
