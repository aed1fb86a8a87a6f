#pragma once

#include "internalvisibility.h"

HBRC_INTERNAL_NAMESPACE_BEGIN

// Widgets carrying this dynamic property set to true do not make a session interactive.
inline constexpr const char* kNotCountedAsInteractive = "hbrcNotCountedAsInteractive";

// True when the application shows at least one top-level widget of its own, so that dialogs may
// be shown. The helper's hidden progress box does not count: a batch run that created the helper
// must never block in a modal dialog.
bool InteractiveMode();

HBRC_INTERNAL_NAMESPACE_END
