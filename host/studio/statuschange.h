#pragma once

#include "assetstatusquery.h"

#include <QCoreApplication>
#include <QString>

namespace hbrc::studio {

// What a user reads about other users' holds and newer revisions: one hold ("bob (bob-ws): open
// for edit in changelist 12, locked"), and what changed about an asset between two status answers
// ("Rock: bob opened it for edit in changelist 12", "Sky: revision #3 is on the server (you have
// #2)"). Changes this workspace made itself are left out: the user knows them.
class StatusChange
{
    Q_DECLARE_TR_FUNCTIONS(StatusChange)
public:
    static QString describeHold(const revision::FileHolder& hold);
    // One line naming every change, or an empty string when nothing a user should know changed.
    static QString describe(const QString& asset, const AssetStatus& before, const AssetStatus& after);

private:
    // "for edit in changelist 12"
    static QString purpose(const revision::FileHolder& hold);
};

}  // namespace hbrc::studio
