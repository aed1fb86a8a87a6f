#include "plugintranslation.h"

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
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(locale, QStringLiteral("hbrevisioncontrol"), QStringLiteral("_"),
                          QStringLiteral(":/hbrevisioncontrol/i18n")))
        return nullptr;
    return translator;
}

void InstallPluginTranslator()
{
    static bool installed = false;
    QCoreApplication* application = QCoreApplication::instance();
    if (installed || !application)
        return;
    if (std::unique_ptr<QTranslator> translator = LoadPluginTranslator(QLocale())) {
        translator->setParent(application);
        QCoreApplication::installTranslator(translator.release());
    }
    installed = true;
}

HBRC_INTERNAL_NAMESPACE_END
