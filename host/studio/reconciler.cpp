#include "reconciler.h"

#include "keptcontent.h"
#include "offlinework.h"
#include "revisionoperations.h"

#include <hbrcdatamodel/offlinejournal.h>
#include <log/log.h>

namespace hbrc::studio {

namespace {

QString surveyName()
{
    return Reconciler::tr("Listing the work done offline");
}

QString reconcileName()
{
    return Reconciler::tr("Reconcile");
}

}  // namespace

Reconciler::Reconciler(OfflineWork& offline, RevisionOperations& operations, ReconcilePrompt prompt, QObject* parent)
    : QObject(parent), m_offline(offline), m_operations(operations), m_prompt(std::move(prompt))
{
    connect(&m_operations, &RevisionOperations::finished, this, &Reconciler::takeOutcome);
}

void Reconciler::start()
{
    if (isBusy() || !m_offline.journal())
        return;
    recoverKept();
    ReconcileWork::Files journalled;
    for (const auto& [file, change] : m_offline.journal()->Entries())
        journalled.push_back(file);
    m_step = Step::Surveying;
    m_survey = std::make_shared<ReconcileSurvey>();
    m_operations.run(surveyName(), ReconcileWork::survey(std::move(journalled), m_survey));
    emit started();
}

void Reconciler::takeOutcome(const OperationOutcome& outcome)
{
    const Step step = m_step;
    if (step == Step::Idle || outcome.what != (step == Step::Surveying ? surveyName() : reconcileName()))
        return;
    m_step = Step::Idle;
    if (!outcome.result.ok()) {
        if (step == Step::Reconciling) {
            recoverKept();
            emit refused(QString::fromStdString(outcome.result.error));
        }
        return;
    }
    if (step == Step::Surveying) {
        // The dialog waits until the queue has delivered this outcome.
        QMetaObject::invokeMethod(this, &Reconciler::surveyed, Qt::QueuedConnection);
        return;
    }
    recoverKept();
    m_offline.forget(*m_opened);
}

void Reconciler::surveyed()
{
    const ReconcileSurvey survey = std::move(*m_survey);
    m_offline.forget(survey.settled);  // a file whose content is kept stays, named with its copy
    if (!survey.scanProblem.empty())
        emit message(Log::eWarning, tr("The workspace was not scanned for changes (%1): only the files recorded "
                                       "offline are listed")
                                        .arg(QString::fromStdString(survey.scanProblem)));
    if (survey.items.empty()) {
        emit message(Log::eMessage, tr("Nothing to reconcile: every file is open or unchanged"));
        return;
    }
    std::optional<ReconcileChoice> choice = m_prompt(survey);
    if (!choice || choice->items.empty() || !keepContent(*choice))
        return;
    m_step = Step::Reconciling;
    m_opened = std::make_shared<ReconcileWork::Files>();
    m_operations.run(reconcileName(), ReconcileWork::reconcile(std::move(*choice), m_opened));
}

bool Reconciler::keepContent(ReconcileChoice& choice)
{
    if (!m_offline.journal())
        return false;
    host::OfflineJournal& journal = *m_offline.journal();
    for (const ReconcileItem& item : choice.items) {
        if (!item.keepsMine())
            continue;
        std::string error;
        if (!journal.Keep(item.localPath, error)) {
            emit message(Log::eError, tr("Nothing was reconciled: %1").arg(QString::fromStdString(error)));
            recoverKept();
            return false;
        }
        choice.keptCopies[item.localPath] = journal.KeptCopyOf(item.localPath);
    }
    return true;
}

void Reconciler::recoverKept()
{
    if (!m_offline.journal())
        return;
    for (const QString& problem : KeptContent::recover(*m_offline.journal()))
        emit message(Log::eWarning, problem);
}

}  // namespace hbrc::studio
