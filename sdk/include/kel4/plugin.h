#pragma once

#include "sdkglobal.h"

/// Every plug-in exports this entry. The host's plug-in loader calls it once after loading the
/// library; the plug-in registers its factories with nrkGetSystem() there.
extern "C" KEL_INTERFACE void plxPluginRegister();
using PluginRegisterFunction = void (*)();
