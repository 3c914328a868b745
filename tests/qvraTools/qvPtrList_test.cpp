#include "qvraTools/qvPtrList.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"

namespace {

char sItems[] = "abcdefgh";

void* Item(char aName) { return &sItems[aName - 'a']; }

char NameOf(const void* anItem) { return anItem != nullptr ? *static_cast<const char*>(anItem) : '0'; }

// What the free function was given since the last list was made for a test.
std::string sFreed;
void RememberFreed(void* anItem) { sFreed += NameOf(anItem); }

// A list of the items named, released at the end of the test.
class ListTest {
 public:
  explicit ListTest(const std::string& aNames) : mList(qvPtrList_New()) {
    sFreed.clear();
    for (char theName : aNames) {
      qvPtrList_Append(mList, Item(theName));
    }
  }
  ~ListTest() { qvPtrList_Delete(mList); }
  ListTest(const ListTest&) = delete;
  ListTest& operator=(const ListTest&) = delete;
  operator qvPtrList*() const { return mList; }
  qvPtrList* operator->() const { return mList; }

 private:
  qvPtrList* mList;
};

// The names of the items from the front; checks every link, both ends and the count on the way.
std::string Names(qvPtrList* aList) {
  std::string theNames;
  qvPtrListNode* thePrev = nullptr;
  for (qvPtrListNode* theNode = aList->mFirstNode; theNode != nullptr; theNode = theNode->mNext) {
    EXPECT_EQ(thePrev, theNode->mPrev);
    EXPECT_EQ(aList, theNode->mList);
    theNames += NameOf(theNode->mData);
    thePrev = theNode;
  }
  EXPECT_EQ(thePrev, aList->mLastNode);
  EXPECT_EQ(theNames.size(), aList->mCount);
  EXPECT_EQ(theNames.size(), qvPtrList_GetCount(aList));
  return theNames;
}

// What an iteration does at each node.
struct Visit {
  std::string mNames;
  char mStopAt = 0;
  uint32 mStopResult = 0;
  std::string mToDelete;
};

uint32 VisitNode(qvPtrListNode* aNode, void* aContext) {
  Visit* theVisit = static_cast<Visit*>(aContext);
  char theName = NameOf(aNode->mData);
  theVisit->mNames += theName;
  if (theVisit->mToDelete.find(theName) != std::string::npos) {
    qvPtrList_DeleteNode(aNode->mList, aNode);
  }
  return theName == theVisit->mStopAt ? theVisit->mStopResult : kqvPtrListAction_Continue;
}

}  // namespace

TEST(qvPtrListLayout, NodeHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvPtrListNode, mData));
  EXPECT_EQ(sizeof(void*), offsetof(qvPtrListNode, mNext));
  EXPECT_EQ(2 * sizeof(void*), offsetof(qvPtrListNode, mPrev));
  EXPECT_EQ(3 * sizeof(void*), offsetof(qvPtrListNode, mList));
  EXPECT_EQ(4 * sizeof(void*), sizeof(qvPtrListNode));
}

TEST(qvPtrListLayout, ListHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvPtrList, mCount));
  EXPECT_EQ(sizeof(size_t), offsetof(qvPtrList, mFirstNode));
  EXPECT_EQ(sizeof(size_t) + sizeof(void*), offsetof(qvPtrList, mLastNode));
  EXPECT_EQ(sizeof(size_t) + 2 * sizeof(void*), offsetof(qvPtrList, mFreeFunc));
  EXPECT_EQ(sizeof(size_t) + 3 * sizeof(void*), sizeof(qvPtrList));
}

TEST(qvPtrListLayout, ActionsHaveTheirValues) {
  EXPECT_EQ(0, kqvPtrListAction_Continue);
  EXPECT_EQ(1, kqvPtrListAction_Remove);
  EXPECT_EQ(2, kqvPtrListAction_Found);
}

TEST(qvPtrList, NewListIsEmptyAndOwnsNothing) {
  ListTest theList("");
  EXPECT_EQ(0u, theList->mCount);
  EXPECT_EQ(nullptr, theList->mFirstNode);
  EXPECT_EQ(nullptr, theList->mLastNode);
  EXPECT_EQ(nullptr, theList->mFreeFunc);
}

