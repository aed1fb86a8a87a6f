#pragma once

#include "internalvisibility.h"

class QWidget;

HBRC_INTERNAL_NAMESPACE_BEGIN

// The dark styles give push buttons and check boxes no keyboard focus. The plug-in's dialogs hand
// it back to every button and check box inside root, so that Tab reaches each of them and Space
// presses the focused one.
void MakeButtonsReachableByKeyboard(QWidget& root);

HBRC_INTERNAL_NAMESPACE_END
