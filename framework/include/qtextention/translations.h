#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QLocale>
#include <QString>

#include <memory>

class QTranslator;

/// Loads the translation "<name>_<language>.qm" for locale from folder (usually a resource folder
/// such as ":/name/i18n"). Returns null when there is none for that language; English needs none.
QTEXTENTION_EXPORT std::unique_ptr<QTranslator> LoadTranslation(const QLocale& locale, const QString& name,
                                                                 const QString& folder);

/// Installs translator in the running application, which owns it from then on. Returns false,
/// and installs nothing, when translator is null or no application runs.
QTEXTENTION_EXPORT bool InstallTranslation(std::unique_ptr<QTranslator> translator);

/// Installs the toolkit's translation of its texts for locale's language in the running
/// application (owned by the application object). Returns false, and installs nothing, when the
/// toolkit has no translation for that language or no application runs. English needs none.
QTEXTENTION_EXPORT bool InstallQtExtentionTranslator(const QLocale& locale = QLocale());
