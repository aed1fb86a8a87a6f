// hbrc-studio: the reference host application. "--demo" runs the batch demo without any window.
#include "demo.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("hbrc-studio"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Reference host for the revision-control plug-in"));
    parser.addHelpOption();
    const QCommandLineOption demo(QStringLiteral("demo"), QStringLiteral("Run the batch demo on an embedded depot."));
    parser.addOption(demo);
    parser.process(app);

    QTextStream out(stdout);
    if (parser.isSet(demo))
        return hbrc::studio::RunDemo(out);
    out << "Nothing to do: run with --demo (the interactive studio is not built yet)\n";
    return 2;
}
