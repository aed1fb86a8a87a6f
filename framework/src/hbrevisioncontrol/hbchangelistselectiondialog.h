#pragma once

#include <kel4/idatacontrol.h>
#include <kel4/kelptr.h>

#include <QDialog>
#include <QString>

#include <set>
#include <string>

class QBoxLayout;
class QCheckBox;
class QComboBox;
class QFileListWidget;
class QLabel;
class QPushButton;
class QTextEdit;

// The modal dialog that decides what happens to assets about to be edited, saved or added.
// In changelist mode ("Select Pending ChangeList") the user picks a pending changelist of the
// session, the default one, or "New" with a description; in read-only mode ("Read-Only Assets")
// only the buttons the caller switches on are offered besides Cancel. Build it on the stack,
// configure it, run exec() once and read the choice back. It writes no setting itself.
class hbChangeListSelectionDialog : public QDialog
{
    Q_OBJECT
public:
    // What exec() returns. These are not QDialog's Accepted/Rejected values.
    enum ResultCode {
        UseChangeList = 0,  // Check Out: use getChangeList()
        ContinueWithoutAction = 1,
        Cancelled = 2,      // Cancel, Escape, closing the window
        MakeWritable = 3
    };

    hbChangeListSelectionDialog(KELPtr<kel4::IDataControl> dataControl, QString assetsText,
                                const std::set<std::string>& files, bool filesVisible, bool selectChangeList,
                                QWidget* parent = nullptr);
    ~hbChangeListSelectionDialog() override;

    // The chosen changelist; empty for the default changelist or when nothing was chosen.
    std::string getChangeList() const { return m_changeList; }
    // True when the user ticked "Don't show this dialog again".
    bool getDontShowThisDialogAgainCheckBox() const;

    void setCheckOutText(const QString& text);
    // Shows text above everything else; an empty text hides the label.
    void setInfo(const QString& text);
    // Showing either extra button makes the check box speak of "this option", hiding either of
    // "this changelist"; the last call decides.
    void includeContinueButton(bool include);
    void includeMakeWritableButton(bool include);

public slots:
    // Refills the combo: "New", "Default", then each pending changelist of the session until the
    // first one whose description cannot be read. "Default" ends up selected.
    void refreshData();
    // Runs the dialog with the arrow cursor, over any wait cursor the caller set.
    int exec() override;
    void accept() override;
    void reject() override;
    void continueSlot();
    void makeWritableSlot();
    void showFiles();
    void showFilesInExplorer();
    void onChangeListChanged(int index);

private:
    void buildChangeListControls(QBoxLayout* layout);
    void buildButtonRow(QBoxLayout* layout, bool selectChangeList);
    void setOptionCheckBoxForOption(bool option);
    // Makes the first button that can act the one Return presses.
    void updateDefaultButton();

    KELPtr<kel4::IDataControl> m_dataControl;
    std::set<std::string> m_files;
    std::string m_changeList;
    QLabel* m_infoLabel = nullptr;
    QComboBox* m_changeListCombo = nullptr;
    QTextEdit* m_descriptionEdit = nullptr;
    QFileListWidget* m_fileList = nullptr;
    QCheckBox* m_optionCheckBox = nullptr;
    QPushButton* m_checkOutButton = nullptr;
    QPushButton* m_continueButton = nullptr;
    QPushButton* m_showFilesButton = nullptr;
    QPushButton* m_makeWritableButton = nullptr;
    QPushButton* m_cancelButton = nullptr;
};
