#include "studiotranslation.h"

#include <QCoreApplication>

// The translations are resources of a static library: referring to them keeps them in the link.
static void registerTranslationResources()
{
    Q_INIT_RESOURCE(hbrc_studio_translations);
}

namespace hbrc::studio {

std::unique_ptr<QTranslator> LoadStudioTranslator(const QLocale& locale)
{
    registerTranslationResources();
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(locale, QStringLiteral("hbrc-studio"), QStringLiteral("_"),
                          QStringLiteral(":/hbrc-studio/i18n")))
        return nullptr;
    return translator;
}

void InstallStudioTranslator()
{
    QCoreApplication* application = QCoreApplication::instance();
    if (!application)
        return;
    if (std::unique_ptr<QTranslator> translator = LoadStudioTranslator(QLocale())) {
        translator->setParent(application);
        QCoreApplication::installTranslator(translator.release());
    }
}

}  // namespace hbrc::studio