TEST(qvPtrList, NewCountMakesNodesWithNullItems) {
  qvPtrList* theList = qvPtrList_NewCount(3);
  EXPECT_EQ("000", Names(theList));
  EXPECT_EQ(nullptr, theList->mFreeFunc);
  qvPtrList_Delete(theList);
}

TEST(qvPtrList, NewCountOfZeroIsAnEmptyList) {
  qvPtrList* theList = qvPtrList_NewCount(0);
  EXPECT_EQ("", Names(theList));
  qvPtrList_Delete(theList);
}

TEST(qvPtrList, DeletingANullListIsIgnored) { qvPtrList_Delete(nullptr); }

TEST(qvPtrList, DeleteAppliesTheFreeFunctionToEveryItemFromTheFront) {
  sFreed.clear();
  qvPtrList* theList = qvPtrList_New();
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  qvPtrList_Append(theList, Item('a'));
  qvPtrList_Append(theList, nullptr);
  qvPtrList_Append(theList, Item('b'));
  qvPtrList_Delete(theList);
  EXPECT_EQ("a0b", sFreed);
}

TEST(qvPtrList, FreeFunctionCanBeSetAndCleared) {
  ListTest theList("a");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  EXPECT_EQ(RememberFreed, theList->mFreeFunc);
  qvPtrList_SetFreeFunc(theList, nullptr);
  qvPtrList_Clear(theList);
  EXPECT_EQ("", sFreed);
}

TEST(qvPtrList, DefaultFreeFunctionFreesItemsFromQvMalloc) {
  qvPtrList* theList = qvPtrList_New();
  qvPtrList_SetFreeFunc(theList, qvPtrList_DefaultFreeFunc);
  qvPtrList_Append(theList, qvMalloc(10));
  qvPtrList_Append(theList, nullptr);
  qvPtrList_Delete(theList);  // the leak check of the address sanitizer looks at this
}

TEST(qvPtrList, AppendReturnsTheNewLastNode) {
  ListTest theList("");
  qvPtrListNode* theFirst = qvPtrList_Append(theList, Item('a'));
  EXPECT_EQ(theFirst, theList->mFirstNode);
  EXPECT_EQ(theFirst, theList->mLastNode);
  qvPtrListNode* theSecond = qvPtrList_Append(theList, Item('b'));
  EXPECT_EQ(theFirst, theList->mFirstNode);
  EXPECT_EQ(theSecond, theList->mLastNode);
  EXPECT_EQ(Item('b'), theSecond->mData);
  EXPECT_EQ("ab", Names(theList));
}

TEST(qvPtrList, InsertPutsTheNodeBeforeThePosition) {
  ListTest theList("ac");
  qvPtrListNode* theNode = qvPtrList_Insert(theList, theList->mLastNode, Item('b'));
  EXPECT_EQ(Item('b'), theNode->mData);
  EXPECT_EQ(theNode, qvPtrList_GetAt(theList, 1));
  EXPECT_EQ("abc", Names(theList));
}

TEST(qvPtrList, InsertBeforeTheFirstNodeMakesANewFirstNode) {
  ListTest theList("b");
  qvPtrListNode* theNode = qvPtrList_Insert(theList, theList->mFirstNode, Item('a'));
  EXPECT_EQ(theNode, theList->mFirstNode);
  EXPECT_EQ("ab", Names(theList));
}

TEST(qvPtrList, InsertAtANullPositionGoesToTheFront) {
  ListTest theList("bc");
  qvPtrListNode* theNode = qvPtrList_Insert(theList, nullptr, Item('a'));
  EXPECT_EQ(theNode, theList->mFirstNode);
  EXPECT_EQ("abc", Names(theList));
}

TEST(qvPtrList, InsertAtANullPositionOfAnEmptyListMakesTheNodeFirstAndLast) {
  ListTest theList("");
  qvPtrListNode* theNode = qvPtrList_Insert(theList, nullptr, Item('a'));
  EXPECT_EQ(theNode, theList->mFirstNode);
  EXPECT_EQ(theNode, theList->mLastNode);
  EXPECT_EQ("a", Names(theList));
}

