// DescriptorSupply.h - sees to it that the process has the descriptors it needs.
#ifndef QVLOGD_DESCRIPTORSUPPLY_H
#define QVLOGD_DESCRIPTORSUPPLY_H

#include <stddef.h>

// Opens the standard streams that the process was started without, so that no socket takes their place.
void DescriptorSupply_FillStandardStreams();

// Raises the limit of open descriptors so far that there is one for each of aConnections. Returns how many
// connections there is room for.
size_t DescriptorSupply_Reserve(size_t aConnections);

#endif
