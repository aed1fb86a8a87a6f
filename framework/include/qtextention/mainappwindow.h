#pragma once

#include <qtextention/qtextentionglobal.h>

class QWidget;

/// The host's main window: the first visible top-level widget named "TarnWindow", or null (as in
/// batch runs). Prompts use it as their parent.
QTEXTENTION_EXPORT QWidget* GetMainAppWindow();