TEST(qvPtrList, InsertAtAPositionOfAnotherListAsserts) {
  ListTest theList("a");
  ListTest theOther("b");
  EXPECT_QV_ASSERTION(qvPtrList_Insert(theList, theOther->mFirstNode, Item('c')),
                      "(aPosition == NULL) || (aPosition->mList == aList)", "qvPtrList");
}

TEST(qvPtrList, GetAtGivesTheNodeAtAnIndex) {
  ListTest theList("abc");
  EXPECT_EQ(theList->mFirstNode, qvPtrList_GetAt(theList, 0));
  EXPECT_EQ(Item('b'), qvPtrList_GetAt(theList, 1)->mData);
  EXPECT_EQ(theList->mLastNode, qvPtrList_GetAt(theList, 2));
}

TEST(qvPtrList, GetAtAnIndexEqualToTheCountGivesNull) {
  ListTest theList("abc");
  EXPECT_EQ(nullptr, qvPtrList_GetAt(theList, 3));
  EXPECT_EQ(nullptr, qvPtrList_GetAt(theList, static_cast<size_t>(-1)));
  ListTest theEmptyList("");
  EXPECT_EQ(nullptr, qvPtrList_GetAt(theEmptyList, 0));
}

TEST(qvPtrList, FindGivesTheFirstNodeThatHoldsTheItem) {
  ListTest theList("abcb");
  EXPECT_EQ(qvPtrList_GetAt(theList, 1), qvPtrList_Find(theList, Item('b')));
  EXPECT_EQ(nullptr, qvPtrList_Find(theList, Item('d')));
  EXPECT_EQ(nullptr, qvPtrList_Find(theList, nullptr));
}

TEST(qvPtrList, IndexOfGivesTheFirstIndexOfTheItem) {
  ListTest theList("abcb");
  EXPECT_EQ(0, qvPtrList_IndexOf(theList, Item('a')));
  EXPECT_EQ(1, qvPtrList_IndexOf(theList, Item('b')));
  EXPECT_EQ(2, qvPtrList_IndexOf(theList, Item('c')));
}

TEST(qvPtrList, IndexOfAnItemThatIsNotThereIsMinusOne) {
  ListTest theList("abc");
  EXPECT_EQ(-1, qvPtrList_IndexOf(theList, Item('d')));
  EXPECT_EQ(-1, qvPtrList_IndexOf(theList, nullptr));
}

TEST(qvPtrList, IndexOfANullItemFindsNodesMadeByCount) {
  qvPtrList* theList = qvPtrList_NewCount(3);
  EXPECT_EQ(0, qvPtrList_IndexOf(theList, nullptr));
  qvPtrList_Delete(theList);
}

TEST(qvPtrListDetach, UnlinksTheNodeWhereverItStands) {
  const struct {
    size_t mIndex;
    const char* mLeft;
  } kCases[] = {{0, "bc"}, {1, "ac"}, {2, "ab"}};
  for (const auto& theCase : kCases) {
    ListTest theList("abc");
    qvPtrListNode* theNode = qvPtrList_GetAt(theList, theCase.mIndex);
    EXPECT_EQ(theNode, qvPtrList_DetachNode(theList, theNode));
    EXPECT_EQ(theCase.mLeft, Names(theList));
    qvPtrListNode_Delete(theNode);
  }
}

TEST(qvPtrListDetach, OnlyNodeLeavesAnEmptyList) {
  ListTest theList("a");
  qvPtrListNode_Delete(qvPtrList_DetachNode(theList, theList->mFirstNode));
  EXPECT_EQ("", Names(theList));
}

TEST(qvPtrListDetach, NodeKeepsItsItemAndItsNeighboursAndForgetsItsList) {
  ListTest theList("abc");
  qvPtrListNode* theNode = qvPtrList_DetachNode(theList, qvPtrList_GetAt(theList, 1));
  EXPECT_EQ(Item('b'), theNode->mData);
  EXPECT_EQ(theList->mLastNode, theNode->mNext);
  EXPECT_EQ(theList->mFirstNode, theNode->mPrev);
  EXPECT_EQ(nullptr, theNode->mList);
  qvPtrListNode_Delete(theNode);
}

