#pragma once

#include "fieldeditors.h"

#include <qtextention/qtabwidgetex.h>

#include <kel4/kelhandle.h>

#include <map>
#include <string>

class QFormLayout;
class QListWidget;

namespace hbrc::host {
class Workspace;
}

namespace hbrc::studio {

// The selected asset's pane: its name and fields with fitting editors ("Properties"), its files
// with their read-only state ("Files") and what happened to it in this session ("Undo History");
// the window adds the server's history of it (HistoryPane).
// An edit is only reported (fieldEdited); the asset changes when the window accepts it, and
// showValues puts the model's values back into the editors either way.
class PropertyPane : public QTabWidgetEx
{
    Q_OBJECT
public:
    explicit PropertyPane(QWidget* parent = nullptr);

    // Shows asset (null: nothing) of workspace, with its files as the plug-in lists them.
    void showAsset(host::Workspace* workspace, const KELHandle<kel4::IDbObject>& asset, const QStringList& files);
    // Re-reads the shown asset's values into the editors (after an edit, an undo or a refusal).
    void showValues();
    void addHistory(const KELHandleBase& asset, const QString& entry);

    KELHandle<kel4::IDbObject> asset() const { return m_asset; }
    // The editor of a field ("name" for the name), or null.
    QWidget* editor(const QString& field) const;

signals:
    void fieldEdited(const QString& field, const QString& oldValue, const QString& newValue);

private:
    void rebuild();
    QString valueOf(const QString& field) const;
    void showHistory();

    host::Workspace* m_workspace = nullptr;
    KELHandle<kel4::IDbObject> m_asset;
    QWidget* m_form = nullptr;  // rebuilt per asset
    std::map<QString, FieldEditor> m_editors;
    QListWidget* m_files = nullptr;
    QListWidget* m_history = nullptr;
    std::map<std::string, QStringList> m_historyByAsset;
};

}  // namespace hbrc::studio
