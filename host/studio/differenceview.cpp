#include "differenceview.h"

#include <QHeaderView>
#include <QPainter>

namespace hbrc::studio {

DifferenceView::DifferenceView(QWidget* parent) : QTreeView(parent)
{
    setObjectName(QStringLiteral("differences"));
    setModel(&m_model);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void DifferenceView::showRows(std::vector<FieldDifference> rows, const QString& before, const QString& after)
{
    m_message = rows.empty() ? tr("No difference.") : QString();
    m_model.setRows(std::move(rows), before, after);
    viewport()->update();
}

void DifferenceView::showMessage(const QString& text)
{
    m_message = text;
    m_model.setRows({}, {}, {});
    viewport()->update();
}

void DifferenceView::paintEvent(QPaintEvent* event)
{
    QTreeView::paintEvent(event);
    if (m_message.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(8, 8, -8, -8), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap,
                     m_message);
}

}  // namespace hbrc::studio
