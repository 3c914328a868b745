// LogFollower.h - reads a growing log file line by line, across rotations.
#ifndef QVLOGCAT_LOGFOLLOWER_H
#define QVLOGCAT_LOGFOLLOWER_H

#endif
