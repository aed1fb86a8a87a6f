#include "demotour.h"

#include "assetbrowser.h"
#include "assetbrowsermodel.h"
#include "demodepot.h"
#include "differenceview.h"
#include "historypane.h"
#include "logdock.h"
#include "mainwindow.h"
#include "pendingchangespane.h"
#include "propertypane.h"
#include "revisionoperations.h"
#include "studiosession.h"
#include "submittedchangesdock.h"
#include "submittedchangesmodel.h"

#include <hbrcdatamodel/workspace.h>
#include <hbrcservices/revisioncontrolservices.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <log/log.h>
#include <qtextention/qcolorcontrol.h>
#include <qtextention/qfunctoraction.h>

#include <QApplication>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QDialogButtonBox>
#include <QDir>
#include <QEventLoop>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>

#include <functional>

namespace hbrc::studio {

namespace {

// Answers the next modal dialog as the tour scripted it, from the event loop that the dialog runs.
class DialogAnswer : public QObject
{
public:
    using Handler = std::function<void(QWidget* dialog)>;

    explicit DialogAnswer(Handler handler) : m_handler(std::move(handler))
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            QWidget* modal = QApplication::activeModalWidget();
            if (!modal || m_answered)
                return;
            m_answered = true;
            m_timer.stop();
            m_handler(modal);
        });
        m_timer.start(50);
    }
    bool answered() const { return m_answered; }

private:
    Handler m_handler;
    QTimer m_timer;
    bool m_answered = false;
};

class Tour
{
public:
    Tour(QTextStream& out, const QString& shots, const std::string& server) : m_out(out), m_shots(shots), m_server(server) {}

