#pragma once

#include <log/log.h>

#include <QDockWidget>

class QListWidget;

namespace hbrc::studio {

// The host log in a dock: every entry written while the dock lives, with an icon for its level
// (message, warning, error). Entries are selectable; Ctrl+C and the context menu copy them.
class LogDock : public QDockWidget, private Log::ISink
{
    Q_OBJECT
public:
    explicit LogDock(QWidget* parent = nullptr);
    ~LogDock() override;

    QListWidget* list() const { return m_list; }
    // The selected entries' texts, one per line (all entries when none is selected).
    QString selectedText() const;
    void copySelection() const;

private:
    // May be called from any thread: the entry is added on the dock's thread.
    void Write(int messageType, const std::string& text) override;
    void append(int messageType, const QString& text);

    QListWidget* m_list = nullptr;
};

}  // namespace hbrc::studio
