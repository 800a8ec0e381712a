// A doubly linked list of copied items.
#pragma once

#include <cstddef>

struct ListLink {
    ListLink *previous;
    ListLink *next;
    void *item; // managed, owned by the list
    int size;
};

struct ListHead {
    ListLink *head;
    ListLink *tail;
    ListLink *walk; // next link for ListWalk and ListWalkBackward
    int count;
    int total; // sum of the items' sizes in bytes
};

ListHead *ListCreate();
void *ListPushItem(ListHead *list, const void *contents, int size);
void *ListPopItem(ListHead *list, void *item, int flFree);
void *ListPopFirstItem(ListHead *list, int flFree);
void *ListPopLastItem(ListHead *list, int flFree);
void *ListFindItemN(ListHead *list, int n);
int ListGetItemPos(ListHead *list, const void *item);
void ListMoveItem(void *item, ListHead *source, ListHead *target);
void ListCopy(ListHead *source, ListHead *target);
void ListDelAllItems(ListHead *list);
void ListDel(ListHead *list);
void *ListWalk(ListHead *list, int flGoOn);
void *ListWalkBackward(ListHead *list, int flGoOn);
void ListDump(ListHead *list);
void ListPushLink(ListHead *list, ListLink *link);
void ListPopLink(ListHead *list, ListLink *link);