    int run()
    {
        QTemporaryDir scratch;
        Expect(scratch.isValid(), "cannot create a scratch folder");
        DemoServer depot(scratch.path(), m_server);
        const int assets = SeedSampleWorkspace(depot);
        step(QStringLiteral("A demo depot with alice and bob and a sample workspace of %1 assets in %2")
                 .arg(assets)
                 .arg(scratch.path()));

        // The transcript says what happens; the host log shows in the window's log dock.
        Log::Singleton::Instance().SetStderrEnabled(false);
        StudioSession session(scratch.filePath(QStringLiteral("preferences.ini")));
        std::string error;
        Expect(session.start(error), error);
        session.storeAccount({depot.path(), "alice", depot.workspace("alice"), {}});
        MainWindow window(session);
        window.show();
        m_window = &window;
        m_session = &session;

        // The start page, its first link with the keyboard focus.
        if (QWidget* firstLink = window.findChild<QWidget*>(QStringLiteral("openFolderLink"))) {
            window.activateWindow();
            firstLink->setFocus();
        }
        shot("tour-0-start-page.png");

        step(QStringLiteral("alice opens her workspace and logs in"));
        DialogAnswer login([this](QWidget* dialog) {
            auto* password = dialog->findChild<QLineEdit*>(QStringLiteral("password"));
            auto* buttons = dialog->findChild<QDialogButtonBox*>();
            Expect(password && buttons, "expected the Log In dialog");
            m_out << "  \"" << dialog->windowTitle() << "\" dialog: alice types her password and presses OK\n";
            password->setText(QStringLiteral("alice-pw"));
            shotOf(dialog, "tour-0-log-in.png");
            buttons->button(QDialogButtonBox::Ok)->click();
        });
        Expect(window.openWorkspace(depot.folder("alice")), "cannot open alice's workspace");
        while (window.isOpening())
            QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        Expect(login.answered(), "no Log In dialog appeared");
        waitForStatus();
        m_out << "  " << window.model().rowCount() << " assets in the browser; session: " << window.sessionState()
              << "\n";
        printStatus({"Rock", "Sky", "Oak"});
        shot("tour-1-open.png");
        shotOf(window.statusBar(), "tour-1-status-bar.png");

        step(QStringLiteral("bob checks Rock out in his own workspace"));
        ExpectDone(depot.bob().edit(depot.bobTicket(), {depot.folderPath("bob") + "/Rock.kel"}, ""), "bob edits Rock");
        window.refreshStatus();
        waitForStatus();
        printStatus({"Rock"});
        shot("tour-2-bob-holds-rock.png");

        step(QStringLiteral("alice's settings: check out without asking, into her changelist \"look dev\""));
        std::string changelist;
        Expect(session.services().dataControl->CreateChangeList("look dev", changelist, error).IsSuccess(), error);
        session.settings()->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
        session.settings()->SetChangeListToUseWhenAutoCheckingOut(changelist);
        m_out << "  pending changelist " << QString::fromStdString(changelist) << "\n";

        step(QStringLiteral("alice edits Rock's colour: the plug-in cannot check it out and names bob"));
        select("Rock");
        DialogAnswer refusal([this](QWidget* dialog) {
            auto* box = qobject_cast<QMessageBox*>(dialog);
            Expect(box, "expected a message box");
            m_out << "  \"" << box->windowTitle() << "\" box:\n";
            for (const QString& line : box->text().split('\n', Qt::SkipEmptyParts))
                m_out << "    " << line << "\n";
            shotOf(box, "tour-3-rock-refused.png");
            m_out << "  alice presses Cancel\n";
            box->button(QMessageBox::Cancel)->click();
        });
        editColour("#b0483a");
        Expect(refusal.answered(), "no dialog asked about Rock");
        m_out << "  Rock's colour is still " << colourShown() << "\n";
        waitForStatus();

        step(QStringLiteral("alice edits Sky's colour: checked out into \"look dev\" without a dialog"));
        select("Sky");
        editColour("#ff8c42");
        waitForStatus();
        m_out << "  Sky's colour is " << colourShown() << "; Edit menu: "
              << window.action(QStringLiteral("undo"))->text().remove('&') << "\n";
        printStatus({"Sky"});
        shot("tour-4-sky-checked-out.png");

        step(QStringLiteral("alice saves (Ctrl+S): the save hooks run"));
        Expect(window.save(), "the save failed");
        waitForStatus();
        m_out << "  " << lastLogLine() << "\n";
        printStatus({"Sky"});

        step(QStringLiteral("alice creates Meadow and marks it for add"));
        Expect(window.newAsset(QStringLiteral("Meadow")), "cannot create Meadow");
        waitForStatus();
        printStatus({"Meadow"});
        window.action(QStringLiteral("markForAdd"))->trigger();
        waitForStatus();
        m_out << "  " << lastLogLine() << "\n";
        Expect(window.save(), "the save of Meadow failed");
        waitForStatus();
        m_out << "  " << lastLogLine() << "\n";
        printStatus({"Meadow"});
        shot("tour-5-meadow-marked-for-add.png");

        step(QStringLiteral("the Pending Changes pane: \"look dev\" holds Sky and Meadow"));
        waitForOperations();
        const PendingChangesModel& pending = window.pendingChanges().model();
        for (int row = 0; row < pending.rowCount(); ++row) {
            const QModelIndex changelist = pending.index(row, 0);
            m_out << "  " << changelist.data().toString() << "\n";
            for (int file = 0; file < pending.rowCount(changelist); ++file)
                m_out << "    " << pending.index(file, PendingChangesModel::NameColumn, changelist).data().toString()
                      << " (" << pending.index(file, PendingChangesModel::ActionColumn, changelist).data().toString()
                      << ", " << pending.index(file, PendingChangesModel::AssetColumn, changelist).data().toString()
                      << ")\n";
        }
        window.pendingChanges().view()->setCurrentIndex(pending.fileIndex(depot.folderPath("alice") + "/Sky.kel"));
        shot("tour-6-pending-changes.png");

        step(QStringLiteral("bob submits a new colour for Rock; alice asks who changed it, and what it was before"));
        // bob has had Rock open since he checked it out.
        SubmitFields(depot.bob(), depot.bobTicket(), depot.folderPath("bob") + "/Rock.kel", {{"colour", "#5f8a4a"}},
                     "Moss on the north face");
        window.refreshStatus();
        waitForStatus();
        select("Rock");
        // Room for the history beside the browser: the picture is of the property pane.
        window.resize(1400, 860);
        if (auto* splitter = window.findChild<QSplitter*>(QStringLiteral("workSplitter")))
            splitter->setSizes({420, 980});
        window.propertyPane().setCurrentWidget(&window.history());
        QTreeWidget* revisions = window.history().revisions();
        waitUntil([&] { return !window.history().isPending() && revisions->topLevelItemCount() > 1; });
        for (int row = 0; row < revisions->topLevelItemCount(); ++row) {
            const QTreeWidgetItem* revision = revisions->topLevelItem(row);
            const QString user = revision->text(HistoryPane::UserColumn);  // none on "your edits"
            m_out << "  " << revision->text(HistoryPane::RevisionColumn) << " " << revision->text(HistoryPane::FileColumn)
                  << (user.isEmpty() ? QString() : QStringLiteral(" by ") + user) << ": "
                  << revision->text(HistoryPane::DescriptionColumn) << "\n";
        }
        revisions->setCurrentItem(revisions->topLevelItem(1));
        waitUntil([&] { return !window.history().isPending(); });
        printDifferences(*window.history().differences());
        shotOf(&window.propertyPane(), "tour-7-history.png");

        step(QStringLiteral("alice opens Submitted Changes (Revision Control menu)"));
        window.action(QStringLiteral("submittedChanges"))->trigger();
        SubmittedChangesDock& submitted = window.submittedChanges();
        window.resizeDocks({&submitted}, {760}, Qt::Horizontal);
        waitUntil([&] { return !submitted.isPending() && submitted.model().rowCount() > 0; });
        submitted.changes()->setCurrentIndex(submitted.model().index(0, 0));
        waitUntil([&] { return !submitted.isPending() && submitted.files()->topLevelItemCount() > 0; });
        for (int row = 0; row < submitted.model().rowCount(); ++row)
            m_out << "  " << submitted.model().index(row, SubmittedChangesModel::ChangeColumn).data().toString() << " "
                  << submitted.model().index(row, SubmittedChangesModel::UserColumn).data().toString() << ": "
                  << submitted.model().index(row, SubmittedChangesModel::DescriptionColumn).data().toString() << "\n";
        printDifferences(*submitted.differences());
        shotOf(&submitted, "tour-8-submitted-changes.png");

        step(QStringLiteral("alice works offline: she edits Leaf and Rock, which bob changed meanwhile, and saves"));
        window.action(QStringLiteral("workOffline"))->trigger();
        m_out << "  session: " << window.sessionState() << "\n";
        select("Leaf");
        editColour("#3f9a4a");
        select("Rock");
        editColour("#8a6c5c");
        DialogAnswer makeWritable([this](QWidget* dialog) {
            for (auto* button : dialog->findChildren<QPushButton*>())
                if (button->text().remove('&') == QLatin1String("Make Writable")) {
                    m_out << "  \"" << dialog->windowTitle() << "\" dialog: alice presses Make Writable\n";
                    return button->click();
                }
            Expect(false, "expected the save's question with Make Writable");
        });
        Expect(window.save(), "the offline save failed");
        Expect(makeWritable.answered(), "the offline save asked nothing");
        m_out << "  " << lastLogLine() << "\n";

        step(QStringLiteral("back online: Reconcile Offline Work lists her files and names bob on Rock"));
        window.action(QStringLiteral("workOffline"))->trigger();
        waitForStatus();
        DialogAnswer reconcile([this](QWidget* dialog) {
            auto* files = dialog->findChild<QTreeWidget*>(QStringLiteral("files"));
            auto* changelists = dialog->findChild<QComboBox*>(QStringLiteral("changelist"));
            Expect(files && changelists, "expected the Reconcile dialog");
            m_out << "  \"" << dialog->windowTitle() << "\" dialog:\n";
            for (int row = 0; row < files->topLevelItemCount(); ++row) {
                QTreeWidgetItem* item = files->topLevelItem(row);
                m_out << "    " << item->text(0) << " (" << item->text(1) << "): " << item->text(2) << "\n";
                // Rock, which bob changed, stays out; alice talks to him first.
                if (!item->text(0).startsWith(QLatin1String("Leaf")))
                    item->setCheckState(0, Qt::Unchecked);
            }
            changelists->setCurrentIndex(changelists->findText(QStringLiteral("look dev"), Qt::MatchEndsWith));
            files->setFocus();
            shotOf(dialog, "tour-9-reconcile.png");
            m_out << "  alice reconciles Leaf into \"look dev\"\n";
            dialog->findChild<QPushButton*>(QStringLiteral("reconcile"))->click();
        });
        window.action(QStringLiteral("reconcile"))->trigger();
        waitUntil([&] { return reconcile.answered(); });
        Expect(reconcile.answered(), "no Reconcile dialog appeared");
        waitForOperations();
        m_out << "  " << lastLogLine() << "\n";
        printStatus({"Leaf"});

        step(QStringLiteral("done"));
        m_out << "Status questions asked: " << m_statusAnswers << ", round trips for them: "
              << window.model().statusQuery().roundTrips() << "\n";
        if (!m_written.isEmpty())
            m_out << "Pictures of the window:\n  " << m_written.join(QStringLiteral("\n  ")) << "\n";
        window.close();
        Log::Singleton::Instance().SetStderrEnabled(true);
        return 0;
    }

private:
    void step(const QString& title) { m_out << "\n== " << title << "\n" << Qt::flush; }

