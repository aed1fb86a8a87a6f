#include "plugintranslation.h"

#include <qtextention/translations.h>

#include <QCoreApplication>
#include <QTranslator>

// Registers the translations built into the library. The shared plug-in registers them when it is
// loaded; a static link keeps them only when something refers to them, which this does.
static void registerTranslationResources()
{
    Q_INIT_RESOURCE(hbrevisioncontrol_objects_translations);
}

HBRC_INTERNAL_NAMESPACE_BEGIN

std::unique_ptr<QTranslator> LoadPluginTranslator(const QLocale& locale)
{
    registerTranslationResources();
    return LoadTranslation(locale, QStringLiteral("hbrevisioncontrol"), QStringLiteral(":/hbrevisioncontrol/i18n"));
}

void InstallPluginTranslator()
{
    static bool installed = false;
    if (installed || !QCoreApplication::instance())
        return;
    InstallTranslation(LoadPluginTranslator(QLocale()));
    installed = true;
}

HBRC_INTERNAL_NAMESPACE_END
