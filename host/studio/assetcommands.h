#pragma once

#include <hbrcservices/revisiontypes.h>
#include <kel4/kelhandle.h>

#include <QObject>
#include <QString>

#include <string>
#include <vector>

namespace hbrc::studio {

class AssetBrowserModel;
class RevisionOperations;
class StudioSession;
struct OperationOutcome;

// The revision-control commands on assets, without widgets: Check Out, Make Writable, Mark for
// Add, Get Latest, Show Files, the question whether an asset may be edited, and the hand-back of a
// check-out whose edit was undone. The plug-in's helper answers what a host asks through the SDK
// (check-out, writable, may-edit, show files); Mark for Add, which the helper does not offer, goes
// to the host's data-control service. Steps that change the server run through
// RevisionOperations; their outcome comes back through takeOutcome.
class AssetCommands : public QObject
{
    Q_OBJECT
public:
    AssetCommands(StudioSession& session, RevisionOperations& operations, const AssetBrowserModel& model,
                  QObject* parent = nullptr);

    // The plug-in's CanEditObjects for an edit described by what; it may ask the user and check the
    // asset out. While it runs (its dialogs included) editing() holds and further edits are refused
    // without asking.
    bool mayEdit(const KELHandle<kel4::IDbObject>& asset, const QString& what);
    bool editing() const { return m_editing; }

    void checkOut(const KELHandle<kel4::IDbObject>& asset);
    void makeWritable(const KELHandle<kel4::IDbObject>& asset);
    // An asset not saved yet is marked by the post-save hook of its first save instead.
    void markForAdd(const KELHandle<kel4::IDbObject>& asset);
    // Brings the head revision of the assets' files; assets with unsaved edits are left out and
    // named. The files are read again when the operation's outcome comes back.
    void getLatest(const std::vector<KELHandle<kel4::IDbObject>>& assets);
    // Brings the asset's files to the revisions they had as of change (files), unless the asset has
    // unsaved edits; the files are read again when the operation's outcome comes back.
    void getRevision(const KELHandle<kel4::IDbObject>& asset, std::vector<revision::FileAtRevision> files,
                     const QString& change);
    // The assets whose status says a newer revision is on the server.
    std::vector<KELHandle<kel4::IDbObject>> assetsBehind() const;
    bool isBehind(const KELHandle<kel4::IDbObject>& asset) const;
    // The edit that checked asset out was undone and the asset holds what its file holds: the
    // server reverts the check-out unless the file changed (a save since). The revert runs behind
    // the operations asked before it.
    void handBackCheckOut(const KELHandle<kel4::IDbObject>& asset);
    void showFiles(const KELHandle<kel4::IDbObject>& asset, bool inFileBrowser);

    // After each revision operation: the services forget the statuses they knew and the assets
    // whose files it rewrote are read again (unless they have unsaved edits: the workspace refuses
    // those, so what the user edited stays in memory).
    void takeOutcome(const OperationOutcome& outcome);

signals:
    // What the user should read in the log (a Log::Level and the text).
    void message(int level, const QString& text);
    // A line of the asset's edit history in the property pane ("refused: ...").
    void historyNoted(const KELHandle<kel4::IDbObject>& asset, const QString& line);
    // A command changed assets or their files: the browser, the panes and the actions follow.
    void changed();
    // takeOutcome read assets again from disk.
    void assetsReread();
    // takeOutcome is done with an operation's outcome: the status is worth asking again.
    void operationApplied();
    // The plug-in refused to let asset be edited or checked out (the user may have cancelled).
    void refused(const KELHandle<kel4::IDbObject>& asset);

private:
    // Names the related assets others hold, beside the plug-in's own report, and emits refused.
    void noteRefusal(const KELHandle<kel4::IDbObject>& asset);
    void rereadFromDisk(const std::vector<std::string>& files);

    StudioSession& m_session;
    RevisionOperations& m_operations;
    const AssetBrowserModel& m_model;
    bool m_editing = false;
};

}  // namespace hbrc::studio
