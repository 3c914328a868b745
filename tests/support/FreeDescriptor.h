// FreeDescriptor.h - tells whether code has closed what it opened.
#ifndef TESTS_SUPPORT_FREEDESCRIPTOR_H
#define TESTS_SUPPORT_FREEDESCRIPTOR_H

#include <fcntl.h>
#include <unistd.h>

// The descriptor that the next open will get. It rises when one stays open.
inline int LowestFreeDescriptor() {
  int theDescriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
  close(theDescriptor);
  return theDescriptor;
}

#endif
