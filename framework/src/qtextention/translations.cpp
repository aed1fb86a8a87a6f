#include <qtextention/translations.h>

#include <QCoreApplication>
#include <QTranslator>

bool InstallQtExtentionTranslator(const QLocale& locale)
{
    QCoreApplication* application = QCoreApplication::instance();
    if (!application)
        return false;
    auto* translator = new QTranslator(application);
    if (!translator->load(locale, QStringLiteral("qtextention"), QStringLiteral("_"), QStringLiteral(":/qtextention/i18n"))) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}