    void waitForStatus()
    {
        QEventLoop loop;
        QObject::connect(m_window, &MainWindow::statusRefreshed, &loop, &QEventLoop::quit);
        QTimer::singleShot(20000, &loop, &QEventLoop::quit);
        if (m_window->model().isStatusPending())
            loop.exec();
        ++m_statusAnswers;
    }

    void waitForOperations()
    {
        QEventLoop loop;
        QObject::connect(&m_window->operations(), &RevisionOperations::busyChanged, &loop, &QEventLoop::quit);
        QTimer::singleShot(20000, &loop, &QEventLoop::quit);
        if (m_window->operations().isBusy())
            loop.exec();
        waitForStatus();
    }

    // Until done holds, the window's events running meanwhile; at most 20 s.
    static void waitUntil(const std::function<bool()>& done)
    {
        QDeadlineTimer deadline(20000);
        while (!done() && !deadline.hasExpired())
            QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    }

    void printDifferences(const DifferenceView& view)
    {
        const DifferenceModel& rows = view.differences();
        for (int row = 0; row < rows.rowCount(); ++row) {
            m_out << "  ";
            for (int column = 0; column < DifferenceModel::ColumnCount; ++column)
                m_out << (column ? " | " : "") << rows.index(row, column).data().toString();
            m_out << "\n";
        }
    }

