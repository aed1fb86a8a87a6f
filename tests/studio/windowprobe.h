#pragma once

// What the studio's main window shows, read as its user reads it, and waits for its background
// work: shared by the studio's tests.
#include "assetbrowsermodel.h"
#include "logdock.h"
#include "mainwindow.h"
#include "revisionoperations.h"

#include <dialogdriver.h>

#include <QLabel>
#include <QListWidget>
#include <QStatusBar>

namespace hbrc::test {

inline QString SessionLabel(const studio::MainWindow& window)
{
    return window.statusBar()->findChild<QLabel*>(QStringLiteral("sessionState"))->text();
}

inline QString AssetCell(const studio::MainWindow& window, const KELHandleBase& asset, int column,
                         int role = Qt::DisplayRole)
{
    const studio::AssetBrowserModel& model = window.model();
    return model.data(model.index(model.rowOf(asset), column), role).toString();
}

inline bool Logged(const studio::MainWindow& window, const QString& text, Qt::MatchFlags match = Qt::MatchExactly)
{
    return !window.logDock().list()->findItems(text, match).isEmpty();
}

// Until the status question the window asked is answered.
inline bool WaitForStatus(const studio::MainWindow& window)
{
    return DialogDriver::waitUntil([&window] { return !window.model().statusQuery().isPending(); }, 20000);
}

// Until the queued revision operations ran and the status they changed is answered.
inline bool WaitForOperations(const studio::MainWindow& window)
{
    return DialogDriver::waitUntil([&window] { return !window.operations().isBusy(); }, 20000) &&
           WaitForStatus(window);
}

}  // namespace hbrc::test
