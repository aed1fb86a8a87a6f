#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QStringList>
#include <QTreeWidget>

class QKeyEvent;
class QMouseEvent;

/// One row per file: its absolute path ("File", dark grey when the file does not exist) and a
/// check box that the user can see but not change ("Read Only", checked when the file cannot be
/// written). Ctrl+C copies the selected paths; the right-button menu reveals them in the file
/// browser or copies them. The rows are the data: the widget keeps no list of its own.
///
/// Rows are added without touching the disk and sorted by path. A file's state (missing, read-only)
/// is asked of the file system when its row is first shown or its data is first asked for, and kept
/// until RefreshFileStates().
class QTEXTENTION_EXPORT QFileListWidget : public QTreeWidget
{
    Q_OBJECT
public:
    explicit QFileListWidget(const QStringList& files = {}, QWidget* parent = nullptr);

    /// Rows for many files are inserted in one batch.
    void AddFiles(const QStringList& files);
    void AddFile(const QString& path);

public slots:
    /// Reveals the selected files in the file browser (the browser shows the first of them).
    void ShowFiles();
    /// Puts the selected paths on the clipboard, each followed by "\n"; nothing selected empties it.
    void CopyToClipboard();
    /// Forgets every file's state, so that shown rows are checked again now and the others when
    /// they are next shown or asked for.
    void RefreshFileStates();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QStringList selectedPaths() const;
};
