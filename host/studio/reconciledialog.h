#pragma once

#include "reconcilework.h"

#include <QDialog>

#include <optional>
#include <vector>

class QComboBox;
class QDialogButtonBox;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace hbrc::studio {

// "Reconcile Offline Work": the files changed without being opened, each with the action it needs
// and what happened on the server meanwhile, all checked; the changelist they go into (a new one
// with a description, or a pending one). Reconcile is the default button; Escape cancels.
class ReconcileDialog : public QDialog
{
    Q_OBJECT
public:
    // root: the workspace folder, of which files are shown relative.
    ReconcileDialog(const ReconcileSurvey& survey, const std::vector<revision::PendingChangelist>& pending,
                    const QString& root, QWidget* parent);

    ReconcileChoice choice() const;

    static std::optional<ReconcileChoice> ask(QWidget* parent, const ReconcileSurvey& survey,
                                              const std::vector<revision::PendingChangelist>& pending,
                                              const QString& root);

private:
    void updateButtons();

    std::vector<ReconcileItem> m_items;
    QTreeWidget* m_files = nullptr;
    QComboBox* m_changelist = nullptr;
    QLineEdit* m_description = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
    QPushButton* m_reconcile = nullptr;
};

}  // namespace hbrc::studio
