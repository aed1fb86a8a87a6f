// Renders the gallery page once per dark style and writes <folder>/stylegallery-<style>.png.
#include "gallerypage.h"
#include "hostimages.h"

#include <qtextention/qtlomdarkstylesimple.h>
#include <qtextention/qtlomdarkstyletarn.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPixmap>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

namespace {

struct GalleryStyle {
    const char* fileName;
    const char* title;
    std::function<QStyle*()> create;
};

// Files for the file list: one writable, one read-only, one missing.
QStringList sampleFiles(const QTemporaryDir& workspace)
{
    const QString writable = workspace.filePath(QStringLiteral("assets/ship.kel"));
    const QString readOnly = workspace.filePath(QStringLiteral("assets/ship_diffuse.png"));
    QDir().mkpath(workspace.filePath(QStringLiteral("assets")));
    for (const QString& path : {writable, readOnly}) {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write("sample");
    }
    QFile::setPermissions(readOnly, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
    return {writable, readOnly, workspace.filePath(QStringLiteral("assets/ship_normal.png"))};
}

bool render(const GalleryStyle& entry, const QStringList& files, const QDir& folder)
{
    QStyle* style = entry.create();
    QApplication::setStyle(style);  // the application owns it from here
    QApplication::setPalette(style->standardPalette());
    GalleryPage page(QString::fromLatin1(entry.title), files);
    page.resize(page.sizeHint().expandedTo(QSize(980, 960)));
    page.show();
    QApplication::processEvents();
    const QString path = folder.filePath(QString::fromLatin1(entry.fileName));
    if (!page.grab().save(path)) {
        std::fprintf(stderr, "stylegallery: cannot write %s\n", qPrintable(QDir::toNativeSeparators(path)));
        return false;
    }
    std::printf("%s\n", qPrintable(QDir::toNativeSeparators(path)));
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() > 2) {
        std::fprintf(stderr, "usage: stylegallery [output folder]\n");
        return 2;
    }
    const QDir folder(arguments.size() == 2 ? arguments.at(1) : QDir::currentPath());
    if (!folder.exists() && !QDir().mkpath(folder.path())) {
        std::fprintf(stderr, "stylegallery: cannot create %s\n", qPrintable(QDir::toNativeSeparators(folder.path())));
        return 1;
    }
    supplyHostImages();
    const QTemporaryDir workspace;
    const QStringList files = sampleFiles(workspace);
    const GalleryStyle styles[] = {
        {"stylegallery-simple.png", "QtlomDarkStyleSimple (over Windows)", [] { return new QtlomDarkStyleSimple; }},
        {"stylegallery-tarn.png", "QtlomDarkStyleTarn (over Fusion)", [] { return new QtlomDarkStyleTarn; }},
    };
    // Run with QT_SCALE_FACTOR=2, the gallery shows the Tarn style on a high-density screen.
    const qreal ratio = app.devicePixelRatio();
    if (ratio > 1.0) {
        const GalleryStyle scaled{"stylegallery-tarn@2x.png", "QtlomDarkStyleTarn at pixel ratio 2",
                                  [] { return new QtlomDarkStyleTarn; }};
        return render(scaled, files, folder) ? 0 : 1;
    }
    bool written = true;
    for (const GalleryStyle& entry : styles)
        written = render(entry, files, folder) && written;
    return written ? 0 : 1;
}
