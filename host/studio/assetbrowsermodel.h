#pragma once

#include "assetstatusquery.h"

#include <kel4/kelhandle.h>

#include <QAbstractTableModel>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <vector>

namespace hbrc::host {
class Workspace;
}

namespace hbrc::studio {

// The assets of the open workspace, one row each in name order, read from the data model when shown: name,
// type, revision status, the users holding it, its changelist, its have and head revisions and its
// number of files. The
// status columns come from one status question for all assets at once (AssetStatusQuery), asked
// by refreshStatus without blocking the UI thread.
class AssetBrowserModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column {
        NameColumn,
        TypeColumn,
        StatusColumn,
        HolderColumn,
        ChangelistColumn,
        RevisionColumn,
        FilesColumn,
        ColumnCount
    };
    // The status word of a row (UserRole + 1) and whether it is known yet (UserRole + 2).
    static constexpr int StatusWordRole = Qt::UserRole + 1;
    static constexpr int StatusKnownRole = Qt::UserRole + 2;
    // The status as separate words (a QStringList), for badges.
    static constexpr int StatusWordsRole = Qt::UserRole + 3;

    explicit AssetBrowserModel(QObject* parent = nullptr);

    // Shows workspace's assets (null: none); the status is unknown until refreshStatus answers.
    // Nothing changes when it shows that workspace already.
    void setWorkspace(host::Workspace* workspace);
    // Appends the rows of assets just added to the workspace (a batch of a workspace being read),
    // out of name order until sortByName.
    void appendAssets(const std::vector<std::uint32_t>& assetSlots);
    // Puts the rows back in name order after appendAssets, in one layout change.
    void sortByName();
    // Re-reads the list of assets (after one was created, deleted or renamed); known statuses stay.
    void reload();
    // While reason is not empty, every row's status reads reason instead of its status (e.g.
    // "revision control off"); the statuses stay and show again when it is cleared.
    void setStatusUnavailable(const QString& reason);
    // Asks the server about every asset's files once; statusRefreshed follows, once the answer is
    // in every row. The files are gathered, and the answer applied, a slice of rows per turn of
    // the event loop.
    void refreshStatus(const Account& account);
    // True from refreshStatus until statusRefreshed.
    bool isStatusPending() const { return m_question || m_query.isPending() || m_answer; }

    KELHandle<kel4::IDbObject> assetAt(int row) const;
    // The last answered status of row, or null while it is unknown.
    const AssetStatus* statusAt(int row) const;
    int rowOf(const KELHandleBase& asset) const;
    // The asset's id in the workspace, and the row of an id (-1: none).
    std::string idAt(int row) const;
    int rowOfId(const std::string& id) const;
    // Which of row's related assets (those an edit of it involves) other users hold, one line each.
    QStringList relatedHolds(int row) const;
    const AssetStatusQuery& statusQuery() const { return m_query; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // The words a user reads for a status word ("checked out", "held by bob", ...).
    static QStringList statusWords(unsigned word, const QStringList& holders);
    static QString statusText(unsigned word, const QStringList& holders)
    {
        return statusWords(word, holders).join(QStringLiteral(", "));
    }

signals:
    // The status question was answered: its code is < 0 when the server refused it.
    void statusRefreshed(const hbrc::studio::StatusAnswer& answer);
    // What an answer changed about other users' holds and newer revisions, one line per asset
    // (never for the first answer about an asset); sent before statusRefreshed.
    void changesSeen(const QStringList& lines);

private:
    struct Row
    {
        std::uint32_t slot = 0;
        std::string id;
        QString nameKey;  // the case-folded name the rows are sorted by
        AssetStatus status;
        bool known = false;
    };
    void gatherQuestionSlice();
    void takeAnswer(const std::shared_ptr<const StatusAnswer>& answer);
    void applyAnswerSlice();
    // Each row on the heap, so that putting 100,000 rows in order moves only pointers.
    using Rows = std::vector<std::unique_ptr<Row>>;
    // The row of an asset, its status unknown.
    std::unique_ptr<Row> newRow(std::uint32_t slot) const;
    // The positions of rows in name order (case-insensitive); rows of one name keep their order.
    static std::vector<std::size_t> nameOrder(const Rows& rows);
    void restartRowWork();
    QString name(const Row& row) const;

    host::Workspace* m_workspace = nullptr;
    Rows m_rows;
    bool m_inNameOrder = true;
    QString m_statusUnavailable;
    AssetStatusQuery m_query;
    // The question being gathered: every asset's id and files, up to the next row.
    struct Question
    {
        Account account;
        std::vector<std::string> ids;
        AssetStatusQuery::FilesPerAsset files;
    };
    std::unique_ptr<Question> m_question;
    QTimer* m_questionSlices = nullptr;
    // The answer being applied, the next row it goes to and what it changed so far.
    std::shared_ptr<const StatusAnswer> m_answer;
    std::size_t m_answerRow = 0;
    QStringList m_answerChanges;
    QTimer* m_answerSlices = nullptr;
};

}  // namespace hbrc::studio
