// hbrc-studio: the reference host application. Opens the main window "TarnWindow"; "--demo"
// drives it through the scripted tour; "--batch" runs without any window or dialog.
#include "demo.h"
#include "demotour.h"
#include "mainwindow.h"
#include "studiosession.h"
#include "studiotranslation.h"

#include <hbrchost/prefmanager.h>
#include <qtextention/qtlomdarkstyletarn.h>
#include <qtextention/translations.h>

#include <QApplication>
#include <QCoreApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTextStream>

namespace {

struct Options
{
    QCommandLineOption workspace{QStringLiteral("workspace"), QStringLiteral("Open the workspace folder <dir>."),
                                 QStringLiteral("dir")};
    QCommandLineOption server{QStringLiteral("server"),
                              QStringLiteral("Revision server: a depot file or a Subversion URL (stored as "
                                             "RevControl.Server). With --demo: the Subversion repository with "
                                             "the users alice/alice-pw and bob/bob-pw to run the demo on."),
                              QStringLiteral("server")};
    QCommandLineOption user{QStringLiteral("user"), QStringLiteral("User name (stored as RevControl.UserName)."),
                            QStringLiteral("name")};
    QCommandLineOption workspaceName{QStringLiteral("workspace-name"),
                                     QStringLiteral("The server's name of the workspace (stored as RevControl.Workspace)."),
                                     QStringLiteral("name")};
    QCommandLineOption demo{QStringLiteral("demo"),
                            QStringLiteral("Run the scripted tour through the window on a new demo depot, printing "
                                           "a transcript (with --batch: the demo without a window).")};
    QCommandLineOption batch{QStringLiteral("batch"), QStringLiteral("No window and no dialog: a script-driven run.")};
    QCommandLineOption retryDeadline{QStringLiteral("retry-deadline"),
                                     QStringLiteral("With --batch: how many seconds a failed check-out is retried "
                                                    "before the edit is refused (stored as "
                                                    "RevControl.BatchRetryDeadlineSeconds; default 600)."),
                                     QStringLiteral("seconds")};
    QCommandLineOption shots{QStringLiteral("shots"),
                             QStringLiteral("With --demo on the offscreen platform: write pictures of the window "
                                            "into <dir> (default: hbrc-studio-tour in the current folder)."),
                             QStringLiteral("dir")};
    QCommandLineOption language{QStringLiteral("lang"),
                                QStringLiteral("Language of the window and its dialogs (e.g. de); the system's by "
                                               "default."),
                                QStringLiteral("language")};
};

// --server, --user and --workspace-name update the stored account.
void storeAccountOptions(const QCommandLineParser& parser, const Options& options, hbrc::studio::StudioSession& session)
{
    hbrc::studio::Account account = session.storedAccount();
    if (parser.isSet(options.server))
        account.server = parser.value(options.server).toStdString();
    if (parser.isSet(options.user))
        account.userName = parser.value(options.user).toStdString();
    if (parser.isSet(options.workspaceName))
        account.workspaceName = parser.value(options.workspaceName).toStdString();
    session.storeAccount(account);
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setApplicationName(QStringLiteral("hbrc-studio"));
    QCoreApplication::setApplicationVersion(QStringLiteral(HBRC_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Reference host for the revision-control plug-in"));
    parser.addHelpOption();
    parser.addVersionOption();
    const Options options;
    parser.addOptions({options.workspace, options.server, options.user, options.workspaceName, options.demo,
                       options.batch, options.retryDeadline, options.shots, options.language});
    {
        // --help, --version and wrong options are answered without a display: the parser runs in a
        // core application, which needs no window system, before the window's application exists.
        QCoreApplication parsing(argc, argv);
        parser.process(parsing);
    }
    QApplication app(argc, argv);

    // The plug-in installs its own translation for the default locale when it is loaded.
    if (parser.isSet(options.language))
        QLocale::setDefault(QLocale(parser.value(options.language)));
    InstallQtExtentionTranslator();
    hbrc::studio::InstallStudioTranslator();

    QTextStream out(stdout);
    const bool batch = parser.isSet(options.batch);
    std::optional<int> retryDeadline;
    if (parser.isSet(options.retryDeadline)) {
        bool valid = false;
        retryDeadline = parser.value(options.retryDeadline).toInt(&valid);
        if (!valid || *retryDeadline < 0) {
            out << "--retry-deadline takes a number of seconds\n";
            return 2;
        }
    }
    if (parser.isSet(options.demo) && batch)
        return hbrc::studio::RunDemo(out, parser.value(options.server).toStdString(), retryDeadline);
    if (batch) {
        out << "Nothing to do: --batch runs the demo (--demo --batch)\n";
        return 2;
    }

    auto* style = new QtlomDarkStyleTarn;
    QApplication::setStyle(style);  // the application owns it
    QApplication::setPalette(style->standardPalette());
    if (parser.isSet(options.demo)) {
        const QString shots = parser.isSet(options.shots) ? parser.value(options.shots)
                                                          : QDir::current().filePath(QStringLiteral("hbrc-studio-tour"));
        return hbrc::studio::RunTour(out, shots, parser.value(options.server).toStdString());
    }

    hbrc::studio::StudioSession session(hbrc::host::PrefManager::DefaultFilePath());
    std::string error;
    if (!session.start(error)) {
        out << "Cannot start: " << QString::fromStdString(error) << "\n";
        return 1;
    }
    storeAccountOptions(parser, options, session);
    hbrc::studio::MainWindow window(session);
    window.show();
    if (parser.isSet(options.workspace))
        window.openWorkspace(parser.value(options.workspace));
    return QApplication::exec();
}
