// Vexo SDK: result codes shared by every host interface.
//
// A result is a 32-bit value. Zero is success; a set top bit marks a failure.
// Codes without the top bit (other than zero) are successes that carry extra
// meaning, such as the warning severity of a log entry.
#pragma once

#include <cstdint>

using VxResult = std::uint32_t;

constexpr VxResult VXR_OK = 0x00000000u;
constexpr VxResult VXR_FALSE = 0x00000001u;     // success, but the answer is "no"
constexpr VxResult VXR_WARNING = 0x00000002u;   // success with a warning (log severity)
constexpr VxResult VXR_FAILED = 0x80000000u;    // generic failure
constexpr VxResult VXR_NOTIMPL = 0x80000001u;   // the operation is not available
constexpr VxResult VXR_OUTOFBOUNDS = 0x80000002u;
constexpr VxResult VXR_BADARG = 0x80000003u;
constexpr VxResult VXR_NOTFOUND = 0x80000017u;  // the requested item, channel or view does not exist

constexpr bool VxFailed(VxResult r) { return (r & 0x80000000u) != 0; }
constexpr bool VxOk(VxResult r) { return (r & 0x80000000u) == 0; }