    KELHandle<kel4::IAsset> asset(const char* name) const
    {
        const KELHandle<kel4::IAsset> found = m_session->currentWorkspace()->FindAsset(name);
        Expect(!found.IsNull(), std::string("no asset ") + name);
        return found;
    }

    void select(const char* name)
    {
        m_window->browser().selectAsset(asset(name));
        QApplication::processEvents();
    }

    QColorControl* colourControl() const
    {
        auto* control = qobject_cast<QColorControl*>(m_window->propertyPane().editor(QStringLiteral("colour")));
        Expect(control, "the property pane shows no colour field");
        return control;
    }

    // Types the colour into the selected asset's colour field and confirms it with Return.
    void editColour(const QString& colour)
    {
        QLineEdit* name = colourControl()->nameEdit();
        name->setFocus();
        name->setText(colour);
        emit name->editingFinished();
        QApplication::processEvents();
    }

    QString colourShown() const { return colourControl()->color().name(); }

    void printStatus(std::initializer_list<const char*> names)
    {
        const AssetBrowserModel& model = m_window->model();
        for (const char* name : names)
            m_out << "  " << name << ": "
                  << model.data(model.index(model.rowOf(asset(name)), AssetBrowserModel::StatusColumn)).toString()
                  << "\n";
    }

    QString lastLogLine() const
    {
        QListWidget* list = m_window->logDock().list();
        return list->count() ? list->item(list->count() - 1)->text() : QString();
    }

    void shot(const char* file) { shotOf(m_window, file); }

    void shotOf(QWidget* widget, const char* file)
    {
        if (m_shots.isEmpty() || QGuiApplication::platformName() != QLatin1String("offscreen"))
            return;
        QApplication::processEvents();
        const QString path = QDir(m_shots).filePath(QString::fromLatin1(file));
        if (QDir().mkpath(m_shots) && widget->grab().save(path))
            m_written << path;
    }

    QTextStream& m_out;
    QString m_shots;
    std::string m_server;
    MainWindow* m_window = nullptr;
    StudioSession* m_session = nullptr;
    QStringList m_written;
    int m_statusAnswers = 0;
};

}  // namespace

int RunTour(QTextStream& out, const QString& shotsFolder, const std::string& server)
{
    try {
        return Tour(out, shotsFolder, server).run();
    } catch (const std::exception& error) {
        out << "The tour stopped: " << error.what() << "\n";
        return 1;
    }
}

}  // namespace hbrc::studio
