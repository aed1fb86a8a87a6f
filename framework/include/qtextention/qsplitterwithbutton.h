#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QList>
#include <QMap>
#include <QSplitter>

class QResizeEvent;
class QShowEvent;
class QValueAnimator;

/// A splitter whose handles carry small buttons that collapse the pane next to them and expand it
/// again. A collapsed pane's size is remembered as a ratio of the space of all other panes, so that
/// expanding restores the same proportion even after the window was resized.
///
/// Handle i sits between panes i - 1 and i: its left button acts on the pane before it, its right
/// button (present unless the splitter shows only left buttons) on the pane after it.
class QTEXTENTION_EXPORT QSplitterWithButton : public QSplitter
{
    Q_OBJECT
public:
    explicit QSplitterWithButton(QWidget* parent = nullptr);

    /// Affects handles created afterwards only.
    void setShowOnlyLeftButton(bool onlyLeft);
    bool showOnlyLeftButton() const { return m_showOnlyLeftButton; }

    /// Collapses or expands the pane on the given side of handle handleIndex and applies the sizes.
    /// When that leaves every pane collapsed, the neighbour on the clicked side is expanded.
    void ToggleCollapse(int handleIndex, bool left);

    /// Whether the buttons' collapse and expand move the panes smoothly (off at construction: sizes
    /// change at once). A click while panes move first puts them where they were going.
    void setAnimated(bool animated);
    bool isAnimated() const { return m_animated; }

    /// Change sizes in place; the caller applies them with setSizes.
    void Collapse(QList<int>& sizes, int index);
    void Expand(QList<int>& sizes, int index);

    /// Both look at the splitter's current sizes(), not at the list given.
    bool IsCollapsed(QList<int>& sizes, int index) const;
    bool IsExpand(QList<int>& sizes, int index) const;

    /// The index of handle in this splitter; -1 for null or a handle of another splitter.
    int getHandleIndex(const QSplitterHandle* handle) const;

    /// Pane index to the ratio it had when last collapsed; entries stay after expanding.
    QMap<int, float> collapsedRatios() const { return m_collapsedRatios; }

public slots:
    void onLeftClick(QSplitterHandle* handle);
    void onRightClick(QSplitterHandle* handle);

protected:
    QSplitterHandle* createHandle() override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void updateHandleArrows();

    void applySizes(const QList<int>& sizes);

    QMap<int, float> m_collapsedRatios;
    bool m_showOnlyLeftButton = true;
    bool m_animated = false;
    QValueAnimator* m_animator = nullptr;  // child; made when animation is switched on
    QList<int> m_animateFrom;
    QList<int> m_animateTo;
};
