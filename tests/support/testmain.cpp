// The main of every test executable: one QApplication (offscreen unless the caller chose a
// platform), settings and kept log-ins away from the user's own, and a check after each test
// that it left no top-level widget behind.
#include <QApplication>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

class NoLeakedWindows : public ::testing::EmptyTestEventListener
{
    void OnTestEnd(const ::testing::TestInfo& info) override
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const QWidgetList leftovers = QApplication::topLevelWidgets();
        QStringList names;
        for (QWidget* w : leftovers) {
            // Popups and tool tips that Qt keeps for reuse are not the test's widgets.
            if (w->windowType() == Qt::ToolTip || w->inherits("QMenu") || w->inherits("QComboBoxPrivateContainer"))
                continue;
            if (w->parentWidget())
                continue;
            names << QString::fromLatin1(w->metaObject()->className()) + " '" + w->windowTitle() + "'";
            delete w;
        }
        if (!names.isEmpty()) {
            ADD_FAILURE() << info.test_suite_name() << "." << info.name()
                          << " left top-level widgets: " << names.join(", ").toStdString();
        }
    }
};

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("HBRC_TEST_MODE", "1");
    QStandardPaths::setTestModeEnabled(true);
    // Log-ins kept by the code under test go to a file of this run, never the user's own.
    const QTemporaryDir tickets;
    if (qEnvironmentVariableIsEmpty("HBDEPOT_TICKETS"))
        qputenv("HBDEPOT_TICKETS", tickets.filePath(QStringLiteral("tickets")).toLocal8Bit());
    QApplication app(argc, argv);
    ::testing::InitGoogleMock(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new NoLeakedWindows);
    return RUN_ALL_TESTS();
}
