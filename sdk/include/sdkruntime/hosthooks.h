#pragma once

#include <kel4/sdkglobal.h>

namespace nrk {
class ISystem;
}

/// What a host calls to plug its own parts into the SDK runtime library. Plug-ins never call these.
namespace sdkruntime {

/// Makes system the component system that nrkGetSystem() answers; null when the host stops it.
KEL_RUNTIME_API void SetSystem(nrk::ISystem* system);

/// Receives every line that kel4::PrintDebugString writes, besides stderr. Called on the thread
/// that printed.
using DebugOutputSink = void (*)(const char* text);

/// Installs the sink (null removes it) and returns the one it replaces.
KEL_RUNTIME_API DebugOutputSink SetDebugOutputSink(DebugOutputSink sink);

}  // namespace sdkruntime
