#include "tools/qvlogd/BoundedQueue.h"

BoundedQueue::BoundedQueue(size_t aCapacity) : mCapacity(aCapacity) {}
bool BoundedQueue::Put(const std::string&) { return false; }
bool BoundedQueue::Take(std::string&, int) { return false; }
void BoundedQueue::Close() {}
size_t BoundedQueue::Size() { return 0; }
