#include "statuschange.h"

#include <QStringList>

#include <algorithm>

namespace hbrc::studio {

namespace {

const revision::FileHolder* findHold(const std::vector<revision::FileHolder>& holds, const revision::FileHolder& hold)
{
    const auto found = std::find_if(holds.begin(), holds.end(), [&hold](const revision::FileHolder& other) {
        return other.user == hold.user && other.workspace == hold.workspace;
    });
    return found == holds.end() ? nullptr : &*found;
}

}  // namespace

QString StatusChange::purpose(const revision::FileHolder& hold)
{
    const QString changelist =
        hold.changelist.empty() ? tr("the default changelist") : tr("changelist %1").arg(QString::fromStdString(hold.changelist));
    switch (hold.action) {
    case revision::FileAction::Add: return tr("for add in %1").arg(changelist);
    case revision::FileAction::Delete: return tr("for delete in %1").arg(changelist);
    case revision::FileAction::Edit: break;
    }
    return tr("for edit in %1").arg(changelist);
}

QString StatusChange::describeHold(const revision::FileHolder& hold)
{
    const QString text = tr("%1 (%2): open %3").arg(QString::fromStdString(hold.user), QString::fromStdString(hold.workspace), purpose(hold));
    return hold.locked ? tr("%1, locked").arg(text) : text;
}

QString StatusChange::describe(const QString& asset, const AssetStatus& before, const AssetStatus& after)
{
    QStringList changes;
    for (const revision::FileHolder& hold : after.heldBy) {
        const QString user = QString::fromStdString(hold.user);
        const revision::FileHolder* was = findHold(before.heldBy, hold);
        if (!was || was->action != hold.action || was->changelist != hold.changelist)
            changes << tr("%1 opened it %2").arg(user, purpose(hold));
        if (hold.locked && !(was && was->locked))
            changes << tr("%1 locked it").arg(user);
        else if (!hold.locked && was && was->locked)
            changes << tr("%1 unlocked it").arg(user);
    }
    for (const revision::FileHolder& hold : before.heldBy)
        if (!findHold(after.heldBy, hold))
            changes << tr("%1 no longer holds it").arg(QString::fromStdString(hold.user));
    if (after.headRevision > before.headRevision && after.behind)
        changes << tr("revision #%1 is on the server (you have #%2)").arg(after.headRevision).arg(after.haveRevision);
    changes.removeDuplicates();  // the holds of an asset's several files
    return changes.isEmpty() ? QString() : tr("%1: %2").arg(asset, changes.join(QStringLiteral("; ")));
}

}  // namespace hbrc::studio
