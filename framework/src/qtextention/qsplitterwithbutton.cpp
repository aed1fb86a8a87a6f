#include <qtextention/qsplitterwithbutton.h>

#include <qtextention/qsplitterhandlewithbutton.h>
#include <qtextention/qvalueanimator.h>

#include <QResizeEvent>
#include <QShowEvent>
#include <QtGlobal>

#include <cmath>
#include <limits>

namespace {

// The sum of all entries except the one at exclude (all of them when exclude is not an index).
int getListCount(QList<int>& sizes, int exclude)
{
    int sum = 0;
    for (int i = 0; i < sizes.size(); ++i) {
        if (i != exclude)
            sum += sizes.at(i);
    }
    return sum;
}

float getRatioForItem(QList<int>& sizes, int index)
{
    return float(sizes.at(index)) / float(getListCount(sizes, index));
}

// A ratio stored while every other pane was collapsed is infinite; the product is then not a size.
bool isUsableSize(float size)
{
    return std::isfinite(size) && size < float(std::numeric_limits<int>::max());
}

}  // namespace

QSplitterWithButton::QSplitterWithButton(QWidget* parent)
    : QSplitter(Qt::Horizontal, parent)
{
    connect(this, &QSplitter::splitterMoved, this, &QSplitterWithButton::updateHandleArrows);
}

void QSplitterWithButton::setShowOnlyLeftButton(bool onlyLeft)
{
    m_showOnlyLeftButton = onlyLeft;
}

QSplitterHandle* QSplitterWithButton::createHandle()
{
    auto* handle = new QSplitterHandleWithButton(orientation(), this, !m_showOnlyLeftButton);
    connect(handle, &QSplitterHandleWithButton::onLeftClick, this, &QSplitterWithButton::onLeftClick);
    connect(handle, &QSplitterHandleWithButton::onRightClick, this, &QSplitterWithButton::onRightClick);
    return handle;
}

void QSplitterWithButton::onLeftClick(QSplitterHandle* handle)
{
    ToggleCollapse(getHandleIndex(handle), true);
}

void QSplitterWithButton::onRightClick(QSplitterHandle* handle)
{
    ToggleCollapse(getHandleIndex(handle), false);
}

int QSplitterWithButton::getHandleIndex(const QSplitterHandle* handle) const
{
    if (!handle)
        return -1;
    for (int i = 0; i < count(); ++i) {
        if (this->handle(i) == handle)
            return i;
    }
    return -1;
}

void QSplitterWithButton::setAnimated(bool animated)
{
    m_animated = animated;
    if (!animated || m_animator)
        return;
    m_animator = new QValueAnimator(this);
    connect(m_animator, &QValueAnimator::valueChanged, this, [this](qreal progress) {
        QList<int> sizes = m_animateTo;
        for (int i = 0; i < sizes.size() && i < m_animateFrom.size(); ++i)
            sizes[i] = qRound(m_animateFrom[i] + (m_animateTo[i] - m_animateFrom[i]) * progress);
        setSizes(sizes);
        updateHandleArrows();
    });
}

void QSplitterWithButton::applySizes(const QList<int>& sizes)
{
    if (!m_animated || !isVisible()) {
        setSizes(sizes);
        return;
    }
    m_animateFrom = this->sizes();
    m_animateTo = sizes;
    m_animator->setValue(0);
    m_animator->animateTo(1);
}

void QSplitterWithButton::ToggleCollapse(int handleIndex, bool left)
{
    if (m_animator)
        m_animator->finish();
    QList<int> sizes = this->sizes();
    const int index = left ? handleIndex - 1 : handleIndex;
    if (index < 0 || index >= sizes.size()) {
        qWarning("QSplitterWithButton::ToggleCollapse: handle %d has no pane on its %s side", handleIndex,
                 left ? "left" : "right");
        return;
    }

    if (IsCollapsed(sizes, index))
        Expand(sizes, index);
    else
        Collapse(sizes, index);

    if (getListCount(sizes, -1) == 0)
        Expand(sizes, left ? index + 1 : index - 1);

    applySizes(sizes);
    updateHandleArrows();
}

void QSplitterWithButton::Collapse(QList<int>& sizes, int index)
{
    m_collapsedRatios.insert(index, getRatioForItem(sizes, index));
    sizes[index] = 0;
}

void QSplitterWithButton::Expand(QList<int>& sizes, int index)
{
    const auto ratio = m_collapsedRatios.constFind(index);
    if (ratio != m_collapsedRatios.constEnd()) {
        const float size = float(getListCount(sizes, index)) * ratio.value();
        sizes[index] = isUsableSize(size) ? int(size) : 0;
    } else {
        sizes[index] = widget(index)->sizeHint().width();
    }
    if (sizes[index] < 1)
        sizes[index] = width();
}

bool QSplitterWithButton::IsCollapsed(QList<int>& /*sizes*/, int index) const
{
    return sizes().at(index) == 0;
}

bool QSplitterWithButton::IsExpand(QList<int>& /*sizes*/, int index) const
{
    return sizes().at(index) != 0;
}

void QSplitterWithButton::resizeEvent(QResizeEvent* event)
{
    QSplitter::resizeEvent(event);
    updateHandleArrows();
}

void QSplitterWithButton::showEvent(QShowEvent* event)
{
    QSplitter::showEvent(event);
    updateHandleArrows();
}

void QSplitterWithButton::updateHandleArrows()
{
    const QList<int> current = sizes();
    for (int i = 1; i < current.size(); ++i) {
        if (auto* withButtons = qobject_cast<QSplitterHandleWithButton*>(handle(i)))
            withButtons->updateArrows(current.at(i - 1) == 0, current.at(i) == 0);
    }
}
