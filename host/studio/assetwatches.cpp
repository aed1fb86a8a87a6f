#include "assetwatches.h"

#include "assetbrowsermodel.h"

#include <hbrchost/prefmanager.h>
#include <log/log.h>

namespace hbrc::studio {

namespace {

// One line per watch: server, workspace, asset id, asset name and its holders, tab-separated;
// the holders comma-separated.
constexpr const char* kWatchesKey = "Studio.Watches";
constexpr QChar kField = QLatin1Char('\t');
constexpr QChar kHolder = QLatin1Char(',');

QStringList storedLines(host::PrefManager& preferences)
{
    std::string stored;
    preferences.GetStringPref(kWatchesKey, "", stored, 0);
    return QString::fromStdString(stored).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

}  // namespace

AssetWatches::AssetWatches(host::PrefManager& preferences, const AssetBrowserModel& model, QObject* parent)
    : QObject(parent), m_preferences(preferences), m_model(model)
{
}

void AssetWatches::setScope(const std::string& server, const std::string& workspace)
{
    m_watches.clear();
    m_scope = server.empty() ? QString() : QString::fromStdString(server) + kField + QString::fromStdString(workspace);
    if (m_scope.isEmpty())
        return;
    for (const QString& line : storedLines(m_preferences)) {
        const QStringList fields = line.split(kField);
        if (fields.size() == 5 && fields[0] + kField + fields[1] == m_scope)
            m_watches[fields[2].toStdString()] = {fields[3], fields[4].split(kHolder, Qt::SkipEmptyParts)};
    }
}

bool AssetWatches::isWatching(const KELHandleBase& asset) const
{
    return m_watches.count(m_model.idAt(m_model.rowOf(asset))) != 0;
}

bool AssetWatches::mayToggle(const KELHandleBase& asset) const
{
    const AssetStatus* status = m_model.statusAt(m_model.rowOf(asset));
    return !m_scope.isEmpty() && (isWatching(asset) || (status && !status->holders.isEmpty()));
}

void AssetWatches::toggle(const KELHandleBase& asset)
{
    if (!mayToggle(asset))
        return;
    const int row = m_model.rowOf(asset);
    const QString name = QString::fromStdString(asset.GetName());
    if (m_watches.erase(m_model.idAt(row))) {
        emit message(Log::eMessage, tr("No longer watching %1").arg(name));
    } else {
        m_watches[m_model.idAt(row)] = {name, m_model.statusAt(row)->holders};
        emit message(Log::eMessage, tr("Watching %1: you are told when it is free").arg(name));
    }
    store();
}

void AssetWatches::watch(const KELHandleBase& asset)
{
    if (!isWatching(asset))
        toggle(asset);
}

QString AssetWatches::offerAfterRefusal(const KELHandleBase& asset) const
{
    const AssetStatus* status = m_model.statusAt(m_model.rowOf(asset));
    if (m_scope.isEmpty() || isWatching(asset) || !status || status->holders.isEmpty())
        return {};
    return tr("%1 is held by %2.")
        .arg(QString::fromStdString(asset.GetName()), status->holders.join(QStringLiteral(", ")));
}

void AssetWatches::takeStatus(const StatusAnswer& answer)
{
    if (answer.code < 0 || m_watches.empty() || answer.assets.size() != answer.keys.size())
        return;
    bool changed = false;
    for (std::size_t i = 0; i < answer.keys.size(); ++i) {
        const auto watch = m_watches.find(answer.keys[i]);
        if (watch == m_watches.end())
            continue;
        const AssetStatus& status = answer.assets[i];
        if (!status.holders.isEmpty()) {
            changed = changed || watch->second.holders != status.holders;
            watch->second.holders = status.holders;
            continue;
        }
        const Watch freedWatch = watch->second;
        const std::string id = watch->first;
        m_watches.erase(watch);
        changed = true;
        const QString line =
            freedWatch.holders.isEmpty()
                ? tr("%1 is free").arg(freedWatch.name)
                : tr("%1 is free: %2 released it").arg(freedWatch.name, freedWatch.holders.join(QStringLiteral(", ")));
        emit message(Log::eMessage, line);
        emit freed(m_model.assetAt(m_model.rowOfId(id)), line);
    }
    if (changed)
        store();
}

// Rewrites this scope's lines and keeps the other servers' and workspaces' as they are.
void AssetWatches::store() const
{
    QStringList lines;
    for (const QString& line : storedLines(m_preferences))
        if (!line.startsWith(m_scope + kField))
            lines << line;
    for (const auto& [id, watch] : m_watches)
        lines << QStringList{m_scope, QString::fromStdString(id), watch.name, watch.holders.join(kHolder)}.join(kField);
    m_preferences.SetStringPref(kWatchesKey, lines.join(QLatin1Char('\n')).toStdString(), 1);
}

}  // namespace hbrc::studio
