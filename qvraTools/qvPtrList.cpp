#include "qvraTools/qvPtrList.h"

#include <stdlib.h>

#include "qvraTools/qvAssert.h"
#include "qvraTools/qvMalloc.h"

// Links a new node between its neighbours; the ends and the count of the list are the caller's.
static qvPtrListNode* qvPtrList_S_NewNode(qvPtrList* aList, void* aData, qvPtrListNode* aPrev,
                                          qvPtrListNode* aNext) {
  qvPtrListNode* theNode = static_cast<qvPtrListNode*>(qvMalloc(sizeof(qvPtrListNode)));
  theNode->mData = aData;
  theNode->mPrev = aPrev;
  theNode->mNext = aNext;
  theNode->mList = aList;
  if (aPrev != NULL) {
    aPrev->mNext = theNode;
  }
  if (aNext != NULL) {
    aNext->mPrev = theNode;
  }
  return theNode;
}

// For a node that is unlinked already, or whose list goes away with it.
static void qvPtrList_S_DoDeleteNode(qvPtrList* aList, qvPtrListNode* aNode) {
  if (aList->mFreeFunc != NULL) {
    aList->mFreeFunc(aNode->mData);
  }
  aNode->mList = NULL;
  free(aNode);
}

qvPtrList* qvPtrList_New(void) { return static_cast<qvPtrList*>(qvMallocZeroed(sizeof(qvPtrList))); }

qvPtrList* qvPtrList_NewCount(size_t aCount) {
  qvPtrList* theList = qvPtrList_New();
  for (size_t i = 0; i < aCount; ++i) {
    qvPtrList_Append(theList, NULL);
  }
  return theList;
}

void qvPtrList_Delete(qvPtrList* aList) {
  if (aList == NULL) {
    return;
  }
  qvPtrList_Clear(aList);
  free(aList);
}

size_t qvPtrList_GetCount(qvPtrList* aList) { return aList->mCount; }

void qvPtrList_SetFreeFunc(qvPtrList* aList, qvPtrListFreeFunc aFreeFunc) { aList->mFreeFunc = aFreeFunc; }

void qvPtrList_DefaultFreeFunc(void* aData) { free(aData); }

qvPtrListNode* qvPtrList_Append(qvPtrList* aList, void* aData) {
  qvPtrListNode* theNode = qvPtrList_S_NewNode(aList, aData, aList->mLastNode, NULL);
  if (aList->mFirstNode == NULL) {
    aList->mFirstNode = theNode;
  }
  aList->mLastNode = theNode;
  ++aList->mCount;
  return theNode;
}

qvPtrListNode* qvPtrList_Insert(qvPtrList* aList, qvPtrListNode* aPosition, void* aData) {
  qvAssert((aPosition == NULL) || (aPosition->mList == aList));
  qvPtrListNode* theNext = aPosition != NULL ? aPosition : aList->mFirstNode;
  qvPtrListNode* thePrev = theNext != NULL ? theNext->mPrev : NULL;
  qvPtrListNode* theNode = qvPtrList_S_NewNode(aList, aData, thePrev, theNext);
  if (theNext == NULL) {
    aList->mLastNode = theNode;
  }
  if (thePrev == NULL) {
    aList->mFirstNode = theNode;
  }
  ++aList->mCount;
  return theNode;
}

qvPtrListNode* qvPtrList_GetAt(qvPtrList* aList, size_t anIndex) {
  qvPtrListNode* theNode = aList->mFirstNode;
  while (theNode != NULL && anIndex > 0) {
    theNode = theNode->mNext;
    --anIndex;
  }
  return theNode;
}

qvPtrListNode* qvPtrList_Find(qvPtrList* aList, void* aData) {
  qvPtrListNode* theNode = aList->mFirstNode;
  while (theNode != NULL && theNode->mData != aData) {
    theNode = theNode->mNext;
  }
  return theNode;
}

int qvPtrList_IndexOf(qvPtrList* aList, void* aData) {
  int theIndex = 0;
  for (qvPtrListNode* theNode = aList->mFirstNode; theNode != NULL; theNode = theNode->mNext, ++theIndex) {
    if (theNode->mData == aData) {
      return theIndex;
    }
  }
  return -1;
}

qvPtrListNode* qvPtrList_DetachNode(qvPtrList* aList, qvPtrListNode* aNode) {
  qvAssert(aNode != NULL);
  qvAssert(aNode->mList == aList);
  if (aNode->mPrev != NULL) {
    aNode->mPrev->mNext = aNode->mNext;
  } else {
    aList->mFirstNode = aNode->mNext;
  }
  if (aNode->mNext != NULL) {
    aNode->mNext->mPrev = aNode->mPrev;
  } else {
    aList->mLastNode = aNode->mPrev;
  }
  --aList->mCount;
  aNode->mList = NULL;
  return aNode;
}

int qvPtrList_DeleteNode(qvPtrList* aList, qvPtrListNode* aNode) {
  qvPtrList_S_DoDeleteNode(aList, qvPtrList_DetachNode(aList, aNode));
  return 1;
}

int qvPtrList_DeleteItem(qvPtrList* aList, void* aData) {
  qvPtrListNode* theNode = qvPtrList_Find(aList, aData);
  return theNode != NULL ? qvPtrList_DeleteNode(aList, theNode) : 0;
}

void* qvPtrList_PopData(qvPtrList* aList) {
  qvAssert(aList != NULL);
  qvAssert(aList->mFirstNode != NULL);
  qvPtrListNode* theNode = qvPtrList_DetachNode(aList, aList->mFirstNode);
  void* theData = theNode->mData;
  free(theNode);
  return theData;
}

void qvPtrList_Clear(qvPtrList* aList) {
  qvPtrListNode* theNode = aList->mFirstNode;
  while (theNode != NULL) {
    qvPtrListNode* theNext = theNode->mNext;
    qvPtrList_S_DoDeleteNode(aList, theNode);
    theNode = theNext;
  }
  aList->mCount = 0;
  aList->mFirstNode = NULL;
  aList->mLastNode = NULL;
}

// The neighbour is read before the call, because the function may delete the node that it is given.
qvPtrListNode* qvPtrList_ForEach(qvPtrList* aList, qvPtrListIterateFunction aFunction, void* aContext) {
  qvPtrListNode* theNode = aList->mFirstNode;
  while (theNode != NULL) {
    qvPtrListNode* theNext = theNode->mNext;
    if (aFunction(theNode, aContext) != kqvPtrListAction_Continue) {
      return theNode;
    }
    theNode = theNext;
  }
  return NULL;
}

qvPtrListNode* qvPtrList_ForEachReverse(qvPtrList* aList, qvPtrListIterateFunction aFunction,
                                        void* aContext) {
  qvPtrListNode* theNode = aList->mLastNode;
  while (theNode != NULL) {
    qvPtrListNode* thePrev = theNode->mPrev;
    if (aFunction(theNode, aContext) != kqvPtrListAction_Continue) {
      return theNode;
    }
    theNode = thePrev;
  }
  return NULL;
}

void qvPtrListNode_Delete(qvPtrListNode* aNode) {
  if (aNode->mList != NULL) {
    qvPtrList_DetachNode(aNode->mList, aNode);
  }
  free(aNode);
}
