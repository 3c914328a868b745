#include <uuid/uuid.h>

#include <cstring>

#include "Workload.h"

static bool GenerateFromTime() {
  uuid_t theUUID;
  uuid_generate_time(theUUID);
  return theUUID[6] >> 4 == 1;
}

static bool GenerateFromRandomNumbers() {
  uuid_t theUUID;
  uuid_generate_random(theUUID);
  return theUUID[6] >> 4 == 4;
}

static bool Print() {
  char theText[UUID_STR_LEN];
  uuid_unparse_lower(kUUID, theText);
  return memcmp(theText, SERVICES_UUID_TEXT, sizeof theText) == 0;
}

static const Contender sRows[] = {
    SERVICES_ROW("UUID", "libuuid, time", GenerateFromTime),
    SERVICES_ROW("UUID", "libuuid, random", GenerateFromRandomNumbers),
    SERVICES_ROW("UUID to text", "libuuid", Print),
};
