// The scope guards change Qt state for their lifetime only: these tests check the state inside
// the scope and after it, on real objects, cursors and painters.
#include <qtextention/guards.h>

#include <QApplication>
#include <QCursor>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QWidget>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace {

// A sender with one signal, so that blocking can be observed through delivery.
class Emitter : public QObject
{
    Q_OBJECT
signals:
    void fired();
};

// Counts how often its slot ran.
class Counter : public QObject
{
    Q_OBJECT
public:
    int hits = 0;
public slots:
    void hit() { ++hits; }
};

QStringList g_warnings;

void recordWarning(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtWarningMsg)
        g_warnings << message;
}

TEST(BlockSignalGuard, BlocksOnlyTheGivenObjectsWhereverTheNullsStand)
{
    std::array<QObject, 10> objects;
    {
        BlockSignalGuard guard(nullptr, &objects[1], nullptr, nullptr, &objects[4], nullptr, nullptr, nullptr,
                               nullptr, &objects[9]);
        for (int i = 0; i < 10; ++i)
            EXPECT_EQ(objects[i].signalsBlocked(), i == 1 || i == 4 || i == 9) << "object " << i;
    }
    for (int i = 0; i < 10; ++i)
        EXPECT_FALSE(objects[i].signalsBlocked()) << "object " << i;
}

TEST(BlockSignalGuard, NestedGuardsUnblockAtTheOutermostAndKeepAnEarlierBlock)
{
    Emitter emitter;
    QObject alreadyBlocked;
    alreadyBlocked.blockSignals(true);
    QSignalSpy spy(&emitter, &Emitter::fired);
    {
        BlockSignalGuard outer(&emitter, &alreadyBlocked);
        {
            BlockSignalGuard inner(&emitter);
            emit emitter.fired();
        }
        EXPECT_TRUE(emitter.signalsBlocked());
        emit emitter.fired();
    }
    EXPECT_EQ(spy.count(), 0);
    EXPECT_FALSE(emitter.signalsBlocked());
    EXPECT_TRUE(alreadyBlocked.signalsBlocked());
    emit emitter.fired();
    EXPECT_EQ(spy.count(), 1);
}

TEST(BlockLocalSignalGuard, BreaksOneConnectionAndMakesItOnceAgain)
{
    Emitter emitter;
    Counter guarded;
    Counter other;
    ConnectAssert(&emitter, SIGNAL(fired()), &guarded, SLOT(hit()));
    ConnectAssert(&emitter, SIGNAL(fired()), &other, SLOT(hit()));
    {
        BlockLocalSignalGuard guard(&emitter, SIGNAL(fired()), &guarded, SLOT(hit()));
        emit emitter.fired();
        EXPECT_EQ(guarded.hits, 0);
        EXPECT_EQ(other.hits, 1);
    }
    emit emitter.fired();
    EXPECT_EQ(guarded.hits, 1);  // reconnected once, not twice
    EXPECT_EQ(other.hits, 2);
}

TEST(ConnectAssert, WarnsWhenTheConnectionCannotBeMade)
{
    Emitter emitter;
    Counter counter;
    g_warnings.clear();
    const QtMessageHandler previous = qInstallMessageHandler(recordWarning);
    ConnectAssert(&emitter, SIGNAL(fired()), &counter, SLOT(hit()));
    const int warningsForGoodConnect = g_warnings.size();
    ConnectAssert(&emitter, SIGNAL(noSuchSignal()), &counter, SLOT(hit()));
    qInstallMessageHandler(previous);

    EXPECT_EQ(warningsForGoodConnect, 0);
    EXPECT_TRUE(g_warnings.filter(QStringLiteral("ConnectAssert")).size() == 1) << g_warnings.join('\n').toStdString();
    emit emitter.fired();
    EXPECT_EQ(counter.hits, 1);
}

Qt::CursorShape overrideShape()
{
    const QCursor* cursor = QApplication::overrideCursor();
    return cursor ? cursor->shape() : Qt::BlankCursor;  // BlankCursor stands for "no override"
}

