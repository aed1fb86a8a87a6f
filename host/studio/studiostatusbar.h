#pragma once

#include <QStatusBar>

class QHyperlink;
class QLabel;

namespace hbrc::studio {

struct Account;

// The main window's status bar: server, user, workspace and the session state as a link (a click
// offers what fits the session), and each step's outcome for a while.
class StudioStatusBar : public QStatusBar
{
    Q_OBJECT
public:
    explicit StudioStatusBar(QWidget* parent = nullptr);

    void showSession(const Account& account, const QString& workspace, const QString& sessionState);
    // Shows text until the next message or for a few seconds.
    void showBriefly(const QString& text);

signals:
    // The session state was clicked; at is where a menu should open.
    void sessionClicked(const QPoint& at);

private:
    QLabel* m_server = nullptr;
    QLabel* m_user = nullptr;
    QLabel* m_workspace = nullptr;
    QHyperlink* m_session = nullptr;
};

}  // namespace hbrc::studio
