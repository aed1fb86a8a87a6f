#include <qtextention/qtlomdarkstylesimple.h>

#include <QStyleFactory>

QtlomDarkStyleSimple::QtlomDarkStyleSimple()
    : QtlomDarkStyle(QStyleFactory::create(QStringLiteral("Windows")))
{
}

void QtlomDarkStyleSimple::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                         const QWidget* widget) const
{
    if (element == PE_FrameFocusRect)
        return;  // this style shows focus by colour alone
    QtlomDarkStyle::drawPrimitive(element, option, painter, widget);
}
