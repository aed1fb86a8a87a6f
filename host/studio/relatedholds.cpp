#include "relatedholds.h"

#include "assetstatusquery.h"

namespace hbrc::studio {

QStringList RelatedHolds::describe(const QString& asset, const std::vector<Related>& related)
{
    QStringList lines;
    for (const Related& other : related) {
        if (!other.status)
            continue;
        QStringList lockers;
        QStringList openers;
        for (const revision::FileHolder& hold : other.status->heldBy)
            (hold.locked ? lockers : openers) << QString::fromStdString(hold.user);
        lockers.removeDuplicates();
        openers.removeDuplicates();
        for (const QString& locker : lockers)
            openers.removeAll(locker);
        if (!lockers.isEmpty())
            lines << tr("%1: its related asset %2 is locked by %3")
                         .arg(asset, other.name, lockers.join(QStringLiteral(", ")));
        if (!openers.isEmpty())
            lines << tr("%1: its related asset %2 is checked out by %3")
                         .arg(asset, other.name, openers.join(QStringLiteral(", ")));
    }
    return lines;
}

}  // namespace hbrc::studio
