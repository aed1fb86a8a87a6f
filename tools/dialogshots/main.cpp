// Renders the changelist selection dialog in changelist mode under the dark "Tarn" style and
// writes it as a PNG: a user about to edit two assets, with three pending changelists to choose from.
#include "hbchangelistselectiondialog.h"
#include "plugintranslation.h"
#include "scripteddatacontrol.h"

#include <qtextention/qtlomdarkstyletarn.h>
#include <qtextention/translations.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QPixmap>
#include <QTranslator>

#include <cstdio>
#include <memory>

namespace {

KELPtr<kel4::IDataControl> pendingChangeLists()
{
    return KELPtr<kel4::IDataControl>(new ScriptedDataControl({
        {"1042", "Rock set: new granite variations for the canyon level"},
        {"1057", "Fix the oak tree's level-of-detail switch distances, which popped visibly in the "
                 "forest fly-through.\nAlso re-exported the bark texture at half size."},
        {"1063", "Lighting pass"},
    }));
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 3) {
        std::fprintf(stderr, "usage: dialogshots <output.png> [language]\n");
        return 2;
    }
    const QString path = arguments.at(1);
    // The dialog as a host of that language shows it: the plug-in's and the toolkit's translations.
    std::unique_ptr<QTranslator> translator;
    if (arguments.size() == 3) {
        const QLocale locale(arguments.at(2));
        translator = hbrc::internal::LoadPluginTranslator(locale);
        if (!translator || !InstallQtExtentionTranslator(locale)) {
            std::fprintf(stderr, "dialogshots: no translation for %s\n", qPrintable(arguments.at(2)));
            return 1;
        }
        QCoreApplication::installTranslator(translator.get());
    }
    if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        std::fprintf(stderr, "dialogshots: cannot create the folder of %s\n", qPrintable(path));
        return 1;
    }

    auto* style = new QtlomDarkStyleTarn;
    QApplication::setStyle(style);  // the application owns it from here
    QApplication::setPalette(style->standardPalette());

    const std::set<std::string> files{"/work/studio/assets/rocks/granite_03.kel",
                                      "/work/studio/assets/rocks/granite_03.geo",
                                      "/work/studio/assets/trees/oak_large.kel",
                                      "/work/studio/assets/trees/oak_large_bark.tex"};
    hbChangeListSelectionDialog dialog(pendingChangeLists(), QStringLiteral("Granite 03 [rocks]\nOak Large [trees]"),
                                       files, true, true, nullptr);
    // The info line is the calling host's own text, in the host's language.
    dialog.setInfo(translator ? QStringLiteral("Diese Assets sind schreibgesch\u00fctzt. Checken Sie sie aus, um sie zu bearbeiten.")
                              : QStringLiteral("These assets are read-only. Check them out to edit them."));
    dialog.includeContinueButton(true);
    if (auto* combo = dialog.findChild<QComboBox*>())
        combo->setCurrentIndex(3);
    dialog.show();
    QApplication::processEvents();
    if (!dialog.grab().save(path)) {
        std::fprintf(stderr, "dialogshots: cannot write %s\n", qPrintable(QDir::toNativeSeparators(path)));
        return 1;
    }
    std::printf("%s\n", qPrintable(QDir::toNativeSeparators(path)));
    return 0;
}
