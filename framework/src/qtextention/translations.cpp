#include <qtextention/translations.h>

#include <QCoreApplication>
#include <QTranslator>

std::unique_ptr<QTranslator> LoadTranslation(const QLocale& locale, const QString& name, const QString& folder)
{
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(locale, name, QStringLiteral("_"), folder))
        return nullptr;
    return translator;
}

bool InstallTranslation(std::unique_ptr<QTranslator> translator)
{
    QCoreApplication* application = QCoreApplication::instance();
    if (!translator || !application)
        return false;
    translator->setParent(application);
    return QCoreApplication::installTranslator(translator.release());
}

bool InstallQtExtentionTranslator(const QLocale& locale)
{
    return InstallTranslation(LoadTranslation(locale, QStringLiteral("qtextention"), QStringLiteral(":/qtextention/i18n")));
}
