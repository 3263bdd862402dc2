#include "shell/version.h"

#ifdef TAPFORGE_BUILD_DATE
const char* const kBuildDate = TAPFORGE_BUILD_DATE;
const char* const kBuildTime = TAPFORGE_BUILD_TIME;
#else
const char* const kBuildDate = __DATE__;
const char* const kBuildTime = __TIME__;
#endif
