#pragma once

#include <kel4/kelhandle.h>

#include <QObject>
#include <QString>
#include <QStringList>

#include <map>
#include <string>

namespace hbrc::host {
class PrefManager;
}

namespace hbrc::studio {

class AssetBrowserModel;
struct StatusAnswer;

// The assets the user asked to hear about when nobody else holds them any more ("Tell Me When It's
// Free"), without widgets. Fed by every status answer: when the last other user's hold on all of a
// watched asset's files is gone, freed says so and the watch ends. The watches of each server and
// workspace are kept in the studio's preferences, so that they outlive the studio.
class AssetWatches : public QObject
{
    Q_OBJECT
public:
    // model: the browser's assets and their last known status.
    AssetWatches(host::PrefManager& preferences, const AssetBrowserModel& model, QObject* parent = nullptr);

    // The server and workspace whose watches apply (after a workspace was opened); empty: none.
    void setScope(const std::string& server, const std::string& workspace);
    bool isWatching(const KELHandleBase& asset) const;
    // Watched, or held by another user as far as the last status knows: toggle has something to do.
    bool mayToggle(const KELHandleBase& asset) const;
    // Starts watching the asset, or stops when it is watched.
    void toggle(const KELHandleBase& asset);
    // Starts watching the asset unless it is watched already (an offer taken after the menu's).
    void watch(const KELHandleBase& asset);
    // After a refusal: the offer to watch the asset ("Rock is held by bob."), or an empty string
    // when nobody else holds it or it is watched already.
    QString offerAfterRefusal(const KELHandleBase& asset) const;
    // Takes a status answer about the workspace's assets (keyed by id).
    void takeStatus(const StatusAnswer& answer);

signals:
    // The watched asset is free; line tells the user ("Rock is free: bob released it").
    void freed(const KELHandle<kel4::IDbObject>& asset, const QString& line);
    // What the user should read in the log (a Log::Level and the text).
    void message(int level, const QString& text);

private:
    struct Watch
    {
        QString name;
        QStringList holders;  // the users who held it when last seen held
    };
    void store() const;

    host::PrefManager& m_preferences;
    const AssetBrowserModel& m_model;
    QString m_scope;
    std::map<std::string, Watch> m_watches;
};

}  // namespace hbrc::studio
