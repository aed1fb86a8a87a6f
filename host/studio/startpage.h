#pragma once

#include <QWidget>

class QVBoxLayout;

namespace hbrc::studio {

// What the window shows without a workspace: open a workspace folder, the recent workspaces, and
// create a demo depot.
class StartPage : public QWidget
{
    Q_OBJECT
public:
    explicit StartPage(QWidget* parent = nullptr);

    void setRecentWorkspaces(const QStringList& folders);

signals:
    void openFolderRequested();
    void openRecentRequested(const QString& folder);
    void createDemoRequested();

private:
    QVBoxLayout* m_recent = nullptr;
};

}  // namespace hbrc::studio
