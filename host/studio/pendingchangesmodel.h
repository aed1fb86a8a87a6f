#pragma once

#include <hbrcservices/revisiontypes.h>

#include <QStandardItemModel>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace hbrc::studio {

// The session's pending changelists as a tree: the default changelist first, then the numbered
// ones with their descriptions, each with its open files (name, action, the asset it belongs to).
// Files have check boxes; a changelist's box shows whether all, some or none of its files are
// checked, and checks or unchecks all of them. Checked files stay checked when the content is
// replaced by a newer answer.
class PendingChangesModel : public QStandardItemModel
{
    Q_OBJECT
public:
    enum Column { NameColumn, ActionColumn, AssetColumn, ColumnCount };
    // On every row: the changelist's id ("" for the default one). On file rows: the local path.
    static constexpr int ChangelistRole = Qt::UserRole + 1;
    static constexpr int PathRole = Qt::UserRole + 2;

    explicit PendingChangesModel(QObject* parent = nullptr);

    // Shows pending; files are named relative to root, assetOfPath names their assets.
    void setPending(std::vector<revision::PendingChangelist> pending, const QString& root,
                    const std::map<std::string, QString>& assetOfPath);
    const std::vector<revision::PendingChangelist>& pending() const { return m_pending; }
    // The changelist of that id, or null.
    const revision::PendingChangelist* changelist(const std::string& id) const;

    static bool isFile(const QModelIndex& index) { return index.parent().isValid(); }
    static std::string changelistOf(const QModelIndex& index);
    static std::string pathOf(const QModelIndex& index);
    // The row of a changelist, or of a file by its local path; invalid when not shown.
    QModelIndex changelistIndex(const std::string& id) const;
    QModelIndex fileIndex(const std::string& path) const;

    // The checked files, in the order shown; of one changelist only when one is given.
    std::vector<std::string> checkedFiles() const;
    std::vector<std::string> checkedFiles(const std::string& changelist) const;

    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    // What a file's action reads as ("edit", "add", "delete"), here and in the history lists.
    static QString actionText(revision::FileAction action);

private:
    void updateChangelistCheck(QStandardItem* changelist);

    std::vector<revision::PendingChangelist> m_pending;
    std::set<std::string> m_checked;
};

}  // namespace hbrc::studio
