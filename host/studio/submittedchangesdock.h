#pragma once

#include <hbrcservices/revisiontypes.h>
#include <kel4/kelhandle.h>

#include <QDockWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QTreeView;
class QTreeWidget;
class QTreeWidgetItem;

namespace kel4 {
class IAsset;
}

namespace hbrc::studio {

class DifferenceView;
class ServerQuestion;
class StudioSession;
class SubmittedChangesModel;

// The "Submitted Changes" dock: the server's submitted changes, newest first, filtered by user and
// by text; a chosen change shows its description and files, and a chosen file the per-field
// difference its change made to the file's asset. A double-click on a file selects its asset.
// The list, the change and the difference are each asked off the UI thread, the list while the
// dock shows and the user has not switched to work offline.
class SubmittedChangesDock : public QDockWidget
{
    Q_OBJECT
public:
    enum FileColumn { FileNameColumn, ActionColumn, RevisionColumn, AssetColumn };

    explicit SubmittedChangesDock(StudioSession& session, QWidget* parent = nullptr);
    ~SubmittedChangesDock() override;

    // Asks for the list again when it shows (now, if it does).
    void refresh();

    SubmittedChangesModel& model() const { return *m_model; }
    QTreeView* changes() const { return m_changes; }
    QTreeWidget* files() const { return m_files; }
    DifferenceView* differences() const { return m_differences; }
    bool isPending() const;

signals:
    void assetChosen(const KELHandle<kel4::IAsset>& asset);

protected:
    void showEvent(QShowEvent* event) override;

private:
    // Asks for the list, unless no workspace is open or the user works offline.
    void askChanges();
    // No list and no question on its way, and why.
    void showNothing(const QString& why);
    void takeChanges(std::vector<revision::Changelist> changes);
    void applyFilter();
    void describeCurrent();
    void showChange(const revision::Changelist& change);
    void compareFile(QTreeWidgetItem* item);
    void chooseFile(QTreeWidgetItem* item);

    StudioSession& m_session;
    bool m_stale = true;
    SubmittedChangesModel* m_model = nullptr;
    QComboBox* m_user = nullptr;
    QLineEdit* m_text = nullptr;
    QLabel* m_state = nullptr;
    QTreeView* m_changes = nullptr;
    QPlainTextEdit* m_description = nullptr;
    QTreeWidget* m_files = nullptr;
    DifferenceView* m_differences = nullptr;
    revision::ChangelistId m_shownChange;
    ServerQuestion* m_listQuestion = nullptr;
    ServerQuestion* m_describeQuestion = nullptr;
    ServerQuestion* m_differenceQuestion = nullptr;
};

}  // namespace hbrc::studio
