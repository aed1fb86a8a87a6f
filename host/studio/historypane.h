#pragma once

#include "assethistory.h"

#include <kel4/kelhandle.h>

#include <QStringList>
#include <QWidget>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace hbrc::studio {

class AssetBrowserModel;
class AssetCommands;
class DifferenceView;
class ServerQuestion;
class StudioSession;

// The property pane's "History" tab: the selected asset's file history (its .kel file and its
// external files: revision, change, user, date, action, description), newest first, under a row
// for the edits in memory. Choosing rows shows a per-field difference (AssetHistory::choose says
// of what); "Get This Revision" brings the asset's files as of the chosen change. The history and
// each difference are asked off the UI thread, only while the tab shows and the user has not
// switched to work offline; a new selection replaces a question still waiting.
class HistoryPane : public QWidget
{
    Q_OBJECT
public:
    enum Column { FileColumn, RevisionColumn, ChangeColumn, UserColumn, DateColumn, ActionColumn, DescriptionColumn };

    HistoryPane(StudioSession& session, AssetCommands& commands, const AssetBrowserModel& model,
                QWidget* parent = nullptr);
    ~HistoryPane() override;

    // The asset to show (null: none); asked at once when the tab shows, else when it is shown.
    void showAsset(const KELHandle<kel4::IDbObject>& asset);
    // Asks for the shown asset's history again (after a submit).
    void refresh();

    QTreeWidget* revisions() const { return m_revisions; }
    DifferenceView* differences() const { return m_differences; }
    // True while a history or difference question is waiting for its answer.
    bool isPending() const;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void askHistory();
    void showHistory(const std::vector<std::string>& files, int code, const QString& error,
                     std::vector<std::vector<revision::FileRevision>> histories);
    void compareChosen();
    void getChosenRevision();
    // The changes of the chosen revision rows (once each) and whether the edits row is chosen.
    std::vector<revision::ChangelistId> chosenChanges(bool& edits) const;
    revision::ChangelistId haveChange() const;

    StudioSession& m_session;
    AssetCommands& m_commands;
    const AssetBrowserModel& m_model;
    KELHandle<kel4::IDbObject> m_asset;
    bool m_stale = true;
    AssetHistory m_history;
    QStringList m_chosen;  // the rows chosen before the history was asked again
    QLabel* m_state = nullptr;
    QTreeWidget* m_revisions = nullptr;
    QPushButton* m_getRevision = nullptr;
    DifferenceView* m_differences = nullptr;
    ServerQuestion* m_historyQuestion = nullptr;
    ServerQuestion* m_differenceQuestion = nullptr;
};

}  // namespace hbrc::studio
