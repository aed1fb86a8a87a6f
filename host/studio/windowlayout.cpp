#include "windowlayout.h"

#include <hbrchost/prefmanager.h>

#include <QByteArray>
#include <QHeaderView>
#include <QMainWindow>
#include <QSplitter>

#include <string>

namespace hbrc::studio {

namespace {
constexpr const char* kGeometryKey = "Studio.WindowGeometry";
constexpr const char* kDocksKey = "Studio.WindowState";
constexpr const char* kSplitterKey = "Studio.Splitter";
constexpr const char* kColumnsKey = "Studio.BrowserColumns";

QByteArray read(host::PrefManager& prefs, const char* key)
{
    std::string stored;
    prefs.GetStringPref(key, "", stored, 0);
    return QByteArray::fromBase64(QByteArray::fromStdString(stored));
}

void write(host::PrefManager& prefs, const char* key, const QByteArray& state)
{
    prefs.SetStringPref(key, state.toBase64().toStdString(), 1);
}
}  // namespace

void WindowLayout::restore(QMainWindow& window, QSplitter& splitter, QHeaderView& columns, host::PrefManager& prefs)
{
    // Each part that was never kept (or cannot be read) keeps the layout the window was built with.
    if (const QByteArray geometry = read(prefs, kGeometryKey); !geometry.isEmpty())
        window.restoreGeometry(geometry);
    if (const QByteArray docks = read(prefs, kDocksKey); !docks.isEmpty())
        window.restoreState(docks);
    if (const QByteArray sizes = read(prefs, kSplitterKey); !sizes.isEmpty())
        splitter.restoreState(sizes);
    if (const QByteArray widths = read(prefs, kColumnsKey); !widths.isEmpty())
        columns.restoreState(widths);
}

void WindowLayout::save(const QMainWindow& window, const QSplitter& splitter, const QHeaderView& columns,
                        host::PrefManager& prefs)
{
    write(prefs, kGeometryKey, window.saveGeometry());
    write(prefs, kDocksKey, window.saveState());
    write(prefs, kSplitterKey, splitter.saveState());
    write(prefs, kColumnsKey, columns.saveState());
}

}  // namespace hbrc::studio
