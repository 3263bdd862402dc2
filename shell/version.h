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

#endif  // TAPFORGE_SHELL_VERSION_H
