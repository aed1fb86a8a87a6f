#include "studiotranslation.h"

#include <qtextention/translations.h>

// The translations are resources of a static library: referring to them keeps them in the link.
static void registerTranslationResources()
{
    Q_INIT_RESOURCE(hbrc_studio_translations);
}

namespace hbrc::studio {

std::unique_ptr<QTranslator> LoadStudioTranslator(const QLocale& locale)
{
    registerTranslationResources();
    return LoadTranslation(locale, QStringLiteral("hbrc-studio"), QStringLiteral(":/hbrc-studio/i18n"));
}

void InstallStudioTranslator()
{
    InstallTranslation(LoadStudioTranslator(QLocale()));
}

}  // namespace hbrc::studio
