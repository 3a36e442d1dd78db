// Status values of the host's services, the same numbers the module's status
// type uses, so that either side can compare them with its own names.
#pragma once

#include <cstdint>

using HostResult = int32_t;

inline constexpr HostResult kHostOk = 0;
// Enter on an empty line: the caller applies its default.
inline constexpr HostResult kHostNone = 1;
// A name prompt was answered with one of its keywords.
inline constexpr HostResult kHostKeyword = 2;
inline constexpr HostResult kHostAbort = static_cast<HostResult>(0x80004004u);  // cancelled by the user
inline constexpr HostResult kHostFail = static_cast<HostResult>(0x80004005u);
inline constexpr HostResult kHostInvalidArg = static_cast<HostResult>(0x80070057u);
