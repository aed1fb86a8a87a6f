#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QSplitterHandle>

class QPushButton;
class QResizeEvent;

/// The handle of QSplitterWithButton: a left button that acts on the pane before the handle and,
/// optionally, a right button that acts on the pane after it. Each button shows an arrow pointing
/// the way its pane will move when clicked.
class QTEXTENTION_EXPORT QSplitterHandleWithButton : public QSplitterHandle
{
    Q_OBJECT
public:
    QSplitterHandleWithButton(Qt::Orientation orientation, QSplitter* parent, bool withRightButton);

    QPushButton* leftButton() const { return m_leftButton; }
    /// Null when the handle was created while its splitter showed only left buttons.
    QPushButton* rightButton() const { return m_rightButton; }

    /// Points each button's arrow the way its pane would move: the left button's pane collapses
    /// towards the start and expands towards the end; the right button's pane the other way round.
    void updateArrows(bool paneBeforeCollapsed, bool paneAfterCollapsed);

signals:
    void onLeftClick(QSplitterHandle* handle);
    void onRightClick(QSplitterHandle* handle);

public slots:
    void onLeftClicked();
    void onRightClicked();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QPushButton* makeButton(void (QSplitterHandleWithButton::*slot)(), const QString& objectName);

    QPushButton* m_leftButton = nullptr;
    QPushButton* m_rightButton = nullptr;
};
