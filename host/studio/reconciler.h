#pragma once

#include "reconcilework.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace hbrc::studio {

class OfflineWork;
class RevisionOperations;
struct OperationOutcome;

// Shows the Reconcile dialog; nothing when the user cancels.
using ReconcilePrompt = std::function<std::optional<ReconcileChoice>(const ReconcileSurvey&)>;

// Reconcile Offline Work, without widgets: the survey of what changed without being opened runs on
// the operations queue, the prompt lets the user choose the files and the changelist, the
// reconcile runs on the queue too; only the files it opened leave the offline journal.
class Reconciler : public QObject
{
    Q_OBJECT
public:
    Reconciler(OfflineWork& offline, RevisionOperations& operations, ReconcilePrompt prompt, QObject* parent = nullptr);

    // Starts the survey; nothing while a reconcile runs.
    void start();
    bool isBusy() const { return m_step != Step::Idle; }

signals:
    void message(int level, const QString& text);
    // The survey was asked for.
    void started();
    // The server refused the reconcile; nothing was opened. why names the files and who holds them.
    void refused(const QString& why);

private:
    enum class Step { Idle, Surveying, Reconciling };
    void takeOutcome(const OperationOutcome& outcome);
    void surveyed();

    OfflineWork& m_offline;
    RevisionOperations& m_operations;
    ReconcilePrompt m_prompt;
    Step m_step = Step::Idle;
    std::shared_ptr<ReconcileSurvey> m_survey;
    std::shared_ptr<ReconcileWork::Files> m_opened;
};

}  // namespace hbrc::studio
