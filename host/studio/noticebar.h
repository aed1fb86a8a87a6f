#pragma once

#include <QFrame>

#include <deque>
#include <functional>

class QLabel;
class QPushButton;

namespace hbrc::studio {

// A bar in the window that tells the user something worth acting on without stopping the work
// (no modal box): the text, one button that does what it offers, and Dismiss. Notices offered
// while one shows wait their turn; the bar hides when none is left.
class NoticeBar : public QFrame
{
    Q_OBJECT
public:
    explicit NoticeBar(QWidget* parent = nullptr);

    void offer(const QString& text, const QString& actionText, std::function<void()> act);
    // Drops every notice, the one showing and those waiting, and hides.
    void clear();
    QString text() const;
    QPushButton* actionButton() const { return m_action; }

private:
    struct Notice
    {
        QString text;
        QString actionText;
        std::function<void()> act;
    };
    void showFirst();
    void next();

    std::deque<Notice> m_notices;
    QLabel* m_text = nullptr;
    QPushButton* m_action = nullptr;
    QPushButton* m_dismiss = nullptr;
};

}  // namespace hbrc::studio
