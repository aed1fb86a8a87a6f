#pragma once

#include <QCoreApplication>
#include <QStringList>

#include <vector>

namespace hbrc::studio {

struct AssetStatus;

// Which of an asset's related assets (those an edit of it involves, so that the editability
// question asks about them too) other users hold, and who: "Rock: its related asset Moss is locked
// by bob". The lines the browser shows beside an asset's own holds and the studio adds to a refused
// check-out; the plug-in's own refusal texts stay as they are.
class RelatedHolds
{
    Q_DECLARE_TR_FUNCTIONS(RelatedHolds)
public:
    struct Related
    {
        QString name;
        const AssetStatus* status = nullptr;  // null while unknown
    };
    // One line per held related asset (locks first named as locks); nothing when none is held.
    static QStringList describe(const QString& asset, const std::vector<Related>& related);
};

}  // namespace hbrc::studio
