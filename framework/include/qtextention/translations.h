#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QLocale>

/// Installs the toolkit's translation of its texts for locale's language in the running
/// application (owned by the application object). Returns false, and installs nothing, when the
/// toolkit has no translation for that language or no application runs. English needs none.
QTEXTENTION_EXPORT bool InstallQtExtentionTranslator(const QLocale& locale = QLocale());
