#ifndef TAPFORGE_SHELL_VERSION_H
#define TAPFORGE_SHELL_VERSION_H

#include <string_view>

/// The texts that name the program in the banner and in the modes' first messages.
/// Others look for them in logs, so they stay; the version of a release is that of
/// project() in CMakeLists.txt.
inline constexpr std::string_view kUtilityVersion = "Ondrel SVF utility v2015.1";
inline constexpr std::string_view kScriptVersion = "svf2tapbus Version 1.10";
inline constexpr std::string_view kKsvfVersion = "svf2ksvf Version 5.05";
inline constexpr std::string_view kCopyright = "Copyright (c) 2026 Ondrel. All rights reserved.";

/// When the program was built, in the compiler's form ("Nov 26 2018",
/// "03:03:39"). SOURCE_DATE_EPOCH overrides it, for reproducible builds.
extern const char* const kBuildDate;
extern const char* const kBuildTime;

#endif  // TAPFORGE_SHELL_VERSION_H
