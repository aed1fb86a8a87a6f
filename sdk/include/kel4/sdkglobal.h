#pragma once

// Symbols that the host runtime library implements and exports to plug-ins.
#define KEL_RUNTIME_API __attribute__((visibility("default")))
// Interfaces keep default visibility so that dynamic_cast works across the host and its plug-ins.
#define KEL_INTERFACE __attribute__((visibility("default")))
