// hbrc-studio: the reference host application. "--demo" runs the batch demo without any window.
#include "demo.h"

#include <qtextention/translations.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("hbrc-studio"));
    QApplication::setApplicationVersion(QStringLiteral(HBRC_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Reference host for the revision-control plug-in"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption demo(QStringLiteral("demo"), QStringLiteral("Run the batch demo on an embedded depot."));
    const QCommandLineOption server(QStringLiteral("server"),
                                    QStringLiteral("Run the demo against the Subversion repository at <url> (users "
                                                   "alice/alice-pw and bob/bob-pw) instead of an embedded depot."),
                                    QStringLiteral("url"));
    parser.addOption(demo);
    const QCommandLineOption language(QStringLiteral("lang"),
                                      QStringLiteral("Language of the dialogs (e.g. de); the system's by default."),
                                      QStringLiteral("language"));
    parser.addOption(language);
    parser.addOption(server);
    parser.process(app);

    // The plug-in installs its own translation for the default locale when it is loaded.
    if (parser.isSet(language))
        QLocale::setDefault(QLocale(parser.value(language)));
    InstallQtExtentionTranslator();

    QTextStream out(stdout);
    if (parser.isSet(demo))
        return hbrc::studio::RunDemo(out, parser.value(server).toStdString());
    out << "Nothing to do: run with --demo (the interactive studio is not built yet)\n";
    return 2;
}
