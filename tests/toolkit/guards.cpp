// The scope guards change Qt state for their lifetime only: the state is checked inside the
// scope and after it, on real objects, cursors and painters.
#include "toolkittest.h"

#include <qtextention/guards.h>

namespace {

class Counter : public QObject
{
    Q_OBJECT
public:
    int hits = 0;
public slots:
    void hit() { ++hits; }
};

TEST(BlockSignalGuard, BlocksTheGivenObjectsWhereverNullsStandAndNestsWithEarlierBlocks)
{
    std::array<QObject, 10> objects;
    objects[4].blockSignals(true);
    QSignalSpy spy(&objects[9], &QObject::objectNameChanged);
    {
        BlockSignalGuard outer(nullptr, &objects[1], nullptr, nullptr, &objects[4], nullptr, nullptr, nullptr,
                               nullptr, &objects[9]);
        {
            BlockSignalGuard inner(&objects[9]);
        }
        for (int i = 0; i < 10; ++i)
            EXPECT_EQ(objects[i].signalsBlocked(), i == 1 || i == 4 || i == 9) << "object " << i;
        objects[9].setObjectName(QStringLiteral("blocked"));
    }
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(objects[i].signalsBlocked(), i == 4) << "object " << i;
    objects[9].setObjectName(QStringLiteral("delivered"));
    EXPECT_EQ(spy.count(), 1);
}

TEST(BlockLocalSignalGuard, BreaksOneConnectionAndMakesItOnceAgainWhileConnectAssertWarnsOnlyOnFailure)
{
    QtWarnings warnings(QStringLiteral("ConnectAssert"));
    QObject sender;
    Counter guarded, other;
    ConnectAssert(&sender, SIGNAL(objectNameChanged(QString)), &guarded, SLOT(hit()));
    ConnectAssert(&sender, SIGNAL(objectNameChanged(QString)), &other, SLOT(hit()));
    {
        BlockLocalSignalGuard guard(&sender, SIGNAL(objectNameChanged(QString)), &guarded, SLOT(hit()));
        sender.setObjectName(QStringLiteral("a"));
    }
    sender.setObjectName(QStringLiteral("b"));
    EXPECT_EQ(guarded.hits, 1);  // missed the first, reconnected once (not twice) for the second
    EXPECT_EQ(other.hits, 2);
    EXPECT_TRUE(warnings.texts.isEmpty()) << "good connections stay silent";
    ConnectAssert(&sender, SIGNAL(noSuchSignal()), &guarded, SLOT(hit()));
    EXPECT_EQ(warnings.texts.size(), 1);
}

Qt::CursorShape overrideShape()
{
    const QCursor* cursor = QApplication::overrideCursor();
    return cursor ? cursor->shape() : Qt::BlankCursor;  // BlankCursor stands for "no override"
}

TEST(CursorGuard, PushesOnlyWhileAWindowExistsAndAsksForWindowsAgainAtDestruction)
{
    {
        CursorGuard headless;
        EXPECT_EQ(overrideShape(), Qt::BlankCursor);
    }
    auto early = std::make_unique<CursorGuard>();      // no window yet: pushes nothing
    QApplication::setOverrideCursor(Qt::CrossCursor);  // somebody else's cursor
    {
        QWidget window;
        {
            CursorGuard busy;
            CursorGuard pointing(Qt::PointingHandCursor);
            EXPECT_EQ(overrideShape(), Qt::PointingHandCursor);
        }
        EXPECT_EQ(overrideShape(), Qt::CrossCursor);
        early.reset();  // a window exists now: pops the cursor it never pushed
    }
    EXPECT_EQ(overrideShape(), Qt::BlankCursor);
}

TEST(AntialiasGuard, SetsTheHintForItsLifetimeOnly)
{
    QImage image(4, 4, QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    for (const bool before : {false, true}) {
        for (const bool wanted : {false, true}) {
            painter.setRenderHint(QPainter::Antialiasing, before);
            {
                AntialiasGuard guard(&painter, wanted);
                EXPECT_EQ(painter.testRenderHint(QPainter::Antialiasing), wanted) << before << wanted;
            }
            EXPECT_EQ(painter.testRenderHint(QPainter::Antialiasing), before) << before << wanted;
            EXPECT_TRUE(painter.testRenderHint(QPainter::SmoothPixmapTransform));
        }
    }
}

// Each form replaces the clip for its lifetime and gives back the one before: the outer clip, or
// none at all (a delegate paints cell after cell with one painter: a clip left behind where nothing
// was clipped cuts every later cell away).
TEST(ClipGuard, EveryFormReplacesTheClipAndGivesTheOuterOneBack)
{
    QImage image(40, 40, QImage::Format_ARGB32);
    QPainter painter(&image);
    const QRect inner(10, 10, 5, 5);
    const QRectF innerF(inner);
    using Make = std::function<std::unique_ptr<ClipGuard>()>;
    const std::tuple<const char*, Make, bool> forms[] = {  // name, guard, whether it clips inside
        {"QRect", [&] { return std::make_unique<ClipGuard>(&painter, inner); }, true},
        {"QRectF", [&] { return std::make_unique<ClipGuard>(&painter, innerF); }, true},
        {"QRectF*", [&] { return std::make_unique<ClipGuard>(&painter, &innerF); }, true},
        {"QRegion", [&] { return std::make_unique<ClipGuard>(&painter, QRegion(inner)); }, true},
        {"null", [&] { return std::make_unique<ClipGuard>(&painter, static_cast<const QRectF*>(nullptr)); }, false},
    };
    for (const std::optional<QRect> outer : {std::optional<QRect>(), std::optional<QRect>(QRect(0, 0, 30, 30))}) {
        for (const auto& [name, make, clipsInside] : forms) {
            if (outer)
                painter.setClipRect(*outer);
            else
                painter.setClipping(false);
            {
                const auto guard = make();
                EXPECT_EQ(painter.hasClipping(), clipsInside) << name;
                if (clipsInside) {
                    EXPECT_EQ(painter.clipRegion(), QRegion(inner)) << name;
                }
            }
            EXPECT_EQ(painter.hasClipping(), outer.has_value()) << name;
            if (outer) {
                EXPECT_EQ(painter.clipRegion(), QRegion(*outer)) << name;
            }
        }
    }
}

}  // namespace

#include "guards.moc"
