// Renders the changelist selection dialog in changelist mode under the dark "Tarn" style and
// writes it as a PNG: a user about to edit two assets, with three pending changelists to choose from.
#include "hbchangelistselectiondialog.h"
#include "scripteddatacontrol.h"

#include <qtextention/qtlomdarkstyletarn.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QPixmap>

#include <cstdio>

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
    if (arguments.size() != 2) {
        std::fprintf(stderr, "usage: dialogshots <output.png>\n");
        return 2;
    }
    const QString path = arguments.at(1);
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
    dialog.setInfo(QStringLiteral("These assets are read-only. Check them out to edit them."));
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
