/* qvPtrList.h - doubly linked list of untyped pointers, with nodes that the caller may keep and hand back.
 *
 * A list owns its items only when it has a free function, which is applied to the item of every node that is
 * deleted (null items included). Lists and nodes are allocated with qvMalloc. A list is used by one thread at
 * a time, or under the caller's lock. Lists and nodes handed in are not null, except where it is said. */
#ifndef QVRATOOLS_QVPTRLIST_H
#define QVRATOOLS_QVPTRLIST_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* A list and its nodes; callers may read the fields. */
typedef struct qvPtrList qvPtrList;
typedef struct qvPtrListNode qvPtrListNode;

/* Releases an item. */
typedef void (*qvPtrListFreeFunc)(void* aData);

/* Called with each node; 0 goes on, any other value ends the iteration. */
typedef uint32 (*qvPtrListIterateFunction)(qvPtrListNode* aNode, void* aContext);

/* Results for such a function. The list itself only looks at zero or not: what a value other than Continue
 * asks for is up to the caller, who gets the node. */
#define kqvPtrListAction_Continue 0
#define kqvPtrListAction_Remove   1
#define kqvPtrListAction_Found    2

/* A place in a list. */
struct qvPtrListNode {
  void* mData;          /* the item                                         */
  qvPtrListNode* mNext; /* null at the end                                  */
  qvPtrListNode* mPrev; /* null at the front                                */
  qvPtrList* mList;     /* the list that holds the node; null when detached */
};

/* The nodes in their order. */
struct qvPtrList {
  size_t mCount;               /* nodes                         */
  qvPtrListNode* mFirstNode;   /* null when the list is empty   */
  qvPtrListNode* mLastNode;    /* null when the list is empty   */
  qvPtrListFreeFunc mFreeFunc; /* null: the items are not owned */
};

/* An empty list without a free function. Release it with qvPtrList_Delete. */
QVLOG_API qvPtrList* qvPtrList_New(void);

/* A list of aCount nodes whose items are null. */
QVLOG_API qvPtrList* qvPtrList_NewCount(size_t aCount);

/* Deletes every node (the free function is applied) and the list; null is ignored. */
QVLOG_API void qvPtrList_Delete(qvPtrList* aList);

/* How many nodes there are. */
QVLOG_API size_t qvPtrList_GetCount(qvPtrList* aList);

/* Null means that the items are not owned. */
QVLOG_API void qvPtrList_SetFreeFunc(qvPtrList* aList, qvPtrListFreeFunc aFreeFunc);

/* A free function for items that came from malloc or qvMalloc. */
QVLOG_API void qvPtrList_DefaultFreeFunc(void* aData);

/* Both return the new node. Insert puts it before aPosition, or at the front when that is null; a position in
 * another list fails an assertion. */
QVLOG_API qvPtrListNode* qvPtrList_Append(qvPtrList* aList, void* aData);
QVLOG_API qvPtrListNode* qvPtrList_Insert(qvPtrList* aList, qvPtrListNode* aPosition, void* aData);

/* The node at the 0-based anIndex, or null past the end. */
QVLOG_API qvPtrListNode* qvPtrList_GetAt(qvPtrList* aList, size_t anIndex);

/* The first node whose item is this pointer, or null; its 0-based index, or -1. */
QVLOG_API qvPtrListNode* qvPtrList_Find(qvPtrList* aList, void* aData);
QVLOG_API int qvPtrList_IndexOf(qvPtrList* aList, void* aData);

/* Unlinks aNode and returns it: from now on the node and its item are the caller's, who releases the node
 * with qvPtrListNode_Delete. The node keeps its mNext and mPrev. A null node, or one of another list, fails
 * an assertion. */
QVLOG_API qvPtrListNode* qvPtrList_DetachNode(qvPtrList* aList, qvPtrListNode* aNode);

/* Unlinks aNode, applies the free function to its item and frees the node. Returns 1. Asserts like
 * qvPtrList_DetachNode. */
QVLOG_API int qvPtrList_DeleteNode(qvPtrList* aList, qvPtrListNode* aNode);

/* qvPtrList_DeleteNode for the first node whose item is this pointer; 1 when there is one, 0 otherwise. */
QVLOG_API int qvPtrList_DeleteItem(qvPtrList* aList, void* aData);

/* Takes the first node away and gives its item to the caller; the free function is not applied. A null or
 * empty list fails an assertion. */
QVLOG_API void* qvPtrList_PopData(qvPtrList* aList);

/* Deletes every node (the free function is applied) and leaves the list empty. */
QVLOG_API void qvPtrList_Clear(qvPtrList* aList);

/* Calls aFunction with each node, from the front or from the back, until it returns something other than 0;
 * returns that node, or null when all nodes were visited. aFunction may delete or detach the node that it is
 * given, but not the one that comes next; a node returned after that is no longer valid. */
QVLOG_API qvPtrListNode* qvPtrList_ForEach(qvPtrList* aList, qvPtrListIterateFunction aFunction,
                                           void* aContext);
QVLOG_API qvPtrListNode* qvPtrList_ForEachReverse(qvPtrList* aList, qvPtrListIterateFunction aFunction,
                                                  void* aContext);

/* Detaches aNode from its list, when it is in one, and frees it. Its item is not freed. */
QVLOG_API void qvPtrListNode_Delete(qvPtrListNode* aNode);

QV_END_DECLS

#endif
