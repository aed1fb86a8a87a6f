#include "assetdialogs.h"

#include "assetedits.h"
#include "fieldeditcommand.h"
#include "newassetdialog.h"
#include "studiosession.h"
#include "studiostatusbar.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace hbrc::studio {

AssetDialogs::AssetDialogs(QWidget& parent, StudioSession& session, AssetEdits& edits, StudioStatusBar& statusBar)
    : m_parent(parent), m_session(session), m_edits(edits), m_statusBar(statusBar)
{
}

KELHandle<kel4::IAsset> AssetDialogs::newAsset(const QString& name)
{
    host::Workspace* workspace = m_session.currentWorkspace();
    if (!workspace)
        return {};
    host::NewAsset asset = NewAssetOfKind(name.toStdString(), host::AssetKind::Metadata);
    if (name.isEmpty()) {
        NewAssetDialog dialog(workspace->Model(), &m_parent);
        if (dialog.exec() != QDialog::Accepted)
            return {};
        asset = dialog.asset();
    }
    return m_edits.createAsset(asset);
}

void AssetDialogs::deleteAsset(const KELHandle<kel4::IDbObject>& asset)
{
    const QString name = QString::fromStdString(asset.GetName());
    if (QMessageBox::question(&m_parent, tr("Delete Asset"), tr("Delete %1? The next save removes its files.").arg(name)) ==
        QMessageBox::Yes)
        m_edits.deleteAsset(asset);
}

void AssetDialogs::renameAsset(const KELHandle<kel4::IDbObject>& asset)
{
    const QString old = QString::fromStdString(asset.GetName());
    bool ok = false;
    const QString name =
        QInputDialog::getText(&m_parent, tr("Rename"), tr("New name:"), QLineEdit::Normal, old, &ok).trimmed();
    if (ok && !name.isEmpty() && name != old)
        m_edits.editField(asset, QString::fromLatin1(FieldEditCommand::kNameField), old, name);
}

void AssetDialogs::addExternalFile(const KELHandle<kel4::IDbObject>& asset)
{
    const QString path = QFileDialog::getOpenFileName(&m_parent, tr("Add External File"));
    if (!path.isEmpty())
        m_edits.addExternalFile(asset, path);
}

void AssetDialogs::removeExternalFile(const KELHandle<kel4::IDbObject>& asset)
{
    const QStringList names = m_edits.externalFilesOf(asset);
    if (names.isEmpty()) {
        m_statusBar.showBriefly(tr("%1 has no external file").arg(QString::fromStdString(asset.GetName())));
        return;
    }
    bool ok = false;
    const QString name = QInputDialog::getItem(&m_parent, tr("Remove External File"), tr("File:"), names, 0, false, &ok);
    if (ok)
        m_edits.removeExternalFile(asset, name);
}

}  // namespace hbrc::studio
