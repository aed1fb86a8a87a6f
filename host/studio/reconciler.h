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
// reconcile runs on the queue too; only the files it opened leave the offline journal. The content
// of a file that keeps it over a newer revision is kept by the journal before the reconcile runs,
// and what an interrupted one left is put right before the survey.
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
    // Keeps the content of the chosen files that keep it over a newer revision; false when one
    // cannot be kept.
    bool keepContent(ReconcileChoice& choice);
    // Puts kept content back where a reconcile left it out, and lets the copies go that are back.
    void recoverKept();

    OfflineWork& m_offline;
    RevisionOperations& m_operations;
    ReconcilePrompt m_prompt;
    Step m_step = Step::Idle;
    std::shared_ptr<ReconcileSurvey> m_survey;
    std::shared_ptr<ReconcileWork::Files> m_opened;
};

}  // namespace hbrc::studio
