#pragma once

#include <kel4/kelhandle.h>

#include <QCoreApplication>
#include <QString>

class QWidget;

namespace hbrc::studio {

class AssetEdits;
class StudioSession;
class StudioStatusBar;

// The questions the asset commands of the File menu ask before AssetEdits runs them, each in one
// small function: the new asset's name, kind and type; whether to delete; the new name; the file
// to add or to remove.
class AssetDialogs
{
    Q_DECLARE_TR_FUNCTIONS(AssetDialogs)
public:
    AssetDialogs(QWidget& parent, StudioSession& session, AssetEdits& edits, StudioStatusBar& statusBar);

    // Creates an asset named name, a material; asks for the name, kind and type when name is
    // empty. Null when cancelled or refused.
    KELHandle<kel4::IAsset> newAsset(const QString& name);
    void deleteAsset(const KELHandle<kel4::IDbObject>& asset);
    void renameAsset(const KELHandle<kel4::IDbObject>& asset);
    void addExternalFile(const KELHandle<kel4::IDbObject>& asset);
    void removeExternalFile(const KELHandle<kel4::IDbObject>& asset);

private:
    QWidget& m_parent;
    StudioSession& m_session;
    AssetEdits& m_edits;
    StudioStatusBar& m_statusBar;
};

}  // namespace hbrc::studio
