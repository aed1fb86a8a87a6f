#pragma once

#include <QCoreApplication>
#include <QStringList>

namespace hbrc::host {
class Workspace;
struct RevisionControlServices;
}  // namespace hbrc::host

namespace hbrc::studio {

// Who holds the files that a save would have to make writable. With revision control off the
// plug-in's save hook offers to make read-only files writable without asking the server; this asks
// it first, in one status question for all of them, so that the user learns whose work a
// writable copy would go around.
class HeldAssets
{
    Q_DECLARE_TR_FUNCTIONS(HeldAssets)
public:
    // One line per asset with unsaved edits and read-only files that other users hold ("Rock is
    // locked by bob: ..."); nothing without a session or when the server cannot say.
    static QStringList describe(host::Workspace& workspace, const host::RevisionControlServices& services);
};

}  // namespace hbrc::studio
