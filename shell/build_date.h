#ifndef TAPFORGE_SHELL_BUILD_DATE_H
#define TAPFORGE_SHELL_BUILD_DATE_H

/// When the program was built, in the compiler's form ("Nov 26 2018",
/// "03:03:39"). SOURCE_DATE_EPOCH overrides it, for reproducible builds.
extern const char* const kBuildDate;
extern const char* const kBuildTime;

#endif  // TAPFORGE_SHELL_BUILD_DATE_H
