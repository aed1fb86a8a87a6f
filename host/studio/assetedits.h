#pragma once

#include <hbrcdatamodel/workspace.h>
#include <kel4/kelhandle.h>

#include <QObject>
#include <QString>
#include <QStringList>

namespace hbrc::studio {

class AssetCommands;
class SessionController;
class StudioSession;

// The user's edits of the open workspace's assets, without widgets: a field edit, a new, deleted
// or renamed asset, an external file added or removed, undo and redo, and the save. Every edit
// first asks the plug-in whether the asset may be edited (AssetCommands::mayEdit); a field edit is
// one undo step that may check the asset out (EditStepCommand), and undoing it hands the
// check-out back. The dialogs that ask for names and files are the window's.
class AssetEdits : public QObject
{
    Q_OBJECT
public:
    AssetEdits(StudioSession& session, SessionController& sessionController, AssetCommands& commands,
               QObject* parent = nullptr);

    // Sets field of asset from oldValue to newValue as one undo step; false when it was refused
    // (editRefused follows), failed, or not asked (no asset, no workspace, an edit asking still).
    bool editField(const KELHandle<kel4::IDbObject>& asset, const QString& field, const QString& oldValue,
                   const QString& newValue);
    bool save();
    // Creates the asset (saved with the next save); null when the workspace refuses it.
    KELHandle<kel4::IAsset> createAsset(const host::NewAsset& asset);
    void deleteAsset(const KELHandle<kel4::IDbObject>& asset);
    // Adds a copy of the file at path to the asset's external files.
    void addExternalFile(const KELHandle<kel4::IDbObject>& asset, const QString& path);
    void removeExternalFile(const KELHandle<kel4::IDbObject>& asset, const QString& fileName);
    QStringList externalFilesOf(const KELHandle<kel4::IDbObject>& asset) const;
    void undo();
    void redo();

signals:
    void message(int level, const QString& text);
    // A line of the asset's edit history in the property pane ("colour of Rock: ... -> ...").
    void historyNoted(const KELHandle<kel4::IDbObject>& asset, const QString& line);
    // An edit, undo, redo or save ran: the browser, the panes and the actions follow.
    void changed();
    // The plug-in refused an edit: the property pane shows the values as they are.
    void editRefused();

private:
    void logEdit(const host::EditResult& result, const QString& done);
    QString whySaveWasCancelled() const;

    StudioSession& m_session;
    SessionController& m_sessionController;
    AssetCommands& m_commands;
};

}  // namespace hbrc::studio