TEST(qvPtrListDetach, DoesNotApplyTheFreeFunction) {
  ListTest theList("a");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  qvPtrListNode_Delete(qvPtrList_DetachNode(theList, theList->mFirstNode));
  EXPECT_EQ("", sFreed);
}

TEST(qvPtrListDetach, NullNodeAsserts) {
  ListTest theList("a");
  EXPECT_QV_ASSERTION(qvPtrList_DetachNode(theList, nullptr), "aNode != NULL", "qvPtrList");
}

TEST(qvPtrListDetach, NodeOfAnotherListAsserts) {
  ListTest theList("a");
  ListTest theOther("b");
  EXPECT_QV_ASSERTION(qvPtrList_DetachNode(theList, theOther->mFirstNode), "aNode->mList == aList",
                      "qvPtrList");
}

TEST(qvPtrListDetach, NodeDetachedBeforeAsserts) {
  ListTest theList("ab");
  qvPtrListNode* theNode = qvPtrList_DetachNode(theList, theList->mFirstNode);
  EXPECT_QV_ASSERTION(qvPtrList_DetachNode(theList, theNode), "aNode->mList == aList", "qvPtrList");
  qvPtrListNode_Delete(theNode);
}

TEST(qvPtrListDelete, NodeGoesAndItsItemIsFreed) {
  ListTest theList("abc");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  EXPECT_EQ(1, qvPtrList_DeleteNode(theList, qvPtrList_GetAt(theList, 1)));
  EXPECT_EQ("b", sFreed);
  EXPECT_EQ("ac", Names(theList));
}

TEST(qvPtrListDelete, NullItemIsHandedToTheFreeFunctionToo) {
  ListTest theList("");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  qvPtrList_DeleteNode(theList, qvPtrList_Append(theList, nullptr));
  EXPECT_EQ("0", sFreed);
}

TEST(qvPtrListDelete, NodeOfAnotherListAsserts) {
  ListTest theList("a");
  ListTest theOther("b");
  EXPECT_QV_ASSERTION(qvPtrList_DeleteNode(theList, theOther->mFirstNode), "aNode->mList == aList",
                      "qvPtrList");
}

TEST(qvPtrListDelete, NullNodeAsserts) {
  ListTest theList("a");
  EXPECT_QV_ASSERTION(qvPtrList_DeleteNode(theList, nullptr), "aNode != NULL", "qvPtrList");
}

TEST(qvPtrListDelete, ItemGoesWithItsFirstNode) {
  ListTest theList("abcb");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  EXPECT_EQ(1, qvPtrList_DeleteItem(theList, Item('b')));
  EXPECT_EQ("b", sFreed);
  EXPECT_EQ("acb", Names(theList));
}

TEST(qvPtrListDelete, ItemThatIsNotThereGivesZero) {
  ListTest theList("abc");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  EXPECT_EQ(0, qvPtrList_DeleteItem(theList, Item('d')));
  EXPECT_EQ("", sFreed);
  EXPECT_EQ("abc", Names(theList));
}

TEST(qvPtrListDelete, NodeByItselfLeavesItsListAndKeepsItsItem) {
  ListTest theList("abc");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  qvPtrListNode_Delete(qvPtrList_GetAt(theList, 1));
  EXPECT_EQ("ac", Names(theList));
  EXPECT_EQ("", sFreed);
}

TEST(qvPtrListPop, GivesTheFirstItemBackWithoutFreeingIt) {
  ListTest theList("abc");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  EXPECT_EQ(Item('a'), qvPtrList_PopData(theList));
  EXPECT_EQ("", sFreed);
  EXPECT_EQ("bc", Names(theList));
}

TEST(qvPtrListPop, LastItemLeavesAnEmptyList) {
  ListTest theList("a");
  EXPECT_EQ(Item('a'), qvPtrList_PopData(theList));
  EXPECT_EQ("", Names(theList));
}

TEST(qvPtrListPop, EmptyListAsserts) {
  ListTest theList("");
  EXPECT_QV_ASSERTION(qvPtrList_PopData(theList), "aList->mFirstNode != NULL", "qvPtrList");
}