TEST(CursorGuard, ChangesNoCursorWithoutTopLevelWidgets)
{
    ASSERT_TRUE(QApplication::topLevelWidgets().isEmpty());
    {
        CursorGuard guard;
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(CursorGuard, PushesTheShapeWhileAWindowExistsAndPopsItAfterwards)
{
    QWidget window;
    {
        CursorGuard busy;
        EXPECT_EQ(overrideShape(), Qt::WaitCursor);
        {
            CursorGuard pointing(Qt::PointingHandCursor);
            EXPECT_EQ(overrideShape(), Qt::PointingHandCursor);
        }
        EXPECT_EQ(overrideShape(), Qt::WaitCursor);
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(CursorGuard, AsksForWindowsAgainAtDestruction)
{
    QApplication::setOverrideCursor(Qt::CrossCursor);  // somebody else's cursor
    auto guard = std::make_unique<CursorGuard>();      // no window yet: pushes nothing
    EXPECT_EQ(overrideShape(), Qt::CrossCursor);
    {
        QWidget window;
        guard.reset();  // a window exists now: pops the cursor it never pushed
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

class PainterOnImage : public ::testing::Test
{
protected:
    QImage image{40, 40, QImage::Format_ARGB32};
    QPainter painter;

    void SetUp() override
    {
        image.fill(Qt::white);
        painter.begin(&image);
    }
};

using AntialiasGuardTest = PainterOnImage;

TEST_F(AntialiasGuardTest, SetsTheHintForItsLifetimeOnlyAndLeavesOtherHints)
{
    for (const bool before : {false, true}) {
        for (const bool wanted : {false, true}) {
            painter.setRenderHint(QPainter::Antialiasing, before);
            painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
            {
                AntialiasGuard guard(&painter, wanted);
                EXPECT_EQ(painter.testRenderHint(QPainter::Antialiasing), wanted) << before << wanted;
            }
            EXPECT_EQ(painter.testRenderHint(QPainter::Antialiasing), before) << before << wanted;
            EXPECT_TRUE(painter.testRenderHint(QPainter::SmoothPixmapTransform));
        }
    }
}

using PainterStateGuardTest = PainterOnImage;

TEST_F(PainterStateGuardTest, RestoresPenAndTransform)
{
    painter.setPen(Qt::red);
    {
        PainterStateGuard guard(&painter);
        painter.setPen(Qt::blue);
        painter.translate(5, 5);
    }
    EXPECT_EQ(painter.pen().color(), QColor(Qt::red));
    EXPECT_TRUE(painter.transform().isIdentity());
}

using ClipGuardTest = PainterOnImage;

TEST_F(ClipGuardTest, EveryFormReplacesTheClipAndGivesTheOuterOneBack)
{
    const QRect outer(0, 0, 30, 30);
    const QRect inner(10, 10, 5, 5);
    const QRectF innerF(inner);
    using Make = std::function<std::unique_ptr<ClipGuard>(QPainter*)>;
    const std::vector<std::pair<const char*, Make>> forms = {
        {"QRect", [&](QPainter* p) { return std::make_unique<ClipGuard>(p, inner); }},
        {"QRectF", [&](QPainter* p) { return std::make_unique<ClipGuard>(p, innerF); }},
        {"QRectF*", [&](QPainter* p) { return std::make_unique<ClipGuard>(p, &innerF); }},
        {"QRegion", [&](QPainter* p) { return std::make_unique<ClipGuard>(p, QRegion(inner)); }},
    };
    for (const auto& [name, make] : forms) {
        painter.setClipRect(outer);
        {
            auto guard = make(&painter);
            EXPECT_TRUE(painter.hasClipping()) << name;
            EXPECT_EQ(painter.clipRegion(), QRegion(inner)) << name;
        }
        EXPECT_TRUE(painter.hasClipping()) << name;
        EXPECT_EQ(painter.clipRegion(), QRegion(outer)) << name;
    }
}

TEST_F(ClipGuardTest, NullRectangleTurnsClippingOffForItsLifetime)
{
    painter.setClipRect(QRect(0, 0, 10, 10));
    {
        ClipGuard guard(&painter, static_cast<const QRectF*>(nullptr));
        EXPECT_FALSE(painter.hasClipping());
        painter.fillRect(image.rect(), Qt::black);
    }
    painter.fillRect(image.rect(), Qt::red);
    painter.end();
    EXPECT_EQ(image.pixelColor(20, 20), QColor(Qt::black));  // unclipped inside the guard
    EXPECT_EQ(image.pixelColor(5, 5), QColor(Qt::red));      // clipped to the old rect after it
}

TEST_F(ClipGuardTest, NestedGuardsRestoreInnermostFirstAndAnUnclippedPainterStillPaintsEverywhere)
{
    {
        ClipGuard outer(&painter, QRect(0, 0, 20, 20));
        {
            ClipGuard inner(&painter, QRect(0, 0, 5, 5));
            EXPECT_EQ(painter.clipRegion(), QRegion(0, 0, 5, 5));
        }
        EXPECT_EQ(painter.clipRegion(), QRegion(0, 0, 20, 20));
    }
    painter.fillRect(image.rect(), Qt::black);
    painter.end();
    EXPECT_EQ(image.pixelColor(35, 35), QColor(Qt::black));
}

}  // namespace

#include "tst_guards.moc"
