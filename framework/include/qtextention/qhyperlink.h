#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QLabel>

/// A link that runs something in the program (not a web address): underlined text in the
/// palette's link colour that emits clicked() when clicked, or when Return or Space is pressed
/// while it has the focus (Tab reaches it). A dotted frame in the link colour shows the focus.
class QTEXTENTION_EXPORT QHyperlink : public QLabel
{
    Q_OBJECT
public:
    explicit QHyperlink(const QString& text, QWidget* parent = nullptr);

    void setLinkText(const QString& text);

signals:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};