TEST(qvPtrListPop, NullListAsserts) {
  EXPECT_QV_ASSERTION(qvPtrList_PopData(nullptr), "aList != NULL", "qvPtrList");
}

TEST(qvPtrListClear, FreesEveryItemAndLeavesAUsableEmptyList) {
  ListTest theList("abc");
  qvPtrList_SetFreeFunc(theList, RememberFreed);
  qvPtrList_Clear(theList);
  EXPECT_EQ("abc", sFreed);
  EXPECT_EQ("", Names(theList));
  EXPECT_EQ(RememberFreed, theList->mFreeFunc);
  qvPtrList_Append(theList, Item('d'));
  EXPECT_EQ("d", Names(theList));
}

TEST(qvPtrListClear, EmptyListStaysEmpty) {
  ListTest theList("");
  qvPtrList_Clear(theList);
  EXPECT_EQ("", Names(theList));
}

TEST(qvPtrListForEach, VisitsEveryNodeFromTheFrontAndGivesNull) {
  ListTest theList("abc");
  Visit theVisit;
  EXPECT_EQ(nullptr, qvPtrList_ForEach(theList, VisitNode, &theVisit));
  EXPECT_EQ("abc", theVisit.mNames);
}

TEST(qvPtrListForEach, ReverseVisitsEveryNodeFromTheBackAndGivesNull) {
  ListTest theList("abc");
  Visit theVisit;
  EXPECT_EQ(nullptr, qvPtrList_ForEachReverse(theList, VisitNode, &theVisit));
  EXPECT_EQ("cba", theVisit.mNames);
}

TEST(qvPtrListForEach, EmptyListIsNotVisited) {
  ListTest theList("");
  Visit theVisit;
  EXPECT_EQ(nullptr, qvPtrList_ForEach(theList, VisitNode, &theVisit));
  EXPECT_EQ(nullptr, qvPtrList_ForEachReverse(theList, VisitNode, &theVisit));
  EXPECT_EQ("", theVisit.mNames);
}

TEST(qvPtrListForEach, AnyResultOtherThanZeroStopsAndGivesTheNode) {
  ListTest theList("abcd");
  for (uint32 theResult :
       {uint32{kqvPtrListAction_Remove}, uint32{kqvPtrListAction_Found}, uint32{0x80000000}}) {
    Visit theVisit;
    theVisit.mStopAt = 'b';
    theVisit.mStopResult = theResult;
    EXPECT_EQ(qvPtrList_GetAt(theList, 1), qvPtrList_ForEach(theList, VisitNode, &theVisit));
    EXPECT_EQ("ab", theVisit.mNames);
    theVisit.mNames.clear();
    EXPECT_EQ(qvPtrList_GetAt(theList, 1), qvPtrList_ForEachReverse(theList, VisitNode, &theVisit));
    EXPECT_EQ("dcb", theVisit.mNames);
  }
  EXPECT_EQ("abcd", Names(theList));
}

TEST(qvPtrListForEach, FunctionMayDeleteTheNodeThatItIsGiven) {
  ListTest theList("abcd");
  Visit theVisit;
  theVisit.mToDelete = "bd";
  EXPECT_EQ(nullptr, qvPtrList_ForEach(theList, VisitNode, &theVisit));
  EXPECT_EQ("abcd", theVisit.mNames);
  EXPECT_EQ("ac", Names(theList));
}

TEST(qvPtrListForEach, FunctionMayDeleteEveryNodeThatItIsGiven) {
  ListTest theList("abcd");
  Visit theVisit;
  theVisit.mToDelete = "abcd";
  EXPECT_EQ(nullptr, qvPtrList_ForEach(theList, VisitNode, &theVisit));
  EXPECT_EQ("abcd", theVisit.mNames);
  EXPECT_EQ("", Names(theList));
}

TEST(qvPtrListForEach, ReverseFunctionMayDeleteTheNodeThatItIsGiven) {
  ListTest theList("abcd");
  Visit theVisit;
  theVisit.mToDelete = "ac";
  EXPECT_EQ(nullptr, qvPtrList_ForEachReverse(theList, VisitNode, &theVisit));
  EXPECT_EQ("dcba", theVisit.mNames);
  EXPECT_EQ("bd", Names(theList));
}
