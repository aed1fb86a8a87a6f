#include "studiowidgets.h"

#include <qtextention/cachedtextdrawer.h>
#include <qtextention/qcolorcontrol.h>
#include <qtextention/qcolorframe.h>
#include <qtextention/qfunctoraction.h>
#include <qtextention/qhyperlink.h>
#include <qtextention/qtabwidgetex.h>
#include <qtextention/rangevalueeditwidget.h>

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

namespace {

// Status badges as the asset browser paints them.
class BadgeRow : public QWidget
{
public:
    QSize sizeHint() const override { return {260, fontMetrics().height() + 6}; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        QPoint at(0, 2);
        const std::pair<const char*, QColor> badges[] = {{"up to date", QColor(0x3c, 0x7a, 0x3c)},
                                                         {"checked out", QColor(0x2e, 0x6d, 0xa4)},
                                                         {"held by bob", QColor(0xa8, 0x3a, 0x32)}};
        for (const auto& [text, colour] : badges)
            at.rx() += m_drawer.draw(painter, at, QString::fromLatin1(text), {font(), Qt::white, colour}).width() + 4;
    }

private:
    CachedTextDrawer m_drawer;
};

}  // namespace

QWidget* studioWidgets()
{
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("QHyperlink"), new QHyperlink(QStringLiteral("Create a demo depot")));
    auto* colour = new QColorControl;
    colour->setColor(QColor(0xff, 0x8c, 0x42));
    form->addRow(QStringLiteral("QColorControl"), colour);
    auto* swatches = new QHBoxLayout;
    for (const QColor& shade : {QColor(0x6f, 0xa8, 0xdc), QColor(0x4e, 0x8a, 0x3a, 120), QColor()}) {
        auto* frame = new QColorFrame;
        frame->setColor(shade);
        swatches->addWidget(frame);
    }
    swatches->addStretch();
    form->addRow(QStringLiteral("QColorFrame"), swatches);
    auto* range = new RangeValueEditWidget;
    range->setRange(0.0, 1.0, 2);
    range->setValue(0.85);
    form->addRow(QStringLiteral("RangeValueEditWidget"), range);
    form->addRow(QStringLiteral("CachedTextDrawer"), new BadgeRow);
    auto* button = new QToolButton;
    button->setDefaultAction(new QFunctorAction(QStringLiteral("Refresh Status"), [] {}, button));
    form->addRow(QStringLiteral("QFunctorAction"), button);
    auto* tabs = new QTabWidgetEx;
    tabs->addTab(new QLabel(QStringLiteral("colour, roughness")), QStringLiteral("Properties"));
    tabs->addTab(new QLabel(QStringLiteral("Rock.kel, rock.bin")), QStringLiteral("Files"));
    tabs->setTabCount(1, 2);
    tabs->setMaximumHeight(70);
    form->addRow(QStringLiteral("QTabWidgetEx"), tabs);
    auto* box = new QGroupBox(QStringLiteral("Studio widgets"));
    box->setLayout(form);
    return box;
}
