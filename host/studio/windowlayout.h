#pragma once

class QHeaderView;
class QMainWindow;
class QSplitter;

namespace hbrc::host {
class PrefManager;
}

namespace hbrc::studio {

// The main window's size and docks, its splitter and the asset browser's columns, kept as studio
// preferences when the window closes and restored when it is built.
class WindowLayout
{
public:
    static void restore(QMainWindow& window, QSplitter& splitter, QHeaderView& columns, host::PrefManager& prefs);
    static void save(const QMainWindow& window, const QSplitter& splitter, const QHeaderView& columns,
                     host::PrefManager& prefs);
};

}  // namespace hbrc::studio
