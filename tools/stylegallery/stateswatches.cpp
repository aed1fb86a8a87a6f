#include "stateswatches.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace {

struct NamedState {
    const char* name;
    QStyle::State state;
};

const NamedState kIndicatorRows[] = {
    {"normal", QStyle::State_Enabled},
    {"hover", QStyle::State_Enabled | QStyle::State_MouseOver},
    {"pressed", QStyle::State_Enabled | QStyle::State_Sunken},
    {"disabled", QStyle::State_None},
};
const NamedState kIndicatorColumns[] = {
    {"off", QStyle::State_Off},
    {"on", QStyle::State_On},
    {"partial", QStyle::State_NoChange},
};

constexpr int kLabelWidth = 70;
constexpr int kCellWidth = 56;
constexpr int kRowHeight = 24;

}  // namespace

CheckBoxStateGrid::CheckBoxStateGrid(QWidget* parent)
    : QWidget(parent)
{
}

QSize CheckBoxStateGrid::sizeHint() const
{
    return QSize(kLabelWidth + kCellWidth * int(std::size(kIndicatorColumns)),
                 kRowHeight * (1 + int(std::size(kIndicatorRows))));
}

void CheckBoxStateGrid::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QStyle* s = style();
    const int indicatorWidth = s->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this);
    const int indicatorHeight = s->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, this);
    for (int column = 0; column < int(std::size(kIndicatorColumns)); ++column) {
        const QRect header(kLabelWidth + column * kCellWidth, 0, kCellWidth, kRowHeight);
        s->drawItemText(&painter, header, Qt::AlignCenter, palette(), true,
                        QString::fromLatin1(kIndicatorColumns[column].name), QPalette::WindowText);
    }
    for (int row = 0; row < int(std::size(kIndicatorRows)); ++row) {
        const int top = (row + 1) * kRowHeight;
        s->drawItemText(&painter, QRect(0, top, kLabelWidth, kRowHeight), Qt::AlignLeft | Qt::AlignVCenter,
                        palette(), true, QString::fromLatin1(kIndicatorRows[row].name), QPalette::WindowText);
        for (int column = 0; column < int(std::size(kIndicatorColumns)); ++column) {
            QStyleOptionButton option;
            option.initFrom(this);
            option.state = kIndicatorRows[row].state | kIndicatorColumns[column].state;
            if (!(option.state & QStyle::State_Enabled))
                option.palette.setCurrentColorGroup(QPalette::Disabled);
            const QRect cell(kLabelWidth + column * kCellWidth, top, kCellWidth, kRowHeight);
            option.rect = QRect(0, 0, indicatorWidth, indicatorHeight);
            option.rect.moveCenter(cell.center());
            s->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, this);
        }
    }
}

MenuBarPreview::MenuBarPreview(const QStringList& items, bool marked, QWidget* parent)
    : QWidget(parent)
    , m_items(items)
{
    if (marked)
        setProperty("isQtarnZelmarMenuBar", true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QList<QRect> MenuBarPreview::itemRects() const
{
    const QStyle* s = style();
    const int hMargin = s->pixelMetric(QStyle::PM_MenuBarHMargin, nullptr, this);
    const int vMargin = s->pixelMetric(QStyle::PM_MenuBarVMargin, nullptr, this);
    const int spacing = s->pixelMetric(QStyle::PM_MenuBarItemSpacing, nullptr, this);
    QList<QRect> rects;
    int x = hMargin;
    for (const QString& text : m_items) {
        QStyleOptionMenuItem option;
        option.initFrom(this);
        option.text = text;
        const QSize textSize = fontMetrics().size(Qt::TextShowMnemonic, text) + QSize(16, 6);
        const QSize size = s->sizeFromContents(QStyle::CT_MenuBarItem, &option, textSize, this);
        rects << QRect(QPoint(x, vMargin), size);
        x += size.width() + spacing;
    }
    return rects;
}

QSize MenuBarPreview::sizeHint() const
{
    const QList<QRect> rects = itemRects();
    const int vMargin = style()->pixelMetric(QStyle::PM_MenuBarVMargin, nullptr, this);
    return QSize(rects.isEmpty() ? 0 : rects.last().right() + 1, (rects.isEmpty() ? 0 : rects.first().height()))
        + QSize(0, 2 * vMargin);
}

void MenuBarPreview::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOptionMenuItem area;
    area.initFrom(this);
    area.menuItemType = QStyleOptionMenuItem::EmptyArea;
    area.rect = rect();
    style()->drawControl(QStyle::CE_MenuBarEmptyArea, &area, &painter, this);

    const QList<QRect> rects = itemRects();
    for (int i = 0; i < rects.size(); ++i) {
        QStyleOptionMenuItem item;
        item.initFrom(this);
        item.menuItemType = QStyleOptionMenuItem::Normal;
        item.text = m_items.at(i);
        item.rect = rects.at(i);
        item.state = QStyle::State_Enabled;
        if (i == 1)
            item.state |= QStyle::State_Selected;
        if (i == 2)
            item.state |= QStyle::State_Selected | QStyle::State_Sunken;
        style()->drawControl(QStyle::CE_MenuBarItem, &item, &painter, this);
    }
}
